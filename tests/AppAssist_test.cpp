// The application framework on the buffer engine: pages on a naviframe, the back key, popups
// and their buttons, list rows and weak object handles.

#include <WContentViewController.h>
#include <WEvasObject.h>
#include <WGenlistItem.h>
#include <WNaviframeController.h>
#include <WPopupController.h>
#include <WSignal.h>
#include <efl_extension.h>
#include <uxt_genlist.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/EflTestEnvironment.h"

using namespace app_assist;

extern "C" int _nl_msg_cat_cntr;

namespace {

struct Events {
    std::vector<std::string> log;
    int destroyed = 0;
};

class Page : public WContentViewController {
public:
    Page(Events &events, std::string name) : _events(events), _name(std::move(name)) {}
    ~Page() override { ++_events.destroyed; }

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *) override {
        setTitle(_name.c_str());
        Evas_Object *list = elm_genlist_add(parent);
        // Pages take the back key through their naviframe.
        return list;
    }
    void onPushed(Elm_Object_Item *) override { _events.log.push_back("pushed " + _name); }
    void onBecomeTop() override { _events.log.push_back("top " + _name); }

private:
    Events &_events;
    std::string _name;
};

class Row : public WGenlistItem {
public:
    Row(int &selects, int &deletes) : _selects(selects), _deletes(deletes) {}
    ~Row() override { ++_deletes; }
    Elm_Genlist_Item_Class *getItemClassNew() override {
        Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
        itc->item_style = "default";
        itc->func.text_get = [](void *, Evas_Object *, const char *) -> char * {
            return strdup("row");
        };
        itc->func.del = delItemCb;
        return itc;
    }
    void onSelect(Elm_Object_Item *item) override {
        elm_genlist_item_selected_set(item, EINA_FALSE);
        ++_selects;
    }

private:
    int &_selects;
    int &_deletes;
};

class ClosingPopup : public WPopupController {
public:
    explicit ClosingPopup(int &gone) : _gone(gone) {}
    ~ClosingPopup() override { ++_gone; }

private:
    int &_gone;
};

}  // namespace

class AppAssistTest : public EflTest {
protected:
    // Pages outlive each test body (the window goes in TearDown), so what they report to
    // lives in the fixture.
    Events events;
};

TEST_F(AppAssistTest, BackPopsToThePageBelowAndTheLastPopAsksTheHandler) {
    WNaviframeController *naviframe = makeNaviframe();
    ASSERT_TRUE(naviframe->push(new Page(events, "main")));
    ASSERT_TRUE(naviframe->push(new Page(events, "sub")));
    bool allow = false;
    int asked = 0;
    naviframe->setOnLastItemPop([&](bool *popOut) {
        ++asked;
        *popOut = allow;
    });
    settle();
    EXPECT_STREQ(static_cast<WContentViewController *>(naviframe->getTopView())->getTitle(), "sub");
    pressKey("Escape");
    settle();
    EXPECT_EQ(naviframe->getViews().size(), 1u);
    EXPECT_EQ(events.destroyed, 1);
    EXPECT_EQ(events.log, (std::vector<std::string>{"pushed main", "pushed sub", "top main"}));
    pressKey("Escape");
    EXPECT_FALSE(naviframe->pop());
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(naviframe->getViews().size(), 1u);
    allow = true;
    EXPECT_TRUE(naviframe->pop());
    settle();
    EXPECT_EQ(events.destroyed, 2);
}

