#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that the plug-in bundle's help book is whole.

The bundle's Info.plist must name the book (CFBundleHelpBookName) and its folder
(CFBundleHelpBookFolder), and resources/en.lproj/<folder> must hold it; every language
folder that has the book is checked the same way. In each book:
  - index.html exists: a help request without a page opens it;
  - every page that the code under src/ opens (a string literal ending in .htm or .html)
    exists;
  - every page is UTF-8, and every relative href or src in it names a file inside the book
    (the book folder is all that is copied into the bundle); an anchor (#x, or page#x)
    must be the id of an element of the target page, and no id is used twice in a page;
  - every page can be reached by links from index.html.
Reports each problem as "path: why" and exits 1 when there is any.

usage: check_help_book.py [SOURCE_ROOT]
"""
import html.parser
import pathlib
import plistlib
import posixpath
import re
import sys
import urllib.parse
import xml.parsers.expat

PAGE_SUFFIXES = (".htm", ".html")
SOURCE_SUFFIXES = {".h", ".hh", ".hpp", ".c", ".cc", ".cpp", ".cxx", ".inc"}
INDEX = "index.html"

# The lexical parts of C and C++ that matter here: comments (skipped), raw strings,
# ordinary strings and character literals (so a quote inside one starts nothing).
TOKEN = re.compile(
    r"//[^\n]*"
    r"|/\*.*?\*/"
    r'|(?:u8|[uUL])?R"(?P<delim>[^()\\\s]{0,16})\((?P<raw>.*?)\)(?P=delim)"'
    r'|(?:u8|[uUL])?"(?P<text>(?:[^"\\\n]|\\.)*)"'
    r"|'(?:[^'\\\n]|\\.)*'",
    re.S)


def code_pages(root):
    """(page, where) for every string literal of the code under src/ that ends in a page
    suffix, where is "file:line"."""
    found = []
    for path in sorted((root / "src").rglob("*")):
        if path.suffix not in SOURCE_SUFFIXES or not path.is_file():
            continue
        text = path.read_text(encoding="utf-8", errors="replace")
        for match in TOKEN.finditer(text):
            value = match.group("raw") if match.group("raw") is not None else match.group("text")
            # A bare suffix (".htm") is code that looks at names, not a page it opens.
            if value is None or value.lower() in PAGE_SUFFIXES or not value.lower().endswith(PAGE_SUFFIXES):
                continue
            line = text.count("\n", 0, match.start()) + 1
            found.append((value, f"{path.relative_to(root)}:{line}"))
    return found


class PageParser(html.parser.HTMLParser):
    """Collects the ids of a page and the href and src values of its elements."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.ids = []
        self.links = []  # (value, line)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if value is None:
                continue
            if name == "id":
                self.ids.append(value)
            elif name in ("href", "src"):
                self.links.append((value, self.getpos()[0]))

    handle_startendtag = handle_starttag


def is_external(link):
    """True for a link that leaves the book on purpose: a scheme or an absolute path."""
    parts = urllib.parse.urlsplit(link)
    return bool(parts.scheme or parts.netloc or parts.path.startswith("/"))


def check_book(root, book):
    """Problems of the help book in folder `book`."""
    problems = []

    def rel(path):
        return path.relative_to(root).as_posix()

    pages = {}  # book-relative path -> PageParser
    for path in sorted(book.rglob("*")):
        if not path.is_file() or not path.name.lower().endswith(PAGE_SUFFIXES):
            continue
        try:
            text = path.read_text(encoding="utf-8")
        except UnicodeDecodeError as error:
            problems.append(f"{rel(path)}: not UTF-8 ({error.reason} at byte {error.start})")
            continue
        parser = PageParser()
        parser.feed(text)
        parser.close()
        seen = set()
        for anchor in parser.ids:
            if anchor in seen:
                problems.append(f"{rel(path)}: the id \"{anchor}\" is used more than once")
            seen.add(anchor)
        pages[path.relative_to(book).as_posix()] = parser

    if not (book / INDEX).is_file():
        problems.append(f"{rel(book)}: no {INDEX}, the page a request without a page opens")

    for page, where in code_pages(root):
        target = posixpath.normpath(page)
        if target.startswith("../") or not (book / target).is_file():
            problems.append(f"{where}: the help page \"{page}\" is not in {rel(book)}")

    links = {}  # page -> pages it links to
    for page, parser in pages.items():
        source = book / page
        links[page] = set()
        for link, line in parser.links:
            where = f"{rel(source)}:{line}"
            if is_external(link):
                continue
            parts = urllib.parse.urlsplit(link)
            path = urllib.parse.unquote(parts.path)
            anchor = urllib.parse.unquote(parts.fragment)
            if path:
                target = posixpath.normpath(posixpath.join(posixpath.dirname(page), path))
                if target == ".." or target.startswith("../"):
                    problems.append(f"{where}: \"{link}\" leads out of the help book")
                    continue
                if not (book / target).is_file():
                    problems.append(f"{where}: \"{link}\" names no file of the help book")
                    continue
            else:
                target = page
            if target in pages:
                links[page].add(target)
            if anchor:
                if target not in pages:
                    problems.append(f"{where}: \"{link}\" has an anchor but is no page")
                elif anchor not in pages[target].ids:
                    problems.append(f"{where}: \"{link}\": no id \"{anchor}\" in {target}")

    if INDEX in pages:
        reached, todo = {INDEX}, [INDEX]
        while todo:
            for target in links.get(todo.pop(), ()):
                if target not in reached:
                    reached.add(target)
                    todo.append(target)
        for page in sorted(set(pages) - reached):
            problems.append(f"{rel(book / page)}: no link from {INDEX} leads here")
    return problems


def check(root):
    """(books checked, problems) of the source tree at `root`."""
    root = pathlib.Path(root)
    info_path = root / "resources" / "Info.plist"
    try:
        with open(info_path, "rb") as file:
            info = plistlib.load(file)
    except (OSError, ValueError, xml.parsers.expat.ExpatError) as error:
        return [], [f"resources/Info.plist: cannot be read ({error})"]
    problems = []
    name = info.get("CFBundleHelpBookName") if isinstance(info, dict) else None
    folder = info.get("CFBundleHelpBookFolder") if isinstance(info, dict) else None
    if not isinstance(name, str) or not name:
        problems.append("resources/Info.plist: CFBundleHelpBookName names no help book")
    if (not isinstance(folder, str) or not folder.strip("/.")
            or folder.startswith("/") or ".." in folder.split("/")):
        problems.append("resources/Info.plist: CFBundleHelpBookFolder names no folder")
        return [], problems
    english = root / "resources" / "en.lproj" / folder
    if not english.is_dir():
        problems.append(f"resources/en.lproj: no help book folder \"{folder}\"")
    books = sorted(path for path in (root / "resources").glob(f"*.lproj/{folder}") if path.is_dir())
    for book in books:
        problems += check_book(root, book)
    return books, problems


def main(argv):
    root = pathlib.Path(argv[1] if len(argv) > 1 else ".")
    books, problems = check(root)
    for problem in problems:
        print(problem)
    if problems:
        print(f"{len(problems)} problem(s) in the help book", file=sys.stderr)
        return 1
    pages = sum(1 for book in books for p in book.rglob("*") if p.name.endswith(PAGE_SUFFIXES))
    print(f"help book whole: {len(books)} language folder(s), {pages} page(s)")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
