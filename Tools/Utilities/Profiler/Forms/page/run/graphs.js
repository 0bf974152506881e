// All graphs of a run, where it has several.

import {make, part} from "../shared/elements.js";
import {number, percent, share} from "../shared/figures.js";
import {state} from "../shared/state.js";
import {Table} from "../shared/Table.js";
import {run} from "./data.js";

const whole = run.graphs.reduce((sum, graph) => sum + number(graph.total_us), 0);

function acceleratorShare(graph) {
  const us = number(graph.breakdown?.accelerator_us);
  return us === null ? null : share(us, number(graph.average.duration_us));
}

/** `choose` is called with the place of the graph that is pressed. */
export function showGraphs(choose) {
  const places = new Map(run.graphs.map((graph, place) => [graph, place]));
  const link = (name, graph) => {
    const place = places.get(graph);
    const isShown = place === state.graph ? "true" : null;
    const made = make("a", {class: "choice", href: `#graph=${place + 1}`, "aria-current": isShown}, name);
    made.addEventListener("click", event => {
      event.preventDefault();
      choose(place);
      part("graphs").querySelector("[aria-current]")?.focus();
    });
    return made;
  };
  const columns = [
    {title: "Graph", isText: true, isHeading: true, of: graph => graph.name || "without a name", text: link},
    {
      title: "Median (us)",
      isDeciding: true,
      of: graph => (number(graph.spread.count) > 0 ? graph.spread.median_us : null),
    },
    {title: "Of the run", of: graph => share(number(graph.total_us), whole), text: value => percent(value)},
    {title: "Accelerator", of: acceleratorShare, text: value => (value === null ? "–" : percent(value))},
    {title: "First finding", isText: true, least: 300, of: graph => graph.findings[0]?.text ?? ""},
  ];
  new Table(part("graphs"), {name: "Graphs of the run", things: ["graph", "graphs"], rows: run.graphs, columns});
}
