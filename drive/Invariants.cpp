// Popups and the naviframe's items are read through upstream's Eo API, marked beta.
#define EFL_BETA_API_SUPPORT 1
#include "Invariants.h"

#include <WApp.h>
#include <WNaviframeController.h>
#include <WWindowController.h>
#include <WPopupController.h>
#include <vconf.h>

#include <regex>
#include <vector>

#include "EvasTree.h"
#include "LiveListeners.h"

using app_assist::WNaviframeController;
using app_assist::WViewController;

namespace {

int g_liveControllers = 0;

// A main loop that does not turn for this long has frozen the screen.
const double kLongestGap = 2.0;
const char *const kDebugKey = "db/setting/debug_mode";

bool debuggingOn() {
    int on = 0;
    return vconf_get_bool(kDebugKey, &on) == VCONF_OK && on;
}

}  // namespace

// The driver is linked with its controllers' construction and destruction wrapped (see its
// CMakeLists), so that they are counted without a line in the application.
extern "C" {
void __real__ZN10app_assist15WViewControllerC2Ev(WViewController *self);
void __real__ZN10app_assist15WViewControllerD2Ev(WViewController *self);

void __wrap__ZN10app_assist15WViewControllerC2Ev(WViewController *self) {
    __real__ZN10app_assist15WViewControllerC2Ev(self);
    ++g_liveControllers;
}

void __wrap__ZN10app_assist15WViewControllerD2Ev(WViewController *self) {
    --g_liveControllers;
    __real__ZN10app_assist15WViewControllerD2Ev(self);
}
}

Invariants::Invariants(const ScreenReader &reader)
    : _reader(reader),
      _beat(nullptr),
      _lastBeat(0),
      _longestGap(0),
      _debuggingAllowed(false),
      _debuggingWasOn(false),
      _baseListeners(0),
      _baseControllers(0) {}

Invariants::~Invariants() {
    // The main loop may be gone by now: stop() is called while it still runs.
}

void Invariants::stop() {
    if (_beat)
        ecore_timer_del(_beat);
    _beat = nullptr;
}

int Invariants::liveControllers() {
    return g_liveControllers;
}

void Invariants::start() {
    if (_beat)
        return;
    _lastBeat = ecore_time_get();
    _beat = ecore_timer_add(0.1, _beatCb, this);
    _debuggingWasOn = debuggingOn();
    // The About list alone, as the application opened it.
    _baseListeners = live_listeners::count();
    _baseControllers = g_liveControllers;
}

Eina_Bool Invariants::_beatCb(void *data) {
    auto *self = static_cast<Invariants *>(data);
    double now = ecore_time_get();
    if (now - self->_lastBeat > self->_longestGap)
        self->_longestGap = now - self->_lastBeat;
    self->_lastBeat = now;
    return ECORE_CALLBACK_RENEW;
}

std::string Invariants::_rawId(const std::string &where) const {
    // A string id left untranslated: capitals, digits and at least two underscores.
    static const std::regex id("^[A-Z][A-Z0-9]*(_[A-Z0-9]+){2,}$");
    std::vector<const nlohmann::json *> pending{nullptr};
    nlohmann::json screen = _reader.dump();
    // The page's title id names the page in a dump; its title row is what shows.
    screen.erase("page");
    pending.back() = &screen;
    while (!pending.empty()) {
        const nlohmann::json *node = pending.back();
        pending.pop_back();
        if (node->is_string()) {
            const std::string &text = node->get_ref<const std::string &>();
            if (std::regex_match(text, id))
                return where + " shows the raw string id " + text;
        } else if (node->is_structured()) {
            for (const auto &child : *node)
                pending.push_back(&child);
        }
    }
    return std::string();
}

std::string Invariants::checkNow() {
    // The pulse is read first: a check that itself came late counts too.
    _beatCb(this);
    if (_longestGap > kLongestGap) {
        std::string gap = std::to_string(_longestGap);
        _longestGap = 0;
        return "loop: the main loop did not turn for " + gap + " s";
    }
    _longestGap = 0;

    bool debugging = debuggingOn();
    bool allowed = _debuggingAllowed;
    bool wasOn = _debuggingWasOn;
    _debuggingAllowed = false;
    _debuggingWasOn = debugging;
    if (debugging && !wasOn && !allowed)
        return "debugging: the debugging setting turned on without the confirmation popup's OK";

    // The launch's block ends with the screen it blocked, in the same deletion.
    if (live_listeners::launchBlockOutlivesItsScreen())
        return "lifetime: the launcher's time-out outlived the screen it blocked";

    std::string raw = _rawId("the screen");
    return raw.empty() ? raw : "raw-id: " + raw;
}

std::string Invariants::checkSettled() {
    app_assist::WApp *app = app_assist::WApp::getInstance();
    auto *controller = app && app->getWindowController()
                           ? dynamic_cast<WNaviframeController *>(
                                 app->getWindowController()->getBaseViewController())
                           : nullptr;
    if (Evas_Object *naviframe = controller ? controller->getEvasObject() : nullptr) {
        Eina_List *items = elm_naviframe_items_get(naviframe);
        int count = static_cast<int>(eina_list_count(items));
        eina_list_free(items);
        if (count != _reader.depth())
            return "stack: " + std::to_string(_reader.depth()) + " pages but " +
                   std::to_string(count) + " naviframe items";
    }

    // A popup that has gone from the screen has gone: popups close by being deleted.
    if (Evas_Object *win = _reader.window()) {
        std::vector<Evas_Object *> popups;
        Evas *canvas = evas_object_evas_get(win);
        for (Evas_Object *o = evas_object_bottom_get(canvas); o; o = evas_object_above_get(o))
            evas_tree::collectByType(o, "elm_popup", &popups);
        for (Evas_Object *popup : popups)
            if (!evas_object_visible_get(popup))
                return "lifetime: a hidden popup was kept";
    }

    // Whenever the About list is alone on screen, nothing of the pages is left.
    if (_reader.depth() != 1 || _reader.topPopup())
        return std::string();
    size_t listeners = live_listeners::count();
    int controllers = g_liveControllers;
    if (listeners != _baseListeners)
        return "lifetime: " + std::to_string(listeners) + " signal listeners on the About list, " +
               std::to_string(_baseListeners) + " at first";
    if (controllers != _baseControllers)
        return "lifetime: " + std::to_string(controllers) +
               " view controllers on the About list, " + std::to_string(_baseControllers) +
               " at first";
    return std::string();
}