TEST_F(AppAssistTest, PopupButtonClosesOnlyWhenItsHandlerSaysSo) {
    WNaviframeController *naviframe = makeNaviframe();
    auto *page = new Page(events, "main");
    naviframe->push(page);

    int keepPresses = 0, closePresses = 0;
    auto *popup = new WPopupController();
    popup->setTitle("Title");
    popup->setContent("Body");
    popup->addButton("Keep", [&](bool *destroy) {
        ++keepPresses;
        *destroy = false;
    });
    popup->addButton("Close", [&](bool *destroy) {
        ++closePresses;
        *destroy = true;
    });
    ASSERT_TRUE(page->attachPopup(popup));
    settle();
    ASSERT_EQ(page->getPopup(), popup);
    std::vector<Evas_Object *> buttons = popup->getButtons();
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_STREQ(elm_object_part_text_get(popup->getEvasObject(), "title,text"), "Title");

    click(buttons[0]);
    settle();
    EXPECT_EQ(keepPresses, 1);
    EXPECT_EQ(page->getPopup(), popup);

    click(buttons[1]);
    settle();
    EXPECT_EQ(closePresses, 1);
    EXPECT_EQ(page->getPopup(), nullptr);
}

TEST_F(AppAssistTest, BackKeyClosesThePopupBeforeThePage) {
    WNaviframeController *naviframe = makeNaviframe();
    naviframe->push(new Page(events, "main"));
    auto *page = new Page(events, "sub");
    naviframe->push(page);
    auto *popup = new WPopupController();
    popup->setContent("Body");
    page->attachPopup(popup);
    settle();

    pressKey("Escape");
    EXPECT_EQ(page->getPopup(), nullptr);
    EXPECT_EQ(naviframe->getViews().size(), 2u);

    // A back handler may keep the popup open.
    int backs = 0;
    auto *sticky = new WPopupController();
    sticky->setContent("Body");
    sticky->setOnBack([&](bool *destroy) {
        ++backs;
        *destroy = false;
    });
    page->attachPopup(sticky);
    settle();
    pressKey("Escape");
    EXPECT_EQ(backs, 1);
    EXPECT_EQ(page->getPopup(), sticky);
}

TEST_F(AppAssistTest, PopupContentIsBuiltOnThePopupAndGoesWithThePage) {
    auto *page = new Page(events, "main");
    ASSERT_TRUE(page->create(_win, nullptr));
    int destructed = 0;
    struct CountedPopup : WPopupController {
        int &count;
        explicit CountedPopup(int &c) : count(c) {}
        ~CountedPopup() override { ++count; }
    };
    auto *popup = new CountedPopup(destructed);
    Evas_Object *parentSeen = nullptr;
    popup->setContent([&](Evas_Object *parent) {
        parentSeen = parent;
        return elm_label_add(parent);
    });
    bool propertiesSet = false;
    popup->setOnAddProperties([&](Evas_Object *obj) { propertiesSet = obj != nullptr; });
    page->attachPopup(popup);
    settle();
    EXPECT_EQ(parentSeen, popup->getEvasObject());
    EXPECT_NE(popup->getContentObject(), nullptr);
    EXPECT_TRUE(propertiesSet);
    page->destroy();
    settle();
    EXPECT_EQ(destructed, 1);
    EXPECT_EQ(events.destroyed, 1);
}

