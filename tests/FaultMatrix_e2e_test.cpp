// The fault matrix: every platform call the application makes, failing on a simulated watch
// while a person opens every screen. Each failure must leave its log line (message and
// priority), show its safe value where it shows one, and leave every other row as it is on a
// watch without faults. Failure points that touch different rows share one run of the
// application; the packing below keeps those that could hide each other apart.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const char *const kUnknown = "Unknown";
const char *const kAbsent = "(absent)";  // the row or part is not on the screen
const char *const kAny = "(any)";        // whatever shows there is not checked
const std::string kConsent = "Report diagnostic and usage info";

// What a failure shows: the cell (screen/row[/check], see flatten()) and its text there.
struct Effect {
    std::string cell;
    std::string shows;
};

struct FailurePoint {
    const char *call;
    const char *key;  // null: the call fails for every key
    int code;
    char priority;  // of the log line: 'E' error, 'W' warning
    // Its log lines, one a line, the first the failure's own, the others those of the callers
    // that then fail in turn; null: the failure is silent by design.
    const char *log;
    std::vector<Effect> effects = {};
    // Cells or services whose normal behaviour this point relies on for its log line or its
    // safe value; points that share one are never run together.
    std::vector<std::string> involves = {};
    bool alone = false;
};

// The screens a person opens, in the order of the script, with the commands that open,
// capture and leave each. The consent and debugging popups are confirmed, so the main list is
// looked at again after them.
struct Step {
    const char *screen;
    const char *script;
    bool counted;  // a screen of its own (main2 is the main list again)
};

const Step kSteps[] = {
    {"main", "dump\n", true},
    {"debug", "tap WDS_ST_MBODY_DEBUGGING_ABB\ndump\npress WDS_ST_BUTTON_OK_ABB\n", true},
    {"consent",
     "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\ndump\npress WDS_ST_BUTTON_OK_ABB\n",
     true},
    {"main2", "wait 250\ndump\n", false},
    {"status", "tap WDS_ST_TMBODY_DEVICE_INFORMATION\nwait 300\ndump\nback\n", true},
    {"software", "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\ndump\n", true},
    {"security", "tap IDS_ST_MBODY_TESSID_VERSION\ndump\nback\nback\n", true},
    {"battery", "tap WDS_ST_TMBODY_BATTERY_INFORMATION\ndump\nback\n", true},
    {"licences", "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\ndump\nback\n", true},
    {"regulatory", "tap WDS_ST_HEADER_REGULATORY_INFO_ABB\ndump\nback\n", true},
    // Two launches: the second ends the first. Then the watch changes its language.
    {"launch",
     "tap LDS_TESSID_POP_NEROVA_TESSID_PRIVACY_NOTICE_LEGALPHRASE\nwait 1100\n"
     "tap LDS_TESSID_POP_NEROVA_TESSID_PRIVACY_NOTICE_LEGALPHRASE\nwait 1100\n",
     false},
    {"lang", "sim event language de\nwait 300\ndump\n", false},
};

