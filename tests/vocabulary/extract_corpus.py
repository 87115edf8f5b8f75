#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes every PPD of a pyppd-built CUPS driver program (such as Debian's postscript-hp)
below a folder, as <folder>/<path of the PPD in the driver's URIs>.

The program's own "cat URI" decompresses its whole archive for each PPD, about a second
apiece; this loads the program as a module, asks it for its index and decompresses the
archive once.

usage: extract_corpus.py DRIVER FOLDER
"""
import base64
import importlib.machinery
import importlib.util
import lzma
import os
import sys


def main(driver, folder):
    loader = importlib.machinery.SourceFileLoader("corpus_driver", driver)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("corpus_driver", loader))
    loader.exec_module(module)
    index = module.load()
    archive = lzma.decompress(base64.b64decode(index.pop("ARCHIVE")))
    for key, (start, length, _) in index.items():
        # Keys are "0/<path>"; the URIs use other indexes for the same file.
        path = os.path.join(folder, key.split("/", 1)[1])
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as out:
            out.write(archive[start:start + length])
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2]))
