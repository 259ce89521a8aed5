// The About list and its pages as a person sees them: the rows each kind of watch shows, each
// row's value read from its own source, what a tap on the debugging row does under each policy,
// the texts built from several parts, the bezel, and the developer-mode tap counter.

// Smart-object membership is asked through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1

#include <WNaviframeController.h>
#include <WPopupController.h>
#include <gtest/gtest.h>
#include <libintl.h>
#include <vconf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "DaemonLink.h"
#include "EvasTree.h"
#include "PlatformState.h"
#include "StAppControlLauncher.h"
#include "StInfoBatteryModel.h"
#include "StInfoBatteryViewController.h"
#include "StInfoMainViewController.h"
#include "StInfoModel.h"
#include "StInfoOpenSrcLicenseViewController.h"
#include "StInfoRegulatoryInfoViewController.h"
#include "StInfoStatusModel.h"
#include "StInfoStatusViewController.h"
#include "StInfoSwModel.h"
#include "StInfoSwViewController.h"
#include "sim_support.h"
#include "support/EflTestEnvironment.h"
#include "tessid/StInfoTessidViewController.h"

using app_assist::WNaviframeController;
using nlohmann::json;

namespace {

const char *const kUnknown = "WDS_LOGS_MBODY_UNKNOWN_ABB";
const char *const kDebugKey = "db/setting/debug_mode";
const char *const kDeveloperOption = "db/setting/developer_option_state";

// Removes a settings key, as on a watch that never had it.
void unsetSetting(const std::string &key) {
    std::remove((EflTestEnvironment::stateDir() + "/settings/" + key).c_str());
}

std::string vendorProfile(const std::string &vendorKeys) {
    return R"({"system_info": {"vendor": {)" + vendorKeys + "}}}";
}

bool setting(const char *key) {
    int on = 0;
    return vconf_get_bool(key, &on) == VCONF_OK && on;
}

// A watch on which every row shows: eSIM outside standalone set-up, the carrier features that
// add rows, the security client installed, sold in India and not in a shop. The fields of the
// records the pages read that no row shows hold values of their own too.
const char *const kEveryRow = R"({
    "system_info": {"platform": {"feature/network.telephony.service.cdma": false},
                    "vendor": {"tizen/feature/esim.phase": 1}},
    "telephony": {"modem": true, "sw_version": "M117-CP-0902", "esn": "80EA0117"},
    "csc": {"features": {"30": true, "39": true, "93": true}},
    "packages": {"com.nerova.tessid.ravelclient": {}},
    "policy": {"service": true, "allow_usb_debugging": 0, "change_allowed": true},
    "settings": {"db/setup_wizard/standalone": 0, "db/csc/country_iso": "IN",
                 "db/csc/text_string_country": "GB", "db/retailmode/enabled": 0,
                 "db/retailmode/RDU_V9/enabled": 0, "db/menu_widget/regionformat": "en_GB.UTF-8",
                 "db/setting/debug_mode": false, "db/wms/user_agreement/errorlog": false}})";

// The same watch with a value of its own for every source a row reads, where a row's value is
// made of several: blocks of 8192 bytes of which 300000 are available (1.71 GB of the fixed
// 4 GB in use), debugging on and the consent off, the profile in use among others, an old
// cached phone number that the SIM's answer replaces, a sales code that would split the ICCID
// (the customer code, which decides, does not), and the rated voltage and current.
const char *const kOwnValues = R"({
    "storage": {"block_size": 8192, "fragment_size": 1024, "total_blocks": 524288,
                "available_blocks": 300000, "free_blocks": 310000},
    "settings": {"db/setting/debug_mode": true, "db/setting/selected_num": "+447700900999",
                 "db/csc/text_string_customer": "XEU", "db/csc/salescode": "KTO"},
    "esim": {"profiles": [{"name": "Spare Line", "kind": 2, "state": 0},
                          {"name": "Data Only", "kind": 1, "state": 1},
                          {"name": "Lark Mobile", "kind": 2, "state": 1}]},
    "telephony": {"volte_enable": 1},
    "system_info": {"vendor": {"tizen/system/rated_voltage": "3.88V",
                               "tizen/system/rated_current": "315mA"}}})";

}  // namespace

