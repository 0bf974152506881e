// The page of a run, from its data to its parts:
//
// Data   `run` is the object of --json; numbers above 2^53 are texts in it. `pictures` has, for each graph, the figures
//        of the charts of its executions, `quantiles` which of them are shown, and of how many, `glossary` what the
//        words of the page mean. None of it changes.
// State  shared/state.js: the graph that is shown, the layer that is pointed at or chosen. `viewOf` (view.js) is what a
//        graph's layers are.
// Parts  an element of page.html and a file here, with a function that fills it: header, findings, inference, strip,
//        ranking, types, executions, steps, layers. A part that has nothing to show says why (`missing`). main.js draws
//        them, and draws those that are as wide as the window again when that changes.
//
// The files are modules, which EmbedPage.cmake puts together in the order that CMakeLists.txt has; two of them may not
// export one name.

import {dataOf} from "../shared/elements.js";

export const run = dataOf("run-data");
const ofExecutions = dataOf("execution-data");
export const pictures = ofExecutions.pictures;
export const glossary = ofExecutions.glossary;
export const quantiles = ofExecutions.quantiles;
