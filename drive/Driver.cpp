// The list's scroll position is read and put back through upstream's scrollable interface.
#define EFL_BETA_API_SUPPORT 1
#include "Driver.h"

#include <Ecore_Evas.h>
#include <Ecore_X.h>
#include <WPopupController.h>
#include <WViewController.h>
#include <app.h>
#include <libintl.h>
#include <vconf.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <utility>

#include "EvasTree.h"
#include "PlatformState.h"
#include "ReadingOrder.h"
#include "StInfoUSBDebuggingPopupController.h"

namespace {

// A pipe, a socket or a terminal delivers its input over time; a file has it all at once.
bool stdinIsStream() {
    struct stat st;
    return fstat(STDIN_FILENO, &st) != 0 || S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode) ||
           isatty(STDIN_FILENO);
}

const double kSettle = 0.06;     // lets the toolkit lay out and draw after a command
const double kPopupDrawn = 1.0;  // the longest wait for a popup's first frames
const double kSimSettle = 0.15;  // events from other processes arrive through the loop
const char *const kDomain = "quillset";
// Tries, a tenth of a second apart, for what settles by itself after a command.
const int kSettledTries = 10;

std::vector<std::string> splitWords(const std::string &text) {
    std::vector<std::string> words;
    std::istringstream in(text);
    std::string word;
    while (in >> word)
        words.push_back(word);
    return words;
}

std::string trim(const std::string &text) {
    size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos)
        return std::string();
    size_t end = text.find_last_not_of(" \t\r");
    return text.substr(begin, end - begin + 1);
}

unsigned int timestamp() {
    return static_cast<unsigned int>(ecore_time_get() * 1000.0);
}

}  // namespace

Driver::Driver(std::string simPath, bool interactive)
    : _simPath(std::move(simPath)),
      _interactive(interactive),
      _inputDone(false),
      _busy(false),
      _finished(false),
      _status(0),
      _lineCount(0),
      _stdinHandler(nullptr),
      _timer(nullptr),
      _invariants(_reader) {}

bool Driver::start(const std::string &scriptPath) {
    if (!scriptPath.empty()) {
        std::ifstream in(scriptPath);
        if (!in) {
            std::cerr << "quillset-drive: cannot read script " << scriptPath << ": "
                      << strerror(errno) << "\n";
            _status = 2;
            return false;
        }
        std::string text;
        while (std::getline(in, text))
            _pending.push_back(Line{++_lineCount, text});
        _inputDone = true;
    } else if (!stdinIsStream()) {
        // A file (`quillset-drive < script`) cannot be watched for input: it is read whole.
        _readStdin();
    } else {
        fcntl(STDIN_FILENO, F_SETFL, fcntl(STDIN_FILENO, F_GETFL) | O_NONBLOCK);
        _stdinHandler = ecore_main_fd_handler_add(STDIN_FILENO, ECORE_FD_READ, _stdinCb, this,
                                                  nullptr, nullptr);
    }
    // The first frame needs the window to be sized and the first launch request handled.
    _scheduleNext(0.2);
    return true;
}

Eina_Bool Driver::_stdinCb(void *data, Ecore_Fd_Handler *) {
    static_cast<Driver *>(data)->_readStdin();
    return ECORE_CALLBACK_RENEW;
}

void Driver::_readStdin() {
    char buffer[4096];
    for (;;) {
        ssize_t n = read(STDIN_FILENO, buffer, sizeof(buffer));
        if (n > 0) {
            _partial.append(buffer, n);
            size_t newline;
            while ((newline = _partial.find('\n')) != std::string::npos) {
                _pending.push_back(Line{++_lineCount, _partial.substr(0, newline)});
                _partial.erase(0, newline + 1);
            }
            continue;
        }
        if (n < 0 && (errno == EAGAIN || errno == EINTR))
            break;
        // End of input.
        if (!_partial.empty())
            _pending.push_back(Line{++_lineCount, _partial});
        _partial.clear();
        _inputDone = true;
        if (_stdinHandler) {
            ecore_main_fd_handler_del(_stdinHandler);
            _stdinHandler = nullptr;
        }
        break;
    }
    if (!_busy && !_timer)
        _scheduleNext(0);
}

void Driver::_scheduleNext(double delay) {
    if (_timer)
        ecore_timer_del(_timer);
    _timer = ecore_timer_add(delay, _nextCb, this);
}

Eina_Bool Driver::_nextCb(void *data) {
    auto *self = static_cast<Driver *>(data);
    self->_timer = nullptr;
    self->_runNext();
    return ECORE_CALLBACK_CANCEL;
}

void Driver::_runNext() {
    if (_finished || _busy)
        return;
    if (_checkDue) {
        _checkDue = false;
        _busy = true;
        _checkInvariants(_lastLine);
        return;
    }
    _countFrames();
    while (!_pending.empty()) {
        Line line = _pending.front();
        _pending.pop_front();
        std::string text = trim(line.text);
        if (text.empty() || text[0] == '#')
            continue;
        line.text = text;
        _busy = true;
        _lastLine = line;
        _checkDue = _checking;
        _run(line);
        return;
    }
    if (_inputDone) {
        // The script is over: end the application as a person would leave it.
        _endApplication();
    }
}

void Driver::_endApplication() {
    _finished = true;
    // The buffer engine frees its pixels before it waits for the render thread: a frame still
    // being drawn when the canvas goes away crashes the toolkit. A person never leaves that
    // fast, a script does: no frame is started any more, and the one being drawn is let end.
    Evas_Object *win = _reader.window();
    if (win)
        ecore_evas_manual_render_set(ecore_evas_ecore_evas_get(evas_object_evas_get(win)),
                                     EINA_TRUE);
    if (!win || !_rendering) {
        ui_app_exit();
        return;
    }
    _exitWhenDrawn = true;
    _after(2.0, []() { ui_app_exit(); });
}

