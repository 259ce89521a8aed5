#ifndef _ST_INFO_APP_H_
#define _ST_INFO_APP_H_

#include <WApp.h>
#include <WAppEventHandler.h>
#include <uxt_theme.h>

// The About application: one window with a naviframe; the first launch request pushes the main
// list.
class StInfoApp : public app_assist::WApp {
public:
    StInfoApp();
    ~StInfoApp() override;

    // Binds the application's text domain to the catalogues in its resource directory.
    static void bindTextDomain();

protected:
    bool onCreate() override;
    void onTerminate() override;
    void onPause() override;
    void onResume() override;
    void onAppControl(app_control_h request, bool firstLaunch) override;

private:
    static void _languageChangedCb(app_event_info_h event, void *data);

    app_assist::WAppEventHandler _appEventHandler;
    Uxt_Theme_Color_Table *_colorTable;
};

#endif
