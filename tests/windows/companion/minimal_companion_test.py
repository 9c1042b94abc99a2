"""The companion that makers copy, as it is: tried with the driver, and started beside itself."""
import os
import shutil
import struct
import subprocess
import time

import pytest

from trying import SOURCES, expect_clean, try_companion

WINE = [SOURCES / "tools/wine.sh", "--prefix", os.environ["OMBREL_TEST_PREFIX"]]
WIDTH, HEIGHT = 1280, 720  # of tools/demo/direct.json
HEADERS = 54
WAIT_S = 60


@pytest.fixture(name="program")
def one_in_a_folder_of_its_own(tmp_path):
    """It saves its pictures where it is started."""
    return shutil.copy(os.environ["OMBREL_TEST_MINIMAL"], tmp_path)


def pixels_of(path):
    content = path.read_bytes()
    assert content[:2] == b"BM" and len(content) == HEADERS + 4 * WIDTH * HEIGHT
    assert struct.unpack("<ii", content[18:26]) == (WIDTH, -HEIGHT), "rows from the top"
    return content[HEADERS:]


def test_turns_the_head_and_saves_three_pictures_and_the_checker_finds_nothing_against_it(program, tmp_path):
    verdict = expect_clean(lambda: try_companion(tmp_path / "report", program, "--seconds", "25"))
    assert verdict["figures"]["controllers"] == 1
    pictures = [pixels_of(tmp_path / f"picture{number}.bmp") for number in (1, 2, 3)]
    assert len(set(pictures)) == 3
    assert all(picture != picture[:4] * (WIDTH * HEIGHT) for picture in pictures), "more than one colour"


def test_says_that_another_one_is_running(program, tmp_path):
    output = tmp_path / "first.txt"
    with open(output, "w", encoding="utf-8") as stream:
        with subprocess.Popen([*WINE, program], stdout=stream, stderr=stream) as first:
            deadline = time.monotonic() + WAIT_S
            while "waiting" not in output.read_text():
                assert time.monotonic() < deadline
                time.sleep(0.05)
            second = subprocess.run([*WINE, program], capture_output=True, text=True, timeout=WAIT_S, check=False)
            first.kill()
    assert second.returncode == 1
    assert "another companion" in second.stdout + second.stderr
