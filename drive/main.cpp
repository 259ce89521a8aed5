// quillset-drive: runs the About application headless (or in a window) and executes script
// commands against its screens. See docs/driver.md for the commands.

#include <unistd.h>

#include <Efreet.h>
#include <app.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "Driver.h"
#include "StInfoApp.h"
#include "StatePaths.h"

namespace {

// The application, with the driver starting once its window exists.
class DrivenApp : public StInfoApp {
public:
    DrivenApp(Driver &driver, std::string script) : _driver(driver), _script(std::move(script)) {}

protected:
    bool onCreate() override {
        if (!StInfoApp::onCreate())
            return false;
        // Pages appear at once, so that every command sees the screen it produced.
        elm_config_transition_duration_factor_set(0.0);
        edje_transition_duration_factor_set(0.0);
        return _driver.start(_script);
    }

    void onTerminate() override {
        _driver.finish();
        StInfoApp::onTerminate();
    }

private:
    Driver &_driver;
    std::string _script;
};

void usage() {
    std::cerr << "usage: quillset-drive [--script FILE] [--window]\n"
                 "Runs the About application and executes commands (from FILE, or stdin):\n"
                 "  dump | a11y | tap LABEL | tap #N | press LABEL | press #N | back | bezel N |\n"
                 "  wait MS | shot FILE.png | expect TEXT | set KEY TYPE VALUE | sim ARGS... |\n"
                 "  tour DIR | quit\n";
}

// Why the driver cannot run here, or "" when it can: it drives the application of a running
// watch, whose state and private bus quillset-sim run hands to its command.
std::string outsideAWatch(bool window) {
    std::string state = sim::stateDirFromEnv();
    const char *bus = getenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (state.empty() || !sim::fileExists(state + "/profile.json") || !bus || !*bus)
        return "not inside a watch; start it in one: " + sim::executableDir() +
               "/quillset-sim run -- quillset-drive";
    const char *display = getenv("DISPLAY");
    if (window && (!display || !*display))
        return "--window needs an X display (DISPLAY is not set); without --window it runs "
               "headless";
    return "";
}

}  // namespace

int main(int argc, char *argv[]) {
    std::string script;
    bool window = false;
    for (int i = 1; i < argc; ++i) {
        if (!strcmp(argv[i], "--script") && i + 1 < argc) {
            script = argv[++i];
        } else if (!strcmp(argv[i], "--window")) {
            window = true;
        } else if (!strcmp(argv[i], "--help") || !strcmp(argv[i], "-h")) {
            usage();
            return 0;
        } else {
            std::cerr << "quillset-drive: unknown argument '" << argv[i] << "'\n";
            usage();
            return 2;
        }
    }
    std::string refusal = outsideAWatch(window);
    if (!refusal.empty()) {
        std::cerr << "quillset-drive: " << refusal << "\n";
        return 2;
    }
    if (!window)
        setenv("ELM_DISPLAY", "buffer", 1);

    StInfoApp::bindTextDomain();
    // The driver runs under test runners and scripts that wait for its output to end; EFL's
    // cache daemon, if the driver started it, would hold that output open after it is gone.
    efreet_cache_disable();

    Driver driver(sim::executableDir() + "/quillset-sim", script.empty() && isatty(STDIN_FILENO));
    DrivenApp app(driver, script);
    int result = app.start(argc > 0 ? 1 : 0, argv);
    if (result != APP_ERROR_NONE)
        return 3;
    return driver.exitStatus();
}
