// The About list and its pages: the models against the stand-ins, the rows they show, the
// bezel, the developer-mode tap counter with its toast, and the home key without a bus.

// Smart-object membership is asked through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1

#include <WNaviframeController.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "EvasTree.h"
#include "StAppControlLauncher.h"
#include "StHomeKeyHandler.h"
#include "StInfoBatteryModel.h"
#include "StInfoMainViewController.h"
#include "StInfoOpenSrcLicenseViewController.h"
#include "StInfoRegulatoryInfoViewController.h"
#include "StInfoSwModel.h"
#include "StInfoSwViewController.h"
#include "support/EflTestEnvironment.h"
#include "tessid/StInfoTessidViewController.h"

using app_assist::WNaviframeController;

namespace {

const char *const kUnknown = "WDS_LOGS_MBODY_UNKNOWN_ABB";
const char *const kDeveloperOption = "db/setting/developer_option_state";

// Removes a settings key, as on a watch that never had it.
void unsetSetting(const std::string &key) {
    std::remove((EflTestEnvironment::stateDir() + "/settings/" + key).c_str());
}

std::string vendorProfile(const std::string &vendorKeys) {
    return R"({"system_info": {"vendor": {)" + vendorKeys + "}}}";
}

size_t count(const std::string &text, const std::string &what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

}  // namespace

class PagesTest : public EflTest {
protected:
    void TearDown() override {
        writeProfile("{}");
        unsetSetting(kDeveloperOption);
        EflTest::TearDown();
    }

    // The list of the page on top, and its rows.
    std::vector<Elm_Object_Item *> pushAndList(app_assist::WViewController *page) {
        _naviframe = makeNaviframe();
        EXPECT_TRUE(_naviframe->push(page));
        settle(0.1);
        std::vector<Elm_Object_Item *> rows;
        Evas_Object *list = page->getEvasObject();
        for (Elm_Object_Item *it = elm_genlist_first_item_get(list); it;
             it = elm_genlist_item_next_get(it)) {
            const char *style = elm_genlist_item_item_class_get(it)->item_style;
            if (strcmp(style, "padding"))
                rows.push_back(it);
        }
        return rows;
    }

    std::vector<std::string> labels(const std::vector<Elm_Object_Item *> &rows) {
        std::vector<std::string> out;
        for (Elm_Object_Item *row : rows)
            out.push_back(textOf(row, "elm.text"));
        return out;
    }

    // Toasts on screen; with hidden, also those hidden and not deleted.
    std::vector<Evas_Object *> visibleToasts(bool hidden = false) {
        std::vector<Evas_Object *> popups, toasts;
        Evas *canvas = evas_object_evas_get(_win);
        for (Evas_Object *o = evas_object_bottom_get(canvas); o; o = evas_object_above_get(o))
            evas_tree::collectByType(o, "elm_popup", &popups);
        for (Evas_Object *p : popups)
            if ((hidden || evas_object_visible_get(p)) &&
                !strcmp(elm_object_style_get(p), "toast/circle"))
                toasts.push_back(p);
        return toasts;
    }

    void tapTimes(Elm_Object_Item *item, int times) {
        for (int i = 0; i < times; ++i) {
            elm_genlist_item_show(item, ELM_GENLIST_ITEM_SCROLLTO_IN);
            settle(0.05);
            tapItem(item);
        }
        settle(0.05);
    }

    WNaviframeController *_naviframe = nullptr;

