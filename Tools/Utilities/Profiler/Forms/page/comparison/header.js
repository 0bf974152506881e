// What is compared, and the answer.

import {isolated, make, part, plural} from "../shared/elements.js";
import {digits, time, timeParts} from "../shared/figures.js";
import {
  changeOf,
  comparison,
  decimalsOf,
  intervalOf,
  isOnBoth,
  isSeveral,
  nameOf,
  pOf,
  signed,
  totalOf,
  verdicts,
  view,
  wordOf,
} from "./data.js";

const maxLogsNamed = 3;

function sideOf(title, logs) {
  const named = names => names.flatMap((name, at) => [at === 0 ? null : ", ", isolated(name)]);
  const more = logs.slice(maxLogsNamed);
  return make(
    "div",
    {},
    make("dt", {}, title),
    make(
      "dd",
      {},
      `${plural(logs.length, "log", "logs")}: `,
      named(logs.slice(0, maxLogsNamed)),
      " ",
      more.length === 0
        ? null
        : make(
            "details",
            {},
            make("summary", {}, `and ${digits(more.length)} more`),
            make("div", {class: "list"}, named(more)),
          ),
    ),
  );
}

// Of a whole that may not have changed.
function partsThatChanged(graph) {
  const sayFor = verdict => {
    const names = graph.totals.filter(row => row.verdict === verdict).map(row => view.totals[row.total]);
    return names.length === 0 ? "" : `Surely ${verdict}: ${names.join(", ")}. `;
  };
  return sayFor("slower") + sayFor("faster");
}

// The answer in a sentence, and how sure it is.
function answerOf(graph) {
  const fewest = view.fewest_logs;
  const moreLogs = `Take ${fewest} logs or more of each, in turns.`;
  const row = graph && totalOf(graph, "marlix");
  if (!graph) {
    return {kind: "unsure", lead: "Nothing to compare:", rest: "no graph was executed on both sides.", sure: ""};
  }
  if (!isOnBoth(row)) {
    return {kind: "unsure", lead: "Can't tell:", rest: "not both sides have execution times of this graph.", sure: ""};
  }
  const decimals = decimalsOf([row.base.median_us, row.new.median_us]);
  const us = range => `${digits(range.median_us, decimals)} us`;
  const times = `an inference takes ${us(row.new)} in place of ${us(row.base)}`;
  const longer =
    row.change === null ? "" : `, ${digits(Math.abs(row.change) * 100, 1)} % ${row.change < 0 ? "less" : "more"}`;
  if (comparison.basis === "one-each") {
    return {
      kind: row.verdict,
      lead: row.verdict === "same" ? "The new log is as fast as that of the base:" : `The new log is ${wordOf(row)}:`,
      rest: `${times}${longer}.`,
      sure:
        "Nobody knows how sure that is. One log against one: a difference between runs can't be told from one " +
        `between versions. ${moreLogs}`,
    };
  }
  if (comparison.basis === "too-few") {
    return {
      kind: "unsure",
      lead: "Can't tell yet:",
      rest: `${times}, and that may be chance.`,
      sure: `Too few logs: it takes ${fewest} or more of each to tell a change from chance. ${moreLogs}`,
    };
  }
  const interval = intervalOf(row);
  if (row.verdict === "unsure") {
    return {
      kind: "unsure",
      lead: "Can't tell them apart:",
      rest: `${times}, and that may be chance.`,
      sure: interval
        ? `With 95 % the true change lies between ${interval.replace(" to ", " and ")}, so there may be none. ` +
          `${partsThatChanged(graph)}More logs of each tell more.`
        : `Too few logs have this graph, or one has a time of 0. ${moreLogs}`,
    };
  }
  return {
    kind: row.verdict,
    lead: `The new version is ${wordOf(row)}:`,
    rest: `${times}${longer}.`,
    sure: `That is sure: with 95 % the true change lies between ${interval.replace(" to ", " and ")}.`,
  };
}