void Driver::_after(double delay, std::function<void()> then) {
    auto *entry = new std::pair<Ecore_Timer *, std::function<void()>>(nullptr, std::move(then));
    entry->first = ecore_timer_add(delay, _afterCb, entry);
    _afters.push_back(entry);
}

Eina_Bool Driver::_afterCb(void *data) {
    auto *entry = static_cast<std::pair<Ecore_Timer *, std::function<void()>> *>(data);
    std::function<void()> then = std::move(entry->second);
    entry->first = nullptr;
    then();
    return ECORE_CALLBACK_CANCEL;
}

void Driver::_fail(const Line &line, const std::string &reason) {
    std::cerr << "quillset-drive: line " << line.number << ": " << line.text << ": " << reason
              << "\n";
    _status = 1;
    if (_interactive) {
        // At a prompt a mistake should not end the session.
        _busy = false;
        _scheduleNext(0);
        return;
    }
    _endApplication();
}

std::string Driver::_translate(const std::string &text) const {
    return ScreenReader::withoutSoftHyphens(dgettext(kDomain, text.c_str()));
}

namespace {

// A text quoted as in a script, shortened where a page holds a whole document.
std::string quoted(std::string text) {
    const size_t kLongest = 60;
    if (text.size() > kLongest) {
        size_t cut = kLongest;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
            --cut;  // not inside a UTF-8 sequence
        text = text.substr(0, cut) + "...";
    }
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// Adds a text to a list of quoted texts, unless it is empty or the one just before.
void addText(std::string *out, const nlohmann::json &text) {
    if (!text.is_string() || text.get<std::string>().empty())
        return;
    std::string added = quoted(ScreenReader::withoutSoftHyphens(text.get<std::string>()));
    size_t size = out->size();
    if (size < added.size() || out->compare(size - added.size(), added.size(), added) != 0)
        *out += (out->empty() ? "" : ", ") + added;
}

}  // namespace

std::string Driver::_screenTexts() const {
    nlohmann::json screen = _reader.dump();
    std::string out;
    if (screen["page"].is_string())
        addText(&out, _translate(screen["page"].get<std::string>()));
    for (const auto &item : screen["items"]) {
        std::string row;
        for (const auto &text : item["texts"])
            if (text.is_string() && !text.get<std::string>().empty())
                row += (row.empty() ? "" : ": ") + text.get<std::string>();
        if (item["check"].is_boolean())
            row += item["check"].get<bool>() ? " [on]" : " [off]";
        addText(&out, row);
    }
    if (screen["layout"].is_object())
        for (const auto &text : screen["layout"])
            addText(&out, text);
    if (screen["popup"].is_object()) {
        addText(&out, screen["popup"]["title"]);
        addText(&out, screen["popup"]["text"]);
        for (const auto &button : screen["popup"]["buttons"])
            addText(&out, "[" + button.get<std::string>() + "]");
    }
    addText(&out, screen["toast"]);
    return out.empty() ? "nothing" : out;
}

std::string Driver::_rowLabels(Evas_Object *list) {
    std::string out;
    for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
         item = elm_genlist_item_next_get(item)) {
        nlohmann::json texts = ScreenReader::rowTexts(item);
        if (texts.contains("elm.text"))
            addText(&out, texts["elm.text"]);
    }
    return out.empty() ? "none" : out;
}

std::string Driver::_language() {
    char *language = vconf_get_str("db/menu_widget/language");
    std::string text = language ? language : "the watch's language";
    free(language);
    return text;
}

bool Driver::_matches(const std::string &shown, const std::string &wanted) const {
    return shown == wanted || shown == _translate(wanted);
}

