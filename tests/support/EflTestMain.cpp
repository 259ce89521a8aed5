#include <gtest/gtest.h>

#include "EflTestEnvironment.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new EflTestEnvironment());
    return RUN_ALL_TESTS();
}
