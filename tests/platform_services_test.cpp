// The log provider's and the application manager's stand-ins: usage records and launch and
// terminate requests reach the services daemon in the order they were made, and a daemon that
// is missing, slow or restarted makes each call fail or succeed as the platform's would, with
// the main loop waiting no longer than that call would.

#include <app_control.h>
#include <gtest/gtest.h>
#include <nerova_log_manager.h>

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "DaemonLink.h"
#include "sim_platform_support.h"

using simtest::contains;

namespace {

const char *const kUri = "http://developer.nerova.com/log/use_app_feature_survey";

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class ServicesTest : public simtest::StateTest {
protected:
    void SetUp() override {
        StateTest::SetUp();
        ASSERT_TRUE(_watch.start(_state.path()));
        ASSERT_EQ(nerova_log_manager_create(&_log), NEROVA_LOG_MANAGER_ERROR_NONE);
    }
    void TearDown() override {
        nerova_log_manager_destroy(_log);
        for (app_control_h handle : _handles)
            app_control_destroy(handle);
        platform::daemonLinkShutdown(1.0);
        _watch.stop();
        StateTest::TearDown();
    }

    // Sends a usage record; *seconds receives how long the call took.
    int record(const char *feature, double *seconds = nullptr) {
        bundle *b = bundle_create();
        bundle_add_str(b, "app_id", "com.nerova.quillset");
        bundle_add_str(b, "feature", feature);
        auto start = std::chrono::steady_clock::now();
        int id = 0, result = nerova_log_manager_insert(_log, kUri, b, nullptr, nullptr, &id);
        if (seconds)
            *seconds = secondsSince(start);
        bundle_free(b);
        return result;
    }

    // Sends a launch request for appId; the handle stays for a terminate request.
    int launch(const char *appId, app_control_h *handle, double *seconds = nullptr) {
        app_control_create(handle);
        _handles.push_back(*handle);
        app_control_set_app_id(*handle, appId);
        app_control_add_extra_data(*handle, "mode", "test");
        auto start = std::chrono::steady_clock::now();
        int result = app_control_send_launch_request(*handle, nullptr, nullptr);
        if (seconds)
            *seconds = secondsSince(start);
        return result;
    }

    // The daemon's answers to the records, on the main loop.
    bool answered() {
        return simtest::runMainLoopUntil([] { return platform::daemonAnswersAwaited() == 0; },
                                         30.0);
    }

    // `quillset-sim usage` or `launches`, one object a row.
    std::vector<nlohmann::json> rows(const std::string &what) {
        return simtest::simRows(_state.path(), what);
    }

    // Records and requests in the order the daemon kept them: "F" a record's feature,
    // "launch A" / "terminate A" a request and its result when it was refused.
    std::vector<std::string> kept() {
        std::vector<std::pair<double, std::string>> all;
        for (const auto &row : rows("usage"))
            all.emplace_back(row["time"].get<double>(), row.value("feature", ""));
        for (const auto &row : rows("launches")) {
            int result = row.value("result", 0);
            all.emplace_back(row["time"].get<double>(),
                             row.value("request", "") + " " + row.value("app_id", "") +
                                 (result ? " " + std::to_string(result) : ""));
        }
        std::stable_sort(all.begin(), all.end(),
                         [](const auto &a, const auto &b) { return a.first < b.first; });
        std::vector<std::string> out;
        for (const auto &entry : all)
            out.push_back(entry.second);
        return out;
    }

    simtest::RunningWatch _watch;
    nerova_log_manager_h _log = nullptr;
    std::vector<app_control_h> _handles;
};

}  // namespace

