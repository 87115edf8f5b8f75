#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The help book check on small source trees of its own: what it reports and what not."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import check_help_book  # noqa: E402

INFO = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>CFBundleShortVersionString</key><string>@PROJECT_VERSION@</string>
{keys}
</dict></plist>
"""
BOOK_KEYS = ("<key>CFBundleHelpBookName</key><string>Test Help</string>"
             "<key>CFBundleHelpBookFolder</key><string>Help</string>")


def page(body):
    return f'<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"></head><body>{body}</body></html>'


# A whole book: an index that reaches both pages, one page the code opens, and a
# stylesheet beside them.
WHOLE = {
    "resources/Info.plist": INFO.format(keys=BOOK_KEYS),
    "resources/en.lproj/Help/help.css": "body { margin: 0 }",
    "resources/en.lproj/Help/index.html": page(
        '<link rel="stylesheet" href="help.css"><h2 id="top">Top</h2>'
        '<a href="panel/panel.htm#choices">Panel</a> <a href="#top">up</a>'),
    "resources/en.lproj/Help/panel/panel.htm": page(
        '<link rel="stylesheet" href="../help.css"><h2 id="choices">Choices</h2>'
        '<a href="../index.html">Index</a> <a href="custom%20value.htm">Custom</a>'
        '<a href="https://example.org/x.html#nowhere">outside</a>'),
    "resources/en.lproj/Help/panel/custom value.htm": page('<a href="../index.html">Back</a>'),
    "src/ui/panel_ui.h": 'inline constexpr const char* kPage = "panel/panel.htm";\n',
}


class HelpBookCheck(unittest.TestCase):
    def problems(self, changes=None, remove=()):
        """The problems the check reports for WHOLE with `changes` written over it and the
        files `remove` left out."""
        files = dict(WHOLE)
        files.update(changes or {})
        with tempfile.TemporaryDirectory() as directory:
            root = pathlib.Path(directory)
            for path, text in files.items():
                if path in remove:
                    continue
                (root / path).parent.mkdir(parents=True, exist_ok=True)
                data = text if isinstance(text, bytes) else text.encode("utf-8")
                (root / path).write_bytes(data)
            return check_help_book.check(root)[1]

    def assertReports(self, problems, *fragments):
        self.assertEqual(len(problems), len(fragments), problems)
        for problem, fragment in zip(problems, fragments):
            self.assertIn(fragment, problem)

    def test_whole_book_passes(self):
        self.assertEqual(self.problems(), [])

    def test_pages_the_code_opens(self):
        with self.subTest("a page the code opens is missing"):
            self.assertReports(
                self.problems({"src/panels/a/a.cc": 'const char* p = "panel/gone.htm";\n'}),
                'src/panels/a/a.cc:1: the help page "panel/gone.htm"')
        with self.subTest("found through a raw string and an .html page too"):
            self.assertReports(
                self.problems({"src/host/h.cc": '\n\nauto p = R"x(other.html)x";\n'}),
                'src/host/h.cc:3: the help page "other.html"')
        with self.subTest("a page path may not climb out of the book"):
            self.assertReports(
                self.problems({"src/host/h.cc": 'auto p = "../Help/index.html";\n'}),
                'the help page "../Help/index.html"')
        with self.subTest("comments and longer strings are not pages"):
            self.assertEqual(self.problems({"src/host/h.cc": (
                '// opens "gone.htm" one day\n/* "gone.html" */\n'
                'auto s = "gone.htm is missing";\nchar q = \'"\'; auto t = "ok";\n')}), [])
        with self.subTest("only src/ counts"):
            self.assertEqual(self.problems({"tests/h_test.cc": 'auto p = "gone.htm";\n'}), [])

    def test_links_and_anchors(self):
        index = "resources/en.lproj/Help/index.html"
        with self.subTest("a link to a missing file"):
            self.assertReports(self.problems({index: page('<a href="panel/panel.htm">P</a>'
                                                          '<img src="pictures/quality.png">')}),
                               'index.html:1: "pictures/quality.png" names no file')
        with self.subTest("a missing stylesheet, from the page that names it"):
            self.assertReports(self.problems(remove={"resources/en.lproj/Help/help.css"}),
                               'index.html:1: "help.css" names no file',
                               'panel.htm:1: "../help.css" names no file')
        with self.subTest("an anchor missing from another page"):
            self.assertReports(
                self.problems({index: page('<a href="panel/panel.htm#colours">P</a>')}),
                'no id "colours" in panel/panel.htm')
        with self.subTest("an anchor missing from the same page"):
            self.assertReports(
                self.problems({index: page('<a href="panel/panel.htm">P</a><a href="#top">up</a>')}),
                'index.html:1: "#top": no id "top" in index.html')
        with self.subTest("a link out of the book, though the file is there"):
            self.assertReports(
                self.problems({index: page('<a href="panel/panel.htm">P</a>'
                                           '<a href="../Localizable.plist">T</a>'),
                               "resources/en.lproj/Localizable.plist": "<plist/>"}),
                '"../Localizable.plist" leads out of the help book')
        with self.subTest("an id given twice"):
            self.assertReports(
                self.problems({index: page('<p id="a"></p><p id="a"></p>'
                                           '<a href="panel/panel.htm#choices">P</a>')}),
                'the id "a" is used more than once')

    def test_index_and_reach(self):
        with self.subTest("no index page"):
            problems = self.problems(remove={"resources/en.lproj/Help/index.html"})
            self.assertTrue(any("no index.html" in p for p in problems), problems)
        with self.subTest("a page no link reaches"):
            self.assertReports(
                self.problems({"resources/en.lproj/Help/panel/lost.htm": page("alone")}),
                "panel/lost.htm: no link from index.html leads here")

    def test_text_is_utf8(self):
        self.assertReports(
            self.problems({"resources/en.lproj/Help/panel/custom value.htm":
                           page('<a href="../index.html">Zur\xfcck</a>').encode("latin-1")}),
            "custom value.htm: not UTF-8")

    def test_info_plist_names_the_book(self):
        with self.subTest("no folder key"):
            self.assertReports(
                self.problems({"resources/Info.plist": INFO.format(
                    keys="<key>CFBundleHelpBookName</key><string>Test Help</string>")}),
                "CFBundleHelpBookFolder names no folder")
        with self.subTest("no book name"):
            self.assertReports(
                self.problems({"resources/Info.plist": INFO.format(
                    keys="<key>CFBundleHelpBookFolder</key><string>Help</string>")}),
                "CFBundleHelpBookName names no help book")
        with self.subTest("a folder the English resources lack"):
            self.assertReports(
                self.problems({"resources/Info.plist": INFO.format(keys=BOOK_KEYS.replace(
                    "<string>Help</string>", "<string>Hilfe</string>"))}),
                'no help book folder "Hilfe"')
        with self.subTest("an unreadable Info.plist"):
            self.assertReports(self.problems({"resources/Info.plist": "<plist><dict><key>"}),
                               "resources/Info.plist: cannot be read")

    def test_every_language_folder_is_checked(self):
        self.assertReports(
            self.problems({"resources/de.lproj/Help/index.html": page('<a href="gone.htm">x</a>')}),
            'the help page "panel/panel.htm" is not in resources/de.lproj/Help',
            'de.lproj/Help/index.html:1: "gone.htm" names no file')


if __name__ == "__main__":
    unittest.main()
