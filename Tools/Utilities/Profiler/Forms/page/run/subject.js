// What the chosen finding is about: all parts mark it, until it is let go.

import {plural} from "../shared/elements.js";
import {state} from "../shared/state.js";
import {run} from "./data.js";

/** What stands out of a graph and of the log, in the order of the page. */
export const findingsOf = view => (view ? view.graph.findings : []).concat(run.findings);

function subjectOf(view, finding) {
  const ids = new Set(finding?.oru_layers);
  const oru = new Set();
  const layers = new Set();
  if (view && ids.size > 0) {
    view.oru.forEach((layer, position) => {
      if (ids.has(layer.id)) {
        oru.add(position);
        view.owners[position].forEach(place => layers.add(place));
      }
    });
  }
  return {finding, layers, oru, executions: new Set(finding?.executions), steps: new Set(finding?.steps)};
}

let known = null; // until another one is chosen
/** Places of the chosen finding's layers, ORU layers, executions and steps; none without a finding. */
export function subject() {
  const finding = state.finding === null ? null : findingsOf(state.view)[state.finding];
  if (known === null || known.finding !== finding) {
    known = subjectOf(state.view, finding);
  }
  return known;
}

/** Names of the log that a finding's sentence may have. */
export function namesIn(view, finding) {
  const {layers, steps} = subjectOf(view, finding);
  const names = [...steps].map(step => run.steps[step]?.text ?? "");
  return layers.size === 1 ? names.concat([...layers].map(place => view.layers[place].name)) : names;
}

/** How many things a finding is about, in words; empty where it names none. */
export function countsOf(view, finding) {
  const {layers, oru, executions, steps} = subjectOf(view, finding);
  const counts = [
    [oru.size, "ORU layer", "ORU layers"],
    [view?.hasZeb ? layers.size : 0, "ZEB layer", "ZEB layers"],
    [executions.size, "execution", "executions"],
    [steps.size, "step", "steps"],
  ];
  return counts
    .filter(([count]) => count > 0)
    .map(([count, one, several]) => plural(count, one, several))
    .join(" in ");
}
