#!/usr/bin/env python3
"""Writes a pseudo-locale catalogue made from the English one, for looking at screens.

- en_XA: every letter accented and every text about 40 % longer, between brackets, so that a
  text cut by its box, a box that does not grow, or a text that bypasses the catalogue shows
  at once ("[Àƀöûţ Ķéšţå one two]").
- ar_XB: the English texts laid out right to left (each word reversed by a RIGHT-TO-LEFT
  OVERRIDE, the words ordered right to left), so that a screen that does not mirror shows.

Markup tags, entities and format directives are kept as they are. Neither is a language a
watch owner chooses.

Usage: pseudo_locale.py en_XA|ar_XB en.po OUT.po
"""

import re
import sys

import polib

# What must reach the screen untouched: markup tags, entities, printf directives.
_KEEP = re.compile(r"<[^>]*>|&[#\w]+;|%(?:%|(?:\d+\$)?[-+ #0']*\d*(?:\.\d*)?[a-zA-Z])")

_ACCENTED = dict(zip(
    'abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ',
    'åƀçðéƒĝĥîĵķļɱñöþǫŕšţûṽŵẋýžÅƁÇÐÉƑĜĤÎĴĶĻṀÑÖÞǪŔŠŢÛṼŴẊÝŽ'))
_PADDING = 'one two three four five six seven eight nine ten eleven twelve'.split()

RLM, RLO, PDF = '\u200f', '\u202e', '\u202c'


def _pieces(text):
    """Yields (is_text, piece): the text between what _KEEP keeps, and what it keeps."""
    pos = 0
    for m in _KEEP.finditer(text):
        if m.start() > pos:
            yield True, text[pos:m.start()]
        yield False, m.group(0)
        pos = m.end()
    if pos < len(text):
        yield True, text[pos:]


def accented(text):
    if not text:
        return text
    out = ''.join(''.join(_ACCENTED.get(c, c) for c in piece) if is_text else piece
                  for is_text, piece in _pieces(text))
    letters = sum(len(piece) for is_text, piece in _pieces(text) if is_text)
    padding, i = [], 0
    while letters and len(' '.join(padding)) < letters * 0.4:
        padding.append(_PADDING[i % len(_PADDING)])
        i += 1
    return '[' + out + (' ' + ' '.join(padding) if padding else '') + ']'


def right_to_left(text):
    def words(piece):
        return re.sub(r'\S+', lambda m: RLM + RLO + m.group(0) + PDF + RLM, piece)
    return ''.join(words(piece) if is_text else piece for is_text, piece in _pieces(text))


LOCALES = {
    'en_XA': ('English (accented pseudo-locale)', accented),
    'ar_XB': ('English laid out right to left (pseudo-locale)', right_to_left),
}


def main(argv):
    if len(argv) != 4 or argv[1] not in LOCALES:
        print('usage: pseudo_locale.py en_XA|ar_XB en.po OUT.po', file=sys.stderr)
        return 2
    locale = argv[1]
    team, transform = LOCALES[locale]
    catalogue = polib.pofile(argv[2], wrapwidth=0)
    catalogue.header = 'Made from en.po when the project is built; do not edit.'
    catalogue.metadata['Language'] = locale
    catalogue.metadata['Language-Team'] = team
    for e in catalogue:
        e.msgstr = transform(e.msgstr)
        for i in e.msgstr_plural:
            e.msgstr_plural[i] = transform(e.msgstr_plural[i])
    catalogue.save(argv[3])
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv))