void Driver::_run(const Line &line) {
    std::string command = line.text.substr(0, line.text.find_first_of(" \t"));
    std::string arg = trim(line.text.substr(command.size()));
    auto done = [this](double delay) {
        _busy = false;
        // A stress run sets its own pauses; the screen gets none of its own.
        _scheduleNext(_checking ? 0 : delay);
    };

    if (command == "dump") {
        _revealSwitches([this, done](const ScreenReader::SwitchStates &states) {
            std::cout << _reader.dump(states).dump(-1, ' ', false,
                                                   nlohmann::json::error_handler_t::replace)
                      << std::endl;
            done(0);
        });
    } else if (command == "a11y") {
        std::cout << ReadingOrder(_reader).read().dump(-1, ' ', false,
                                                       nlohmann::json::error_handler_t::replace)
                  << std::endl;
        done(0);
    } else if (command == "tap") {
        if (_tap(line, arg))
            return;  // continues on its own
    } else if (command == "press") {
        _press(line, arg);  // continues on its own
    } else if (command == "back") {
        // Back on the About list alone ends the application: a stress run ends it only at its
        // end, as every script does.
        if (_checking && _reader.depth() <= 1 && !_reader.topPopup() && !_reader.toast()) {
            done(0);
            return;
        }
        _feedKey("Escape");
        done(kSettle * 2);
    } else if (command == "bezel") {
        char *end = nullptr;
        long steps = strtol(arg.c_str(), &end, 10);
        if (arg.empty() || *end) {
            _fail(line, "bezel needs a number of steps (negative turns back)");
            return;
        }
        for (long i = 0; i < labs(steps); ++i)
            _feedKey(steps > 0 ? "Next" : "Prior");
        done(0.4);  // the list glides to its new place
    } else if (command == "wait") {
        char *end = nullptr;
        long ms = strtol(arg.c_str(), &end, 10);
        if (arg.empty() || *end || ms < 0) {
            _fail(line, "wait needs milliseconds");
            return;
        }
        _busy = false;
        _scheduleNext(ms / 1000.0);
    } else if (command == "shot") {
        std::string error;
        if (arg.empty())
            _fail(line, "shot needs a file name");
        else if (!_shot(arg, &error))
            _fail(line, error);
        else
            done(0);
    } else if (command == "expect") {
        std::string dumped =
            _reader.dump().dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        std::string quotedJson = nlohmann::json(arg).dump();
        std::string quotedText = nlohmann::json(_translate(arg)).dump();
        // Compare as JSON strings so that quotes and backslashes match what is shown.
        auto contains = [&dumped](const std::string &quoted) {
            return dumped.find(quoted.substr(1, quoted.size() - 2)) != std::string::npos;
        };
        if (arg.empty() || (!contains(quotedJson) && !contains(quotedText)))
            _fail(line, "not on screen; the screen shows " + _screenTexts());
        else
            done(0);
    } else if (command == "set") {
        std::string error;
        _allowDebuggingWrite(splitWords(arg));
        if (!_set(splitWords(arg), &error))
            _skipOrFail(line, error);
        else
            done(kSimSettle);
    } else if (command == "sim") {
        std::string error;
        std::vector<std::string> words = splitWords(arg);
        if (!words.empty() && words[0] == "set")
            _allowDebuggingWrite(std::vector<std::string>(words.begin() + 1, words.end()));
        if (!_runSim(words, &error))
            _skipOrFail(line, error);
        else
            done(kSimSettle);
    } else if (command == "tour") {
        if (arg.empty())
            _fail(line, "tour needs a directory");
        else
            _tour(line, arg);
    } else if (command == "invariants") {
        _checking = true;
        _invariants.start();
        done(0);
    } else if (command == "quit") {
        _endApplication();
    } else {
        _fail(line,
              "unknown command (dump, a11y, tap, press, back, bezel, wait, shot, expect, set, "
              "sim, tour, invariants, quit)");
    }
}

void Driver::_busyDone() {
    _busy = false;
    _scheduleNext(_checking ? 0 : kSettle * 2);
}

void Driver::_skipOrFail(const Line &line, const std::string &reason) {
    if (!_checking) {
        _fail(line, reason);
        return;
    }
    // Under a stress run's random touches, a touch that finds nothing is nothing.
    _busy = false;
    _scheduleNext(0);
}

void Driver::_allowDebuggingWrite(const std::vector<std::string> &args) {
    if (args.size() >= 3 && args[0] == "db/setting/debug_mode" &&
        (args[2] == "true" || args[2] == "1"))
        _invariants.allowDebugging();
}

// After a command: what must hold at once, then what settles by itself (counts after a
// transition, a closed popup's deletion), given a second to.
void Driver::_checkInvariants(const Line &line) {
    std::string broken = _invariants.checkNow();
    if (!broken.empty())
        _invariantBroken(line, broken);
    else
        _checkSettled(line, kSettledTries);
}

void Driver::_checkSettled(const Line &line, int triesLeft) {
    std::string broken = _invariants.checkSettled();
    if (broken.empty()) {
        _busy = false;
        _scheduleNext(0);
    } else if (triesLeft == 0) {
        _invariantBroken(line, broken);
    } else {
        _after(0.1, [this, line, triesLeft]() { _checkSettled(line, triesLeft - 1); });
    }
}

void Driver::_invariantBroken(const Line &line, const std::string &what) {
    std::cerr << "quillset-drive: line " << line.number << ": " << line.text
              << ": invariant broken: " << what << "\n";
    _status = 3;
    _endApplication();
}

bool Driver::_tap(const Line &line, const std::string &arg) {
    Evas_Object *list = _reader.topList();
    if (!list) {
        _skipOrFail(line, "no list on screen");
        return false;
    }
    Elm_Object_Item *target = nullptr;
    if (!arg.empty() && arg[0] == '#') {
        char *end = nullptr;
        long index = strtol(arg.c_str() + 1, &end, 10);
        if (arg.size() == 1 || *end || index < 0) {
            _fail(line, "tap #N needs a row index");
            return false;
        }
        target = elm_genlist_nth_item_get(list, static_cast<unsigned int>(index));
    } else if (!arg.empty() && arg[0] == '@') {
        // The Kth of the rows on screen now, counted round: where a finger lands at random.
        char *end = nullptr;
        long k = strtol(arg.c_str() + 1, &end, 10);
        if (arg.size() == 1 || *end || k < 0) {
            _fail(line, "tap @K needs a number");
            return false;
        }
        std::vector<Elm_Object_Item *> shown;
        for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
             item = elm_genlist_item_next_get(item))
            if (_onScreen(item, nullptr, nullptr))
                shown.push_back(item);
        if (!shown.empty())
            target = shown[static_cast<size_t>(k) % shown.size()];
    } else {
        for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item && !target;
             item = elm_genlist_item_next_get(item)) {
            nlohmann::json texts = ScreenReader::rowTexts(item);
            if (texts.contains("elm.text") && _matches(texts["elm.text"], arg))
                target = item;
        }
    }
    if (!target) {
        _skipOrFail(line,
                    "no such row on screen; its rows, in " + _language() + ": " + _rowLabels(list));
        return false;
    }
    if (_checking) {
        // A person taps what is on screen, at once; a row off screen is not there to tap.
        if (!_touchRow(target))
            _skipOrFail(line, "the row is not on screen");
        else
            _busyDone();
        return true;
    }
    // Bring the row into view first, then touch its centre once it has been drawn there.
    elm_genlist_item_show(target, ELM_GENLIST_ITEM_SCROLLTO_IN);
    _after(kSettle,
           [this, line, target, list]() { _touchWhenShown(line, list, target, kSettledTries); });
    return true;
}

