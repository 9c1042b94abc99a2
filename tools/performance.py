#!/usr/bin/python3
"""Judges and shows what driver_speed measured.

tools/performance.py --check FILE   fails when the driver is far from a goal; no busy machine alone makes it
tools/performance.py FOLDER         reads FOLDER/speed.json and FOLDER/machine.md, writes FOLDER/report.md and plots
    --page PAGE                     puts the same into PAGE, and the plots into the folder of its name beside it
"""
import argparse
import bisect
import dataclasses
import json
import math
import pathlib
import random
import statistics
import sys

BASELINE, DRIVER = "baseline", "driver"
RATES = (60, 72, 90, 120, 144)


def percentile(values, share):
    """The smallest value that `share` of the values do not exceed."""
    return sorted(values)[max(math.ceil(share * len(values)), 1) - 1] if values else math.nan


@dataclasses.dataclass
class Series:
    """One measurement: blocks of values, each of one side: baseline, driver, or a size or format of the driver's."""
    name: str
    unit: str
    blocks: list

    def sides(self):
        return list(dict.fromkeys(block["side"] for block in self.blocks))

    def blocks_of(self, side):
        return [block["values"] for block in self.blocks if block["side"] == side]

    def of(self, side):
        return [value for values in self.blocks_of(side) for value in values]

    def without_sleep(self):
        """What a sleep alone takes is no polling: its median goes off all other values."""
        if "sleep" not in self.sides():
            return self
        sleep = statistics.median(self.of("sleep"))
        return Series(self.name, self.unit, [
            {"side": block["side"], "values": [value - sleep for value in block["values"]]}
            for block in self.blocks if block["side"] != "sleep"])


def read(file):
    return {each["name"]: Series(**each).without_sleep() for each in json.loads(file.read_text())}


@dataclasses.dataclass
class Goal:
    """What the driver is held to. A ratio is the driver's figure through the baseline's."""
    what: str
    series: str
    side: str = DRIVER
    ratio: float = 0       # of medians, at most
    p99_ratio: float = 0   # likewise
    limit: float = 0       # of the median, in the series' unit
    check_share: float = 0.1  # of the values, the quickest, that the check looks at; 0: a busy machine can miss it

    def text(self, unit):
        parts = [f"≤ {self.ratio:.2f}" if self.ratio else "", f"≤ {self.limit:g} {unit}" if self.limit else "",
                 f"p99 ≤ {self.p99_ratio:.2f}" if self.p99_ratio else ""]
        return ", ".join(part for part in parts if part)


def goals():
    for what in ("pose latency", "controller latency"):
        yield Goal(what, what, ratio=1.05, p99_ratio=1.25)
    yield Goal("direct-mode frame, 1 layer", "frame of 1 layer", ratio=1.05)
    yield Goal("direct-mode frame, 4 layers", "frame of 4 layers", ratio=1.05)
    yield Goal("virtual-display frame", "virtual-display frame", ratio=1.05)
    for rate in RATES:
        yield Goal(f"pacing error at {rate}/s", f"pacing {rate}", p99_ratio=1.0, limit=0.02)
        yield Goal(f"polled in a pacing wait at {rate}/s", f"pacing {rate} processor", limit=1.0,
                   check_share=0.9)  # a busy machine can only shorten it
    for name in ("0 rotation matrix", "1 republish", "2 sensors", "3 Euler angles", "4 quaternion", "5 position",
                 "6 pose matrix", "50 recenter", "254 tracking state"):
        yield Goal(f"head pose, format {name}", "decoding", side=name, limit=1000)
    yield Goal("start", "start", limit=10, check_share=0)


def block_ratios(series, side):
    """Of neighbouring blocks' medians: a machine that is slower for a while is so for both."""
    pairs = zip(series.blocks_of(BASELINE), series.blocks_of(side))
    return [statistics.median(driver) / statistics.median(baseline) for baseline, driver in pairs]


