#ifndef _ST_BENCH_PROBE_H_
#define _ST_BENCH_PROBE_H_

#include <Elementary.h>

#include <cstdint>
#include <string>
#include <vector>

// Watches the frames of a program's window from inside its process and reports, on a pipe,
// when the screens the benchmark waits for have been drawn. It takes commands (tap a row, go
// back, watch a switch, quit) on a second pipe. Loaded only into processes the benchmark starts.
//
// Events, one a line, times in CLOCK_MONOTONIC nanoseconds:
//   ready T RSS          first frame with the first list's rows realised; peak RSS so far (KB)
//   page TAP FRAME       first frame of the page a tap pushed, its values all present; TAP is
//                        when the finger lifted, 80 ms after it came down
//   home                 back on the first list, settled
//   shown                the row asked for is in view, settled
//   check STATE FRAME    a frame in which the watched switch shows a new state
//   frame TIME INTERVAL  while scrolling: how long a frame took to draw, and since the last one
//   scrolled             the page has been turned to its end and back, and has settled
//   error TEXT           a command could not be carried out
class StBenchProbe {
public:
    static StBenchProbe &instance();

    // The window the program opened: its canvas is watched from now on.
    void attach(Evas_Object *win);
    // The naviframe that holds the program's pages.
    void attachNaviframe(Evas_Object *naviframe);

private:
    StBenchProbe();

    static void _renderPreCb(void *data, Evas *evas, void *eventInfo);
    static void _renderPostCb(void *data, Evas *evas, void *eventInfo);
    static Eina_Bool _detentCb(void *data);
    static Eina_Bool _commandCb(void *data, Ecore_Fd_Handler *handler);
    static void _naviframeDelCb(void *data, Evas *evas, Evas_Object *obj, void *eventInfo);

    void _onFrame();
    void _onCommand(const std::string &line);
    void _send(const std::string &line);

    Evas_Object *_naviframe() const;
    Evas_Object *_topList() const;
    Elm_Object_Item *_topItem() const;
    Elm_Object_Item *_findRow(Evas_Object *list, const std::string &label) const;
    bool _pageComplete(Evas_Object *list) const;
    int _watchedState() const;

    void _tap(const std::string &label);
    void _scroll();
    bool _turn(bool forward);
    void _after(double seconds, void (*fn)(StBenchProbe *));

    Evas_Object *_win;
    Evas_Object *_nf;
    int _out;
    int _in;
    std::string _inBuffer;
    std::string _domain;
    std::vector<std::string> _pending;
    bool _exitAtReady;

    bool _ready;
    Elm_Object_Item *_home;
    // A tap waits for the page it pushes.
    bool _waitingPage;
    Elm_Object_Item *_pageFrom;
    int64_t _tapTime;
    bool _waitingHome;
    Elm_Object_Item *_tapTarget;
    std::string _watchLabel;
    int _watchState;
    // Scrolling: the page turned a detent at a time, to its end and back.
    Evas_Object *_scrolled;
    bool _forward;
    int _scrollTarget;
    int64_t _framePre;
    int64_t _lastFrame;
};

#endif