void Driver::_touchWhenShown(const Line &line, Evas_Object *list, Elm_Object_Item *target,
                             int triesLeft) {
    bool found = false;
    for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
         item = elm_genlist_item_next_get(item))
        found = found || item == target;
    if (!found) {
        _skipOrFail(line, "the row went away before it could be touched");
    } else if (_touchRow(target)) {
        _busy = false;
        _scheduleNext(kSettle * 2);
    } else if (triesLeft == 0) {
        _skipOrFail(line, "the row is not on screen");
    } else {
        // A busy machine draws the scrolled list late.
        _after(0.1, [this, line, list, target, triesLeft]() {
            _touchWhenShown(line, list, target, triesLeft - 1);
        });
    }
}

bool Driver::_press(const Line &line, const std::string &arg) {
    auto buttons = _reader.popupButtons();
    if (buttons.empty()) {
        _skipOrFail(line, "no popup button on screen");
        return false;
    }
    Evas_Object *target = nullptr;
    if (!arg.empty() && arg[0] == '#') {
        char *end = nullptr;
        long index = strtol(arg.c_str() + 1, &end, 10);
        if (arg.size() > 1 && !*end && index >= 0 && index < static_cast<long>(buttons.size()))
            target = buttons[index].first;
    } else {
        for (auto &button : buttons)
            if (!target && _matches(button.second, arg))
                target = button.first;
    }
    if (!target) {
        std::string names;
        for (auto &button : buttons)
            names += (names.empty() ? "" : ", ") + button.second;
        _skipOrFail(line, "no such popup button (there are: " + names + ")");
        return false;
    }
    // Only the debugging popup's OK may turn debugging on.
    auto *debugging = dynamic_cast<StInfoUSBDebuggingPopupController *>(_reader.topPopup());
    if (debugging && debugging->getButtons().size() == 2 && debugging->getButtons()[1] == target)
        _invariants.allowDebugging();
    // A stress run presses what shows, without turning the bezel to it.
    _pressWhenVisible(line, target, _checking ? 0 : 20);
    return true;
}

bool Driver::_visibleAt(Evas_Object *target, int *cx, int *cy) {
    int x, y, w, h;
    evas_object_geometry_get(target, &x, &y, &w, &h);
    *cx = x + w / 2;
    *cy = y + h / 2;
    // What a finger at the centre would touch: the top-most object there that takes touches
    // must be the button or a part of it.
    Eina_List *hits = evas_tree_objects_at_xy_get(evas_object_evas_get(target), nullptr, *cx, *cy);
    Evas_Object *top = nullptr;
    Eina_List *l;
    void *data;
    EINA_LIST_FOREACH(hits, l, data) {
        auto *obj = static_cast<Evas_Object *>(data);
        if (!evas_object_pass_events_get(obj) && !evas_object_repeat_events_get(obj)) {
            top = obj;
            break;
        }
    }
    eina_list_free(hits);
    for (; top; top = evas_object_smart_parent_get(top))
        if (top == target)
            return true;
    return false;
}

void Driver::_pressWhenVisible(const Line &line, Evas_Object *target, int turnsLeft) {
    int x, y;
    if (_visibleAt(target, &x, &y)) {
        _feedClick(x, y);
        _busyDone();
        return;
    }
    if (turnsLeft == 0) {
        _skipOrFail(line, "the button cannot be brought into view");
        return;
    }
    // A person turns the bezel until the button shows.
    _feedKey("Next");
    _after(0.35, [this, line, target, turnsLeft]() {
        for (auto &button : _reader.popupButtons()) {
            if (button.first == target) {
                _pressWhenVisible(line, target, turnsLeft - 1);
                return;
            }
        }
        _skipOrFail(line, "the button went away");
    });
}

void Driver::_feedKey(const char *key) {
    Evas_Object *win = _reader.window();
    if (!win)
        return;
    Evas *evas = evas_object_evas_get(win);
    unsigned int ts = timestamp();
    evas_event_feed_key_down(evas, key, key, nullptr, nullptr, ts, nullptr);
    evas_event_feed_key_up(evas, key, key, nullptr, nullptr, ts + 10, nullptr);
}

void Driver::_feedClick(int x, int y) {
    Evas_Object *win = _reader.window();
    if (!win)
        return;
    Evas *evas = evas_object_evas_get(win);
    unsigned int ts = timestamp();
    evas_event_feed_mouse_move(evas, x, y, ts, nullptr);
    evas_event_feed_mouse_down(evas, 1, EVAS_BUTTON_NONE, ts + 1, nullptr);
    evas_event_feed_mouse_up(evas, 1, EVAS_BUTTON_NONE, ts + 60, nullptr);
}

namespace {

// Why a picture cannot be written to path, or "" when it can: checked before anything is
// drawn, so that a wrong path costs one line.
std::string unwritable(const std::string &path) {
    const std::string png = ".png";
    if (path.size() <= png.size() || path.compare(path.size() - png.size(), png.size(), png) != 0)
        return "a picture is a PNG file: its name ends in .png";
    size_t slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
    struct stat st;
    if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
        return "cannot write " + path + ": there is no directory " + dir;
    if (access(dir.c_str(), W_OK) != 0)
        return "cannot write " + path + ": " + strerror(errno);
    if (stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode))
        return "cannot write " + path + ": not a file";
    if (stat(path.c_str(), &st) == 0 && access(path.c_str(), W_OK) != 0)
        return "cannot write " + path + ": " + strerror(errno);
    return "";
}

