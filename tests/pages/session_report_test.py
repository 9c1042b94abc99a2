"""What demo_report makes of the files of a session: a line of figures, and a page that shows them."""
import json
import os
import subprocess
from pathlib import Path

import jsonschema
import pytest
from selenium.webdriver.common.by import By

from browser import console_messages, open_browser, requested_addresses, set_screen
from made_up_session import write_session

SCHEMA = json.loads((Path(__file__).resolve().parents[2] / "report" / "report.schema.json").read_text())


@pytest.fixture(name="report_of")
def runs_the_program(tmp_path):
    """The report of a made-up session, with what was printed and the exit code."""
    def run(**session):
        write_session(tmp_path / "direct", **session)
        return report_on(tmp_path / "direct", tmp_path)
    return run


@pytest.fixture(scope="module", name="sound")
def a_sound_session(tmp_path_factory):
    """Its report, what was printed, the exit code, and the page's address."""
    folder = tmp_path_factory.mktemp("sound")
    write_session(folder / "direct")
    return *report_on(folder / "direct", folder), (folder / "report.html").as_uri()


def report_on(session, out):
    result = subprocess.run([os.environ["DEMO_REPORT"], "--session", "Direct mode", session, "--out", out,
                             "--template", os.environ["REPORT_TEMPLATE"], "--fact", "Driver", "made up"],
                            capture_output=True, text=True, check=False)
    report = json.loads((out / "report.json").read_text())
    jsonschema.validate(report, SCHEMA)
    return report, result.stdout, result.returncode


def chart(report, title):
    return next(one for one in report["sections"][0]["charts"] if one["title"] == title)


def results(report):
    return {one["name"]: one["result"] for one in report["verdicts"]}


def test_a_sound_session_is_good_and_summed_up_in_a_line(sound):
    report, printed, code, _ = sound
    assert (report["verdict"], set(results(report).values()), code) == ("good", {"good"}, 0)
    assert printed == ("summary: Direct mode: 10.0 poses/s, 10.0 frames/s, 10 of 10 frames received, 2 dropped, pose to "
                       "runtime median 3.00 ms p99 3.00 ms, frame to companion median 25.00 ms p99 25.00 ms\n")


def test_the_heads_turns_are_there_as_sent_at_the_runtime_and_beside_the_frame(sound):
    report, *_ = sound
    series = {one["name"]: one for one in chart(report, "Yaw")["series"]}
    assert list(series) == ["sent", "at the runtime", "beside the frame"]
    assert series["sent"]["values"] == pytest.approx([10 * number for number in range(10)], abs=0.01)
    assert [one["x_values"][1] for one in series.values()] == [0.1, 0.103, 0.145]
    assert chart(report, "Yaw")["x_range"] == [0, 1.3]
    assert chart(report, "Pitch")["series"][2]["values"] == pytest.approx([5 * number for number in range(10)], abs=0.01)


def test_drops_are_marked(sound):
    report, *_ = sound
    assert chart(report, "Frame intervals over time, with drops")["marks"] == [{"at": 0.32, "label": "2 dropped"}]
    assert chart(report, "Frame intervals at the runtime")["marks"] == [{"at": 150, "label": "dropped from here on"}]


@pytest.mark.parametrize("title, sample, count", [
    ("Frame intervals at the runtime", 100, 9), ("Frame intervals at the companion", 100, 9), ("Pose to runtime", 3, 10),
    ("Frame to companion", 25, 10), ("Pose to frame", 45, 10), ("Age of the pose that is rendered", 7, 10),
    ("Present", 2, 10)])
def test_latencies_and_intervals_are_samples(sound, title, sample, count):
    report, *_ = sound
    assert chart(report, title)["series"][0]["values"] == [sample] * count


def test_frames_without_pose_are_measured_by_time_and_that_is_said(report_of):
    report, printed, _ = report_of(pose_beside_frames=False)
    assert printed.endswith("(by time)\n")
    assert "No pose travels with these frames" in chart(report, "Frame to companion")["note"]
    assert chart(report, "Yaw")["series"][2]["name"] == "rendered with"


@pytest.mark.parametrize("fault, verdict", [
    ({"frames": 4}, "Frames received"), ({"mismatching": 1}, "Poses beside the frames"),
    ({"matching": 4}, "Poses beside the frames"), ({"namedPictures": 11}, "Pictures"), ({"haptics": 3}, "Haptic pulses"),
    ({"failures": ["a message that drivers do not send"]}, "The companion's own account")])
def test_what_is_wrong_has_a_bad_verdict(report_of, fault, verdict):
    report, _, code = report_of(companion=fault)
    assert [name for name, result in results(report).items() if result == "bad"] == [verdict]
    assert (report["verdict"], code) == ("bad", 1)


def test_a_session_that_left_no_files_is_bad(tmp_path):
    report, _, code = report_on(tmp_path / "nowhere", tmp_path)
    assert (results(report), code) == ({"Session": "bad"}, 1)
    assert report["verdicts"][0]["found"] == "cannot read runtime.json"


def test_the_page_shows_the_figures(sound):
    *_, page = sound
    with open_browser() as browser:
        set_screen(browser, 1280, 800)
        browser.get(page)
        rows = {row.find_element(By.TAG_NAME, "th").text: row.find_element(By.TAG_NAME, "td").text
                for row in browser.find_elements(By.CSS_SELECTOR, "main > section:last-child > .scroll tbody tr")}
        assert (rows["poses a second"], rows["frames received, percent"]) == ("10", "100")
        assert len(browser.find_elements(By.CSS_SELECTOR, "figure canvas")) == 10
        assert browser.find_element(By.TAG_NAME, "img").get_attribute("src") == "data:image/png;base64,iVBORw=="
        assert console_messages(browser) == []
        assert requested_addresses(browser) == [page]
