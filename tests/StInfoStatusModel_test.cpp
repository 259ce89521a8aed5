// The status model against the platform stand-ins: the modem's records, the asynchronous phone
// number, eSIM profiles and EID, the ICCID and the radios. The model is one per process, and
// each test case runs in a process of its own.

#include <Eldbus.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "PlatformState.h"
#include "StInfoDefines.h"
#include "StInfoStatusModel.h"
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

// The model starts afresh for each watch, and says so when the old one's modem will not close.
// Without a modem, or with its records failing, the CDMA identifiers are unknown as well (the
// fault matrix's watch shows the others). Each phone-number reply rewrites the cached number;
// one with data announces it, even when the SIM has no number.
TEST_F(StInfoStatusModelTest, ModemRecordsGiveIdentifiersAndEmptyFieldsGiveUnknown) {
    const std::string radios = R"(, "bluetooth": {"address": "A0:B1:C2:D3:E4:F5"},
        "wifi": {"mac_address": "a0:b1:c2:d3:e4:f6"})";
    const std::string faults = R"(, "faults": [{"call": "tel_get_misc_me_sn_sync", "code": -5},
        {"call": "tel_get_misc_me_version_sync", "code": -5}, {"call": "tel_deinit", "code": -1}])";
    // Hardware, IMEI, IMEI SV, MEID, PRL, ERI, the radios, IMS, features; the phone number, the
    // cached number and how often it was announced.
    const struct {
        std::string profile;
        const char *shown, *logged;
    } cases[] = {
        {kModem + radios + R"(, "csc": {"features": {"39": true, "93": true}},
            "sim": {"msisdn": "+447700900123"})",
         "REV1.0|004801001234563|01|U|58023|U|A0:B1:C2:D3:E4:F5|a0:b1:c2:d3:e4:f6|ims|39 93 |"
         "+44 7700 900123|+447700900123|1",
         "HwVersion='REV1.0'"},
        {kModem + radios + faults + R"(, "sim": {"msisdn": ""})",
         "|U|U|U|U|U|A0:B1:C2:D3:E4:F5|a0:b1:c2:d3:e4:f6|ims||U||1", "getMeIdInfo("},
        {kModem + radios + R"(, "sim": {"msisdn": null})",
         "REV1.0|004801001234563|01|U|58023|U|A0:B1:C2:D3:E4:F5|a0:b1:c2:d3:e4:f6|ims||U||0",
         "no sim card info is returned"},
        {R"("telephony": {"modem": false}, "bluetooth": {}, "wifi": {})",
         "|U|U|U|U|U|U|U|||+44 999 9|+449999|0", "tel init error!!"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.profile);
        writeSections(c.profile);
        vconf_set_str("db/setting/selected_num", "+449999");
        StInfoStatusModel *m = StInfoStatusModel::getInstance();
        int emitted = 0;
        m->_msisdnSignal.addListener([&emitted]() { ++emitted; });
        settle(0.1);
        std::string shown;
        for (const std::string &value :
             {m->getHwVersionInfo(), m->getImeiInfo(), m->getImeiSvInfo(), m->getMeIdInfo(),
              m->getPrlInfo(), m->getEriInfo(), m->getBluetoothAddress(), m->getWifiMacAddress()})
            shown += (value == kUnknown ? "U" : value) + "|";
        char *cached = vconf_get_str("db/setting/selected_num");
        shown += std::string(m->getImsRegistrationInfo() ? "ims|" : "|") +
                 (m->isHwVersionMenuEnabled() ? "39 " : "") + (m->isImsMenuEnabled() ? "93 " : "") +
                 (m->isBarcodeMenuEnabled() ? "30 " : "") + "|" +
                 (m->getPhoneNumberInfo() == kUnknown ? "U" : m->getPhoneNumberInfo()) + "|" +
                 (cached ? cached : "(unset)") + "|" + std::to_string(emitted);
        free(cached);
        EXPECT_EQ(shown, c.shown);
        EXPECT_TRUE(logHas(c.logged)) << c.logged;
        delete m;
        EXPECT_EQ(logHas("tel deinit error!!"), &c != &cases[0]);
    }
}

TEST_F(StInfoStatusModelTest, PhoneNumberFollowsTheCarrierFeatures) {
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    const struct {
        const char *profile, *region, *number, *shown;
    } cases[] = {
        // The formatter is a library found beside the resources: without them, the number as
        // it is; once the platform answers again, formatted.
        {R"("faults": [{"call": "app_get_resource_path", "code": -12}])", "en_GB.UTF-8",
         "+447700900123", "+447700900123"},
        {R"("csc": {})", "en_GB.UTF-8", "+447700900123", "+44 7700 900123"},
        {R"("csc": {"features": {"57": true}})", "en_GB.UTF-8", "+447700900123", "+447700900123"},
        {R"("csc": {"features": {"71": true}})", "ko_KR.UTF-8", "+821012345678", "010-1234-5678"},
        {R"("csc": {"features": {"57": true, "71": true}})", "ko_KR.UTF-8", "+821012345678",
         "010-1234-5678"},
        // Formatted without a blank after the country code: the raw number is shown.
        {R"("csc": {"features": {"71": true}})", "ko_KR.UTF-8", "+8210123456789012",
         "+8210123456789012"},
        // Numbers in some regions are left as they are.
        {R"("csc": {})", "ru_RU.UTF-8", "+79161234567", "+79161234567"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.profile) + " " + c.number);
        writeSections(kModem + ", " + c.profile);
        vconf_set_str("db/menu_widget/regionformat", c.region);
        vconf_set_str("db/setting/selected_num", c.number);
        EXPECT_EQ(model->getPhoneNumberInfo(), c.shown);
    }
}

