// Every platform call the application makes, failing on a simulated watch while a person opens
// every screen: each leaves its log lines, shows its safe value and leaves every other cell as on
// a watch without faults. Failure points that touch different cells share one run.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

// A failing call, "call" or "call(key)". log: the lines it leaves, one a line, the failure's own
// first ("function > message" when the function matters, "/TAG: message" for the platform's
// own lines); "" when it is silent by design. touches: "cell=shows" for what it shows ("main+/row"
// is the main list's row under the popups too; "-" the cell is gone, "*" it is not checked),
// and the cells or services its line or value relies on; points that touch one thing in common
// never run together.
struct Point {
    const char *call;
    const char *log;
    const char *touches = "";
    char priority = 'E';
    int code = -5;
};

// clang-format off
const std::vector<Point> kPoints = {
    // The main list, its switches and its popups.
    {"system_info_get_platform_string(system/model_name)", "Setting - Model number do not get!! error!! [-5]", "main+/Model number=Unknown"},
    {"storage_get_internal_memory_size", "", "main+/Storage=Unknown"},
    // Until the change notification sets it, the switch shows off.
    {"vconf_get_bool(db/setting/debug_mode)", "Setting - USB debugging's info do not get!!!", "main/Debugging/check=false;debug/Debugging/check=false;debug-switch"},
    {"vconf_get_bool(db/wms/user_agreement/errorlog)", "Setting - report diagnostic not get!!!", "main/Report diagnostic and usage info/check=false;debug/Report diagnostic and usage info/check=false;consent/Report diagnostic and usage info/check=false;consent-switch"},
    {"vconf_notify_key_changed(db/setting/debug_mode)", "Register vconf notify key changed failed(VCONFKEY_SETAPPL_USB_DEBUG_MODE_BOOL)", "consent/Debugging/check=false;main2/Debugging/check=false;debug-switch"},
    {"vconf_notify_key_changed(db/wms/user_agreement/errorlog)", "Register vconf notify key changed failed(KEY_USER_AGREEMENT_ERROR_LOG)", "main2/Report diagnostic and usage info/check=false;consent-switch"},
    {"vconf_notify_key_changed(db/setting/update-service/auto_update_type)", "Register vconf notify key changed failed(VCONFKEY_AUTO_UPDATE_TYPE)"},
    {"vconf_set_bool(db/setting/debug_mode)", "Setting - USB debugging do not set!!!", "consent/Debugging/check=false;main2/Debugging/check=false;debug-switch"},
    {"vconf_set_bool(db/wms/user_agreement/errorlog)", "Setting - report diagnostic is not set!!!", "main2/Report diagnostic and usage info/check=false;consent-switch"},
    {"mdm_get_service", "[MDM] mdm_get_service() failed -1\n[MDM] mdm_get_service failed", "policy", 'E', -1},
    {"mdm_get_allow_usb_debugging", "", "policy"},
    {"mdm_register_policy_receiver", "", "policy"},
    {"tessid_mdm_platform_is_usb_debugging_change_allowed", "[MDM] tessid_mdm_platform_is_usb_debugging_change_allowed failed", "policy"},
    {"vconf_get_int(db/retailmode/enabled)", "VCONFKEY_RETAILMODE_ENABLED get error!!", "retail"},
    {"vconf_get_int(db/retailmode/RDU_V9/enabled)", "VCONFKEY_RETAILMODE_ENABLED_RDU_V9 get error!!", "retail"},
    {"vconf_get_str(db/csc/country_iso)", "", "main+/Regulatory information=-;regulatory/*=*"},
    {"vconf_get_str(db/csc/text_string_country)", "", "country"},
    {"nerova_log_manager_create", "nerova_log_manager_create failed - [-5]"},
    // The colour table then comes from the settings package's fixed directory: the platform
    // says so when it finds no file there.
    {"app_manager_get_shared_resource_path", "app_manager_get_shared_resource_path() failed!\n/UXT: colour table /usr/apps/com.nerova.quillset/shared/res/tables/setting_style_ChangeableColorInfo.xml cannot be opened", "colour"},
    {"uxt_theme_add_color_table", "", "colour"},
    // Without the resource directory there is no message catalogue: every text shows as its
    // string id. The layouts are missing; their pages and the popups still open, unlogged.
    {"app_get_resource_path", "", "*=*;consent/popup/text=-;licences/layout/text.title=-;licences/layout/text.body=-;regulatory/layout/text.title=-"},
    // The platform switches the process's language; the toolkit is not told, and texts
    // already shown stay as they were. Without its handler the application never hears of it.
    {"app_event_get_language", "app_event_get_language() failed!", "lang/title=*"},
    {"ui_app_add_event_handler", "ui_app_add_event_handler(2) failed: -5", "lang/title=*"},
    {"app_control_send_launch_request", "app_control ret error code= -5", "launch"},
    {"app_control_send_terminate_request", "app_control ret error code= -5", "launch", 'W', -5},
    {"app_control_create", "", "launch"},
    {"eext_circle_object_genlist_add", "", "circle"},
    {"eext_circle_object_scroller_add", "", "circle"},
    {"uxt_popup_set_rotary_event_enabled", "", "popup-rotary"},
    {"eext_rotary_object_event_activated_set", "", "circle"},
    // Usage records are fire-and-forget.
    {"nerova_log_manager_insert", ""},
    // Read only for one carrier model; this watch is another.
    {"vconf_get_str(db/csc/salescode)", "", "main/Model number"},

    // The device status page.
    {"tel_init", "tel init error!!\n_tapihandle is null\ngetImeiInfo > Getting misc version information is failed\ngetImeiSvInfo > Getting misc version information is failed\ntel_get_misc_me_version_sync() failed.\ntel_get_property_int failed [-2]", "status/Hardware version=Unknown;status/Kesta phone number=Unknown;status/IMEI=Unknown;status/IMEI SV=Unknown;status/ICCID=Unknown;status/IMS registration status=Off;tel"},
    {"tel_register_noti_event", "", "tel"},
    {"tel_get_misc_me_version_sync", "tel_get_misc_me_version_sync() failed.", "status/Hardware version=Unknown"},
    {"tel_get_misc_me_sn_sync", "getImeiInfo > Getting misc version information is failed\ngetImeiSvInfo > Getting misc version information is failed", "status/IMEI=Unknown;status/IMEI SV=Unknown"},
    {"tel_get_property_int", "tel_get_property_int failed [-5]", "status/IMS registration status=Off"},
    {"tel_get_sim_msisdn", "tel_get_sim_msisdn failed [-5]", "status/Kesta phone number=Unknown"},
    {"tel_request_sim_sync", "tel_request_sim_sync failed [-5]", "status/ICCID=Unknown"},
    {"vconf_get_str(db/setting/selected_num)", "MSISDN Number is empty", "status/Kesta phone number=Unknown"},
    {"vconf_get_str(db/menu_widget/regionformat)", "", "status/Kesta phone number=*"},
    {"vconf_get_str(db/csc/text_string_customer)", "Customer Code is empty!", "status/ICCID"},
    {"system_info_get_custom_int(tizen/feature/esim.phase)", "system_info_get_platform_int failed!!!!", "status/Kesta eSIM profile=-;status/eID=-;esim"},
    {"esim_init", "[ESIM] esim_init fail", "status/Kesta eSIM profile=None;status/eID=Unknown;esim"},
    {"esim_register_noti_event", "", "esim"},
    {"esim_get_profile_list", "[ESIM] esim_get_profile_list fail : fffffffb\nno enabled profile", "status/Kesta eSIM profile=None;status/ICCID=Unknown;esim"},
    {"esim_get_eid", "[ESIM] esim_get_eid fail : fffffffb", "status/eID=Unknown;esim"},
    {"vconf_get_int(db/setup_wizard/standalone)", "", "status/Kesta eSIM profile"},
    {"system_info_get_platform_bool(feature/network.telephony.service.cdma)", "system_info_get_platform_bool for cdma feature failed!!!", "status/IMEI"},
    {"csc_feature_get_bool(39)", "", "status/Hardware version=-"},
    {"csc_feature_get_bool(93)", "", "status/IMS registration status=-"},
    {"csc_feature_get_bool(30)", "", "status/Barcode number=-;status/Serial number=NV480Q0A1B2C,3546201"},
    {"wifi_manager_initialize", "wifi manager initialize failed! [-5]", "status/Wi-Fi MAC address=Unknown"},
    {"wifi_manager_get_mac_address", "Failed to get wifi mac address!", "status/Wi-Fi MAC address=Unknown"},
    // The adapter cannot answer without the stack; the address call's error decides.
    {"bt_initialize", "bluetooth initialization failed\nbt address : get bt address with error code:-29359871", "status/Bluetooth address=Unavailable"},
    {"bt_adapter_get_address", "bt address : get bt address with error code:-5", "status/Bluetooth address=Unavailable"},
    // Closing the radios again is not examined.
    {"bt_deinitialize", "", "status/Bluetooth address"},
    {"wifi_manager_deinitialize", "", "status/Wi-Fi MAC address"},

    // The software and security-platform pages.
    {"system_info_get_platform_string(system/build.string)", "Setting - Software Version name does not exist![-5]", "software/Software version=Unknown"},
    {"system_info_get_platform_string(feature/platform.version)", "Setting - Tizen Version name does not exist![-5]", "software/Tizen version=Unknown"},
    {"vconf_get_str(db/smack/spd_installed_policy_version)", "Vconf value error!", "software/Security status=Unknown"},
    {"csc_svc_config_chk_approval_version_exist", "", "software/Software version"},
    {"csc_svc_config_get_approval_version", "", "software/Software version"},
    {"package_manager_get_package_info", "", "software/Tessid Configure=-"},
    {"system_info_get_custom_string(tizen/feature/tessid.version)", "ret : -5", "security/Tessid version#2=Unknown"},
    {"system_info_get_custom_string(tizen/feature/mdm.version)", "ret : -5", "security/Tessid Tizen Wearable SDK=Unknown"},
    {"system_info_get_custom_string(tizen/feature/tessid.pelortizen.version)", "ret : -5", "security/Pelor for Tizen=Unknown"},
    {"system_info_get_custom_string(tizen/feature/tessid.vimo.version)", "ret : -5", "security/VIMO=Unknown"},
    // The battery page logs nothing: a missing key is a watch without that information.
    {"system_info_get_custom_string(tizen/system/rated_voltage)", "", "battery/Rated=Unknown"},
    {"system_info_get_custom_string(tizen/system/rated_current)", "", "battery/Rated=Unknown"},
    {"system_info_get_custom_string(tizen/system/battery_capacity)", "", "battery/Battery capacity=Unknown"},
};