def least_p99_ratio(series, side):
    """What 19 of 20 runs like this one would exceed, by the bootstrap: a p99 rests on a few values."""
    chance = random.Random(1)

    def drawn_p99(blocks):
        return percentile([value for values in chance.choices(blocks, k=len(blocks)) for value in values], 0.99)

    baselines, drivers = series.blocks_of(BASELINE), series.blocks_of(side)
    return percentile([drawn_p99(drivers) / drawn_p99(baselines) for _ in range(200)], 0.05)


class Verdict:
    def __init__(self, goal, series):
        self.goal, self.unit = goal, series.unit
        self.baseline, self.driver = series.of(BASELINE), series.of(goal.side)
        self.ratios = block_ratios(series, goal.side) if goal.ratio else []
        is_met = bool(self.driver)
        if goal.ratio:
            is_met &= self.median_ratio() <= goal.ratio
        if goal.limit:
            is_met &= percentile(self.driver, 0.5) <= goal.limit
        self.result = "met" if is_met else "**missed**"
        if is_met and goal.p99_ratio and not self.p99_ratio() <= goal.p99_ratio:
            least = least_p99_ratio(series, goal.side)
            self.result = f"unclear: p99 from {least:.2f}" if least <= goal.p99_ratio else "**missed**"

    def median_ratio(self):
        return percentile(self.ratios, 0.5)

    def p99_ratio(self):
        return percentile(self.driver, 0.99) / percentile(self.baseline, 0.99)


def is_near(goal, series):
    """Whether the quickest tenth is within twice the goal: what a busy machine does to some values it does not do to
    nine of ten, nor to one side alone. NaN, where there are no values, is near nothing."""
    slack = 2.0
    driver, baseline = (percentile(series.of(side), goal.check_share) for side in (goal.side, BASELINE))
    near = not goal.ratio or driver <= slack * goal.ratio * baseline
    return near and (not goal.limit or abs(driver) <= slack * goal.limit)


def check(file):
    measured = read(file)
    far = [goal.what for goal in goals()
           if goal.check_share and not (goal.series in measured and is_near(goal, measured[goal.series]))]
    for what in far:
        print(f"{what}: far from its goal, or not measured")
    return 1 if far else 0


def number(value):
    """Three digits that count."""
    if not math.isfinite(value):
        return "–"
    digits = 2 - math.floor(math.log10(abs(value))) if value else 0
    return f"{value:.{min(max(digits, 0), 4)}f}"


def times(ratio):
    return f"{ratio:.2f}" if math.isfinite(ratio) else "–"


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + " --- |" * len(header)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows]) + "\n"


def baseline_rows(verdicts):
    for each in verdicts:
        low, high = percentile(each.ratios, 0.25), percentile(each.ratios, 0.75)
        yield (f"{each.goal.what}, {each.unit}", number(percentile(each.baseline, 0.5)),
               number(percentile(each.driver, 0.5)), times(each.median_ratio()),
               f"{low:.2f} – {high:.2f}" if each.ratios else "–",
               number(percentile(each.baseline, 0.99)), number(percentile(each.driver, 0.99)), times(each.p99_ratio()),
               each.goal.text(each.unit), each.result)


def alone_rows(verdicts):
    for each in verdicts:
        yield (f"{each.goal.what}, {each.unit}", number(percentile(each.driver, 0.5)),
               number(percentile(each.driver, 0.99)), each.goal.text(each.unit), each.result)


class Growth:
    """What something costs against its size: medians, and the line through them."""

    def __init__(self, series):
        self.name, self.unit = series.name, series.unit
        self.sizes = [int(side) for side in series.sides()]
        self.costs = [statistics.median(series.of(side)) for side in series.sides()]
        self.slope, self.intercept = statistics.linear_regression(self.sizes, self.costs)
        self.fit = statistics.correlation(self.sizes, self.costs) ** 2

    def kind(self):
        if self.costs[-1] < 1.5 * self.costs[0]:
            return "flat"
        return "linear" if self.fit > 0.97 else "neither flat nor linear"

    def text(self):
        header = [self.name, *map(str, self.sizes)]
        line = f"the line: {number(self.slope)} for each, fit {self.fit:.2f}"
        return (f"**Cost against {self.name}**, in {self.unit}: {self.kind()} ({line})\n\n"
                + table(header, [["median", *map(number, self.costs)]]))