TEST_F(AppAssistTest, RowTapRunsOnSelectOnceAndTheListDeletesItsRows) {
    Evas_Object *genlist = elm_genlist_add(_win);
    evas_object_size_hint_weight_set(genlist, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(_win, genlist);
    evas_object_show(genlist);
    int selects = 0, deletes = 0;
    auto *row = new Row(selects, deletes);
    Elm_Genlist_Item_Class *itc = row->getItemClassNew();
    Elm_Object_Item *item = elm_genlist_item_append(
        genlist, itc, row, nullptr, ELM_GENLIST_ITEM_NONE, WGenlistItem::getSelectCb(), row);
    elm_genlist_item_class_free(itc);
    row->setElmObjectItem(item);
    EXPECT_EQ(row->getElmObjectItem(), item);
    settle();

    tapItem(item);
    EXPECT_EQ(selects, 1);
    EXPECT_FALSE(elm_genlist_item_selected_get(item));

    evas_object_del(genlist);
    EXPECT_EQ(deletes, 1);
}

TEST_F(AppAssistTest, WeakHandleSharedByEveryTakerAndEmptyForNoObject) {
    Evas_Object *box = elm_box_add(_win);
    WEvasObjectWeakPtr first = wevasobject_get_weak_ptr(box);
    WEvasObjectWeakPtr second = wevasobject_get_weak_ptr(box);
    EXPECT_EQ(first.lock(), second.lock());
    EXPECT_EQ(first.lock()->getEvasObject(), box);
    EXPECT_TRUE(wevasobject_get_weak_ptr(nullptr).expired());
}

// A launch freezes the input of the list it starts from for a second, and the toolkit skips
// EVAS_CALLBACK_DEL for an object whose input is frozen: whatever is tied to a page's life must
// end with the page all the same. (The platform's per-list data shows under the leak checks.)
TEST_F(AppAssistTest, WhatIsTiedToAPageEndsWithItWhetherOrNotItsInputIsFrozen) {
    WNaviframeController *naviframe = makeNaviframe();
    ASSERT_TRUE(naviframe->push(new Page(events, "main")));
    WSignal<void()> signal;
    for (bool frozen : {false, true}) {
        SCOPED_TRACE(frozen ? "input frozen" : "input live");
        int destroyedBefore = events.destroyed;
        auto *page = new Page(events, "sub");
        ASSERT_TRUE(naviframe->push(page));
        Evas_Object *list = page->getEvasObject();
        uxt_genlist_set_bottom_margin_enabled(list, true);
        eext_circle_object_genlist_add(list, nullptr);
        int calls = 0;
        signal.addListener([&calls]() { ++calls; }, list);
        WEvasObjectWeakPtr weak = wevasobject_get_weak_ptr(list);
        int popupsGone = 0;
        page->attachPopup(new ClosingPopup(popupsGone));
        settle();
        evas_object_freeze_events_set(list, frozen ? EINA_TRUE : EINA_FALSE);

        ASSERT_TRUE(naviframe->pop());
        settle();
        EXPECT_EQ(events.destroyed, destroyedBefore + 1) << "the page's controller outlived it";
        EXPECT_EQ(popupsGone, 1) << "the page's popup outlived it";
        EXPECT_TRUE(weak.expired());
        signal.emit();
        EXPECT_EQ(calls, 0) << "a listener bound to the page's list outlived it";
    }
}

TEST_F(AppAssistTest, TranslatablePopupTextsFollowALanguageChange) {
    WNaviframeController *naviframe = makeNaviframe();
    auto *page = new Page(events, "main");
    naviframe->push(page);
    auto *popup = new WPopupController();
    popup->setTextTranslatable("quillset");
    popup->setTitle("WDS_ST_MBODY_DEBUGGING_ABB");
    popup->setContent("IDS_ST_TPOP_SECURITY_POLICY_RESTRICTS_CHANGING_SETTINGS");
    popup->addButton("WDS_ST_BUTTON_OK_ABB", [](bool *destroy) { *destroy = true; });
    page->attachPopup(popup);
    settle();
    Evas_Object *obj = popup->getEvasObject();
    EXPECT_STREQ(elm_object_part_text_get(obj, "title,text"), "Debugging");
    EXPECT_STREQ(elm_object_text_get(popup->getButtons()[0]), "OK");

    setenv("LANGUAGE", "de", 1);
    ++_nl_msg_cat_cntr;  // as the platform does when the language changes
    elm_language_set("de_DE");
    settle();
    EXPECT_STREQ(elm_object_part_text_get(obj, "title,text"), "Debug-Modus");
    std::string text = elm_object_text_get(obj) ? elm_object_text_get(obj) : "";
    EXPECT_NE(text.find("Sicherheitsrichtlinie"), std::string::npos) << text;
    setenv("LANGUAGE", "en_US:en", 1);
    ++_nl_msg_cat_cntr;
    elm_language_set("en_US");
}
