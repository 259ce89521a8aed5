// The settings store on disk: what a value looks like in its file, what counts as corrupt, and
// that readers never see half a write.

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "SettingsStore.h"
#include "StatePaths.h"
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

std::vector<std::string> entries(const std::string &dir) {
    std::vector<std::string> names;
    if (DIR *d = opendir(dir.c_str())) {
        while (struct dirent *entry = readdir(d))
            if (entry->d_name[0] != '.')
                names.push_back(entry->d_name);
        closedir(d);
    }
    return names;
}

}  // namespace

TEST_F(SettingsStoreTest, EveryTypeRoundTripsThroughItsFile) {
    // The file format is shared with the platform stand-ins and people editing by hand.
    struct Case {
        SettingValue value;
        std::string file;
    };
    const Case cases[] = {
        {SettingValue::ofBool(true), "bool:1"},
        {SettingValue::ofBool(false), "bool:0"},
        {SettingValue::ofInt(0), "int:0"},
        {SettingValue::ofInt(INT_MIN), "int:-2147483648"},
        {SettingValue::ofInt(INT_MAX), "int:2147483647"},
        {SettingValue::ofDouble(0.1), "double:0.10000000000000001"},
        {SettingValue::ofDouble(-2.5e300), "double:-2.5000000000000001e+300"},
        {SettingValue::ofString(""), "string:"},
        {SettingValue::ofString("en_GB.UTF-8"), "string:en_GB.UTF-8"},
        {SettingValue::ofString("two\nlines: and a colon\n"), "string:two\nlines: and a colon\n"},
        {SettingValue::ofString("Kesta \xE2\x9C\x93"), "string:Kesta \xE2\x9C\x93"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.file);
        ASSERT_EQ(_store.write("db/test/value", c.value, &_error), SettingsStore::Ok) << _error;
        EXPECT_EQ(simtest::readText(_store.pathOf("db/test/value")), c.file);
        SettingValue read;
        ASSERT_EQ(_store.read("db/test/value", &read, &_error), SettingsStore::Ok) << _error;
        EXPECT_TRUE(read == c.value) << read.text();
    }
}

TEST_F(SettingsStoreTest, CorruptOrTruncatedFilesAreFailedReadsWithTheReason) {
    const char *const contents[] = {
        "",           "bool",        "bool:",           "bool:2",    "bool:true", "int:",
        "int:12x",    "int: 5",      "int:99999999999", "int:1.5",   "double:",   "double:nan",
        "double:inf", "double:0x10", "double:1e999",    "float:1.0", "string",    "\x01\x02\x03",
    };
    for (const char *content : contents) {
        SCOPED_TRACE(content);
        ASSERT_EQ(_store.write("db/test/corrupt", SettingValue::ofInt(1), &_error),
                  SettingsStore::Ok);
        simtest::writeText(_store.pathOf("db/test/corrupt"), content);
        SettingValue value = SettingValue::ofInt(7);
        EXPECT_EQ(_store.read("db/test/corrupt", &value, &_error), SettingsStore::Corrupt);
        EXPECT_NE(_error.find(_store.pathOf("db/test/corrupt")), std::string::npos) << _error;
        EXPECT_NE(_error.find("corrupt value"), std::string::npos) << _error;
        EXPECT_EQ(value.i, 7) << "a failed read leaves the value alone";
    }
}

TEST_F(SettingsStoreTest, HandEditedNumbersMayEndWithANewlineButStringsKeepTheirs) {
    SettingValue value;
    ASSERT_EQ(_store.write("db/test/n", SettingValue::ofInt(0), &_error), SettingsStore::Ok);
    simtest::writeText(_store.pathOf("db/test/n"), "int:5\n");
    ASSERT_EQ(_store.read("db/test/n", &value, &_error), SettingsStore::Ok) << _error;
    EXPECT_EQ(value.i, 5);
    simtest::writeText(_store.pathOf("db/test/n"), "bool:1\n");
    ASSERT_EQ(_store.read("db/test/n", &value, &_error), SettingsStore::Ok) << _error;
    EXPECT_TRUE(value.b);
    simtest::writeText(_store.pathOf("db/test/n"), "string:GB\n");
    ASSERT_EQ(_store.read("db/test/n", &value, &_error), SettingsStore::Ok) << _error;
    EXPECT_EQ(value.s, "GB\n");
}

TEST_F(SettingsStoreTest, MissingKeysAndGroupsOfKeysReadAsMissing) {
    SettingValue value;
    EXPECT_EQ(_store.read("db/test/none", &value, &_error), SettingsStore::Missing);
    ASSERT_EQ(_store.write("db/group/key", SettingValue::ofInt(1), &_error), SettingsStore::Ok);
    EXPECT_EQ(_store.read("db/group", &value, &_error), SettingsStore::Missing);
    // A key below a value is not there either.
    EXPECT_EQ(_store.read("db/group/key/below", &value, &_error), SettingsStore::Missing);
}

