"""Plays companions through tools/try_companion.sh and looks at the verdicts. WRONG_COMPANION and COMPANION_SIM name the
programs, REPORTS the folder for reports."""
import os
import pathlib
import subprocess

import pytest

from trying import SOURCES, broken, expect_clean, play_in_time, try_companion

REPORTS = pathlib.Path(os.environ["REPORTS"])


def wrong(name, faults, *options):
    arguments = [part for fault in faults for part in ("--fault", fault)]
    return try_companion(REPORTS / name, os.environ["WRONG_COMPANION"], *options, arguments=arguments)


# Each rule with the fault that breaks it and a part of the evidence. What does not disturb each other shares a session.
SESSIONS = {
    "messages": {
        "P2": ("late-second-pipe", "after In"),
        "P3": ("short-message", "ControllerUpdate of 32 bytes, where 192 are needed"),
        "P4": ("long-message", "a header announces 65537 bytes"),
        "P5": ("stalled-message", "took"),
        "P6": ("unknown-type", "a message of type 99"),
        "P7": ("no-number", "1 numbers that are not finite"),
        "P8": ("long-rotation", "off unit length"),
        "P9": ("pause", "no pose for"),
        "P10": ("flood", "poses within a second"),
        "P11": ("position-first", "format 5"),
        "P12": ("rate-zero", "FramerateUpdate of 0"),
        "P13": ("many-controllers", "is number 64"),
        "P15": ("no-frames", "no texture was acquired"),
    },
    "textures": {
        "P16": ("wrong-key", "with key 1"),
        "P17": ("double-release", "which was not held"),
        "P18": ("unheld-read", "while it was not held"),
        "P19": ("read-twice", "nothing new in it"),
        "P20": ("long-hold", "was held for"),
        "P21": ("end-connected", "the process ended with exit code 0x00000000 while"),
    },
    "ends": {
        "P14": ("unread", "a HapticPulse was"),
        "P21": ("half-close", "In was closed, and Out stayed open"),
        "P22": ("keep-block", "still exists"),
    },
}


@pytest.mark.parametrize("name", SESSIONS)
def test_names_each_rule_that_a_companion_breaks(name):
    expected = SESSIONS[name]
    faults = [fault for fault, _ in expected.values()]
    code, verdict, output = play_in_time(lambda: wrong(name, faults, "--seconds", "5"), expected)
    assert set(broken(verdict)) == set(expected), output
    for rule, (_, evidence) in expected.items():
        assert evidence in broken(verdict)[rule]
    assert code == 1


def test_finds_nothing_against_a_companion_without_faults():
    code, verdict, output = wrong("clean", [], "--seconds", "3")
    assert code == 0, output
    assert verdict["clean"] and verdict["figures"]["framesRead"] > 5
    assert "checker: no rule was broken" in output
    assert "companion: pipes open" in output
    assert "companion: pipes open" in (REPORTS / "clean" / "companion.log").read_text()
    messages = (REPORTS / "clean" / "messages.txt").read_text()
    assert "to driver     TrackingUpdate  32 bytes  format 4" in messages
    assert "to companion  FrameSharingInfo  76 bytes" in messages


# It reads the pixels only of what it saves.
def test_finds_nothing_against_the_stand_in_companion():
    verdict = expect_clean(lambda: try_companion(
        REPORTS / "stand-in", os.environ["COMPANION_SIM"], "--mode", "virtual", "--seconds", "3", arguments=[
            "--until-disconnect", "--sharing", "own", "--out", f"Z:{REPORTS}/pictures", "--save-every", "1",
            "--save-width", "64"]))
    assert verdict["figures"]["framesRead"] > 5


def test_refuses_a_program_of_another_name(tmp_path):
    for name, reason in {"ombrel.exe": "(rule P1)", "Ombrel.exe": "there is no"}.items():
        program = tmp_path / name
        if name != "Ombrel.exe":
            program.touch()
        run = subprocess.run([SOURCES / "tools/try_companion.sh", "--built", program], capture_output=True, text=True,
                             timeout=30, check=False)
        assert run.returncode == 2
        assert reason in run.stderr
