// The times of a run on both sides.

import {draw, legend, make, missing, part} from "../shared/elements.js";
import {digits} from "../shared/figures.js";
import {
  changeOf,
  comparison,
  decimalsOf,
  intervalOf,
  isOnBoth,
  isSeveral,
  kindOf,
  nothingToCompare,
  pOf,
  signed,
  verdictOf,
  view,
} from "./data.js";
import {differenceBar} from "./differenceBar.js";

// The next number that people count in.
function rounded(size) {
  const power = 10 ** Math.floor(Math.log10(size));
  return [1, 1.5, 2, 3, 4, 5, 6, 8, 10].map(factor => factor * power).find(step => step >= size * (1 - 1e-9));
}

const extentOf = row => Math.max(...[row.change, row.low, row.high].map(value => Math.abs(value ?? 0)));

export function showTotals(graph) {
  const host = part("totals");
  if (!graph || graph.totals.length === 0) {
    host.replaceChildren(missing(graph ? "Neither side has a time of this graph." : nothingToCompare));
    return;
  }
  const rows = graph.totals;
  // A total that is hardly anything may change by a lot; the first one has to stay visible beside it.
  const widest = Math.max(0.001, ...rows.map(extentOf));
  const limit = rounded(Math.min(widest, Math.max(8 * extentOf(rows[0]), 0.05)));
  const us = row => {
    const decimals = decimalsOf(
      [row.base, row.new].flatMap(range => (range ? [range.mean_us, range.min_us, range.max_us] : [])),
    );
    return value => digits(value, decimals);
  };
  const middleOf = (row, range) => (range === null ? "–" : us(row)(range.mean_us));
  const cell = (row, range) =>
    make(
      "td",
      {class: "number detail"},
      middleOf(row, range),
      range !== null && range.logs > 1
        ? make("small", {}, `${us(row)(range.min_us)} to ${us(row)(range.max_us)}`)
        : null,
    );
  const head = (text, kind) => make("th", {scope: "col", class: kind || null}, text);
  const axis = draw(
    "svg",
    {"aria-hidden": "true"},
    [
      [-limit, "0%", "start"],
      [0, "50%", "middle"],
      [limit, "100%", "end"],
    ].map(([value, x, anchor]) =>
      draw(
        "text",
        {x, y: 11, class: "soft", "text-anchor": anchor},
        value === 0 ? "0" : signed(value, size => `${digits(size * 100, size < 0.01 ? 1 : 0)}%`),
      ),
    ),
  );
  host.replaceChildren(
    make(
      "div",
      {class: "scroll", role: "region", tabindex: "0", "aria-label": "Totals"},
      make(
        "table",
        {},
        make(
          "thead",
          {},
          make(
            "tr",
            {},
            head("Total"),
            head("Base (us)", "number detail"),
            head("New (us)", "number detail"),
            head("Change (us)", "number detail"),
            isSeveral
              ? make("th", {scope: "col", class: "number"}, "Change", make("small", {}, "95% interval"))
              : head("Change", "number"),
            make("th", {scope: "col", class: "difference", "aria-hidden": "true"}, axis),
            isSeveral ? head("p", "number detail") : null,
            head("Verdict"),
          ),
        ),
        make(
          "tbody",
          {},
          rows.map(row =>
            make(
              "tr",
              {},
              make(
                "th",
                {scope: "row"},
                row.name,
                make("small", {class: "in-short"}, `${middleOf(row, row.base)} → ${middleOf(row, row.new)}`),
              ),
              cell(row, row.base),
              cell(row, row.new),
              make("td", {class: "number detail"}, isOnBoth(row) ? signed(row.change_us, us(row)) : "–"),
              make("td", {class: "number"}, changeOf(row), intervalOf(row) ? make("small", {}, intervalOf(row)) : null),
              make(
                "td",
                {class: "difference", "aria-hidden": "true"},
                isOnBoth(row) ? differenceBar(20, limit, {...row, kind: kindOf(row)}) : null,
              ),
              isSeveral ? make("td", {class: "number detail"}, pOf(row.p)) : null,
              make("td", {}, verdictOf(row)),
            ),
          ),
        ),
      ),
    ),
    legend(
      ["slower", "slower"],
      ["faster", "faster"],
      ...(comparison.basis === "one-each" ? [] : [["other", "may be chance (~)"]]),
      ...(isSeveral ? [["", "95% interval", draw("path", {class: "whisker", d: "M1 6H15M1 2V10M15 2V10"})]] : []),
    ),
  );
  if (graph.base_executions && graph.new_executions) {
    const spread = (name, executions) =>
      make(
        "tr",
        {},
        make("th", {scope: "row"}, name),
        [
          executions.count,
          ...view.quantiles.map(of => (executions.count < of.min_count ? null : executions[of.key])),
        ].map(value => make("td", {class: "number"}, digits(value, decimalsOf([value])))),
      );
    host.append(
      make("h3", {}, "Executions, without the first"),
      make(
        "div",
        {class: "scroll"},
        make(
          "table",
          {class: "small"},
          make(
            "thead",
            {},
            make(
              "tr",
              {},
              head(""),
              head("Count", "number"),
              ...view.quantiles.map(quantile => head(`${quantile.title} (us)`, "number")),
            ),
          ),
          make("tbody", {}, spread("Base", graph.base_executions), spread("New", graph.new_executions)),
        ),
      ),
    );
  }
}
