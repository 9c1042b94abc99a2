"""Finds what is wrong with a driver's folder, by itself and against what the driver does.

lint.py FOLDER: prints a line "file: place: reason" for each fault, and fails if there is any. What may stand in a file
is written in schemas/; the rules take several files, a picture or the driver's sources, and are asked only when every
file keeps to its schema.
"""
import pathlib
import sys

import check_bindings
import check_files
import check_remapping
from driver_sources import scan_driver
from folder import Folder, read_folder


def lint(files, facts):
    """The faults of files by their names, for a driver that does what its facts say."""
    folder = Folder(files, facts)
    rules = check_files.RULES + check_bindings.RULES + check_remapping.RULES
    return folder.faults or [found for rule in rules for found in rule(folder)]


if __name__ == "__main__":
    faults = lint(read_folder(pathlib.Path(sys.argv[1])), scan_driver())
    print("\n".join(faults))
    sys.exit(bool(faults))
