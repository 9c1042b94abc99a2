"""The report's page: what a report says can be read back from it, on any screen, and nothing is fetched."""
import copy
import json
import os
from pathlib import Path

import jsonschema
import pytest
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

from browser import console_messages, open_browser, requested_addresses, set_screen
from made_up_report import REPORT

SOURCES = Path(__file__).resolve().parents[2]
TEMPLATE = Path(os.environ["REPORT_TEMPLATE"]).read_text()
PHONE, DESK = (360, 740), (1280, 800)


@pytest.fixture(scope="module", name="browser")
def one_browser():
    with open_browser() as driver:
        yield driver


@pytest.fixture(name="show")
def shows_reports(browser, tmp_path):
    """Opens the page with a report in it; in the end the console is empty and nothing else was asked for."""
    page = tmp_path / "report.html"

    def show(report=REPORT, screen=DESK, dark=False):
        page.write_text(TEMPLATE.replace("@REPORT_JSON@", json.dumps(report).replace("<", "\\u003c")))
        set_screen(browser, *screen, dark)
        browser.get(page.as_uri())
        return browser

    yield show
    assert console_messages(browser) == []
    assert set(requested_addresses(browser)) == {page.as_uri()}


def texts(parent, selector):
    return [found.text for found in parent.find_elements(By.CSS_SELECTOR, selector)]


def open_table(page, name):
    """The rows of a table that is closed at first."""
    details = next(one for one in page.find_elements(By.TAG_NAME, "details") if one.text == f"Table: {name}")
    details.find_element(By.TAG_NAME, "summary").click()
    WebDriverWait(page, 20).until(lambda _: details.find_elements(By.TAG_NAME, "table"))
    return [texts(row, "th, td") for row in details.find_elements(By.CSS_SELECTOR, "tbody tr")]


def test_the_made_up_report_follows_the_schema():
    schema = json.loads((SOURCES / "report" / "report.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    jsonschema.validate(REPORT, schema)


def test_texts_are_shown_as_they_are_and_never_as_markup(show):
    page = show()
    assert page.title == REPORT["title"]
    assert texts(page, "h1, .subtitle") == [REPORT["title"], REPORT["subtitle"]]


def test_what_is_not_good_comes_first(show):
    page = show()
    assert texts(page, "p.verdict") == ["✗ Something is wrong: 1 good, 1 bad, 1 unknown"]
    assert texts(page, "main h2") == ["Verdicts", "Facts", "Direct mode", "Figures"]
    assert texts(page, ".verdicts li .name") == ["Direct mode: Poses", "Sharing", "Frames"]
    assert texts(page, ".verdicts li.bad dd") == ["at least 420", "3.142", "The head stands still."]


def test_facts_and_tables_hold_their_values(show):
    page = show()
    assert texts(page, ".facts dd") == ["two <i>cores</i>", "–"]
    assert texts(page, "main > section:last-child td") == ["1235", "–"]


def test_a_distribution_has_its_percentiles(show):
    page = show()
    figures = page.find_element(By.CSS_SELECTOR, "figure.distribution table")
    assert texts(figures, "thead th") == ["series", "values", "smallest", "median", "p90", "p99", "largest"]
    assert texts(figures, "tbody th, tbody td") == ["poses", "101", "1", "51", "91", "100", "5000"]


def test_a_distributions_bins_hold_every_sample(show):
    page = show()
    rows = open_table(page, "Latency: bins")
    assert sum(int(count) for _, count in rows) == 101
    assert rows[0] == ["0", "9"] and rows[-1][1] == "1"
    assert "The last bin holds everything above it" in page.find_element(By.CSS_SELECTOR, "figure.distribution .range").text


def test_a_line_has_a_table_of_all_its_values(show):
    rows = open_table(show(), "Yaw")
    assert rows == [["0", "-60", ""], ["0.25", "", "-59.5"], ["1", "0", ""], ["1.25", "", "0.5"], ["2", "–", ""],
                    ["3", "60", ""]]


def test_marks_have_a_table(show):
    assert open_table(show(), "Yaw: marks") == [["1.5", "dropped"]]


def test_every_chart_is_drawn_and_has_a_name(show):
    page = show()
    names = [plot.accessible_name for plot in page.find_elements(By.CSS_SELECTOR, ".plot")]
    assert names == ["Chart: Yaw. sent: 3 values from -60 to 60 °. at the runtime: 2 values from -59.5 to 0.5 °.",
                     "Chart: distribution, Latency"]
    assert page.execute_script("return drawn.every((plot) => plot.bbox.width > 100 && plot.data[1].length > 1)")


def test_a_chart_without_values_says_so(show):
    report = copy.deepcopy(REPORT)
    report["sections"][0]["charts"][0]["series"] = [{"name": "sent", "values": []}]
    assert texts(show(report), "figure.lines .range") == ["There are no values."]


@pytest.mark.parametrize("screen", [PHONE, DESK])
@pytest.mark.parametrize("dark", [False, True])
def test_nothing_is_wider_than_the_screen(show, screen, dark):
    page = show(screen=screen, dark=dark)
    assert page.execute_script("return document.documentElement.scrollWidth") <= screen[0]


def test_colours_follow_the_scheme(show):
    page = show(dark=False)
    ground, axis = "return getComputedStyle(document.body).backgroundColor", "return drawn[0].axes[0].stroke()"
    light = page.execute_script(ground), page.execute_script(axis)
    set_screen(page, *DESK, dark=True)
    dark = page.execute_script(ground), page.execute_script(axis)
    assert light == ("rgb(255, 255, 255)", "#57606a") and dark == ("rgb(18, 22, 28)", "#a3adba")


def test_the_tab_key_reaches_everything_that_can_be_used(show):
    page = show()
    usable = page.execute_script("return document.querySelectorAll('a, button, summary, [tabindex=\"0\"]').length")
    reached = set()
    for _ in range(usable):
        page.switch_to.active_element.send_keys(Keys.TAB)
        reached.add(page.switch_to.active_element.id)
        assert page.switch_to.active_element.accessible_name
        assert page.execute_script("return getComputedStyle(document.activeElement).outlineStyle") == "solid"
    assert len(reached) == usable


def test_a_section_is_reached_by_its_link(show):
    page = show()
    page.find_element(By.LINK_TEXT, "Direct mode").send_keys(Keys.ENTER)
    assert page.switch_to.active_element.text == "Direct mode"


def test_a_chart_is_zoomed_and_a_series_hidden_by_buttons(show):
    page = show()
    range_shown = "return [drawn[0].scales.x.min, drawn[0].scales.x.max]"
    page.find_element(By.CSS_SELECTOR, "[aria-label='Zoom in']").send_keys(Keys.ENTER)
    assert page.execute_script(range_shown) == [0.75, 2.25]
    page.find_element(By.CSS_SELECTOR, "[aria-label='Later']").send_keys(Keys.ENTER)
    assert page.execute_script(range_shown) == [1.125, 2.625]
    page.find_element(By.CSS_SELECTOR, ".series button").send_keys(Keys.SPACE)
    assert page.execute_script("return drawn[0].series.map((series) => series.show)") == [True, False, True]


def test_a_template_without_a_report_says_so(browser):
    browser.get(Path(os.environ["REPORT_TEMPLATE"]).as_uri())
    assert texts(browser, ".subtitle") == ["There is no report in this file, or it cannot be read."]
    assert console_messages(browser) == []
    requested_addresses(browser)
