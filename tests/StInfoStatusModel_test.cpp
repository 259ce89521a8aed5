// The status model against the platform stand-ins: the modem's records, the asynchronous phone
// number, eSIM profiles and EID, the radios, and every failure answered with the unknown text.
// The model is one per process, and each test case runs in a process of its own.

#include <gtest/gtest.h>
#include <vconf.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "PlatformState.h"
#include "StInfoDefines.h"
#include "StInfoStatusModel.h"
#include "support/EflTestEnvironment.h"

namespace {

const std::string kUnknown = ST_UNKNOWN_TEXT;

const char *const kModem = R"("telephony": {"modem": true, "hw_version": "REV1.0",
    "imei": "004801001234563", "imei_sv": "01", "meid": "", "prl_version": "58023",
    "eri_version": "", "volte_enable": 1})";

class StInfoStatusModelTest : public EflTest {
protected:
    void SetUp() override {
        EflTest::SetUp();
        // The device daemon is asked on a bus that does not exist, never the host's own.
        std::string bus = "unix:path=" + EflTestEnvironment::stateDir() + "/no-bus.sock";
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.c_str(), 1);
        vconf_set_str("db/menu_widget/regionformat", "en_GB.UTF-8");
    }

    void writeProfile(const std::string &sections) {
        std::ofstream(EflTestEnvironment::stateDir() + "/profile.json") << "{" << sections << "}";
        platform::reloadProfile();
    }

    bool logHas(const std::string &text) const {
        return logSinceStart().find(text) != std::string::npos;
    }
};

}  // namespace

