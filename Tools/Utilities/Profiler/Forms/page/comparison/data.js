// The page of two versions, from its data to its parts:
//
// Data   `comparison` is the object of --json of zeb-profile-compare; `view` has what it is shown with: `hide_below`,
//        the names of totals, and which quantiles of executions are shown, and of how many. Neither changes.
// State  which graph is shown, and what each table is told to.
// Parts  an element of comparison.html and a file here, with a function that fills it: header, totals, inference,
//        layers. A part that has nothing to show says why (`missing`). main.js draws them.

import {dataOf, make} from "../shared/elements.js";
import {digits} from "../shared/figures.js";

export const comparison = dataOf("comparison-data");
export const view = dataOf("view-data");
export const isSeveral = comparison.basis === "several" || comparison.basis === "paired";

// ---- Words and figures

export const verdicts = {
  slower: ["▲", "slower"],
  faster: ["▼", "faster"],
  same: ["=", "same"],
  unsure: ["~", "can't tell"],
  new: ["+", "new"],
  gone: ["−", "gone"],
};
export const wordOf = row => verdicts[row.verdict][1];

export function verdictOf(row) {
  const [sign, word] = verdicts[row.verdict];
  return make("span", {class: `verdict is-${row.verdict}`}, make("i", {"aria-hidden": "true"}, sign), word);
}

export const signed = (value, text) => (value > 0 ? "+" : value < 0 ? "−" : "") + text(Math.abs(value));
export const signedPercent = change => signed(change, size => `${digits(size * 100, 1)}%`);
export const intervalOf = row =>
  row.low === null || row.high === null ? null : `${signedPercent(row.low)} to ${signedPercent(row.high)}`;
export const pOf = p => (p === null ? "–" : p < 0.001 ? "< 0.001" : p.toFixed(3));
export const changeOf = row => (row.verdict === "unsure" ? "~" : row.change === null ? "–" : signedPercent(row.change));
// Means of several logs have fractions, times of one have none; from 1000 on nobody looks at them.
export const decimalsOf = values =>
  values.every(value => value === null || Number.isInteger(value)) || values.some(value => value >= 1000) ? 0 : 1;
export const kindOf = row =>
  row.verdict === "slower" || row.verdict === "faster"
    ? row.verdict
    : row.verdict === "new"
      ? "slower"
      : row.verdict === "gone"
        ? "faster"
        : "other";
export const nameOf = graph => graph.new_name || "Graph without a name";
export const totalOf = (graph, key) => graph.totals.find(row => row.total === key) ?? null;
export const isOnBoth = row => row !== null && row.base !== null && row.new !== null;

export const nothingToCompare = "No graph was executed on both sides, so there is nothing to compare.";