// The pixels a real window shows, read back from the X server as ARGB; empty when the window
// is not an X window.
std::vector<unsigned int> windowPixels(Evas_Object *win, int w, int h) {
    std::vector<unsigned int> argb;
    Ecore_X_Window xwin = elm_win_xwindow_get(win);
    Ecore_X_Window_Attributes att;
    if (!xwin || !ecore_x_window_attributes_get(xwin, &att))
        return argb;
    Ecore_X_Image *image = ecore_x_image_new(w, h, att.visual, att.depth);
    if (!image)
        return argb;
    int bpl = 0, rows = 0, bpp = 0;
    void *src = nullptr;
    if (ecore_x_image_get(image, xwin, 0, 0, 0, 0, w, h) &&
        (src = ecore_x_image_data_get(image, &bpl, &rows, &bpp)) && rows >= h) {
        argb.resize(static_cast<size_t>(w) * h);
        if (ecore_x_image_is_argb32_get(image)) {
            for (int y = 0; y < h; ++y)
                memcpy(&argb[static_cast<size_t>(y) * w], static_cast<char *>(src) + y * bpl,
                       static_cast<size_t>(w) * 4);
        } else {
            ecore_x_image_to_argb_convert(src, bpp, bpl, att.colormap, att.visual, 0, 0, w, h,
                                          argb.data(), w * 4, 0, 0);
        }
        // The screen is opaque whatever the window's depth leaves in the alpha bits.
        for (unsigned int &pixel : argb)
            pixel |= 0xff000000u;
    }
    ecore_x_image_free(image);
    return argb;
}

}  // namespace

bool Driver::_shot(const std::string &path, std::string *error) {
    Evas_Object *win = _reader.window();
    if (!win) {
        *error = "no window";
        return false;
    }
    *error = unwritable(path);
    if (!error->empty())
        return false;
    Ecore_Evas *ee = ecore_evas_ecore_evas_get(evas_object_evas_get(win));
    int w = 0, h = 0;
    ecore_evas_geometry_get(ee, nullptr, nullptr, &w, &h);
    const void *pixels = ecore_evas_buffer_pixels_get(ee);
    std::vector<unsigned int> shown;
    if (!pixels) {
        // A real window: what the display shows of it.
        shown = windowPixels(win, w, h);
        if (shown.empty()) {
            *error = "cannot read the window's pixels (a picture of a window needs X11)";
            return false;
        }
        pixels = shown.data();
    }
    Ecore_Evas *canvas = ecore_evas_buffer_new(w, h);
    Evas_Object *image = evas_object_image_filled_add(ecore_evas_get(canvas));
    evas_object_image_size_set(image, w, h);
    evas_object_image_data_copy_set(image, const_cast<void *>(pixels));
    bool saved = evas_object_image_save(image, path.c_str(), nullptr, nullptr);
    ecore_evas_free(canvas);
    if (!saved) {
        *error = "cannot write " + path;
        return false;
    }
    return true;
}

bool Driver::_runSim(const std::vector<std::string> &args, std::string *error) {
    if (args.empty()) {
        *error = "sim needs arguments";
        return false;
    }
    std::vector<char *> argv;
    argv.push_back(const_cast<char *>(_simPath.c_str()));
    for (const std::string &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);
    fflush(stdout);
    pid_t pid = fork();
    if (pid < 0) {
        *error = std::string("fork: ") + strerror(errno);
        return false;
    }
    if (pid == 0) {
        // Its output is for the person reading stderr, not for dump readers.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        execv(argv[0], argv.data());
        fprintf(stderr, "quillset-drive: cannot run %s: %s\n", argv[0], strerror(errno));
        _exit(127);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        *error = "quillset-sim failed (status " + std::to_string(WEXITSTATUS(status)) + ")";
        return false;
    }
    return true;
}

bool Driver::_set(const std::vector<std::string> &args, std::string *error) {
    if (args.size() < 2 || (args.size() < 3 && args[1] != "string")) {
        *error = "set needs KEY TYPE VALUE";
        return false;
    }
    const std::string &key = args[0];
    const std::string &type = args[1];
    std::string value;
    for (size_t i = 2; i < args.size(); ++i)
        value += (i > 2 ? " " : "") + args[i];
    char *end = nullptr;
    int ret;
    if (type == "bool") {
        if (value != "true" && value != "false" && value != "1" && value != "0") {
            *error = "bool values are true or false";
            return false;
        }
        ret = vconf_set_bool(key.c_str(), value == "true" || value == "1");
    } else if (type == "int") {
        long v = strtol(value.c_str(), &end, 10);
        if (value.empty() || *end) {
            *error = "not an integer: " + value;
            return false;
        }
        ret = vconf_set_int(key.c_str(), static_cast<int>(v));
    } else if (type == "double") {
        double v = strtod(value.c_str(), &end);
        if (value.empty() || *end) {
            *error = "not a number: " + value;
            return false;
        }
        ret = vconf_set_dbl(key.c_str(), v);
    } else if (type == "string") {
        ret = vconf_set_str(key.c_str(), value.c_str());
    } else {
        *error = "types are bool, int, double and string";
        return false;
    }
    if (ret != VCONF_OK) {
        *error = "the settings store refused the write";
        return false;
    }
    return true;
}