const std::vector<FailurePoint> &failurePoints() {
    static const std::vector<FailurePoint> points = {
        // The main list, its switches and its popups.
        {"system_info_get_platform_string",
         "system/model_name",
         -5,
         'E',
         "Setting - Model number do not get!! error!! [-5]",
         {{"main+/Model number", kUnknown}}},
        {"storage_get_internal_memory_size",
         nullptr,
         -5,
         'E',
         nullptr,
         {{"main+/Storage", kUnknown}}},
        {"vconf_get_bool",
         "db/setting/debug_mode",
         -5,
         'E',
         "Setting - USB debugging's info do not get!!!",
         // Until the change notification sets it, the switch shows off.
         {{"main/Debugging/check", "false"}, {"debug/Debugging/check", "false"}},
         {"debug-switch"}},
        {"vconf_get_bool",
         "db/wms/user_agreement/errorlog",
         -5,
         'E',
         "Setting - report diagnostic not get!!!",
         {{"main/" + kConsent + "/check", "false"},
          {"debug/" + kConsent + "/check", "false"},
          {"consent/" + kConsent + "/check", "false"}},
         {"consent-switch"}},
        {"vconf_notify_key_changed",
         "db/setting/debug_mode",
         -5,
         'E',
         "Register vconf notify key changed failed(VCONFKEY_SETAPPL_USB_DEBUG_MODE_BOOL)",
         {{"consent/Debugging/check", "false"}, {"main2/Debugging/check", "false"}},
         {"debug-switch"}},
        {"vconf_notify_key_changed",
         "db/wms/user_agreement/errorlog",
         -5,
         'E',
         "Register vconf notify key changed failed(KEY_USER_AGREEMENT_ERROR_LOG)",
         {{"main2/" + kConsent + "/check", "false"}},
         {"consent-switch"}},
        {"vconf_notify_key_changed",
         "db/setting/update-service/auto_update_type",
         -5,
         'E',
         "Register vconf notify key changed failed(VCONFKEY_AUTO_UPDATE_TYPE)",
         {}},
        {"vconf_set_bool",
         "db/setting/debug_mode",
         -5,
         'E',
         "Setting - USB debugging do not set!!!",
         {{"consent/Debugging/check", "false"}, {"main2/Debugging/check", "false"}},
         {"debug-switch"}},
        {"vconf_set_bool",
         "db/wms/user_agreement/errorlog",
         -5,
         'E',
         "Setting - report diagnostic is not set!!!",
         {{"main2/" + kConsent + "/check", "false"}},
         {"consent-switch"}},
        {"mdm_get_service",
         nullptr,
         -1,
         'E',
         "[MDM] mdm_get_service() failed -1\n[MDM] mdm_get_service failed",
         {},
         {"policy"}},
        {"mdm_get_allow_usb_debugging", nullptr, -5, 'E', nullptr, {}, {"policy"}},
        {"mdm_register_policy_receiver", nullptr, -5, 'E', nullptr, {}, {"policy"}},
        {"tessid_mdm_platform_is_usb_debugging_change_allowed",
         nullptr,
         -5,
         'E',
         "[MDM] tessid_mdm_platform_is_usb_debugging_change_allowed failed",
         {},
         {"policy"}},
        {"vconf_get_int",
         "db/retailmode/enabled",
         -5,
         'E',
         "VCONFKEY_RETAILMODE_ENABLED get error!!",
         {},
         {"retail"}},
        {"vconf_get_int",
         "db/retailmode/RDU_V9/enabled",
         -5,
         'E',
         "VCONFKEY_RETAILMODE_ENABLED_RDU_V9 get error!!",
         {},
         {"retail"}},
        {"vconf_get_str",
         "db/csc/country_iso",
         -5,
         'E',
         nullptr,
         {{"main+/Regulatory information", kAbsent}, {"regulatory/*", kAny}}},
        {"vconf_get_str", "db/csc/text_string_country", -5, 'E', nullptr, {}, {"country"}},
        {"nerova_log_manager_create",
         nullptr,
         -5,
         'E',
         "nerova_log_manager_create failed - [-5]",
         {}},
        {"app_manager_get_shared_resource_path",
         nullptr,
         -5,
         'E',
         "app_manager_get_shared_resource_path() failed!",
         {},
         {"colour"}},
        {"uxt_theme_add_color_table", nullptr, -5, 'E', nullptr, {}, {"colour"}},
        // Without the resource directory there is no message catalogue: every text shows as
        // its string id. The layouts are missing; their pages and the popups still open, and
        // none of it is logged.
        {"app_get_resource_path",
         nullptr,
         -5,
         'E',
         nullptr,
         {{"*", kAny},
          {"consent/popup/text", kAbsent},
          {"licences/layout/text.title", kAbsent},
          {"licences/layout/text.body", kAbsent},
          {"regulatory/layout/text.title", kAbsent}},
         {},
         true},
        // The platform switches the process's language; the toolkit is not told, and texts
        // already shown stay as they were.
        {"app_event_get_language",
         nullptr,
         -5,
         'E',
         "app_event_get_language() failed!",
         {{"lang/title", kAny}}},
        // Without its handler the application never hears of the new language.
        {"ui_app_add_event_handler",
         nullptr,
         -5,
         'E',
         "ui_app_add_event_handler(2) failed: -5",
         {{"lang/title", kAny}}},
        {"app_control_send_launch_request",
         nullptr,
         -5,
         'E',
         "app_control ret error code= -5",
         {},
         {"launch"}},
        {"app_control_send_terminate_request",
         nullptr,
         -5,
         'W',
         "app_control ret error code= -5",
         {},
         {"launch"}},
        {"app_control_create", nullptr, -5, 'E', nullptr, {}, {"launch"}},
        {"eext_circle_object_genlist_add", nullptr, -5, 'E', nullptr, {}, {"circle"}},
        {"eext_circle_object_scroller_add", nullptr, -5, 'E', nullptr, {}, {"circle"}},
        {"uxt_popup_set_rotary_event_enabled", nullptr, -5, 'E', nullptr, {}, {"popup-rotary"}},
        {"eext_rotary_object_event_activated_set", nullptr, -5, 'E', nullptr, {}, {"circle"}},
        // Usage records are fire-and-forget.
        {"nerova_log_manager_insert", nullptr, -5, 'E', nullptr, {}},
        // Read only for one carrier model; this watch is another.
        {"vconf_get_str", "db/csc/salescode", -5, 'E', nullptr, {}, {"main/Model number"}},

        // The device status page.
        {"tel_init",
         nullptr,
         -5,
         'E',
         "tel init error!!\n_tapihandle is null\nGetting misc version information is failed\n"
         "tel_get_misc_me_version_sync() failed.\ntel_get_property_int failed [-2]",
         {{"status/Hardware version", kUnknown},
          {"status/Kesta phone number", kUnknown},
          {"status/IMEI", kUnknown},
          {"status/IMEI SV", kUnknown},
          {"status/ICCID", kUnknown},
          {"status/IMS registration status", "Off"}},
         {"tel"}},
        {"tel_register_noti_event", nullptr, -5, 'E', nullptr, {}, {"tel"}},
        {"tel_get_misc_me_version_sync",
         nullptr,
         -5,
         'E',
         "tel_get_misc_me_version_sync() failed.",
         {{"status/Hardware version", kUnknown}}},
        {"tel_get_misc_me_sn_sync",
         nullptr,
         -5,
         'E',
         "Getting misc version information is failed",
         {{"status/IMEI", kUnknown}, {"status/IMEI SV", kUnknown}}},
        {"tel_get_property_int",
         nullptr,
         -5,
         'E',
         "tel_get_property_int failed [-5]",
         {{"status/IMS registration status", "Off"}}},
        {"tel_get_sim_msisdn",
         nullptr,
         -5,
         'E',
         "tel_get_sim_msisdn failed [-5]",
         {{"status/Kesta phone number", kUnknown}}},
        {"tel_request_sim_sync",
         nullptr,
         -5,
         'E',
         "tel_request_sim_sync failed [-5]",
         {{"status/ICCID", kUnknown}}},
        {"vconf_get_str",
         "db/setting/selected_num",
         -5,
         'E',
         "MSISDN Number is empty",
         {{"status/Kesta phone number", kUnknown}}},
        {"vconf_get_str",
         "db/menu_widget/regionformat",
         -5,
         'E',
         nullptr,
         {{"status/Kesta phone number", kAny}}},
        {"vconf_get_str",
         "db/csc/text_string_customer",
         -5,
         'E',
         "Customer Code is empty!",
         {},
         {"status/ICCID"}},
        {"system_info_get_custom_int",
         "tizen/feature/esim.phase",
         -5,
         'E',
         "system_info_get_platform_int failed!!!!",
         {{"status/Kesta eSIM profile", kAbsent}, {"status/eID", kAbsent}},
         {"esim"}},
        {"esim_init",
         nullptr,
         -5,
         'E',
         "[ESIM] esim_init fail",
         {{"status/Kesta eSIM profile", "None"}, {"status/eID", kUnknown}},
         {"esim"}},
        {"esim_register_noti_event", nullptr, -5, 'E', nullptr, {}, {"esim"}},
        {"esim_get_profile_list",
         nullptr,
         -5,
         'E',
         "[ESIM] esim_get_profile_list fail : fffffffb",
         {{"status/Kesta eSIM profile", "None"}, {"status/ICCID", kUnknown}},
         {"esim"}},
        {"esim_get_eid",
         nullptr,
         -5,
         'E',
         "[ESIM] esim_get_eid fail : fffffffb",
         {{"status/eID", kUnknown}},
         {"esim"}},
        {"vconf_get_int",
         "db/setup_wizard/standalone",
         -5,
         'E',
         nullptr,
         {},
         {"status/Kesta eSIM profile"}},
        {"system_info_get_platform_bool",
         "feature/network.telephony.service.cdma",
         -5,
         'E',
         "system_info_get_platform_bool for cdma feature failed!!!",
         {},
         {"status/IMEI"}},
        {"csc_feature_get_bool", "39", -5, 'E', nullptr, {{"status/Hardware version", kAbsent}}},
        {"csc_feature_get_bool",
         "93",
         -5,
         'E',
         nullptr,
         {{"status/IMS registration status", kAbsent}}},
        {"csc_feature_get_bool",
         "30",
         -5,
         'E',
         nullptr,
         {{"status/Barcode number", kAbsent}, {"status/Serial number", "NV480Q0A1B2C,3546201"}}},
        {"wifi_manager_initialize",
         nullptr,
         -5,
         'E',
         "wifi manager initialize failed! [-5]",
         {{"status/Wi-Fi MAC address", kUnknown}}},
        {"wifi_manager_get_mac_address",
         nullptr,
         -5,
         'E',
         "Failed to get wifi mac address!",
         {{"status/Wi-Fi MAC address", kUnknown}}},
        // The adapter cannot answer without the stack; the address call's error decides.
        {"bt_initialize",
         nullptr,
         -5,
         'E',
         "bluetooth initialization failed\nbt address : get bt address with error code:-29359871",
         {{"status/Bluetooth address", "Unavailable"}}},
        {"bt_adapter_get_address",
         nullptr,
         -5,
         'E',
         "bt address : get bt address with error code:-5",
         {{"status/Bluetooth address", "Unavailable"}}},
        // Closing the radios again is not examined.
        {"bt_deinitialize", nullptr, -5, 'E', nullptr, {}, {"status/Bluetooth address"}},
        {"wifi_manager_deinitialize", nullptr, -5, 'E', nullptr, {}, {"status/Wi-Fi MAC address"}},

        // The software and security-platform pages.
        {"system_info_get_platform_string",
         "system/build.string",
         -5,
         'E',
         "Setting - Software Version name does not exist![-5]",
         {{"software/Software version", kUnknown}}},
        {"system_info_get_platform_string",
         "feature/platform.version",
         -5,
         'E',
         "Setting - Tizen Version name does not exist![-5]",
         {{"software/Tizen version", kUnknown}}},
        {"vconf_get_str",
         "db/smack/spd_installed_policy_version",
         -5,
         'E',
         "Vconf value error!",
         {{"software/Security status", kUnknown}}},
        {"csc_svc_config_chk_approval_version_exist",
         nullptr,
         -5,
         'E',
         nullptr,
         {},
         {"software/Software version"}},
        {"csc_svc_config_get_approval_version",
         nullptr,
         -5,
         'E',
         nullptr,
         {},
         {"software/Software version"}},
        {"package_manager_get_package_info",
         nullptr,
         -5,
         'E',
         nullptr,
         {{"software/Tessid Configure", kAbsent}}},
        {"system_info_get_custom_string",
         "tizen/feature/tessid.version",
         -5,
         'E',
         "ret : -5",
         {{"security/Tessid version#2", kUnknown}}},
        {"system_info_get_custom_string",
         "tizen/feature/mdm.version",
         -5,
         'E',
         "ret : -5",
         {{"security/Tessid Tizen Wearable SDK", kUnknown}}},
        {"system_info_get_custom_string",
         "tizen/feature/tessid.pelortizen.version",
         -5,
         'E',
         "ret : -5",
         {{"security/Pelor for Tizen", kUnknown}}},
        {"system_info_get_custom_string",
         "tizen/feature/tessid.vimo.version",
         -5,
         'E',
         "ret : -5",
         {{"security/VIMO", kUnknown}}},

        // The battery page logs nothing: a missing key is a watch without that information.
        {"system_info_get_custom_string",
         "tizen/system/rated_voltage",
         -5,
         'E',
         nullptr,
         {{"battery/Rated", kUnknown}}},
        {"system_info_get_custom_string",
         "tizen/system/rated_current",
         -5,
         'E',
         nullptr,
         {{"battery/Rated", kUnknown}}},
        {"system_info_get_custom_string",
         "tizen/system/battery_capacity",
         -5,
         'E',
         nullptr,
         {{"battery/Battery capacity", kUnknown}}},
    };
    return points;
}

