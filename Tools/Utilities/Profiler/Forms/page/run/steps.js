// Start-up and tear-down, step by step, and all other calls.

import {bar, cut, headings, isolated, make, missing, part} from "../shared/elements.js";
import {digits, number, share, unitOf} from "../shared/figures.js";
import {run} from "./data.js";
import {subject} from "./subject.js";

const stepNames = {
  "library-load": "Load the library",
  "init-step": "Initialize a step of",
  compose: "Compose",
  init: "Initialize",
  finalize: "Finalize",
  "de-init": "Tear down",
};
const maxSteps = 40; // that are shown unasked
const maxEvents = 12; // of a step, or of an event
const maxCalls = 500;

const cell = (text, kind) => make("td", {class: kind ?? null}, text);

const plainUnits = ["count", "none"]; // of numbers that stand alone

function valueOf(event, timeOf) {
  const {value} = event;
  if (event.object_bytes !== null) {
    return `object of ${digits(event.object_bytes)} bytes`;
  }
  if (value === null) {
    return "";
  }
  if (typeof value === "string" && !/^-?\d+$/.test(value)) {
    return cut(value, 60);
  }
  if (event.unit === "us") {
    return timeOf(number(value));
  }
  const figure = digits(value, Number.isInteger(value) ? 0 : 2);
  return plainUnits.includes(event.unit) ? figure : `${figure} ${event.unit}`;
}

function eventRows(events, depth, timeOf) {
  const row = (name, value) =>
    make(
      "tr",
      {class: "part"},
      make("th", {scope: "row", class: `depth-${Math.min(depth, 4)}`}, name),
      cell("", "bar"),
      cell(""),
      cell(value, "number soft"),
    );
  const rows = events
    .slice(0, maxEvents)
    .flatMap(event => [row(event.name, valueOf(event, timeOf)), ...eventRows(event.events, depth + 1, timeOf)]);
  if (events.length > maxEvents) {
    rows.push(row(`and ${digits(events.length - maxEvents)} more`, ""));
  }
  return rows;
}

/** Each step with its place on the clock (us after the first one), where it has both times. */
function placedSteps() {
  const timed = run.steps.filter(step => step.start_us !== null && step.duration_us !== null);
  const starts = timed.map(step => BigInt(step.start_us));
  const zero = starts.length === 0 ? null : starts.reduce((least, start) => (start < least ? start : least));
  return run.steps.map(step => ({
    ...step,
    isDown: step.step === "de-init",
    from: step.start_us === null || zero === null ? null : Number(BigInt(step.start_us) - zero),
    us: number(step.duration_us),
  }));
}

const isTimed = step => step.from !== null && step.us !== null;

function spanOf(steps) {
  const timed = steps.filter(isTimed);
  return timed.length === 0
    ? null
    : [
        timed.reduce((least, step) => Math.min(least, step.from), Infinity),
        timed.reduce((most, step) => Math.max(most, step.from + step.us), 0),
      ];
}

/**
 * Where a time stands in the bars: `place` and `size` are shares of their width. The executions between start-up and
 * tear-down would leave both of them a few pixels; they get a `gap` that is not to scale, in place of the `pause`
 * that they take.
 */
function scaleOf(steps) {
  const up = spanOf(steps.filter(step => !step.isDown)),
    down = spanOf(steps.filter(step => step.isDown));
  const isBroken = up !== null && down !== null && down[0] > up[1];
  const pause = isBroken ? down[0] - up[1] : 0;
  const gap = isBroken ? Math.min(pause, (up[1] - up[0] + down[1] - down[0]) * 0.12) : 0;
  const spans = [up, down].filter(span => span !== null);
  const first = Math.min(...spans.map(span => span[0])),
    last = Math.max(...spans.map(span => span[1]));
  const whole = spans.length === 0 ? 0 : last - first - pause + gap;
  const place = us => share(us - first - (isBroken && us >= down[0] ? pause - gap : 0), whole);
  return {up, isBroken, pause, gap, place, size: us => share(us, whole)};
}

// Of each column, by what the start has in it.
function unitsOf(steps) {
  const longest = key => steps.filter(step => !step.isDown).reduce((most, step) => Math.max(most, step[key] ?? 0), 0);
  return {begin: unitOf(longest("from")), duration: unitOf(longest("us"))};
}

function rowsOfStep(step, {place, size}, {begin, duration}) {
  const kind = step.isDown ? "other" : "shade-bar";
  const row = make(
    "tr",
    {},
    make("th", {scope: "row"}, stepNames[step.step] ?? step.step, step.text ? [" ", isolated(step.text)] : null),
    isTimed(step) ? bar([[place(step.from), size(step.us), kind]]) : cell("", "bar"),
    cell(step.from === null ? "–" : begin.of(step.from), "number"),
    cell(step.us === null ? "not in the log" : duration.of(step.us), "number"),
  );
  return [row, ...eventRows(step.events, 1, duration.of)];
}

function rowOfExecutions({up, place, size, gap, pause}, {begin, duration}) {
  return make(
    "tr",
    {class: "part"},
    make("th", {scope: "row"}, "Executions (not to scale)"),
    bar([[place(up[1]), size(gap), "unknown-bar"]]),
    cell(begin.of(up[1]), "number soft"),
    cell(duration.of(pause), "number soft"),
  );
}

function callTable() {
  const rows = run.other_methods.slice(0, maxCalls).map(call => {
    const figures = [call.count, call.average_us, call.min_us, call.max_us];
    const cells = figures.map(value => cell(digits(value), "number"));
    return make("tr", {}, make("th", {scope: "row"}, call.method), cell(call.graph, "text"), cells);
  });
  const numbers = ["Count", "Average (us)", "Shortest", "Longest"].map(title => [title, "number"]);
  const table = make("table", {}, headings(["Call"], ["Graph"], ...numbers), make("tbody", {}, rows));
  return make("div", {class: "scroll calls"}, table);
}

const stepRows = []; // as the run has the steps

/** Marks the steps that the chosen finding is about. */
export function markSteps() {
  stepRows.forEach((row, step) => row.classList.toggle("is-about", subject().steps.has(step)));
}

export function showSteps() {
  const host = part("steps");
  const steps = placedSteps();
  const scale = scaleOf(steps);
  const units = unitsOf(steps);
  const entries = steps.map(step => ({
    from: step.isDown ? Infinity : (step.from ?? 0),
    rows: rowsOfStep(step, scale, units),
  }));
  stepRows.push(...entries.map(({rows}) => rows[0]));
  if (scale.isBroken && run.graphs.length > 0) {
    entries.push({from: scale.up[1], rows: [rowOfExecutions(scale, units)]});
  }
  entries.sort((left, right) => left.from - right.from);
  const body = make("tbody", {});
  const add = entry => body.append(...entry.rows);
  entries.slice(0, maxSteps).forEach(add);
  const titles = headings(
    ["Step"],
    [""],
    [`Begins after (${units.begin.unit})`, "number"],
    [`Takes (${units.duration.unit})`, "number"],
  );
  host.replaceChildren(
    steps.length === 0
      ? missing("The log has no messages on start-up and tear-down.")
      : make("div", {class: "scroll"}, make("table", {}, titles, body)),
  );
  if (entries.length > maxSteps) {
    const more = make("button", {type: "button", class: "button more"}, `Show all ${digits(entries.length)} steps`);
    more.addEventListener("click", () => {
      entries.slice(maxSteps).forEach(add);
      more.remove();
    });
    host.append(more);
  }
  if (run.other_methods.length > 0) {
    host.append(make("h3", {}, "Other calls"), callTable());
  }
}
