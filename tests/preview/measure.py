"""Measures the preview between runtime and browser, and prints a table: measure.py [FRAMES], 10,000 by default.

From a pose's sending by the page to the picture that shows it, in a headless browser, and what of it lies between the pose's
writing to the pipe and the frame's arrival; the compression, and its processor time; and the program's memory while so many
frames are shown, small ones, since here the processor draws them."""
import json
import os
import subprocess
import sys
import tempfile
import time
from contextlib import contextmanager
from pathlib import Path

from browser import open_browser, set_screen
from preview_browser import DESK, wait_until, words
from preview_host import Page
from preview_session import ENVIRONMENT, WINE, Session

IN_BROWSER = 1000
FRAME_HEADER = 16  # bytes before the JPEG
COLLECT = """
window.shown = [];
document.getElementById('picture').addEventListener('shown', ({ detail }) => detail.age === null || shown.push(detail));
"""


def percentile(values, share):
    """Nearest rank."""
    ordered = sorted(values)
    return ordered[max(0, -(-len(ordered) * share // 100) - 1)]


@contextmanager
def session_of(width, height):
    with tempfile.TemporaryDirectory() as folder:
        settings = Path(folder) / "settings.json"
        settings.write_text(json.dumps({"driver_ombrel": {"windowWidth": width, "windowHeight": height}}))
        session = Session(folder, settings)
        try:
            yield session
        finally:
            session.end()


def measure_latency(port):
    with open_browser() as browser:
        set_screen(browser, *DESK)
        browser.get(f"http://localhost:{port}/")
        wait_until(browser, lambda: words(browser) == "", "no picture", 60)
        browser.execute_script(COLLECT)
        while browser.execute_script("return shown.length") < IN_BROWSER:
            time.sleep(1)
        return browser.execute_script("return shown")


def measure_encoding(session, folder):
    """Width, height and processor milliseconds of compressing one of the session's frames, as text."""
    picture = Path(folder) / "frame.jpg"
    picture.write_bytes(Page(session.port).receive_picture()[FRAME_HEADER:])
    return subprocess.check_output([*WINE, os.environ["OMBREL_TEST_ENCODING"], picture], env=ENVIRONMENT, text=True).split()


def measure_memory(session, frames):
    """(frames so far, resident kilobytes), ten times."""
    page = Page(session.port)
    rows = []
    for count in range(1, frames + 1):
        page.acknowledge(page.receive_frame())
        if count % (frames // 10) == 0:
            rows.append((count, session.companion.resident_kilobytes()))
    return rows


def print_latency(shown):
    print(f"| {len(shown)} frames in a browser | median | p99 |\n| --- | --- | --- |")
    for name, key in (("pose sent to picture shown, ms", "age"), ("of it driver and runtime, ms", "poseToFrame"),
                      ("compression, ms", "encoding")):
        values = [frame[key] for frame in shown]
        print(f"| {name} | {percentile(values, 50):.1f} | {percentile(values, 99):.1f} |", flush=True)


def print_memory(memory):
    print("\n| frames | " + " | ".join(f"{count}" for count, _ in memory) + " |")
    print("| --- " * (len(memory) + 1) + "|")
    print("| resident memory, MB | " + " | ".join(f"{kilobytes / 1024:.1f}" for _, kilobytes in memory) + " |")


def main():
    frames = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000
    with session_of(1280, 720) as session:
        print_latency(measure_latency(session.port))
        print("\n%s x %s pixels: %s ms of processor time to compress" % tuple(measure_encoding(session, session.folder)))
    with session_of(160, 90) as session:
        print_memory(measure_memory(session, frames))


if __name__ == "__main__":
    main()
