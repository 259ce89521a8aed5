#!/usr/bin/env python3
"""Writes a copy of a catalogue in which Korean words cannot be broken across lines.

Korean puts spaces between words and breaks lines only there, but the toolkit follows
Unicode's default line breaking, which allows a break between any two Hangul syllables. A
WORD JOINER (U+2060, invisible) between adjacent syllables of each translation leaves the
spaces as the only places to break. Other scripts are copied unchanged.

Usage: keep_words.py CATALOGUE.po COPY.po
"""

import re
import sys

_BETWEEN_SYLLABLES = re.compile('(?<=[\uac00-\ud7a3])(?=[\uac00-\ud7a3])')


def keep_words(text):
    return _BETWEEN_SYLLABLES.sub('\u2060', text)


def main(argv):
    if len(argv) != 3:
        print('usage: keep_words.py CATALOGUE.po COPY.po', file=sys.stderr)
        return 2
    with open(argv[1], encoding='utf-8') as f:
        lines = f.readlines()
    # Only translations change: msgids and comments stay as written.
    out, in_msgstr = [], False
    for line in lines:
        if line.startswith('msgstr'):
            in_msgstr = True
        elif not line.startswith('"'):
            in_msgstr = False
        out.append(keep_words(line) if in_msgstr else line)
    with open(argv[2], 'w', encoding='utf-8') as f:
        f.writelines(out)
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv))
