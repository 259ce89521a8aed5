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

import polib

# One printf conversion, as glibc reads it: %%, or %[n$][flags][width][.precision][length]conv.
DIRECTIVE = re.compile(r"%(?:%|(?:\d+\$)?[-+ #0']*(?:\*(?:\d+\$)?|\d+)?"
                       r"(?:\.(?:\*(?:\d+\$)?|\d*))?(?:hh|h|ll|l|L|q|j|z|Z|t)?"
                       r"[diouxXeEfFgGaAcspnCSm])")


def translations(entry):
    """The texts of an entry: its msgstr, or its plural forms in order."""
    if entry.msgid_plural:
        return [entry.msgstr_plural[i] for i in sorted(entry.msgstr_plural)]
    return [entry.msgstr]


def key(entry):
    """What makes an entry unique in its catalogue (context and id)."""
    return entry.msgid if entry.msgctxt is None else entry.msgctxt + '\x04' + entry.msgid


def load(path):
    """The catalogue at path, or a one-line error naming it."""
    try:
        return polib.pofile(path, wrapwidth=0)
    except (OSError, ValueError) as e:
        raise SystemExit('error: %s: %s' % (path, e))


def invalid_formats(reference, ref_path):
    """English c-format texts that are not valid format strings. msgfmt compares a
    translation with its source only when the source is valid, so check the source here."""
    problems = []
    for e in reference:
        if 'c-format' not in e.flags:
            continue
        for text in translations(e):
            i = text.find('%')
            while i >= 0:
                m = DIRECTIVE.match(text, i)
                if not m:
                    problems.append('%s:%d: %s: the English text is not a valid C format '
                                    'string: %r' % (ref_path, e.linenum, e.msgid, text[i:i + 8]))
                    break
                i = text.find('%', m.end())
    return problems


def check_copy(reference, catalogue, ref_path, cat_path):
    """The copy msgfmt checks: each entry's msgid replaced by its English text."""
    english = {key(e): e for e in reference}
    copy = polib.POFile(wrapwidth=0)
    copy.metadata = catalogue.metadata
    origin = []  # (the copy's entry, the catalogue's line, id)
    for e in catalogue:
        ref = english.get(key(e))
        if ref is None:
            raise SystemExit('error: %s:%d: %s has no English text in %s to check it against'
                             % (cat_path, e.linenum, e.msgid, os.path.basename(ref_path)))
        source = translations(ref)
        entry = polib.POEntry(msgctxt=key(e), msgid=source[0],
                              flags=sorted(set(ref.flags) | set(e.flags) - {'fuzzy'}))
        if e.msgid_plural:
            entry.msgid_plural = source[-1]
            entry.msgstr_plural = dict(e.msgstr_plural)
        else:
            entry.msgstr = e.msgstr
        copy.append(entry)
        origin.append((entry, e.linenum, e.msgid))
    return copy, origin


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    parser.add_argument('--msgfmt', default='msgfmt')
    parser.add_argument('--reference', required=True, help='the English catalogue')
    parser.add_argument('catalogue')
    args = parser.parse_args()

    reference = load(args.reference)
    catalogue = load(args.catalogue)
    copy, origin = check_copy(reference, catalogue, args.reference, args.catalogue)
    bad = invalid_formats(reference, args.reference)
    for problem in bad:
        print(problem, file=sys.stderr)

    with tempfile.TemporaryDirectory(prefix='quillset-po-') as tmp:
        path = os.path.join(tmp, os.path.basename(args.catalogue))
        copy.save(path)
        # Where each entry of the copy starts, to name the catalogue's own line.
        starts = [e.linenum for e in polib.pofile(path) if True]
        try:
            run = subprocess.run([args.msgfmt, '--check', '-o', os.devnull, path],
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                 universal_newlines=True)
        except OSError as e:
            print('error: cannot run %s: %s' % (args.msgfmt, e.strerror), file=sys.stderr)
            return 1

    located = re.compile(r'^' + re.escape(path) + r':(\d+): (.*)$')
    for message in run.stdout.splitlines():
        m = located.match(message)
        if not m:
            print(message.replace(path, args.catalogue), file=sys.stderr)
            continue
        i = bisect.bisect_right(starts, int(m.group(1))) - 1
        if i < 0:  # the header
            print('%s: %s' % (args.catalogue, m.group(2)), file=sys.stderr)
            continue
        _, line, msgid = origin[i]
        detail = m.group(2).replace("'msgid'", 'the English text')
        print('%s:%d: %s: %s' % (args.catalogue, line, msgid, detail), file=sys.stderr)
    return 1 if run.returncode != 0 or bad else 0


if __name__ == '__main__':
    sys.exit(main())