    bool developerOption() {
        int on = 0;
        return vconf_get_bool(kDeveloperOption, &on) == VCONF_OK && on;
    }
};

// Software model

TEST_F(PagesTest, SoftwareVersionIsTheBuildUnlessANonEmptyApprovalVersionReplacesIt) {
    const std::string build =
        R"({"system_info": {"platform": {"system/build.string": "M480-EU-3.2"}})";
    writeProfile(build + "}");
    EXPECT_EQ(StInfoSwModel::getInstance()->getSwVersionInfo(), "M480-EU-3.2");
    writeProfile(build + R"(, "csc": {"approval_version": ""}})");
    EXPECT_EQ(StInfoSwModel::getInstance()->getSwVersionInfo(), "M480-EU-3.2");
    writeProfile(build + R"(, "csc": {"approval_version": "M480-XM-3.2.0702"}})");
    EXPECT_EQ(StInfoSwModel::getInstance()->getSwVersionInfo(), "M480-XM-3.2.0702");
}

TEST_F(PagesTest, AnEmptySecurityPolicyVersionIsUnknown) {
    vconf_set_str("db/smack/spd_installed_policy_version", "");
    EXPECT_EQ(StInfoSwModel::getInstance()->getSecurityStatus(), kUnknown);
    vconf_set_str("db/smack/spd_installed_policy_version", "TSP-M480-7.1-r12");
    EXPECT_EQ(StInfoSwModel::getInstance()->getSecurityStatus(), "TSP-M480-7.1-r12");
}

// Security-platform model and rows

TEST_F(PagesTest, SecurityPlatformRowsShowTheirKeysAndUnknownForEachMissingOne) {
    writeProfile(vendorProfile(R"("tizen/feature/tessid.version": "3.9",
                                  "tizen/feature/tessid.vimo.version": "1<2 & 3")"));
    auto rows = pushAndList(new StInfoTessidViewController());
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(textOf(rows[0], "elm.text"), "Tessid version");
    const char *labels[] = {"Tessid version", "Tessid Tizen Wearable SDK", "Pelor for Tizen",
                            "VIMO"};
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(textOf(rows[i], "elm.text"), labels[i - 1]);
        // Nothing happens on a tap, and nothing stays highlighted.
        EXPECT_EQ(elm_genlist_item_select_mode_get(rows[i]), ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
    }
    EXPECT_EQ(textOf(rows[1], "elm.text.1"), "3.9");
    EXPECT_EQ(textOf(rows[2], "elm.text.1"), "Unknown");
    EXPECT_EQ(textOf(rows[3], "elm.text.1"), "Unknown");
    // A version is shown as it is, not read as markup.
    EXPECT_EQ(textOf(rows[4], "elm.text.1"), "1&lt;2 &amp; 3");
    EXPECT_EQ(textOf(rows[4], "elm.text.2"), "(none)");
}

// Battery model

TEST_F(PagesTest, RatedValueNeedsVoltageAndCurrentAndValuesAreCutAt31And15Characters) {
    const struct {
        const char *voltage, *current, *capacity, *rated, *shownCapacity;  // null: no key
    } cases[] = {
        {"3.85V", "300mA", "361mAh", "3.85V; 300mA", "361mAh"},
        {"3.85V", nullptr, nullptr, kUnknown, kUnknown},
        {nullptr, "300mA", nullptr, kUnknown, kUnknown},
        // "12345678901234; 123456789012345" is exactly 31 characters.
        {"12345678901234", "123456789012345", "123456789012345", "12345678901234; 123456789012345",
         "123456789012345"},
        {"12345678901234", "1234567890123456", "1234567890123456",
         "12345678901234; 123456789012345", "123456789012345"},
        {"3.85V", "300mA with a very long description", "361mAh (typical value)",
         "3.85V; 300mA with a very long d", "361mAh (typical"},
    };
    for (const auto &c : cases) {
        std::string keys;
        for (auto key : {std::make_pair("rated_voltage", c.voltage),
                         std::make_pair("rated_current", c.current),
                         std::make_pair("battery_capacity", c.capacity)})
            if (key.second)
                keys += std::string(keys.empty() ? "" : ", ") + "\"tizen/system/" + key.first +
                        "\": \"" + key.second + "\"";
        writeProfile(vendorProfile(keys));
        EXPECT_EQ(StInfoBatteryModel::getInstance()->getRatedInfo(), c.rated) << keys;
        EXPECT_EQ(StInfoBatteryModel::getInstance()->getBatteryCapacity(), c.shownCapacity);
    }
}

// Software page

class SoftwarePageTest : public PagesTest {
protected:
    void SetUp() override {
        PagesTest::SetUp();
        writeProfile(R"({"system_info": {"platform": {"system/build.string": "M480-EU-3.2",
                         "feature/platform.version": "6.0"}},
                         "packages": {"com.nerova.tessid.ravelclient": {}}})");
        vconf_set_bool(kDeveloperOption, 0);
        vconf_set_bool("db/setting/accessibility/tts", 0);
        unsetSetting("db/smack/spd_installed_policy_version");
        _rows = pushAndList(new StInfoSwViewController());
        ASSERT_EQ(_rows.size(), 6u);
    }

    Elm_Object_Item *platformRow() { return _rows[1]; }
    Elm_Object_Item *softwareRow() { return _rows[2]; }
    Elm_Object_Item *securityStatusRow() { return _rows[5]; }

    std::vector<Elm_Object_Item *> _rows;
};

