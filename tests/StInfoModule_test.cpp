// The application's libraries loaded on first use: a background load that hangs freezes the
// screen for one wait only, and the library is used once the load ends after all.

#include <app.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "StInfoModule.h"
#include "support/EflTestEnvironment.h"

namespace {

const char *const kStuckLibrary = "libquillset-test-stuck.so";

int countOf(const std::string &text, const std::string &what) {
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

}  // namespace

class StInfoModuleTest : public EflTest {};

TEST_F(StInfoModuleTest, AHangingBackgroundLoadIsWaitedForOnceThenCallersGoWithout) {
    StInfoModule module(kStuckLibrary);
    module.loadInBackground("quillset_test_stuck_warm_up");

    EXPECT_EQ(module.symbol("quillset_test_stuck_answer"), nullptr);
    double start = ecore_time_get();
    EXPECT_EQ(module.symbol("quillset_test_stuck_answer"), nullptr);
    EXPECT_LT(ecore_time_get() - start, 1.0) << "a later call waited again";
    EXPECT_EQ(countOf(logSinceStart(), "the background load did not end"), 1);

    // The worker holds the library open, from the package's lib/ beside its resources; let its
    // warm-up return.
    char *resources = app_get_resource_path();
    ASSERT_NE(resources, nullptr);
    std::string path = std::string(resources) + "../lib/" + kStuckLibrary;
    free(resources);
    void *loaded = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(loaded, nullptr);
    reinterpret_cast<void (*)()>(dlsym(loaded, "quillset_test_stuck_release"))();
    dlclose(loaded);
    void *answer = nullptr;
    EXPECT_TRUE(
        runUntil([&]() { return (answer = module.symbol("quillset_test_stuck_answer")); }, 5.0));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(answer)(), 42);
}
