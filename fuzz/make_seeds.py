#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes each fuzz target's seed corpus: files of resources/ and tests/data/, and small
inputs made here (binary forms, job-option text, a store, preferences, a session).
Usage: make_seeds.py SOURCE_DIR OUT_DIR   (OUT_DIR/<target>/ per target)"""
import base64, os, plistlib, shutil, struct, sys

src, out = sys.argv[1], sys.argv[2]

def path(*parts):
    return os.path.join(src, *parts)

def put(target, name, data):
    folder = os.path.join(out, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data if isinstance(data, bytes) else data.encode())

def copy(target, *files):
    for f in files:
        with open(f, "rb") as i:
            put(target, os.path.basename(f), i.read())

def read_plist(f):
    with open(f, "rb") as i:
        return plistlib.load(i)

ticket = path("tests", "data", "print", "sample-ticket.plist")
interfaces = [path("resources", "interfaces", n) for n in sorted(os.listdir(path("resources", "interfaces")))]
ppds = [path("resources", "ppd", "Varno-AT120A.ppd")] + \
       [path("tests", "data", "ppd", n) for n in sorted(os.listdir(path("tests", "data", "ppd")))]
binary_ticket = plistlib.dumps(read_plist(ticket), fmt=plistlib.FMT_BINARY)

copy("plist_fuzzer", ticket, path("resources", "Info.plist"), path("resources", "en.lproj", "LANFax.plist"))
put("plist_fuzzer", "sample-ticket.bplist", binary_ticket)
put("plist_fuzzer", "kinds.bplist", plistlib.dumps(
    {"s": "Zoë", "i": -5, "big": 2**62, "r": 1.5, "b": True, "d": b"\x00\x01",
     "a": [1, [2.25, "x"]]}, fmt=plistlib.FMT_BINARY))

for target in ("ticket_fuzzer", "job_options_roundtrip_fuzzer", "dialog_fuzzer"):
    copy(target, ticket)
    put(target, "sample-ticket.bplist", binary_ticket)

session = {"Printer": {"PPD": path("resources", "ppd", "Varno-AT120A.ppd")},
           "DataItems": {"PMPrintSettingsTicket": read_plist(ticket),
                         "PMPageFormatTicket": {"Items": {}},
                         "PMPrinterInfoTicket": {"Items": {}}}}
put("session_fuzzer", "sample.session", plistlib.dumps(session))
put("session_fuzzer", "queue.session", plistlib.dumps(
    {"Printer": {"Queue": "office", "Server": "localhost:631"}, "DataItems": {}}))

# Job options as a filter sees them: PPD choices, standard options and ticket entries
# carried as base64 binary property lists, one of them quoted.
def entry(value):
    return base64.b64encode(plistlib.dumps(value, fmt=plistlib.FMT_BINARY)).decode()
put("job_options_decode_fuzzer", "options.txt",
    "VNOColor=Color Duplex=DuplexNoTumble job-sheets=none com.varno.print.Copies=%s "
    "'com.varno.print.User=%s' com.varno.print.Note=\"%s\"" % (entry(3), entry("Zoë"), entry({"a": [1.5]})))
put("job_options_decode_fuzzer", "escapes.txt", "a\\ b=c\\\"d com.varno.x={%s}" % entry(True))

copy("interface_file_fuzzer", *interfaces, path("tests", "data", "toolkit", "Every_Kind.interface.plist"))

store = {"WatermarkListEntries": ["Draft", "Logo"],
         "Draft": {"textString": "Draft", "fontName": "ArialMT", "xOffset": 280.5, "yOffset": 311.0,
                   "angle": 45, "density": 50, "scale": 100, "units": 0, "fontSize": 48,
                   "fontColorRed": 0.5, "fontColorAlpha": 1.0},
         "Logo": {"filename": "logo.png", "filePath": "/tmp/logo.png", "xPos": 10, "yPos": 20, "scale": 80},
         "VN-Helvetica-VN": b"\x00\x01\x02"}
put("store_fuzzer", "store.plist", plistlib.dumps(store))

put("user_preferences_fuzzer", "preferences.plist", plistlib.dumps(
    {"LastUser": "Zoë", "Copies": 2, "Recent": ["a", "b"], "Scale": 0.75, "On": True}))
put("user_preferences_fuzzer", "preferences.bplist", plistlib.dumps({"k": [1, 2]}, fmt=plistlib.FMT_BINARY))

# Panel numbers: int64, double, decimals, min, max, allowed characters, pasted text.
for name, text in [("list", "1,3-5"), ("open-start", "-3"), ("open-end", "7-"), ("blanks", "2 4"),
                   ("backwards", "5-3"), ("two-dashes", "1--2"), ("too-long", "100000"), ("zero", "0-3")]:
    put("page_ranges_fuzzer", name, text)
put("panel_numbers_fuzzer", "digits", struct.pack("<q", 999999999999999) + struct.pack("<d", 12.345) +
    b"\x02\x00\x04" + b"\x0a0123456789" + b"12a4")
put("panel_numbers_fuzzer", "negative", struct.pack("<q", -2**63) + struct.pack("<d", -0.5) + b"\x00\x03\x10" +
    "\x04üé".encode() + "üéx".encode())

copy("ppd_fuzzer", *ppds)
