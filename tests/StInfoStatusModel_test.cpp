// The status model's rules against the platform stand-ins: the asynchronous phone number, eSIM
// profiles and EID, the ICCID, and the serial and barcode numbers of the device daemon. (Which
// source each value comes from is in the About list's table of sources.) The model is one per
// process; each test case runs in a process of its own.

#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "PlatformState.h"
#include "StInfoDefines.h"
#include "StInfoStatusModel.h"
#include "sim_support.h"
#include "support/EflTestEnvironment.h"

namespace {

const std::string kUnknown = ST_UNKNOWN_TEXT;

const std::string kModem = R"("telephony": {"modem": true, "hw_version": "REV1.0",
    "imei": "004801001234563", "imei_sv": "01", "meid": "", "prl_version": "58023",
    "eri_version": "", "volte_enable": 1})";

const std::string kEsim =
    kModem + R"(, "system_info": {"vendor": {"tizen/feature/esim.phase": 1}})";

class StInfoStatusModelTest : public EflTest {
protected:
    void SetUp() override {
        EflTest::SetUp();
        vconf_set_str("db/menu_widget/regionformat", "en_GB.UTF-8");
    }

    void writeSections(const std::string &sections) { writeProfile("{" + sections + "}"); }

    bool logHas(const std::string &text) const {
        return logSinceStart().find(text) != std::string::npos;
    }
};

}  // namespace

// Each answer of the SIM about its number rewrites the cached number; one with data announces
// it, even when the SIM has no number. Without a modem the number cached before is shown.
TEST_F(StInfoStatusModelTest, PhoneNumberRepliesRewriteTheCachedNumber) {
    const struct {
        std::string profile;
        const char *cached, *shown;
        int announced;
        const char *logged;
    } lines[] = {
        {kModem + R"(, "sim": {"msisdn": "+447700900123"})", "+447700900123", "+44 7700 900123", 1,
         ""},
        {kModem + R"(, "sim": {"msisdn": ""})", "", kUnknown.c_str(), 1, ""},
        {kModem + R"(, "sim": {"msisdn": null})", "", kUnknown.c_str(), 0,
         "no sim card info is returned"},
        {R"("telephony": {"modem": false}, "sim": {"msisdn": "+447700900123"})", "+449999",
         "+44 999 9", 0, "tel init error!!"},
    };
    for (const auto &line : lines) {
        SCOPED_TRACE(line.profile);
        writeSections(line.profile);
        vconf_set_str("db/setting/selected_num", "+449999");
        StInfoStatusModel *model = StInfoStatusModel::getInstance();
        int announced = 0;
        model->_msisdnSignal.addListener([&announced]() { ++announced; });
        settle(0.1);
        char *cached = vconf_get_str("db/setting/selected_num");
        EXPECT_STREQ(cached, line.cached);
        free(cached);
        EXPECT_EQ(model->getPhoneNumberInfo(), line.shown);
        EXPECT_EQ(announced, line.announced);
        EXPECT_TRUE(logHas(line.logged)) << line.logged;
        delete model;
    }
    // A modem that will not close says so.
    writeSections(kModem + R"(, "faults": [{"call": "tel_deinit", "code": -1}])");
    delete StInfoStatusModel::getInstance();
    EXPECT_TRUE(logHas("tel deinit error!!"));
}

