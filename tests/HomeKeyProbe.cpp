// A minimal application that listens for the home key the way a settings screen would, for the
// home-key tests. Mode "exit": no action installed, so a press must end the application.
// Mode "action": an action is installed; the application ends itself after the second press.
// It prints "ready" once subscribed and one line per event it sees.

#include <Elementary.h>
#include <app.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "StHomeKeyHandler.h"

namespace {

struct Probe {
    bool withAction = false;
    int presses = 0;
    std::unique_ptr<StHomeKeyHandler> handler;
};

bool create(void *data) {
    auto *probe = static_cast<Probe *>(data);
    probe->handler = std::make_unique<StHomeKeyHandler>();
    if (probe->withAction)
        probe->handler->setHomeKeyPressedCb([probe]() {
            printf("action %d\n", ++probe->presses);
            fflush(stdout);
            if (probe->presses == 2)
                ecore_timer_add(
                    0.2,
                    [](void *) {
                        ui_app_exit();
                        return ECORE_CALLBACK_CANCEL;
                    },
                    nullptr);
        });
    if (!probe->handler->registerHandler()) {
        printf("register failed\n");
        return false;
    }
    // A second registration is refused and changes nothing.
    probe->handler->registerHandler();
    printf("ready\n");
    fflush(stdout);
    return true;
}

void terminate(void *data) {
    auto *probe = static_cast<Probe *>(data);
    probe->handler.reset();
    printf("terminated\n");
}

}  // namespace

int main(int argc, char **argv) {
    Probe probe;
    probe.withAction = argc > 1 && !strcmp(argv[1], "action");
    ui_app_lifecycle_callback_s callbacks = {};
    callbacks.create = create;
    callbacks.terminate = terminate;
    int ret = ui_app_main(argc, argv, &callbacks, &probe);
    printf("exited %d\n", ret);
    return ret;
}
