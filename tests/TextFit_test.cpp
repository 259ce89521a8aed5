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
#include "support/EflTestEnvironment.h"
#include "tessid/StInfoTessidViewController.h"

extern "C" int _nl_msg_cat_cntr;

using app_assist::WNaviframeController;
using app_assist::WViewController;

namespace {

// Every catalogue the build compiles, as the platform selects it.
const struct {
    const char *locale;
    const char *language;  // LANGUAGE, as the platform sets it
    bool rightToLeft;
} kLanguages[] = {{"en_US", "en_US:en", false}, {"de_DE", "de_DE:de", false},
                  {"zh_CN", "zh_CN:zh", false}, {"ko_KR", "ko_KR:ko", false},
                  {"hi_IN", "hi_IN:hi", false}, {"ar_AE", "ar_AE:ar", true}};

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

class TextFitTest : public EflTest {
protected:
    static void SetUpTestSuite() {
        // The watch sold in India has every row of the About list.
        EflTestEnvironment::seedShippedProfile("india");
    }

    void TearDown() override {
        _use(kLanguages[0]);
        EflTest::TearDown();
    }

    void _use(decltype(kLanguages[0]) language) {
        setenv("LANGUAGE", language.language, 1);
        ++_nl_msg_cat_cntr;
        elm_language_set(language.locale);
        elm_config_mirrored_set(language.rightToLeft);
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
            ADD_FAILURE() << getenv("LANGUAGE") << ", " << screen << ": " << text;
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

TEST_F(TextFitTest, EveryTextFitsItsPartInEveryLanguage) {
    const std::vector<std::pair<const char *, std::function<WViewController *()>>> pages = {
        {"status", [] { return new StInfoStatusViewController(); }},
        {"software", [] { return new StInfoSwViewController(); }},
        {"tessid", [] { return new StInfoTessidViewController(); }},
        {"battery", [] { return new StInfoBatteryViewController(); }},
        {"regulatory", [] { return new StInfoRegulatoryInfoViewController(); }},
        {"licences", [] { return new StInfoOpenSrcLicenseViewController(); }},
    };
    for (const auto &language : kLanguages) {
        _use(language);
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
