// Application preferences from the profile's "preferences" section, e.g.
// "preferences": {"DND_SCHEDULE_ENABLED": true}

#include <app_preference.h>

#include "PlatformState.h"

extern "C" int preference_get_boolean(const char *key, bool *value) {
    if (!key || !value)
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("preference_get_boolean", key, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto prefs = profile.find("preferences");
    if (prefs == profile.end() || !prefs->is_object())
        return PREFERENCE_ERROR_NO_KEY;
    auto it = prefs->find(key);
    if (it == prefs->end())
        return PREFERENCE_ERROR_NO_KEY;
    if (!it->is_boolean())
        return PREFERENCE_ERROR_INVALID_PARAMETER;
    *value = it->get<bool>();
    return PREFERENCE_ERROR_NONE;
}
