"""Holds CMake's link lists against what the driver's folders include: check_map.py ROOT

A folder links exactly the folders whose headers it includes (and the driver interface), publicly what its public headers
include, privately what only its sources do. It comes after all of them in the order of the root CMakeLists.txt.
Prints one line for each breach and fails if there is any.
"""
import re
import sys
from pathlib import Path

from breaches import report

OPENVR = "ombrel_openvr"


def read_cmake(path):
    return re.sub(r"#.*", "", path.read_text())


class Folder:
    """A folder of the driver, as its CMakeLists.txt and its sources describe it."""

    def __init__(self, root, name, others):
        self.name = name
        self.prefix = Path(name).name
        self.root = root
        cmake = read_cmake(root / name / "CMakeLists.txt")
        self.targets = set(re.findall(r"add_library\((\w+)", cmake))
        self.links = {"PUBLIC": set(), "PRIVATE": set()}
        for body in re.findall(r"ombrel_add_library\(([^)]*)\)", cmake):
            self.add_links(body, {"DEPENDS": "PUBLIC", "PRIVATE_DEPENDS": "PRIVATE", "SOURCES": None})
        for body in re.findall(r"target_link_libraries\(([^)]*)\)", cmake):
            self.add_links(body, {"PUBLIC": "PUBLIC", "PRIVATE": "PRIVATE"})
        self.includes = {}  # by prefix: the kind of link that they ask for, and a file that does
        inner = [root / other for other in others if other.startswith(name + "/")]
        for file in sorted(path for path in (root / name).rglob("*") if path.suffix in (".h", ".cpp")):
            if not any(file.is_relative_to(folder) for folder in inner):
                self.add_includes(file)

    def add_links(self, body, keywords):
        kind = None
        for word in body.split():
            if word in keywords:
                kind = keywords[word]
            elif kind:
                self.links[kind].add(word)

    def add_includes(self, file):
        has_public_headers_apart = (self.root / self.name / "include").exists()
        is_public = file.suffix == ".h" and (not has_public_headers_apart or "include" in file.parts)
        text = file.read_text()
        prefixes = re.findall(r'^\s*#\s*include\s*"(\w+)/', text, re.M)
        if re.search(r"^\s*#\s*include\s*<openvr_driver.h>", text, re.M):
            prefixes.append(OPENVR)
        for prefix in prefixes:
            if prefix != self.prefix and (is_public or prefix not in self.includes):
                self.includes[prefix] = ("PUBLIC" if is_public else "PRIVATE", file.relative_to(self.root))


def breaches(root):
    names = re.search(r"foreach\(folder ([^)]*)\)", read_cmake(root / "CMakeLists.txt")).group(1).split()
    folders = [Folder(root, name, names) for name in names]
    prefix_of = {OPENVR: OPENVR} | {target: folder.prefix for folder in folders for target in folder.targets}
    known = {OPENVR}
    for folder in folders:
        known.add(folder.prefix)
        linked = {prefix_of[target]: kind for kind in ("PRIVATE", "PUBLIC") for target in folder.links[kind]
                  if target in prefix_of and target not in folder.targets}
        for prefix, kind in sorted(linked.items()):
            if prefix not in known:
                yield f"{folder.name} links {prefix}, which comes after it"
            if prefix not in folder.includes:
                yield f"{folder.name} links {prefix} and includes nothing of it"
        for prefix, (kind, file) in sorted(folder.includes.items()):
            if linked.get(prefix, "nothing") != kind:
                yield f"{file}: includes {prefix}, which {folder.name} does not link as {kind}"


if __name__ == "__main__":
    sys.exit(report(breaches, "the map is true"))
