"""Every script of tools/ that can be started says with --help how, and does nothing else."""
import os
import pathlib
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPTS = sorted(str(path.relative_to(ROOT)) for path in ROOT.glob("tools/**/*")
                 if path.suffix in (".sh", ".py") and os.access(path, os.X_OK))
# What installs, fetches, builds or starts something.
FORBIDDEN = ("apt-get", "dpkg-query", "sudo", "npm", "cmake", "ctest", "ninja", "git", "Xvfb", "clang-format")


@pytest.fixture(name="watched_path")
def make_watched_path(tmp_path):
    """A PATH whose first folder has a tell-tale for each forbidden program, and the file that they write to."""
    calls = tmp_path / "calls"
    folder = tmp_path / "bin"
    folder.mkdir()
    for name in FORBIDDEN:
        (folder / name).write_text(f'#!/bin/sh\necho "{name} $*" >>"{calls}"\n')
        (folder / name).chmod(0o755)
    return f"{folder}:/usr/bin:/bin", calls


def test_there_are_scripts():
    assert "tools/try_companion.sh" in SCRIPTS and "tools/test.sh" in SCRIPTS


@pytest.mark.parametrize("script", SCRIPTS)
def test_prints_its_usage_and_does_nothing(script, watched_path, tmp_path):
    path, calls = watched_path
    run = subprocess.run([ROOT / script, "--help"], cwd=tmp_path, env={"PATH": path, "HOME": str(tmp_path)},
                         stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=20, check=False)
    assert run.returncode == 0, run.stderr
    assert script in run.stdout or f"usage: {pathlib.Path(script).name}" in run.stdout
    assert "set -eu" not in run.stdout, "its code"
    assert run.stderr == ""
    assert not calls.exists(), calls.read_text()


def test_help_for_another_program_is_left_to_it(watched_path, tmp_path):
    path, _ = watched_path
    run = subprocess.run([ROOT / "tools/try_companion.sh", "missing.exe", "--", "--help"], cwd=tmp_path,
                         env={"PATH": path, "HOME": str(tmp_path)}, capture_output=True, text=True, timeout=20, check=False)
    assert run.returncode == 2
    assert "there is no" in run.stderr