void Driver::finish() {
    _invariants.stop();
    if (_timer) {
        ecore_timer_del(_timer);
        _timer = nullptr;
    }
    for (auto *entry : _afters) {
        if (entry->first)
            ecore_timer_del(entry->first);
        delete entry;
    }
    _afters.clear();
    if (_stdinHandler) {
        ecore_main_fd_handler_del(_stdinHandler);
        _stdinHandler = nullptr;
    }
    // A command that failed has said why the script stopped.
    bool reported = _finished && _status != 0;
    if (!reported && (!_finished || !_pending.empty())) {
        std::string notRun;
        for (const Line &line : _pending) {
            std::string text = trim(line.text);
            if (!text.empty() && text[0] != '#')
                notRun += "  line " + std::to_string(line.number) + ": " + text + "\n";
        }
        if (!notRun.empty()) {
            std::cerr << "quillset-drive: the application ended; not run:\n" << notRun;
            if (_status == 0)
                _status = 1;
        } else
            std::cerr << "quillset-drive: the application ended\n";
    }
}

namespace {
const int kTourMaxDepth = 3;
const int kTourMaxScreens = 200;
const int kTourMaxPages = 20;
// A launch freezes the list for a second; the tour waits it out.
const double kLaunchBlock = 1.1;
}  // namespace

void Driver::_tour(const Line &line, const std::string &dir) {
    if (system(("mkdir -p '" + dir + "'").c_str()) != 0) {
        _fail(line, "cannot create " + dir);
        return;
    }
    _tourDir = dir;
    _tourLine = line;
    _tourScreens = 0;
    _tourSteps.clear();
    _tourExplore("main", 0);
    _tourStep();
}

void Driver::_tourStep() {
    if (_finished)
        return;
    if (_tourSteps.empty()) {
        std::cerr << "quillset-drive: tour: " << _tourScreens << " screens in " << _tourDir << "\n";
        _busy = false;
        _scheduleNext(0);
        return;
    }
    std::function<double()> step = std::move(_tourSteps.front());
    _tourSteps.pop_front();
    double delay = step();
    _after(delay, [this]() { _tourStep(); });
}

void Driver::_tourCapture(const std::string &name) {
    ++_tourScreens;
    nlohmann::json screen = _reader.dump(_tourSwitches);
    screen["text_boxes"] = _textBoxes();
    std::string text = screen.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    std::cout << text << std::endl;
    std::ofstream(_tourDir + "/" + name + ".json") << text << "\n";
    std::string error;
    if (!_shot(_tourDir + "/" + name + ".png", &error))
        std::cerr << "quillset-drive: tour: " << name << ": " << error << "\n";
    std::cerr << "quillset-drive: tour: " << name << "\n";
}

void Driver::_tourExplore(const std::string &name, int depth) {
    // Steps for one screen: capture it, then visit what each of its rows opens. Steps go to
    // the front of the queue so that a page is finished before its parent goes on.
    std::deque<std::function<double()>> steps;
    if (depth > 0) {
        // A page asks for its asynchronous values as it opens; wait until the slowest answer
        // has arrived so that the picture shows what a person would see.
        steps.push_back(
            [this]() { return _waitForReplies(platform::longestLatencySeconds() + 1.0); });
    }
    steps.push_back([this]() {
        return _revealSwitches(
            [this](const ScreenReader::SwitchStates &states) { _tourSwitches = states; });
    });
    steps.push_back([this, name]() {
        _tourCapture(name);
        _tourSteps.push_front([this, name]() { return _tourPage(name, 2); });
        return 0.0;
    });
    Evas_Object *list = _reader.topList();
    int count = list ? static_cast<int>(elm_genlist_items_count(list)) : 0;
    for (int index = 0; index < count && depth < kTourMaxDepth; ++index) {
        steps.push_back([this, name, depth, index]() -> double {
            Evas_Object *current = _reader.topList();
            Elm_Object_Item *item =
                current ? elm_genlist_nth_item_get(current, static_cast<unsigned int>(index))
                        : nullptr;
            Elm_Object_Select_Mode mode =
                item ? elm_genlist_item_select_mode_get(item) : ELM_OBJECT_SELECT_MODE_NONE;
            if (!item || mode == ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY ||
                mode == ELM_OBJECT_SELECT_MODE_NONE || elm_object_item_disabled_get(item) ||
                _tourScreens >= kTourMaxScreens)
                return 0.0;
            int depthBefore = _reader.depth();
            elm_genlist_item_show(item, ELM_GENLIST_ITEM_SCROLLTO_IN);
            _tourSteps.push_front([this, name, depth, index, item, depthBefore]() -> double {
                if (!_touchRow(item))
                    return 0.0;
                _tourSteps.push_front([this, name, depth, index, depthBefore]() {
                    return _tourAfterTouch(name + "." + std::to_string(index), depth, depthBefore,
                                           2);
                });
                return kSettle * 2;
            });
            return kSettle;
        });
    }
    for (auto it = steps.rbegin(); it != steps.rend(); ++it)
        _tourSteps.push_front(std::move(*it));
}

