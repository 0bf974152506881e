// Draws the parts.

import {cut, make, part} from "../shared/elements.js";
import {forgetFollowers, state} from "../shared/state.js";
import {run} from "./data.js";
import {showExecutions} from "./executions.js";
import {showFindings, showHeader} from "./header.js";
import {showInference} from "./inference.js";
import {showOruTable, showZebTable} from "./layers.js";
import {showRanking} from "./ranking.js";
import {showSteps} from "./steps.js";
import {showStrip} from "./strip.js";
import {showTypes} from "./types.js";
import {viewOf} from "./view.js";

const widthOf = id => Math.max(240, Math.floor(part(id).clientWidth));

// What is as wide as the window; tables stay as they are when that changes.
function showCharts() {
  showInference(state.view, widthOf("inference"));
  showStrip(state.view, widthOf("strip"));
  showRanking(state.view, widthOf("ranking"));
  showTypes(state.view);
  showExecutions(state.view, widthOf("executions"));
}

function showGraph(index) {
  const view = index < run.graphs.length ? viewOf(index) : null;
  forgetFollowers();
  Object.assign(state, {graph: index, view, hovered: null, pinned: null});
  showHeader(view);
  showFindings(view);
  showZebTable(view);
  showOruTable(view);
  showCharts();
}

part("page").hidden = false;
if (run.graphs.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  const names = run.graphs.map(graph => cut(graph.name, 80) || "without a name");
  choice.append(...names.map((name, index) => make("option", {value: index}, name)));
  choice.addEventListener("change", () => showGraph(Number(choice.value)));
}
// Without a graph one part says why, and the others would say the same.
if (run.graphs.length === 0) {
  document.querySelectorAll("#figures, main section").forEach(piece => {
    piece.hidden = !piece.querySelector("#findings, #steps");
  });
}
showSteps();
showGraph(0);

let drawnWidth = window.innerWidth;
window.addEventListener("resize", () => {
  if (window.innerWidth !== drawnWidth) {
    drawnWidth = window.innerWidth;
    showCharts();
  }
});
