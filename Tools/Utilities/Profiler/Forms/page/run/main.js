// Draws the parts.

import {cut, make, part} from "../shared/elements.js";
import {change, follow, forgetFollowers, nothingChosen, state} from "../shared/state.js";
import {completeLayers, run} from "./data.js";
import {showExecutions} from "./executions.js";
import {showFindings} from "./findings.js";
import {showHeader} from "./header.js";
import {showGraphs} from "./graphs.js";
import {showInference} from "./inference.js";
import {isLink, keepLink, wantedByLink} from "./link.js";
import {showContents, showHelp} from "./contents.js";
import {showOruTable, showZebTable} from "./layers.js";
import {showRanking} from "./ranking.js";
import {markSteps, showSteps} from "./steps.js";
import {showStrip} from "./strip.js";
import {showTypes} from "./types.js";
import {viewOf} from "./view.js";
import {showWords, tellFirstUses} from "./words.js";

const widthOf = id => Math.max(240, Math.floor(part(id).clientWidth));

// What is as wide as the window; tables stay as they are when that changes.
function showCharts(width = null) {
  showInference(state.view, width ?? widthOf("inference"));
  showStrip(state.view, width ?? widthOf("strip"));
  showRanking(state.view, width ?? widthOf("ranking"));
  showTypes(state.view);
  showExecutions(state.view, width ?? widthOf("executions"));
}

const maxAtOnce = 2000; // ORU layers: of more the tables come behind the first picture

function showTables(view) {
  const show = () => {
    if (state.view === view) {
      completeLayers();
      showZebTable(view);
      showOruTable(view);
    }
  };
  const showInTime = () => (view?.oru.length > maxAtOnce ? requestAnimationFrame(() => setTimeout(show)) : show());
  if (document.readyState === "loading") {
    document.addEventListener("DOMContentLoaded", showInTime);
  } else {
    showInTime();
  }
}

// Of a graph without layers the strip says why, and the other parts about layers would say the same.
function hideParts(view) {
  for (const id of view ? ["ranking", "types", "zeb", "oru"] : []) {
    part(id).closest("section").hidden = view.oru.length === 0;
  }
  showContents();
}

// `wanted` is what of the state does not begin as nothing.
function showGraph(index, wanted = {}) {
  const view = index < run.graphs.length ? viewOf(index) : null;
  forgetFollowers();
  Object.assign(state, {...nothingChosen, ...wanted, graph: index, view});
  hideParts(view);
  showHeader(view);
  if (run.graphs.length > 1) {
    part("graph").value = index;
    showGraphs(chooseGraph);
  }
  showFindings(view);
  showCharts();
  showTables(view);
  follow("steps", markSteps);
  follow("link", keepLink);
  markSteps();
  tellFirstUses();
}

function chooseGraph(index) {
  showGraph(index, {tables: {graphs: state.tables.graphs}});
  keepLink();
}

part("page").hidden = false;
if (run.graphs.length < 2) {
  part("graphs").closest("section").remove();
}
if (run.graphs.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  const names = run.graphs.map(graph => cut(graph.name, 80) || "without a name");
  choice.append(...names.map((name, index) => make("option", {value: index}, name)));
  choice.addEventListener("change", () => chooseGraph(Number(choice.value)));
}
// Without a graph one part says why, and the others would say the same.
if (run.graphs.length === 0) {
  document.querySelectorAll("#figures, main section").forEach(piece => {
    piece.hidden = !piece.querySelector("#findings, #steps");
  });
}
function showLink() {
  const wanted = wantedByLink(location.hash);
  showGraph(wanted.graph, wanted);
}

showSteps();
showWords();
showHelp();
showLink();
document.addEventListener("keydown", event => {
  if (event.key === "Escape" && !part("help").open) {
    change({finding: null});
  }
});
window.addEventListener("hashchange", () => isLink(location.hash) && showLink());

let drawnWidth = window.innerWidth;
// Paper has its own width, of which 673 pixels are left within A4's margins.
window.addEventListener("beforeprint", () => showCharts(673));
window.addEventListener("afterprint", () => showCharts());
window.addEventListener("resize", () => {
  if (window.innerWidth !== drawnWidth) {
    drawnWidth = window.innerWidth;
    showCharts();
  }
});
