// The settings store (vconf) of the simulated watch, over the state directory's settings
// files. Changes by any process reach the watchers of this one through inotify, as callbacks
// on the Ecore main loop.

#include <vconf.h>

#include <Ecore.h>
#include <dlog.h>

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <list>
#include <map>
#include <memory>
#include <string>

#include "PlatformState.h"
#include "SettingsStore.h"
#include "StatePaths.h"

struct _keynode_t {
    std::string name;
    sim::SettingValue value;
};

namespace {

const char *const kTag = "VCONF";

struct Watch {
    std::string key;
    vconf_callback_fn callback;
    void *userData;
    bool removed;
};

struct Watcher {
    int fd = -1;
    Ecore_Fd_Handler *handler = nullptr;
    std::map<int, std::string> dirs;  // inotify watch -> directory
    std::list<std::unique_ptr<Watch>> watches;
    int dispatching = 0;
};

Watcher &watcher() {
    static Watcher w;
    return w;
}

bool storeFor(sim::SettingsStore **out) {
    static std::unique_ptr<sim::SettingsStore> store;
    static std::string root;
    const std::string &dir = platform::stateDir();
    if (dir.empty())
        return false;
    if (!store || root != dir) {
        store = std::make_unique<sim::SettingsStore>(dir);
        root = dir;
    }
    *out = store.get();
    return true;
}

int readValue(const char *call, const char *key, sim::SettingValue::Type type,
              sim::SettingValue *value) {
    if (!key)
        return VCONF_ERROR;
    int code;
    if (platform::fault(call, key, &code))
        return code;
    sim::SettingsStore *store;
    if (!storeFor(&store))
        return VCONF_ERROR;
    std::string error;
    switch (store->read(key, value, &error)) {
        case sim::SettingsStore::Ok:
            break;
        case sim::SettingsStore::Missing:
            return VCONF_ERROR_FILE_NO_ENT;
        default:
            dlog_print(DLOG_ERROR, kTag, "%s(%s): %s", call, key, error.c_str());
            return VCONF_ERROR;
    }
    if (value->type != type) {
        // Reading a key as another type fails, as on the watch.
        return VCONF_ERROR_WRONG_TYPE;
    }
    return VCONF_OK;
}

int writeValue(const char *call, const char *key, const sim::SettingValue &value) {
    if (!key)
        return VCONF_ERROR;
    int code;
    if (platform::fault(call, key, &code))
        return code;
    sim::SettingsStore *store;
    if (!storeFor(&store))
        return VCONF_ERROR;
    std::string error;
    if (store->write(key, value, &error) != sim::SettingsStore::Ok) {
        dlog_print(DLOG_ERROR, kTag, "%s(%s): %s", call, key, error.c_str());
        return VCONF_ERROR;
    }
    return VCONF_OK;
}

void dispatch(const std::string &key) {
    Watcher &w = watcher();
    sim::SettingsStore *store;
    if (!storeFor(&store))
        return;
    _keynode_t node;
    node.name = key;
    std::string error;
    if (store->read(key, &node.value, &error) != sim::SettingsStore::Ok)
        node.value = sim::SettingValue();  // deleted or unreadable: type none
    ++w.dispatching;
    for (auto &watch : w.watches) {
        if (!watch->removed && watch->key == key)
            watch->callback(&node, watch->userData);
    }
    if (--w.dispatching == 0)
        w.watches.remove_if([](const std::unique_ptr<Watch> &watch) { return watch->removed; });
}

Eina_Bool inotifyCb(void *, Ecore_Fd_Handler *) {
    Watcher &w = watcher();
    alignas(struct inotify_event) char buffer[16 * (sizeof(struct inotify_event) + NAME_MAX + 1)];
    for (;;) {
        ssize_t n = read(w.fd, buffer, sizeof(buffer));
        if (n <= 0)
            break;
        for (char *p = buffer; p < buffer + n;) {
            auto *event = reinterpret_cast<struct inotify_event *>(p);
            p += sizeof(struct inotify_event) + event->len;
            if (!event->len)
                continue;
            auto dir = w.dirs.find(event->wd);
            if (dir == w.dirs.end())
                continue;
            std::string name(event->name);
            if (name.find(".tmp.") != std::string::npos)
                continue;  // a write in progress; its rename follows
            sim::SettingsStore *store;
            if (!storeFor(&store))
                return ECORE_CALLBACK_RENEW;
            std::string path = dir->second + "/" + name;
            dispatch(path.substr(store->root().size() + 1));
        }
    }
    return ECORE_CALLBACK_RENEW;
}

bool watchDirectory(const std::string &dir) {
    Watcher &w = watcher();
    if (w.fd < 0) {
        w.fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (w.fd < 0) {
            dlog_print(DLOG_ERROR, kTag, "inotify_init1: %s", strerror(errno));
            return false;
        }
        w.handler =
            ecore_main_fd_handler_add(w.fd, ECORE_FD_READ, inotifyCb, nullptr, nullptr, nullptr);
    }
    for (auto &entry : w.dirs)
        if (entry.second == dir)
            return true;
    std::string error;
    if (!sim::makeDirs(dir, &error)) {
        dlog_print(DLOG_ERROR, kTag, "%s", error.c_str());
        return false;
    }
    int wd = inotify_add_watch(w.fd, dir.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE);
    if (wd < 0) {
        dlog_print(DLOG_ERROR, kTag, "inotify_add_watch(%s): %s", dir.c_str(), strerror(errno));
        return false;
    }
    w.dirs[wd] = dir;
    return true;
}

}  // namespace

