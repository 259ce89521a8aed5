// The usage database with several writers, as the application and the services daemon are.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "UsageDb.h"
#include "sim_support.h"

TEST(UsageDb, SeveralProcessesWritingAtOnceLoseNoRow) {
    // The services daemon creates the database when the watch starts.
    simtest::TempDir state;
    sim::UsageDb db;
    std::string error;
    ASSERT_TRUE(db.open(state.path(), &error)) << error;
    std::vector<pid_t> writers;
    for (int w = 0; w < 3; ++w) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            sim::UsageDb writer;
            bool ok = writer.open(state.path(), &error);
            for (int k = 0; ok && k < 100; ++k)
                ok = writer.addRecord("u", "app", "F" + std::to_string(w), nullptr, nullptr, &error);
            _exit(ok ? 0 : 1);
        }
        writers.push_back(pid);
    }
    for (pid_t pid : writers) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    std::vector<nlohmann::json> usage;
    ASSERT_TRUE(db.listUsage(&usage, &error)) << error;
    EXPECT_EQ(usage.size(), 300u);
}

TEST(UsageDb, OpeningWhereThereIsNoWatchSaysWhereAndStoresNothing) {
    sim::UsageDb db;
    std::string error;
    EXPECT_FALSE(db.open("/nonexistent/watch", &error));
    EXPECT_TRUE(simtest::contains(error, "/nonexistent/watch/usage.db")) << error;
    EXPECT_FALSE(db.addRecord("u", "a", "f", nullptr, nullptr, &error));
    EXPECT_EQ(db.addJournal("launch", "a", "", "", 0, 0, 0, &error), 0);
}
