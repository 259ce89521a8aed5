// Bundles: small ordered sets of string pairs that records travel in.

#include <bundle.h>

#include <string>
#include <utility>
#include <vector>

#include "PlatformState.h"

struct _bundle_t {
    std::vector<std::pair<std::string, std::string>> pairs;
};

extern "C" {

bundle *bundle_create(void) {
    return new _bundle_t();
}

int bundle_free(bundle *b) {
    if (!b)
        return BUNDLE_ERROR_INVALID_PARAMETER;
    delete b;
    return BUNDLE_ERROR_NONE;
}

int bundle_add_str(bundle *b, const char *key, const char *str) {
    if (!b || !key || !*key || !str)
        return BUNDLE_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault(__func__, key, &code))
        return code;
    for (const auto &pair : b->pairs)
        if (pair.first == key)
            return BUNDLE_ERROR_KEY_EXISTS;
    b->pairs.emplace_back(key, str);
    return BUNDLE_ERROR_NONE;
}

int bundle_get_str(bundle *b, const char *key, char **str) {
    if (!b || !key || !str)
        return BUNDLE_ERROR_INVALID_PARAMETER;
    for (auto &pair : b->pairs) {
        if (pair.first == key) {
            *str = const_cast<char *>(pair.second.c_str());
            return BUNDLE_ERROR_NONE;
        }
    }
    return BUNDLE_ERROR_KEY_NOT_AVAILABLE;
}

int bundle_get_count(bundle *b) {
    return b ? static_cast<int>(b->pairs.size()) : 0;
}

void bundle_iterate(bundle *b, bundle_iterator_t callback, void *cb_data) {
    if (!b || !callback)
        return;
    for (const auto &pair : b->pairs)
        callback(pair.first.c_str(), pair.second.c_str(), cb_data);
}

}  // extern "C"
