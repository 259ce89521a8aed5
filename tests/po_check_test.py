#!/usr/bin/env python3
"""Tests of the catalogue checks: tests/po_check.py and po/check_formats.py.

Each case builds a small source tree in a temporary directory (a po/ with catalogues, an
app-control/ with a source file) and runs the checker on it as CTest would.

Usage: po_check_test.py SOURCE_ROOT [MSGFMT]
"""

import os
import shutil
import subprocess
import sys
import tempfile
import textwrap
import unittest

import polib

ROOT = None
MSGFMT = 'msgfmt'

HEADER = '''msgid ""
msgstr ""
"Project-Id-Version: quillset\\n"
"PO-Revision-Date: 2024-11-23 12:00+0000\\n"
"Last-Translator: Quillset developers\\n"
"Language-Team: {lang}\\n"
"Language: {lang}\\n"
"MIME-Version: 1.0\\n"
"Content-Type: text/plain; charset=UTF-8\\n"
"Content-Transfer-Encoding: 8bit\\n"
"Plural-Forms: nplurals=2; plural=(n != 1);\\n"

'''

SOURCE = textwrap.dedent('''\
    // "IDS_IN_A_COMMENT" is no use of an id.
    #include "StInfoDefines.h"
    static const char *kTitle = "WDS_ST_BODY_ABOUT_KESTA_ABB";
    static const long kBig = 1'000'000;
    void f()
    {
        setContent("WDS_ST_POP_A_LONG_ID_"
                   "SPLIT_OVER_TWO_LINES");
        char c = '"';
        show(R"(IDS_RAW_IS_NOT_SKIPPED)");
    }
    ''')

ENTRIES_EN = {
    'WDS_ST_BODY_ABOUT_KESTA_ABB': 'About Kesta',
    'WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES': 'Long text',
    'IDS_RAW_IS_NOT_SKIPPED': 'Raw',
}
ENTRIES_DE = {
    'WDS_ST_BODY_ABOUT_KESTA_ABB': 'Über Kesta',
    'WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES': 'Langer Text',
    'IDS_RAW_IS_NOT_SKIPPED': 'Roh',
}


def catalogue(lang, entries, extra=''):
    body = ''.join('msgid "%s"\nmsgstr "%s"\n\n' % (k, v) for k, v in entries.items())
    return HEADER.format(lang=lang) + body + extra


class Tree:
    """A throw-away source tree with po/ (our own check_formats.py) and app-control/."""

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix='quillset-po-test-')
        os.makedirs(os.path.join(self.root, 'po'))
        os.makedirs(os.path.join(self.root, 'app-control', 'info', 'src'))
        for name in ('check_formats.py',):
            shutil.copy(os.path.join(ROOT, 'po', name), os.path.join(self.root, 'po'))
        self.write('app-control/info/src/StInfoThing.cpp', SOURCE)

    def write(self, rel, text):
        with open(os.path.join(self.root, rel), 'w', encoding='utf-8') as f:
            f.write(text)
        return os.path.join(self.root, rel)

    def po_check(self):
        run = subprocess.run(
            [sys.executable, os.path.join(ROOT, 'tests', 'po_check.py'), self.root],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True)
        return run.returncode, run.stdout

    def check_formats(self, lang):
        run = subprocess.run(
            [sys.executable, os.path.join(ROOT, 'po', 'check_formats.py'), '--msgfmt', MSGFMT,
             '--reference', os.path.join(self.root, 'po', 'en.po'),
             os.path.join(self.root, 'po', lang + '.po')],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True)
        return run.returncode, run.stdout

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)


