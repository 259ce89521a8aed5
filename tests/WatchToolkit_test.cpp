// The watch's toolkit extensions on the host: the back key, the bezel, the round scroll
// indicator, the round screen and the colour table.

#include <efl_extension.h>
#include <gtest/gtest.h>
#include <uxt_theme.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/EflTestEnvironment.h"

namespace {

std::string writeFile(const std::string &name, const std::string &content) {
    std::string path = EflTestEnvironment::stateDir() + "/" + name;
    std::ofstream(path) << content;
    return path;
}

}  // namespace

class WatchToolkitTest : public EflTest {
protected:
    Evas_Object *_longList() {
        Evas_Object *list = elm_genlist_add(_win);
        evas_object_size_hint_weight_set(list, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
        elm_win_resize_object_add(_win, list);
        evas_object_show(list);
        Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
        itc->item_style = "1text";
        itc->func.text_get = [](void *, Evas_Object *, const char *) -> char * {
            return strdup("row");
        };
        for (int i = 0; i < 20; ++i)
            elm_genlist_item_append(list, itc, nullptr, nullptr, ELM_GENLIST_ITEM_NONE, nullptr,
                                    nullptr);
        elm_genlist_item_class_free(itc);
        return list;
    }
};

namespace {

// The scroll indicator as drawn: where it stands, and its lit pixels.
struct Indicator {
    int x = 0, y = 0, w = 0, h = 0;
    // Per row of the screen: the rightmost lit column, and the brightest pixel (the thumb).
    std::vector<int> rightmost;
    int thumbTop = -1, thumbBottom = -1;
};

Indicator look(Evas_Object *bar) {
    Indicator in;
    evas_object_geometry_get(bar, &in.x, &in.y, &in.w, &in.h);
    int iw = 0, ih = 0;
    evas_object_image_size_get(bar, &iw, &ih);
    auto *pixels = static_cast<unsigned int *>(evas_object_image_data_get(bar, EINA_FALSE));
    if (!pixels || !evas_object_visible_get(bar))
        return in;
    int stride = evas_object_image_stride_get(bar) / 4;
    in.rightmost.assign(ih, -1);
    for (int row = 0; row < ih; ++row) {
        for (int col = 0; col < iw; ++col) {
            unsigned int alpha = pixels[row * stride + col] >> 24;
            if (alpha > 40)
                in.rightmost[row] = in.x + col;
            if (alpha > 200) {
                if (in.thumbTop < 0)
                    in.thumbTop = in.y + row;
                in.thumbBottom = in.y + row;
            }
        }
    }
    evas_object_image_data_set(bar, pixels);
    return in;
}

}  // namespace

TEST_F(WatchToolkitTest, ScrollIndicatorIsAnArcAtThreeOClockThatFollowsTheScroll) {
    Evas_Object *list = _longList();
    Evas_Object *bar = eext_circle_object_genlist_add(list, nullptr);
    ASSERT_NE(bar, nullptr);
    settle(0.1);
    Indicator top = look(bar);
    ASSERT_FALSE(top.rightmost.empty()) << "no indicator on a list longer than the screen";
    // Along the bezel at 3 o'clock: right of the middle, about 150 px tall around it.
    EXPECT_GT(top.x, 300);
    EXPECT_NEAR(top.y + top.h / 2, 180, 3);
    EXPECT_GT(top.h, 120);
    EXPECT_LT(top.h, 200);
    // An arc: it bends away from the edge toward its ends.
    int firstLit = 0;
    while (top.rightmost[firstLit] < 0)
        ++firstLit;
    EXPECT_GT(top.rightmost[180 - top.y] - top.rightmost[firstLit], 8);
    ASSERT_GE(top.thumbTop, 0);
    EXPECT_LT(top.thumbBottom, 180);

    elm_genlist_item_bring_in(elm_genlist_last_item_get(list), ELM_GENLIST_ITEM_SCROLLTO_IN);
    settle(1.0);
    Indicator end = look(bar);
    // The same place on every screen; the thumb has gone down to the end of the track.
    EXPECT_EQ(end.x, top.x);
    EXPECT_EQ(end.y, top.y);
    EXPECT_GT(end.thumbTop, 180);
    EXPECT_GT(end.thumbBottom, top.thumbBottom + 40);

    // A text page's scroller shows it too, once its content grows past the screen.
    evas_object_del(list);
    Evas_Object *scroller = elm_scroller_add(_win);
    elm_win_resize_object_add(_win, scroller);
    evas_object_show(scroller);
    Evas_Object *scrollerBar = eext_circle_object_scroller_add(scroller, nullptr);
    Evas_Object *content = evas_object_rectangle_add(evas_object_evas_get(_win));
    evas_object_size_hint_min_set(content, 360, 1200);
    elm_object_content_set(scroller, content);
    settle(0.1);
    EXPECT_TRUE(evas_object_visible_get(scrollerBar));
    EXPECT_FALSE(look(scrollerBar).rightmost.empty());
}

TEST_F(WatchToolkitTest, BackKeyGoesToTheNewestVisibleObject) {
    std::vector<std::string> got;
    Evas_Object *page = elm_box_add(_win);
    Evas_Object *popup = elm_box_add(_win);
    evas_object_show(page);
    evas_object_show(popup);
    auto record = [](void *data, Evas_Object *, void *) {
        static_cast<std::vector<std::string> *>(data)->push_back("called");
    };
    eext_object_event_callback_add(page, EEXT_CALLBACK_BACK, record, &got);
    eext_object_event_callback_add(
        popup, EEXT_CALLBACK_BACK,
        [](void *data, Evas_Object *, void *) {
            static_cast<std::vector<std::string> *>(data)->push_back("popup");
        },
        &got);
    pressKey("Escape");
    evas_object_hide(popup);
    pressKey("BackSpace");
    evas_object_del(popup);
    evas_object_del(page);
    pressKey("Escape");
    EXPECT_EQ(got, (std::vector<std::string>{"popup", "called"}));
}

TEST_F(WatchToolkitTest, BezelMovesTheListOneRowPerDetent) {
    Evas_Object *list = _longList();
    Evas_Object *circle = eext_circle_object_genlist_add(list, nullptr);
    ASSERT_NE(circle, nullptr);
    eext_rotary_object_event_activated_set(circle, EINA_TRUE);
    settle();
    int before = centreRow(list);
    for (int i = 0; i < 3; ++i)
        pressKey("Next");
    settle(0.6);
    EXPECT_EQ(centreRow(list), before + 3);
    pressKey("Prior");
    settle(0.6);
    EXPECT_EQ(centreRow(list), before + 2);

    // Once the list is gone the bezel has nothing to move, and nothing breaks.
    evas_object_del(list);
    pressKey("Next");
    eext_rotary_object_event_activated_set(nullptr, EINA_TRUE);
}

TEST_F(WatchToolkitTest, ColourTablesAreReadAndBadOnesRefused) {
    std::string good = writeFile("good.xml",
                                 "<?xml version=\"1.0\"?>\n<ChangeableColorTable name=\"t\">\n"
                                 "  <Color code=\"AT013\" value=\"#4DB6FFFF\"/>\n"
                                 "  <Color code=\"T022\" value=\"#102030\"/>\n"
                                 "</ChangeableColorTable>\n");
    Uxt_Theme_Color_Table *table = uxt_theme_add_color_table(good.c_str());
    ASSERT_NE(table, nullptr);
    uxt_theme_set_color_table(table);
    int r, g, b, a;
    ASSERT_TRUE(uxt_theme_get_color("AT013", &r, &g, &b, &a));
    EXPECT_EQ(r, 0x4D);
    EXPECT_EQ(a, 0xFF);
    ASSERT_TRUE(uxt_theme_get_color("T022", &r, &g, &b, &a));
    EXPECT_EQ(b, 0x30);
    EXPECT_EQ(a, 255);
    EXPECT_FALSE(uxt_theme_get_color("NONE", &r, &g, &b, &a));
    uxt_theme_delete_color_table(table);
    EXPECT_FALSE(uxt_theme_get_color("AT013", &r, &g, &b, &a));

    EXPECT_EQ(uxt_theme_add_color_table((EflTestEnvironment::stateDir() + "/none.xml").c_str()),
              nullptr);
    EXPECT_EQ(uxt_theme_add_color_table(writeFile("empty.xml", "").c_str()), nullptr);
    EXPECT_EQ(uxt_theme_add_color_table(
                  writeFile("other.xml", "<Colours><Color code=\"A\" value=\"#000\"/></Colours>")
                      .c_str()),
              nullptr);
    EXPECT_NE(logSinceStart().find("is not a colour table"), std::string::npos);
}
