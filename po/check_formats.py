#!/usr/bin/env python3
"""Checks a catalogue's placeholders with `msgfmt --check` against the English catalogue.

Our msgids are string ids ("WDS_..._PS"), not English texts, so msgfmt cannot compare a
translation's format directives with its msgid directly: the id has none. The English
catalogue holds the source texts. This script writes a copy of the catalogue in which each
msgid is replaced by the English text of the same id (the id becomes the msgctxt, so equal
English texts stay distinct) and every flag of the English entry is added, then runs
`msgfmt --check` on that copy. msgfmt thus refuses a translation whose c-format directives
differ from the English text's. msgfmt compares only against a valid source, so an English
c-format text that is not a valid format string is refused here. msgfmt's messages are
rewritten to name the catalogue, the line and the id.

Usage: check_formats.py --msgfmt PATH --reference en.po CATALOGUE.po
"""

import argparse
import bisect
import os
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # keep the source tree free of __pycache__
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import pofile  # noqa: E402


# One printf conversion, as glibc reads it: %%, or %[n$][flags][width][.precision][length]conv.
_DIRECTIVE = re.compile(r"%(?:%|(?:\d+\$)?[-+ #0']*(?:\*(?:\d+\$)?|\d+)?"
                        r"(?:\.(?:\*(?:\d+\$)?|\d*))?(?:hh|h|ll|l|L|q|j|z|Z|t)?"
                        r"[diouxXeEfFgGaAcspnCSm])")


def invalid_formats(reference, ref_path):
    """English c-format texts that are not valid format strings. msgfmt compares a
    translation with its source only when the source is valid, so check the source here."""
    problems = []
    for e in reference:
        if e.is_header or 'c-format' not in e.flags:
            continue
        for text in e.translations():
            i = text.find('%')
            while i >= 0:
                m = _DIRECTIVE.match(text, i)
                if not m:
                    problems.append('%s:%d: %s: the English text is not a valid C format '
                                    'string: %r' % (ref_path, e.line, e.msgid, text[i:i + 8]))
                    break
                i = text.find('%', m.end())
    return problems


def build_check_copy(reference, catalogue, ref_path, cat_path):
    """Returns (text of the copy, [(copy line, catalogue line, id)]) or raises PoError."""
    english = {e.key: e for e in reference if not e.is_header}
    out = []
    where = []
    line = 1

    def emit(text):
        nonlocal line
        out.append(text)
        line += text.count('\n')

    for e in catalogue:
        if e.is_header:
            emit('msgid ""\nmsgstr %s\n\n' % pofile.quote(e.msgstr[0]))
            continue
        ref = english.get(e.key)
        if ref is None:
            raise pofile.PoError('%s:%d: %s has no English text in %s to check it against'
                                 % (cat_path, e.line, e.msgid, os.path.basename(ref_path)))
        where.append((line, e.line, e.msgid))
        flags = sorted((ref.flags | e.flags) - {'fuzzy'})
        if flags:
            emit('#, %s\n' % ', '.join(flags))
        emit('msgctxt %s\n' % pofile.quote(e.key))
        source = ref.translations()
        emit('msgid %s\n' % pofile.quote(source[0]))
        if e.msgid_plural is not None:
            emit('msgid_plural %s\n' % pofile.quote(source[-1]))
            for i, text in sorted(e.msgstr.items()):
                emit('msgstr[%d] %s\n' % (i, pofile.quote(text)))
        else:
            emit('msgstr %s\n' % pofile.quote(e.msgstr[0]))
        emit('\n')
    return ''.join(out), where


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    parser.add_argument('--msgfmt', default='msgfmt')
    parser.add_argument('--reference', required=True, help='the English catalogue')
    parser.add_argument('catalogue')
    args = parser.parse_args()

    try:
        reference = pofile.parse(args.reference)
        catalogue = pofile.parse(args.catalogue)
        text, where = build_check_copy(reference, catalogue, args.reference, args.catalogue)
    except pofile.PoError as e:
        print('error: %s' % e, file=sys.stderr)
        return 1
    bad = invalid_formats(reference, args.reference)
    for problem in bad:
        print(problem, file=sys.stderr)

    with tempfile.TemporaryDirectory(prefix='quillset-po-') as tmp:
        copy = os.path.join(tmp, os.path.basename(args.catalogue))
        with open(copy, 'w', encoding='utf-8') as f:
            f.write(text)
        try:
            run = subprocess.run([args.msgfmt, '--check', '-o', os.devnull, copy],
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                 universal_newlines=True)
        except OSError as e:
            print('error: cannot run %s: %s' % (args.msgfmt, e.strerror), file=sys.stderr)
            return 1

    starts = [w[0] for w in where]
    located = re.compile(r'^' + re.escape(copy) + r':(\d+): (.*)$')
    for message in run.stdout.splitlines():
        m = located.match(message)
        if not m:
            print(message.replace(copy, args.catalogue), file=sys.stderr)
            continue
        i = bisect.bisect_right(starts, int(m.group(1))) - 1
        if i < 0:  # the header
            print('%s: %s' % (args.catalogue, m.group(2)), file=sys.stderr)
            continue
        _, line, msgid = where[i]
        detail = m.group(2).replace("'msgid'", 'the English text')
        print('%s:%d: %s: %s' % (args.catalogue, line, msgid, detail), file=sys.stderr)
    return 1 if run.returncode != 0 or bad else 0


if __name__ == '__main__':
    sys.exit(main())
