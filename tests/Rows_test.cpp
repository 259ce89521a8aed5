// List rows: what each kind shows, how taps reach their actions, and the switch rows that
// follow the settings they show.

#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdlib>
#include <string>

#include "StInfoMenuItem.h"
#include "StInfoTitleItem.h"
#include "StInfoUSBDebugItem.h"
#include "StSubTextDecorationItem.h"
#include "support/EflTestEnvironment.h"

class RowsTest : public EflTest {
protected:
    void SetUp() override {
        EflTest::SetUp();
        _list = elm_genlist_add(_win);
        evas_object_size_hint_weight_set(_list, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
        elm_win_resize_object_add(_win, _list);
        evas_object_show(_list);
    }

    template <typename Row>
    Elm_Object_Item *append(Row *row, bool selectable = true) {
        Elm_Genlist_Item_Class *itc = row->getItemClassStatic();
        bool shared = itc != nullptr;
        if (!itc)
            itc = row->getItemClassNew();
        Elm_Object_Item *item = elm_genlist_item_append(
            _list, itc, row, nullptr, ELM_GENLIST_ITEM_NONE,
            selectable ? app_assist::WGenlistItem::getSelectCb() : nullptr, row);
        if (!shared)
            elm_genlist_item_class_free(itc);
        row->setElmObjectItem(item);
        return item;
    }

    Evas_Object *_list = nullptr;
};

TEST_F(RowsTest, TitleRowShowsItsTitleForEveryPart) {
    Elm_Object_Item *item = append(new StInfoTitleItem("WDS_ST_BODY_ABOUT_KESTA_ABB"), false);
    EXPECT_EQ(textOf(item, "elm.text"), "About Kesta");
    EXPECT_EQ(textOf(item, "elm.text.1"), "About Kesta");
    EXPECT_STREQ(elm_genlist_item_item_class_get(item)->item_style, "title");
}

TEST_F(RowsTest, MenuRowRunsItsActionOnceAndStaysUnhighlighted) {
    auto *row = new StInfoMenuItem("WDS_ST_BODY_RESET_KESTA_ABB");
    int runs = 0;
    row->setOnSelect([&]() { ++runs; });
    Elm_Object_Item *item = append(row);
    settle();
    tapItem(item);
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(elm_genlist_item_selected_get(item));

    // A row without an action only lets go of its highlight.
    Elm_Object_Item *idle = append(new StInfoMenuItem("WDS_ST_BODY_RESET_KESTA_ABB"));
    settle();
    tapItem(idle);
    EXPECT_FALSE(elm_genlist_item_selected_get(idle));
}

// (What each switch says aloud and shows is in the About list's table of sources.)
TEST_F(RowsTest, SwitchRowFollowsTheSettingOnlyWhenTold) {
    ASSERT_EQ(vconf_set_bool("db/setting/debug_mode", 0), VCONF_OK);
    auto *row = new StInfoUSBDebugItem();
    int taps = 0;
    row->setOnSelect([&]() { ++taps; });
    Elm_Object_Item *item = append(row);
    settle();
    Evas_Object *check = elm_object_item_part_content_get(item, "elm.swallow.icon");
    ASSERT_NE(check, nullptr);
    // A tap runs the action; the switch itself does not flip.
    tapItem(item);
    EXPECT_EQ(taps, 1);
    EXPECT_FALSE(elm_check_state_get(check));
    row->setCheckState(true);
    EXPECT_TRUE(elm_check_state_get(check));
    // Only the label has a text.
    EXPECT_EQ(textOf(item, "elm.text.1"), "(none)");
}

TEST_F(RowsTest, RowsNotYetOnScreenIgnoreUpdatesQuietly) {
    ASSERT_EQ(vconf_set_bool("db/setting/debug_mode", 0), VCONF_OK);
    testing::internal::CaptureStderr();
    auto *row = new StInfoUSBDebugItem();
    row->setCheckState(true);  // no switch yet
    StSubTextDecorationItem bare;
    bare.decorate();  // no list item yet
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(logSinceStart(), "");
    // Once shown, the switch shows the setting.
    Elm_Object_Item *item = append(row);
    settle();
    Evas_Object *check = elm_object_item_part_content_get(item, "elm.swallow.icon");
    ASSERT_NE(check, nullptr);
    EXPECT_FALSE(elm_check_state_get(check));
}