SCALES = ("layers", "registered textures", "controllers")
PLOTS = ("pose_latency", "pacing", "frames", "scale")


def report(measured, machine, plots):
    verdicts = [Verdict(goal, measured[goal.series]) for goal in goals() if goal.series in measured]
    beside = [each for each in verdicts if each.baseline]
    alone = [each for each in verdicts if not each.baseline]
    images = {name: f"![{name.replace('_', ' ')}]({plots}/{name}.png)\n" for name in PLOTS}
    sections = [
        machine, "## Beside the baseline\n",
        table(("what", "baseline, median", "driver, median", "ratio", "middle half", "baseline, p99", "driver, p99",
               "ratio", "goal", ""), baseline_rows(beside)),
        images["pose_latency"], images["pacing"], images["frames"],
        "## By itself\n", table(("what", "median", "p99", "goal", ""), alone_rows(alone)),
        "## Scale\n", *(Growth(measured[name]).text() for name in SCALES if name in measured), images["scale"]]
    return "\n".join(sections)


class Plotter:
    """Draws with matplotlib, which only this needs."""
    COLOURS = {BASELINE: "#8a8a8a", DRIVER: "#0b5fa5"}

    def __init__(self, measured, folder):
        import matplotlib
        matplotlib.use("agg")
        from matplotlib import pyplot
        pyplot.rcParams.update({"font.size": 9, "figure.dpi": 120,
                                "axes.grid": True, "grid.color": "#dddddd", "axes.axisbelow": True,
                                "axes.spines.top": False, "axes.spines.right": False})
        self.pyplot, self.measured, self.folder = pyplot, measured, folder
        folder.mkdir(parents=True, exist_ok=True)

    def figure(self, columns=1):
        return self.pyplot.subplots(1, columns, figsize=(7.2, 3.2), layout="constrained")

    def save(self, figure, name):
        figure.savefig(self.folder / f"{name}.png", metadata={"Software": None})
        self.pyplot.close(figure)

    def pose_latency(self):
        """The share of poses that have arrived after a time."""
        series = self.measured["pose latency"]
        figure, axes = self.figure()
        latest = 2.5 * percentile(series.of(BASELINE), 0.5)  # the few beyond are the tables'
        for side in (BASELINE, DRIVER):
            values = sorted(series.of(side))
            times = [latest * step / 240 for step in range(241)]
            shares = [100 * bisect.bisect_right(values, time) / len(values) for time in times]
            axes.plot(times, shares, color=self.COLOURS[side], label=side)
        axes.set(xlabel="time from the companion's write to the runtime's call, µs",
                 ylabel="poses that have arrived, %", xlim=(0, latest), ylim=(0, 101), title="Pose latency")
        axes.legend(loc="lower right", frameon=False)
        self.save(figure, "pose_latency")

    def pacing(self):
        figure, (errors, polled) = self.figure(2)
        for offset, side in ((-0.15, BASELINE), (0.15, DRIVER)):
            places = [place + offset for place in range(len(RATES))]
            late = [[1000 * value for value in self.measured[f"pacing {rate}"].of(side)] for rate in RATES]
            self.spans(errors, places, late, side, (0.5, 0.99))
            times = [self.measured[f"pacing {rate} processor"].of(side) for rate in RATES]
            polled.bar(places, [percentile(each, 0.5) for each in times], 0.26, color=self.COLOURS[side], label=side)
        errors.set(yscale="log", ylabel="µs", title="How far a wait's end is off, median to p99")
        polled.axhline(1, color="#b03030", linewidth=1, linestyle="--", label="goal")
        polled.set(ylabel="ms of processor time", title="Polled in a wait, median")
        for axes in (errors, polled):
            axes.set_xticks(range(len(RATES)), RATES)
            axes.set_xlabel("frames per second")
        polled.legend(frameon=False, ncols=3, loc="upper center", bbox_to_anchor=(0.5, -0.18), fontsize=8)
        self.save(figure, "pacing")

    def spans(self, axes, places, groups, side, shares):
        for place, values in zip(places, groups):
            low, high = (max(percentile(values, share), 0.05) for share in shares)
            axes.plot([place, place], [low, high], color=self.COLOURS[side], linewidth=3, solid_capstyle="butt")
            axes.plot([place], [low], "o", color=self.COLOURS[side], markersize=5)

    def frames(self):
        names = ("frame of 1 layer", "frame of 4 layers", "virtual-display frame")
        figure, axes = self.figure()
        for offset, side in ((0.18, BASELINE), (-0.18, DRIVER)):
            boxes = axes.boxplot([self.measured[name].of(side) for name in names], whis=(1, 99), showfliers=False,
                                 vert=False, widths=0.28, patch_artist=True, manage_ticks=False,
                                 positions=[place + offset for place in range(len(names))],
                                 medianprops={"color": "white"}, boxprops={"facecolor": self.COLOURS[side]})
            boxes["boxes"][0].set_label(side)
        axes.set_yticks(range(len(names)), ["direct mode,\n1 layer", "direct mode,\n4 layers", "virtual display"])
        axes.set(xlabel="processor time of the calling thread for one frame, µs (median, quartiles, p1 and p99)",
                 title="Frames", xlim=(0, None))
        axes.legend(frameon=False, ncols=2, loc="lower right", bbox_to_anchor=(1, 1))  # whiskers may be anywhere inside
        self.save(figure, "frames")

    def scale(self):
        figure, all_axes = self.figure(len(SCALES))
        for axes, name in zip(all_axes, SCALES):
            growth = Growth(self.measured[name])
            axes.plot(growth.sizes, growth.costs, "o-", color=self.COLOURS[DRIVER])
            what = "record" if name == "controllers" else "frame"
            axes.set(xlabel=name, ylabel=f"{growth.unit} for a {what}, median", ylim=(0, 1.25 * max(growth.costs)),
                     title=f"{growth.kind()}")
            if name != "layers":
                axes.set_xscale("log")
                axes.set_xticks(growth.sizes, growth.sizes)
                axes.minorticks_off()
        self.save(figure, "scale")

    def draw_all(self):
        for name in PLOTS:
            getattr(self, name)()


BEGIN, END = "<!-- written by tools/bench.sh --docs: begin -->", "<!-- written by tools/bench.sh --docs: end -->"


def write_page(page, text):
    head, _, rest = page.read_text().partition(BEGIN)
    _, _, tail = rest.partition(END)
    if not tail:
        raise SystemExit(f"{page} has no place for figures")
    page.write_text(f"{head}{BEGIN}\n\n{text}\n{END}{tail}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true", help="judge a short run")
    parser.add_argument("--page", type=pathlib.Path, help="the page that gets the figures")
    parser.add_argument("source", type=pathlib.Path, help="the file, or the folder, of driver_speed's values")
    options = parser.parse_args()
    if options.check:
        return check(options.source)
    measured, machine = read(options.source / "speed.json"), (options.source / "machine.md").read_text()
    Plotter(measured, options.source).draw_all()
    (options.source / "report.md").write_text("# What the driver costs\n\n" + report(measured, machine, "."))
    if options.page:
        Plotter(measured, options.page.with_suffix("")).draw_all()
        write_page(options.page, report(measured, machine, options.page.stem))
    return 0


if __name__ == "__main__":
    sys.exit(main())
