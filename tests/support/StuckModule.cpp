// A library whose warm-up does not return until the test lets it go: a background load of the
// application's own libraries that hangs (a slow disk, a lock held elsewhere).

#include <condition_variable>
#include <mutex>

namespace {
std::mutex g_mutex;
std::condition_variable g_released;
bool g_release = false;
}  // namespace

extern "C" {

void quillset_test_stuck_warm_up() {
    std::unique_lock<std::mutex> lock(g_mutex);
    g_released.wait(lock, [] { return g_release; });
}

void quillset_test_stuck_release() {
    std::lock_guard<std::mutex> lock(g_mutex);
    g_release = true;
    g_released.notify_all();
}

int quillset_test_stuck_answer() {
    return 42;
}

}  // extern "C"