TEST_F(StInfoStatusModelTest, ModemRecordsGiveIdentifiersAndEmptyFieldsGiveUnknown) {
    writeProfile(std::string(kModem) + R"(, "csc": {"features": {"39": true, "93": true}})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_EQ(model->getHwVersionInfo(), "REV1.0");
    EXPECT_TRUE(logHas("HwVersion='REV1.0'"));
    EXPECT_EQ(model->getImeiInfo(), "004801001234563");
    EXPECT_EQ(model->getImeiSvInfo(), "01");
    EXPECT_EQ(model->getMeIdInfo(), kUnknown);
    EXPECT_EQ(model->getPrlInfo(), "58023");
    EXPECT_EQ(model->getEriInfo(), kUnknown);
    EXPECT_TRUE(model->getImsRegistrationInfo());
    EXPECT_TRUE(model->isHwVersionMenuEnabled());
    EXPECT_TRUE(model->isImsMenuEnabled());
    EXPECT_FALSE(model->isBarcodeMenuEnabled());
}

TEST_F(StInfoStatusModelTest, WithoutAModemEveryModemValueIsUnknownAndLogged) {
    writeProfile(R"("telephony": {"modem": false}, "sim": {"msisdn": "+447700900123"})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_TRUE(logHas("* Critical * tel init error!!"));
    for (const std::string &value :
         {model->getImeiInfo(), model->getImeiSvInfo(), model->getMeIdInfo(), model->getPrlInfo(),
          model->getEriInfo(), model->getIccidInfo()})
        EXPECT_EQ(value, kUnknown);
    EXPECT_TRUE(logHas("_tapihandle is null"));
    EXPECT_EQ(model->getHwVersionInfo(), "");
    EXPECT_TRUE(logHas("tel_get_misc_me_version_sync() failed."));
    EXPECT_FALSE(model->getImsRegistrationInfo());
    EXPECT_TRUE(logHas("tel_get_property_int failed ["));
    // No request was made, so no number ever arrives.
    settle(0.2);
    EXPECT_EQ(model->getPhoneNumberInfo(), kUnknown);
}

TEST_F(StInfoStatusModelTest, FailingRecordsAndPropertiesAreLoggedAndAnsweredSafely) {
    writeProfile(std::string(kModem) + R"(, "faults": [
        {"call": "tel_get_misc_me_sn_sync", "code": -5},
        {"call": "tel_get_misc_me_version_sync", "code": -5},
        {"call": "tel_get_property_int", "code": -13},
        {"call": "csc_feature_get_bool", "key": "39", "code": -5}])");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    // Each identifier's line names the getter that failed.
    EXPECT_EQ(model->getImeiInfo(), kUnknown);
    EXPECT_EQ(model->getImeiSvInfo(), kUnknown);
    EXPECT_EQ(model->getMeIdInfo(), kUnknown);
    for (const char *getter : {"getImeiInfo(", "getImeiSvInfo(", "getMeIdInfo("})
        EXPECT_TRUE(logHas(getter)) << getter;
    EXPECT_EQ(model->getPrlInfo(), kUnknown);
    EXPECT_EQ(model->getHwVersionInfo(), "");
    EXPECT_FALSE(model->getImsRegistrationInfo());
    EXPECT_TRUE(logHas("tel_get_property_int failed [-13]"));
    // A failed feature query counts as off.
    EXPECT_FALSE(model->isHwVersionMenuEnabled());
}

TEST_F(StInfoStatusModelTest, PhoneNumberArrivesAfterTheModemsLatencyAndIsCached) {
    writeProfile(std::string(kModem) +
                 R"(, "sim": {"msisdn": "+447700900123"}, "latency": {"msisdn_ms": 300})");
    vconf_set_str("db/setting/selected_num", "");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    int emitted = 0;
    model->_msisdnSignal.addListener([&emitted]() { ++emitted; });
    settle(0.1);
    EXPECT_EQ(emitted, 0);
    EXPECT_EQ(model->getPhoneNumberInfo(), kUnknown);
    ASSERT_TRUE(runUntil([&emitted]() { return emitted > 0; }, 3.0));
    EXPECT_EQ(emitted, 1);
    char *cached = vconf_get_str("db/setting/selected_num");
    ASSERT_NE(cached, nullptr);
    EXPECT_STREQ(cached, "+447700900123");
    free(cached);
    EXPECT_EQ(model->getPhoneNumberInfo(), "+44 7700 900123");
}

TEST_F(StInfoStatusModelTest, PhoneNumberFollowsTheCarrierFeatures) {
    writeProfile(std::string(kModem) + R"(, "sim": {"msisdn": ""})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    int emitted = 0;
    model->_msisdnSignal.addListener([&emitted]() { ++emitted; });
    // A SIM without a number: the key is emptied, the signal fires, the row shows unknown.
    vconf_set_str("db/setting/selected_num", "+449999");
    ASSERT_TRUE(runUntil([&emitted]() { return emitted > 0; }));
    EXPECT_EQ(model->getPhoneNumberInfo(), kUnknown);

    struct Case {
        const char *features;
        const char *region;
        const char *number;
        const char *shown;
    };
    const Case cases[] = {
        {"{}", "en_GB.UTF-8", "+447700900123", "+44 7700 900123"},
        {R"({"57": true})", "en_GB.UTF-8", "+447700900123", "+447700900123"},
        {R"({"71": true})", "ko_KR.UTF-8", "+821012345678", "010-1234-5678"},
        {R"({"57": true, "71": true})", "ko_KR.UTF-8", "+821012345678", "010-1234-5678"},
        // Formatted without a blank after the country code: the raw number is shown.
        {R"({"71": true})", "ko_KR.UTF-8", "01012345678", "010-1234-5678"},
        // Numbers in some regions are left as they are.
        {"{}", "ru_RU.UTF-8", "+79161234567", "+79161234567"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.features) + " " + c.number);
        writeProfile(std::string(kModem) + R"(, "csc": {"features": )" + c.features + "}");
        vconf_set_str("db/menu_widget/regionformat", c.region);
        vconf_set_str("db/setting/selected_num", c.number);
        EXPECT_EQ(model->getPhoneNumberInfo(), c.shown);
    }
}

TEST_F(StInfoStatusModelTest, WithoutItsFormatterThePhoneNumberIsShownAsGiven) {
    // The formatter is a library of the package, found beside its resources.
    writeProfile(std::string(kModem) +
                 R"(, "faults": [{"call": "app_get_resource_path", "code": -12}])");
    vconf_set_str("db/menu_widget/regionformat", "en_GB.UTF-8");
    vconf_set_str("db/setting/selected_num", "+447700900123");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_EQ(model->getPhoneNumberInfo(), "+447700900123");
    // Once the platform answers again, the next request formats the number.
    writeProfile(kModem);
    EXPECT_EQ(model->getPhoneNumberInfo(), "+44 7700 900123");
}

TEST_F(StInfoStatusModelTest, ReplyWithoutDataEmptiesTheNumberWithoutSignal) {
    writeProfile(std::string(kModem) + R"(, "sim": {"msisdn": null})");
    vconf_set_str("db/setting/selected_num", "+447700900123");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    int emitted = 0;
    model->_msisdnSignal.addListener([&emitted]() { ++emitted; });
    ASSERT_TRUE(runUntil([this]() { return logHas("no sim card info is returned"); }));
    EXPECT_EQ(emitted, 0);
    EXPECT_EQ(model->getPhoneNumberInfo(), kUnknown);
}

TEST_F(StInfoStatusModelTest, EsimProfilesAndEidArriveAndTheIccidWaitsForAnEnabledProfile) {
    writeProfile(std::string(kModem) + R"(,
        "system_info": {"vendor": {"tizen/feature/esim.phase": 1}},
        "sim": {"msisdn": "", "iccid": "8944110012345678901"},
        "esim": {"eid": "89000480000001000000012345678901", "profiles": [
            {"name": "Off one", "kind": 2, "state": 0},
            {"name": "Data only", "kind": 1, "state": 1},
            {"name": "Kite & Co <Travel>", "kind": 2, "state": 1}]},
        "latency": {"esim_profile_list_ms": 200, "esim_eid_ms": 300})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_TRUE(model->isEsimMenuEnabled());
    int profiles = 0, eids = 0;
    model->_esimProfileSignal.addListener([&profiles]() { ++profiles; });
    model->_eidSignal.addListener([&eids]() { ++eids; });
    EXPECT_EQ(model->getEnabledEsimName(), "");
    EXPECT_EQ(model->getEid(), "");
    EXPECT_EQ(model->getIccidInfo(), kUnknown);
    ASSERT_TRUE(runUntil([&]() { return profiles > 0 && eids > 0; }, 3.0));
    EXPECT_EQ(model->getEnabledEsimName(), "Kite & Co <Travel>");
    EXPECT_EQ(model->getEid(), "89000480000001000000012345678901");
    EXPECT_EQ(model->getIccidInfo(), "8944110012345678901");
}

TEST_F(StInfoStatusModelTest, EsimFailuresAreLoggedAndKeepOrClearTheCache) {
    writeProfile(std::string(kModem) + R"(,
        "system_info": {"vendor": {"tizen/feature/esim.phase": 1}},
        "sim": {"iccid": "8944110012345678901"},
        "esim": {"eid": "8904", "profiles": [{"name": "A", "kind": 2, "state": 1}],
                 "profile_list_result": -5, "eid_result": -3})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    int emitted = 0;
    model->_esimProfileSignal.addListener([&emitted]() { ++emitted; });
    model->_eidSignal.addListener([&emitted]() { ++emitted; });
    ASSERT_TRUE(runUntil([this]() {
        return logHas("[ESIM] _esimGetProfileCb result (-5)") &&
               logHas("[ESIM] _esimGetEIDCb result (-3)");
    }));
    EXPECT_EQ(emitted, 0);
    EXPECT_EQ(model->getEnabledEsimName(), "");
    EXPECT_TRUE(logHas("no enabled profile"));
    EXPECT_EQ(model->getEid(), "");
    // eSIM is active but no profile is enabled: the physical SIM is not asked.
    EXPECT_EQ(model->getIccidInfo(), kUnknown);
}

TEST_F(StInfoStatusModelTest, EsimRequestsThatCannotBeSentAreLogged) {
    writeProfile(std::string(kModem) + R"(,
        "system_info": {"vendor": {"tizen/feature/esim.phase": 1}},
        "esim": {}, "faults": [{"call": "esim_get_profile_list", "code": 26},
                               {"call": "esim_get_eid", "code": 27}])");
    StInfoStatusModel::getInstance();
    EXPECT_TRUE(logHas("[ESIM] esim_get_profile_list fail : 1a"));
    EXPECT_TRUE(logHas("[ESIM] esim_get_eid fail : 1b"));
}

TEST_F(StInfoStatusModelTest, WithoutEsimPhaseOneTheIccidComesFromTheSim) {
    writeProfile(std::string(kModem) + R"(,
        "system_info": {"vendor": {"tizen/feature/esim.phase": 2}},
        "sim": {"iccid": "8982050123456789012"})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_FALSE(model->isEsimMenuEnabled());
    EXPECT_FALSE(logHas("[ESIM]"));
    EXPECT_EQ(model->getIccidInfo(), "8982050123456789012");

    // Korean carriers show it split after six digits and closed with F.
    const struct {
        const char *salesCode;
        const char *iccid;
        const char *shown;
    } cases[] = {
        {"KTO", "8982050123456789012", "898205 0123456789012F"},
        {"SKC", "1234567", "123456 7F"},
        {"LUO", "123456", ""},
        {"kto", "8982050123456789012", "8982050123456789012"},
        {"XEU", "8982050123456789012", "8982050123456789012"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.salesCode);
        vconf_set_str("db/csc/text_string_customer", c.salesCode);
        writeProfile(std::string(kModem) + R"(, "sim": {"iccid": ")" + c.iccid + "\"}");
        EXPECT_EQ(model->getIccidInfo(), c.shown);
    }

    // The sales code is not asked for a SIM without ICCID.
    writeProfile(std::string(kModem) + R"(, "sim": {"iccid": ""}, "faults": [
        {"call": "vconf_get_str", "key": "db/csc/text_string_customer", "code": -5}])");
    size_t logged = logSinceStart().size();
    EXPECT_EQ(model->getIccidInfo(), kUnknown);
    EXPECT_EQ(logSinceStart().find("Customer Code is empty!", logged), std::string::npos);
    writeProfile(
        std::string(kModem) +
        R"(, "sim": {"iccid": "1"}, "faults": [{"call": "tel_request_sim_sync", "code": -5}])");
    EXPECT_EQ(model->getIccidInfo(), kUnknown);
    EXPECT_TRUE(logHas("tel_request_sim_sync failed [-5]"));
}

