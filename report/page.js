const kWords = { good: "✓ good", bad: "✗ bad", unknown: "? unknown" };
const kOutcome = { good: "✓ All is well", bad: "✗ Something is wrong", unknown: "? Not everything could be judged" };

function startSection(title) {
  const id = `section-${document.querySelectorAll("main > section").length + 1}`;
  const section = element("section", { "aria-labelledby": id }, element("h2", { id, tabindex: "-1" }, title));
  document.querySelector("main").append(section);
  document.querySelector("nav ul").append(element("li", {}, element("a", { href: `#${id}` }, title)));
  return section;
}

function showVerdict(verdict) {
  const lines = ["expected", "found", "meaning"].filter((key) => verdict[key] !== undefined).flatMap((key) =>
    [element("dt", {}, key), element("dd", {}, formatNumber(verdict[key]))]);
  return element("li", { class: verdict.result },
    element("div", {}, element("span", { class: "mark" }, kWords[verdict.result]), " ",
      element("span", { class: "name" }, verdict.name)),
    element("dl", {}, ...lines));
}

function showVerdictList(section, title, verdicts) {
  if (verdicts.length === 0) {
    return;
  }
  section.append(title ? element("h3", {}, title) : "",
    element("ul", { class: "verdicts" }, ...verdicts.map(showVerdict)));
}

// What needs a look comes first, the rest by group.
function showVerdicts(verdicts) {
  const section = startSection("Verdicts");
  const good = verdicts.filter((verdict) => verdict.result === "good");
  const rest = ["bad", "unknown"].flatMap((result) => verdicts.filter((verdict) => verdict.result === result));
  const named = rest.map((verdict) => ({ ...verdict, name: [verdict.group, verdict.name].filter(Boolean).join(": ") }));
  showVerdictList(section, "What needs a look", named);
  for (const group of new Set(good.map((verdict) => verdict.group))) {
    showVerdictList(section, group ?? (rest.length ? "What is well" : ""), good.filter((one) => one.group === group));
  }
}

function countVerdicts(verdicts) {
  const counts = Object.keys(kWords).map((result) =>
    [verdicts.filter((verdict) => verdict.result === result).length, result]);
  return counts.filter(([count]) => count > 0).map(([count, result]) => `${count} ${result}`).join(", ");
}

function showFacts(facts) {
  const lines = facts.flatMap((fact) => [element("dt", {}, fact.name), element("dd", {}, formatNumber(fact.value))]);
  startSection("Facts").append(element("dl", { class: "facts" }, ...lines));
}

function showSection({ title, text, images = [], charts = [], tables = [] }) {
  const section = startSection(title);
  if (text) {
    section.append(element("p", {}, text));
  }
  images.forEach((image) => showImage(section, image));
  charts.forEach((chart) => showChart(section, chart));
  tables.forEach(({ caption, head, rows }) => section.append(table(caption, head, rows)));
}

function showReport({ title, subtitle, verdict, facts = [], verdicts = [], sections = [] }) {
  document.title = title;
  document.querySelector("h1").textContent = title;
  document.querySelector(".subtitle").textContent = subtitle ?? "";
  const outcome = document.querySelector("p.verdict");
  outcome.classList.add(verdict);
  outcome.textContent = [kOutcome[verdict], countVerdicts(verdicts)].filter(Boolean).join(": ");
  document.querySelector("nav").append(element("ul"));
  if (verdicts.length) {
    showVerdicts(verdicts);
  }
  if (facts.length) {
    showFacts(facts);
  }
  sections.forEach(showSection);
}

function readReport() {
  try {
    return JSON.parse(document.getElementById("report").textContent);
  } catch {
    return { title: "No report", subtitle: "There is no report in this file, or it cannot be read.", verdict: "unknown" };
  }
}

showReport(readReport());
