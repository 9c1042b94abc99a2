"""Copies of the driver's folder with something broken, and what the linter has to find in them."""
import copy
import functools
import json
import operator
import os
import pathlib

import pytest

from driver_sources import scan_driver
from folder import read_folder
from lint import lint

FOLDER = pathlib.Path(os.environ["OMBREL_TEST_DRIVER_FOLDER"])
FILES, FACTS = read_folder(FOLDER), scan_driver()

MANIFEST = "driver.vrdrivermanifest"
SETTINGS = "resources/settings/default.vrsettings"
ICONS = "resources/driver.vrresources"
TEXTS = "resources/localization/localization.json"
PROFILE = "resources/input/controller_profile.json"
MENUS = "resources/input/bindings_menus.json"
LEGACY = "resources/input/bindings_legacy.json"
REMAPPING = "resources/input/remapping.json"


def edit(where, change):
    """Changes a JSON file at a place, both named as in faults: "resources/input/remapping.json: layouts > 0"."""
    def apply(files, _):
        file, _, place = where.partition(": ")
        document = json.loads(files[file])
        *way, last = [int(key) if key.isdecimal() else key for key in place.split(" > ")]
        change(functools.reduce(operator.getitem, way, document), last)
        files[file] = json.dumps(document).encode()
    return apply


def put(where, value):
    return edit(where, lambda holder, key: operator.setitem(holder, key, value))


def drop(where):
    return edit(where, operator.delitem)


def add(where, value):
    """At the end of the list there."""
    return edit(where, lambda holder, key: holder[key].append(value))


def replace(file, old, new, count=1):
    def apply(files, _):
        assert old.encode() in files[file]
        files[file] = files[file].replace(old.encode(), new.encode(), count)
    return apply


def write(file, data):
    return lambda files, _: files.update({file: data})


def remove(file):
    return lambda files, _: files.pop(file)


def driver(change):
    """Changes what the driver does."""
    return lambda _, facts: change(facts)


def broken(table):
    """Parametrizes a test by rows of a name, what is changed, and the faults in the order of the rules."""
    return pytest.mark.parametrize("change, expected", table.values(), ids=table)


def check(change, expected):
    """The changed folder has these faults and no others."""
    files, facts = dict(FILES), copy.deepcopy(FACTS)
    change(files, facts)
    found = lint(files, facts)
    assert len(found) == len(expected) and all(map(operator.contains, found, expected)), "\n".join(found)