int screenCount() {
    int count = 0;
    for (const Step &step : kSteps)
        count += step.counted ? 1 : 0;
    return count;
}

// "main+/x" is the main list's x wherever it shows: alone, under each popup and afterwards.
std::vector<Effect> expanded(const std::vector<Effect> &effects) {
    std::vector<Effect> out;
    for (const Effect &effect : effects) {
        if (effect.cell.rfind("main+/", 0) == 0) {
            for (const char *screen : {"main/", "debug/", "consent/", "main2/"})
                out.push_back({screen + effect.cell.substr(6), effect.shows});
        } else {
            out.push_back(effect);
        }
    }
    return out;
}

std::set<std::string> involved(const FailurePoint &point) {
    std::set<std::string> cells(point.involves.begin(), point.involves.end());
    for (const Effect &effect : expanded(point.effects)) {
        std::string cell = effect.cell;
        // A row and its switch are one place on the screen.
        if (cell.size() > 6 && cell.compare(cell.size() - 6, 6, "/check") == 0)
            cell.resize(cell.size() - 6);
        cells.insert(cell);
    }
    return cells;
}

// Failure points that touch nothing in common run together.
const std::vector<std::vector<size_t>> &batches() {
    static std::vector<std::vector<size_t>> packed;
    if (!packed.empty())
        return packed;
    std::vector<std::set<std::string>> used;
    std::vector<bool> closed;
    const auto &points = failurePoints();
    for (size_t i = 0; i < points.size(); ++i) {
        std::set<std::string> cells = involved(points[i]);
        size_t target = packed.size();
        for (size_t b = 0; b < packed.size() && !points[i].alone; ++b) {
            if (closed[b])
                continue;
            bool disjoint = true;
            for (const std::string &cell : cells)
                disjoint = disjoint && !used[b].count(cell);
            if (disjoint) {
                target = b;
                break;
            }
        }
        if (target == packed.size()) {
            packed.emplace_back();
            used.emplace_back();
            closed.push_back(points[i].alone);
        }
        packed[target].push_back(i);
        used[target].insert(cells.begin(), cells.end());
    }
    return packed;
}

