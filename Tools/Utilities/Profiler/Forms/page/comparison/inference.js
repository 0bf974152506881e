// Where an inference goes, on both sides: the parts of an average inference, each below what it is part of.

import {draw, isolated, legend, make, missing, part} from "../shared/elements.js";
import {digits, share} from "../shared/figures.js";
import {comparison, decimalsOf, kindOf, nothingToCompare, signed} from "./data.js";

// The base above, the new version below with what it has more or less.
function pairOfBars(row, longest) {
  const base = row.base_us,
    now = row.new_us;
  const width = us => `${(share(us, longest) * 100).toFixed(2)}%`;
  const both = Math.min(base, now);
  const isSure = kindOf(row) !== "other";
  return draw(
    "svg",
    {"aria-hidden": "true"},
    draw("rect", {x: 0, y: 1, width: width(base), height: 9, class: "base"}),
    draw("rect", {x: 0, y: 12, width: width(both), height: 9, class: "new"}),
    now > base
      ? draw("rect", {x: width(base), y: 12, width: width(now - base), height: 9, class: isSure ? "slower" : "maybe"})
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

const withDepths = (row, depth) => [{row, depth}].concat(row.parts.flatMap(inner => withDepths(inner, depth + 1)));

export function showInference(graph) {
  const host = part("inference");
  if (!graph || graph.inference === null) {
    host.replaceChildren(missing(graph ? "Neither side has execution times of this graph." : nothingToCompare));
    return;
  }
  const rows = withDepths(graph.inference, 0);
  const longest = Math.max(...rows.flatMap(({row}) => [row.base_us, row.new_us]));
  const us = value => digits(value, decimalsOf([value]));
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
                isolated(row.name),
                make("small", {class: "in-short"}, `${us(row.base_us)} → ${us(row.new_us)}`),
              ),
              make("td", {class: "pair", "aria-hidden": "true"}, pairOfBars(row, longest)),
              make("td", {class: "number detail"}, us(row.base_us)),
              make("td", {class: "number detail"}, us(row.new_us)),
              make(
                "td",
                {class: "number"},
                signed(row.change_us, size => digits(size, decimalsOf([row.base_us, row.new_us]))),
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
      ...(comparison.basis === "one-each" ? [] : [["maybe", "longer, but it may be chance"]]),
    ),
  );
}
