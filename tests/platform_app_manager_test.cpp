// The application-manager stand-in: only the settings suite's own package is installed.

#include <app_manager.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "StatePaths.h"
#include "sim_platform_support.h"

using simtest::StateTest;

using AppManagerTest = StateTest;

TEST_F(AppManagerTest, TheSuitesSharedResourcesAreInTheDataTree) {
    char *path = nullptr;
    ASSERT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset", &path),
              APP_MANAGER_ERROR_NONE);
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(std::string(path), sim::dataDir() + "/shared/res/")
        << "callers append file names to it";
    free(path);
}

TEST_F(AppManagerTest, OtherPackagesAndBadArgumentsAreRefused) {
    char *path = nullptr;
    EXPECT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset.reset", &path),
              APP_MANAGER_ERROR_NO_SUCH_APP);
    EXPECT_EQ(path, nullptr);
    EXPECT_EQ(app_manager_get_shared_resource_path(nullptr, &path),
              APP_MANAGER_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset", nullptr),
              APP_MANAGER_ERROR_INVALID_PARAMETER);
}

TEST_F(AppManagerTest, FaultsFailTheNamedApplication) {
    useProfile(R"({"faults": [{"call": "app_manager_get_shared_resource_path",
                               "key": "com.nerova.quillset", "code": -12}]})");
    char *path = nullptr;
    EXPECT_EQ(app_manager_get_shared_resource_path("com.nerova.quillset", &path), -12);
    EXPECT_EQ(path, nullptr);
}
