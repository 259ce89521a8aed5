#ifndef _ST_INFO_MODULE_H_
#define _ST_INFO_MODULE_H_

#include <Ecore.h>

#include <string>

// A part of the application kept in a library of its own under the package's lib directory and
// loaded on first use, so that start-up neither loads nor relocates what the first screen does
// not need (the phone-number formatter pulls in libphonenumber, ICU and protobuf).
class StInfoModule {
public:
    // name: the library's file name, e.g. "libquillset-info-phonenumber.so".
    explicit StInfoModule(const char *name);
    ~StInfoModule();

    // The entry point, loading the library first if need be; null (logged) when it cannot be
    // had. A library that failed to load is tried again on the next call.
    void *symbol(const char *entry);
    // Loads the library on a worker thread and calls its warm-up entry there, so that the
    // first symbol() finds it ready without holding up the main loop meanwhile.
    void loadInBackground(const char *warmUpEntry);
    // Waits for a background load still under way: the process must not end while a worker
    // thread is inside the library's start-up. A load that does not end in time is waited for
    // once; false while it is still under way.
    bool finishBackground();

    StInfoModule(const StInfoModule &) = delete;
    StInfoModule &operator=(const StInfoModule &) = delete;

private:
    bool _load();
    std::string _path();
    static void _backgroundLoadCb(void *data, Ecore_Thread *thread);
    static void _backgroundDoneCb(void *data, Ecore_Thread *thread);

    std::string _name;
    void *_handle;
    bool _backgroundStarted;
    bool _backgroundStuck;
    Ecore_Thread *_thread;
};

#endif