class PagesTest : public EflTest {
protected:
    void TearDown() override {
        writeProfile("{}");
        unsetSetting(kDeveloperOption);
        EflTest::TearDown();
    }

    // The profile, and its settings written as seeding a watch would write them.
    static void useWatch(const json &profile) {
        writeProfile(profile.dump());
        writeSettings(profile.value("settings", json::object()));
    }

    static app_assist::WContentViewController *newPage(const std::string &page) {
        if (page == "about")
            return new StInfoMainViewController();
        if (page == "status")
            return new StInfoStatusViewController();
        if (page == "software")
            return new StInfoSwViewController();
        if (page == "tessid")
            return new StInfoTessidViewController();
        return new StInfoBatteryViewController();
    }

    // Pushes the page on a naviframe of its own, in place of the last one, and waits for every
    // answer the watch owes.
    void push(app_assist::WViewController *page) {
        if (_naviframe)
            evas_object_del(_naviframe->getEvasObject());
        _naviframe = makeNaviframe();
        EXPECT_TRUE(_naviframe->push(page));
        runUntil([] { return platform::repliesAwaited() == 0; });
        settle(0.1);
    }

    // The same for a list page; its rows.
    std::vector<Elm_Object_Item *> pushAndList(app_assist::WViewController *page) {
        push(page);
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

    // Closes every page, and ends the status model so that the next page starts it afresh.
    void closePages() {
        if (_naviframe)
            evas_object_del(_naviframe->getEvasObject());
        _naviframe = nullptr;
        settle(0.01);
        delete StInfoStatusModel::getInstance();
    }

    // What a row shows as its value; a switch row, what it says aloud and its position.
    static std::string shown(Elm_Object_Item *row) {
        const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(row);
        if (!itc->func.content_get)
            return textOf(row, "elm.text.1");
        textOf(row, "elm.text");  // the spoken text is set as the label is asked for
        Evas_Object *check = itc->func.content_get(elm_object_item_data_get(row),
                                                   elm_object_item_widget_get(row), "elm.icon");
        const char *spoken = elm_atspi_accessible_description_get(row);
        std::string out = std::string(spoken ? spoken : "(silent)") +
                          (check && elm_check_state_get(check) ? " (on)" : " (off)");
        evas_object_del(check);
        return out;
    }

    Elm_Object_Item *rowLabelled(const std::vector<Elm_Object_Item *> &rows,
                                 const std::string &label) {
        for (Elm_Object_Item *row : rows)
            if (textOf(row, "elm.text") == label)
                return row;
        ADD_FAILURE() << "no row " << label;
        return rows.front();
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
};

// Each row of each page shows its own value, on a watch where no value read appears twice: a
// row reading a neighbouring key, the right key in the other namespace or another field of the
// same record would show something else. Rows not in the table show no value; a switch shows
// what it says aloud and its position.
TEST_F(PagesTest, EveryRowShowsTheValueOfItsOwnSource) {
    // Where a row reads its value ("section|...|key" of the profile), the value held there, and
    // what the row shows when not that value; the rest is kOwnValues'.
    const struct Source {
        const char *page, *label, *path, *value, *shows = nullptr;
    } sources[] = {
        {"about", "Model number", "system_info|platform|system/model_name", "QX-W117"},
        {"about", "Storage", nullptr, nullptr, "1.71GB / 4.0GB"},
        {"about", "Report diagnostic and usage info", nullptr, nullptr, "Switch, Off (off)"},
        {"about", "Debugging", nullptr, nullptr, "Switch, On (on)"},
        {"status", "Kesta eSIM profile", nullptr, nullptr, "Lark Mobile"},
        {"status", "eID", "esim|eid", "89049032007008882600000000000117"},
        {"status", "Hardware version", "telephony|hw_version", "REV0.7"},
        {"status", "Kesta phone number", "sim|msisdn", "+447700900456", "+44 7700 900456"},
        {"status", "IMEI", "telephony|imei", "355480107000117"},
        {"status", "IMEI SV", "telephony|imei_sv", "17"},
        {"status", "ICCID", "sim|iccid", "8944110077000001174"},
        {"status", "IMS registration status", nullptr, nullptr, "On"},
        {"status", "PRL", "telephony|prl_version", "61407"},
        {"status", "ERI", "telephony|eri_version", "ERI-4"},
        {"status", "MEID", "telephony|meid", "A1000047000117"},
        {"status", "Wi-Fi MAC address", "wifi|mac_address", "a0:b1:c2:00:01:17"},
        {"status", "Bluetooth address", "bluetooth|address", "A0:B1:C2:00:01:18"},
        {"status", "Serial number", "deviced|serial", "NV117Q0A1B2C,3546117", "NV117Q0A1B2C"},
        {"status", "Barcode number", "deviced|serial", "NV117Q0A1B2C,3546117", "3546117"},
        {"software", "Tizen version", "system_info|platform|feature/platform.version", "6.5"},
        {"software", "Software version", "system_info|platform|system/build.string",
         "M117-EU-3.4.0902"},
        {"software", "Security status", "settings|db/smack/spd_installed_policy_version",
         "TSP-M117-7.4-r31"},
        {"tessid", "Tessid version", "system_info|vendor|tizen/feature/tessid.version", "3.11"},
        {"tessid", "Tessid Tizen Wearable SDK", "system_info|vendor|tizen/feature/mdm.version",
         "7.5"},
        {"tessid", "Pelor for Tizen", "system_info|vendor|tizen/feature/tessid.pelortizen.version",
         "2.2.3"},
        {"tessid", "VIMO", "system_info|vendor|tizen/feature/tessid.vimo.version", "1.5.9"},
        {"battery", "Rated", nullptr, nullptr, "3.88V; 315mA"},
        {"battery", "Battery capacity", "system_info|vendor|tizen/system/battery_capacity",
         "374mAh"},
    };
    simtest::RunningWatch watch;  // its device daemon answers with the serial number
    writeProfile("{}");
    ASSERT_TRUE(watch.start(EflTestEnvironment::stateDir()));
    json profile = json::parse(kEveryRow);
    profile.merge_patch(json::parse(kOwnValues));
    auto setPath = [&profile](const std::string &path, const char *value) {
        json *at = &profile;
        for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = path.find('|', start);
            at = &(*at)[path.substr(start, end - start)];
        }
        *at = value;
    };
    std::set<std::string> values;
    for (const Source &source : sources) {
        if (source.path)
            setPath(source.path, source.value);
        const char *shows = source.shows ? source.shows : source.value;
        EXPECT_TRUE(values.insert(shows).second) << "shown twice: " << shows;
    }
    std::set<std::string> seen;
    // A row shows the same on a CDMA watch, where the modem's rows are others; a value read
    // without error but empty shows as unknown, as a missing one does, on every kind of row (an
    // empty text id would look up the catalogue's header).
    for (const char *kind : {"GSM", "CDMA", "GSM, empty", "CDMA, empty"}) {
        bool cdma = kind[0] == 'C', empty = strstr(kind, "empty");
        profile["system_info"]["platform"]["feature/network.telephony.service.cdma"] = cdma;
        for (const Source &source : sources)
            if (empty && source.path)
                setPath(source.path, "");
        useWatch(profile);
        for (const char *page : {"about", "status", "software", "tessid", "battery"}) {
            auto rows = pushAndList(newPage(page));
            for (size_t i = 1; i < rows.size(); ++i) {
                std::string label = textOf(rows[i], "elm.text"), expected = "(none)";
                for (const Source &source : sources)
                    if (source.page == std::string(page) && label == source.label)
                        expected = empty && source.path ? "Unknown"
                                   : source.shows       ? source.shows
                                                        : source.value;
                EXPECT_EQ(shown(rows[i]), expected) << kind << ", " << page << ": " << label;
                seen.insert(std::string(page) + ": " + label);
            }
        }
        closePages();
    }
    for (const Source &source : sources)
        EXPECT_TRUE(seen.count(std::string(source.page) + ": " + source.label)) << source.label;
    platform::daemonLinkShutdown(1.0);
}

// Which rows each kind of watch shows, in order. The first line of each page shows every row;
// each other line changes one condition of it. Rows that only show a fact (model number,
// storage, the security-platform versions, the battery) take no tap.
TEST_F(PagesTest, EachKindOfWatchShowsItsRows) {
    const std::string info = "Device information|", esim = "Kesta eSIM profile|eID|",
                      hardware = "Hardware version|", phone = "Kesta phone number|",
                      gsm = "IMEI|IMEI SV|ICCID|", cdma = "PRL|ERI|MEID|",
                      ims = "IMS registration status|",
                      radios = "Wi-Fi MAC address|Bluetooth address|Serial number|",
                      barcode = "Barcode number|";
    const std::string head =
                          "About Kesta|Device information|Model number|Storage|"
                          "Software information|Battery information|",
                      regulatory = "Regulatory information|",
                      tail =
                          "Open source licences|Report diagnostic and usage info|"
                          "Nerova Tessid Privacy Notice|Debugging|",
                      links = "Looking for this?|Reset Kesta|";
    const std::string software =
        "Software information|Tizen version|Software version|"
        "Tessid version|";
    const struct {
        const char *page, *change;
        std::string rows;
    } lines[] = {
        {"status", "{}", info + esim + hardware + phone + gsm + ims + radios + barcode},
        {"status", R"({"system_info": {"vendor": {"tizen/feature/esim.phase": 2}}})",
         info + hardware + phone + gsm + ims + radios + barcode},
        {"status", R"({"system_info": {"vendor": {"tizen/feature/esim.phase": 0}}})",
         info + hardware + phone + gsm + ims + radios + barcode},
        {"status", R"({"settings": {"db/setup_wizard/standalone": 1}})",
         info + "eID|" + hardware + phone + gsm + ims + radios + barcode},
        {"status", R"({"csc": {"features": {"39": false}}})",
         info + esim + phone + gsm + ims + radios + barcode},
        {"status",
         R"({"system_info": {"platform": {"feature/network.telephony.service.cdma": true}}})",
         info + esim + hardware + phone + cdma + ims + radios + barcode},
        {"status", R"({"csc": {"features": {"93": false}}})",
         info + esim + hardware + phone + gsm + radios + barcode},
        {"status", R"({"csc": {"features": {"30": false}}})",
         info + esim + hardware + phone + gsm + ims + radios},
        {"status", R"({"settings": {"db/csc/text_string_country": "CN"}})",
         info + esim + hardware + phone + gsm + ims +
             "WLAN MAC address|Bluetooth address|Serial number|" + barcode},
        {"status", R"({"settings": {"db/csc/country_iso": "CN"}})",
         info + esim + hardware + phone + gsm + ims + radios + barcode},
        {"status", R"({"telephony": {"modem": false}})",
         info + esim + hardware + phone + gsm + ims + radios + barcode},
        {"about", "{}", head + regulatory + tail + links},
        {"about", R"({"settings": {"db/csc/country_iso": "GB"}})", head + tail + links},
        {"about",
         R"({"settings": {"db/csc/country_iso": "GB", "db/csc/text_string_country": "IN"}})",
         head + tail + links},
        {"about", R"({"settings": {"db/retailmode/enabled": 1}})", head + regulatory + tail},
        {"about", R"({"settings": {"db/retailmode/RDU_V9/enabled": 2}})", head + regulatory + tail},
        {"software", "{}", software + "Tessid Configure|Security status|"},
        {"software", R"({"packages": {"com.nerova.tessid.ravelclient": null}})",
         software + "Security status|"},
        {"software",
         R"({"packages": {"com.nerova.tessid.ravelclient": null,
                          "com.nerova.tessid.ravelclient.settings": {}}})",
         software + "Security status|"},
        {"tessid", "{}",
         "Tessid version|Tessid version|Tessid Tizen Wearable SDK|"
         "Pelor for Tizen|VIMO|"},
        {"battery", "{}", "Battery information|Rated|Battery capacity|"},
    };
    for (const auto &line : lines) {
        SCOPED_TRACE(std::string(line.page) + " " + line.change);
        json profile = json::parse(kEveryRow);
        profile.merge_patch(json::parse(line.change));
        useWatch(profile);
        std::string page = line.page, shownRows;
        auto rows = pushAndList(newPage(page));
        for (size_t i = 0; i < rows.size(); ++i) {
            std::string label = textOf(rows[i], "elm.text");
            shownRows += label + "|";
            bool fact = label == "Model number" || label == "Storage";
            bool displayOnly = i == 0 || fact || page == "tessid" || page == "battery";
            EXPECT_EQ(
                elm_genlist_item_select_mode_get(rows[i]) == ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY,
                displayOnly)
                << label;
            // The eSIM profile's name and the EID may be long: their values wrap.
            bool wraps = page == "status" && (label == "eID" || label == "Kesta eSIM profile");
            if (page == "status" && i > 0) {
                EXPECT_STREQ(elm_genlist_item_item_class_get(rows[i])->item_style,
                             wraps ? "2text/sub1.multiline" : "2text");
            }
        }
        EXPECT_EQ(shownRows, line.rows);
        closePages();
    }
}

