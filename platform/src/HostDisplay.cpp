#include "HostDisplay.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xext.h>
#include <dlog.h>

namespace {

const char *const kTag = "APP_CORE";

// The toolkit asks every display for power management (DPMS), which Xvfb and Xwayland do not
// have; the X library would say so on the terminal of every start.
int extensionErrorCb(Display *display, _Xconst char *extension, _Xconst char *reason) {
    dlog_print(DLOG_INFO, kTag, "X extension %s %s on display %s", extension, reason,
               DisplayString(display));
    return 0;
}

}  // namespace

namespace platform {

void hostDisplayQuiet() {
    XSetExtensionErrorHandler(extensionErrorCb);
}

}  // namespace platform
