"""The program as it is shipped, tried as any companion is: no rule of docs/protocol.md is broken while pages are open."""
import json
import os
import subprocess
import threading
from pathlib import Path

from preview_host import Page

SOURCES = Path(__file__).resolve().parents[2]
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


def test_the_checker_finds_nothing_against_the_preview(tmp_path):
    session = subprocess.Popen(
        [SOURCES / "tools/try_companion.sh", "--built", "--seconds", "8", "--report", tmp_path,
         os.environ["OMBREL_TEST_PREVIEW"], "--", "--port", "0"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    output = ""
    for line in session.stdout:
        output += line
        if "http://localhost:" in line:
            port = int(line.split("localhost:")[1].split("/")[0])
            threading.Thread(target=look_around, args=[port], daemon=True).start()
    assert session.wait(120) == 0, output
    assert json.loads((tmp_path / "check.json").read_text())["violations"] == []
