// Layers, and types of layers.

import {legend, make, missing, part, plural} from "../shared/elements.js";
import {digits, time} from "../shared/figures.js";
import {Table} from "../shared/Table.js";
import {
  comparison,
  decimalsOf,
  intervalOf,
  isSeveral,
  kindOf,
  nothingToCompare,
  pOf,
  signed,
  signedPercent,
  verdictOf,
  view,
  wordOf,
} from "./data.js";
import {differenceBar} from "./differenceBar.js";

const sumOf = (rows, key) => rows.reduce((sum, row) => sum + row[key], 0);

// A row's whole change may well be known where it can't be told whether the row changed by itself.
const isChangeTold = (row, shared) =>
  row.verdict !== "unsure" || comparison.basis === "one-each" || (shared !== null && isSeveral);
const excessOf = row => (row.verdict === "slower" || row.verdict === "faster" ? row.excess : null);
const percentOrUnsure = (value, row) => (value !== null ? signedPercent(value) : row.verdict === "unsure" ? "~" : "–");

// Rows come with the largest change first, in either direction.
function showChanges(host, rows, {name, title, things, none, shared}) {
  if (rows.length === 0) {
    host.replaceChildren(missing(none));
    return;
  }
  const least = view.hide_below * sumOf(rows, "base_us");
  const isMarked = row => row.verdict !== "unsure" && row.verdict !== "same";
  const isMinor = row => Math.abs(row.change_us) < least && !isMarked(row);
  const others = rows.filter(isMinor);
  const longest = Math.abs(rows[0].change_us);
  const isNarrow = window.innerWidth <= 620; // where the change comes first, and the rest is to be chosen
  const decimals = decimalsOf(rows.flatMap(row => [row.base_us, row.new_us]));
  const us = value => digits(value, decimals);
  const bar = (change, row) =>
    make(
      "span",
      {class: "change"},
      differenceBar(14, longest, {change, kind: row ? kindOf(row) : "other"}),
      make("span", {}, signed(change, us)),
    );
  const minorWords = count =>
    `${count === rows.length ? "all" : "the"} ${plural(count, ...things)} that moved by less than ` +
    `${digits(view.hide_below * 100, 1)}% of the whole`;
  const sumRow = (kind, head, summed) => used => {
    const values = {
      base_us: sumOf(summed, "base_us"),
      new_us: sumOf(summed, "new_us"),
      change_us: sumOf(summed, "change_us"),
    };
    return make(
      "tr",
      {class: kind},
      used.map(column =>
        column.isHeading
          ? make("th", {scope: "row"}, head)
          : make(
              "td",
              {class: column.isText ? "text" : "number"},
              column.key === undefined
                ? ""
                : column.key === "change_us"
                  ? signed(values.change_us, us)
                  : us(values[column.key]),
            ),
      ),
    );
  };
  const otherRow = sumRow("is-others", plural(others.length, "other", "others"), others),
    wholeRow = sumRow("is-sum", "Sum", rows);
  new Table(host, {
    name,
    rows,
    things,
    isMinor,
    minorWords,
    foot: (used, isShowingAll) => (isShowingAll ? [] : [otherRow(used)]).concat(wholeRow(used)),
    columns: [
      {title, isText: true, isHeading: true, of: row => row.name},
      {title: "Base (us)", key: "base_us", isExtra: isNarrow, of: row => row.base_us, text: us},
      {title: "New (us)", key: "new_us", isExtra: isNarrow, of: row => row.new_us, text: us},
      {title: "Change (us)", key: "change_us", least: isNarrow ? 180 : 250, of: row => row.change_us, text: bar},
      {title: "Change", of: row => (isChangeTold(row, shared) ? row.change : null), text: percentOrUnsure},
      ...(shared ? [{title: "Beyond", of: excessOf, text: percentOrUnsure}] : []),
      ...(isSeveral ? [{title: "p", isExtra: isNarrow, of: row => row.p, text: pOf}] : []),
      {title: "Verdict", isText: true, of: wordOf, text: (value, row) => verdictOf(row)},
    ],
  });
  if (shared) {
    const interval = intervalOf(shared);
    const words = `All layers share ${signedPercent(shared.change)}${interval ? ` (${interval})` : ""}`;
    host.prepend(make("p", {class: "hint"}, `${words}; a row is marked by what it changed beyond that.`));
  }
  host.append(
    legend(
      ["slower", "slower, or new"],
      ["faster", "faster, or gone"],
      ["other", "may be chance (~)"],
      ["plain", `The longest bar is ${time(longest)}.`],
    ),
  );
}

export function showLayers(graph) {
  const noLayers = comparison.different_levels
    ? "The logs have different profiling levels, so their layers can't be compared."
    : "Not both sides have data on layers. Profile the runs at level detailed to see them.";
  const shared = graph ? graph.shared : null;
  const hasTypes = graph && graph.types.length > 0;
  showChanges(part("layers"), graph ? graph.layers : [], {
    shared,
    name: "ZEB layers",
    title: "Layer",
    things: ["layer", "layers"],
    none: !graph
      ? nothingToCompare
      : hasTypes
        ? "Not both sides map their ORU layers to the layers of the network."
        : noLayers,
  });
  showChanges(part("types"), graph ? graph.types : [], {
    shared,
    name: "ORU layers by type",
    title: "Type",
    things: ["type", "types"],
    none: graph ? noLayers : nothingToCompare,
  });
}
