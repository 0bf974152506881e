// What stands out. A press on a finding marks what it is about, in all parts.

import {isolated, make, missing, part} from "../shared/elements.js";
import {time} from "../shared/figures.js";
import {change, follow, state} from "../shared/state.js";
import {countsOf, findingsOf, namesIn, subject} from "./subject.js";
import {noGraphs} from "./view.js";

// A name of the log in a sentence has a direction of its own.
function sentence(view, finding) {
  const {text} = finding;
  const name = namesIn(view, finding).find(each => each !== "" && text.includes(each));
  if (name === undefined) {
    return text;
  }
  const at = text.indexOf(name);
  return [text.slice(0, at), isolated(name), text.slice(at + name.length)];
}

const choose = place => change({finding: state.finding === place ? null : place});

function findingRow(view, finding, place) {
  const {cost_us: cost, next} = finding;
  const words = make("span", {}, sentence(view, finding), " ", make("i", {}, `Next: ${next}`));
  const row = make("li", {}, make("b", {}, cost === null ? "Note" : time(cost)), words);
  const counts = countsOf(view, finding);
  if (counts === "") {
    return {row, show() {}};
  }
  const button = make("button", {type: "button", class: "choice marks"});
  words.append(" ", button);
  row.classList.add("clicked");
  row.addEventListener("click", event => {
    // Who takes a piece of the sentence along does not mean to press it.
    if (event.target === button || window.getSelection().isCollapsed) {
      choose(place);
    }
  });
  return {
    row,
    show() {
      const isChosen = state.finding === place;
      row.classList.toggle("is-chosen", isChosen);
      button.setAttribute("aria-pressed", String(isChosen));
      button.textContent = isChosen ? `Marked: ${counts}` : `Mark ${counts}`;
    },
  };
}

/** Where the marks are, for who looks for them. */
function placesOfMarks() {
  const {layers, oru, executions, steps} = subject();
  const places = [
    [layers.size + oru.size, "\u25b4 below the strip, \u25b8 in the ranking and the tables of layers"],
    [executions.size, "a ring in the chart of executions, \u25b8 in the table of outliers"],
    [steps.size, "\u25b8 among the steps of start-up and tear-down"],
  ];
  const found = places.filter(([count]) => count > 0).map(([, words]) => words);
  return found.length === 0 ? "" : `The marks: ${found.join("; ")}. Press again, or Escape, to take them away.`;
}

export function showFindings(view) {
  const findings = findingsOf(view);
  const rows = findings.map((finding, place) => findingRow(view, finding, place));
  const list = isOnce => {
    const found = rows.filter((_, place) => (findings[place].group === "once") === isOnce);
    return found.length === 0
      ? null
      : make(
          "ol",
          {class: "findings"},
          found.map(({row}) => row),
        );
  };
  const [paidAlways, paidOnce] = [list(false), list(true)];
  const said = make("p", {class: "note said", role: "status"});
  part("findings").replaceChildren(
    ...[
      rows.length > 0
        ? null
        : missing(view ? "Nothing is out of the ordinary by the rules that were tried." : noGraphs()),
      paidAlways,
      paidOnce && make("h3", {}, "Paid once"),
      paidOnce,
      said,
    ].filter(Boolean),
  );
  const showChosen = () => {
    rows.forEach(row => row.show());
    said.textContent = placesOfMarks();
    said.hidden = state.finding === null;
  };
  follow("findings", showChosen);
  showChosen();
}
