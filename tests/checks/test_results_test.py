"""How the tests' results are counted."""
import pathlib
import subprocess

import pytest

COUNTER = pathlib.Path(__file__).parents[2] / "tools" / "test_results.py"

PASSED = '<testcase name="a_test" status="run"><system-out/></testcase>'
FAILED = '<testcase name="a_test" status="fail"><failure message=""/></testcase>'
OK_CASE = '<testcase name="B" status="run" result="completed"/>'
BAD_CASE = '<testcase name="C" status="run" result="completed"><failure message="1 is not 2"/></testcase>'


def count(folder, entries, cases=None):
    """The closing line, and whether the whole counts as passed."""
    (folder / "ctest.xml").write_text(f"<testsuite>{entries}</testsuite>")
    if cases is not None:
        (folder / "a_test.xml").write_text(cases and f"<testsuites><testsuite>{cases}</testsuite></testsuites>")
    ended = subprocess.run([COUNTER, folder], stdout=subprocess.PIPE, text=True, check=False)
    return ended.stdout.splitlines()[-1], ended.returncode == 0


@pytest.mark.parametrize("name, entries, cases, expected", [
    ("cases count one by one", PASSED, OK_CASE + OK_CASE, "2 passed, 0 failed, 0 skipped"),
    ("a failed case", FAILED, OK_CASE + BAD_CASE, "1 passed, 1 failed, 0 skipped"),
    ("a failed case and exit code 0", PASSED, OK_CASE + BAD_CASE, "1 passed, 1 failed, 0 skipped"),
    ("an error of pytest", FAILED, '<testcase name="B"><error message="no fixture"/></testcase>',
     "0 passed, 1 failed, 0 skipped"),
    ("a skipped case", PASSED, OK_CASE + '<testcase name="C"><skipped message="no display"/></testcase>',
     "1 passed, 0 failed, 1 skipped"),
    ("a disabled case", PASSED, OK_CASE + '<testcase name="C" status="notrun" result="suppressed"/>',
     "1 passed, 0 failed, 1 skipped"),
    ("a crash", FAILED, "", "0 passed, 1 failed, 0 skipped"),
    ("a crash with exit code 0", PASSED, "", "0 passed, 1 failed, 0 skipped"),
    ("a program without a case", PASSED, "<!-- none -->", "0 passed, 1 failed, 0 skipped"),
    ("a failure behind the last case", FAILED, OK_CASE, "1 passed, 1 failed, 0 skipped"),
    ("a script", PASSED, None, "1 passed, 0 failed, 0 skipped"),
    ("a script that fails", FAILED, None, "0 passed, 1 failed, 0 skipped"),
    ("one that is left out",
     '<testcase name="a_test" status="notrun"><skipped message="SKIP_RETURN_CODE=77"/></testcase>', None,
     "0 passed, 0 failed, 1 skipped"),
    ("a program that is not there",
     '<testcase name="a_test" status="notrun"><skipped message="Unable to find executable"/></testcase>', None,
     "0 passed, 1 failed, 0 skipped"),
    ("a ctest without tests", "", None, "0 passed, 1 failed, 0 skipped"),
])
def test_counts(tmp_path, name, entries, cases, expected):
    passed = ", 0 failed" in expected and not expected.startswith("0 passed")
    assert count(tmp_path, entries, cases) == (expected, passed), name


def test_a_ctest_that_ended_early_has_failed(tmp_path):
    assert count(tmp_path, "<testcase") == ("0 passed, 1 failed, 0 skipped", False)


def test_folders_add_up(tmp_path):
    count(tmp_path, PASSED, OK_CASE + OK_CASE)
    command = [COUNTER, "--skipped", "1", tmp_path, tmp_path]
    ended = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
    assert ended.stdout == "4 passed, 0 failed, 1 skipped\n"
