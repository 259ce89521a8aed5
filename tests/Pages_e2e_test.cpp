// The information pages end to end: what crosses a process (the launch journal, a language
// change sent from outside) and the home-key handler on the watch's own bus.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

TEST(PagesE2E, ClientSettingsRowLaunchesTheClientInGroupMode) {
    SimulatedWatch watch("default");
    auto run = watch.drive("tap Software information\ntap Tessid Configure\nwait 200\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto launches = watch.launches();
    ASSERT_EQ(launches.size(), 1u);
    EXPECT_EQ(launches[0]["app_id"], "com.nerova.tessid.ravelclient.settings");
    EXPECT_EQ(launches[0]["launch_mode"], 1);
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
    EXPECT_EQ(run.dumps[1]["layout"]["text.title"], "Regulatory information");
    EXPECT_EQ(run.dumps[2]["layout"]["text.title"], "Regulatorische Informationen");
    // The licence title keeps the language the page was opened in.
    EXPECT_EQ(run.dumps[3]["layout"]["text.title"], "Open source licences");
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
