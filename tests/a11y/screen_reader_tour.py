"""Reads every screen of the tour the way a desktop screen reader does, over AT-SPI, in
English and German: run inside `quillset-sim run --a11y` under an X server.

It starts quillset-info, moves through the screens as a reader's user would (selecting rows,
activating buttons, the bezel as the mouse wheel through xdotool) and checks what the reader
gets: no raw string id, a name on every control, one stop per switch row that speaks its
state, the popups' texts and reading order, the licence page's title then body."""

import os
import re
import subprocess
import sys
import time

import pyatspi

RAW_ID = re.compile(r"\b[A-Z]*DS_[A-Z0-9_]{3,}")
CONTROLS = {"push button", "check box", "toggle button", "link", "menu item"}
LANGUAGES = {
    "en": {"about": "About Kesta", "debugging": "Debugging", "consent": "Report diagnostic",
           "device": "Device information", "software": "Software information",
           "battery": "Battery information", "licences": "Open source licences",
           "switch": "Switch, {}", "on": "On", "off": "Off", "see_all": "See all",
           "cancel": "Cancel", "ok": "OK", "sw_version": "Software version",
           "toast": "developer mode turned on"},
    "de": {"about": "Über Kesta", "debugging": "Debug-Modus", "consent": "Diagnose",
           "device": "Geräte", "software": "Software-",
           "battery": "Akku-", "licences": "Open-Source-Lizenzen",
           "switch": "Schalter, {}", "on": "Ein", "off": "Aus", "see_all": "Alle anzeigen",
           "cancel": "Abbrechen", "ok": "OK", "sw_version": "Softwareversion",
           "toast": "Entwicklermodus aktiviert"},
}

failures = []


def check(ok, what):
    if not ok:
        failures.append(what)
        print("FAIL: " + what, flush=True)


def wait_for(find, what, timeout=10.0):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        found = find()
        if found:
            return found
        time.sleep(0.1)
    raise RuntimeError("gave up waiting for " + what)


def app():
    for candidate in pyatspi.Registry.getDesktop(0):
        if candidate is not None and candidate.name == "quillset-info":
            return candidate
    return None


def walk(obj):
    yield obj
    for child in obj:
        if child is not None:
            yield from walk(child)


def showing(obj):
    return obj.getState().contains(pyatspi.STATE_SHOWING)


def bezel(clicks):
    """Turns the bezel with the mouse wheel: positive down the list, negative up."""
    button = "5" if clicks > 0 else "4"
    subprocess.run(["xdotool", "mousemove", "180", "180", "click", "--repeat", str(abs(clicks)),
                    "--delay", "30", button], check=True)
    time.sleep(0.3)


def back():
    """The reader's back gesture: the naviframe's own pop action."""
    frames = [o for o in walk(app()) if o.getRoleName() == "page tab list"]
    actions = frames[0].queryAction()
    for index in range(actions.nActions):
        if actions.getName(index) == "item_pop":
            actions.doAction(index)
    time.sleep(0.3)


def judge(where, root):
    """Every object the reader can reach: no raw id, a name on each control."""
    for obj in walk(root):
        for text in (obj.name, obj.description):
            check(not RAW_ID.search(text or ""), f"{where}: raw string id in {text!r}")
        if obj.getRoleName() in CONTROLS and showing(obj):
            check(bool(obj.name), f"{where}: an unnamed {obj.getRoleName()}")


def page():
    pages = wait_for(lambda: [o for o in walk(app()) if o.getRoleName() == "page tab"], "a page")
    return pages[-1]


def list_rows(where):
    """The top page's rows as the reader gets them, the list turned by the bezel so that each
    is on screen once: [(name, description)]."""
    lists = [o for o in walk(page()) if o.getRoleName() == "list"]
    if not lists:
        return []
    rows = lists[0]
    bezel(-40)
    # The last row is the empty space under the list.
    selectable = [i for i in range(rows.childCount - 1)
                  if rows[i].getState().contains(pyatspi.STATE_SELECTABLE)]
    seen = {}
    for _ in range(30):
        for index in range(rows.childCount):
            row = rows[index]
            if row.getRoleName() == "list item" and row.name:
                seen[index] = (row.name, row.description)
        judge(where, rows)
        if rows.childCount - 1 in seen or not showing(rows[rows.childCount - 1]):
            bezel(1)
        if all(i in seen for i in selectable):
            break
    for index in selectable:
            check(index in seen, f"{where}: row {index} has no name")
    bezel(-40)
    return [seen[i] for i in sorted(seen)]


def open_row(starting, times=1):
    rows = [o for o in walk(page()) if o.getRoleName() == "list"][0]
    bezel(-40)
    for _ in range(30):
        for index in range(rows.childCount):
            if rows[index].name.startswith(starting):
                for _ in range(times):
                    rows.querySelection().selectChild(index)
                return
        bezel(1)
    raise RuntimeError("no row " + starting)


def dialog():
    return wait_for(lambda: [o for o in walk(app()) if o.getRoleName() == "dialog"], "a popup")[0]


