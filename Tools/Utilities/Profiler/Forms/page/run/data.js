// The page of a run, from its data to its parts:
//
// Data   `run` is the object of --json; numbers above 2^53 are texts in it. Its layers come as columns, from which they
//        take their figures, and a `place` in their list; the columns of ORU layers that only tables show stand behind
//        the script (`completeLayers`). `pictures` has, for each graph, the figures of the charts of its executions,
//        `quantiles` which of them are shown, and of how many, `glossary` what the words of the page mean. None of it
//        changes.
// State  shared/state.js: the graph that is shown, the layer that is pointed at or chosen. `viewOf` (view.js) is what a
//        graph's layers are.
// Parts  an element of page.html and a file here, with a function that fills it: header, findings, inference, strip,
//        ranking, types, executions, steps, layers. A part that has nothing to show says why (`missing`). main.js draws
//        them, and draws those that are as wide as the window again when that changes.
//
// The files are modules, which EmbedPage.cmake puts together in the order that CMakeLists.txt has; two of them may not
// export one name.

import {dataOf} from "../shared/elements.js";

/** Lets objects with a `place` have what stands there in columns, a list of values for each key. */
function give(prototype, columns) {
  for (const [key, values] of Object.entries(columns)) {
    Object.defineProperty(prototype, key, {
      get() {
        return values[this.place];
      },
    });
  }
}

function layersOf(columns) {
  class Layer {
    constructor(place) {
      this.place = place;
    }
  }
  give(Layer.prototype, columns);
  return Object.values(columns)[0].map((_, place) => new Layer(place));
}

export const run = dataOf("run-data");
for (const graph of run.graphs) {
  graph.zeb_layers = layersOf(graph.zeb_layers);
  graph.oru_layers = layersOf(graph.oru_layers);
}

let isComplete = false;
/** To be called before the first table is shown, once the whole page is read. */
export function completeLayers() {
  if (!isComplete) {
    isComplete = true;
    dataOf("table-data").forEach((columns, index) => {
      const [layer] = run.graphs[index].oru_layers;
      if (layer) {
        give(Object.getPrototypeOf(layer), columns);
      }
    });
  }
}

const ofExecutions = dataOf("execution-data");
export const pictures = ofExecutions.pictures;
export const glossary = ofExecutions.glossary;
export const quantiles = ofExecutions.quantiles;
