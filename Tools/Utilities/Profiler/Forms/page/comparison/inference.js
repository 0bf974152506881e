// Where an inference goes, on both sides.

import {draw, legend, make, missing, part} from "../shared/elements.js";
import {digits, share} from "../shared/figures.js";
import {comparison, decimalsOf, isOnBoth, kindOf, nothingToCompare, signed, totalOf, view} from "./data.js";

const whole = "marlix-average";
const partsOfInference = [
  [whole, []],
  ["backend", [whole]],
  ["accelerator", [whole, "backend"]],
  ["layers", [whole, "backend", "accelerator"]],
  ["ipc", [whole, "backend"]],
  ["copies", [whole, "backend"]],
  ["queue-wait", [whole, "backend"]],
];

// The base above, the new version below with what it has more or less.
function pairOfBars(row, longest) {
  const base = row.base?.mean_us ?? 0,
    now = row.new?.mean_us ?? 0;
  const width = us => `${(share(us, longest) * 100).toFixed(2)}%`;
  const both = Math.min(base, now);
  const isSure = kindOf(row) !== "other";
  return draw(
    "svg",
    {"aria-hidden": "true"},
    draw("rect", {x: 0, y: 1, width: width(base), height: 9, class: "base"}),
    draw("rect", {x: 0, y: 12, width: width(both), height: 9, class: "new"}),
    now > base
      ? draw("rect", {x: width(base), y: 12, width: width(now - base), height: 9, class: isSure ? "slower" : "rest"})
      : null,
    now < base
      ? draw("rect", {
          x: width(now),
          y: 12.75,
          width: width(base - now),
          height: 7.5,
          class: isSure ? "saved" : "saved is-unsure",
        })
      : null,
  );
}

export function showInference(graph) {
  const host = part("inference");
  const rows = graph
    ? partsOfInference
        .map(([key, within]) => ({
          row: totalOf(graph, key),
          depth: within.filter(outer => totalOf(graph, outer)).length,
        }))
        .filter(({row}) => row)
    : [];
  if (rows.length === 0) {
    host.replaceChildren(missing(graph ? "Neither side has execution times of this graph." : nothingToCompare));
    return;
  }
  const times = rows.flatMap(({row}) => [row.base, row.new]).map(range => range?.mean_us ?? 0);
  const longest = Math.max(...times);
  const us = range => (range === null ? "–" : digits(range.mean_us, decimalsOf([range.mean_us])));
  host.replaceChildren(
    make(
      "div",
      {class: "scroll", role: "region", tabindex: "0", "aria-label": "Where an inference goes"},
      make(
        "table",
        {},
        make(
          "thead",
          {},
          make(
            "tr",
            {},
            make("th", {scope: "col"}, "Part"),
            make("th", {scope: "col", "aria-hidden": "true"}, ""),
            [
              ["Base (us)", "detail"],
              ["New (us)", "detail"],
              ["Change (us)", ""],
            ].map(([title, kind]) => make("th", {scope: "col", class: `number ${kind}`}, title)),
          ),
        ),
        make(
          "tbody",
          {},
          rows.map(({row, depth}) =>
            make(
              "tr",
              {},
              make(
                "th",
                {scope: "row", class: `depth-${depth}`},
                view.totals[row.total],
                make("small", {class: "in-short"}, `${us(row.base)} → ${us(row.new)}`),
              ),
              make("td", {class: "pair", "aria-hidden": "true"}, pairOfBars(row, longest)),
              make("td", {class: "number detail"}, us(row.base)),
              make("td", {class: "number detail"}, us(row.new)),
              make(
                "td",
                {class: "number"},
                isOnBoth(row)
                  ? signed(row.change_us, size => digits(size, decimalsOf([row.base.mean_us, row.new.mean_us])))
                  : "–",
              ),
            ),
          ),
        ),
      ),
    ),
    legend(
      ["base", "base"],
      ["new", "new"],
      ["slower", "longer than the base"],
      ["", "shorter than the base", draw("rect", {x: 1, y: 2, width: 14, height: 8, class: "saved"})],
      ...(comparison.basis === "one-each" ? [] : [["rest", "longer, but it may be chance"]]),
    ),
  );
}