TEST_F(ServicesTest, RecordsAndRequestsReachTheDaemonInTheOrderMade) {
    app_control_h first, second;
    double seconds = 0;
    EXPECT_EQ(record("S003", &seconds), NEROVA_LOG_MANAGER_ERROR_NONE);
    ASSERT_EQ(launch("app.one", &first), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(record("S516"), NEROVA_LOG_MANAGER_ERROR_NONE);
    EXPECT_EQ(app_control_send_terminate_request(first), APP_CONTROL_ERROR_NONE);
    ASSERT_EQ(launch("app.two", &second), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(record("ST15"), NEROVA_LOG_MANAGER_ERROR_NONE);
    ASSERT_TRUE(answered());
    EXPECT_EQ(kept(), (std::vector<std::string>{"S003", "launch app.one", "S516",
                                                "terminate app.one", "launch app.two", "ST15"}));
    auto journal = rows("launches");
    EXPECT_EQ(journal[1]["launch_id"], journal[0]["id"]);
    EXPECT_EQ(journal[0]["extra_data"], nlohmann::json({{"mode", "test"}}));
    EXPECT_FALSE(contains(platformLog(), "not delivered")) << platformLog();
}

TEST_F(ServicesTest, RefusalsComeFromTheApplicationManager) {
    useProfile(R"({"faults": [{"call": "app_control_send_launch_request", "key": "app.broken",
                               "code": -289},
                              {"call": "app_control_send_terminate_request", "code": -5}]})");
    app_control_h broken, fine, never;
    EXPECT_EQ(launch("app.broken", &broken), -289);
    ASSERT_EQ(launch("app.fine", &fine), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(app_control_send_terminate_request(fine), -5);
    // A handle that launched nothing has nothing to end.
    useProfile("{}");
    app_control_create(&never);
    _handles.push_back(never);
    app_control_set_app_id(never, "app.never");
    EXPECT_EQ(app_control_send_terminate_request(never), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(kept(),
              (std::vector<std::string>{"launch app.broken -289", "launch app.fine",
                                        "terminate app.fine -5", "terminate app.never -22"}));
    EXPECT_TRUE(contains(platformLog(), "launch of app.broken refused: -289"));
}

TEST_F(ServicesTest, WithoutABusEveryCallFailsAtOnceAndSaysSo) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + _state / "no-bus.sock").c_str(), 1);
    double recordSeconds = 0, launchSeconds = 0;
    app_control_h handle;
    EXPECT_EQ(record("S003", &recordSeconds), NEROVA_LOG_MANAGER_ERROR_IO_ERROR);
    EXPECT_EQ(launch("app.one", &handle, &launchSeconds), APP_CONTROL_ERROR_LAUNCH_REJECTED);
    EXPECT_LT(recordSeconds, 1.0);
    EXPECT_LT(launchSeconds, 1.0);
    std::string log = platformLog();
    EXPECT_TRUE(contains(log, "usage record S003 for " + std::string(kUri) +
                                  " not delivered to the log provider: the private system bus "
                                  "cannot be reached"))
        << log;
    EXPECT_TRUE(contains(log, "launch request for app.one not carried out (" +
                                  std::to_string(APP_CONTROL_ERROR_LAUNCH_REJECTED) +
                                  "): the private system bus cannot be reached"))
        << log;
}

TEST_F(ServicesTest, WithoutTheDaemonRecordsAreLoggedAsLostAndLaunchesRejectedAtOnce) {
    ASSERT_TRUE(_watch.stopDaemon());
    double recordSeconds = 0, launchSeconds = 0;
    app_control_h handle;
    // The record is handed over; that nobody took it is known later, on the main loop.
    EXPECT_EQ(record("S003", &recordSeconds), NEROVA_LOG_MANAGER_ERROR_NONE);
    EXPECT_EQ(launch("app.one", &handle, &launchSeconds), APP_CONTROL_ERROR_LAUNCH_REJECTED);
    EXPECT_LT(recordSeconds, 1.0);
    EXPECT_LT(launchSeconds, 1.0);
    ASSERT_TRUE(answered());
    std::string log = platformLog();
    EXPECT_TRUE(contains(log, "usage record S003 for " + std::string(kUri) +
                                  " not delivered to the log provider: ") &&
                contains(log, "org.freedesktop.DBus.Error.ServiceUnknown"))
        << log;
    EXPECT_TRUE(contains(log, "launch request for app.one not carried out (" +
                                  std::to_string(APP_CONTROL_ERROR_LAUNCH_REJECTED) + ")"))
        << log;
}