// The watch every run starts from: the default watch, sold in India (so the regulatory page
// exists), with every optional status row and answers that arrive at once.
json baseProfile() {
    json profile = json::parse(readFile(SimulatedWatch::binDir() + "/../profiles/default.json"));
    profile["description"] = "fault matrix";
    profile["settings"]["db/csc/country_iso"] = "IN";
    profile["csc"]["features"] = {{"30", true}, {"39", true}, {"93", true}};
    profile["latency"] = {{"msisdn_ms", 0}, {"esim_profile_list_ms", 0}, {"esim_eid_ms", 0}};
    profile["faults"] = json::array();
    return profile;
}

// A screen as cells: "<screen>/<row label>" is the row's value, ".../check" its switch and
// ".../disabled" whether it is greyed; "<screen>/rows" the labels in order. Labels that repeat
// (a page title and a row of the same name) get "#2", "#3"...
std::map<std::string, std::string> flatten(const std::string &screen, const json &dump) {
    std::map<std::string, std::string> cells;
    if (screen == "lang") {
        // After a language change only the title matters here: it tells which language shows.
        if (!dump["items"].empty())
            cells["lang/title"] = dump["items"][0]["texts"].value("elm.text", "");
        return cells;
    }
    std::string order;
    std::map<std::string, int> seen;
    for (const auto &item : dump["items"]) {
        std::string label = item["texts"].value("elm.text", "");
        int n = ++seen[label];
        if (n > 1)
            label += "#" + std::to_string(n);
        std::string base = screen + "/" + label;
        order += label + "|";
        cells[base] = item["texts"].value("elm.text.1", "");
        if (!item["check"].is_null())
            cells[base + "/check"] = item["check"].get<bool>() ? "true" : "false";
        if (item.value("disabled", false))
            cells[base + "/disabled"] = "true";
    }
    cells[screen + "/rows"] = order;
    cells[screen + "/page"] = dump["page"].is_string() ? dump["page"].get<std::string>() : "";
    if (dump["layout"].is_object())
        for (auto &part : dump["layout"].items())
            cells[screen + "/layout/" + part.key()] = part.value().get<std::string>();
    if (dump["popup"].is_object()) {
        const json &popup = dump["popup"];
        for (const char *field : {"title", "text"})
            if (popup[field].is_string())
                cells[screen + "/popup/" + field] = popup[field].get<std::string>();
        std::string buttons;
        for (const auto &button : popup["buttons"])
            buttons += button.get<std::string>() + "|";
        cells[screen + "/popup/buttons"] = buttons;
    }
    if (dump["toast"].is_string())
        cells[screen + "/toast"] = dump["toast"].get<std::string>();
    return cells;
}

