#include "sim_platform_support.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // No system bus here: the toolkit's system modules would only complain about it.
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    ecore_init();
    int status = RUN_ALL_TESTS();
    ecore_shutdown();
    return status;
}