TEST_F(SettingsStoreTest, KeysThatWouldLeaveTheStoreOrHideAsTemporaryFilesAreRefused) {
    const char *const keys[] = {"",         "/etc/passwd", "../outside", "db/../../outside",
                                "db//x",    "db/./x",      "db/x/",      "db/x.tmp.1",
                                "db/\nkey", "db/\x7fkey"};
    for (const char *key : keys) {
        SCOPED_TRACE(key);
        SettingValue value;
        EXPECT_EQ(_store.write(key, SettingValue::ofInt(1), &_error), SettingsStore::BadKey);
        EXPECT_EQ(_store.read(key, &value, &_error), SettingsStore::BadKey);
        EXPECT_EQ(_store.remove(key, &_error), SettingsStore::BadKey);
    }
    EXPECT_TRUE(entries(_state.path()).empty()) << "nothing was created";
    EXPECT_TRUE(SettingsStore::validKey("db/setting/update-service/auto_update_type"));
    EXPECT_TRUE(SettingsStore::validKey("memory/private/x.y_z"));
}

TEST_F(SettingsStoreTest, RemovingAKeyDeletesItsFileOnly) {
    ASSERT_EQ(_store.write("db/a/one", SettingValue::ofInt(1), &_error), SettingsStore::Ok);
    ASSERT_EQ(_store.write("db/a/two", SettingValue::ofInt(2), &_error), SettingsStore::Ok);
    EXPECT_EQ(_store.remove("db/a/one", &_error), SettingsStore::Ok);
    SettingValue value;
    EXPECT_EQ(_store.read("db/a/one", &value, &_error), SettingsStore::Missing);
    EXPECT_EQ(_store.read("db/a/two", &value, &_error), SettingsStore::Ok);
    EXPECT_EQ(_store.remove("db/a/one", &_error), SettingsStore::Missing);
    EXPECT_NE(_error.find("unlink"), std::string::npos) << _error;
}

TEST_F(SettingsStoreTest, AValueCannotReplaceAGroupOfKeysOrLiveBelowAValue) {
    ASSERT_EQ(_store.write("db/group/key", SettingValue::ofInt(1), &_error), SettingsStore::Ok);
    EXPECT_EQ(_store.write("db/group", SettingValue::ofInt(1), &_error), SettingsStore::IoError);
    EXPECT_NE(_error.find("group of keys"), std::string::npos) << _error;
    EXPECT_EQ(_store.write("db/group/key/below", SettingValue::ofInt(1), &_error),
              SettingsStore::IoError);
    EXPECT_NE(_error.find("mkdir("), std::string::npos) << _error;
    SettingValue value;
    ASSERT_EQ(_store.read("db/group/key", &value, &_error), SettingsStore::Ok);
    EXPECT_EQ(value.i, 1) << "the failed writes lost nothing";
}

TEST_F(SettingsStoreTest, ReadersNeverSeeHalfAWriteAndNoTemporaryFileIsLeft) {
    const std::string small(3, 's');
    const std::string large(200000, 'L');
    ASSERT_EQ(_store.write("db/test/busy", SettingValue::ofString(small), &_error),
              SettingsStore::Ok);
    pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        SettingsStore store(_state.path());
        std::string error;
        for (int k = 0; k < 300; ++k)
            store.write("db/test/busy", SettingValue::ofString(k % 2 ? small : large), &error);
        _exit(0);
    }
    int partial = 0;
    for (int k = 0; k < 600; ++k) {
        SettingValue value;
        if (_store.read("db/test/busy", &value, &_error) != SettingsStore::Ok ||
            (value.s != small && value.s != large))
            ++partial;
    }
    int status = 0;
    waitpid(writer, &status, 0);
    EXPECT_EQ(partial, 0);
    EXPECT_EQ(entries(_store.root() + "/db/test"), std::vector<std::string>{"busy"});
}

TEST(SettingValue, ParsesWhatPeopleTypeAndRefusesTheRest) {
    struct Case {
        const char *type;
        const char *text;
        bool ok;
        const char *shown;  // text() of the parsed value
    };
    const Case cases[] = {
        {"bool", "true", true, "true"},     {"bool", "1", true, "true"},
        {"bool", "false", true, "false"},   {"bool", "0", true, "false"},
        {"bool", "yes", false, ""},         {"bool", "", false, ""},
        {"int", "-42", true, "-42"},        {"int", "2147483647", true, "2147483647"},
        {"int", "2147483648", false, ""},   {"int", "12x", false, ""},
        {"int", " 5", false, ""},           {"int", "", false, ""},
        {"double", "0.1", true, "0.1"},     {"double", "-3", true, "-3"},
        {"double", "1e3", true, "1000"},    {"double", "2.5e-7", true, "2.5e-07"},
        {"double", "nan", false, ""},       {"double", "1e999", false, ""},
        {"double", "0x1p3", false, ""},     {"string", "", true, ""},
        {"string", "a b:c", true, "a b:c"}, {"float", "1", false, ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.type) + " '" + c.text + "'");
        SettingValue value = SettingValue::ofInt(99);
        std::string error;
        EXPECT_EQ(SettingValue::parse(c.type, c.text, &value, &error), c.ok);
        if (c.ok)
            EXPECT_EQ(value.text(), c.shown);
        else
            EXPECT_FALSE(error.empty());
    }
}