struct WatchRun {
    int status = -1;
    std::string errors;
    std::map<std::string, std::string> cells;
    std::string log;
    std::vector<std::string> screens;
};

WatchRun runOnWatch(const json &profile, const std::set<std::string> &skipScreens) {
    std::string script;
    std::vector<std::string> screens;
    for (const Step &step : kSteps) {
        if (skipScreens.count(step.screen))
            continue;
        script += step.script;
        if (std::string(step.script).find("dump") != std::string::npos)
            screens.push_back(step.screen);
    }
    SimulatedWatch watch(profile.dump(2));
    SimulatedWatch::Result result = watch.drive(script);
    WatchRun run;
    run.status = result.status;
    run.errors = result.errors;
    run.screens = screens;
    for (size_t i = 0; i < result.dumps.size() && i < screens.size(); ++i) {
        auto cells = flatten(screens[i], result.dumps[i]);
        run.cells.insert(cells.begin(), cells.end());
    }
    if (result.dumps.size() != screens.size())
        run.status = run.status ? run.status : 99;
    run.log = watch.platformLog();
    return run;
}

json toJson(const WatchRun &run) {
    return {{"status", run.status}, {"errors", run.errors}, {"cells", run.cells}, {"log", run.log}};
}

WatchRun fromJson(const json &saved) {
    WatchRun run;
    run.status = saved.value("status", -1);
    run.errors = saved.value("errors", "");
    run.cells = saved.value("cells", std::map<std::string, std::string>());
    run.log = saved.value("log", "");
    return run;
}

