#ifndef _ST_LOG_MANAGER_H_
#define _ST_LOG_MANAGER_H_

#include <nerova_log_manager.h>

// Content URIs of the device's log provider, in the vendor's namespace.
#define ST_LOG_URI_FEATURE_SURVEY "http://developer.nerova.com/log/use_app_feature_survey"
#define ST_LOG_URI_STATUS_SURVEY "http://developer.nerova.com/log/report_app_status_survey"

// Sends usage records to the log provider: which screens and actions were used, and the state
// of the watch's settings. Records are fire-and-forget.
class StLogManager {
public:
    static StLogManager *getInstance();

    void log(const char *appId, const char *uri, const char *feature, const char *extra,
             const char *value);
    void log(const char *uri, const char *feature, const char *extra, const char *value);
    // One status record for each of the watch's reported settings.
    void logStatusAll();

    virtual ~StLogManager();

private:
    StLogManager();
    void _init();
    bool _ensureHandle();
    void _insert(const char *appId, const char *uri, const char *feature, const char *extra,
                 const char *value);
    void _logStatus(const char *appId, const char *feature, const char *extra, const char *value);
    void _logStatus(const char *feature, const char *extra, const char *value);
    void _logOnOff(const char *feature, int value);
    void _logRingtoneTitle();

    nerova_log_manager_h _logManagerHandle;
    static StLogManager *_pInstance;
};

#endif
