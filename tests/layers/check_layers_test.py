#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The layer check on small source trees: which includes and mentions it reports."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import check_layers  # noqa: E402

# Headers every case can include.
HEADERS = [
    "src/platform/print/ticket.h", "src/platform/toolkit/control.h", "src/vocabulary/ppd_access.h",
    "src/model/stock.h", "src/fax/fax_options.h", "src/ui/panel_ui.h", "src/host/dialog_host.h",
    "src/panels/a/a_panel.h", "src/panels/b/b_panel.h", "apps/cli/options.h", "apps/qt/window.h",
]


class LayerCheck(unittest.TestCase):
    def check(self, path, text):
        with tempfile.TemporaryDirectory() as directory:
            root = pathlib.Path(directory)
            for header in HEADERS:
                (root / header).parent.mkdir(parents=True, exist_ok=True)
                (root / header).write_text("#pragma once\n")
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text)
            return check_layers.check(root)[1]

    def test_includes_point_down_or_stay_in_their_folder(self):
        cases = [
            # (file, its include, what the report names; None: allowed)
            ("src/vocabulary/x.cc", '"platform/print/ticket.h"', None),
            ("src/platform/print/x.cc", '"platform/toolkit/control.h"', None),
            ("src/model/x.cc", '"vocabulary/ppd_access.h"', None),
            ("src/model/x.cc", '"model/stock.h"', None),
            ("src/ui/x.cc", '"fax/fax_options.h"', None),
            ("src/panels/a/x.cc", '"panels/a/a_panel.h"', None),
            ("src/panels/a/x.cc", '"host/dialog_host.h"', None),
            ("apps/cli/x.cc", '"options.h"', None),
            ("apps/cli/x.cc", '"panels/b/b_panel.h"', None),
            ("src/platform/print/x.cc", '"vocabulary/ppd_access.h"', "above"),
            ("src/vocabulary/x.h", '"host/dialog_host.h"', "above"),
            ("src/model/x.h", '"ui/panel_ui.h"', "above"),
            ("src/fax/x.cc", '"panels/a/a_panel.h"', "above"),
            ("src/ui/x.cc", '"host/dialog_host.h"', "above"),
            ("src/host/x.cc", '"panels/a/a_panel.h"', "above"),
            ("src/model/x.cc", '"fax/fax_options.h"', "beside"),
            ("src/panels/a/x.cc", '"panels/b/b_panel.h"', "beside"),
            ("apps/cli/x.cc", '"../qt/window.h"', "beside"),
        ]
        for path, include, named in cases:
            with self.subTest(path=path, include=include):
                problems = self.check(path, f"// first line\n#include {include}\n")
                if named is None:
                    self.assertEqual(problems, [])
                else:
                    self.assertEqual(len(problems), 1, problems)
                    self.assertTrue(problems[0].startswith(path + ":2: "), problems[0])
                    self.assertIn(named, problems[0])

    def test_qt_only_in_the_qt_program(self):
        self.assertEqual(self.check("apps/qt/x.cc", "#include <QWidget>\n"), [])
        for path in ("apps/cli/x.cc", "src/ui/x.h", "src/platform/toolkit/x.cc"):
            with self.subTest(path=path):
                problems = self.check(path, "#include <vector>\n  #  include <QtCore/QString>\n")
                self.assertEqual([p.split(": ")[0] for p in problems], [path + ":2"])

    def test_the_platform_does_not_name_the_maker(self):
        for text in ('const char* id = "com.varno.print";\n', "// for Varno printers\n"):
            with self.subTest(text=text):
                self.assertEqual(len(self.check("src/platform/print/x.h", "\n" + text)), 1)
                self.assertEqual(self.check("src/vocabulary/x.h", "\n" + text), [])
        self.assertEqual(self.check("src/platform/print/x.h", "namespace varno::print {}\n"), [])

    def test_a_folder_outside_the_order_is_reported(self):
        problems = self.check("src/cups/x.cc", "#include <cups/cups.h>\n")
        self.assertEqual(len(problems), 1)
        self.assertIn("no place in the layer order", problems[0])


if __name__ == "__main__":
    unittest.main()
