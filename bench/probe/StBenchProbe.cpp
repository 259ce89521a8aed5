// Smart-object classes are named through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1
#include "StBenchProbe.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <libintl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>

#include "EvasTree.h"

using evas_tree::findByType;
using evas_tree::isType;

namespace {

// Rows and pages settle (scrolling, transitions) before the next step is taken.
const double kSettleSeconds = 0.4;
// How long a finger rests on a row it taps.
const double kTapHoldSeconds = 0.08;
// A brisk turn of the bezel: about seven detents a second.
const double kDetentSeconds = 0.15;
const char *const kCheckParts[] = {"elm.icon", "elm.swallow.icon", "elm.swallow.end"};

int64_t now() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

int envInt(const char *name, int fallback) {
    const char *value = getenv(name);
    return value && *value ? atoi(value) : fallback;
}

bool hasRealizedRows(Evas_Object *list) {
    Eina_List *rows = elm_genlist_realized_items_get(list);
    bool any = rows != nullptr;
    eina_list_free(rows);
    return any;
}

unsigned int eventTime() {
    return static_cast<unsigned int>(ecore_loop_time_get() * 1000.0);
}

struct Deferred {
    StBenchProbe *probe;
    std::function<void(StBenchProbe *)> fn;
};

Eina_Bool deferredCb(void *data) {
    auto *deferred = static_cast<Deferred *>(data);
    deferred->fn(deferred->probe);
    delete deferred;
    return ECORE_CALLBACK_CANCEL;
}

}  // namespace

StBenchProbe &StBenchProbe::instance() {
    static StBenchProbe probe;
    return probe;
}

StBenchProbe::StBenchProbe()
    : _win(nullptr),
      _nf(nullptr),
      _out(envInt("QUILLSET_BENCH_OUT_FD", -1)),
      _in(envInt("QUILLSET_BENCH_IN_FD", -1)),
      _exitAtReady(envInt("QUILLSET_BENCH_EXIT_AT_READY", 0) != 0),
      _ready(false),
      _home(nullptr),
      _waitingPage(false),
      _pageFrom(nullptr),
      _tapTime(0),
      _waitingHome(false),
      _tapTarget(nullptr),
      _watchState(-1),
      _scrolled(nullptr),
      _forward(true),
      _scrollTarget(0),
      _framePre(0),
      _lastFrame(0) {
    const char *domain = getenv("QUILLSET_BENCH_DOMAIN");
    _domain = domain ? domain : "";
}

void StBenchProbe::attach(Evas_Object *win) {
    if (_win || !win)
        return;
    _win = win;
    // Texts a row shows while its value is still on its way, in the program's language.
    const char *pending = getenv("QUILLSET_BENCH_PENDING");
    std::string ids = pending ? pending : "";
    size_t start = 0;
    while (start < ids.size()) {
        size_t comma = ids.find(',', start);
        std::string id = ids.substr(start, comma == std::string::npos ? comma : comma - start);
        if (!id.empty())
            _pending.push_back(_domain.empty() ? id : dgettext(_domain.c_str(), id.c_str()));
        start = comma == std::string::npos ? ids.size() : comma + 1;
    }
    evas_event_callback_add(evas_object_evas_get(win), EVAS_CALLBACK_RENDER_PRE, _renderPreCb,
                            this);
    evas_event_callback_add(evas_object_evas_get(win), EVAS_CALLBACK_RENDER_POST, _renderPostCb,
                            this);
    if (_in >= 0) {
        fcntl(_in, F_SETFL, fcntl(_in, F_GETFL) | O_NONBLOCK);
        ecore_main_fd_handler_add(_in, ECORE_FD_READ, _commandCb, this, nullptr, nullptr);
    }
}

void StBenchProbe::_renderPreCb(void *data, Evas *, void *) {
    static_cast<StBenchProbe *>(data)->_framePre = now();
}

void StBenchProbe::_renderPostCb(void *data, Evas *, void *) {
    static_cast<StBenchProbe *>(data)->_onFrame();
}

Eina_Bool StBenchProbe::_commandCb(void *data, Ecore_Fd_Handler *) {
    auto *self = static_cast<StBenchProbe *>(data);
    char buffer[512];
    ssize_t n;
    while ((n = read(self->_in, buffer, sizeof(buffer))) > 0)
        self->_inBuffer.append(buffer, static_cast<size_t>(n));
    if (n == 0) {
        // The benchmark went away: nothing is left to report to.
        _exit(1);
    }
    size_t newline;
    while ((newline = self->_inBuffer.find('\n')) != std::string::npos) {
        std::string line = self->_inBuffer.substr(0, newline);
        self->_inBuffer.erase(0, newline + 1);
        self->_onCommand(line);
    }
    return ECORE_CALLBACK_RENEW;
}

void StBenchProbe::_send(const std::string &line) {
    if (_out < 0)
        return;
    std::string text = line + "\n";
    if (write(_out, text.data(), text.size()) < 0)
        _exit(1);
}

