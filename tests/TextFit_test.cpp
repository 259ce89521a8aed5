// Every text of every screen fits its part in every language of the catalogues: the About
// list, its two popups and each page, row by row, on the buffer engine.

// Smart-object membership is asked through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1

#include <WNaviframeController.h>
#include <gtest/gtest.h>

#include <libintl.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "StInfoBatteryViewController.h"
#include "StInfoMainViewController.h"
#include "StInfoOpenSrcLicenseViewController.h"
#include "StInfoRegulatoryInfoViewController.h"
#include "StInfoStatusViewController.h"
#include "StInfoSwViewController.h"
#include "WatchFonts.h"
#include "support/Catalogues.h"
#include "support/EflTestEnvironment.h"
#include "tessid/StInfoTessidViewController.h"

extern "C" int _nl_msg_cat_cntr;

using app_assist::WNaviframeController;
using app_assist::WViewController;

namespace {

// Text blocks on screen whose formatted text is larger than the block.
void collectOverflows(Evas_Object *obj, std::vector<std::string> *found) {
    if (!evas_object_visible_get(obj))
        return;
    const char *type = evas_object_type_get(obj);
    if (type && !strcmp(type, "textblock")) {
        Evas_Coord x, y, w, h, fw, fh, l, r, t, b;
        evas_object_geometry_get(obj, &x, &y, &w, &h);
        evas_object_textblock_size_formatted_get(obj, &fw, &fh);
        evas_object_textblock_style_insets_get(obj, &l, &r, &t, &b);
        if (w > 0 && h > 0 && (fw + l + r > w + 1 || fh + t + b > h + 1))
            found->push_back(std::string(evas_object_textblock_text_markup_get(obj)) + ": " +
                             std::to_string(fw + l + r) + "x" + std::to_string(fh + t + b) +
                             " in " + std::to_string(w) + "x" + std::to_string(h));
    }
    if (!efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return;
    Eina_List *children = evas_object_smart_members_get(obj);
    void *child;
    Eina_List *l;
    EINA_LIST_FOREACH(children, l, child)
    collectOverflows(static_cast<Evas_Object *>(child), found);
    eina_list_free(children);
}

class TextFitTest : public EflTest, public ::testing::WithParamInterface<std::string> {
protected:
    static void SetUpTestSuite() {
        // The watch sold in India has every row of the About list.
        EflTestEnvironment::seedShippedProfile("india");
    }

    void TearDown() override {
        _use("en_US");
        EflTest::TearDown();
    }

    // The language as the platform selects it: catalogues, the fonts' language, the direction
    // its own catalogue gives the toolkit.
    void _use(const std::string &language) {
        setenv("LANGUAGE", languageList(language).c_str(), 1);
        ++_nl_msg_cat_cntr;
        elm_language_set(language.c_str());
        platform::applyWatchFonts(language);
        elm_config_mirrored_set(!strcmp(dgettext("efl", "default:LTR"), "default:RTL"));
    }

    // What overflows on the screen now, and on every row of its list brought into view.
    void expectFits(const std::string &screen, Evas_Object *list) {
        std::vector<std::string> found;
        auto look = [&]() {
            settle(0.05);
            Evas *canvas = evas_object_evas_get(_win);
            for (Evas_Object *o = evas_object_bottom_get(canvas); o; o = evas_object_above_get(o))
                collectOverflows(o, &found);
        };
        look();
        const char *type = list ? evas_object_type_get(list) : nullptr;
        if (type && !strcmp(type, "elm_genlist")) {
            for (Elm_Object_Item *it = elm_genlist_first_item_get(list); it;
                 it = elm_genlist_item_next_get(it)) {
                elm_genlist_item_show(it, ELM_GENLIST_ITEM_SCROLLTO_IN);
                look();
            }
        }
        for (const std::string &text : found)
            ADD_FAILURE() << GetParam() << ", " << screen << ": " << text;
    }

    Elm_Object_Item *_rowOf(Evas_Object *list, const char *id) {
        for (Elm_Object_Item *it = elm_genlist_first_item_get(list); it;
             it = elm_genlist_item_next_get(it)) {
            if (textOf(it, "elm.text") == dgettext("quillset", id))
                return it;
        }
        return nullptr;
    }
};

}  // namespace

TEST_P(TextFitTest, EveryTextFitsItsPart) {
    const std::vector<std::pair<const char *, std::function<WViewController *()>>> pages = {
        {"status", [] { return new StInfoStatusViewController(); }},
        {"software", [] { return new StInfoSwViewController(); }},
        {"tessid", [] { return new StInfoTessidViewController(); }},
        {"battery", [] { return new StInfoBatteryViewController(); }},
        {"regulatory", [] { return new StInfoRegulatoryInfoViewController(); }},
        {"licences", [] { return new StInfoOpenSrcLicenseViewController(); }},
    };
    {
        _use(GetParam());
        auto *naviframe = makeNaviframe();
        auto *main = new StInfoMainViewController();
        ASSERT_TRUE(naviframe->push(main));
        Evas_Object *list = main->getEvasObject();
        expectFits("the About list", list);
        for (const char *row :
             {"WDS_ST_MBODY_DEBUGGING_ABB", "WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB"}) {
            Elm_Object_Item *item = _rowOf(list, row);
            ASSERT_NE(item, nullptr) << row;
            tapItem(item);
            expectFits(std::string("the popup of ") + row, nullptr);
            pressKey("Escape");
        }
        for (const auto &page : pages) {
            WViewController *view = page.second();
            ASSERT_TRUE(naviframe->push(view));
            settle(0.1);
            expectFits(page.first, view->getEvasObject());
            pressKey("Escape");
        }
        evas_object_del(naviframe->getEvasObject());
    }
}

INSTANTIATE_TEST_SUITE_P(Catalogues, TextFitTest, ::testing::ValuesIn(compiledLanguages()),
                         [](const auto &info) { return info.param; });

namespace {

// The pixels of a region of the window as last drawn.
std::vector<uint32_t> pixelsOf(Evas_Object *win, int x, int y, int w, int h) {
    Ecore_Evas *ee = ecore_evas_ecore_evas_get(evas_object_evas_get(win));
    int width = 0;
    ecore_evas_geometry_get(ee, nullptr, nullptr, &width, nullptr);
    const auto *pixels = static_cast<const uint32_t *>(ecore_evas_buffer_pixels_get(ee));
    std::vector<uint32_t> region;
    for (int row = y; pixels && row < y + h; ++row)
        region.insert(region.end(), pixels + row * width + x, pixels + row * width + x + w);
    return region;
}

}  // namespace

// Han characters shared by Chinese and Japanese take the forms of the watch's language: with
// the fonts the platform gives texts in Japanese and traditional Chinese, the same characters
// draw differently than in simplified Chinese, and the same in English.
TEST_F(TextFitTest, HanCharactersTakeTheFormsOfTheLanguage) {
    Evas *canvas = evas_object_evas_get(_win);
    Evas_Object *back = evas_object_rectangle_add(canvas);
    evas_object_color_set(back, 0, 0, 0, 255);
    evas_object_geometry_set(back, 0, 0, 360, 360);
    evas_object_show(back);
    Evas_Object *text = evas_object_text_add(canvas);
    evas_object_color_set(text, 255, 255, 255, 255);
    evas_object_move(text, 40, 150);
    evas_object_show(text);
    auto draw = [&](const char *language) {
        _use(language);
        const char *font = nullptr;
        Evas_Font_Size size = 0;
        EXPECT_TRUE(edje_text_class_get("watch_text", &font, &size)) << language;
        evas_object_text_font_set(text, font, 40);
        evas_object_text_text_set(text, "骨直角令");
        settle(0.05);
        return pixelsOf(_win, 40, 150, 280, 60);
    };
    const std::vector<uint32_t> simplified = draw("zh_CN");
    ASSERT_FALSE(simplified.empty());
    const struct {
        const char *language;
        bool ownForms;
    } cases[] = {{"ja", true}, {"zh_TW", true}, {"en", false}};
    for (const auto &c : cases)
        EXPECT_EQ(draw(c.language) != simplified, c.ownForms) << c.language;
    evas_object_del(text);
    evas_object_del(back);
}
