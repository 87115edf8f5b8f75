#!/usr/bin/env python3
"""Python's plistlib as an independent reader and writer for the interoperability tests.

  plistlib_peer.py roundtrip IN OUT   read IN with plistlib, write it to OUT as XML
  plistlib_peer.py make OUT           write a sample with dates, data, reals and nesting
  plistlib_peer.py compare A B        exit 0 when plistlib reads A and B as equal values
  plistlib_peer.py makebinary OUT     write the binary sample (dates in 1900 and 2100, ...)
  plistlib_peer.py tobinary IN OUT    read IN with plistlib, write it to OUT in binary form
"""
import datetime
import plistlib
import sys


def load(path):
    with open(path, "rb") as f:
        return plistlib.load(f)


def dump(value, path):
    with open(path, "wb") as f:
        plistlib.dump(value, f, fmt=plistlib.FMT_XML, sort_keys=False)


def sample():
    return {
        "Name": "Brochure – draft «2»",
        "Copies": 3,
        "Negative": -40,
        "Large": 2**40,
        "Scale": 0.875,
        "Third": 1.0 / 3.0,
        "Created": datetime.datetime(2024, 2, 29, 13, 45, 7),
        "Old": datetime.datetime(1999, 12, 31, 23, 59, 59),
        "Blob": bytes(range(256)),
        "Flags": [True, False],
        "Pages": [[1, 2], [3, [4.5, {"Deep": b"\x00"}]], []],
        "Stock": {"Size": 75, "Width": 612.0, "Notes": {"Inner": "x"}, "Empty": {}},
    }


def binary_sample():
    return {
        "Before": datetime.datetime(1900, 1, 1, 0, 0, 0),
        "After": datetime.datetime(2100, 1, 1, 12, 30, 5),
        "Last": datetime.datetime(9999, 12, 31, 23, 59, 59),
        "Text": "Grüße 日本語 Ελληνικά עברית 😀",
        "Max": 2**63 - 1,
        "Min": -2**63,
        "Minus": -1,
        "Wide": 2**32,
        "Real": -1.25e-7,
        "Empty": {"Array": [], "Dict": {}, "String": "", "Data": b""},
        "Nested": [[1, [2, {"k": b"\x00\xff"}]], True, False],
    }


def main():
    mode = sys.argv[1]
    if mode == "roundtrip":
        dump(load(sys.argv[2]), sys.argv[3])
    elif mode == "make":
        dump(sample(), sys.argv[2])
    elif mode == "makebinary":
        with open(sys.argv[2], "wb") as f:
            plistlib.dump(binary_sample(), f, fmt=plistlib.FMT_BINARY, sort_keys=False)
    elif mode == "tobinary":
        with open(sys.argv[3], "wb") as f:
            plistlib.dump(load(sys.argv[2]), f, fmt=plistlib.FMT_BINARY, sort_keys=False)
    elif mode == "compare":
        a, b = load(sys.argv[2]), load(sys.argv[3])
        if a != b:
            print("differ:\n%r\n%r" % (a, b), file=sys.stderr)
            return 1
    else:
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
