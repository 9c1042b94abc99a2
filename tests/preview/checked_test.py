"""The program as it is shipped, tried as any companion is: no rule of docs/protocol.md is broken while pages are open."""
import json
import os
import subprocess
import threading

from preview_host import Page
from trying import SOURCES, expect_clean

HAND = {"type": "controller", "id": 1, "pressed": [], "touched": [], "trackpad": [0, 0], "trigger": 0}


def look_around(port):
    """Until the companion goes: a head that turns with each frame, and a hand that pulls and lets go."""
    headset, hands = Page(port), Page(port, "/hands")
    headset.send({"type": "rate", "framesPerSecond": 60})
    try:
        for number in range(1, 100_000):
            headset.acknowledge(headset.receive_frame())
            headset.send({"type": "head", "number": number, "orientation": [0, 0, 0, 1] if number % 2 else [0, 0.6, 0, 0.8]})
            hands.send({**HAND, "trigger": number % 2, "pressed": ["trigger"] if number % 2 else []})
    except OSError:
        pass


def play(report):
    """The exit code, the verdict and what was printed."""
    session = subprocess.Popen(
        [SOURCES / "tools/try_companion.sh", "--built", "--seconds", "8", "--report", report,
         os.environ["OMBREL_TEST_PREVIEW"], "--", "--port", "0"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    output = ""
    for line in session.stdout:
        output += line
        if "http://localhost:" in line:
            port = int(line.split("localhost:")[1].split("/")[0])
            threading.Thread(target=look_around, args=[port], daemon=True).start()
    return session.wait(120), json.loads((report / "check.json").read_text()), output


def test_the_checker_finds_nothing_against_the_preview(tmp_path):
    expect_clean(lambda: play(tmp_path))
