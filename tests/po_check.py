#!/usr/bin/env python3
"""Fails when the message catalogues po/*.po do not cover the application's string ids.

Usage: po_check.py SOURCE_ROOT

Problems reported, each naming the catalogue and the id:
- a string id used in the sources (app-control/, common/, res/: a C/C++ or Edje string literal
  that is an id
  such as "WDS_ST_BODY_ABOUT_KESTA_ABB") is missing from a catalogue;
- a catalogue lacks an id that another catalogue has;
- a translation is empty, or marked fuzzy (msgfmt leaves fuzzy entries out, so the screen
  would show the bare id), or untranslated: the bare id, or the English phrase itself (a
  single word or an abbreviation such as "OK" or "IMEI SV" may stay as in English);
- an id appears twice in one catalogue;
- an entry is c-format in one catalogue but not in another, or holds a '%' without saying
  whether it is a format string (c-format or no-c-format), so msgfmt would not check it;
- a translation's format directives differ from the English text's (the same directives,
  positional ones included, in any order).
"""

import os
import re
import sys

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


def check(root):
    """Returns the list of problems, one readable line each."""
    sys.dont_write_bytecode = True  # keep the source tree free of __pycache__
    sys.path.insert(0, os.path.join(root, 'po'))
    import pofile
    from check_formats import _DIRECTIVE as directive

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
            entries = pofile.parse(os.path.join(po_dir, name))
        except pofile.PoError as e:
            problems.append(str(e).replace(po_dir + os.sep, 'po/'))
            continue
        by_id = {}
        for e in entries:
            if e.is_header:
                continue
            where = '%s:%d: %s' % (rel, e.line, e.msgid)
            if e.key in by_id:
                problems.append('%s appears twice (first at line %d)'
                                % (where, by_id[e.key].line))
                continue
            by_id[e.key] = e
            if any(t == '' for t in e.translations()):
                problems.append('%s has an empty translation' % where)
            if 'fuzzy' in e.flags:
                problems.append('%s is marked fuzzy, so it is left out of the compiled '
                                'catalogue' % where)
            if any('%' in t for t in e.translations()) and not e.flags & set(FORMAT_FLAGS):
                problems.append('%s contains "%%" but is marked neither c-format nor '
                                'no-c-format' % where)
        catalogues[rel] = by_id

    english = catalogues.get('po/en.po', {})
    for rel, by_id in catalogues.items():
        if rel == 'po/en.po':
            continue
        for key, e in by_id.items():
            ref = english.get(key)
            if ref is None:
                continue
            where = '%s:%d: %s' % (rel, e.line, e.msgid)
            source = ref.translations()[0]
            for text in e.translations():
                if text == e.msgid or (text == source and ' ' in source and
                                       source != source.upper()):
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
    for key in sorted(everywhere):
        having = [rel for rel, by_id in catalogues.items() if key in by_id]
        for rel, by_id in catalogues.items():
            if key not in by_id:
                problems.append('%s: %s is missing (%s has it)'
                                % (rel, key.split('\x04')[-1], ', '.join(having)))
        c_format = {rel: 'c-format' in catalogues[rel][key].flags for rel in having}
        if len(set(c_format.values())) > 1:
            marked = [rel for rel, yes in c_format.items() if yes]
            unmarked = [rel for rel, yes in c_format.items() if not yes]
            for rel in unmarked:
                problems.append('%s:%d: %s is not marked c-format, unlike in %s'
                                % (rel, catalogues[rel][key].line, key.split('\x04')[-1],
                                   ', '.join(marked)))
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