// A tap on the debugging row under each device policy: the popup it opens (by its title, or its
// text when it has none), or where the switch stands after it. The first line confirms; each
// other changes one condition of it.
TEST_F(PagesTest, DebuggingRowFollowsTheDevicePolicy) {
    const char *const kConfirm = "Debugging";
    const char *const kRestricted = "Security policy restricts changing settings.";
    const struct {
        const char *change;
        bool disabled;
        const char *afterTap;
    } lines[] = {
        {"{}", false, kConfirm},
        {R"({"policy": {"allow_usb_debugging": 1}})", true, "off"},
        {R"({"policy": {"allow_usb_debugging": -1}})", false, kConfirm},
        // Without the policy service nothing is restricted.
        {R"({"policy": {"allow_usb_debugging": 1, "service": false}})", false, kConfirm},
        {R"({"policy": {"change_allowed": false}})", false, kRestricted},
        {R"({"policy": {"change_allowed": false}, "settings": {"db/setting/debug_mode": true}})",
         false, kRestricted},
        {R"({"policy": {"change_allowed": false, "service": false}})", false, kConfirm},
        {R"({"settings": {"db/setting/debug_mode": true}})", false, "off"},
    };
    for (const auto &line : lines) {
        SCOPED_TRACE(line.change);
        json profile = json::parse(kEveryRow);
        profile.merge_patch(json::parse(line.change));
        useWatch(profile);
        auto rows = pushAndList(new StInfoMainViewController());
        Elm_Object_Item *debugging = rowLabelled(rows, "Debugging");
        EXPECT_EQ(elm_object_item_disabled_get(debugging), line.disabled);
        tapTimes(debugging, 1);
        std::string after = setting(kDebugKey) ? "on" : "off";
        if (app_assist::WPopupController *popup = _naviframe->getTopView()->getPopup()) {
            const char *title = elm_object_part_text_get(popup->getEvasObject(), "title,text");
            after = title ? title : elm_object_text_get(popup->getEvasObject());
        }
        EXPECT_EQ(after, line.afterTap);
        closePages();
    }
}

