// The usage database: its tables as other tools read them, and rows from several writers.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "UsageDb.h"
#include "sim_support.h"

using sim::UsageDb;

namespace {

// "name type notnull pk" for each column, as SQLite describes the table.
std::vector<std::string> columns(const std::string &dbPath, const std::string &table) {
    sqlite3 *db = nullptr;
    std::vector<std::string> result;
    if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return result;
    }
    sqlite3_stmt *stmt = nullptr;
    std::string sql = "PRAGMA table_info(" + table + ")";
    sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr);
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        result.push_back(std::string(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 1))) +
                         " " + reinterpret_cast<const char *>(sqlite3_column_text(stmt, 2)) +
                         (sqlite3_column_int(stmt, 3) ? " notnull" : "") +
                         (sqlite3_column_int(stmt, 5) ? " pk" : ""));
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return result;
}

class UsageDbTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(_db.open(_state.path(), &_error)) << _error; }

    simtest::TempDir _state;
    UsageDb _db;
    std::string _error;
};

}  // namespace

TEST_F(UsageDbTest, CreatesBothTablesWithTheAgreedColumns) {
    const std::vector<std::string> usage = {
        "id INTEGER pk", "time REAL notnull", "kind TEXT notnull", "uri TEXT",
        "app_id TEXT",   "feature TEXT",      "extra TEXT",        "value TEXT",
        "bus_name TEXT", "path TEXT",         "interface TEXT",    "method TEXT"};
    const std::vector<std::string> journal = {
        "id INTEGER pk",       "time REAL notnull",      "request TEXT notnull",
        "app_id TEXT",         "operation TEXT",         "extra_data TEXT",
        "launch_mode INTEGER", "result INTEGER notnull", "launch_id INTEGER"};
    EXPECT_EQ(columns(_state / "usage.db", "usage"), usage);
    EXPECT_EQ(columns(_state / "usage.db", "journal"), journal);
}

TEST_F(UsageDbTest, RowsListInOrderWithTheirFieldsAndWithoutEmptyOnes) {
    ASSERT_TRUE(
        _db.addRecord("content://x/log", "com.nerova.quillset", "ABOUT", nullptr, "1", &_error))
        << _error;
    ASSERT_TRUE(_db.addCall("com.nerova.logmgr", "/p", "com.nerova.I", "Select", &_error));
    long long launch =
        _db.addJournal("launch", "com.nerova.quillset.reset", "", R"({"k":"v"})", 1, 0, 0, &_error);
    ASSERT_GT(launch, 0) << _error;
    long long terminate =
        _db.addJournal("terminate", "com.nerova.quillset.reset", "", "", 0, -3, launch, &_error);
    ASSERT_GT(terminate, launch);

    std::vector<nlohmann::json> usage;
    ASSERT_TRUE(_db.listUsage(&usage, &_error)) << _error;
    ASSERT_EQ(usage.size(), 2u);
    EXPECT_EQ(usage[0]["kind"], "record");
    EXPECT_EQ(usage[0]["uri"], "content://x/log");
    EXPECT_EQ(usage[0]["feature"], "ABOUT");
    EXPECT_EQ(usage[0]["value"], "1");
    EXPECT_FALSE(usage[0].contains("extra")) << "a null field is left out";
    EXPECT_GT(usage[0]["time"].get<double>(), 1.6e9) << "seconds since the epoch";
    EXPECT_EQ(usage[1]["kind"], "call");
    EXPECT_EQ(usage[1]["method"], "Select");
    EXPECT_LT(usage[0]["id"], usage[1]["id"]);

    std::vector<nlohmann::json> journal;
    ASSERT_TRUE(_db.listJournal(&journal, &_error)) << _error;
    ASSERT_EQ(journal.size(), 2u);
    EXPECT_EQ(journal[0]["request"], "launch");
    EXPECT_EQ(journal[0]["extra_data"], R"({"k":"v"})");
    EXPECT_EQ(journal[0]["launch_mode"], 1);
    EXPECT_FALSE(journal[0].contains("launch_id"));
    EXPECT_FALSE(journal[0].contains("operation"));
    EXPECT_EQ(journal[1]["request"], "terminate");
    EXPECT_EQ(journal[1]["result"], -3);
    EXPECT_EQ(journal[1]["launch_id"], launch);
}

TEST_F(UsageDbTest, SeveralProcessesWritingAtOnceLoseNoRow) {
    const int kPerWriter = 100;
    std::vector<pid_t> writers;
    for (int w = 0; w < 3; ++w) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            UsageDb db;
            std::string error;
            bool ok = db.open(_state.path(), &error);
            for (int k = 0; ok && k < kPerWriter; ++k)
                ok = db.addRecord("u", "app", "F" + std::to_string(w), nullptr, nullptr, &error);
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
    ASSERT_TRUE(_db.listUsage(&usage, &_error)) << _error;
    EXPECT_EQ(usage.size(), 3u * kPerWriter);
}

TEST(UsageDb, OpeningWhereThereIsNoWatchSaysWhere) {
    UsageDb db;
    std::string error;
    EXPECT_FALSE(db.open("/nonexistent/watch", &error));
    EXPECT_NE(error.find("/nonexistent/watch/usage.db"), std::string::npos) << error;
    EXPECT_FALSE(db.isOpen());
    EXPECT_FALSE(db.addRecord("u", "a", "f", nullptr, nullptr, &error));
    EXPECT_EQ(db.addJournal("launch", "a", "", "", 0, 0, 0, &error), 0);
}
