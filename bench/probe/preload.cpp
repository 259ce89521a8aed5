// The benchmark's probe enters a program through its window and its naviframe: Elementary's
// constructors of both are wrapped, and the probe watches the first window and naviframe made.
#include <dlfcn.h>

#include "StBenchProbe.h"

extern "C" Evas_Object *elm_win_add(Evas_Object *parent, const char *name, Elm_Win_Type type) {
    using WinAdd = Evas_Object *(*)(Evas_Object *, const char *, Elm_Win_Type);
    static WinAdd real = reinterpret_cast<WinAdd>(dlsym(RTLD_NEXT, "elm_win_add"));
    Evas_Object *win = real ? real(parent, name, type) : nullptr;
    StBenchProbe::instance().attach(win);
    return win;
}

extern "C" Evas_Object *elm_naviframe_add(Evas_Object *parent) {
    using NaviframeAdd = Evas_Object *(*)(Evas_Object *);
    static NaviframeAdd real =
        reinterpret_cast<NaviframeAdd>(dlsym(RTLD_NEXT, "elm_naviframe_add"));
    Evas_Object *naviframe = real ? real(parent) : nullptr;
    StBenchProbe::instance().attachNaviframe(naviframe);
    return naviframe;
}
