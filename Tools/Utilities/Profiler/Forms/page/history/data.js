// The page of a history, from its data to its parts:
//
// Data   `history` is the object of --json of zeb-profile-history, and never changes.
// State  which graph is shown, by its place in `groups`.
// Parts  an element of history.html and a file here, with a function that fills it: header, courses. A part that has
//        nothing to show says why (`missing`). main.js draws them.

import {dataOf} from "../shared/elements.js";
import {digits, time} from "../shared/figures.js";

export const history = dataOf("history-data");

const keyOf = series => JSON.stringify([series.graph, series.conditions]);
const keys = [...new Set(history.series.map(keyOf))];

/** The series of one graph under one set of conditions, together. */
export const groups = keys.map(key => history.series.filter(series => keyOf(series) === key));

export const nameOf = group =>
  (group[0].graph || "Graph without a name") + (group[0].conditions ? ` (${group[0].conditions})` : "");
export const versionAt = position => history.versions[position].name;
export const signedPercent = value => `${value > 0 ? "+" : value < 0 ? "−" : ""}${digits(Math.abs(value) * 100, 1)}%`;
export const levelOf = (series, value) => (series.kind === "common-factor" ? digits(value, 3) : time(value));