extern "C" {

int vconf_get_int(const char *key, int *intval) {
    if (!intval)
        return VCONF_ERROR;
    sim::SettingValue value;
    int ret = readValue(__func__, key, sim::SettingValue::Int, &value);
    if (ret == VCONF_OK)
        *intval = value.i;
    return ret;
}

int vconf_get_bool(const char *key, int *boolval) {
    if (!boolval)
        return VCONF_ERROR;
    sim::SettingValue value;
    int ret = readValue(__func__, key, sim::SettingValue::Bool, &value);
    if (ret == VCONF_OK)
        *boolval = value.b ? 1 : 0;
    return ret;
}

int vconf_get_dbl(const char *key, double *dblval) {
    if (!dblval)
        return VCONF_ERROR;
    sim::SettingValue value;
    int ret = readValue(__func__, key, sim::SettingValue::Double, &value);
    if (ret == VCONF_OK)
        *dblval = value.d;
    return ret;
}

char *vconf_get_str(const char *key) {
    sim::SettingValue value;
    if (readValue(__func__, key, sim::SettingValue::String, &value) != VCONF_OK)
        return nullptr;
    return strdup(value.s.c_str());
}

int vconf_set_int(const char *key, int intval) {
    return writeValue(__func__, key, sim::SettingValue::ofInt(intval));
}

int vconf_set_bool(const char *key, int boolval) {
    return writeValue(__func__, key, sim::SettingValue::ofBool(boolval != 0));
}

int vconf_set_dbl(const char *key, double dblval) {
    return writeValue(__func__, key, sim::SettingValue::ofDouble(dblval));
}

int vconf_set_str(const char *key, const char *strval) {
    if (!strval)
        return VCONF_ERROR;
    return writeValue(__func__, key, sim::SettingValue::ofString(strval));
}

int vconf_notify_key_changed(const char *key, vconf_callback_fn cb, void *user_data) {
    if (!key || !cb || !sim::SettingsStore::validKey(key))
        return VCONF_ERROR;
    int code;
    if (platform::fault(__func__, key, &code))
        return code;
    sim::SettingsStore *store;
    if (!storeFor(&store))
        return VCONF_ERROR;
    Watcher &w = watcher();
    for (auto &watch : w.watches)
        if (!watch->removed && watch->key == key && watch->callback == cb)
            return VCONF_ERROR;
    std::string path = store->pathOf(key);
    if (!watchDirectory(path.substr(0, path.rfind('/'))))
        return VCONF_ERROR;
    w.watches.push_back(std::make_unique<Watch>(Watch{key, cb, user_data, false}));
    return VCONF_OK;
}

int vconf_ignore_key_changed(const char *key, vconf_callback_fn cb) {
    if (!key || !cb)
        return VCONF_ERROR;
    int code;
    if (platform::fault(__func__, key, &code))
        return code;
    Watcher &w = watcher();
    for (auto it = w.watches.begin(); it != w.watches.end(); ++it) {
        if ((*it)->removed || (*it)->key != key || (*it)->callback != cb)
            continue;
        if (w.dispatching)
            (*it)->removed = true;
        else
            w.watches.erase(it);
        return VCONF_OK;
    }
    return VCONF_ERROR;
}

const char *vconf_keynode_get_name(keynode_t *keynode) {
    return keynode ? keynode->name.c_str() : nullptr;
}

int vconf_keynode_get_type(keynode_t *keynode) {
    if (!keynode)
        return VCONF_TYPE_NONE;
    switch (keynode->value.type) {
        case sim::SettingValue::Bool:
            return VCONF_TYPE_BOOL;
        case sim::SettingValue::Int:
            return VCONF_TYPE_INT;
        case sim::SettingValue::Double:
            return VCONF_TYPE_DOUBLE;
        case sim::SettingValue::String:
            return VCONF_TYPE_STRING;
        default:
            return VCONF_TYPE_NONE;
    }
}

int vconf_keynode_get_int(keynode_t *keynode) {
    return keynode && keynode->value.type == sim::SettingValue::Int ? keynode->value.i : 0;
}

int vconf_keynode_get_bool(keynode_t *keynode) {
    return keynode && keynode->value.type == sim::SettingValue::Bool && keynode->value.b ? 1 : 0;
}

double vconf_keynode_get_dbl(keynode_t *keynode) {
    return keynode && keynode->value.type == sim::SettingValue::Double ? keynode->value.d : 0.0;
}

char *vconf_keynode_get_str(keynode_t *keynode) {
    // The string belongs to the node, as on the watch.
    return keynode && keynode->value.type == sim::SettingValue::String
               ? const_cast<char *>(keynode->value.s.c_str())
               : nullptr;
}

}  // extern "C"