// The screens a person opens, in order, named when dumped: main2 is the main list after the
// popups' OK, the unnamed step's second launch ends the first, lang is the watch in German.
const struct Step { const char *screen; const char *script; } kSteps[] = {
    {"main", "dump\n"},
    {"debug", "tap WDS_ST_MBODY_DEBUGGING_ABB\ndump\npress WDS_ST_BUTTON_OK_ABB\n"},
    {"consent", "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\ndump\npress WDS_ST_BUTTON_OK_ABB\n"},
    {"main2", "wait 250\ndump\n"},
    {"status", "tap WDS_ST_TMBODY_DEVICE_INFORMATION\nwait 300\ndump\nback\n"},
    {"software", "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\ndump\n"},
    {"security", "tap IDS_ST_MBODY_TESSID_VERSION\ndump\nback\nback\n"},
    {"battery", "tap WDS_ST_TMBODY_BATTERY_INFORMATION\ndump\nback\n"},
    {"licences", "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\ndump\nback\n"},
    {"regulatory", "tap WDS_ST_HEADER_REGULATORY_INFO_ABB\ndump\nback\n"},
    {"", "tap LDS_TESSID_POP_NEROVA_TESSID_PRIVACY_NOTICE_LEGALPHRASE\nwait 1100\ntap LDS_TESSID_POP_NEROVA_TESSID_PRIVACY_NOTICE_LEGALPHRASE\nwait 1100\n"},
    {"lang", "sim event language de\nwait 300\ndump\n"},
};
// clang-format on

