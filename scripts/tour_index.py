#!/usr/bin/env python3
"""Writes the tour's contact sheet: one section per profile, one row per screen, the
languages side by side, each picture with its dump's title and rows beneath it, and the
pictures of the screen scrolled a page at a time (NAME@2, NAME@3, ...) under those.

    tour_index.py OUT_DIR --languages LANG... --profiles PROFILE... [--name SHOWN_PATH]

Only the profiles named are on the sheet and in the closing count, so that profiles left in
OUT_DIR by earlier tours are not taken for this one's.
"""
import argparse
import html
import json
import os
import sys


def screen_order(name):
    # "main.3.1.popup" sorts after "main.3.1" and before "main.3.2"; indexes as numbers.
    return [(0, int(p), "") if p.isdigit() else (1, 0, p) for p in name.split(".")]


def page_of(name):
    """("main.3", 2) for "main.3@2"; the screen at its top is page 1."""
    base, _, page = name.partition("@")
    return base, int(page) if page.isdigit() else 1


def summary(dump):
    """The screen in words: page title, rows (with switch states), popup, toast."""
    lines = []
    if dump.get("page"):
        lines.append(("page", dump["page"]))
    for item in dump.get("items") or []:
        texts = item.get("texts") or {}
        text = " / ".join(str(v) for v in texts.values() if v)
        if item.get("check") is not None:
            text += "  [%s]" % ("on" if item["check"] else "off")
        if text:
            lines.append(("row", text))
    for part, text in (dump.get("layout") or {}).items():
        if text:
            lines.append(("text", text))
    popup = dump.get("popup")
    if popup:
        for key in ("title", "text"):
            if popup.get(key):
                lines.append(("popup", popup[key]))
        if popup.get("buttons"):
            lines.append(("buttons", ", ".join(popup["buttons"])))
    if dump.get("toast"):
        lines.append(("toast", dump["toast"]))
    return lines


def label(dump):
    """A screen's name for people: its popup's title or text, else its first row or title."""
    popup = dump.get("popup")
    if popup:
        text = popup.get("title") or popup.get("text") or ""
        return "popup: " + (text[:40] + "..." if len(text) > 40 else text)
    items = dump.get("items") or []
    if items:
        texts = items[0].get("texts") or {}
        return next((str(v) for v in texts.values() if v), "")
    layout = dump.get("layout") or {}
    return layout.get("text.title") or layout.get("elm.text.title") or ""


def load(directory):
    screens = {}
    if not os.path.isdir(directory):
        return screens
    for entry in os.listdir(directory):
        if entry.endswith(".json"):
            name = entry[: -len(".json")]
            try:
                with open(os.path.join(directory, entry), encoding="utf-8") as f:
                    screens[name] = json.load(f)
            except (OSError, ValueError) as error:
                screens[name] = {"page": "(unreadable dump: %s)" % error}
    return screens


def main(argv):
    parser = argparse.ArgumentParser(description="Writes the tour's contact sheet.")
    parser.add_argument("out")
    parser.add_argument("--languages", nargs="+", required=True)
    parser.add_argument("--profiles", nargs="+", required=True)
    parser.add_argument("--name", help="the sheet's path as the closing line shows it")
    args = parser.parse_args(argv[1:])
    out, languages = args.out, args.languages
    profiles = sorted(p for p in args.profiles if os.path.isdir(os.path.join(out, p)))
    parts = [
        "<!doctype html><meta charset=utf-8><title>Kesta About: tour</title>",
        "<style>body{font:14px sans-serif;background:#111;color:#ddd;margin:20px}"
        "h2{border-top:1px solid #444;padding-top:12px}a{color:#8cf}"
        "table{border-collapse:collapse}td{vertical-align:top;padding:6px 14px 16px 0}"
        "img{width:270px;height:270px;display:block}"
        "img.page{width:130px;height:130px;display:inline-block;margin:2px 2px 0 0}"
        "ul{list-style:none;padding:0;margin:4px 0;max-width:270px;font-size:12px}"
        "li b{color:#999;font-weight:normal}.name{color:#fc8;font-family:monospace}"
        ".label{color:#ccc;font-family:sans-serif}.missing{width:270px;height:270px;background:#311;display:flex;align-items:center;"
        "justify-content:center}</style>",
        "<h1>Kesta About: every screen of every profile</h1>",
        "<p>" + " &middot; ".join('<a href="#%s">%s</a>' % (html.escape(p), html.escape(p))
                                   for p in profiles) + "</p>",
    ]
    total = 0
    for profile in profiles:
        per_lang = {lang: load(os.path.join(out, profile, lang)) for lang in languages}
        names = sorted({page_of(n)[0] for n in set().union(*per_lang.values())},
                       key=screen_order)
        total += sum(len(s) for s in per_lang.values())
        parts.append('<h2 id="%s">%s <small>(%d screens)</small></h2><table>'
                     % (html.escape(profile), html.escape(profile), len(names)))
        parts.append("<tr><th></th>" + "".join("<th>%s</th>" % html.escape(l) for l in languages)
                     + "</tr>")
        for name in names:
            first = next((per_lang[l][name] for l in languages if name in per_lang[l]), {})
            parts.append('<tr><td class=name>%s<br><span class=label>%s</span></td>'
                         % (html.escape(name), html.escape(label(first))))
            for lang in languages:
                dump = per_lang[lang].get(name)
                picture = os.path.join(profile, lang, name + ".png")
                if dump is None or not os.path.exists(os.path.join(out, picture)):
                    parts.append("<td><div class=missing>not reached</div></td>")
                    continue
                rows = "".join("<li><b>%s</b> %s</li>" % (html.escape(k), html.escape(str(v)))
                               for k, v in summary(dump))
                pages = sorted((page_of(n)[1], n) for n in per_lang[lang]
                               if page_of(n)[0] == name and page_of(n)[1] > 1)
                scrolled = "".join(
                    '<a href="%s"><img class=page src="%s" alt="%s"></a>'
                    % (html.escape(p), html.escape(p), html.escape(n))
                    for p, n in ((os.path.join(profile, lang, n + ".png"), n) for _, n in pages))
                parts.append('<td><a href="%s"><img src="%s" alt="%s"></a>%s<ul>%s</ul></td>'
                             % (html.escape(picture), html.escape(picture),
                                html.escape(name), scrolled, rows))
            parts.append("</tr>")
        parts.append("</table>")
    sheet = os.path.join(out, "index.html")
    with open(sheet, "w", encoding="utf-8") as f:
        f.write("\n".join(parts) + "\n")
    print("tour: %s of %s; the contact sheet is %s" % (
        counted(total, "screen"), counted(len(profiles), "profile"), args.name or sheet))
    return 0 if total else 1


def counted(n, noun):
    return "%d %s%s" % (n, noun, "" if n == 1 else "s")


if __name__ == "__main__":
    sys.exit(main(sys.argv))
