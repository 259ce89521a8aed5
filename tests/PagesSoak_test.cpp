// Every page pushed onto the About list and popped again, many times over, one of them left at
// once after a row started another application (its list's input frozen for the launch):
// resident memory and the numbers of live signal subscriptions and page controllers must come
// back to where they started.
// `make test` runs a short version; `make soak` (QUILLSET_SOAK=1) the full one and prints
// what it measured.

#include <WNaviframeController.h>
#include <gtest/gtest.h>

#include <libintl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "StAppControlLauncher.h"
#include "LiveListeners.h"
#include "StInfoBatteryViewController.h"
#include "StInfoMainViewController.h"
#include "StInfoOpenSrcLicenseViewController.h"
#include "StInfoRegulatoryInfoViewController.h"
#include "StInfoStatusViewController.h"
#include "StInfoSwViewController.h"
#include "support/EflTestEnvironment.h"
#include "tessid/StInfoTessidViewController.h"

using app_assist::WNaviframeController;

namespace {

bool fullSoak() {
    const char *soak = getenv("QUILLSET_SOAK");
    return soak && *soak && strcmp(soak, "0") != 0;
}

#ifdef __SANITIZE_ADDRESS__
// The sanitizer keeps freed blocks in quarantine and records a full stack for every
// allocation, so resident memory says nothing and each cycle is some twenty times slower; its
// leak check covers what the memory figure would.
constexpr bool kMemoryComparable = false;
#else
constexpr bool kMemoryComparable = true;
#endif

// Bytes the allocator has handed out and not had back: unlike resident memory, this does not
// count freed blocks the allocator keeps, nor the toolkit's mapped caches.
long heapInUseKb() {
    struct mallinfo2 info = mallinfo2();
    return static_cast<long>(info.uordblks / 1024);
}

long residentKb() {
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

class PagesSoakTest : public EflTest {
protected:
    static void SetUpTestSuite() {
        // The default watch, as quillset-sim would seed it.
        EflTestEnvironment::seedShippedProfile("default");
    }
};

}  // namespace

// Page controllers alive, counted by the test's own subclasses of the pages.
int g_livePages = 0;

template <typename Page>
class Counted : public Page {
public:
    Counted() { ++g_livePages; }
    ~Counted() override { --g_livePages; }
};

template <typename Page>
app_assist::WViewController *make() {
    return new Counted<Page>();
}

// Taps the device information page's eSIM profile row, which starts the eSIM settings and
// freezes the list's input for a second; true if the launch froze it.
bool startEsimSettings(app_assist::WViewController *page) {
    const std::string label = dgettext("quillset", "WDS_WMGR_MBODY_KESTA_ESIM_PROFILE_ABB");
    Evas_Object *list = page->getEvasObject();
    for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
         item = elm_genlist_item_next_get(item)) {
        const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
        char *text = itc->func.text_get
                         ? itc->func.text_get(elm_object_item_data_get(item), list, "elm.text")
                         : nullptr;
        bool found = text && label == text;
        free(text);
        if (found) {
            elm_genlist_item_selected_set(item, EINA_TRUE);
            return StAppControlLauncher::getInstance()->isUiBlocked();
        }
    }
    return false;
}

