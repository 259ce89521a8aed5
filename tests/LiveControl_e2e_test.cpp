// Controlling a running watch from a second terminal: settings, policy, language and launch
// events reach the open About list without a restart. Each change comes from another process.
// (The SIM and eSIM events are sent to the open status page in its own tests.)

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/Catalogues.h"
#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

json rowAt(const json &dump, int index) {
    for (const json &row : dump.at("items"))
        if (row.at("index") == index)
            return row;
    return nullptr;
}

int indexOf(const json &dump, const std::string &label) {
    json row = rowWithLabel(dump, label);
    return row.is_null() ? -1 : row.at("index").get<int>();
}

}  // namespace

TEST(LiveControlE2E, EveryControlChangesTheOpenScreen) {
    SimulatedWatch watch("default");
    // After each step: what the rows say, and a picture of what the screen shows.
    const std::vector<std::string> steps = {
        "bezel 7",  // both switches in view
        "sim set db/setting/debug_mode bool true",
        "sim set db/wms/user_agreement/errorlog bool true",
        "sim event policy usb-debugging 1",
        "sim event language de",
        "sim event launch\nwait 200",
    };
    std::string script;
    std::vector<std::string> shots;
    for (size_t i = 0; i < steps.size(); ++i) {
        shots.push_back(watch.stateDir() + "/live" + std::to_string(i) + ".png");
        script += steps[i] + "\ndump\nshot " + shots.back() + "\n";
    }
    auto run = watch.drive(script);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), steps.size()) << run.errors;
    const auto &d = run.dumps;
    auto changedOnScreen = [&shots](size_t step) {
        return readFile(shots.at(step)) != readFile(shots.at(step - 1));
    };

    const int debugging = indexOf(d[0], "Debugging");
    const int consent = indexOf(d[0], "Report diagnostic and usage info");
    ASSERT_GE(debugging, 0);
    ASSERT_GE(consent, 0);
    EXPECT_EQ(rowAt(d[0], debugging)["check"], false);

    // Settings written by another process turn the switches.
    EXPECT_EQ(rowAt(d[1], debugging)["check"], true);
    EXPECT_TRUE(changedOnScreen(1));
    EXPECT_EQ(rowAt(d[2], consent)["check"], true);
    EXPECT_TRUE(changedOnScreen(2));

    // Device policy greys the debugging row out.
    EXPECT_FALSE(rowAt(d[2], debugging)["disabled"].get<bool>());
    EXPECT_TRUE(rowAt(d[3], debugging)["disabled"].get<bool>());
    EXPECT_TRUE(changedOnScreen(3));

    // A new language relabels the open list in place, on screen too.
    EXPECT_EQ(rowAt(d[4], 1)["texts"]["elm.text"], "Geräteinformationen");
    EXPECT_EQ(rowAt(d[4], consent)["texts"]["elm.text"], "Diagnose- und Nutzungsdaten senden");
    EXPECT_TRUE(changedOnScreen(4));

    // A second launch brings the running application forward as it is: no second page.
    EXPECT_EQ(d[5]["depth"], 1);
    EXPECT_EQ(d[5]["items"], d[4]["items"]);
    EXPECT_FALSE(changedOnScreen(5));
}

// Every compiled language, pseudo-locales included, relabels both the open page and the list
// beneath it, each in the texts of its own catalogue.
TEST(LiveControlE2E, EveryLanguageRelabelsEveryOpenScreen) {
    const std::vector<std::string> languages = compiledLanguages();
    ASSERT_GE(languages.size(), 24u);
    SimulatedWatch watch("default");
    std::string script = "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\n";
    for (const std::string &language : languages)
        script += "sim event language " + language + "\nwait 200\ndump\nback\ndump\n" +
                  "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\n";
    auto run = watch.drive(script);
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(run.dumps.size(), 2 * languages.size());
    for (size_t i = 0; i < languages.size(); ++i) {
        SCOPED_TRACE(languages[i]);
        const json &page = run.dumps[2 * i];
        const json &list = run.dumps[2 * i + 1];
        EXPECT_FALSE(rowWithLabel(page, textIn(languages[i], "WDS_ST_MBODY_SOFTWARE_VERSION_ABB"))
                         .is_null());
        EXPECT_EQ(rowLabels(list).at(0), textIn(languages[i], "WDS_ST_BODY_ABOUT_KESTA_ABB"));
        if (languages[i] != "en") {
            EXPECT_NE(rowLabels(list).at(0), "About Kesta");
        }
    }
}
