// What a screen reader says on each screen, read through the driver's a11y command: the
// switch rows' spoken state, the consent popup's text and order, the licence page's title then
// body, and a name on everything a person can tap.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimulatedWatch.h"

using nlohmann::json;

namespace {

// The reading order's stops, by what each of them says.
std::vector<std::string> spoken(const json &reading) {
    std::vector<std::string> out;
    for (const json &stop : reading.at("order"))
        out.push_back(stop.at("reads").get<std::string>());
    return out;
}

json stopNamed(const json &reading, const std::string &name) {
    for (const json &stop : reading.at("order"))
        if (stop.at("name") == name)
            return stop;
    return nullptr;
}

// Readings are the lines of a run that have an "order"; dumps are the others.
std::vector<json> readings(const SimulatedWatch::Result &run) {
    std::vector<json> out;
    for (const json &line : run.dumps)
        if (line.contains("order"))
            out.push_back(line);
    return out;
}

void expectEveryTappableStopNamed(const json &reading) {
    for (const json &stop : reading.at("order")) {
        if (stop.at("tappable").get<bool>()) {
            EXPECT_FALSE(stop.at("name").get<std::string>().empty())
                << "a tappable " << stop.at("role") << " has no name on " << reading.dump();
        }
    }
}

const std::string kConsentStart = "I agree that Nerova may collect diagnostic and usage data";

}  // namespace

TEST(AccessibilityE2E, SwitchRowsSpeakTheirStateAndFollowTheSetting) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "a11y\n"
        "set db/setting/debug_mode bool true\n"
        "a11y\n"
        "sim event language de\n"
        "a11y\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto read = readings(run);
    ASSERT_EQ(read.size(), 3u);

    EXPECT_EQ(stopNamed(read[0], "Debugging")["description"], "Switch, Off");
    EXPECT_EQ(stopNamed(read[0], "Debugging")["reads"], "Debugging, Switch, Off");
    EXPECT_EQ(stopNamed(read[0], "Report diagnostic and usage info")["description"], "Switch, Off");
    EXPECT_EQ(stopNamed(read[1], "Debugging")["description"], "Switch, On");
    // The spoken state is in the watch's language too.
    EXPECT_EQ(stopNamed(read[2], "Debugging")["description"], "Schalter, Ein");

    // The title row is read but cannot be tapped; the entries can.
    EXPECT_EQ(read[0]["order"][0]["name"], "About Kesta");
    EXPECT_FALSE(read[0]["order"][0]["tappable"].get<bool>());
    EXPECT_TRUE(stopNamed(read[0], "Device information")["tappable"].get<bool>());
}

TEST(AccessibilityE2E, ConsentPopupIsReadAsItsTextThenSeeAllThenCancel) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB\n"
        "a11y\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto read = readings(run);
    ASSERT_EQ(read.size(), 1u);
    const json &popup = read[0];
    ASSERT_TRUE(popup["popup"].get<bool>());

    // Opening, the popup is announced by its description only: the whole consent text.
    std::string text = popup.value("announces", "");
    EXPECT_EQ(text.rfind(kConsentStart, 0), 0u) << text;
    EXPECT_GT(text.size(), 400u);

    std::vector<std::string> order = spoken(popup);
    ASSERT_EQ(order.size(), 4u) << popup.dump();
    EXPECT_EQ(order[0], text);
    EXPECT_EQ(order[1], "See all");
    EXPECT_EQ(order[2], "Cancel");
    EXPECT_EQ(order[3], "OK");
    // OK leads back to the text.
    EXPECT_EQ(popup["order"][3].value("flows_to", ""), text);
    expectEveryTappableStopNamed(popup);
}

TEST(AccessibilityE2E, LicencePageReadsItsTitleThenItsBody) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "tap WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB\n"
        "a11y\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto read = readings(run);
    ASSERT_EQ(read.size(), 1u);
    std::vector<std::string> order = spoken(read[0]);
    ASSERT_EQ(order.size(), 2u) << read[0].dump();
    EXPECT_EQ(order[0], "Open source licences");
    EXPECT_EQ(order[1].rfind("Follow the steps below to view the open source licences", 0), 0u)
        << order[1];
    // The body is read as plain text, not markup.
    EXPECT_EQ(order[1].find('<'), std::string::npos) << order[1];
    EXPECT_EQ(read[0]["order"][0].value("flows_to", ""), order[1]);
}

TEST(AccessibilityE2E, EverythingTappableHasANameOnEveryScreen) {
    SimulatedWatch watch("default");
    auto run = watch.drive(
        "a11y\n"
        "tap WDS_ST_MBODY_DEBUGGING_ABB\n"
        "a11y\n"
        "back\n"
        "tap WDS_ST_TMBODY_DEVICE_INFORMATION\n"
        "wait 1700\n"
        "a11y\n"
        "back\n"
        "tap WDS_ST_TMBODY_SOFTWARE_INFORMATION\n"
        "a11y\n"
        "back\n"
        "tap WDS_ST_TMBODY_BATTERY_INFORMATION\n"
        "a11y\n");
    ASSERT_EQ(run.status, 0) << run.errors;
    auto read = readings(run);
    ASSERT_EQ(read.size(), 5u);
    for (const json &screen : read) {
        EXPECT_FALSE(screen["order"].empty()) << screen.dump();
        expectEveryTappableStopNamed(screen);
    }
    // The debugging popup's buttons are icons: their names are what is spoken.
    EXPECT_EQ(spoken(read[1]).back(), "OK");
    // Status rows read their label and their value.
    EXPECT_TRUE(stopNamed(read[2], "IMEI, 004801001234563").is_object()) << read[2].dump();
}
