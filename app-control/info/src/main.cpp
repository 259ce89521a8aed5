#include "StInfoApp.h"

int main(int argc, char *argv[]) {
    StInfoApp::bindTextDomain();
    StInfoApp app;
    return app.start(argc, argv);
}