TEST_F(SoftwarePageTest, RowsFollowTheProfileInOrder) {
    EXPECT_EQ(labels(_rows),
              (std::vector<std::string>{"Software information", "Tizen version", "Software version",
                                        "Tessid version", "Tessid Configure", "Security status"}));
    EXPECT_EQ(textOf(_rows[1], "elm.text.1"), "6.0");
    EXPECT_EQ(textOf(_rows[2], "elm.text.1"), "M480-EU-3.2");
    EXPECT_EQ(textOf(_rows[3], "elm.text.1"), "(none)");
    EXPECT_EQ(textOf(_rows[5], "elm.text.1"), "Unknown");
    // Without the client installed, no row for its settings.
    writeProfile("{}");
    EXPECT_EQ(labels(pushAndList(new StInfoSwViewController())),
              (std::vector<std::string>{"Software information", "Tizen version", "Software version",
                                        "Tessid version", "Security status"}));
}

TEST_F(SoftwarePageTest, FiveTapsInARowTurnDeveloperModeOnWithAToastEveryFifthTap) {
    tapTimes(softwareRow(), 4);
    EXPECT_FALSE(developerOption());
    EXPECT_TRUE(visibleToasts().empty());
    tapTimes(softwareRow(), 1);
    EXPECT_TRUE(developerOption());
    auto toasts = visibleToasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_STREQ(elm_object_part_text_get(toasts[0], "elm.text"), "developer mode turned on");
    EXPECT_FALSE(elm_genlist_item_selected_get(softwareRow())) << "not left highlighted";
    // The count starts again: the tenth tap writes the key again.
    vconf_set_bool(kDeveloperOption, 0);
    tapTimes(softwareRow(), 4);
    EXPECT_FALSE(developerOption());
    tapTimes(softwareRow(), 1);
    EXPECT_TRUE(developerOption());
}

TEST_F(SoftwarePageTest, OtherValueRowsStartTheCountAgainAndTheLinkRowsLeaveIt) {
    for (Elm_Object_Item *other : {platformRow(), securityStatusRow()}) {
        tapTimes(softwareRow(), 4);
        tapTimes(other, 1);
    }
    tapTimes(softwareRow(), 4);
    EXPECT_FALSE(developerOption());
    // The security-platform page opens and is left; the client's settings are launched.
    tapTimes(_rows[3], 1);
    ASSERT_EQ(_naviframe->getViews().size(), 2u);
    _naviframe->pop();
    settle(0.1);
    tapTimes(_rows[4], 1);
    StAppControlLauncher::getInstance()->unblockUi();
    EXPECT_FALSE(developerOption());
    tapTimes(softwareRow(), 1);
    EXPECT_TRUE(developerOption()) << "the fifth counted tap";
}

TEST_F(SoftwarePageTest, AFailedWriteIsLoggedAndTheToastStillShows) {
    writeProfile(
        R"({"faults": [{"call": "vconf_set_bool", "key": "db/setting/developer_option_state",
                                 "code": -1}]})");
    tapTimes(softwareRow(), 5);
    EXPECT_FALSE(developerOption());
    EXPECT_EQ(visibleToasts().size(), 1u);
    EXPECT_NE(logSinceStart().find("VCONFKEY_SETAPPL_DEVELOPER_OPTION_STATE set failed"),
              std::string::npos);
}