function noteBox(kind, title, sentences) {
  return make(
    "div",
    {class: `note-box is-${kind}`, role: "note"},
    make("h2", {}, title),
    sentences.length === 1
      ? make("p", {}, sentences[0])
      : make(
          "ul",
          {},
          sentences.map(sentence => make("li", {}, sentence)),
        ),
  );
}

function gateBox(gate) {
  const floor = gate.min_change_us > 0 ? `, and by less than ${digits(gate.min_change_us, 1)} us in any case` : "";
  const rule = `${view.totals[gate.total]} may grow by ${digits(gate.fail_above * 100, 1)} %${floor}.`;
  if (gate.outcome === "pass") {
    return noteBox("pass", "✓ The gate passes", [`No time grew by more than is allowed: ${rule}`]);
  }
  return gate.outcome === "slower"
    ? noteBox("slower", "✗ The gate fails", [...gate.reasons, rule])
    : noteBox("warning", "✗ The gate has nothing that it can compare", [...gate.reasons, rule]);
}

export function showHeader(graph) {
  part("name").textContent = graph ? nameOf(graph) : "No common graph";
  part("sides").replaceChildren(sideOf("Base", comparison.base), sideOf("New", comparison.new));
  const answer = answerOf(graph);
  part("answer").replaceChildren(
    make(
      "p",
      {class: `answer is-${answer.kind}`},
      make("b", {}, `${verdicts[answer.kind][0]} ${answer.lead}`),
      ` ${answer.rest}`,
      answer.sure ? make("span", {class: "how-sure"}, answer.sure) : null,
    ),
  );

  const row = graph && totalOf(graph, "marlix");
  const figure = (name, value, unit, note) =>
    make(
      "div",
      {},
      make("dt", {}, name),
      make("dd", {class: "large"}, value, unit ? make("small", {}, unit) : null),
      make("dd", {class: "note"}, note),
    );
  const side = (name, range) => {
    if (!range) {
      return figure(name, "–", "", "not known");
    }
    const [value, unit] = timeParts(range.median_us);
    return figure(
      name,
      value,
      unit,
      range.logs === 1
        ? "median of the log's executions"
        : `median of ${digits(range.logs)} logs, from ${time(range.min_us)} to ${time(range.max_us)}`,
    );
  };
  const [change, percentSign] = row ? changeOf(row).split(" ") : ["–"];
  part("figures").replaceChildren(
    side("Inference, base", row && row.base),
    side("Inference, new", row && row.new),
    figure(
      "Change",
      change,
      percentSign,
      !isOnBoth(row)
        ? "not known"
        : [wordOf(row), signed(row.change_us, time), intervalOf(row), row.p !== null && `p ${pOf(row.p)}`]
            .filter(Boolean)
            .join("; "),
    ),
  );

  const notes = [];
  if (comparison.warnings.length > 0) {
    notes.push(noteBox("warning", comparison.warnings.length === 1 ? "⚠ Warning" : "⚠ Warnings", comparison.warnings));
  }
  if (comparison.gate) {
    notes.push(gateBox(comparison.gate));
  }
  const graphs = comparison.gone_graphs
    .map(name => ["Graph ", isolated(name), " is gone: the base alone has it."])
    .concat(comparison.new_graphs.map(name => ["Graph ", isolated(name), " is new: the base does not have it."]));
  if (graphs.length > 0) {
    notes.push(noteBox("graphs", "Graphs of one side", graphs));
  }
  part("notes").replaceChildren(...notes);
  document.title = `${answer.lead.replace(":", "")} – ${part("name").textContent}`;
  part("totals-hint").textContent = isSeveral
    ? " Whiskers hold the true change with 95 %: where they leave out the middle, the change is sure."
    : "";
  part("origin").textContent =
    "Times are in microseconds (us). Totals are medians over the logs, layers means of their averages.";
}