class PoCheckTest(unittest.TestCase):
    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.remove)

    def test_complete_catalogues_pass(self):
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', ENTRIES_DE))
        code, out = self.tree.po_check()
        self.assertEqual(code, 0, out)

    def test_project_catalogues_pass(self):
        run = subprocess.run([sys.executable, os.path.join(ROOT, 'tests', 'po_check.py'), ROOT],
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             universal_newlines=True)
        self.assertEqual(run.returncode, 0, run.stdout)

    def test_id_used_in_sources_but_missing_is_named_with_file_and_use(self):
        entries = dict(ENTRIES_DE)
        del entries['WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES']
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', entries))
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertIn('po/de.po: WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES is missing (used in '
                      'app-control/info/src/StInfoThing.cpp:7)', out)
        self.assertNotIn('po/en.po:', out)

    def test_ids_in_comments_and_headers_are_not_required(self):
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', ENTRIES_DE))
        self.tree.write('app-control/info/src/Other.h',
                        '/* "WDS_ONLY_IN_A_BLOCK_COMMENT" */\n#include "IDS_LOOKALIKE.h"\n')
        code, out = self.tree.po_check()
        self.assertEqual(code, 0, out)

    def test_id_in_common_sources_is_required(self):
        os.makedirs(os.path.join(self.tree.root, 'common', 'src'))
        self.tree.write('common/src/StShared.h', '#define ST_TEXT "MIDS_SHARED_TEXT"\n')
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', ENTRIES_DE))
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertIn('po/en.po: MIDS_SHARED_TEXT is missing (used in common/src/StShared.h:1)',
                      out)

    def test_id_only_in_another_catalogue_is_missing(self):
        extra = 'msgid "WDS_ONLY_GERMAN"\nmsgstr "Nur deutsch"\n'
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', ENTRIES_DE, extra))
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertIn('po/en.po: WDS_ONLY_GERMAN is missing (po/de.po has it)', out)

    def test_empty_and_fuzzy_translations_fail(self):
        entries = dict(ENTRIES_DE, WDS_ST_BODY_ABOUT_KESTA_ABB='')
        fuzzy = catalogue('de', entries).replace(
            'msgid "IDS_RAW_IS_NOT_SKIPPED"', '#, fuzzy\nmsgid "IDS_RAW_IS_NOT_SKIPPED"')
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', fuzzy)
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertRegex(out, r'po/de\.po:\d+: WDS_ST_BODY_ABOUT_KESTA_ABB has an empty')
        self.assertRegex(out, r'po/de\.po:\d+: IDS_RAW_IS_NOT_SKIPPED is marked fuzzy')

    def test_multi_line_translation_is_not_empty(self):
        de = catalogue('de', ENTRIES_DE).replace(
            'msgstr "Roh"', 'msgstr ""\n"Ro"\n"h"')
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', de)
        code, out = self.tree.po_check()
        self.assertEqual(code, 0, out)

    def test_placeholder_without_format_flag_fails(self):
        extra_en = '#, c-format\nmsgid "WDS_PS"\nmsgstr "Enter %s"\n'
        extra_de = 'msgid "WDS_PS"\nmsgstr "%s eingeben"\n'
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN, extra_en))
        self.tree.write('po/de.po', catalogue('de', ENTRIES_DE, extra_de))
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertRegex(out, r'po/de\.po:\d+: WDS_PS contains "%" but is marked neither')
        self.assertRegex(out, r'po/de\.po:\d+: WDS_PS is not marked c-format, unlike in '
                              r'po/en\.po')

    def test_untranslated_texts_and_other_directives_fail(self):
        en = '#, c-format\nmsgid "WDS_P1SS_P2SS"\nmsgstr "Copy %1$s with %2$s."\n'
        cases = [  # (German text of an entry, of WDS_P1SS_P2SS, problem or None)
            ({'IDS_RAW_IS_NOT_SKIPPED': 'IDS_RAW_IS_NOT_SKIPPED'}, '%1$s mit %2$s kopieren.',
             'IDS_RAW_IS_NOT_SKIPPED is not translated'),
            ({'WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES': 'Long text'}, '%2$s: %1$s kopieren.',
             'WDS_ST_POP_A_LONG_ID_SPLIT_OVER_TWO_LINES is not translated'),
            ({'IDS_RAW_IS_NOT_SKIPPED': 'Raw'}, '%2$s: %1$s kopieren.',
             'IDS_RAW_IS_NOT_SKIPPED is not translated'),
            ({'IDS_RAW_IS_NOT_SKIPPED': 'Roh'}, '%2$s: %1$s kopieren.', None),
            ({}, '%1$s mit %s kopieren.', 'WDS_P1SS_P2SS has the format directives %1$s %s, '
                                          'English has %1$s %2$s'),
            ({}, '%1$s kopieren.', 'WDS_P1SS_P2SS has the format directives %1$s, English'),
        ]
        for entries, formatted, problem in cases:
            with self.subTest(entries=entries, formatted=formatted):
                self.tree.write('po/en.po', catalogue('en', ENTRIES_EN, en))
                self.tree.write('po/de.po', catalogue('de', dict(ENTRIES_DE, **entries), (
                    '#, c-format\nmsgid "WDS_P1SS_P2SS"\nmsgstr "%s"\n' % formatted)))
                code, out = self.tree.po_check()
                self.assertEqual(code, 1 if problem else 0, out)
                if problem:
                    self.assertIn(problem, out)

    def test_duplicate_id_fails(self):
        dup = catalogue('de', ENTRIES_DE, 'msgid "IDS_RAW_IS_NOT_SKIPPED"\nmsgstr "Roh"\n')
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', dup)
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertRegex(out, r'po/de\.po:\d+: IDS_RAW_IS_NOT_SKIPPED appears twice')

    def test_names_abbreviations_and_units_may_stay_english(self):
        en = dict(ENTRIES_EN, IDS_RAW_IS_NOT_SKIPPED='IMEI SV')
        self.tree.write('po/en.po', catalogue('en', en))
        self.tree.write('po/de.po', catalogue('de', dict(ENTRIES_DE,
                                                         IDS_RAW_IS_NOT_SKIPPED='IMEI SV')))
        code, out = self.tree.po_check()
        self.assertEqual(code, 0, out)

    def test_text_no_font_draws_fails(self):
        self.tree.write('po/en.po', catalogue('en', ENTRIES_EN))
        self.tree.write('po/de.po', catalogue('de', dict(ENTRIES_DE,
                                                         IDS_RAW_IS_NOT_SKIPPED='Roh \U00010000')))
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertIn('po/de.po: no installed font draws \U00010000 (U+10000)', out)

    def test_no_catalogue_fails(self):
        code, out = self.tree.po_check()
        self.assertEqual(code, 1)
        self.assertIn('no message catalogue', out)


