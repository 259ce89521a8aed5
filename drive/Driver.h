#ifndef QUILLSET_DRIVE_DRIVER_H
#define QUILLSET_DRIVE_DRIVER_H

#include <Elementary.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "Invariants.h"
#include "ScreenReader.h"

// Runs script commands against the running application, one at a time on its main loop,
// letting the screen settle between commands.
class Driver {
public:
    struct Line {
        int number;
        std::string text;
    };

    Driver(std::string simPath, bool interactive);

    // Starts reading commands from a file (or stdin when path is empty) once the first frame
    // has been drawn.
    bool start(const std::string &scriptPath);
    // Called when the application's main loop has ended.
    void finish();
    int exitStatus() const { return _status; }

private:
    void _readStdin();
    static Eina_Bool _stdinCb(void *data, Ecore_Fd_Handler *handler);
    void _scheduleNext(double delay);
    static Eina_Bool _nextCb(void *data);
    void _runNext();
    void _run(const Line &line);
    void _fail(const Line &line, const std::string &reason);
    // Ends the application once the frame being drawn is done.
    void _endApplication();
    void _after(double delay, std::function<void()> then);
    static Eina_Bool _afterCb(void *data);

    // The tour: every screen reachable by tapping rows, each captured as a dump and a picture.
    void _tour(const Line &line, const std::string &dir);
    void _tourCapture(const std::string &name);
    void _tourExplore(const std::string &name, int depth);
    void _tourStep();
    bool _touchRow(Elm_Object_Item *item);
    // Whether a row is drawn inside the round screen, and its centre.
    bool _onScreen(Elm_Object_Item *item, int *cx, int *cy);
    // Frames drawn, so that a step can tell a slow screen from one that will not change, and
    // whether one is being drawn.
    void _countFrames();
    static void _renderPreCb(void *data, Evas *evas, void *info);
    static void _renderPostCb(void *data, Evas *evas, void *info);
    // What a touched row opened: a popup is captured and closed, a page explored.
    double _tourAfterTouch(const std::string &child, int depth, int depthBefore, int looksLeft);
    double _tourCapturePopup(const std::string &name, double budget, int framesAtSight);
    // What the tour pages through: the popup's scroller, the page's list or scroller.
    Evas_Object *_tourScroller() const;
    // Scrolls on by about half a screen and captures NAME@PAGE, until the end; then back to
    // the top.
    double _tourPage(const std::string &name, int page);
    // The screen rectangles where texts are drawn: each text block within its clippers.
    nlohmann::json _textBoxes() const;
    // A tour step that polls until the watch has sent every asynchronous answer.
    double _waitForReplies(double budget);
    // A tour step that polls until the top list takes input again (at most budget seconds).
    double _waitForInput(double budget);

    // Brings each switch row that is off screen into view long enough to read its switch,
    // puts the list back where it was, then calls done. Returns the time that takes.
    double _revealSwitches(std::function<void(const ScreenReader::SwitchStates &)> done);

    // Stress runs: commands that find nothing to act on are skipped, and the invariants are
    // checked after each.
    void _busyDone();
    void _skipOrFail(const Line &line, const std::string &reason);
    void _allowDebuggingWrite(const std::vector<std::string> &args);
    void _checkInvariants(const Line &line);
    void _checkSettled(const Line &line, int triesLeft);
    void _invariantBroken(const Line &line, const std::string &what);

    bool _tap(const Line &line, const std::string &arg);
    // Touches a row brought into view once it is drawn there, trying for about a second.
    void _touchWhenShown(const Line &line, Evas_Object *list, Elm_Object_Item *target,
                         int triesLeft);
    bool _press(const Line &line, const std::string &arg);
    bool _visibleAt(Evas_Object *target, int *cx, int *cy);
    void _pressWhenVisible(const Line &line, Evas_Object *target, int turnsLeft);
    void _feedKey(const char *key);
    void _feedClick(int x, int y);
    bool _shot(const std::string &path, std::string *error);
    bool _runSim(const std::vector<std::string> &args, std::string *error);
    bool _set(const std::vector<std::string> &args, std::string *error);
    std::string _translate(const std::string &text) const;
    // For failure messages: what the screen shows and the rows of a list, as a person reads
    // them, and the watch's language.
    std::string _screenTexts() const;
    static std::string _rowLabels(Evas_Object *list);
    static std::string _language();
    bool _matches(const std::string &shown, const std::string &wanted) const;

    std::string _simPath;
    bool _interactive;
    std::deque<Line> _pending;
    bool _inputDone;
    bool _busy;
    bool _finished;
    int _status;
    int _lineCount;
    std::string _partial;
    Ecore_Fd_Handler *_stdinHandler;
    Ecore_Timer *_timer;
    std::vector<std::pair<Ecore_Timer *, std::function<void()>> *> _afters;
    ScreenReader _reader;
    std::deque<std::function<double()>> _tourSteps;
    std::string _tourDir;
    int _tourScreens = 0;
    bool _framesCounted = false;
    long _frames = 0;
    bool _rendering = false;      // a frame is being drawn
    bool _exitWhenDrawn = false;  // the application ends once it is
    long _framesAtTouch = 0;
    Line _tourLine;
    ScreenReader::SwitchStates _tourSwitches;
    Invariants _invariants;
    bool _checking = false;
    bool _checkDue = false;
    Line _lastLine;
};

#endif