def press(popup, name):
    button = [o for o in walk(popup) if o.getRoleName() == "push button" and o.name == name][0]
    button.queryAction().doAction(0)
    wait_for(lambda: not [o for o in walk(app()) if o.getRoleName() == "dialog"], "popup gone")


def flows_to(obj):
    for relation in obj.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_FLOWS_TO:
            return relation.getTarget(0)
    return None


def sim(*args):
    subprocess.run(["quillset-sim", *args], check=True)


def tour(lang):
    t = LANGUAGES[lang]
    check(page().name == t["about"], f"{lang}: the About list is named {page().name!r}")
    rows = list_rows(lang + " About list")
    print(f"{lang} About list: " + " | ".join(
        name + (f" ({desc})" if desc else "") for name, desc in rows), flush=True)
    switch = t["switch"]
    spoken = {name: desc for name, desc in rows}
    check(spoken.get(t["debugging"]) == switch.format(t["off"]),
          f"{lang}: debugging row speaks {spoken.get(t['debugging'])!r}")
    check(not [o for o in walk(page()) if o.getRoleName() == "check box"],
          f"{lang}: a switch is a stop of its own")

    # The switch row follows the setting.
    sim("set", "db/setting/debug_mode", "bool", "true")
    time.sleep(0.5)
    rows = dict(list_rows(lang + " About list, debugging on"))
    check(rows.get(t["debugging"]) == switch.format(t["on"]),
          f"{lang}: debugging row after the setting speaks {rows.get(t['debugging'])!r}")
    sim("set", "db/setting/debug_mode", "bool", "false")
    time.sleep(0.5)

    # The debugging popup: its title, its text, Cancel and OK.
    open_row(t["debugging"])
    popup = dialog()
    judge(lang + " debugging popup", popup)
    check(popup.name == t["debugging"], f"{lang}: debugging popup announced as {popup.name!r}")
    labels = [o.name for o in walk(popup) if o.getRoleName() == "label"]
    check(len(labels) == 1 and len(labels[0]) > 40, f"{lang}: debugging popup text {labels!r}")
    buttons = [o.name for o in walk(popup) if o.getRoleName() == "push button"]
    check(buttons == [t["cancel"], t["ok"]], f"{lang}: debugging popup buttons {buttons!r}")
    check(not [o for o in walk(popup) if o.getRoleName() == "image"],
          f"{lang}: popup icons are stops of their own")
    press(popup, t["cancel"])

    # The consent popup: read as its text, then See all, Cancel, OK, and OK back to the text.
    open_row(t["consent"])
    popup = dialog()
    judge(lang + " consent popup", popup)
    check(not popup.name and not popup.description, f"{lang}: consent popup announced as "
          f"{popup.name!r}, {popup.description[:40]!r}: the text would be heard twice")
    start = [o for o in walk(popup) if len(o.description) > 400]
    check(len(start) == 1, f"{lang}: the consent text is {len(start)} stops")
    text = start[0].description if start else ""
    order = []
    stop = start[0] if start else None
    while stop is not None and len(order) < 5:
        order.append(stop.name or stop.description)
        stop = flows_to(stop)
    check(order == [text, t["see_all"], t["cancel"]], f"{lang}: consent order {order!r}")
    ok = [o for o in walk(popup) if o.name == t["ok"]]
    check(ok and flows_to(ok[0]) is not None and flows_to(ok[0]).description == text,
          f"{lang}: OK does not lead back to the text")
    press(popup, t["cancel"])

    # The pages, each named by its title.
    for title in (t["device"], t["software"], t["battery"]):
        open_row(title)
        wait_for(lambda: page().name.startswith(title), f"page {title}")
        list_rows(f"{lang} {title}")
        if title == t["software"]:
            # Five taps on the software version: the toast is announced by its text.
            open_row(t["sw_version"], 5)
            toast = wait_for(lambda: [o for o in walk(app()) if o.getRoleName() == "dialog"
                                      and o.name == t["toast"]], "the developer-mode toast")
            check(bool(toast), f"{lang}: the developer-mode toast is not announced")
        back()
        wait_for(lambda: page().name == t["about"], "back on the About list")

    # The licence page: its title, then its body.
    open_row(t["licences"])
    wait_for(lambda: page().name == t["licences"], "the licence page")
    judge(lang + " licences", page())
    title = [o for o in walk(page()) if o.description == t["licences"]]
    check(len(title) == 1, f"{lang}: licence title stops {len(title)}")
    body = flows_to(title[0]) if title else None
    check(body is not None and len(body.description) > 200 and "<" not in body.description,
          f"{lang}: licence body {body.description[:40] if body else None!r}")
    back()
    wait_for(lambda: page().name == t["about"], "back on the About list")


def main():
    application = subprocess.Popen(["quillset-info"])
    try:
        wait_for(app, "quillset-info on the accessibility bus", 20.0)
        wait_for(lambda: [o for o in walk(page()) if o.getRoleName() == "list item" and o.name],
                 "the About list's rows")
        tour("en")
        sim("event", "language", "de")
        wait_for(lambda: page().name == LANGUAGES["de"]["about"], "the German About list")
        tour("de")
    finally:
        application.terminate()
        application.wait(10)
    print(f"{len(failures)} failures", flush=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