def run_tool(name, *args):
    return subprocess.run([sys.executable, os.path.join(ROOT, 'po', name)] + list(args),
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          universal_newlines=True)


class CompiledTextsTest(unittest.TestCase):
    """What the build makes of the catalogues on their way to the screen."""

    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.remove)

    def made(self, tool, *args):
        out = os.path.join(self.tree.root, 'out.po')
        run = run_tool(tool, *(list(args) + [out]))
        self.assertEqual(run.returncode, 0, run.stdout)
        return {e.msgid: e.msgstr for e in polib.pofile(out)}

    def test_lines_break_between_korean_and_thai_words_only(self):
        cases = [  # (text, as compiled)
            ('정보 보기', '정\u2060보 보\u2060기'),
            ('ข้อมูลอุปกรณ์', 'ข้อมูล\u200bอุปกรณ์'),
            ('เกี่ยวกับ Kesta', 'เกี่ยว\u200bกับ Kesta'),
            ('Über Kesta', 'Über Kesta'),
        ]
        po = catalogue('xx', {'WDS_%d' % i: text for i, (text, _) in enumerate(cases)})
        made = self.made('mark_breaks.py', self.tree.write('po/xx.po', po))
        for i, (text, compiled) in enumerate(cases):
            self.assertEqual(made['WDS_%d' % i], compiled, text)

    def test_pseudo_locales_keep_markup_and_placeholders(self):
        en = catalogue('en', {}, (
            '#, c-format\nmsgid "WDS_PS"\nmsgstr "Enter \\"%s\\" <br>now."\n\n'
            'msgid "WDS_OK"\nmsgstr "OK"\n'))
        path = self.tree.write('po/en.po', en)
        accented = self.made('pseudo_locale.py', 'en_XA', path)
        self.assertEqual(accented['WDS_OK'], '[ÖĶ one]')
        self.assertEqual(accented['WDS_PS'], '[Éñţéŕ "%s" <br>ñöŵ. one two]')
        mirrored = self.made('pseudo_locale.py', 'ar_XB', path)
        self.assertEqual(mirrored['WDS_PS'],
                         '\u200f\u202eEnter\u202c\u200f \u200f\u202e"\u202c\u200f%s'
                         '\u200f\u202e"\u202c\u200f <br>\u200f\u202enow.\u202c\u200f')


