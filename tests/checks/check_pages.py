"""Holds two pages of the documentation against the code: check_pages.py ROOT

Every function that docs/architecture.md or docs/compatibility.md names in code font, as Class::Function or as function(),
is defined in one of the driver's folders. The rows of compatibility.md are numbered in order; each names a function and,
unless it says "none", a test that exists; the code cites each of them, and no others.
Prints one line for each breach and fails if there is any.
"""
import re
import sys
from pathlib import Path

from breaches import report

FOLDERS = ("platform", "link", "render", "devices", "hmd", "driver")
PAGES = ("docs/architecture.md", "docs/compatibility.md")
FUNCTION = r"`((?!std::|vr::)(?:\w+::)+~?\w+)`|`(\w+)\(\)`"


def read_all(root, folders):
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path, path.read_text()


def definitions(text):
    """The functions that a source defines, with the classes that they stand in."""
    text = re.sub(r'//[^\n]*|"(?:\\.|[^"\\\n])*"|^\s*#(?:\\\n|[^\n])*', " ", text, flags=re.M)
    scopes = []  # the name of a class, or nothing, for each brace that is open
    for head, delimiter in re.findall(r"([^{};]*)([{};])", text):
        in_class = "".join(f"{name}::" for name in scopes if name)
        made_by_macro = re.search(r"OMBREL_RETURNS_STRUCT\([^,]+,\s*(\w+)", head)
        if made_by_macro:
            yield in_class + made_by_macro.group(1)
        if delimiter == "}":
            scopes = scopes[:-1]
        elif delimiter == "{":
            named = re.search(r"\b(?:class|struct) ([\w:]+)[^()]*$", head)
            function = re.search(r"([\w:]*\b(?!if\b|for\b|while\b|switch\b|catch\b)\w+)\s*\(", head)
            if function and not named:
                yield in_class + function.group(1)
            scopes.append(named.group(1) if named else "")


def breaches(root):
    defined = {name for _, text in read_all(root, FOLDERS) for name in definitions(text)}
    tests = {f"{suite}.{name}" for _, text in read_all(root, ["tests"])
             for suite, name in re.findall(r"^TEST(?:_F|_P)?\((\w+), (\w+)\)", text, re.M)}
    for page in PAGES:
        for member, free in re.findall(FUNCTION, (root / page).read_text()):
            if (member or free) not in defined:
                yield f"{page}: {member or free} is no function of the driver"
    rows = re.findall(r"^\| (C\d+) \|(.*)\|$", (root / PAGES[1]).read_text(), re.M)
    for number, (row, cells) in enumerate(rows, 1):
        where, held_by = cells.split(" | ")[1], cells.split(" | ")[3]
        named = re.findall(r"`(\w+\.\w+)`", held_by)
        if row != f"C{number}":
            yield f"{PAGES[1]}: {row} stands where C{number} should"
        if not re.search(FUNCTION, where):
            yield f"{PAGES[1]}: {row} names no function"
        if not named and not held_by.strip().startswith("none"):
            yield f"{PAGES[1]}: {row} names no test"
        for test in sorted(set(named) - tests):
            yield f"{PAGES[1]}: {row} names {test}, which is no test"
    cited = set()
    for path, text in read_all(root, FOLDERS):
        sentences = re.sub(r"\s*\n\s*//\s*", " ", text)
        for rows_cited in re.findall(r"compatibility\.md, (C\d+(?:(?:, | and )C\d+)*)", sentences):
            cited.update(re.findall(r"C\d+", rows_cited))
    yield from (f"{PAGES[1]}: {row} is cited and not there" for row in sorted(cited - {row for row, _ in rows}))
    yield from (f"{PAGES[1]}: {row} is not cited by the code" for row, _ in rows if row not in cited)


if __name__ == "__main__":
    sys.exit(report(breaches, "the pages are true"))