TEST_F(StInfoStatusModelTest, RadioAddressesAndTheirFailures) {
    writeProfile(R"("bluetooth": {"address": "A0:B1:C2:D3:E4:F5"},
                    "wifi": {"mac_address": "a0:b1:c2:d3:e4:f6"})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_EQ(model->getBluetoothAddress(), "A0:B1:C2:D3:E4:F5");
    EXPECT_EQ(model->getWifiMacAddress(), "a0:b1:c2:d3:e4:f6");

    // An initialisation failure alone changes nothing; the address call decides.
    writeProfile(R"("bluetooth": {"address": "A0:B1:C2:D3:E4:F5"},
                    "faults": [{"call": "bt_initialize", "code": -5}])");
    EXPECT_EQ(model->getBluetoothAddress(), "IDS_ST_BODY_UNAVAILABLE");
    EXPECT_TRUE(logHas("bluetooth initialization failed"));
    EXPECT_TRUE(logHas("bt address : get bt address with error code:"));

    writeProfile(R"("bluetooth": {}, "wifi": {})");
    EXPECT_EQ(model->getBluetoothAddress(), kUnknown);
    EXPECT_EQ(model->getWifiMacAddress(), kUnknown);

    writeProfile(R"("wifi": {"mac_address": "a0"}, "faults": [
        {"call": "wifi_manager_initialize", "code": -5}])");
    EXPECT_EQ(model->getWifiMacAddress(), kUnknown);
    EXPECT_TRUE(logHas("wifi manager initialize failed! [-5]"));
    writeProfile(R"("wifi": {"mac_address": "a0"}, "faults": [
        {"call": "wifi_manager_get_mac_address", "code": -5}])");
    EXPECT_EQ(model->getWifiMacAddress(), kUnknown);
    EXPECT_TRUE(logHas("Failed to get wifi mac address!"));
}

