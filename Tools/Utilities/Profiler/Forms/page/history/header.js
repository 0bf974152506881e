// What the history is of, and the answer.

import {isolated, make, part, plural} from "../shared/elements.js";
import {digits, time} from "../shared/figures.js";
import {history, nameOf, signedPercent, versionAt} from "./data.js";

const maxCauses = 5;

function fact(title, ...values) {
  return make("div", {}, make("dt", {}, title), make("dd", {}, values));
}

function facts() {
  const runs = history.versions.reduce((sum, version) => sum + version.runs, 0);
  const last = history.versions.length - 1;
  return [
    fact("Versions", digits(history.versions.length)),
    fact("Runs", digits(runs)),
    last < 0 ? null : fact("From", isolated(versionAt(0))),
    last < 1 ? null : fact("To", isolated(versionAt(last))),
  ].filter(Boolean);
}

function causeOf(cause) {
  const name = cause.kind === "common-factor" ? "all layers alike" : isolated(cause.name);
  const us = `${cause.change_us > 0 ? "+" : "−"}${time(Math.abs(Math.round(cause.change_us)))}`;
  return make("li", {}, name, ` ${us} (${signedPercent(cause.change)})`);
}

// The last step of the executions is what people act on.
function answerOf(group) {
  const series = group?.find(each => each.kind === "total");
  if (!series) {
    return {kind: "still", lead: "Nothing to tell:", rest: "no run has a time of this graph.", causes: [], sure: ""};
  }
  const sure = hiddenOf(series);
  if (series.drift !== null) {
    const words = series.drift > 0 ? "gets slower steadily" : "gets faster steadily";
    return {
      kind: series.drift > 0 ? "slower" : "faster",
      lead: `${series.name} ${words}:`,
      rest: `${signedPercent(series.drift)} a version, without a step.`,
      causes: [],
      sure,
    };
  }
  const step = series.steps[series.steps.length - 1];
  if (!step) {
    return {kind: "still", lead: "No step:", rest: `${series.name} stays where it was.`, causes: [], sure};
  }
  const range = step.low === null ? "" : `, about ${signedPercent(step.low)} to ${signedPercent(step.high)}`;
  const unsure = series.unsure ? " Unsure: neighbouring versions are related." : "";
  return {
    kind: step.change > 0 ? "slower" : "faster",
    lead: `${series.name} is ${step.change > 0 ? "slower" : "faster"} since `,
    version: step.version_name,
    rest: `: ${signedPercent(step.change)}${range}.${unsure}`,
    causes: step.causes,
    sure,
  };
}

function hiddenOf(series) {
  if (series.hidden.length === 0) {
    return "There are too few versions behind the last step to tell of another one.";
  }
  const parts = series.hidden.map(each => `${digits(each.below * 100, 1)}% in the newest ${digits(each.newest)}`);
  return `A step could still hide below ${parts.join(", ")} versions.`;
}

function noteBox(kind, title, sentences) {
  return make(
    "div",
    {class: `note-box ${kind}`, role: "note"},
    make("h2", {}, title),
    make(
      "ul",
      {},
      sentences.map(sentence => make("li", {}, isolated(sentence))),
    ),
  );
}

function notes() {
  const boxes = [];
  if (history.warnings.length > 0) {
    boxes.push(noteBox("", history.warnings.length === 1 ? "⚠ Warning" : "⚠ Warnings", history.warnings));
  }
  if (history.verdict) {
    const {outcome, reasons} = history.verdict;
    const titles = {good: "✓ The gate passes", slower: "✗ The gate fails", unsure: "~ The gate can't tell"};
    const kinds = {good: "is-pass", slower: "is-slower", unsure: ""};
    const words =
      reasons.length > 0 ? reasons : ["No sure step beyond what is allowed holds until the newest version."];
    boxes.push(noteBox(kinds[outcome], titles[outcome], words));
  }
  return boxes;
}

export function showHeader(group) {
  part("name").textContent = group ? nameOf(group) : "No history";
  part("facts").replaceChildren(...facts());
  const answer = answerOf(group);
  const causes = answer.causes.slice(0, maxCauses).map(causeOf);
  if (answer.causes.length > maxCauses) {
    causes.push(make("li", {}, `and ${plural(answer.causes.length - maxCauses, "layer", "layers")} more`));
  }
  part("answer").replaceChildren(
    make(
      "div",
      {class: `answer is-${answer.kind}`},
      make("b", {}, answer.lead),
      answer.version ? isolated(answer.version) : null,
      answer.version ? answer.rest : ` ${answer.rest}`,
      causes.length > 0 ? make("ul", {}, causes) : null,
      answer.sure ? make("span", {class: "how-sure"}, answer.sure) : null,
    ),
  );
  part("notes").replaceChildren(...notes());
  document.title = `History – ${part("name").textContent}`;
  part("origin").textContent =
    `Times are in microseconds (us). ${plural(history.series_tried, "series was", "series were")} tried together; ` +
    "the share of false ones among all steps is held at 2%.";
}
