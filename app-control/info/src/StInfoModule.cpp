#include "StInfoModule.h"

#include <app.h>
#include <dlfcn.h>

#include <cstdlib>

#include "StLog.h"

namespace {

// What the worker thread is given and hands back; the main loop reads it once the thread ends.
struct BackgroundLoad {
    StInfoModule *module;
    std::string path;
    std::string warmUpEntry;
    void *handle;
};

}  // namespace

StInfoModule::StInfoModule(const char *name)
    : _name(name ? name : ""),
      _handle(nullptr),
      _backgroundStarted(false),
      _backgroundStuck(false),
      _thread(nullptr) {}

StInfoModule::~StInfoModule() {
    // The library stays: objects it made may outlive this handle.
}

std::string StInfoModule::_path() {
    // The package keeps its libraries in lib/, beside res/. Without the resource path the
    // module's callers carry on without it, as they would on any failure of their own.
    char *resourcePath = app_get_resource_path();
    if (!resourcePath)
        return std::string();
    std::string path = std::string(resourcePath) + "../lib/" + _name;
    free(resourcePath);
    return path;
}

bool StInfoModule::_load() {
    if (_handle)
        return true;
    std::string path = _path();
    if (path.empty())
        return false;
    // Should the worker thread be loading it, this waits for the loader and shares its work.
    _handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!_handle) {
        const char *error = dlerror();
        ST_ERR("dlopen(%s) failed: %s", path.c_str(), error ? error : "");
        return false;
    }
    return true;
}

void *StInfoModule::symbol(const char *entry) {
    if (!entry)
        return nullptr;
    // A worker still inside the library's start-up is waited for, not raced; one that hangs
    // there leaves the caller without the library rather than freezing the screen again.
    if (!finishBackground() || !_load())
        return nullptr;
    void *address = dlsym(_handle, entry);
    if (!address) {
        const char *error = dlerror();
        ST_ERR("dlsym(%s) failed: %s", entry, error ? error : "");
    }
    return address;
}

void StInfoModule::loadInBackground(const char *warmUpEntry) {
    if (_handle || _backgroundStarted)
        return;
    std::string path = _path();
    if (path.empty())
        return;
    _backgroundStarted = true;
    auto *load = new BackgroundLoad{this, path, warmUpEntry ? warmUpEntry : "", nullptr};
    _thread = ecore_thread_run(_backgroundLoadCb, _backgroundDoneCb, _backgroundDoneCb, load);
    if (!_thread) {
        // Not an error: the first symbol() loads it on the main loop instead.
        _backgroundStarted = false;
        delete load;
    }
}

bool StInfoModule::finishBackground() {
    // The end callback clears _thread; waiting runs it.
    if (!_thread)
        return true;
    if (_backgroundStuck)
        return false;
    if (ecore_thread_wait(_thread, 10.0))
        return true;
    _backgroundStuck = true;
    ST_ERR("%s: the background load did not end", _name.c_str());
    return false;
}

void StInfoModule::_backgroundLoadCb(void *data, Ecore_Thread *) {
    auto *load = static_cast<BackgroundLoad *>(data);
    load->handle = dlopen(load->path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!load->handle || load->warmUpEntry.empty())
        return;
    auto warmUp = reinterpret_cast<void (*)()>(dlsym(load->handle, load->warmUpEntry.c_str()));
    if (warmUp)
        warmUp();
}

void StInfoModule::_backgroundDoneCb(void *data, Ecore_Thread *) {
    auto *load = static_cast<BackgroundLoad *>(data);
    load->module->_thread = nullptr;
    // A failure here is reported by the first symbol(), which tries again.
    if (load->handle && !load->module->_handle)
        load->module->_handle = load->handle;
    else if (load->handle)
        dlclose(load->handle);
    delete load;
}
