#ifndef QUILLSET_PLATFORM_APP_CONTROL_REQUEST_H
#define QUILLSET_PLATFORM_APP_CONTROL_REQUEST_H

#include <app_control.h>

namespace platform {

// A request made by the platform itself (the launch request it hands to the application).
// Faults injected into app_control_create are meant for the application's own requests.
app_control_h newAppControl();

}  // namespace platform

#endif