// Texts made of several parts, whole, as they are shown and as a screen reader speaks them.
TEST_F(PagesTest, LicenceStepsAndTheConsentTextReadWhole) {
    auto licence = [](const char *network, const char *step4) {
        return std::string(
                   "Follow the steps below to view the open source licences:\n"
                   "1. Connect your computer to a ") +
               network +
               " network.\n"
               "2. Go to About Kesta in Settings, then turn on Debugging.\n"
               "3. Go to Settings > Connections > Bluetooth, then turn off Bluetooth.\n"
               "4. " +
               step4 + "\n5. Select the connected " + network +
               " network to check the IP address.\n"
               "6. Install the SDK on your computer to use the sdb command, then connect by "
               "entering \"sdb connect [your IP address]:26101\".\n"
               "Using sdb, download the /usr/share/license.html file to your computer by running "
               "cmd and entering \"sdb pull /usr/share/license.html c:\\OpenSource\\license.html\" "
               "into the input field.";
    };
    // The wording follows the sales country text, not its ISO code.
    const struct {
        const char *country, *iso;
        std::string body;
    } lines[] = {
        {"GB", "CN",
         licence("Wi-Fi",
                 "Go to Settings > Connections > Wi-Fi, then connect to the Wi-Fi "
                 "network that your computer is using.")},
        {"CN", "GB",
         licence("WLAN",
                 "Go to Settings > Connections > WLAN, then connect to the network that "
                 "your computer is using.")},
    };
    for (const auto &line : lines) {
        vconf_set_str("db/csc/text_string_country", line.country);
        vconf_set_str("db/csc/country_iso", line.iso);
        push(new StInfoOpenSrcLicenseViewController());
        Evas_Object *layout = nullptr;
        std::vector<Evas_Object *> layouts;
        evas_tree::collectByType(_naviframe->getTopView()->getEvasObject(), "elm_layout", &layouts,
                                 true);
        for (Evas_Object *candidate : layouts)
            if (elm_object_part_text_get(candidate, "text.body"))
                layout = candidate;
        ASSERT_NE(layout, nullptr);
        char *body = elm_entry_markup_to_utf8(elm_object_part_text_get(layout, "text.body"));
        EXPECT_EQ(body, line.body);
        free(body);
        auto spoken = [layout](const char *part) {
            Evas_Object *access = elm_access_object_get(
                edje_object_part_object_get(elm_layout_edje_get(layout), part));
            const char *text = access ? elm_atspi_accessible_description_get(access) : nullptr;
            return std::string(text ? text : "(silent)");
        };
        EXPECT_EQ(spoken("text.title"), "Open source licences");
        EXPECT_EQ(spoken("text.body"), line.body);
    }

    // The consent: its first paragraph alone, the other three on the next line.
    auto paragraph = [](int n) {
        std::string id = "IDS_ST_BODY_CONSENT_TO_PROVIDE_DIAGNOSTIC_AND_USAGE_DATA_P" +
                         std::to_string(n) + "_WC1_LEGALPHRASE";
        return std::string(dgettext("quillset", id.c_str()));
    };
    std::string consent =
        paragraph(1) + "\n" + paragraph(2) + " " + paragraph(3) + " " + paragraph(4);
    ASSERT_EQ(consent.rfind("I agree that Nerova may collect", 0), 0u) << "in English";
    vconf_set_bool("db/wms/user_agreement/errorlog", 0);
    auto rows = pushAndList(new StInfoMainViewController());
    tapTimes(rowLabelled(rows, "Report diagnostic and usage info"), 1);
    app_assist::WPopupController *popup = _naviframe->getTopView()->getPopup();
    ASSERT_NE(popup, nullptr);
    Evas_Object *content = popup->getContentObject();
    char *text = elm_entry_markup_to_utf8(elm_object_part_text_get(content, "elm.text"));
    EXPECT_EQ(text, consent);
    free(text);
    Evas_Object *access = elm_access_object_get(
        edje_object_part_object_get(elm_layout_edje_get(content), "elm.text"));
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(elm_atspi_accessible_description_get(access), consent);
}

