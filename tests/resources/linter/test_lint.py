import shutil
import subprocess
import sys

import lint
from broken import FACTS, FILES, FOLDER


def test_the_folder_has_no_fault():
    assert lint.lint(FILES, FACTS) == []


def test_the_program_fails_for_a_fault_and_prints_it(tmp_path):
    shutil.copytree(FOLDER, tmp_path, dirs_exist_ok=True)
    (tmp_path / "install.cmd").unlink()
    run = subprocess.run([sys.executable, "-B", lint.__file__, tmp_path], capture_output=True, text=True, check=False)
    assert (run.returncode, run.stdout) == (1, "install.cmd: does not exist\n")
