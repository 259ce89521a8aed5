// The rows of the device status page in a list: values as the list asks for them and draws them,
// rows that change in place when the model's answers arrive, and what they show for nothing.

#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "PlatformState.h"
#include "StInfoStatusMenuItem.h"
#include "StInfoStatusModel.h"
#include "support/EflTestEnvironment.h"

namespace {

using Row = StInfoStatusMenuItem;

class StInfoStatusMenuItemTest : public EflTest {
protected:
    void SetUp() override {
        EflTest::SetUp();
        _genlist = elm_genlist_add(_win);
        evas_object_size_hint_weight_set(_genlist, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
        elm_win_resize_object_add(_win, _genlist);
        evas_object_show(_genlist);
    }

    Elm_Object_Item *append(Row::AboutMenu kind) {
        auto *row = new Row(kind);
        Elm_Genlist_Item_Class *itc = row->getItemClassNew();
        Elm_Object_Item *item = elm_genlist_item_append(_genlist, itc, row, nullptr,
                                                        ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
        elm_genlist_item_class_free(itc);
        row->setElmObjectItem(item);
        return item;
    }

    static std::string values(std::initializer_list<Elm_Object_Item *> items) {
        std::string out;
        for (Elm_Object_Item *item : items)
            out += textOf(item, "elm.text.1") + "|";
        return out;
    }

    // What the list draws as the row's value.
    static std::string drawn(Elm_Object_Item *item) {
        const char *t = elm_object_item_part_text_get(item, "elm.text.1");
        return t ? t : "(none)";
    }

    Evas_Object *_genlist = nullptr;
};

}  // namespace

TEST_F(StInfoStatusMenuItemTest, AsynchronousRowsChangeInPlaceAndEscapeMarkup) {
    writeProfile(R"({"system_info": {"vendor": {"tizen/feature/esim.phase": 1}},
        "telephony": {"modem": true}, "sim": {"msisdn": "+447700900123"},
        "esim": {"eid": "8900048000000100", "profiles": [
            {"name": "Kite & Co <Travel>", "kind": 2, "state": 1}]},
        "latency": {"msisdn_ms": 100, "esim_profile_list_ms": 100, "esim_eid_ms": 100}})");
    vconf_set_str("db/setting/selected_num", "");
    vconf_set_str("db/menu_widget/regionformat", "en_GB.UTF-8");
    Elm_Object_Item *profile = append(Row::ESIM_PROFILE);
    Elm_Object_Item *eid = append(Row::EID);
    Elm_Object_Item *phone = append(Row::PHONE_NUMBER);
    settle();
    EXPECT_EQ(values({profile, eid, phone}), "None|Unknown|Unknown|");
    EXPECT_EQ(drawn(profile), "None");

    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    bool eidArrived = false;
    model->_eidSignal.addListener([&eidArrived]() { eidArrived = true; });
    ASSERT_TRUE(runUntil([&]() { return eidArrived && textOf(phone, "elm.text.1") != "Unknown"; }));
    settle(0.1);
    EXPECT_EQ(values({profile, eid, phone}),
              "Kite &amp; Co &lt;Travel&gt;|8900048000000100|+44 7700 900123|");
    EXPECT_EQ(textOf(phone, "elm.text.2"), "(none)");
    // The list redrew them in place: the drawn texts are the new ones.
    EXPECT_EQ(drawn(profile) + "|" + drawn(eid) + "|" + drawn(phone) + "|",
              values({profile, eid, phone}));

    // Deleted rows no longer listen: later answers reach no freed row.
    elm_genlist_clear(_genlist);
    settle();
    model->_eidSignal.emit();
    model->_esimProfileSignal.emit();
    model->_msisdnSignal.emit();
}

// (Labels show in each profile's row list end to end; empty values with every other row kind.)
TEST_F(StInfoStatusMenuItemTest, ImsRegistrationShowsItsState) {
    writeProfile(R"({"telephony": {"modem": true, "volte_enable": 0}})");
    Elm_Object_Item *ims = append(Row::IMS_REGISTRATION);
    EXPECT_EQ(textOf(ims, "elm.text.1"), "Off");
    writeProfile(R"({"telephony": {"modem": true, "volte_enable": 1}})");
    EXPECT_EQ(textOf(ims, "elm.text.1"), "On");
}