// The model number's letter for its carriers: each sales code of the one model that has them.
TEST_F(PagesTest, ModelNumberGainsTheCarrierLetterOnlyForItsModel) {
    const struct {
        const char *model, *salesCode, *shown;  // null: no sales code
    } lines[] = {
        {"QX-M480", "SKC", "QX-M480S"}, {"QX-M480", "SKO", "QX-M480S"},
        {"QX-M480", "KTC", "QX-M480K"}, {"QX-M480", "KTO", "QX-M480K"},
        {"QX-M480", "LUC", "QX-M480L"}, {"QX-M480", "LUO", "QX-M480L"},
        {"QX-M480", "kto", "QX-M480"},  {"QX-M480", "XEU", "QX-M480"},
        {"QX-M480", "", "QX-M480"},     {"QX-M480", nullptr, "QX-M480"},
        {"QX-M490", "KTO", "QX-M490"},  {"QX-M4800", "KTO", "QX-M4800"},
    };
    for (const auto &line : lines) {
        writeProfile(std::string(R"({"system_info": {"platform": {"system/model_name": ")") +
                     line.model + "\"}}}");
        if (line.salesCode)
            vconf_set_str("db/csc/salescode", line.salesCode);
        else
            unsetSetting("db/csc/salescode");
        // The customer code, a neighbouring key, never decides.
        vconf_set_str("db/csc/text_string_customer", "SKC");
        EXPECT_EQ(StInfoModel::getInstance()->getSystemInfoModel(), line.shown)
            << line.model << " " << (line.salesCode ? line.salesCode : "(none)");
    }
}

