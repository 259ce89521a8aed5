// The information pages end to end: the application on a simulated watch, driven as a person
// would, checked on screen and in what the watch recorded (settings, launches). Also the
// home-key handler on the watch's own bus.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

const std::string kSoftware = "Software information";
const std::string kBattery = "Battery information";
const std::string kRegulatory = "Regulatory information";
const std::string kLicences = "Open source licences";

// The labels of the main list that come after the storage fact and before the switches.
std::vector<std::string> pageEntries(const json &dump) {
    std::vector<std::string> labels = rowLabels(dump), entries;
    bool inside = false;
    for (const std::string &label : labels) {
        if (label == "Report diagnostic and usage info")
            break;
        if (inside)
            entries.push_back(label);
        if (label == "Storage")
            inside = true;
    }
    return entries;
}

}  // namespace

TEST(PagesE2E, MainListPlacesTheEntriesAndRegulatoryOnlyInIndia) {
    SimulatedWatch watch("default");
    auto run = watch.drive("dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(pageEntries(run.dumps.at(0)),
              (std::vector<std::string>{kSoftware, kBattery, kLicences}));

    SimulatedWatch india("india");
    run = india.drive("dump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(pageEntries(run.dumps.at(0)),
              (std::vector<std::string>{kSoftware, kBattery, kRegulatory, kLicences}));
}

TEST(PagesE2E, EachEntryOpensItsPageAndBackReturnsToAListTheBezelTurns) {
    SimulatedWatch watch("india");
    const std::string shots = watch.stateDir() + "-shot";
    std::string script;
    int n = 0;
    for (const std::string &entry : {kSoftware, kBattery, kRegulatory, kLicences}) {
        std::string a = shots + std::to_string(n++) + ".png",
                    b = shots + std::to_string(n++) + ".png";
        script += "tap " + entry + "\ndump\nback\ndump\nshot " + a + "\nbezel 3\nshot " + b +
                  "\nbezel -3\n";
    }
    auto run = watch.drive(script);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 8u);
    const char *pages[] = {"WDS_ST_TMBODY_SOFTWARE_INFORMATION",
                           "WDS_ST_TMBODY_BATTERY_INFORMATION", "WDS_ST_HEADER_REGULATORY_INFO_ABB",
                           "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(run.dumps[2 * i]["page"], pages[i]);
        EXPECT_EQ(run.dumps[2 * i]["depth"], 2);
        EXPECT_EQ(run.dumps[2 * i + 1]["depth"], 1);
        // The bezel scrolls the list again: the screen changes.
        std::string before = readFile(shots + std::to_string(2 * i) + ".png");
        std::string after = readFile(shots + std::to_string(2 * i + 1) + ".png");
        EXPECT_FALSE(before.empty());
        EXPECT_NE(before, after) << "after leaving " << pages[i];
    }
    for (int i = 0; i < n; ++i)
        std::remove((shots + std::to_string(i) + ".png").c_str());
}

TEST(PagesE2E, SoftwarePageShowsTheProfileAndFiveTapsTurnDeveloperModeOn) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "tap Software information\ndump\n"
        // 4 taps, the platform version, 4 taps: no toast.
        "tap #2\ntap #2\ntap #2\ntap #2\ntap #1\ntap #2\ntap #2\ntap #2\ntap #2\ndump\n"
        "sim get db/setting/developer_option_state\n"
        "tap #2\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 3u);
    const json &page = run.dumps[0];
    EXPECT_EQ(rowLabels(page),
              (std::vector<std::string>{kSoftware, "Tizen version", "Software version",
                                        "Tessid version", "Tessid Configure", "Security status"}));
    EXPECT_EQ(rowWithLabel(page, "Tizen version")["texts"]["elm.text.1"], "6.0");
    EXPECT_EQ(rowWithLabel(page, "Software version")["texts"]["elm.text.1"], "M480-EU-3.2.0611");
    EXPECT_EQ(rowWithLabel(page, "Security status")["texts"]["elm.text.1"], "TSP-M480-7.1-r12");
    EXPECT_EQ(run.dumps[1]["toast"], nullptr);
    // The fifth counted tap.
    EXPECT_EQ(run.dumps[2]["toast"], "developer mode turned on");
    EXPECT_EQ(watch.sim("get db/setting/developer_option_state"), "true\n");
}