TEST_F(StInfoStatusModelTest, PhoneNumberFollowsTheCarrierFeatures) {
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    // The second line formats; each other changes one condition of it.
    const struct {
        const char *profile, *region, *number, *shown;
    } cases[] = {
        // The formatter is a library found beside the resources, loaded once: without them,
        // the number as it is; once the platform answers again, formatted.
        {R"("faults": [{"call": "app_get_resource_path", "code": -12}])", "en_GB.UTF-8",
         "+447700900123", "+447700900123"},
        {R"("csc": {})", "en_GB.UTF-8", "+447700900123", "+44 7700 900123"},
        {R"("csc": {"features": {"57": true}})", "en_GB.UTF-8", "+447700900123", "+447700900123"},
        {R"("csc": {"features": {"71": true}})", "en_GB.UTF-8", "+447700900123", "07700 900123"},
        {R"("csc": {"features": {"57": true, "71": true}})", "en_GB.UTF-8", "+447700900123",
         "07700 900123"},
        {R"("csc": {"features": {"71": true}})", "ko_KR.UTF-8", "+821012345678", "010-1234-5678"},
        // Formatted without a blank after the country code: the raw number is shown.
        {R"("csc": {"features": {"71": true}})", "ko_KR.UTF-8", "+8210123456789012",
         "+8210123456789012"},
        // Numbers in some regions are left as they are.
        {R"("csc": {})", "ru_RU.UTF-8", "+79161234567", "+79161234567"},
        {R"("csc": {})", "en_GB.UTF-8", "", ST_UNKNOWN_TEXT},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.profile) + " " + c.number);
        writeSections(kModem + ", " + c.profile);
        vconf_set_str("db/menu_widget/regionformat", c.region);
        vconf_set_str("db/setting/selected_num", c.number);
        EXPECT_EQ(model->getPhoneNumberInfo(), c.shown);
    }
}

// The profiles arrive; a failed EID reply leaves none, and a failed list reply after a good one
// keeps the list.
TEST_F(StInfoStatusModelTest, EsimProfilesArriveAndFailedRepliesKeepTheListAndLeaveNoEid) {
    simtest::RunningWatch watch;  // raises the eSIM event
    writeSections("");
    ASSERT_TRUE(watch.start(EflTestEnvironment::stateDir()));
    writeSections(kEsim + R"(, "sim": {"msisdn": "", "iccid": "8944110012345678901"},
        "esim": {"eid": "8904", "eid_result": -3, "profiles": [
            {"name": "Off one", "kind": 2, "state": 0},
            {"name": "Data only", "kind": 1, "state": 1},
            {"name": "Kite & Co <Travel>", "kind": 2, "state": 1}]},
        "latency": {"esim_profile_list_ms": 200})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    int emitted = 0;
    for (auto *signal : {&model->_eidSignal, &model->_esimProfileSignal})
        signal->addListener([&emitted]() { ++emitted; });
    EXPECT_EQ(model->getEnabledEsimName(), "");
    EXPECT_EQ(model->getIccidInfo(), kUnknown) << "no profile in use yet";
    ASSERT_TRUE(runUntil([&]() { return emitted > 0 && logHas("_esimGetEIDCb result (-3)"); }));
    EXPECT_EQ(emitted, 1);
    EXPECT_EQ(model->getEnabledEsimName(), "Kite & Co <Travel>");
    EXPECT_EQ(model->getEid(), "");

    // Event type 1, data 0: the profiles changed; the list asked for again fails.
    writeSections(kEsim + R"(, "esim": {"profiles": [], "profile_list_result": -5})");
    simtest::quillsetSim({"--state", EflTestEnvironment::stateDir(), "event", "esim", "1", "0"});
    ASSERT_TRUE(runUntil([this]() { return logHas("[ESIM] _esimGetProfileCb result (-5)"); }));
    EXPECT_EQ(model->getEnabledEsimName(), "Kite & Co <Travel>");
    EXPECT_EQ(emitted, 1);
}

