#ifndef QUILLSET_DRIVE_LIVE_LISTENERS_H
#define QUILLSET_DRIVE_LIVE_LISTENERS_H

// The models' live signal subscriptions, and the launcher's pending time-out, read from outside
// the application without hooks in it: through explicit instantiation, which is exempt from
// access checks. Included by one source file of each program that counts them.

#include <WSignal.h>

#include <cstddef>

#include "StAppControlLauncher.h"
#include "StInfoModel.h"
#include "StInfoStatusModel.h"

namespace live_listeners {

template <typename Tag, auto Member>
struct Expose {
    friend constexpr auto memberOf(Tag) { return Member; }
};
struct BoolListeners {
    friend constexpr auto memberOf(BoolListeners);
};
struct VoidListeners {
    friend constexpr auto memberOf(VoidListeners);
};
struct InfoInstance {
    friend constexpr auto memberOf(InfoInstance);
};
struct StatusInstance {
    friend constexpr auto memberOf(StatusInstance);
};
struct LauncherInstance {
    friend constexpr auto memberOf(LauncherInstance);
};
struct LauncherTimer {
    friend constexpr auto memberOf(LauncherTimer);
};
template struct Expose<BoolListeners, &app_assist::WSignal<void(bool)>::_listeners>;
template struct Expose<VoidListeners, &app_assist::WSignal<void()>::_listeners>;
template struct Expose<InfoInstance, &StInfoModel::_instance>;
template struct Expose<StatusInstance, &StInfoStatusModel::_instance>;
template struct Expose<LauncherInstance, &StAppControlLauncher::_instance>;
template struct Expose<LauncherTimer, &StAppControlLauncher::_timer>;

// Subscriptions on the info and status models' signals; models not yet made have none.
inline size_t count() {
    size_t n = 0;
    if (StInfoModel *info = *memberOf(InfoInstance{})) {
        for (app_assist::WSignal<void(bool)> *signal :
             {&info->getUsbDebuggingChangedSignal(), &info->getReportDiagnosticChangedSignal(),
              &info->getUsbDebuggingRestrictionChangedSignal()})
            n += (signal->*memberOf(BoolListeners{})).size();
    }
    if (StInfoStatusModel *status = *memberOf(StatusInstance{})) {
        for (app_assist::WSignal<void()> *signal :
             {&status->_msisdnSignal, &status->_esimProfileSignal, &status->_eidSignal})
            n += (signal->*memberOf(VoidListeners{})).size();
    }
    return n;
}

// Whether the launcher holds a time-out while the screen it blocked is gone.
inline bool launchBlockOutlivesItsScreen() {
    StAppControlLauncher *launcher = *memberOf(LauncherInstance{});
    return launcher && launcher->*memberOf(LauncherTimer{}) && !launcher->isUiBlocked();
}

}  // namespace live_listeners

#endif