void StBenchProbe::_onFrame() {
    int64_t t = now();
    if (_scrolled) {
        _send("frame " + std::to_string(t - _framePre) + " " +
              std::to_string(_lastFrame ? t - _lastFrame : 0));
        _lastFrame = t;
    }
    if (!_ready) {
        Evas_Object *list = _topList();
        if (!list || !hasRealizedRows(list))
            return;
        _ready = true;
        _home = _topItem();
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        _send("ready " + std::to_string(t) + " " + std::to_string(usage.ru_maxrss));
        if (_exitAtReady)
            _exit(0);
        return;
    }
    if (_waitingPage) {
        Elm_Object_Item *top = _topItem();
        if (top && top != _pageFrom) {
            Evas_Object *list = _topList();
            if (!list || _pageComplete(list)) {
                _waitingPage = false;
                _send("page " + std::to_string(_tapTime) + " " + std::to_string(t));
            }
        }
    }
    if (_waitingHome && _topItem() == _home) {
        _waitingHome = false;
        _after(kSettleSeconds, [](StBenchProbe *p) { p->_send("home"); });
    }
    if (!_watchLabel.empty()) {
        int state = _watchedState();
        if (state >= 0 && state != _watchState) {
            _watchState = state;
            _send("check " + std::to_string(state) + " " + std::to_string(t));
        }
    }
}

void StBenchProbe::_onCommand(const std::string &line) {
    size_t space = line.find(' ');
    std::string command = line.substr(0, space);
    std::string arg = space == std::string::npos ? "" : line.substr(space + 1);
    if (command == "tap") {
        _tap(arg);
    } else if (command == "back") {
        _waitingHome = true;
        Evas *evas = evas_object_evas_get(_win);
        unsigned int ts = eventTime();
        evas_event_feed_key_down(evas, "Escape", "Escape", nullptr, nullptr, ts, nullptr);
        evas_event_feed_key_up(evas, "Escape", "Escape", nullptr, nullptr, ts + 10, nullptr);
    } else if (command == "show") {
        Elm_Object_Item *row = _findRow(_topList(), arg);
        if (!row) {
            _send("error no row " + arg);
            return;
        }
        elm_genlist_item_show(row, ELM_GENLIST_ITEM_SCROLLTO_IN);
        _after(kSettleSeconds, [](StBenchProbe *p) { p->_send("shown"); });
    } else if (command == "scroll") {
        _scroll();
    } else if (command == "watch") {
        _watchLabel = arg;
        _watchState = _watchedState();
        _send("watching " + std::to_string(_watchState));
    } else if (command == "quit") {
        _exit(0);
    } else {
        _send("error unknown command " + command);
    }
}

void StBenchProbe::attachNaviframe(Evas_Object *naviframe) {
    if (!_nf && naviframe) {
        _nf = naviframe;
        evas_object_event_callback_add(naviframe, EVAS_CALLBACK_DEL, _naviframeDelCb, this);
    }
}

void StBenchProbe::_naviframeDelCb(void *data, Evas *, Evas_Object *, void *) {
    static_cast<StBenchProbe *>(data)->_nf = nullptr;
}

Evas_Object *StBenchProbe::_naviframe() const {
    return _nf;
}

Elm_Object_Item *StBenchProbe::_topItem() const {
    Evas_Object *nf = _naviframe();
    return nf ? elm_naviframe_top_item_get(nf) : nullptr;
}

Evas_Object *StBenchProbe::_topList() const {
    Elm_Object_Item *top = _topItem();
    Evas_Object *content = top ? elm_object_item_content_get(top) : nullptr;
    return findByType(content, "elm_genlist");
}

Elm_Object_Item *StBenchProbe::_findRow(Evas_Object *list, const std::string &label) const {
    if (!list)
        return nullptr;
    std::string translated =
        _domain.empty() ? label : std::string(dgettext(_domain.c_str(), label.c_str()));
    for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
         item = elm_genlist_item_next_get(item)) {
        std::string text;
        if (const char *shown = elm_object_item_part_text_get(item, "elm.text")) {
            text = shown;
        } else {
            // A row out of view has no drawn text: ask it the way the list would.
            const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
            if (itc && itc->func.text_get) {
                char *asked = itc->func.text_get(elm_object_item_data_get(item), list, "elm.text");
                text = asked ? asked : "";
                free(asked);
            }
        }
        if (text == label || text == translated)
            return item;
    }
    return nullptr;
}

bool StBenchProbe::_pageComplete(Evas_Object *list) const {
    Eina_List *rows = elm_genlist_realized_items_get(list);
    bool complete = rows != nullptr;
    Eina_List *l;
    void *data;
    EINA_LIST_FOREACH(rows, l, data) {
        auto *item = static_cast<Elm_Object_Item *>(data);
        const char *value = elm_object_item_part_text_get(item, "elm.text.1");
        for (const std::string &pending : _pending)
            if (value && pending == value)
                complete = false;
    }
    eina_list_free(rows);
    return complete;
}

