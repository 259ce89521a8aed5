#ifndef _ST_INFO_STATUS_MODEL_H_
#define _ST_INFO_STATUS_MODEL_H_

#include <WSignal.h>
#include <dbus/dbus.h>
#include <esim.h>
#include <ITapiModem.h>
#include <ITapiSim.h>
#include <tapi_common.h>

#include <memory>
#include <string>
#include <vector>

// The model behind the device status page: identifiers of the modem, the SIM, the eSIM, the
// radios and the device daemon. Getters ask the platform afresh each time and answer a value
// or a text id; only the phone number, the eSIM profiles and the EID arrive later, are cached
// and announced through the three signals.
class StInfoStatusModel {
public:
    struct StInfoEsimProfile {
        std::string name;
        int32_t kind;   // 2: the kind of profile whose name the page shows
        int32_t state;  // 1: enabled
    };

    static StInfoStatusModel *getInstance();
    virtual ~StInfoStatusModel();

    std::string getHwVersionInfo();
    std::string getPrlInfo();
    std::string getEriInfo();
    std::string getImeiInfo();
    std::string getImeiSvInfo();
    std::string getMeIdInfo();
    std::string getWifiMacAddress();
    std::string getBluetoothAddress();
    std::string getSerialNumberInfo();
    std::string getBarcodeNumberInfo();

    bool getImsRegistrationInfo();
    bool isHwVersionMenuEnabled();
    bool isImsMenuEnabled();
    bool isBarcodeMenuEnabled();

    bool isEsimMenuEnabled();
    std::string getEnabledEsimName();
    std::string getEid();
    std::string getIccidInfo();
    std::string getPhoneNumberInfo();

    app_assist::WSignal<void()> _msisdnSignal;
    app_assist::WSignal<void()> _esimProfileSignal;
    app_assist::WSignal<void()> _eidSignal;

    StInfoStatusModel(const StInfoStatusModel &) = delete;
    StInfoStatusModel &operator=(const StInfoStatusModel &) = delete;

private:
    StInfoStatusModel();
    void _init();

    TelMiscSNInformation *_getMiscSnInfo();
    std::string _getCustomerCode();
    std::string _getImeiSerialInfo();
    DBusMessage *_dbusMethodSyncWithReplyCb(const char *destination, const char *path,
                                            const char *interface, const char *method);
    std::string _getMsisdnNumber();
    bool _telGetSimMsisdn();

    static void _tapiSimMsisdnGetCb(TapiHandle *handle, int result, void *data, void *model);
    static void _telSimRefreshedCb(TapiHandle *handle, const char *notificationId, void *data,
                                   void *model);
    static void _esimNotiEventCb(esim_h handle, int eventType, void *eventData, void *model);
    static void _esimGetProfileCb(esim_h handle, int result, esim_profile_list_s *profileList,
                                  void *model);
    static void _esimGetEIDCb(esim_h handle, int result, const char *eidText, void *model);

    TapiHandle *_tapihandle;
    esim_h _esimHandle;
    std::string _eid;
    std::vector<std::shared_ptr<StInfoEsimProfile>> _esimProfiles;

    static StInfoStatusModel *_instance;
};

#endif
