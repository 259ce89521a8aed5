#ifndef _ST_INFO_MODEL_H_
#define _ST_INFO_MODEL_H_

#include <WSignal.h>
#include <vconf.h>

#include <cstdint>
#include <string>

// The model behind the About list: the debugging and diagnostic-consent switches, the device
// policy on debugging, the model number, the storage line and the country. Every query reads
// the platform again; outside changes arrive through the signals.
class StInfoModel {
public:
    static StInfoModel *getInstance();
    virtual ~StInfoModel();

    app_assist::WSignal<void(bool)> &getUsbDebuggingChangedSignal() { return _usbDebuggingSignal; }
    app_assist::WSignal<void(bool)> &getReportDiagnosticChangedSignal() {
        return _reportDiagnosticSignal;
    }
    app_assist::WSignal<void(bool)> &getUsbDebuggingRestrictionChangedSignal() {
        return _usbDebuggingRestrictionSignal;
    }

    bool isUsbDebuggingEnabled();
    bool setUsbDebuggingMode(bool enabled);
    bool isUsbDebuggingMenuRestricted();
    bool isUsbDebuggingChangeRestricted();

    bool isReportDiagnosticEnabled();
    bool setReportDiagnosticMode(bool enabled);
    void notifyLogProvider();

    bool isChinaCountry();
    bool isIndiaCountry();

    // The model number, or the unknown-value text id.
    std::string getSystemInfoModel();
    bool getAvailableInternalMemory(uint64_t *bytes);
    // "1.25GB / 4.0GB", or the unknown-value text id.
    std::string getStorageUsageText();

    StInfoModel(const StInfoModel &) = delete;
    StInfoModel &operator=(const StInfoModel &) = delete;

private:
    StInfoModel();
    void _init();

    static void _usbDebuggingKeyChangedCb(keynode_t *node, void *data);
    static void _reportDiagnosticKeyChangedCb(keynode_t *node, void *data);
    static void _autoUpdateTypeKeyChangedCb(keynode_t *node, void *data);
    static void _usbDebuggingPolicyChangedCb(int status, void *data);

    app_assist::WSignal<void(bool)> _usbDebuggingSignal;
    app_assist::WSignal<void(bool)> _reportDiagnosticSignal;
    app_assist::WSignal<void(int)> _autoUpdateTypeSignal;
    app_assist::WSignal<void(bool)> _usbDebuggingRestrictionSignal;
    int _policyReceiver;

    static StInfoModel *_instance;
};

#endif