// The profiles arrive and give the ICCID a profile in use; a failed EID reply leaves none. A
// failed list reply after a good one keeps the list: the test raises the eSIM event on a bus of
// its own, as the services daemon would.
TEST_F(StInfoStatusModelTest, EsimProfilesArriveAndFailedRepliesKeepTheListAndLeaveNoEid) {
    struct Daemon {
        int pid = 0;
        ~Daemon() { kill(pid, SIGTERM); }
    } daemon;  // ended with the test, whatever happens
    FILE *out = popen("dbus-daemon --session --fork --print-address=1 --print-pid=1", "r");
    char address[512] = "", pid[32] = "";
    bool started = fgets(address, sizeof address, out) && fgets(pid, sizeof pid, out);
    pclose(out);
    ASSERT_TRUE(started && (daemon.pid = atoi(pid)) > 0);
    address[strcspn(address, "\n")] = '\0';
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
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
    EXPECT_EQ(model->getIccidInfo(), kUnknown);
    ASSERT_TRUE(runUntil([&]() { return emitted > 0 && logHas("_esimGetEIDCb result (-3)"); }));
    EXPECT_EQ(emitted, 1);
    EXPECT_EQ(model->getEnabledEsimName(), "Kite & Co <Travel>");
    EXPECT_EQ(model->getEid(), "");
    EXPECT_EQ(model->getIccidInfo(), "8944110012345678901");

    writeSections(kEsim + R"(, "esim": {"profiles": [], "profile_list_result": -5})");
    eldbus_init();
    Eldbus_Connection *bus = eldbus_connection_get(ELDBUS_CONNECTION_TYPE_SYSTEM);
    eldbus_name_request(bus, "com.nerova.quillset.sim", 0, nullptr, nullptr);
    Eldbus_Message *event =
        eldbus_message_signal_new("/com/nerova/quillset/sim", "com.nerova.quillset.Sim", "Event");
    Eldbus_Message_Iter *args = eldbus_message_iter_get(event), *list = nullptr;
    eldbus_message_iter_arguments_append(args, "sas", "esim", &list);
    for (const char *arg : {"1", "0"})  // event type 1, data 0: the profiles changed
        eldbus_message_iter_basic_append(list, 's', arg);
    eldbus_message_iter_container_close(args, list);
    eldbus_connection_send(bus, event, nullptr, nullptr, -1);
    bool replied = runUntil([this]() { return logHas("[ESIM] _esimGetProfileCb result (-5)"); });
    eldbus_connection_unref(bus);
    eldbus_shutdown();
    ASSERT_TRUE(replied);
    EXPECT_EQ(model->getEnabledEsimName(), "Kite & Co <Travel>");
    EXPECT_EQ(emitted, 1);
}

TEST_F(StInfoStatusModelTest, WithoutEsimPhaseOneTheIccidComesFromTheSim) {
    writeSections(kModem + R"(, "system_info": {"vendor": {"tizen/feature/esim.phase": 2}},
        "sim": {"iccid": "8982050123456789012"})");
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    EXPECT_FALSE(model->isEsimMenuEnabled());
    EXPECT_FALSE(logHas("[ESIM]"));

    // Korean carriers show it split after six digits and closed with F. The sales code is not
    // asked for a SIM without ICCID.
    const struct {
        const char *salesCode, *iccid, *shown;
    } cases[] = {
        {"", "8982050123456789012", "8982050123456789012"},
        {"KTO", "8982050123456789012", "898205 0123456789012F"},
        {"SKC", "1234567", "123456 7F"},
        {"LUO", "123456", ""},
        {"kto", "8982050123456789012", "8982050123456789012"},
        {"XEU", "8982050123456789012", "8982050123456789012"},
        {nullptr, "", ST_UNKNOWN_TEXT},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.iccid);
        vconf_set_str("db/csc/text_string_customer", c.salesCode ? c.salesCode : "");
        writeSections(kModem + R"(, "sim": {"iccid": ")" + c.iccid + "\"}" +
                      (c.salesCode ? "" : R"(, "faults": [{"call": "vconf_get_str",
                         "key": "db/csc/text_string_customer", "code": -5}])"));
        EXPECT_EQ(model->getIccidInfo(), c.shown);
    }
    EXPECT_FALSE(logHas("Customer Code is empty!"));
}