TEST(PagesE2E, ToastStaysEightSecondsWithTheScreenReaderAndTwoWithout) {
    SimulatedWatch watch("default");
    const std::string fiveTaps = "tap #2\ntap #2\ntap #2\ntap #2\ntap #2\n";
    auto run = watch.drive("tap Software information\n" + fiveTaps +
                           "wait 1500\ndump\nwait 1500\ndump\n"
                           "set db/setting/accessibility/tts bool 1\n" +
                           fiveTaps + "wait 7000\ndump\nwait 2000\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(run.dumps[0]["toast"], "developer mode turned on");
    EXPECT_EQ(run.dumps[1]["toast"], nullptr);
    EXPECT_EQ(run.dumps[2]["toast"], "developer mode turned on");
    EXPECT_EQ(run.dumps[3]["toast"], nullptr);
}

TEST(PagesE2E, ClientSettingsRowLaunchesTheClientInGroupMode) {
    SimulatedWatch watch("default");
    auto run = watch.drive("tap Software information\ntap Tessid Configure\nwait 200\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.tessid.ravelclient.settings");
    EXPECT_EQ(launches[0]["launch_mode"], 1);
}

TEST(PagesE2E, WatchWithoutTheInformationShowsUnknownEverywhere) {
    SimulatedWatch watch("no-info");
    auto run = watch.drive(
        "tap Software information\ndump\ntap Tessid version\ndump\nback\nback\n"
        "tap Battery information\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 3u);
    // No client installed: no client-settings row.
    EXPECT_EQ(rowLabels(run.dumps[0]),
              (std::vector<std::string>{kSoftware, "Tizen version", "Software version",
                                        "Tessid version", "Security status"}));
    for (const char *label : {"Tizen version", "Software version", "Security status"})
        EXPECT_EQ(rowWithLabel(run.dumps[0], label)["texts"]["elm.text.1"], "Unknown") << label;
    const json &tessid = run.dumps[1];
    ASSERT_EQ(tessid["items"].size(), 5u);
    for (size_t i = 1; i < 5; ++i) {
        EXPECT_EQ(tessid["items"][i]["texts"]["elm.text.1"], "Unknown");
        EXPECT_FALSE(tessid["items"][i]["selectable"].get<bool>());
    }
    for (const char *label : {"Rated", "Battery capacity"})
        EXPECT_EQ(rowWithLabel(run.dumps[2], label)["texts"]["elm.text.1"], "Unknown") << label;
}

TEST(PagesE2E, SecurityPlatformAndBatteryPagesShowTheDefaultWatch) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "tap Software information\ntap Tessid version\ndump\ntap #1\ndump\nback\nback\n"
        "tap Battery information\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 3u);
    EXPECT_EQ(rowLabels(run.dumps[0]),
              (std::vector<std::string>{"Tessid version", "Tessid version",
                                        "Tessid Tizen Wearable SDK", "Pelor for Tizen", "VIMO"}));
    EXPECT_EQ(rowWithLabel(run.dumps[0], "VIMO")["texts"]["elm.text.1"], "1.4.2");
    // A tap on a display-only row opens nothing.
    EXPECT_EQ(run.dumps[1]["depth"], 3);
    EXPECT_EQ(rowWithLabel(run.dumps[2], "Rated")["texts"]["elm.text.1"], "3.85V; 300mA");
    EXPECT_EQ(rowWithLabel(run.dumps[2], "Battery capacity")["texts"]["elm.text.1"], "361mAh");
}

TEST(PagesE2E, LicenceHelpUsesWlanInChinaAndTheSdbPort) {
    for (const std::string profile : {"default", "china"}) {
        // The China watch starts in Chinese; the wording is checked in English.
        SimulatedWatch watch(profileWith(
            profile, [](json &p) { p["settings"]["db/menu_widget/language"] = "en_US.UTF-8"; }));
        auto run = watch.drive("tap Open source licences\ndump\n");
        ASSERT_EQ(run.status, 0) << run.errors;
        const json &layout = run.dumps.at(0)["layout"];
        EXPECT_EQ(layout["text.title"], kLicences);
        std::string body = layout["text.body"];
        for (int step = 1; step <= 6; ++step)
            EXPECT_NE(body.find("\n" + std::to_string(step) + ". "), std::string::npos) << step;
        EXPECT_EQ(body.find("\n7. "), std::string::npos);
        EXPECT_NE(body.find("\"sdb connect [your IP address]:26101\""), std::string::npos);
        // Markup characters of the translations show as they are.
        EXPECT_NE(body.find("Settings > Connections > Bluetooth"), std::string::npos);
        bool china = profile == "china";
        EXPECT_EQ(body.find("WLAN") != std::string::npos, china) << body;
        EXPECT_EQ(body.find("Wi-Fi") != std::string::npos, !china) << body;
    }
}

TEST(PagesE2E, LanguageChangeReachesTheOpenPagesButNotTheLicenceTitle) {
    SimulatedWatch watch("india");
    auto run = watch.drive(
        "tap Battery information\nsim event language de\nwait 300\ndump\nback\n"
        "tap WDS_ST_HEADER_REGULATORY_INFO_ABB\nsim event language en\nwait 300\ndump\n"
        "sim event language de\nwait 300\ndump\nback\n"
        "sim event language en\nwait 300\n"
        "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\nsim event language de\nwait 300\ndump\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 4u);
    EXPECT_EQ(rowLabels(run.dumps[0]),
              (std::vector<std::string>{"Akku-Informationen", "Nennwerte", "Akkukapazität"}));
    EXPECT_EQ(run.dumps[1]["layout"]["text.title"], kRegulatory);
    EXPECT_EQ(run.dumps[2]["layout"]["text.title"], "Regulatorische Informationen");
    // The licence title keeps the language the page was opened in.
    EXPECT_EQ(run.dumps[3]["layout"]["text.title"], kLicences);
}

TEST(PagesE2E, RegulatoryPageShowsItsTitleAndContentAndScrolls) {
    SimulatedWatch watch("india");
    const std::string a = watch.stateDir() + "-reg-a.png", b = watch.stateDir() + "-reg-b.png";
    auto run =
        watch.drive("tap Regulatory information\ndump\nshot " + a + "\nbezel 4\nshot " + b + "\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.dumps.at(0)["layout"]["text.title"], kRegulatory);
    std::string before = readFile(a), after = readFile(b);
    EXPECT_FALSE(before.empty());
    EXPECT_NE(before, after);
    std::remove(a.c_str());
    std::remove(b.c_str());
}

// Home key

namespace {

// Runs the probe on the watch, presses the home key `presses` times once it listens, and
// returns what it printed. The probe must end by itself.
std::string homeKeyRun(SimulatedWatch &watch, const std::string &mode, int presses) {
    std::string out = watch.stateDir() + "-probe.txt";
    std::string probe = SimulatedWatch::binDir() + "/home_key_probe";
    std::string sendPresses;
    for (int i = 0; i < presses; ++i)
        sendPresses += "quillset-sim event home; sleep 0.3; ";
    std::string script = "'" + probe + "' " + mode + " > '" + out +
                         "' 2>&1 & p=$!; "
                         "for i in $(seq 100); do grep -q ready '" +
                         out + "' && break; sleep 0.1; done; " + sendPresses +
                         "for i in $(seq 50); do kill -0 $p 2>/dev/null || break; sleep 0.1; done; "
                         "kill $p 2>/dev/null; wait $p";
    std::string scriptFile = watch.stateDir() + "-probe.sh";
    std::ofstream(scriptFile) << script << "\n";
    int status = -1;
    watch.sim("run --profile default -- sh '" + scriptFile + "'", &status);
    std::string text = readFile(out);
    std::remove(out.c_str());
    std::remove(scriptFile.c_str());
    return text + "status " + std::to_string(status) + "\n";
}

}  // namespace

TEST(HomeKeyHandlerE2E, APressWithoutAnActionEndsTheApplication) {
    SimulatedWatch watch("default");
    std::string text = homeKeyRun(watch, "exit", 1);
    EXPECT_NE(text.find("ready\n"), std::string::npos) << text;
    EXPECT_NE(text.find("terminated\nexited 0\nstatus 0\n"), std::string::npos) << text;
    // The second registration was refused with its log line.
    EXPECT_NE(watch.platformLog().find("Already registered!"), std::string::npos);
}

TEST(HomeKeyHandlerE2E, APressWithAnActionRunsOnlyTheAction) {
    SimulatedWatch watch("default");
    std::string text = homeKeyRun(watch, "action", 2);
    // The first press left the application running; the action ends it after the second.
    EXPECT_NE(text.find("ready\naction 1\naction 2\nterminated\nexited 0\nstatus 0\n"),
              std::string::npos)
        << text;
}