double Driver::_tourAfterTouch(const std::string &child, int depth, int depthBefore,
                               int looksLeft) {
    if (_reader.topPopup()) {
        int framesAtSight = _frames;
        _tourSteps.push_front([this, child, framesAtSight]() {
            return _tourCapturePopup(child + ".popup", kPopupDrawn, framesAtSight);
        });
        return 0.0;
    }
    if (_reader.depth() > depthBefore) {
        std::deque<std::function<double()>> before(_tourSteps);
        _tourSteps.clear();
        _tourExplore(child, depth + 1);
        _tourSteps.push_back([this]() {
            _feedKey("Escape");
            return kSettle * 2;
        });
        for (auto &step : before)
            _tourSteps.push_back(std::move(step));
        return 0.0;
    }
    if (looksLeft > 1 && _frames - _framesAtTouch < 3) {
        // What the row opens shows within a few frames; a busy machine draws them later.
        _tourSteps.push_front([this, child, depth, depthBefore, looksLeft]() {
            return _tourAfterTouch(child, depth, depthBefore, looksLeft - 1);
        });
        return kSettle / 2;
    }
    // Something may have been launched: a launch freezes the list for a while, and the next
    // tap must wait until it takes input again.
    _tourSteps.push_front([this]() { return _waitForInput(kLaunchBlock); });
    return 0.0;
}

double Driver::_tourCapturePopup(const std::string &name, double budget, int framesAtSight) {
    // A popup is in the tree before it is on screen; a busy machine draws it frames later.
    if (_frames - framesAtSight < 2 && budget > 0) {
        _tourSteps.push_front([this, name, budget, framesAtSight]() {
            return _tourCapturePopup(name, budget - kSettle / 2, framesAtSight);
        });
        return kSettle / 2;
    }
    _tourSwitches.clear();
    _tourCapture(name);
    _tourSteps.push_front([this]() {
        _feedKey("Escape");
        return kSettle * 2;
    });
    _tourSteps.push_front([this, name]() { return _tourPage(name, 2); });
    return 0.0;
}

Evas_Object *Driver::_tourScroller() const {
    if (app_assist::WPopupController *popup = _reader.topPopup())
        return evas_tree::findByType(popup->getEvasObject(), "elm_scroller");
    if (Evas_Object *list = _reader.topList())
        return list;
    app_assist::WViewController *view = _reader.topView();
    return view ? evas_tree::findByType(view->getEvasObject(), "elm_scroller") : nullptr;
}