TEST_F(ServicesTest, ASlowDaemonDelaysNoRecordAndTimesALaunchOutAsThePlatformWould) {
    pid_t daemon = _watch.daemonPid();
    ASSERT_GT(daemon, 0);
    ASSERT_EQ(kill(daemon, SIGSTOP), 0);
    double recordSeconds = 0, launchSeconds = 0;
    app_control_h handle;
    EXPECT_EQ(record("S003", &recordSeconds), NEROVA_LOG_MANAGER_ERROR_NONE);
    EXPECT_EQ(launch("app.one", &handle, &launchSeconds), APP_CONTROL_ERROR_TIMED_OUT);
    EXPECT_EQ(record("S516", &recordSeconds), NEROVA_LOG_MANAGER_ERROR_NONE);
    EXPECT_LT(recordSeconds, 1.0);
    // The platform's request waits 5.2 s for the application manager, and no longer.
    EXPECT_GE(launchSeconds, 5.1);
    EXPECT_LT(launchSeconds, 6.5);
    ASSERT_EQ(kill(daemon, SIGCONT), 0);
    ASSERT_TRUE(answered());
    // Nothing was lost: the daemon carried everything out late, in order.
    EXPECT_EQ(kept(), (std::vector<std::string>{"S003", "launch app.one", "S516"}));
    std::string log = platformLog();
    EXPECT_FALSE(contains(log, "not delivered")) << log;
    EXPECT_TRUE(contains(log, "launch request for app.one not carried out (" +
                                  std::to_string(APP_CONTROL_ERROR_TIMED_OUT) + ")"))
        << log;
}

TEST_F(ServicesTest, ARestartedDaemonTakesTheNextCallsAndEndsEarlierLaunches) {
    app_control_h first, second;
    EXPECT_EQ(record("S003"), NEROVA_LOG_MANAGER_ERROR_NONE);
    ASSERT_EQ(launch("app.one", &first), APP_CONTROL_ERROR_NONE);
    ASSERT_TRUE(answered());
    ASSERT_TRUE(_watch.stopDaemon());
    ASSERT_TRUE(_watch.startDaemon());
    EXPECT_EQ(record("S516"), NEROVA_LOG_MANAGER_ERROR_NONE);
    EXPECT_EQ(app_control_send_terminate_request(first), APP_CONTROL_ERROR_NONE);
    ASSERT_EQ(launch("app.two", &second), APP_CONTROL_ERROR_NONE);
    ASSERT_TRUE(answered());
    EXPECT_EQ(kept(), (std::vector<std::string>{"S003", "launch app.one", "S516",
                                                "terminate app.one", "launch app.two"}));
    auto journal = rows("launches");
    EXPECT_EQ(journal[1]["launch_id"], journal[0]["id"]);
    EXPECT_FALSE(contains(platformLog(), "not delivered")) << platformLog();
}

TEST_F(ServicesTest, RecordsStillAwaitedAtTheEndAreLoggedNotDropped) {
    pid_t daemon = _watch.daemonPid();
    ASSERT_EQ(kill(daemon, SIGSTOP), 0);
    EXPECT_EQ(record("S003"), NEROVA_LOG_MANAGER_ERROR_NONE);
    auto start = std::chrono::steady_clock::now();
    platform::daemonLinkShutdown(0.3);
    EXPECT_LT(secondsSince(start), 1.0);
    EXPECT_EQ(platform::daemonAnswersAwaited(), 0);
    kill(daemon, SIGCONT);
    EXPECT_TRUE(contains(platformLog(), "usage record S003 for " + std::string(kUri) +
                                            " not delivered to the log provider: no answer "
                                            "before the application ended"))
        << platformLog();
}
