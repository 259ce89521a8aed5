"""Minimal reader and writer of gettext PO files (standard library only).

Enough of the format for our own catalogues: comments, flags, msgctxt, msgid, msgid_plural,
msgstr and msgstr[N], multi-line strings and C escapes. Obsolete entries (#~) are skipped.
"""

import re

_ESCAPES = {'n': '\n', 't': '\t', 'r': '\r', 'a': '\a', 'b': '\b', 'f': '\f', 'v': '\v',
            '"': '"', '\\': '\\', '?': '?', "'": "'"}

_KEYWORD = re.compile(r'^(msgctxt|msgid_plural|msgid|msgstr(?:\[(\d+)\])?)\s+(".*)$')


class PoError(Exception):
    """A PO file that cannot be read; the message names the file and line."""


class Entry:
    def __init__(self, line):
        self.line = line  # line of the entry's msgid, for messages
        self.translator_comments = []  # "#." lines
        self.flags = set()  # "#," words
        self.msgctxt = None
        self.msgid = None
        self.msgid_plural = None
        self.msgstr = {}  # plural index (0 when not plural) -> text

    @property
    def key(self):
        """What makes the entry unique in its catalogue (context and id)."""
        return self.msgid if self.msgctxt is None else self.msgctxt + '\x04' + self.msgid

    @property
    def is_header(self):
        return self.msgctxt is None and self.msgid == ''

    def translations(self):
        return [self.msgstr[i] for i in sorted(self.msgstr)]


def _unquote(text, where):
    text = text.strip()
    if len(text) < 2 or text[0] != '"' or text[-1] != '"':
        raise PoError('%s: expected a quoted string, found %r' % (where, text))
    body = text[1:-1]
    out = []
    i = 0
    while i < len(body):
        c = body[i]
        if c == '"':
            raise PoError('%s: unescaped quote inside a string' % where)
        if c != '\\':
            out.append(c)
            i += 1
            continue
        i += 1
        if i >= len(body):
            raise PoError('%s: string ends with a lone backslash' % where)
        c = body[i]
        if c in _ESCAPES:
            out.append(_ESCAPES[c])
            i += 1
        elif c in '01234567':
            m = re.match(r'[0-7]{1,3}', body[i:])
            out.append(chr(int(m.group(0), 8)))
            i += len(m.group(0))
        elif c == 'x':
            m = re.match(r'[0-9a-fA-F]+', body[i + 1:])
            if not m:
                raise PoError('%s: \\x without hexadecimal digits' % where)
            out.append(chr(int(m.group(0), 16)))
            i += 1 + len(m.group(0))
        else:
            raise PoError('%s: unknown escape \\%s' % (where, c))
    return ''.join(out)


def parse(path):
    """Returns the entries of the PO file at path, header included, in file order."""
    try:
        with open(path, encoding='utf-8') as f:
            lines = f.read().split('\n')
    except UnicodeDecodeError as e:
        raise PoError('%s: not valid UTF-8 (%s)' % (path, e))
    except OSError as e:
        raise PoError('%s: %s' % (path, e.strerror or e))

    entries = []
    entry = None
    field = None  # (name, plural index) the next continuation line belongs to

    def finish():
        if entry is None:
            return
        if entry.msgid is None:
            raise PoError('%s:%d: comments or msgstr without a msgid' % (path, entry.line))
        if not entry.msgstr:
            raise PoError('%s:%d: msgid without msgstr' % (path, entry.line))
        if entry.msgid_plural is None and set(entry.msgstr) != {0}:
            raise PoError('%s:%d: msgstr[N] without msgid_plural' % (path, entry.line))
        entries.append(entry)

    for number, raw in enumerate(lines, 1):
        where = '%s:%d' % (path, number)
        line = raw.strip()
        if not line:
            field = None
            continue
        if line.startswith('#~'):
            continue  # obsolete entry: msgfmt ignores it, so do we
        if line.startswith('#'):
            if entry is not None and (entry.msgid is not None or entry.msgctxt is not None):
                finish()
                entry = None
            if entry is None:
                entry = Entry(number)
            if line.startswith('#,'):
                entry.flags.update(w.strip() for w in line[2:].split(',') if w.strip())
            elif line.startswith('#.'):
                entry.translator_comments.append(line[2:].strip())
            field = None
            continue
        if line.startswith('"'):
            if field is None:
                raise PoError('%s: string continuation without a keyword' % where)
            name, index = field
            text = _unquote(line, where)
            if name == 'msgstr':
                entry.msgstr[index] += text
            else:
                setattr(entry, name, getattr(entry, name) + text)
            continue
        m = _KEYWORD.match(line)
        if not m:
            raise PoError('%s: cannot read %r' % (where, line))
        keyword, index, rest = m.group(1), m.group(2), m.group(3)
        text = _unquote(rest, where)
        if keyword in ('msgctxt', 'msgid'):
            starts_new = entry is None or entry.msgid is not None or (
                keyword == 'msgctxt' and entry.msgctxt is not None)
            if starts_new:
                finish()
                entry = Entry(number)
            if keyword == 'msgid':
                entry.line = number
            setattr(entry, keyword, text)
            field = (keyword, None)
        elif keyword == 'msgid_plural':
            if entry is None or entry.msgid is None or entry.msgstr:
                raise PoError('%s: msgid_plural out of place' % where)
            entry.msgid_plural = text
            field = (keyword, None)
        else:
            if entry is None or entry.msgid is None:
                raise PoError('%s: msgstr without a msgid' % where)
            i = int(index) if index is not None else 0
            if i in entry.msgstr:
                raise PoError('%s: second msgstr for the same entry' % where)
            entry.msgstr[i] = text
            field = ('msgstr', i)
    finish()
    return entries


def quote(text):
    """The PO form of text: one quoted line per source line, C escapes applied."""
    def esc(s):
        s = s.replace('\\', '\\\\').replace('"', '\\"').replace('\t', '\\t').replace('\r', '\\r')
        return ''.join(c if ord(c) >= 0x20 else '\\%03o' % ord(c) for c in s)

    parts = text.split('\n')
    pieces = [esc(p) + '\\n' for p in parts[:-1]]
    if parts[-1] or not pieces:
        pieces.append(esc(parts[-1]))
    if len(pieces) == 1:
        return '"%s"' % pieces[0]
    return '""\n' + '\n'.join('"%s"' % p for p in pieces)
