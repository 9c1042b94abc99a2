const kFewestBins = 20;
const kMostBins = 120;

// The smallest sample that covers the share of all; the samples are sorted.
function percentile(sorted, share) {
  return sorted.length ? sorted[Math.max(Math.ceil(share * sorted.length) - 1, 0)] : null;
}

function sortedSamples(values) {
  return Float64Array.from(values.filter((value) => value !== null)).sort();
}

// What a distribution comes to, as a row of a table.
const kFigures = ["values", "smallest", "median", "p90", "p99", "largest"];

function figuresOf(sorted) {
  const at = (share) => percentile(sorted, share);
  return [sorted.length, at(0), at(0.5), at(0.9), at(0.99), at(1)];
}

// The next of 1, 2, 5, 10, 20 ... that is not smaller.
function niceStep(step) {
  const power = 10 ** Math.floor(Math.log10(step));
  return [1, 2, 5, 10].find((factor) => factor * power >= step * 0.999) * power;
}

// As wide as Freedman and Diaconis advise, within limits.
function binWidth(sorted, range) {
  const spread = percentile(sorted, 0.75) - percentile(sorted, 0.25);
  const advised = (2 * spread) / Math.cbrt(sorted.length);
  return niceStep(Math.min(Math.max(advised, range / kMostBins), range / kFewestBins));
}

// Edges of bins of equal width. A few large samples would press all others into one bin, so the last bin is for
// everything from its edge upwards.
function binEdges(sorted) {
  const low = sorted[0];
  const p99 = percentile(sorted, 0.99);
  const high = Math.min(percentile(sorted, 1), p99 + (p99 - low));
  const width = binWidth(sorted, high - low || Math.abs(low) || 1);
  const first = Math.floor(low / width);
  const bins = Math.floor(high / width) - first + 1;
  return Array.from({ length: bins }, (_, bin) => Number(((first + bin) * width).toPrecision(12)));
}

function countIn(edges, sorted) {
  const counts = edges.map(() => 0);
  let bin = 0;
  for (const sample of sorted) {
    while (bin + 1 < edges.length && sample >= edges[bin + 1]) {
      ++bin;
    }
    ++counts[bin];
  }
  return counts;
}