// The ICCID as the page shows it. The first line shows it split, as the Korean carriers do, on
// an eSIM watch with a profile in use; each other line changes one condition of it.
TEST_F(StInfoStatusModelTest, IccidFollowsTheEsimStateAndTheCustomerCode) {
    const std::string esim = kEsim + R"(, "esim": {"profiles": [)";
    const std::string inUse = esim + R"({"name": "Spare", "kind": 1, "state": 1}]})";
    const std::string notInUse = esim + R"({"name": "Spare", "kind": 2, "state": 0}]})";
    const std::string noEsim = kModem + R"(, "esim": {"profiles": [
        {"name": "Spare", "kind": 2, "state": 0}]})";
    const struct {
        std::string profile;
        const char *customer;  // null: no customer code
        const char *iccid, *shown;
    } lines[] = {
        {inUse, "KTO", "8982050123456789012", "898205 0123456789012F"},
        {notInUse, "KTO", "8982050123456789012", ST_UNKNOWN_TEXT},
        {noEsim, "KTO", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "XEU", "8982050123456789012", "8982050123456789012"},
        {inUse, "kto", "8982050123456789012", "8982050123456789012"},
        {inUse, nullptr, "8982050123456789012", "8982050123456789012"},
        {inUse, "SKC", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "SKO", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "KTC", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "LUC", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "LUO", "8982050123456789012", "898205 0123456789012F"},
        {inUse, "KTO", "1234567", "123456 7F"},
        {inUse, "KTO", "123456", ""},
        {inUse, "KTO", "", ST_UNKNOWN_TEXT},
        {R"("telephony": {"modem": false})", "KTO", "8982050123456789012", ST_UNKNOWN_TEXT},
    };
    for (const auto &line : lines) {
        SCOPED_TRACE(line.profile + " " + (line.customer ? line.customer : "(none)") + " " +
                     line.iccid);
        writeSections(line.profile + R"(, "sim": {"iccid": ")" + line.iccid + "\"}");
        if (line.customer)
            vconf_set_str("db/csc/text_string_customer", line.customer);
        else
            std::remove(
                (EflTestEnvironment::stateDir() + "/settings/db/csc/text_string_customer").c_str());
        // The sales code, a neighbouring key, never decides.
        vconf_set_str("db/csc/salescode", line.customer ? "XEU" : "KTO");
        StInfoStatusModel *model = StInfoStatusModel::getInstance();
        runUntil([] { return platform::repliesAwaited() == 0; });
        EXPECT_EQ(model->getIccidInfo(), line.shown);
        delete model;
    }
}

// The device daemon's text: its serial number before the first comma where the carrier feature
// or the US carrier's code says so, the barcode after the last comma. The first line shows both;
// each other changes one condition of it. An answer that comes late is waited for.
TEST_F(StInfoStatusModelTest, SerialAndBarcodeNumbersFromTheDeviceDaemon) {
    simtest::RunningWatch watch;
    writeSections("");
    ASSERT_TRUE(watch.start(EflTestEnvironment::stateDir()));
    const struct {
        const char *deviced;
        bool feature;
        const char *customer, *serial, *barcode;
    } lines[] = {
        {R"({"serial": "A,B,C"})", true, "XEU", "A", "C"},
        {R"({"serial": "A,B,C"})", false, "XEU", "A,B,C", "C"},
        {R"({"serial": "A,B,C"})", false, "VZW", "A", "C"},
        {R"({"serial": "A,B,C"})", false, "vzw", "A,B,C", "C"},
        {R"({"serial": "SN1"})", true, "XEU", "SN1", ""},
        {R"({"serial": "SN1,"})", true, "XEU", "SN1", ""},
        {R"({"serial": ""})", true, "XEU", "", ""},
        {R"({"serial": "A,B,C", "reply_delay_ms": 300})", true, "XEU", "A", "C"},
    };
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    for (const auto &line : lines) {
        SCOPED_TRACE(std::string(line.deviced) + " " + line.customer);
        writeSections(std::string(R"("deviced": )") + line.deviced +
                      R"(, "csc": {"features": {"30": )" + (line.feature ? "true" : "false") +
                      "}}");
        vconf_set_str("db/csc/text_string_customer", line.customer);
        // The sales code, a neighbouring key, never decides.
        vconf_set_str("db/csc/salescode", "VZW");
        EXPECT_EQ(model->getSerialNumberInfo(), line.serial);
        EXPECT_EQ(model->getBarcodeNumberInfo(), line.barcode);
    }
    EXPECT_TRUE(logHas("no serial info is returned."));
    ASSERT_TRUE(watch.stopDaemon());
    EXPECT_EQ(model->getSerialNumberInfo(), "");
    EXPECT_TRUE(logHas("fail send message"));
}
