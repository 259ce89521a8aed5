// Installed packages' directories. Only the settings suite's own package is installed on the
// simulated watch; its shared resources are in the build or install tree.

#include <app_manager.h>

#include <cstdlib>
#include <cstring>

#include "PlatformState.h"

extern "C" int app_manager_get_shared_resource_path(const char *app_id, char **path) {
    if (!app_id || !path)
        return APP_MANAGER_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("app_manager_get_shared_resource_path", app_id, &code))
        return code;
    if (strcmp(app_id, "com.nerova.quillset") != 0)
        return APP_MANAGER_ERROR_NO_SUCH_APP;
    *path = strdup((platform::dataDir() + "/shared/res/").c_str());
    return *path ? APP_MANAGER_ERROR_NONE : APP_MANAGER_ERROR_OUT_OF_MEMORY;
}
