// The settings store (vconf) of the simulated watch, over the state directory's settings
// files. A change made by any process reaches the watchers of this one through inotify on the
// directories of watched keys, as callbacks on the Ecore main loop.

#include <vconf.h>

#include <Ecore.h>
#include <dlog.h>

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "PlatformState.h"
#include "SettingsStore.h"
#include "StatePaths.h"

struct _keynode_t {
    std::string name;
    sim::SettingValue value;  // type None for a deleted or unreadable key
};

namespace {

const char *const kTag = "VCONF";

struct Watch {
    unsigned long id;
    std::string key;
    vconf_callback_fn callback;
    void *userData;
    bool removed;
};

struct Watcher {
    int fd = -1;
    Ecore_Fd_Handler *handler = nullptr;
    std::map<int, std::string> dirs;  // inotify watch descriptor -> directory
    std::list<Watch> watches;
    unsigned long nextId = 1;
    int dispatching = 0;
};

Watcher &watcher() {
    static Watcher w;
    return w;
}

// The store of the current state directory; null (the program was not started on a watch)
// makes every call fail.
const sim::SettingsStore *store() {
    static std::unique_ptr<sim::SettingsStore> current;
    static std::string currentDir;
    const std::string &dir = platform::stateDir();
    if (dir.empty())
        return nullptr;
    if (!current || currentDir != dir) {
        current = std::make_unique<sim::SettingsStore>(dir);
        currentDir = dir;
    }
    return current.get();
}

int readValue(const char *call, const char *key, sim::SettingValue::Type type,
              sim::SettingValue *value) {
    if (!key)
        return VCONF_ERROR;
    int code;
    if (platform::fault(call, key, &code))
        return code;
    const sim::SettingsStore *settings = store();
    if (!settings)
        return VCONF_ERROR;
    std::string error;
    switch (settings->read(key, value, &error)) {
        case sim::SettingsStore::Ok:
            break;
        case sim::SettingsStore::Missing:
            return VCONF_ERROR_FILE_NO_ENT;
        default:
            dlog_print(DLOG_ERROR, kTag, "%s(%s): %s", call, key, error.c_str());
            return VCONF_ERROR;
    }
    // Reading a key as another type fails, as on the watch.
    return value->type == type ? VCONF_OK : VCONF_ERROR_WRONG_TYPE;
}

int writeValue(const char *call, const char *key, const sim::SettingValue &value) {
    if (!key) {
        dlog_print(DLOG_ERROR, kTag, "%s: no key", call);
        return VCONF_ERROR;
    }
    int code;
    if (platform::fault(call, key, &code)) {
        dlog_print(DLOG_ERROR, kTag, "%s(%s): failed (injected fault %d)", call, key, code);
        return code;
    }
    const sim::SettingsStore *settings = store();
    if (!settings) {
        dlog_print(DLOG_ERROR, kTag, "%s(%s): no settings store (QUILLSET_STATE is not set)", call,
                   key);
        return VCONF_ERROR;
    }
    std::string error;
    if (settings->write(key, value, &error) != sim::SettingsStore::Ok) {
        dlog_print(DLOG_ERROR, kTag, "%s(%s): %s", call, key, error.c_str());
        return VCONF_ERROR;
    }
    return VCONF_OK;
}

void dispatch(const std::string &key) {
    Watcher &w = watcher();
    const sim::SettingsStore *settings = store();
    if (!settings)
        return;
    _keynode_t node;
    node.name = key;
    std::string error;
    sim::SettingsStore::Result result = settings->read(key, &node.value, &error);
    if (result != sim::SettingsStore::Ok) {
        node.value = sim::SettingValue();
        if (result != sim::SettingsStore::Missing)
            dlog_print(DLOG_ERROR, kTag, "change of %s: %s", key.c_str(), error.c_str());
    }
    // Watches added by a callback start with the next change; removed ones are skipped.
    unsigned long last = w.nextId;
    ++w.dispatching;
    for (Watch &watch : w.watches) {
        if (watch.id >= last)
            break;
        if (!watch.removed && watch.key == key)
            watch.callback(&node, watch.userData);
    }
    if (--w.dispatching == 0)
        w.watches.remove_if([](const Watch &watch) { return watch.removed; });
}

Eina_Bool inotifyCb(void *, Ecore_Fd_Handler *) {
    Watcher &w = watcher();
    const sim::SettingsStore *settings = store();
    std::vector<std::string> changed;
    bool overflowed = false;
    alignas(struct inotify_event) char buffer[16 * (sizeof(struct inotify_event) + NAME_MAX + 1)];
    for (;;) {
        ssize_t n = read(w.fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        for (char *p = buffer; p < buffer + n;) {
            auto *event = reinterpret_cast<struct inotify_event *>(p);
            p += sizeof(struct inotify_event) + event->len;
            if (event->mask & IN_Q_OVERFLOW) {
                overflowed = true;
                continue;
            }
            auto dir = w.dirs.find(event->wd);
            if (dir == w.dirs.end())
                continue;
            if (event->mask & IN_IGNORED) {
                // The directory went away; a later registration watches it again.
                w.dirs.erase(dir);
                continue;
            }
            if (!event->len || !settings)
                continue;
            // Temporary files of a write in progress are skipped: their rename follows.
            std::string key = settings->keyOf(dir->second + "/" + event->name);
            if (!key.empty() && std::find(changed.begin(), changed.end(), key) == changed.end())
                changed.push_back(key);
        }
    }
    // Changes came faster than they were read and the kernel dropped some: which keys they
    // were is lost, so every watched key is reported with its value now. The last value of a
    // key must reach its watchers, however many came before it.
    if (overflowed) {
        dlog_print(DLOG_WARN, kTag, "change notifications overflowed; reporting every watched key");
        for (const Watch &watch : w.watches)
            if (!watch.removed &&
                std::find(changed.begin(), changed.end(), watch.key) == changed.end())
                changed.push_back(watch.key);
    }
    for (const std::string &key : changed)
        dispatch(key);
    return ECORE_CALLBACK_RENEW;
}

bool watchDirectory(const std::string &dir) {
    Watcher &w = watcher();
    for (auto &entry : w.dirs)
        if (entry.second == dir)
            return true;
    if (w.fd < 0) {
        int fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (fd < 0) {
            dlog_print(DLOG_ERROR, kTag, "%s", sim::sysError("inotify_init1", "", errno).c_str());
            return false;
        }
        w.handler =
            ecore_main_fd_handler_add(fd, ECORE_FD_READ, inotifyCb, nullptr, nullptr, nullptr);
        if (!w.handler) {
            dlog_print(DLOG_ERROR, kTag,
                       "ecore_main_fd_handler_add failed (is Ecore initialised?): changes will "
                       "not be reported");
            close(fd);
            return false;
        }
        w.fd = fd;
    }
    std::string error;
    if (!sim::makeDirs(dir, &error)) {
        dlog_print(DLOG_ERROR, kTag, "%s", error.c_str());
        return false;
    }
    int wd = inotify_add_watch(w.fd, dir.c_str(),
                               IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE);
    if (wd < 0) {
        dlog_print(DLOG_ERROR, kTag, "%s", sim::sysError("inotify_add_watch", dir, errno).c_str());
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
    if (!strval) {
        dlog_print(DLOG_ERROR, kTag, "vconf_set_str(%s): no value", key ? key : "(null)");
        return VCONF_ERROR;
    }
    return writeValue(__func__, key, sim::SettingValue::ofString(strval));
}

int vconf_notify_key_changed(const char *key, vconf_callback_fn cb, void *user_data) {
    if (!key || !cb || !sim::SettingsStore::validKey(key))
        return VCONF_ERROR;
    int code;
    if (platform::fault(__func__, key, &code))
        return code;
    const sim::SettingsStore *settings = store();
    if (!settings)
        return VCONF_ERROR;
    Watcher &w = watcher();
    for (const Watch &watch : w.watches)
        if (!watch.removed && watch.key == key && watch.callback == cb)
            return VCONF_ERROR;
    std::string path = settings->pathOf(key);
    if (!watchDirectory(path.substr(0, path.rfind('/'))))
        return VCONF_ERROR;
    w.watches.push_back(Watch{w.nextId++, key, cb, user_data, false});
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
        if (it->removed || it->key != key || it->callback != cb)
            continue;
        // A callback may remove watches while the list is being walked.
        if (w.dispatching)
            it->removed = true;
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