// Software model

// The approval version replaces the build only when the service says it has one and it is not
// empty.
TEST_F(PagesTest, SoftwareVersionIsTheBuildUnlessANonEmptyApprovalVersionReplacesIt) {
    const char *const build =
        R"("system_info": {"platform": {"system/build.string": "M480-EU-3.2"}})";
    const struct {
        const char *rest, *shown;
    } lines[] = {
        {R"("csc": {"approval_version": "M480-XM-3.2.0702"})", "M480-XM-3.2.0702"},
        {R"("csc": {})", "M480-EU-3.2"},
        {R"("csc": {"approval_version": ""})", "M480-EU-3.2"},
        {R"("csc": {"approval_version": "M480-XM-3.2.0702"}, "faults": [
             {"call": "csc_svc_config_chk_approval_version_exist", "code": 0}])",
         "M480-EU-3.2"},
    };
    for (const auto &line : lines) {
        writeProfile(std::string("{") + build + ", " + line.rest + "}");
        EXPECT_EQ(StInfoSwModel::getInstance()->getSwVersionInfo(), line.shown) << line.rest;
    }
}

// Battery model

TEST_F(PagesTest, RatedValueNeedsVoltageAndCurrentAndValuesAreCutAt31And15Characters) {
    const struct {
        const char *voltage, *current, *capacity, *rated, *shownCapacity;  // null: no key
    } cases[] = {
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
        writeProfile(R"({"packages": {"com.nerova.tessid.ravelclient": {}}})");
        vconf_set_bool(kDeveloperOption, 0);
        vconf_set_bool("db/setting/accessibility/tts", 0);
        _rows = pushAndList(new StInfoSwViewController());
        ASSERT_EQ(_rows.size(), 6u);
    }

    Elm_Object_Item *softwareRow() { return _rows[2]; }

    std::vector<Elm_Object_Item *> _rows;
};