namespace {

// Where a point of obj is drawn when one of its smart parents is drawn through a map (rows of
// a round list shrink toward the edges).
void mapPoint(Evas_Object *obj, int *x, int *y) {
    for (Evas_Object *p = evas_object_smart_parent_get(obj); p;
         p = evas_object_smart_parent_get(p)) {
        const Evas_Map *map = evas_object_map_enable_get(p) ? evas_object_map_get(p) : nullptr;
        if (!map)
            continue;
        int px, py, pw, ph;
        evas_object_geometry_get(p, &px, &py, &pw, &ph);
        Evas_Coord ax, ay, bx, by, cx, cy;
        evas_map_point_coord_get(map, 0, &ax, &ay, nullptr);
        evas_map_point_coord_get(map, 1, &bx, &by, nullptr);
        evas_map_point_coord_get(map, 3, &cx, &cy, nullptr);
        double u = pw > 0 ? static_cast<double>(*x - px) / pw : 0;
        double v = ph > 0 ? static_cast<double>(*y - py) / ph : 0;
        *x = static_cast<int>(std::lround(ax + u * (bx - ax) + v * (cx - ax)));
        *y = static_cast<int>(std::lround(ay + u * (by - ay) + v * (cy - ay)));
        return;
    }
}

void collectTextBoxes(Evas_Object *obj, nlohmann::json *boxes, int depth = 0) {
    if (!obj || depth > evas_tree::kMaxDepth || !evas_object_visible_get(obj))
        return;
    if (evas_tree::isType(obj, "textblock")) {
        const char *text = evas_object_textblock_text_markup_get(obj);
        int x, y, w, h;
        evas_object_geometry_get(obj, &x, &y, &w, &h);
        int right = x + w, bottom = y + h;
        mapPoint(obj, &x, &y);
        mapPoint(obj, &right, &bottom);
        w = right - x;
        h = bottom - y;
        // What shows of the block is what its clippers let through.
        for (Evas_Object *clip = evas_object_clip_get(obj); clip;
             clip = evas_object_clip_get(clip)) {
            int cx, cy, cw, ch, a = 255;
            evas_object_color_get(clip, nullptr, nullptr, nullptr, &a);
            if (!evas_object_visible_get(clip) || a == 0)
                return;
            evas_object_geometry_get(clip, &cx, &cy, &cw, &ch);
            int right = std::min(x + w, cx + cw), bottom = std::min(y + h, cy + ch);
            x = std::max(x, cx);
            y = std::max(y, cy);
            w = right - x;
            h = bottom - y;
        }
        if (text && *text && w > 0 && h > 0)
            boxes->push_back({x, y, w, h});
        return;
    }
    if (!efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return;
    Eina_List *children = evas_object_smart_members_get(obj);
    Eina_List *l;
    void *child;
    EINA_LIST_FOREACH(children, l, child)
    collectTextBoxes(static_cast<Evas_Object *>(child), boxes, depth + 1);
    eina_list_free(children);
}

}  // namespace

nlohmann::json Driver::_textBoxes() const {
    // Only the top screen: a popup covers the page under it.
    nlohmann::json boxes = nlohmann::json::array();
    if (app_assist::WPopupController *popup = _reader.topPopup()) {
        collectTextBoxes(popup->getEvasObject(), &boxes);
        return boxes;
    }
    if (app_assist::WViewController *view = _reader.topView())
        collectTextBoxes(view->getEvasObject(), &boxes);
    if (Evas_Object *toast = _reader.toast())
        collectTextBoxes(toast, &boxes);
    return boxes;
}

double Driver::_tourPage(const std::string &name, int page) {
    // Overlapping pages, so that every line is seen whole in the middle of some picture.
    Evas_Object *scroller = _tourScroller();
    if (!scroller)
        return 0.0;
    Evas_Coord x = 0, y = 0, w = 0, h = 0, cw = 0, ch = 0;
    elm_interface_scrollable_content_region_get(scroller, &x, &y, &w, &h);
    elm_interface_scrollable_content_size_get(scroller, &cw, &ch);
    if (h <= 0 || y + h >= ch || page > kTourMaxPages) {
        elm_interface_scrollable_content_region_show(scroller, x, 0, w, h);
        return page > 2 ? kSettle : 0.0;
    }
    elm_interface_scrollable_content_region_show(scroller, x, std::min(y + h * 11 / 20, ch - h), w,
                                                 h);
    _tourSteps.push_front([this, name, page]() {
        _tourCapture(name + "@" + std::to_string(page));
        _tourSteps.push_front([this, name, page]() { return _tourPage(name, page + 1); });
        return 0.0;
    });
    return kSettle * 2;
}

double Driver::_waitForReplies(double budget) {
    if (platform::repliesAwaited() == 0 || budget <= 0)
        return kSettle;
    const double poll = 0.05;
    _tourSteps.push_front([this, budget, poll]() { return _waitForReplies(budget - poll); });
    return poll;
}

double Driver::_waitForInput(double budget) {
    Evas_Object *list = _reader.topList();
    if (!list || !evas_object_freeze_events_get(list) || budget <= 0)
        return 0.0;
    const double poll = 0.05;
    _tourSteps.push_front([this, budget, poll]() { return _waitForInput(budget - poll); });
    return poll;
}

bool Driver::_onScreen(Elm_Object_Item *item, int *cx, int *cy) {
    Evas_Object *track = elm_object_item_track(item);
    int x = 0, y = 0, w = 0, h = 0;
    if (track)
        evas_object_geometry_get(track, &x, &y, &w, &h);
    elm_object_item_untrack(item);
    if (w <= 0 || h <= 0)
        return false;
    // A row drawn outside the round screen is not there for a finger.
    int win = 0;
    if (Evas_Object *window = _reader.window())
        evas_object_geometry_get(window, nullptr, nullptr, &win, nullptr);
    double dx = x + w / 2 - win / 2.0, dy = y + h / 2 - win / 2.0;
    if (win > 0 && dx * dx + dy * dy > win * win / 4.0)
        return false;
    if (cx)
        *cx = x + w / 2;
    if (cy)
        *cy = y + h / 2;
    return true;
}

bool Driver::_touchRow(Elm_Object_Item *item) {
    int x = 0, y = 0;
    if (!_onScreen(item, &x, &y))
        return false;
    _countFrames();
    _framesAtTouch = _frames;
    _feedClick(x, y);
    return true;
}

void Driver::_countFrames() {
    Evas_Object *win = _reader.window();
    if (_framesCounted || !win)
        return;
    _framesCounted = true;
    Evas *evas = evas_object_evas_get(win);
    evas_event_callback_add(evas, EVAS_CALLBACK_RENDER_PRE, _renderPreCb, this);
    evas_event_callback_add(evas, EVAS_CALLBACK_RENDER_POST, _renderPostCb, this);
}

void Driver::_renderPreCb(void *data, Evas *, void *) {
    static_cast<Driver *>(data)->_rendering = true;
}

void Driver::_renderPostCb(void *data, Evas *, void *) {
    auto *self = static_cast<Driver *>(data);
    ++self->_frames;
    self->_rendering = false;
    if (std::exchange(self->_exitWhenDrawn, false))
        ui_app_exit();
}

double Driver::_revealSwitches(std::function<void(const ScreenReader::SwitchStates &)> done) {
    Evas_Object *list = _reader.topList();
    std::vector<Elm_Object_Item *> hidden;
    if (list && !_reader.topPopup()) {
        for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
             item = elm_genlist_item_next_get(item))
            if (ScreenReader::hasSwitch(item) && !ScreenReader::checkOf(item))
                hidden.push_back(item);
    }
    if (hidden.empty()) {
        done(ScreenReader::SwitchStates());
        return 0.0;
    }
    const double frame = 0.03;
    int x = 0, y = 0, w = 0, h = 0;
    elm_interface_scrollable_content_region_get(list, &x, &y, &w, &h);
    auto states = std::make_shared<ScreenReader::SwitchStates>();
    // One switch at a time: scrolled in, then read once its check is drawn. A slow frame (a
    // sanitized build, a loaded machine) is waited for, up to a second a switch.
    const int maxWaits = 33;
    using Step = std::function<void(size_t, int)>;
    auto next = std::make_shared<Step>();
    std::weak_ptr<Step> weakNext = next;
    *next = [this, hidden, states, weakNext, list, x, y, w, h, done, frame](size_t i, int waited) {
        if (i == hidden.size()) {
            elm_interface_scrollable_content_region_show(list, x, y, w, h);
            _after(frame, [states, done]() { done(*states); });
            return;
        }
        Elm_Object_Item *item = hidden[i];
        if (waited == 0)
            elm_genlist_item_show(item, ELM_GENLIST_ITEM_SCROLLTO_IN);
        std::shared_ptr<Step> step = weakNext.lock();
        _after(frame, [step, item, states, i, waited, maxWaits]() {
            if (Evas_Object *check = ScreenReader::checkOf(item)) {
                (*states)[item] = elm_check_state_get(check);
                (*step)(i + 1, 0);
            } else if (waited < maxWaits) {
                (*step)(i, waited + 1);
            } else {
                (*step)(i + 1, 0);
            }
        });
    };
    (*next)(0, 0);
    return frame * (hidden.size() + 2);
}