TEST_F(StInfoStatusModelTest, UnreachableDeviceDaemonGivesEmptySerialAndBarcode) {
    writeProfile(R"("csc": {"features": {"30": true}})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_EQ(model->getSerialNumberInfo(), "");
    EXPECT_EQ(model->getBarcodeNumberInfo(), "");
    EXPECT_TRUE(logHas("fail send message"));
}

TEST_F(StInfoStatusModelTest, TeardownClosesTheModemAndLogsWhenItWillNotClose) {
    writeProfile(std::string(kModem) + R"(,
        "system_info": {"vendor": {"tizen/feature/esim.phase": 1}},
        "esim": {"eid": "8904", "profiles": [{"name": "A", "kind": 2, "state": 1}]})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    ASSERT_TRUE(runUntil([model]() { return model->getEnabledEsimName() == "A"; }));
    delete model;
    EXPECT_FALSE(logHas("tel deinit error!!"));

    // The next model starts afresh; this one's modem refuses to close.
    writeProfile(std::string(kModem) + R"(, "faults": [{"call": "tel_deinit", "code": -1}])");
    model = StInfoStatusModel::getInstance();
    EXPECT_EQ(model->getImeiInfo(), "004801001234563");
    delete model;
    EXPECT_TRUE(logHas("tel deinit error!!"));
    EXPECT_NE(StInfoStatusModel::getInstance(), nullptr);
}
