const kChartHeight = 260;
const kMostLabels = 12;  // of marks: more would cover each other
const drawn = [];

function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

function seriesColour(index) {
  return colour(`--series-${(index % 4) + 1}`);
}

// Colours are functions, so that a chart that is drawn again has those of the scheme that holds then.
function axisStyle(label) {
  const lines = { stroke: () => colour("--rule"), width: 1 };
  return {
    stroke: () => colour("--quiet"), grid: lines, ticks: lines, font: "12px system-ui", labelFont: "12px system-ui",
    ...(label ? { label, labelSize: 22 } : {}),
  };
}

function seriesStyle(name, index, stepped) {
  const steps = {
    paths: uPlot.paths.stepped({ align: 1 }), points: { show: false }, fill: () => `${seriesColour(index)}40`,
  };
  return { label: name, stroke: () => seriesColour(index), width: 1.5, ...(stepped ? steps : {}) };
}

// Few marks are lines with labels; many are short ticks, which leave the values to be seen.
function drawMark(plot, mark, row, isOneOfFew) {
  const { ctx, bbox } = plot;
  const x = plot.valToPos(mark.at, "x", true);
  if (x < bbox.left || x > bbox.left + bbox.width) {
    return;
  }
  ctx.beginPath();
  ctx.moveTo(x, isOneOfFew ? bbox.top : bbox.top + bbox.height - 10 * devicePixelRatio);
  ctx.lineTo(x, bbox.top + bbox.height);
  ctx.stroke();
  if (isOneOfFew) {
    const fitsRight = x + ctx.measureText(mark.label).width + 8 < bbox.left + bbox.width;
    ctx.textAlign = fitsRight ? "left" : "right";
    ctx.fillText(mark.label, x + (fitsRight ? 4 : -4), bbox.top + (row + 1) * 14 * devicePixelRatio);
  }
}

function drawMarks(plot, marks) {
  const { ctx } = plot;
  const areFew = marks.length <= kMostLabels;
  ctx.save();
  ctx.strokeStyle = ctx.fillStyle = colour("--mark");
  ctx.lineWidth = devicePixelRatio;
  ctx.setLineDash(areFew ? [4 * devicePixelRatio, 3 * devicePixelRatio] : []);
  ctx.font = `${12 * devicePixelRatio}px system-ui`;
  marks.forEach((mark, index) => drawMark(plot, mark, index % 4, areFew));
  ctx.restore();
}

// The last value at or before the cursor: series that were sampled at other times have none of their own there.
function valueAtCursor(plot, series) {
  let index = plot.cursor.idx;
  while (index > 0 && plot.data[series][index] === undefined) {
    --index;
  }
  return formatNumber(plot.data[series][index]);
}

// A button for each series, with its value at the cursor, which shows and hides it.
function legend(plot, names) {
  const values = names.map(() => element("span", { class: "value" }));
  const buttons = names.map((name, index) => {
    const toggle = button(() => {
      const show = toggle.getAttribute("aria-pressed") !== "true";
      toggle.setAttribute("aria-pressed", show);
      plot.setSeries(index + 1, { show });
    }, { "aria-pressed": "true" },
    element("span", { class: "swatch", style: `color: var(--series-${(index % 4) + 1})` }), name, values[index]);
    return toggle;
  });
  plot.hooks.setCursor = [() => values.forEach((value, index) => {
    const inside = typeof plot.cursor.idx === "number" && plot.cursor.left >= 0;
    value.textContent = inside ? valueAtCursor(plot, index + 1) : "";
  })];
  return element("div", { class: "controls series", role: "group", "aria-label": "Series" }, ...buttons);
}

// Everything that a mouse does by dragging, for keys and fingers.
function zoomButtons(plot) {
  const [first, last] = [plot.data[0][0], plot.data[0][plot.data[0].length - 1]];
  const show = (shift, scale) => {
    const { min, max } = plot.scales.x;
    const width = Math.min((max - min) * scale, last - first);
    const middle = (min + max) / 2 + shift * (max - min);
    const left = Math.min(Math.max(middle - width / 2, first), last - width);
    plot.setScale("x", { min: left, max: left + width });
  };
  const labelled = (label, sign, shift, scale) => button(() => show(shift, scale), { "aria-label": label }, sign);
  return element("div", { class: "controls", role: "group", "aria-label": "Range that is shown" },
    labelled("Zoom in", "+", 0, 0.5), labelled("Zoom out", "−", 0, 2),
    labelled("Earlier", "◀", -0.25, 1), labelled("Later", "▶", 0.25, 1),
    button(() => plot.setScale("x", { min: first, max: last }), {}, "Show all"));
}

// Draws into `place`, which must be in the page already: its width is the chart's.
function drawChart(place, { data, names, xLabel, marks, stepped, title }) {
  const plot = new uPlot({
    width: place.clientWidth,
    height: kChartHeight,
    legend: { show: false },
    scales: { x: { time: false }, ...(stepped ? { y: { range: (_, low, high) => [0, (high || 1) * 1.1] } } : {}) },
    cursor: { drag: { x: !stepped, y: false } },
    axes: [axisStyle(xLabel), axisStyle("")],
    series: [{}, ...names.map((name, index) => seriesStyle(name, index, stepped))],
    hooks: { draw: [(self) => drawMarks(self, marks)] },
  }, data, place);
  plot.root.querySelector("canvas").setAttribute("aria-hidden", "true");
  place.setAttribute("role", "img");
  place.setAttribute("aria-label", `Chart: ${title}`);
  new ResizeObserver(() => plot.setSize({ width: place.clientWidth, height: kChartHeight })).observe(place);
  drawn.push(plot);
  return plot;
}

matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => drawn.forEach((plot) => plot.redraw(false)));