long long modified(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? static_cast<long long>(st.st_mtime) : 0;
}

// The watch without faults, run once for all the test programs of one build: the first one to
// get the lock runs it, the others read what it found.
const WatchRun &baseline() {
    static WatchRun run;
    static bool done = false;
    if (done)
        return run;
    done = true;
    std::string dir = SimulatedWatch::binDir() + "/..";
    // Anything rebuilt since the last run makes it run again.
    std::string stamp;
    for (const std::string &file :
         {SimulatedWatch::binDir() + "/quillset-drive", SimulatedWatch::binDir() + "/quillset-sim",
          SimulatedWatch::binDir() + "/quillset-simd", dir + "/profiles/default.json",
          dir + "/res/locale/en/LC_MESSAGES/quillset.mo", std::string("/proc/self/exe")})
        stamp += std::to_string(modified(file)) + "-";
    int lock = open((dir + "/fault-matrix.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock >= 0)
        flock(lock, LOCK_EX);
    std::string cachePath = dir + "/fault-matrix-baseline.json";
    json cached = json::parse(readFile(cachePath), nullptr, false);
    if (cached.is_object() && cached.value("stamp", "") == stamp) {
        run = fromJson(cached["run"]);
    } else {
        run = runOnWatch(baseProfile(), {});
        if (run.status == 0)
            std::ofstream(cachePath) << json{{"stamp", stamp}, {"run", toJson(run)}}.dump();
    }
    if (lock >= 0)
        close(lock);
    return run;
}

bool matchesPrefix(const std::string &cell, const std::string &pattern) {
    return !pattern.empty() && pattern.back() == '*' &&
           cell.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0;
}

// Log lines "<time> <P>/W-SETTING(<pid>): <file>: <function>(<line>) > <colour>message<reset>".
int countLogLines(const std::string &log, char priority, const std::string &message) {
    std::string colour = priority == 'E'   ? "\033[0;31m* Critical * "
                         : priority == 'W' ? "\033[0;35m"
                                           : "\033[0;32m";
    std::string wanted = ") > " + colour + message + "\033[0;m";
    std::string tag = std::string(" ") + priority + "/W-SETTING(";
    // The application framework logs under its own tag, without colours.
    std::string frameworkWanted = ") > " + message;
    std::string frameworkTag = std::string(" ") + priority + "/WAPP(";
    auto endsWith = [](const std::string &line, const std::string &end) {
        return line.size() >= end.size() &&
               line.compare(line.size() - end.size(), end.size(), end) == 0;
    };
    int count = 0;
    std::istringstream in(log);
    std::string line;
    while (std::getline(in, line))
        if ((line.find(tag) != std::string::npos && line.find(wanted) != std::string::npos) ||
            (line.find(frameworkTag) != std::string::npos && endsWith(line, frameworkWanted)))
            ++count;
    return count;
}

// The application's own lines ("W-SETTING", and the framework's "WAPP"), as priority and
// message without colours.
std::set<std::string> applicationLines(const std::string &log) {
    std::set<std::string> lines;
    std::istringstream in(log);
    std::string line;
    while (std::getline(in, line)) {
        size_t tag = line.find('/');
        size_t start = line.find(") > ");
        if (tag == std::string::npos || tag < 1 || start == std::string::npos ||
            (line.compare(tag + 1, 10, "W-SETTING(") != 0 &&
             line.compare(tag + 1, 5, "WAPP(") != 0))
            continue;
        std::string message = line.substr(start + 4);
        for (const char *colour :
             {"\033[0;31m* Critical * ", "\033[0;35m", "\033[0;32m", "\033[0;m"})
            for (size_t at; (at = message.find(colour)) != std::string::npos;)
                message.erase(at, strlen(colour));
        lines.insert(line.substr(tag - 1, 1) + " " + message);
    }
    return lines;
}

std::string describe(const FailurePoint &point) {
    return std::string(point.call) + (point.key ? std::string("(") + point.key + ")" : "");
}

class FaultMatrix : public ::testing::TestWithParam<size_t> {};

}  // namespace

TEST(FaultMatrixBaseline, TheWatchWithoutFaultsShowsEveryScreen) {
    const WatchRun &run = baseline();
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.cells.at("main/Model number"), "QX-M480");
    EXPECT_EQ(run.cells.at("main2/Debugging/check"), "true");
    EXPECT_EQ(run.cells.at("main2/" + kConsent + "/check"), "true");
    EXPECT_EQ(run.cells.at("status/eID"), "89000480000001000000012345678901");
    EXPECT_EQ(run.cells.at("status/Barcode number"), "3546201");
    EXPECT_EQ(run.cells.at("security/VIMO"), "1.4.2");
    EXPECT_EQ(run.cells.at("battery/Rated"), "3.85V; 300mA");
    EXPECT_NE(run.cells.at("lang/title"), "About Kesta") << "the language event changes nothing";
    EXPECT_TRUE(run.cells.count("regulatory/layout/text.title"));
}