TEST_F(SoftwarePageTest, ToastStaysLongerWhileTheScreenReaderIsOn) {
    tapTimes(softwareRow(), 5);
    auto toasts = visibleToasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_DOUBLE_EQ(elm_popup_timeout_get(toasts[0]), 2.0);
    // It goes by itself, and is not kept hidden until the application ends.
    EXPECT_TRUE(runUntil([this] { return visibleToasts(true).empty(); }, 4.0));

    vconf_set_bool("db/setting/accessibility/tts", 1);
    tapTimes(softwareRow(), 5);
    toasts = visibleToasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_DOUBLE_EQ(elm_popup_timeout_get(toasts[0]), 8.0);

    // An unreadable screen-reader setting counts as off.
    unsetSetting("db/setting/accessibility/tts");
    EXPECT_DOUBLE_EQ(StInfoSwViewController::devModeToastTimeout(), 2.0);
}

// The About list

TEST_F(PagesTest, AboutListEntriesFollowTheCountryAndTheRetailKeys) {
    const std::vector<std::string> head = {"About Kesta",          "Device information",
                                           "Model number",         "Storage",
                                           "Software information", "Battery information"};
    const std::vector<std::string> links = {"Looking for this?", "Reset Kesta"};
    const struct {
        const char *countryIso, *country;
        int retail, demoUnit;
        bool regulatory, links;
    } cases[] = {
        {"GB", "GB", 0, 0, false, true},
        // The entry follows the ISO code; the licence wording (below) the country text.
        {"IN", "GB", 0, 0, true, true},
        {"GB", "IN", 0, 0, false, true},
        {"GB", "GB", 1, 0, false, false},
        {"GB", "GB", 0, 1, false, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.countryIso) + "/" + c.country + " retail " +
                     std::to_string(c.retail) + "/" + std::to_string(c.demoUnit));
        vconf_set_str("db/csc/country_iso", c.countryIso);
        vconf_set_str("db/csc/text_string_country", c.country);
        vconf_set_int("db/retailmode/enabled", c.retail);
        vconf_set_int("db/retailmode/RDU_V9/enabled", c.demoUnit);
        std::vector<std::string> expected = head;
        if (c.regulatory)
            expected.push_back("Regulatory information");
        for (const char *label : {"Open source licences", "Report diagnostic and usage info",
                                  "Nerova Tessid Privacy Notice", "Debugging"})
            expected.push_back(label);
        if (c.links)
            expected.insert(expected.end(), links.begin(), links.end());
        EXPECT_EQ(labels(pushAndList(new StInfoMainViewController())), expected);
        evas_object_del(_naviframe->getEvasObject());
    }
}

TEST_F(PagesTest, LicenceStepsAreNumberedAndWordedForTheCountryTextNotTheIsoCode) {
    for (bool china : {false, true}) {
        vconf_set_str("db/csc/text_string_country", china ? "CN" : "GB");
        vconf_set_str("db/csc/country_iso", china ? "GB" : "CN");
        _naviframe = makeNaviframe();
        auto *page = new StInfoOpenSrcLicenseViewController();
        ASSERT_TRUE(_naviframe->push(page));
        settle(0.1);
        std::vector<Evas_Object *> layouts;
        evas_tree::collectByType(page->getEvasObject(), "elm_layout", &layouts, true);
        std::string body;
        for (Evas_Object *layout : layouts)
            if (const char *text = elm_object_part_text_get(layout, "text.body"))
                body = text;
        std::vector<std::string> lines;
        for (size_t start = 0, end = 0; end != std::string::npos; start = end + 5) {
            end = body.find("<br/>", start);
            lines.push_back(body.substr(start, end - start));
        }
        ASSERT_EQ(lines.size(), 8u) << body;
        for (int step = 1; step <= 6; ++step)
            EXPECT_EQ(lines[step].rfind(std::to_string(step) + ". ", 0), 0u) << lines[step];
        EXPECT_NE(lines[6].find("&quot;sdb connect [your IP address]:26101&quot;"),
                  std::string::npos);
        EXPECT_NE(lines[7].find("sdb pull /usr/share/license.html c:\\OpenSource\\license.html"),
                  std::string::npos);
        for (int step : {1, 4, 5})
            EXPECT_NE(lines[step].find(china ? "WLAN" : "Wi-Fi"), std::string::npos) << lines[step];
        EXPECT_EQ(body.find(china ? "Wi-Fi" : "WLAN"), std::string::npos) << body;
        evas_object_del(_naviframe->getEvasObject());
    }
}