// The taps after which developer mode turned on, counted from 1. S is the software version, P
// the platform version, Z the security status, T the security-platform versions (opened and
// left), C the security client's settings (launched). Every fifth software-version tap in a row
// turns it on; a tap on another value row starts the count again, a tap on a link row does not.
TEST_F(SoftwarePageTest, EveryFifthSoftwareVersionTapInARowTurnsDeveloperModeOn) {
    const struct {
        const char *taps, *turnedOn;
    } lines[] = {
        {"SSSS", ""},   {"SSSSS", "5 "},  {"SSSSSSSSSS", "5 10 "}, {"SSSSPSSSSS", "10 "},
        {"SSSSZS", ""}, {"SSSSTS", "6 "}, {"SSSSCS", "6 "},
    };
    for (const auto &line : lines) {
        SCOPED_TRACE(line.taps);
        _rows = pushAndList(new StInfoSwViewController());
        std::string turnedOn;
        for (int i = 0; line.taps[i]; ++i) {
            vconf_set_bool(kDeveloperOption, 0);
            tapTimes(_rows[std::string(" PSTCZ").find(line.taps[i])], 1);
            if (line.taps[i] == 'T') {
                _naviframe->pop();
                settle(0.1);
            }
            StAppControlLauncher::getInstance()->unblockUi();
            if (setting(kDeveloperOption))
                turnedOn += std::to_string(i + 1) + " ";
        }
        EXPECT_EQ(turnedOn, line.turnedOn);
    }
    auto toasts = visibleToasts();
    ASSERT_FALSE(toasts.empty());
    EXPECT_STREQ(elm_object_part_text_get(toasts[0], "elm.text"), "developer mode turned on");
    EXPECT_FALSE(elm_genlist_item_selected_get(softwareRow())) << "not left highlighted";
}

TEST_F(SoftwarePageTest, AFailedWriteIsLoggedAndTheToastStillShows) {
    writeProfile(
        R"({"faults": [{"call": "vconf_set_bool", "key": "db/setting/developer_option_state",
                                 "code": -1}]})");
    tapTimes(softwareRow(), 5);
    EXPECT_FALSE(setting(kDeveloperOption));
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

// The bezel

TEST_F(PagesTest, TheBezelTurnsTheAboutListAgainAfterEachPopupAndPage) {
    vconf_set_bool(kDebugKey, 0);
    vconf_set_bool("db/wms/user_agreement/errorlog", 0);
    auto rows = pushAndList(new StInfoMainViewController());
    Evas_Object *list = elm_object_item_widget_get(rows[0]);
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
        tapTimes(rowLabelled(rows, o.row), 1);
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
        _naviframe = nullptr;
    }
}