TEST_P(FaultMatrix, EachFailureIsLoggedShowsItsSafeValueAndLeavesTheRestAlone) {
    const WatchRun &base = baseline();
    ASSERT_EQ(base.status, 0) << base.errors;
    const auto &points = failurePoints();
    const std::vector<size_t> &batch = batches().at(GetParam());

    json profile = baseProfile();
    std::map<std::string, std::string> expected;
    std::set<std::string> skip;
    std::string names;
    for (size_t i : batch) {
        const FailurePoint &point = points[i];
        json fault = {{"call", point.call}, {"code", point.code}};
        if (point.key)
            fault["key"] = point.key;
        profile["faults"].push_back(fault);
        names += "\n  " + describe(point);
        for (const Effect &effect : expanded(point.effects)) {
            expected[effect.cell] = effect.shows;
            if (effect.cell == "main/Regulatory information" && effect.shows == kAbsent)
                skip.insert("regulatory");
        }
    }
    printf("failing together:%s\n", names.c_str());
    WatchRun run = runOnWatch(profile, skip);
    ASSERT_EQ(run.status, 0) << "the application did not carry on through every screen:\n"
                             << run.errors;

    // Rows that a failure takes away leave the others in their order.
    std::map<std::string, std::string> wanted = base.cells;
    for (auto &entry : wanted) {
        const std::string &cell = entry.first;
        size_t slash = cell.find('/');
        if (cell.compare(slash, std::string::npos, "/rows") != 0)
            continue;
        std::string screen = cell.substr(0, slash), order;
        std::istringstream labels(entry.second);
        std::string label;
        while (std::getline(labels, label, '|')) {
            auto gone = expected.find(screen + "/" + label);
            if (gone == expected.end() || gone->second != kAbsent)
                order += label + "|";
        }
        entry.second = order;
    }
    for (const std::string &screen : skip)
        for (auto it = wanted.begin(); it != wanted.end();)
            it = it->first.rfind(screen + "/", 0) == 0 ? wanted.erase(it) : std::next(it);

    auto expectation = [&expected](const std::string &cell) -> const std::string * {
        auto exact = expected.find(cell);
        if (exact != expected.end())
            return &exact->second;
        for (const auto &entry : expected)
            if (matchesPrefix(cell, entry.first))
                return &entry.second;
        return nullptr;
    };
    for (const auto &entry : wanted) {
        const std::string &cell = entry.first;
        const std::string *shows = expectation(cell);
        auto got = run.cells.find(cell);
        if (shows && *shows == kAny)
            continue;
        if (shows && *shows == kAbsent) {
            EXPECT_EQ(got, run.cells.end()) << cell << " should be gone";
            continue;
        }
        if (got == run.cells.end()) {
            ADD_FAILURE() << cell << " is missing; it shows \"" << entry.second
                          << "\" without faults";
            continue;
        }
        EXPECT_EQ(got->second, shows ? *shows : entry.second) << cell;
    }
    for (const auto &entry : run.cells) {
        const std::string *shows = expectation(entry.first);
        if (!wanted.count(entry.first) && !(shows && *shows == kAny))
            ADD_FAILURE() << entry.first << " appeared with \"" << entry.second << "\"";
    }

    // Each failure's log line, as many times at least as failures share it.
    std::map<std::pair<char, std::string>, int> logs;
    for (size_t i : batch) {
        std::istringstream lines(points[i].log ? points[i].log : "");
        for (std::string line; std::getline(lines, line);)
            ++logs[{points[i].priority, line}];
    }
    for (const auto &entry : logs)
        EXPECT_GE(countLogLines(run.log, entry.first.first, entry.first.second), entry.second)
            << entry.first.first << " \"" << entry.first.second << "\" not logged:\n"
            << run.log;

    // And no line of the application's that neither a failure nor the watch without faults
    // gives.
    std::set<std::string> allowed = applicationLines(base.log);
    for (const auto &entry : logs)
        allowed.insert(std::string(1, entry.first.first) + " " + entry.first.second);
    for (const std::string &line : applicationLines(run.log))
        EXPECT_TRUE(allowed.count(line)) << "unexpected log line: " << line;
}

INSTANTIATE_TEST_SUITE_P(Batches, FaultMatrix, ::testing::Range<size_t>(0, batches().size()));

// The matrix covers every failure point on every screen a person can open.
TEST(FaultMatrixSize, EveryFailurePointMeetsEveryScreen) {
    size_t points = failurePoints().size();
    int screens = screenCount();
    size_t covered = 0;
    for (const auto &batch : batches())
        covered += batch.size();
    EXPECT_EQ(covered, points);
    printf("fault matrix: %zu failure points x %d screens = %zu (%zu runs of the application)\n",
           points, screens, points * screens, batches().size());
}
