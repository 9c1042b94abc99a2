"""How tools/performance.py judges what was measured."""
import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tools"))
import performance  # noqa: E402  (found by the line above)
from performance import BASELINE, DRIVER, Goal, Growth, Series, Verdict, is_near  # noqa: E402

LATENCY = Goal("pose latency", "pose latency", ratio=1.05, p99_ratio=1.25)


def series(*blocks):
    return Series("pose latency", "µs", [{"side": side, "values": list(values)} for side, values in blocks])


def turns(baseline, *driver):
    return series((BASELINE, [baseline] * 3), (DRIVER, driver), (BASELINE, [baseline] * 3), (DRIVER, driver))


@pytest.mark.parametrize("driver, result", [
    ((100, 100, 100), "met"), ((110, 110, 110), "**missed**"), ((100, 100, 200), "**missed**")])
def test_a_goal_is_missed_by_a_slow_median_and_by_a_late_few(driver, result):
    assert Verdict(LATENCY, turns(100, *driver)).result == result


def test_neighbours_are_compared_so_that_a_slow_while_counts_for_nobody():
    blocks = [(side, [value * slowness]) for slowness in (1, 3, 1) for side, value in ((BASELINE, 100), (DRIVER, 104))]
    assert Verdict(LATENCY, series(*blocks, (BASELINE, [100]), (DRIVER, [300]))).median_ratio() == pytest.approx(1.04)


def test_a_p99_that_a_few_values_decide_is_unclear():
    def late_once(baseline, driver, late_blocks):
        blocks = []
        for block in range(20):
            late = block < late_blocks
            blocks += [(side, [first if late else 100] + [100] * 9)
                       for side, first in ((BASELINE, baseline), (DRIVER, driver))]
        return Verdict(LATENCY, series(*blocks)).result
    assert late_once(300, 500, 3).startswith("unclear")
    assert late_once(300, 500, 20) == "**missed**"
    assert late_once(300, 310, 20) == "met"


def test_a_limit_does_not_depend_on_the_baseline():
    goal = Goal("polling", "pacing 90 processor", limit=1.0)
    assert Verdict(goal, turns(5, 1.5, 1.5, 1.5)).result == "**missed**"
    assert Verdict(goal, turns(5, 0.9, 0.9, 0.9)).result == "met"


def test_what_a_sleep_takes_is_no_polling():
    measured = series(("sleep", [1, 2, 9]), (DRIVER, [2.5, 3])).without_sleep()
    assert measured.sides() == [DRIVER] and measured.of(DRIVER) == [0.5, 1]


@pytest.mark.parametrize("driver, near", [
    ([100] * 20, True), ([100] * 3 + [9000] * 17, True), ([205] * 20, True), ([215] * 20, False), ([], False)])
def test_the_check_looks_at_the_quickest_tenth(driver, near):
    assert is_near(LATENCY, series((BASELINE, [100] * 20), (DRIVER, driver))) == near


def test_the_check_takes_a_wait_that_is_too_short_for_no_wait():
    goal = Goal("pacing error", "pacing 90", limit=0.02)
    assert is_near(goal, turns(0, 0.03, 0.03)) and not is_near(goal, turns(0, 11.1, 11.1))


def test_the_check_fails_without_figures(tmp_path, capsys):
    (tmp_path / "values.json").write_text("[]")
    assert performance.check(tmp_path / "values.json") == 1
    assert "pose latency: far from its goal, or not measured" in capsys.readouterr().out


@pytest.mark.parametrize("costs, kind", [
    ((10, 11, 12), "flat"), ((10, 20, 40), "linear"), ((10, 90, 20), "neither flat nor linear")])
def test_growth_is_told_by_the_line_through_the_medians(costs, kind):
    sizes = ("1", "2", "4")
    assert Growth(series(*((size, [cost]) for size, cost in zip(sizes, costs)))).kind() == kind


def test_the_page_gets_the_figures_between_its_marks(tmp_path):
    page = tmp_path / "page.md"
    page.write_text(f"before\n{performance.BEGIN}\nold\n{performance.END}\nbehind\n")
    performance.write_page(page, "new")
    assert page.read_text() == f"before\n{performance.BEGIN}\n\nnew\n{performance.END}\nbehind\n"
