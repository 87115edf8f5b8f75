#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Python's plistlib as another tool that reads and writes the watermark store.

  watermark_plistlib.py check-and-copy IN OUT   check every record's value types in IN,
                                                then write what plistlib read to OUT
  watermark_plistlib.py make OUT                write a store of two watermarks and a font
"""
import plistlib
import struct
import sys

STRINGS = ("textString", "filename", "filePath", "fontName")
REALS = ("xOffset", "yOffset", "fontColorRed", "fontColorGreen", "fontColorBlue",
         "fontColorAlpha", "wellColorRed", "wellColorGreen", "wellColorBlue",
         "wellColorAlpha", "xPos", "yPos")
INTEGERS = ("angle", "density", "scale", "units", "fontSize")


def check(root):
    names = root["WatermarkListEntries"]
    assert all(isinstance(n, str) for n in names), names
    for name in names:
        record = root[name]
        assert name in (record["textString"], record["filename"]), name
        for keys, kind in ((STRINGS, str), (REALS, float), (INTEGERS, int)):
            for key in keys:
                assert type(record[key]) is kind, (name, key, record[key])
        if "glyphs" in record:
            assert len(record["glyphs"]) == 2 * record["glyphCount"], record
            struct.unpack("=%dH" % record["glyphCount"], record["glyphs"])


def record(text, filename, path, x, y, angle, glyphs):
    r = {"textString": text, "filename": filename, "filePath": path, "fontName": "Helvetica"}
    r.update({key: 0.1 for key in REALS})
    r.update({"xPos": x, "yPos": y})
    r.update({key: 100 for key in INTEGERS})
    r["angle"] = angle
    r["glyphs"] = struct.pack("=%dH" % len(glyphs), *glyphs)
    r["glyphCount"] = len(glyphs)
    return r


def main():
    if sys.argv[1] == "check-and-copy":
        with open(sys.argv[2], "rb") as f:
            root = plistlib.load(f)
        check(root)
        with open(sys.argv[3], "wb") as f:
            plistlib.dump(root, f, sort_keys=False)
    elif sys.argv[1] == "make":
        root = {
            "WatermarkListEntries": ["Confidential", "seal.png"],
            "Confidential": record("Confidential", "", "", 201.5, 231.75, 45, [1, 2]),
            "seal.png": record("", "seal.png", "/home/ana/seal.png", 100.25, 50.0, -30,
                               [3, 0x1234, 0xFFFF]),
            "VN-Helvetica-VN": bytes(range(256)) * 4,
        }
        with open(sys.argv[2], "wb") as f:
            plistlib.dump(root, f)
    else:
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
