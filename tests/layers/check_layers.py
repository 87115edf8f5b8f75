#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that the code keeps to its layers.

Reports, as "file:line: why", every include under src/ and apps/ of a header from a folder
above the including file's own (or beside it, for folders of the same rank that are not
one layer), every Qt include outside apps/qt, every folder under src/ or apps/ that the
order below does not place, and every mention of the maker in src/platform. Exit status 1
when there is any.

usage: check_layers.py [SOURCE_ROOT]
"""
import pathlib
import re
import sys

# Rank of each folder, bottom up. Folders of one rank are siblings and may not include
# each other, except the platform's, which form one layer.
PLATFORM, VOCABULARY, RECORDS, UI, HOST, PANELS, APPS = range(7)
ONE_LAYER = {PLATFORM}
SOURCE_SUFFIXES = {".h", ".hh", ".hpp", ".c", ".cc", ".cpp", ".cxx", ".inc"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
QT_HEADER = re.compile(r"^Q[A-Za-z]")
MAKER = re.compile(r"com\.varno|Varno")


def folder_of(parts):
    """(rank, group) of a path below the root given as parts, or None when unplaced."""
    if len(parts) >= 2 and parts[0] == "apps":
        return APPS, "apps/" + parts[1]
    if len(parts) < 2 or parts[0] != "src":
        return None
    top = parts[1]
    if top == "platform":
        return PLATFORM, "platform"
    if top == "vocabulary":
        return VOCABULARY, top
    if top in ("model", "fax"):
        return RECORDS, top
    if top == "ui":
        return UI, top
    if top == "host":
        return HOST, top
    if top == "panels":
        # One folder per panel; a file directly in panels/ is its own group.
        return PANELS, "panels/" + parts[2] if len(parts) > 3 else "panels"
    return None


def included_parts(root, source, name):
    """Where a quoted include points, as parts below the root: beside the including file
    when such a file is there, else below src/ (the include root)."""
    beside = source.parent / name
    if beside.is_file():
        return beside.resolve().relative_to(root).parts
    return ("src",) + pathlib.PurePosixPath(name).parts


def is_allowed(source, target):
    source_rank, source_group = source
    target_rank, target_group = target
    if target_rank < source_rank:
        return True
    if target_rank > source_rank:
        return False
    return source_group == target_group or source_rank in ONE_LAYER


def check(root):
    root = root.resolve()
    problems = []
    checked = 0
    for top in ("src", "apps"):
        for path in sorted((root / top).rglob("*")):
            if not path.is_file():
                continue
            relative = path.relative_to(root)
            parts = relative.parts
            if len(parts) == 2 and path.suffix not in SOURCE_SUFFIXES:
                continue  # the build file that lists the folders
            source = folder_of(parts)
            in_platform = parts[:2] == ("src", "platform")
            if source is None:
                if path.suffix in SOURCE_SUFFIXES or path.name == "CMakeLists.txt":
                    problems.append(f"{relative}:1: {relative.parent} has no place in the layer order")
                continue
            if path.suffix not in SOURCE_SUFFIXES and not in_platform:
                continue
            checked += 1
            text = path.read_text(encoding="utf-8", errors="replace")
            for number, line in enumerate(text.splitlines(), start=1):
                if in_platform and MAKER.search(line):
                    problems.append(f"{relative}:{number}: the platform names the maker: {line.strip()}")
                if path.suffix not in SOURCE_SUFFIXES:
                    continue
                match = INCLUDE.match(line)
                if not match:
                    continue
                bracket, name = match.groups()
                if QT_HEADER.match(name) and source != (APPS, "apps/qt"):
                    problems.append(f"{relative}:{number}: Qt outside apps/qt: {name}")
                    continue
                if bracket == "<":
                    continue
                target = folder_of(included_parts(root, path, name))
                if target is not None and not is_allowed(source, target):
                    problems.append(f"{relative}:{number}: {source[1]} includes {name} from "
                                    f"{target[1]}, which is {'beside' if target[0] == source[0] else 'above'} it")
    return checked, problems


def main(argv):
    root = pathlib.Path(argv[1]) if len(argv) > 1 else pathlib.Path(__file__).resolve().parents[2]
    checked, problems = check(root)
    for problem in problems:
        print(problem)
    print(f"{checked} files checked, {len(problems)} layer problem(s)")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