TEST_F(PagesTest, TheBezelTurnsTheAboutListAgainAfterEachPopupAndPage) {
    vconf_set_bool("db/setting/debug_mode", 0);
    vconf_set_bool("db/wms/user_agreement/errorlog", 0);
    auto rows = pushAndList(new StInfoMainViewController());
    Evas_Object *list = elm_object_item_widget_get(rows[0]);
    auto row = [&](const std::string &label) {
        for (Elm_Object_Item *r : rows)
            if (textOf(r, "elm.text") == label)
                return r;
        return static_cast<Elm_Object_Item *>(nullptr);
    };
    const struct {
        const char *row;
        const char *profile;  // the restricted popup needs the policy
    } opened[] = {
        {"Debugging", "{}"},
        {"Report diagnostic and usage info", "{}"},
        {"Debugging", R"({"policy": {"change_allowed": false}})"},
        {"Software information", "{}"},
    };
    for (const auto &o : opened) {
        SCOPED_TRACE(std::string(o.row) + " " + o.profile);
        writeProfile(o.profile);
        tapTimes(row(o.row), 1);
        EXPECT_TRUE(_naviframe->getViews().size() == 2 || _naviframe->getTopView()->getPopup())
            << "nothing opened";
        pressKey("Escape");
        ASSERT_TRUE(runUntil([&] {
            return _naviframe->getViews().size() == 1 && !_naviframe->getTopView()->getPopup();
        }));
        elm_genlist_item_show(rows[0], ELM_GENLIST_ITEM_SCROLLTO_TOP);
        settle(0.1);
        int before = centreRow(list);
        pressKey("Next");
        pressKey("Next");
        EXPECT_TRUE(runUntil([&] { return centreRow(list) == before + 2; }, 1.0));
    }
}

TEST_F(PagesTest, TheBezelScrollsTheRegulatoryAndLicencePages) {
    vconf_set_str("db/csc/country_iso", "IN");
    for (auto *page : std::vector<app_assist::WContentViewController *>{
             new StInfoRegulatoryInfoViewController(), new StInfoOpenSrcLicenseViewController()}) {
        _naviframe = makeNaviframe();
        ASSERT_TRUE(_naviframe->push(page));
        settle(0.1);
        Evas_Object *scroller = evas_tree::findByType(page->getEvasObject(), "elm_scroller");
        ASSERT_NE(scroller, nullptr);
        auto top = [scroller] {
            int x, y, w, h;
            elm_scroller_region_get(scroller, &x, &y, &w, &h);
            return y;
        };
        int before = top();
        pressKey("Next");
        EXPECT_TRUE(runUntil([&] { return top() > before; }, 1.0)) << page->getTitle();
        evas_object_del(_naviframe->getEvasObject());
    }
}

// Home key without a bus

TEST_F(PagesTest, HomeKeyHandlerWithoutABusStaysUnregisteredAndKeepsTheLibraryBalanced) {
    int before = eldbus_init();
    eldbus_shutdown();
    {
        StHomeKeyHandler handler;
        handler.unregisterHandler();  // never registered: nothing to do
        handler.setHomeKeyPressedCb([] {});
        EXPECT_FALSE(handler.registerHandler());
        // After a failure it may try again, and fails the same way.
        EXPECT_FALSE(handler.registerHandler());
    }
    int after = eldbus_init();
    eldbus_shutdown();
    EXPECT_EQ(after, before);
    EXPECT_EQ(count(logSinceStart(), "Failed to get dbus connection"), 2u);
    EXPECT_EQ(logSinceStart().find("Already registered!"), std::string::npos);
}