int StBenchProbe::_watchedState() const {
    Evas_Object *list = _topList();
    if (!list)
        return -1;
    std::string translated =
        _domain.empty() ? _watchLabel : std::string(dgettext(_domain.c_str(), _watchLabel.c_str()));
    int state = -1;
    Eina_List *rows = elm_genlist_realized_items_get(list);
    Eina_List *l;
    void *data;
    EINA_LIST_FOREACH(rows, l, data) {
        auto *item = static_cast<Elm_Object_Item *>(data);
        const char *text = elm_object_item_part_text_get(item, "elm.text");
        if (!text || (translated != text && _watchLabel != text))
            continue;
        for (const char *part : kCheckParts) {
            Evas_Object *content = elm_object_item_part_content_get(item, part);
            if (isType(content, "elm_check"))
                state = elm_check_state_get(content) ? 1 : 0;
        }
    }
    eina_list_free(rows);
    return state;
}

void StBenchProbe::_tap(const std::string &label) {
    Elm_Object_Item *row = _findRow(_topList(), label);
    if (!row) {
        _send("error no row " + label);
        return;
    }
    _tapTarget = row;
    elm_genlist_item_show(row, ELM_GENLIST_ITEM_SCROLLTO_IN);
    _after(kSettleSeconds, [](StBenchProbe *p) {
        Evas_Object *track = elm_object_item_track(p->_tapTarget);
        int x = 0, y = 0, w = 0, h = 0;
        if (track)
            evas_object_geometry_get(track, &x, &y, &w, &h);
        elm_object_item_untrack(p->_tapTarget);
        if (w <= 0 || h <= 0) {
            p->_send("error row not on screen");
            return;
        }
        Evas *evas = evas_object_evas_get(p->_win);
        unsigned int ts = eventTime();
        evas_event_feed_mouse_move(evas, x + w / 2, y + h / 2, ts, nullptr);
        evas_event_feed_mouse_down(evas, 1, EVAS_BUTTON_NONE, ts + 1, nullptr);
        // A finger rests on the row for a moment; the tap is complete when it lifts.
        p->_after(kTapHoldSeconds, [](StBenchProbe *p) {
            Evas *evas = evas_object_evas_get(p->_win);
            p->_pageFrom = p->_topItem();
            p->_waitingPage = true;
            p->_tapTime = now();
            evas_event_feed_mouse_up(evas, 1, EVAS_BUTTON_NONE, eventTime(), nullptr);
        });
    });
}

// The top page's list, or the scroller of a page that is one long text.
void StBenchProbe::_scroll() {
    Evas_Object *target = _topList();
    if (!target) {
        Elm_Object_Item *top = _topItem();
        target = findByType(top ? elm_object_item_content_get(top) : nullptr, "elm_scroller");
    }
    if (!target) {
        _send("error nothing to scroll");
        return;
    }
    _scrolled = target;
    _forward = true;
    _scrollTarget = 0;
    _lastFrame = 0;
    ecore_timer_add(kDetentSeconds, _detentCb, this);
}

Eina_Bool StBenchProbe::_detentCb(void *data) {
    auto *self = static_cast<StBenchProbe *>(data);
    if (self->_turn(self->_forward))
        return ECORE_CALLBACK_RENEW;
    if (self->_forward) {
        self->_forward = false;
        return ECORE_CALLBACK_RENEW;
    }
    self->_after(kSettleSeconds, [](StBenchProbe *p) {
        p->_scrolled = nullptr;
        p->_send("scrolled");
    });
    return ECORE_CALLBACK_CANCEL;
}

// One detent of the bezel, as the watch turns it: a list by one row, brought to the middle; a
// scroller by a third of its view. False at the end.
bool StBenchProbe::_turn(bool forward) {
    if (isType(_scrolled, "elm_genlist")) {
        int count = static_cast<int>(elm_genlist_items_count(_scrolled));
        int next = _scrollTarget + (forward ? 1 : -1);
        if (next < 0 || next >= count)
            return false;
        _scrollTarget = next;
        Elm_Object_Item *item = elm_genlist_nth_item_get(_scrolled, static_cast<unsigned>(next));
        elm_genlist_item_bring_in(item, ELM_GENLIST_ITEM_SCROLLTO_MIDDLE);
        return true;
    }
    Evas_Coord x = 0, y = 0, w = 0, h = 0, cw = 0, ch = 0;
    elm_interface_scrollable_content_region_get(_scrolled, &x, &y, &w, &h);
    elm_interface_scrollable_content_size_get(_scrolled, &cw, &ch);
    int step = h / 3 > 40 ? h / 3 : 40;
    int next = _scrollTarget + (forward ? step : -step);
    int end = ch > h ? ch - h : 0;
    if ((forward && _scrollTarget >= end) || (!forward && _scrollTarget <= 0))
        return false;
    _scrollTarget = next < 0 ? 0 : next > end ? end : next;
    elm_interface_scrollable_region_bring_in(_scrolled, x, _scrollTarget, w, h);
    return true;
}

void StBenchProbe::_after(double seconds, void (*fn)(StBenchProbe *)) {
    ecore_timer_add(seconds, deferredCb, new Deferred{this, fn});
}
