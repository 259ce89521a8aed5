#!/usr/bin/env python3
"""Fails when the message catalogues po/*.po do not cover the application's string ids.

Usage: po_check.py SOURCE_ROOT

Problems reported, each naming the catalogue and the id:
- a string id used in the sources (app-control/, common/, res/: a C/C++ or Edje string literal
  that is an id
  such as "WDS_ST_BODY_ABOUT_KESTA_ABB") is missing from a catalogue;
- a catalogue lacks an id that another catalogue has;
- a translation is empty, or marked fuzzy (msgfmt leaves fuzzy entries out, so the screen
  would show the bare id), or untranslated: the bare id, or the English text itself (names,
  abbreviations, numbers and units, texts with no lower-case letter such as "OK" or "IMEI SV",
  may stay as in English);
- a character of a translation that no installed font draws (a box on the screen);
- an id appears twice in one catalogue;
- an entry is c-format in one catalogue but not in another, or holds a '%' without saying
  whether it is a format string (c-format or no-c-format), so msgfmt would not check it;
- a translation's format directives differ from the English text's (the same directives,
  positional ones included, in any order).
"""

import bisect
import os
import re
import subprocess
import sys

import polib

ID = re.compile(r'^(WDS|IDS|MIDS|LDS)_[A-Z0-9_]+$')
SOURCE_DIRS = ('app-control', 'common', 'res')
SOURCE_SUFFIXES = ('.c', '.cc', '.cpp', '.cxx', '.h', '.hh', '.hpp', '.hxx', '.edc', '.edh')
FORMAT_FLAGS = ('c-format', 'no-c-format')


def _tokens(text):
    """Yields (line, value) for each string literal of C/C++ text and (line, None) for every
    other token character; comments, white space and character literals yield nothing."""
    i, line, n = 0, 1, len(text)
    while i < n:
        c = text[i]
        if c == '\n':
            line += 1
            i += 1
        elif text.startswith('//', i):
            end = text.find('\n', i)
            i = n if end < 0 else end
        elif text.startswith('/*', i):
            end = text.find('*/', i + 2)
            end = n if end < 0 else end + 2
            line += text.count('\n', i, end)
            i = end
        elif c == 'R' and text.startswith('"', i + 1) and (i == 0 or not (
                text[i - 1].isalnum() or text[i - 1] == '_') or text[i - 1] in 'LuU8'):
            m = re.match(r'R"([^()\\\s]{0,16})\(', text[i:])
            if not m:
                i += 1
                continue
            close = ')' + m.group(1) + '"'
            start = i + m.end()
            end = text.find(close, start)
            end = n if end < 0 else end
            yield line, text[start:end]
            line += text.count('\n', i, end)
            i = min(n, end + len(close))
        elif c == "'" and i > 0 and text[i - 1].isalnum() and text[i - 1] not in 'LuU' and \
                not text.startswith('u8', i - 2):
            i += 1  # digit separator, as in 1'000'000
        elif c in '"\'':
            start_line = line
            j = i + 1
            while j < n and text[j] != c and text[j] != '\n':
                j += 2 if text[j] == '\\' else 1
            if c == '"':
                yield start_line, text[i + 1:j]
            i = j + 1
        else:
            if not c.isspace():
                yield line, None
            i += 1


def string_literals(text):
    """Yields (line, value) of the string literals of C/C++ text, adjacent literals joined as
    the compiler joins them (long ids are split over lines). Escapes are kept as written:
    ids never contain any."""
    pending = None
    for line, value in _tokens(text):
        if value is None:
            if pending is not None:
                yield pending
                pending = None
        elif pending is None:
            pending = (line, value)
        else:
            pending = (pending[0], pending[1] + value)
    if pending is not None:
        yield pending


def source_ids(root):
    """Returns {id: 'path:line' of its first use} for the application's sources."""
    found = {}
    for top in SOURCE_DIRS:
        for directory, dirs, files in os.walk(os.path.join(root, top)):
            dirs.sort()
            for name in sorted(files):
                if not name.endswith(SOURCE_SUFFIXES):
                    continue
                path = os.path.join(directory, name)
                with open(path, encoding='utf-8', errors='replace') as f:
                    text = f.read()
                for line, value in string_literals(text):
                    if ID.match(value):
                        found.setdefault(value, '%s:%d' % (os.path.relpath(path, root), line))
    return found


def _fonts_cover():
    """The characters some installed font draws, from fontconfig; None without fc-list."""
    try:
        out = subprocess.run(['fc-list', '--format', '%{charset}\n'], stdout=subprocess.PIPE,
                             universal_newlines=True, check=True).stdout
    except (OSError, subprocess.CalledProcessError):
        return None
    ranges = set()
    for line in out.split():
        first, _, last = line.partition('-')
        ranges.add((int(first, 16), int(last or first, 16)))
    merged = []
    for first, last in sorted(ranges):
        if merged and first <= merged[-1][1] + 1:
            merged[-1][1] = max(merged[-1][1], last)
        else:
            merged.append([first, last])
    return merged


