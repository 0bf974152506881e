// Draws the parts.

import {cut, make, part} from "../shared/elements.js";
import {forgetFollowers} from "../shared/state.js";
import {comparison, nameOf} from "./data.js";
import {showHeader} from "./header.js";
import {showInference} from "./inference.js";
import {showLayers} from "./layers.js";
import {showTotals} from "./totals.js";

function showGraph(index) {
  const graph = comparison.graphs[index] ?? null;
  forgetFollowers();
  showHeader(graph);
  showTotals(graph);
  showInference(graph);
  showLayers(graph);
}

part("page").hidden = false;
if (comparison.graphs.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  choice.append(...comparison.graphs.map((graph, index) => make("option", {value: index}, cut(nameOf(graph), 80))));
  choice.addEventListener("change", () => showGraph(Number(choice.value)));
}
showGraph(0);