TEST_F(PagesSoakTest, EveryPagePushedAndPoppedReturnsMemoryAndListeners) {
    const int cycles = fullSoak() ? 500 : kMemoryComparable ? 20 : 4;
    const int warmUp = kMemoryComparable ? 10 : 2;
    auto *naviframe = makeNaviframe();
    ASSERT_TRUE(naviframe->push(new StInfoMainViewController()));
    settle(0.1);

    typedef app_assist::WViewController *(*Page)();
    const std::vector<Page> pages = {
        make<StInfoStatusViewController>,         make<StInfoSwViewController>,
        make<StInfoTessidViewController>,         make<StInfoBatteryViewController>,
        make<StInfoRegulatoryInfoViewController>, make<StInfoOpenSrcLicenseViewController>};
    // Runs the cycles from the main loop, as a person's taps would: each push or pop starts
    // when the previous transition has finished.
    struct Cycler {
        WNaviframeController *naviframe;
        const std::vector<Page> *pages;
        bool launchedAndLeft = false;
        int cyclesLeft = 0;
        size_t page = 0;
        bool pushed = false;
        bool failed = false;
        Ecore_Job *job = nullptr;
        static void step(void *data, Evas_Object *, void *) {
            auto *self = static_cast<Cycler *>(data);
            if (!self->job)
                self->job = ecore_job_add(next, self);
        }
        static void next(void *data) {
            auto *self = static_cast<Cycler *>(data);
            self->job = nullptr;
            if (self->pushed) {
                self->pushed = false;
                // The device information page is left at once after a launch from it.
                if (self->page == 0)
                    self->launchedAndLeft = startEsimSettings(self->naviframe->getTopView());
                self->failed = self->failed || !self->naviframe->pop();
                return;
            }
            if (++self->page >= self->pages->size()) {
                self->page = 0;
                if (--self->cyclesLeft <= 0) {
                    ecore_main_loop_quit();
                    return;
                }
            }
            self->pushed = true;
            self->failed = self->failed || !self->naviframe->push((*self->pages)[self->page]());
        }
        Ecore_Timer *watchdog = nullptr;
        static Eina_Bool timeOut(void *data) {
            auto *self = static_cast<Cycler *>(data);
            self->watchdog = nullptr;
            self->failed = true;
            ecore_main_loop_quit();
            return ECORE_CALLBACK_CANCEL;
        }
        void run(int cycles) {
            cyclesLeft = cycles + 1;
            page = pages->size();
            pushed = false;
            // A transition that never ends fails the test instead of hanging it.
            watchdog =
                ecore_timer_add(30.0 + cycles * (kMemoryComparable ? 1.0 : 10.0), timeOut, this);
            next(this);
            ecore_main_loop_begin();
            if (watchdog)
                ecore_timer_del(watchdog);
            watchdog = nullptr;
        }
        // A failed run leaves a transition or a step pending; neither may reach this object
        // once the test has returned.
        ~Cycler() {
            evas_object_smart_callback_del_full(naviframe->getEvasObject(), "transition,finished",
                                                step, this);
            if (job)
                ecore_job_del(job);
        }
    };
    Cycler cycler{naviframe, &pages};
    evas_object_smart_callback_add(naviframe->getEvasObject(), "transition,finished", Cycler::step,
                                   &cycler);
    struct Measure {
        long rssKb, heapKb;
        size_t listeners;
        int pages;
    };
    // Runs the cycles, then lets the toolkit finish and the allocator give back what it can.
    auto runAndMeasure = [this, &cycler](int n) {
        cycler.run(n);
        settle(0.1);
        malloc_trim(0);
        return Measure{residentKb(), heapInUseKb(), live_listeners::count(), g_livePages};
    };
    // Fonts, theme groups and the toolkit's caches fill during the first cycles.
    Measure before = runAndMeasure(warmUp);
    ASSERT_FALSE(cycler.failed);
    Measure after = runAndMeasure(cycles);
    ASSERT_FALSE(cycler.failed);
    EXPECT_TRUE(cycler.launchedAndLeft) << "no launch froze the device information page";
    printf(
        "push/pop: %d cycles of %zu pages: resident memory %ld kB before, %ld kB after; "
        "heap in use %ld kB before, %ld kB after; live signal listeners %zu before, %zu after; "
        "live pages %d before, %d after\n",
        cycles, pages.size(), before.rssKb, after.rssKb, before.heapKb, after.heapKb,
        before.listeners, after.listeners, before.pages, after.pages);
    // The main list keeps its three subscriptions; pages keep none once popped.
    EXPECT_EQ(before.listeners, 3u);
    EXPECT_EQ(after.listeners, before.listeners);
    EXPECT_EQ(before.pages, 0);
    EXPECT_EQ(after.pages, 0) << "page controllers outlive their pages";
    if (kMemoryComparable) {
        EXPECT_LT(after.rssKb - before.rssKb, 4096) << "memory grows with every push and pop";
    }
    EXPECT_EQ(naviframe->getViews().size(), 1u);
}
