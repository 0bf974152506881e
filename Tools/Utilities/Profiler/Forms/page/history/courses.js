// The course of each series: a picture, and a table beside it.

import {chart, cut, draw, headings, isolated, label, make, missing, part, plural, stroke} from "../shared/elements.js";
import {digits, ticks} from "../shared/figures.js";
import {history, levelOf, signedPercent, versionAt} from "./data.js";

const leastWidth = 300;
const height = 190;
const left = 74;
const bottom = 34;
const top = 22;
const maxShown = 30; // layers with steps that are drawn

function middleOf(values) {
  const sorted = [...values].sort((one, other) => one - other);
  const half = Math.floor(sorted.length / 2);
  return sorted.length % 2 === 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2;
}

// The stretches of points between steps.
function levelsOf(series) {
  const starts = series.steps.map(step => series.points.findIndex(point => point.version === step.version));
  const edges = [0, ...starts, series.points.length];
  return edges.slice(1).map((end, at) => series.points.slice(edges[at], end));
}

// A picture is as wide as its place, so that its texts can be read on a narrow one.
function pictureOf(series, width) {
  const values = series.points.flatMap(point => [point.min, point.max]);
  const low = Math.min(...values);
  const high = Math.max(...values);
  const room = Math.max(high - low, Math.abs(high) * 0.01, 1e-9);
  const last = Math.max(history.versions.length - 1, 1);
  const x = version => left + (version / last) * (width - left - 14);
  const y = value => top + ((high + room * 0.05 - value) / (room * 1.1)) * (height - top - bottom);
  const grid = ticks(low, high > low ? high : low + room, 4).map(at => [
    stroke(
      [
        [left, y(at)],
        [width - 14, y(at)],
      ],
      "grid",
    ),
    label(left - 8, y(at) + 4, levelOf(series, at), "soft", "end"),
  ]);
  const dots = series.points.map(point => [
    stroke(
      [
        [x(point.version), y(point.min)],
        [x(point.version), y(point.max)],
      ],
      "range",
    ),
    draw("circle", {class: "dot", cx: x(point.version).toFixed(1), cy: y(point.median).toFixed(1), r: 2.6}),
  ]);
  const levels =
    series.drift === null
      ? levelsOf(series).map(points => {
          const at = y(middleOf(points.map(point => point.median)));
          return stroke(
            [
              [x(points[0].version) - 3, at],
              [x(points[points.length - 1].version) + 3, at],
            ],
            "level",
          );
        })
      : [];
  const steps = series.steps.map(step => {
    const at = x(step.version - 0.5);
    const isRight = at > width * 0.75;
    const text = `${signedPercent(step.change)} at ${cut(step.version_name, 30)}`;
    return [
      stroke(
        [
          [at, top - 8],
          [at, height - bottom],
        ],
        `step${step.change < 0 ? " is-faster" : ""}`,
      ),
      label(at + (isRight ? -6 : 6), top - 6, text, null, isRight ? "end" : null),
    ];
  });
  const ends = [0, history.versions.length - 1].filter((at, place) => place === 0 || at > 0);
  const names = ends.map(at => label(x(at), height - 12, cut(versionAt(at), 40), "soft", at === 0 ? null : "end"));
  return chart(width, height, wordsOf(series), grid, dots, levels, steps, names);
}

function wordsOf(series) {
  if (series.drift !== null) {
    return `${series.name} drifts by ${signedPercent(series.drift)} a version.`;
  }
  if (series.steps.length === 0) {
    return `${series.name} has no step in ${plural(series.points.length, "version", "versions")}.`;
  }
  const steps = series.steps.map(step => `${signedPercent(step.change)} at ${step.version_name}`);
  return `${series.name}: ${steps.join(", ")}.`;
}

function tableOf(series) {
  const rows = series.points.map(point =>
    make(
      "tr",
      {},
      make("th", {scope: "row"}, isolated(versionAt(point.version))),
      make("td", {class: "number"}, digits(point.runs)),
      make("td", {class: "number"}, levelOf(series, point.median)),
      make("td", {class: "number"}, levelOf(series, point.min)),
      make("td", {class: "number"}, levelOf(series, point.max)),
    ),
  );
  const number = title => [title, "number"];
  return make(
    "table",
    {},
    headings(["Version"], number("Runs"), number("Median"), number("Lowest"), number("Highest")),
    make("tbody", {}, rows),
  );
}

// A table is made when it is asked for.
function courseOf(series, width) {
  const room = make("div", {class: "scroll", role: "region", tabindex: "0", "aria-label": `Figures of ${series.name}`});
  const details = make("details", {}, make("summary", {}, "Figures"), room);
  details.addEventListener("toggle", () => {
    if (details.open && room.childElementCount === 0) {
      room.append(tableOf(series));
    }
  });
  const unsure = series.unsure && series.steps.length > 0 ? " Unsure: neighbouring versions are related." : "";
  return make(
    "div",
    {class: "course"},
    make("h3", {}, isolated(series.name)),
    make("p", {}, isolated(wordsOf(series)), unsure),
    make("div", {class: "scroll"}, pictureOf(series, width)),
    details,
  );
}

const isMoving = series => series.steps.length > 0 || series.drift !== null;

export function showCourses(group) {
  if (!group) {
    part("series").replaceChildren(missing("No run has a time, so there is no history."));
    part("layers").replaceChildren(missing("No run has layers."));
    return;
  }
  const width = Math.max(leastWidth, part("series").clientWidth);
  const courses = group.filter(series => series.kind !== "layer").map(series => courseOf(series, width));
  part("series").replaceChildren(...courses);
  const layers = group.filter(series => series.kind === "layer");
  const moving = layers.filter(isMoving);
  const still = layers.length - moving.length;
  const rest = [];
  if (moving.length > maxShown) {
    rest.push(missing(`${plural(moving.length - maxShown, "layer", "layers")} more with a step: see --json.`));
  }
  if (layers.length === 0) {
    rest.push(missing("The runs have no layers: they were profiled at a lower level."));
  } else if (still > 0) {
    rest.push(missing(`${plural(still, "layer", "layers")} without a step.`));
  }
  part("layers").replaceChildren(...moving.slice(0, maxShown).map(series => courseOf(series, width)), ...rest);
}
