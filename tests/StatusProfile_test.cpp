// The device-status sections of a device profile: what a profile author is told about a
// wrong value, and what is accepted.

#include <gtest/gtest.h>

#include <string>

#include "Profile.h"

namespace {

std::string parseError(const std::string &text) {
    sim::Profile profile;
    std::string error;
    EXPECT_FALSE(profile.parse(text, "watch.json", &error)) << text;
    return error;
}

}  // namespace

TEST(StatusProfile, WrongValuesAreRefusedWithTheirPlace) {
    const struct {
        const char *text;
        const char *message;
    } cases[] = {
        {R"({"telephony": {"modem": "yes"}})",
         "watch.json: telephony.modem: expected a boolean (true or false), found string \"yes\""},
        {R"({"telephony": {"volte_enable": 1.5}})",
         "watch.json: telephony.volte_enable: expected a 32-bit integer"},
        {R"({"sim": {"msisdn": 447700900123}})",
         "watch.json: sim.msisdn: expected a string or null, found number"},
        {R"({"esim": {"profiles": [{"name": "A", "kind": "2"}]}})",
         "watch.json: esim.profiles[0].kind: expected a 32-bit integer"},
        {R"({"deviced": {"reply_delay_ms": -1}})",
         "watch.json: deviced.reply_delay_ms: expected a non-negative integer"},
        {R"({"csc": {"features": {"barcode": true}}})",
         "watch.json: csc.features.barcode: expected a feature number as key"},
        {R"({"csc": {"features": {"30": 1}}})",
         "watch.json: csc.features.30: expected a boolean (true or false)"},
        {R"({"latency": {"msisdn_ms": -5}})",
         "watch.json: latency.msisdn_ms: expected a non-negative integer"},
        {R"({"bluetooth": {"address": null}})",
         "watch.json: bluetooth.address: expected a string, found null"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parseError(c.text).rfind(c.message, 0), 0u)
            << c.text << "\n  got: " << parseError(c.text);
}

TEST(StatusProfile, CompleteSectionsAreAcceptedAndUnknownKeysWarned) {
    sim::Profile profile;
    std::string error;
    ASSERT_TRUE(profile.parse(R"({
        "telephony": {"modem": true, "imei": "1", "volte_enable": 0, "misc_sn": false},
        "sim": {"msisdn": null, "iccid": "89"},
        "esim": {"eid": "89", "profiles": [], "profile_list_result": -5, "eid_result": 0},
        "bluetooth": {}, "wifi": {"mac_address": "a0"},
        "deviced": {"present": false, "serial": "", "reply_delay_ms": 0},
        "csc": {"features": {"30": true}, "approval_version": "X"},
        "latency": {"msisdn_ms": 1500},
        "wifi_extra": {}
    })",
                              "watch.json", &error))
        << error;
    ASSERT_EQ(profile.warnings().size(), 1u);
    EXPECT_NE(profile.warnings()[0].find("wifi_extra"), std::string::npos);
}