std::vector<std::string> split(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

// What a point touches, as cell -> what it shows ("" where it only relies on the cell).
std::map<std::string, std::string> touched(const Point &point) {
    std::map<std::string, std::string> cells;
    for (const std::string &touch : split(point.touches, ';')) {
        std::vector<std::string> part = split(touch, '=');
        std::string shows = part.size() > 1 ? part[1] : "";
        if (part[0].rfind("main+/", 0) != 0)
            cells[part[0]] = shows;
        else
            for (const char *screen : {"main/", "debug/", "consent/", "main2/"})
                cells[screen + part[0].substr(6)] = shows;
    }
    return cells;
}

// Failure points that touch nothing in common run together (a row and its switch are one
// place; "*", every cell, meets everything).
// Each batch is what its points touch and the points.
std::vector<std::pair<std::set<std::string>, std::vector<const Point *>>> batches() {
    std::vector<std::pair<std::set<std::string>, std::vector<const Point *>>> packed;
    for (const Point &point : kPoints) {
        std::set<std::string> cells;
        for (const auto &cell : touched(point))
            cells.insert(cell.first.substr(0, cell.first.rfind("/check")));
        auto batch = std::find_if(packed.begin(), packed.end(), [&cells](const auto &batch) {
            return !batch.first.count("*") &&
                   std::none_of(cells.begin(), cells.end(),
                                [&](auto &c) { return c == "*" || batch.first.count(c); });
        });
        if (batch == packed.end())
            batch = packed.emplace(packed.end());
        batch->first.insert(cells.begin(), cells.end());
        batch->second.push_back(&point);
    }
    return packed;
}

// A screen as cells: "<screen>/<label>" the row's value, ".../check" its switch, ".../disabled"
// whether it is greyed, "<screen>/rows" the labels in order (a label that repeats gets "#2"),
// its page, layout parts, popup and toast. After the language change only the title matters.
void flatten(const std::string &screen, const json &dump,
             std::map<std::string, std::string> &cells) {
    std::map<std::string, int> seen;
    for (const auto &item : dump["items"]) {
        std::string label = item["texts"].value("elm.text", "");
        if (screen == "lang")
            return void(cells["lang/title"] = label);
        if (int n = ++seen[label]; n > 1)
            label += "#" + std::to_string(n);
        cells[screen + "/rows"] += label + "|";
        cells[screen + "/" + label] = item["texts"].value("elm.text.1", "");
        if (!item["check"].is_null())
            cells[screen + "/" + label + "/check"] = item["check"].dump();
        if (item.value("disabled", false))
            cells[screen + "/" + label + "/disabled"] = "true";
    }
    cells[screen + "/page"] = dump["page"].dump();
    cells[screen + "/toast"] = dump["toast"].dump();
    for (const char *part : {"layout", "popup"})
        for (auto &field : dump[part].items())
            if (dump[part].is_object() && !field.value().is_null())
                cells[screen + "/" + part + "/" + field.key()] = field.value().dump();
}

struct WatchRun {
    int status = -1;
    std::string errors, log;
    std::map<std::string, std::string> cells;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(WatchRun, status, errors, log, cells)

// The default watch, sold in India (so the regulatory page exists), with every optional status
// row and answers that arrive at once, its calls failing as faults says.
WatchRun runOnWatch(const json &faults, bool withRegulatory) {
    json profile = json::parse(readFile(SimulatedWatch::binDir() + "/../profiles/default.json"));
    profile["settings"]["db/csc/country_iso"] = "IN";
    profile["csc"]["features"] = {{"30", true}, {"39", true}, {"93", true}};
    profile["latency"] = {{"msisdn_ms", 0}, {"esim_profile_list_ms", 0}, {"esim_eid_ms", 0}};
    profile["faults"] = faults;
    std::string script;
    std::vector<std::string> screens;
    for (const Step &step : kSteps) {
        if (withRegulatory || std::string(step.screen) != "regulatory") {
            script += step.script;
            if (*step.screen)
                screens.push_back(step.screen);
        }
    }
    SimulatedWatch watch(profile.dump(2));
    SimulatedWatch::Result result = watch.drive(script);
    WatchRun run{result.status, result.errors, watch.platformLog(), {}};
    for (size_t i = 0; i < result.dumps.size() && i < screens.size(); ++i)
        flatten(screens[i], result.dumps[i], run.cells);
    if (result.dumps.size() != screens.size() && run.status == 0)
        run.status = 99;
    return run;
}

// The watch without faults, run once for all the test programs of one build: the first one to
// take the lock runs it, the others read what it found. Anything rebuilt runs it again.
const WatchRun &baseline() {
    static WatchRun run;
    static bool done = false;
    if (std::exchange(done, true))
        return run;
    std::string bin = SimulatedWatch::binDir(), dir = bin + "/..", stamp;
    for (const std::string &file :
         {bin + "/quillset-drive", bin + "/quillset-sim", bin + "/quillset-simd",
          dir + "/profiles/default.json", dir + "/res/locale/en/LC_MESSAGES/quillset.mo",
          std::string("/proc/self/exe")}) {
        struct stat st = {};
        stat(file.c_str(), &st);
        stamp += std::to_string(st.st_mtime) + "-";
    }
    int lock = open((dir + "/fault-matrix.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    flock(lock, LOCK_EX);
    json cached = json::parse(readFile(dir + "/fault-matrix-baseline.json"), nullptr, false);
    if (cached.is_object() && cached.value("stamp", "") == stamp)
        run = cached["run"].get<WatchRun>();
    else if ((run = runOnWatch(json::array(), true)).status == 0)
        std::ofstream(dir + "/fault-matrix-baseline.json")
            << json{{"stamp", stamp}, {"run", run}}.dump();
    close(lock);
    return run;
}

// A platform log's lines: the application's (W-SETTING, in the colour of their priority, and
// the framework's WAPP) as "P message" and "P function > message", the platform's as
// "P/TAG: message".
std::multiset<std::string> logLines(const std::string &log) {
    static const std::regex format(R"(\S+ (\w)/([\w-]+)\(\d+\): (?:\S+: (\w+)\(\d+\) > )?(.*))"),
        colour(R"(\x1b\[0;(31m\* Critical \* |35m|32m)(.*)\x1b\[0;m)");
    const std::map<std::string, std::string> colours = {
        {"E", "31m* Critical * "}, {"W", "35m"}, {"I", "32m"}};
    std::multiset<std::string> lines;
    std::smatch line, coloured;
    for (const std::string &text : split(log, '\n')) {
        if (!std::regex_match(text, line, format))
            continue;
        std::string priority = line[1], tag = line[2], message = line[4];
        if ((tag != "W-SETTING" && tag != "WAPP") || !line[3].matched) {
            lines.insert(priority + "/" + tag + ": " + message);
            continue;
        }
        if (tag == "W-SETTING" && std::regex_match(message, coloured, colour) &&
            colours.count(priority) && colours.at(priority) == coloured[1].str())
            message = coloured[2];
        lines.insert(priority + " " + message);
        lines.insert(priority + " " + line[3].str() + " > " + message);
    }
    return lines;
}

class FaultMatrix : public ::testing::TestWithParam<size_t> {};

}  // namespace

// The watch without faults shows every screen; every failure point meets each of them.
TEST(FaultMatrixBaseline, TheWatchWithoutFaultsShowsEveryScreen) {
    size_t screens = 0;
    for (const Step &step : kSteps)
        screens += *step.screen && step.screen != std::string("main2") &&
                   step.screen != std::string("lang");
    printf("fault matrix: %zu failure points x %zu screens = %zu (%zu runs of the application)\n",
           kPoints.size(), screens, kPoints.size() * screens, batches().size());
    const WatchRun &run = baseline();
    ASSERT_EQ(run.status, 0) << run.errors;
    for (const char *cell :
         {"main/Model number=QX-M480", "main2/Debugging/check=true",
          "main2/Report diagnostic and usage info/check=true",
          "status/eID=89000480000001000000012345678901", "status/Barcode number=3546201",
          "security/VIMO=1.4.2", "battery/Rated=3.85V; 300mA"})
        EXPECT_EQ(cell, split(cell, '=')[0] + "=" + run.cells.at(split(cell, '=')[0]));
    EXPECT_NE(run.cells.at("lang/title"), "About Kesta") << "the language event changes nothing";
    EXPECT_TRUE(run.cells.count("regulatory/layout/text.title"));
}

TEST_P(FaultMatrix, EachFailureIsLoggedShowsItsSafeValueAndLeavesTheRestAlone) {
    const WatchRun &base = baseline();
    ASSERT_EQ(base.status, 0) << base.errors;
    json faults = json::array();
    std::map<std::string, std::string> expected;
    std::multiset<std::string> logged;  // "P line", once for each failure that leaves it
    std::set<std::string> allowed;      // the application's lines among them, as "P message"
    const auto batch = batches().at(GetParam()).second;
    for (const Point *point : batch) {
        std::string call = point->call, priority(1, point->priority);
        size_t key = std::min(call.find('('), call.size());
        faults.push_back({{"call", call.substr(0, key)}, {"code", point->code}});
        if (key < call.size())
            faults.back()["key"] = call.substr(key + 1, call.size() - key - 2);
        printf("failing: %s\n", point->call);
        for (const auto &[cell, shows] : touched(*point))
            if (!shows.empty())
                expected[cell] = shows;
        for (const std::string &line : split(point->log, '\n')) {
            size_t arrow = line.find(" > ");
            logged.insert(priority + (line[0] == '/' ? "" : " ") + line);
            allowed.insert(priority + " " +
                           (arrow == std::string::npos ? line : line.substr(arrow + 3)));
        }
    }
    auto expectation = [&expected](const std::string &cell) -> std::string {
        if (expected.count(cell))
            return expected.at(cell);
        for (const auto &[pattern, shows] : expected)
            if (pattern.back() == '*' && cell.rfind(pattern.substr(0, pattern.size() - 1), 0) == 0)
                return shows;
        return "";
    };
    bool withRegulatory = expectation("main/Regulatory information") != "-";
    WatchRun run = runOnWatch(faults, withRegulatory);
    ASSERT_EQ(run.status, 0) << "the application did not carry on through every screen:\n"
                             << run.errors;

    // Every cell as on the watch without faults unless a failure changes it ("-" where there is
    // none); rows that a failure takes away leave the others in their order.
    std::map<std::string, std::string> wanted;
    for (const auto &[cell, shows] : base.cells) {
        std::string screen = cell.substr(0, cell.find('/')), want = expectation(cell);
        if (screen == "regulatory" && !withRegulatory)
            continue;
        wanted[cell] = want.empty() ? shows : want;
        if (cell == screen + "/rows" && want.empty()) {
            wanted[cell].clear();
            for (const std::string &label : split(shows, '|'))
                if (expectation(screen + "/" + label) != "-")
                    wanted[cell] += label + "|";
        }
    }
    for (const auto &[cell, shows] : run.cells)
        wanted.emplace(cell, expectation(cell) == "*" ? "*" : "-");
    for (const auto &[cell, want] : wanted) {
        auto got = run.cells.find(cell);
        if (want != "*") {
            EXPECT_EQ(got == run.cells.end() ? "-" : got->second, want) << cell;
        }
    }

    // Each failure's lines, as many times at least as failures share them, and no line of the
    // application's that neither a failure nor the watch without faults gives.
    std::multiset<std::string> lines = logLines(run.log), baseLines = logLines(base.log);
    for (const std::string &line : std::set<std::string>(logged.begin(), logged.end()))
        EXPECT_GE(lines.count(line), logged.count(line)) << line << " not logged:\n" << run.log;
    for (const std::string &line : std::set<std::string>(lines.begin(), lines.end()))
        if (line[1] == ' ' && line.find(" > ") == std::string::npos && !baseLines.count(line) &&
            !allowed.count(line))
            ADD_FAILURE() << "unexpected log line: " << line;
}

INSTANTIATE_TEST_SUITE_P(Batches, FaultMatrix, ::testing::Range<size_t>(0, batches().size()));
