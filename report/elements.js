// element("p", {class: "note"}, "text", another): text is text, never markup.
function element(name, attributes = {}, ...children) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    made.setAttribute(key, value);
  }
  made.append(...children.filter((child) => child !== null));
  return made;
}

function button(onClick, attributes, ...children) {
  const made = element("button", { type: "button", ...attributes }, ...children);
  made.addEventListener("click", onClick);
  return made;
}

// Whole numbers as they are, others with the four digits that count; null is a value that there is not.
function formatNumber(value) {
  if (value === null) {
    return "–";
  }
  if (typeof value !== "number" || Number.isInteger(value)) {
    return String(value ?? "");
  }
  return Math.abs(value) >= 1000 ? value.toFixed(0) : String(Number(value.toPrecision(4)));
}

// An axis as text: "Latency (ms)".
function axisLabel(axis) {
  return axis.unit ? `${axis.label} (${axis.unit})` : axis.label;
}
