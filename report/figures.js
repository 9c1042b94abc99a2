function isEmpty(chart) {
  return chart.series.every((series) => series.values.every((value) => value === null));
}

// Series that were sampled at other times than the chart's get those lined up with the others'.
function aligned(chart) {
  if (chart.series.some((series) => series.x_values)) {
    return uPlot.join(chart.series.map((series) => [series.x_values ?? chart.x_values, series.values]));
  }
  return [chart.x_values, ...chart.series.map((series) => series.values)];
}

function rangeOf(series, unit) {
  const sorted = sortedSamples(series.values);
  const [low, high] = [percentile(sorted, 0), percentile(sorted, 1)].map(formatNumber);
  return `${series.name}: ${sorted.length} values from ${low} to ${high}${unit ? ` ${unit}` : ""}.`;
}

function marksTable(chart) {
  const rows = (chart.marks ?? []).map((mark) => [mark.at, mark.label]);
  return rows.length ? closedTable(`${chart.title}: marks`, [axisLabel(chart.x), "mark"], () => rows) : null;
}

function drawLines(figure, chart) {
  const data = aligned(chart);
  const names = chart.series.map((series) => series.name);
  const ranges = chart.series.map((series) => rangeOf(series, chart.y.unit)).join(" ");
  const place = element("div", { class: "plot" });
  figure.append(element("p", { class: "range" }, `${axisLabel(chart.y)}. ${ranges}`), place);
  const plot = drawChart(place, {
    data, names, xLabel: axisLabel(chart.x), marks: chart.marks ?? [], stepped: false,
    title: `${chart.title}. ${ranges}`,
  });
  if (chart.x_range) {
    plot.setScale("x", { min: chart.x_range[0], max: chart.x_range[1] });
  }
  const rows = () => data[0].map((x, row) => [x, ...data.slice(1).map((values) => values[row])]);
  figure.append(legend(plot, names), zoomButtons(plot),
    closedTable(chart.title, [axisLabel(chart.x), ...names], rows));
}

// A last edge without a count ends the last step.
function histogram(chart, samples) {
  const edges = binEdges(Float64Array.from(samples.flatMap((sorted) => [...sorted])).sort());
  const width = edges.length > 1 ? edges[1] - edges[0] : 1;
  const counts = samples.map((sorted) => countIn(edges, sorted));
  const end = edges[edges.length - 1] + width;
  return { edges, counts, end, data: [[...edges, end], ...counts.map((list) => [...list, list[list.length - 1]])] };
}

function percentileMarks(samples) {
  const shares = samples.length === 1 ? [["median", 0.5], ["p90", 0.9], ["p99", 0.99]] : [];
  return shares.map(([label, share]) => ({ label, at: percentile(samples[0], share) }));
}

function drawDistribution(figure, chart) {
  const names = chart.series.map((series) => series.name);
  const samples = chart.series.map((series) => sortedSamples(series.values));
  const { edges, counts, end, data } = histogram(chart, samples);
  const largest = Math.max(...samples.map((sorted) => percentile(sorted, 1) ?? -Infinity));
  const more = largest >= end ? " The last bin holds everything above it, too." : "";
  const place = element("div", { class: "plot" });
  figure.append(element("p", { class: "range" }, `${axisLabel(chart.y)} by ${axisLabel(chart.x)}.${more}`), place);
  const plot = drawChart(place, {
    data, names, xLabel: axisLabel(chart.x), marks: [...percentileMarks(samples), ...(chart.marks ?? [])], stepped: true,
    title: `distribution, ${chart.title}`,
  });
  const binRows = () => edges.map((edge, bin) => [edge, ...counts.map((list) => list[bin])]);
  figure.append(names.length > 1 ? legend(plot, names) : "",
    table(`${chart.title}: ${axisLabel(chart.x)}`, ["series", ...kFigures],
      samples.map((sorted, index) => [names[index], ...figuresOf(sorted)])),
    closedTable(`${chart.title}: bins`, [`from (${chart.x.unit || chart.x.label})`, ...names], binRows));
}

// The figure must be in the page: a chart is as wide as its place.
function showChart(parent, chart) {
  const figure = element("figure", { class: chart.kind }, element("figcaption", {}, chart.title));
  parent.append(figure);
  if (chart.note) {
    figure.append(element("p", { class: "note" }, chart.note));
  }
  if (isEmpty(chart)) {
    figure.append(element("p", { class: "range" }, "There are no values."));
    return;
  }
  (chart.kind === "distribution" ? drawDistribution : drawLines)(figure, chart);
  const marks = marksTable(chart);
  if (marks) {
    figure.append(marks);
  }
}

function showImage(parent, image) {
  const scroll = element("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": image.caption },
    element("img", { src: image.source, alt: image.alt }));
  const size = button(() => size.setAttribute("aria-pressed", scroll.classList.toggle("actual")),
    { "aria-pressed": "false" }, "Actual size");
  parent.append(element("figure", {}, element("figcaption", {}, image.caption), scroll,
    element("div", { class: "controls" }, size)));
}
