function tableCell(name, value, attributes = {}) {
  const kind = typeof value === "number" ? { class: "number" } : {};
  return element(name, { ...kind, ...attributes }, formatNumber(value));
}

// The first cell of a row names it. A table may be wider than the page: it scrolls, also by keyboard.
function table(caption, head, rows) {
  const isNumber = head.map((_, column) => rows.some((row) => typeof row[column] === "number"));
  const headCells = head.map((name, column) =>
    element("th", { scope: "col", ...(isNumber[column] ? { class: "number" } : {}) }, name));
  const bodyRows = rows.map((row) => element("tr", {}, ...row.map((value, column) =>
    column === 0 ? tableCell("th", value, { scope: "row" }) : tableCell("td", value))));
  return element("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": caption },
    element("table", {},
      element("caption", {}, caption),
      element("thead", {}, element("tr", {}, ...headCells)),
      element("tbody", {}, ...bodyRows)));
}

// A table that is made when it is first opened: those of the charts have thousands of rows.
function closedTable(caption, head, makeRows) {
  const details = element("details", {}, element("summary", {}, `Table: ${caption}`));
  details.addEventListener("toggle", () => {
    if (details.open && details.children.length === 1) {
      details.append(table(caption, head, makeRows()));
    }
  });
  return details;
}
