#!/usr/bin/env python3
"""Writes a copy of a catalogue whose translations break lines where their language does.

The toolkit breaks lines by Unicode's default rules, which fit neither Korean nor Thai:
- Korean puts spaces between words and breaks only there, but the default rules allow a break
  between any two Hangul syllables. A WORD JOINER (U+2060, invisible) between adjacent
  syllables leaves the spaces as the only places to break.
- Thai writes no spaces between words, and the default rules find no break inside a run of
  Thai letters, so a Thai line runs past its box. libthai's dictionary finds the words; a
  ZERO WIDTH SPACE (U+200B, invisible) between them marks where a line may break.
Other scripts are copied unchanged.

Usage: mark_breaks.py CATALOGUE.po COPY.po
"""

import ctypes
import ctypes.util
import re
import sys

import polib

_BETWEEN_SYLLABLES = re.compile('(?<=[\uac00-\ud7a3])(?=[\uac00-\ud7a3])')
_THAI_RUN = re.compile('[\u0e00-\u0e7f]+')


class ThaiWords:
    """Word breaks of Thai text, from libthai's dictionary."""

    def __init__(self):
        name = ctypes.util.find_library('thai') or 'libthai.so.0'
        try:
            self._lib = ctypes.CDLL(name)
        except OSError:
            raise SystemExit('error: libthai is not installed (Debian: libthai0 libthai-data); '
                             'Thai lines cannot be broken between words')
        self._lib.th_brk_new.restype = ctypes.c_void_p
        self._lib.th_brk_new.argtypes = [ctypes.c_char_p]
        self._lib.th_brk_wc_find_breaks.restype = ctypes.c_int
        self._lib.th_brk_wc_find_breaks.argtypes = [
            ctypes.c_void_p, ctypes.c_wchar_p, ctypes.POINTER(ctypes.c_int), ctypes.c_size_t]
        self._lib.th_brk_delete.argtypes = [ctypes.c_void_p]
        self._brk = self._lib.th_brk_new(None)
        if not self._brk:
            raise SystemExit('error: libthai has no word dictionary (Debian: libthai-data)')

    def __del__(self):
        if getattr(self, '_brk', None):
            self._lib.th_brk_delete(self._brk)

    def mark(self, run):
        positions = (ctypes.c_int * (len(run) + 1))()
        n = self._lib.th_brk_wc_find_breaks(self._brk, run, positions, len(positions))
        cuts = [p for p in positions[:max(n, 0)] if 0 < p < len(run)]
        parts, start = [], 0
        for p in cuts:
            parts.append(run[start:p])
            start = p
        parts.append(run[start:])
        return '\u200b'.join(parts)


def mark_breaks(text, thai):
    text = _BETWEEN_SYLLABLES.sub('\u2060', text)
    if thai is not None:
        text = _THAI_RUN.sub(lambda m: thai.mark(m.group(0)), text)
    return text


def main(argv):
    if len(argv) != 3:
        print('usage: mark_breaks.py CATALOGUE.po COPY.po', file=sys.stderr)
        return 2
    catalogue = polib.pofile(argv[1], wrapwidth=0)
    thai = None
    if any(_THAI_RUN.search(e.msgstr or ''.join(e.msgstr_plural.values())) for e in catalogue):
        thai = ThaiWords()
    for e in catalogue:
        e.msgstr = mark_breaks(e.msgstr, thai)
        for i in e.msgstr_plural:
            e.msgstr_plural[i] = mark_breaks(e.msgstr_plural[i], thai)
    catalogue.save(argv[2])
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv))