def _covered(code, ranges):
    i = bisect.bisect_right(ranges, [code, float('inf')]) - 1
    return i >= 0 and ranges[i][0] <= code <= ranges[i][1]


# Drawn by no font, on purpose: marks, joiners, directions, the line separator.
_INVISIBLE = re.compile('[\u00a0\u200b-\u200f\u202a-\u202e\u2060\u202f\n]')


def may_stay_english(text):
    """Names, abbreviations, numbers and units read the same in every language (OK, IMEI SV,
    KB): texts without a lower-case letter."""
    return not any(c.islower() for c in text)


def check(root):
    """Returns the list of problems, one readable line each."""
    sys.dont_write_bytecode = True  # keep the source tree free of __pycache__
    sys.path.insert(0, os.path.join(root, 'po'))
    from check_formats import DIRECTIVE as directive, key, translations

    po_dir = os.path.join(root, 'po')
    names = sorted(n for n in os.listdir(po_dir) if n.endswith('.po')) if os.path.isdir(
        po_dir) else []
    if not names:
        return ['po/: no message catalogue (*.po) found']

    problems = []
    catalogues = {}  # 'po/xx.po' -> {id: entry}
    for name in names:
        rel = 'po/' + name
        try:
            entries = polib.pofile(os.path.join(po_dir, name), wrapwidth=0)
        except (OSError, ValueError) as e:
            problems.append('%s: %s' % (rel, str(e).replace(po_dir + os.sep, 'po/')))
            continue
        by_id = {}
        for e in entries:
            where = '%s:%d: %s' % (rel, e.linenum, e.msgid)
            if key(e) in by_id:
                problems.append('%s appears twice (first at line %d)'
                                % (where, by_id[key(e)].linenum))
                continue
            by_id[key(e)] = e
            if any(t == '' for t in translations(e)):
                problems.append('%s has an empty translation' % where)
            if 'fuzzy' in e.flags:
                problems.append('%s is marked fuzzy, so it is left out of the compiled '
                                'catalogue' % where)
            if any('%' in t for t in translations(e)) and not set(e.flags) & set(FORMAT_FLAGS):
                problems.append('%s contains "%%" but is marked neither c-format nor '
                                'no-c-format' % where)
        catalogues[rel] = by_id

    english = catalogues.get('po/en.po', {})
    for rel, by_id in catalogues.items():
        if rel == 'po/en.po':
            continue
        for k, e in by_id.items():
            ref = english.get(k)
            if ref is None:
                continue
            where = '%s:%d: %s' % (rel, e.linenum, e.msgid)
            source = translations(ref)[0]
            for text in translations(e):
                if text == e.msgid or (text == source and not may_stay_english(source)):
                    problems.append('%s is not translated: %r' % (where, text))
                if 'c-format' in ref.flags and \
                        sorted(directive.findall(text)) != sorted(directive.findall(source)):
                    problems.append('%s has the format directives %s, English has %s'
                                    % (where, ' '.join(sorted(directive.findall(text))) or
                                       'none', ' '.join(sorted(directive.findall(source)))))

    for ident, used_at in sorted(source_ids(root).items()):
        for rel, by_id in catalogues.items():
            if ident not in by_id:
                problems.append('%s: %s is missing (used in %s)' % (rel, ident, used_at))

    everywhere = set()
    for by_id in catalogues.values():
        everywhere |= set(by_id)
    for k in sorted(everywhere):
        having = [rel for rel, by_id in catalogues.items() if k in by_id]
        for rel, by_id in catalogues.items():
            if k not in by_id:
                problems.append('%s: %s is missing (%s has it)'
                                % (rel, k.split('\x04')[-1], ', '.join(having)))
        c_format = {rel: 'c-format' in catalogues[rel][k].flags for rel in having}
        if len(set(c_format.values())) > 1:
            marked = [rel for rel, yes in c_format.items() if yes]
            unmarked = [rel for rel, yes in c_format.items() if not yes]
            for rel in unmarked:
                problems.append('%s:%d: %s is not marked c-format, unlike in %s'
                                % (rel, catalogues[rel][k].linenum, k.split('\x04')[-1],
                                   ', '.join(marked)))

    fonts = _fonts_cover()
    if fonts is None:
        problems.append('fc-list is missing, so no check that the fonts draw every text')
        fonts = []
    for rel, by_id in catalogues.items():
        missing = sorted({c for e in by_id.values() for t in translations(e)
                          for c in _INVISIBLE.sub('', t) if not _covered(ord(c), fonts)})
        if missing:
            problems.append('%s: no installed font draws %s' % (
                rel, ' '.join('%s (U+%04X)' % (c, ord(c)) for c in missing[:8])))
    return problems


def main(argv):
    if len(argv) != 2:
        print('usage: po_check.py SOURCE_ROOT', file=sys.stderr)
        return 2
    root = os.path.abspath(argv[1])
    problems = check(root)
    for p in problems:
        print(p)
    if problems:
        print('po_check: %d problem(s) in the message catalogues' % len(problems))
        return 1
    print('po_check: every string id of the sources is translated in every catalogue')
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv))
