// What is compared, and the answer.

import {isolated, make, part, plural} from "../shared/elements.js";
import {digits, time, timeParts} from "../shared/figures.js";
import {
  changeOf,
  comparison,
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

// The answer's kind, its first words, the rest of the sentence, and what the change lies in.
function answerOf(graph) {
  if (!graph) {
    return {kind: "unsure", lead: "Nothing to compare:", rest: "no graph was executed on both sides.", causes: []};
  }
  const {kind, text, causes} = graph.answer;
  const end = text.indexOf(":") + 1;
  return {
    kind: kind === "not-slower" ? "same" : kind,
    lead: text.slice(0, end),
    rest: text.slice(end).trim(),
    causes,
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
  const percentOf = share => `${digits(share * 100, 1)}%`;
  const limits = [
    gate.fail_above === null ? null : `${view.totals[gate.total]} may grow by ${percentOf(gate.fail_above)}`,
    gate.fail_layer_above === null ? null : `a layer by ${percentOf(gate.fail_layer_above)} beyond what all share`,
  ].filter(Boolean);
  const floor = gate.min_change_us > 0 ? `, and by less than ${digits(gate.min_change_us, 1)} us in any case` : "";
  const rule = `${limits.join(", ")}${floor}.`;
  if (gate.outcome === "pass") {
    return noteBox("pass", "✓ The gate passes", [`Nothing grew by more than is allowed: ${rule}`]);
  }
  if (gate.outcome === "unsure") {
    const title = gate.fail_unsure ? "✗ The gate can't tell, and fails then" : "~ The gate can't tell, and passes";
    return noteBox("warning", title, [...gate.reasons, rule]);
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
    ),
    answer.causes.length === 0
      ? null
      : make(
          "ul",
          {class: "causes"},
          answer.causes.map(cause => make("li", {}, isolated(cause))),
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
    const [value, unit] = timeParts(range.mean_us);
    return figure(
      name,
      value,
      unit,
      range.logs === 1
        ? "median of the log's executions"
        : `mean of ${digits(range.logs)} logs, from ${time(range.min_us)} to ${time(range.max_us)}`,
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
    ? " Whiskers hold the true change with 95%: where they leave out the middle, the change is sure."
    : "";
  part("origin").textContent = "Times are in microseconds (us). Totals and layers are means over the logs.";
}
