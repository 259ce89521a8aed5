// The watch's toolkit extensions on the host: the back key, the bezel, the round screen and
// the colour table.

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

class WatchToolkitTest : public EflTest {};

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
