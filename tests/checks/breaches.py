"""What the checks of the tree have in common."""
import sys
from pathlib import Path


def report(breaches, when_none):
    """Prints one line for each breach in the tree that the command line names; the exit code."""
    found = list(breaches(Path(sys.argv[1])))
    print("\n".join(found) if found else when_none)
    return 1 if found else 0
