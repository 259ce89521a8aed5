#ifndef QUILLSET_DRIVE_INVARIANTS_H
#define QUILLSET_DRIVE_INVARIANTS_H

#include <Ecore.h>

#include <string>

#include "ScreenReader.h"

// What must hold on the watch whatever a person does and whenever: checked by the driver after
// every command once a script asks for it (the stress runs of scripts/monkey.py).
class Invariants {
public:
    explicit Invariants(const ScreenReader &reader);
    ~Invariants();

    // Starts watching the main loop's pulse, with the About list alone on screen as the
    // application opened it; stops before the loop shuts down.
    void start();
    void stop();
    // The next check allows debugging to have turned on: another process wrote the setting,
    // or the debugging popup's OK was pressed.
    void allowDebugging() { _debuggingAllowed = true; }

    // Each answers an empty string when all its invariants hold, else the first that does
    // not, named and explained. checkNow: what must hold at every moment (the main loop's
    // pulse, the debugging setting, raw string ids); checkSettled: what holds once a
    // transition or a job has run (the page stack, what outlives its screen).
    std::string checkNow();
    std::string checkSettled();

    // Page and popup controllers alive, counted at their construction and destruction.
    static int liveControllers();

private:
    static Eina_Bool _beatCb(void *data);
    std::string _rawId(const std::string &where) const;

    const ScreenReader &_reader;
    Ecore_Timer *_beat;
    double _lastBeat;
    double _longestGap;
    bool _debuggingAllowed;
    bool _debuggingWasOn;
    size_t _baseListeners;
    int _baseControllers;
};

#endif