class CheckFormatsTest(unittest.TestCase):
    """The build step that refuses translations whose placeholders differ from English."""

    EN = ('#, c-format\nmsgid "WDS_PS"\nmsgstr "Connect by entering %s."\n\n'
          '#, c-format\nmsgid "WDS_P1SS_P2SS"\nmsgstr "Copy %1$s with %2$s."\n\n'
          'msgid "WDS_PLAIN"\nmsgstr "Plain"\n')

    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.remove)
        self.tree.write('po/en.po', catalogue('en', {}, self.EN))

    def german(self, ps, p1ss_p2ss, extra=''):
        return catalogue('de', {}, (
            '#, c-format\nmsgid "WDS_PS"\nmsgstr "%s"\n\n'
            '#, c-format\nmsgid "WDS_P1SS_P2SS"\nmsgstr "%s"\n\n'
            'msgid "WDS_PLAIN"\nmsgstr "Schlicht"\n' % (ps, p1ss_p2ss)) + extra)

    def test_english_and_matching_translation_pass(self):
        self.tree.write('po/de.po', self.german('Mit %s verbinden.', '%1$s mit %2$s kopieren.'))
        for lang in ('en', 'de'):
            code, out = self.tree.check_formats(lang)
            self.assertEqual(code, 0, out)

    def test_reordered_positional_arguments_pass(self):
        self.tree.write('po/de.po', self.german('Mit %s verbinden.', 'Mit %2$s %1$s kopieren.'))
        code, out = self.tree.check_formats('de')
        self.assertEqual(code, 0, out)

    def test_wrong_directive_is_refused_naming_line_and_id(self):
        self.tree.write('po/de.po', self.german('Mit %d verbinden.', '%1$s mit %2$s kopieren.'))
        code, out = self.tree.check_formats('de')
        self.assertNotEqual(code, 0)
        self.assertRegex(out, r'de\.po:\d+: WDS_PS: .*format')

    def test_missing_argument_is_refused(self):
        self.tree.write('po/de.po', self.german('Mit %s verbinden.', '%1$s kopieren.'))
        code, out = self.tree.check_formats('de')
        self.assertNotEqual(code, 0)
        self.assertIn('WDS_P1SS_P2SS', out)

    def test_translation_without_flag_is_still_checked_against_english(self):
        de = self.german('Mit %s verbinden.', '%1$s mit %2$s kopieren.').replace(
            '#, c-format\nmsgid "WDS_PS"\nmsgstr "Mit %s verbinden."',
            'msgid "WDS_PS"\nmsgstr "Mit %s und %s verbinden."')
        self.tree.write('po/de.po', de)
        code, out = self.tree.check_formats('de')
        self.assertNotEqual(code, 0)
        self.assertIn('WDS_PS', out)

    def test_invalid_english_format_is_refused(self):
        self.tree.write('po/en.po', catalogue(
            'en', {}, '#, c-format\nmsgid "WDS_BAD"\nmsgstr "100%% sure %"\n'))
        code, out = self.tree.check_formats('en')
        self.assertNotEqual(code, 0)
        self.assertIn('WDS_BAD', out)

    def test_id_without_english_text_is_refused(self):
        self.tree.write('po/de.po', self.german(
            'Mit %s verbinden.', '%1$s mit %2$s kopieren.',
            '\nmsgid "WDS_ONLY_GERMAN"\nmsgstr "Nur deutsch"\n'))
        code, out = self.tree.check_formats('de')
        self.assertNotEqual(code, 0)
        self.assertIn('WDS_ONLY_GERMAN has no English text', out)


if __name__ == '__main__':
    if len(sys.argv) < 2:
        print('usage: po_check_test.py SOURCE_ROOT [MSGFMT]', file=sys.stderr)
        sys.exit(2)
    ROOT = os.path.abspath(sys.argv[1])
    if len(sys.argv) > 2:
        MSGFMT = sys.argv[2]
    unittest.main(argv=[sys.argv[0], '-v'])
