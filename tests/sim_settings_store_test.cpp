// The settings store on disk: what a value looks like in its file, what counts as corrupt, and
// that readers never see half a write.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <tuple>

#include "SettingsStore.h"
#include "sim_support.h"

using sim::SettingsStore;
using sim::SettingValue;

namespace {

class SettingsStoreTest : public ::testing::Test {
protected:
    simtest::TempDir _state;
    SettingsStore _store{_state.path()};
    std::string _error;
};

}  // namespace

TEST_F(SettingsStoreTest, ValueFilesReadAsPeopleWriteThemAndAnythingElseIsCorrupt) {
    // The form people read and edit by hand; that every value reads back as written is the
    // setting_value fuzzer's property. Numbers may end with a newline, strings keep theirs.
    // The file, its value, and whether the store writes the value so.
    const std::tuple<const char *, SettingValue, bool> cases[] = {
        {"bool:1", SettingValue::ofBool(true), true},
        {"int:-2147483648", SettingValue::ofInt(INT_MIN), true},
        {"double:0.10000000000000001", SettingValue::ofDouble(0.1), true},
        {"int:5\n", SettingValue::ofInt(5), false},
        {"string:GB\n", SettingValue::ofString("GB\n"), false}};
    const std::string key = "db/test/value", path = _store.pathOf(key);
    for (const auto &[file, expected, asWritten] : cases) {
        ASSERT_EQ(_store.write(key, expected, &_error), SettingsStore::Ok);
        if (asWritten) {
            EXPECT_EQ(simtest::readText(path), file);
        }
        simtest::writeText(path, file);
        SettingValue value;
        EXPECT_EQ(_store.read(key, &value, &_error), SettingsStore::Ok) << file;
        EXPECT_TRUE(value == expected) << file << " read as " << value.text();
    }
    for (const char *file : {"", "bool:2", "bool:true", "int:12x", "int: 5", "int:99999999999",
                             "double:nan", "double:1e999", "float:1.0", "string", "\x01\x02"}) {
        simtest::writeText(path, file);
        SettingValue value = SettingValue::ofInt(7);
        EXPECT_EQ(_store.read(key, &value, &_error), SettingsStore::Corrupt) << file;
        EXPECT_TRUE(value == SettingValue::ofInt(7)) << "a failed read leaves the value alone";
        EXPECT_TRUE(simtest::contains(_error, path + ": corrupt value")) << _error;
    }
}

TEST_F(SettingsStoreTest, KeysThatWouldLeaveTheStoreOrHideAsTemporaryFilesAreRefused) {
    for (const char *key : {"", "/etc/passwd", "../outside", "db/../../outside", "db//x", "db/./x",
                            "db/x/", "db/x.tmp.1", "db/\nkey", "db/\x7fkey"}) {
        SettingValue value;
        EXPECT_EQ(_store.write(key, SettingValue::ofInt(1), &_error), SettingsStore::BadKey) << key;
        EXPECT_EQ(_store.read(key, &value, &_error), SettingsStore::BadKey) << key;
        EXPECT_EQ(_store.remove(key, &_error), SettingsStore::BadKey) << key;
    }
    EXPECT_TRUE(std::filesystem::is_empty(_state.path())) << "nothing was created";
}

TEST_F(SettingsStoreTest, ReadersNeverSeeHalfAWriteAndNoTemporaryFileIsLeft) {
    const std::string small(3, 's'), large(200000, 'L');
    ASSERT_EQ(_store.write("db/test/busy", SettingValue::ofString(small), &_error),
              SettingsStore::Ok);
    pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        for (int k = 0; k < 300; ++k)
            _store.write("db/test/busy", SettingValue::ofString(k % 2 ? small : large), &_error);
        _exit(0);
    }
    int partial = 0;
    for (int k = 0; k < 600; ++k) {
        SettingValue value;
        if (_store.read("db/test/busy", &value, &_error) != SettingsStore::Ok ||
            (value.s != small && value.s != large))
            ++partial;
    }
    waitpid(writer, nullptr, 0);
    EXPECT_EQ(partial, 0);
    auto files = std::filesystem::directory_iterator(_store.root() + "/db/test");
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "no temporary file is left";
}
