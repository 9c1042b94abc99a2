#!/usr/bin/python3
"""Counts the tests of build/PRESET/test-results/, folder by folder, and prints the sum as the last line.

ctest.xml there is ctest's own JUnit file. A test beside whose name there is a file NAME.xml has cases of its own, which
count one by one: GoogleTest and pytest write them there at their end. An empty file, or one without cases, is a failure
whatever the exit code was: a program that crashed under Wine may end with code 0.
"""
import argparse
import collections
import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def cases_of(file):
    try:
        return list(ElementTree.parse(file).iter("testcase"))
    except (FileNotFoundError, ElementTree.ParseError):
        return []


def outcome(case):
    if case.find("failure") is not None or case.find("error") is not None:
        return "failed"
    is_skipped = case.find("skipped") is not None or case.get("status") in ("disabled", "notrun")
    return "skipped" if is_skipped else "passed"


def outcome_of_entry(entry):
    """ctest writes a program that it did not find as skipped, too."""
    skipped = entry.find("skipped")
    if skipped is not None and not skipped.get("message", "").startswith("SKIP_"):
        return "failed"
    return outcome(entry)


def outcomes_of(entry, folder):
    whole = outcome_of_entry(entry)
    file = folder / (entry.get("name") + ".xml")
    if whole == "skipped" or not file.exists():
        return [whole]
    outcomes = [outcome(case) for case in cases_of(file)]
    if not outcomes or whole == "failed" and "failed" not in outcomes:
        outcomes.append("failed")
    return outcomes


def count(folder):
    counts = collections.Counter()
    for entry in cases_of(folder / "ctest.xml"):
        outcomes = outcomes_of(entry, folder)
        counts.update(outcomes)
        if "failed" in outcomes:
            print(f"FAILED: {entry.get('name')}, in {folder}")
        # The scenarios name the checks that they leave out, and why.
        for line in entry.findtext("system-out", "").splitlines():
            if line.startswith("  skipped: "):
                print(line)
    if not counts:
        print(f"FAILED: no tests have run in {folder}")
        counts["failed"] = 1
    return counts


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--skipped", type=int, default=0, help="how many were left out before")
    parser.add_argument("folders", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    counts = collections.Counter(skipped=options.skipped)
    for folder in options.folders:
        counts += count(folder)
    print(f"{counts['passed']} passed, {counts['failed']} failed, {counts['skipped']} skipped")
    return 0 if counts["passed"] and not counts["failed"] else 1


if __name__ == "__main__":
    sys.exit(main())
