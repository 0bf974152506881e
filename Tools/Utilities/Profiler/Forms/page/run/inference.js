// Where an inference goes: the parts of an average execution, each below what it is part of.

import {bar, chart, draw, headings, label, make, missing, part, widthOfText} from "../shared/elements.js";
import {digits, number, percent, share, time} from "../shared/figures.js";
import {noGraphs, whyNoLayers} from "./view.js";

function inferenceOf(view) {
  const {graph} = view;
  const node = (name, us, kind, parts = []) => ({name, us, kind, parts});
  const addRest = (whole, name) => {
    if (whole.parts.length > 0) {
      const rest = whole.us - whole.parts.reduce((sum, piece) => sum + piece.us, 0);
      whole.parts.push(node(name, Math.max(0, rest), "unknown"));
    }
    return whole;
  };
  const whole = node("Marlix", number(graph.average.duration_us), "shade-1");
  const figures = graph.breakdown;
  if (!figures) {
    return whole;
  }
  const parts = [
    node("Accelerator", number(figures.accelerator_us), "shade-3"),
    node("IPC", number(figures.ipc_us), "shade-2"),
    node("Input tensor copy", number(figures.input_copy_us), "shade-2"),
    node("Output tensor copy", number(figures.output_copy_us), "shade-2"),
    node("Queue wait", number(figures.queue_wait_us), "shade-2"),
  ].filter(piece => piece.us !== null);
  if (figures.accelerator_us !== null && view.whole > 0) {
    parts[0].parts = [node("Layers on the Krel core", view.krel, "krel"), node("Layers on the DSP", view.dsp, "dsp")];
    addRest(parts[0], "In no layer");
  }
  if (figures.backend_us !== null) {
    whole.parts.push(addRest(node("Backend", number(figures.backend_us), "shade-2", parts), "Not accounted for"));
    return addRest(whole, "Outside the backend");
  }
  whole.parts = parts;
  return addRest(whole, "Not accounted for");
}

const hatch = () =>
  draw(
    "defs",
    {},
    draw(
      "pattern",
      {id: "hatch", width: 6, height: 6, patternUnits: "userSpaceOnUse", patternTransform: "rotate(45)"},
      draw("rect", {width: 6, height: 6, class: "track"}),
      draw("rect", {width: 2, height: 6, class: "other"}),
    ),
  );

const rowHeight = 38;

function pieceOf({name, us, kind}, from, size, level, width) {
  const room = Math.min(size, Math.max(0, 1 - from)) * width;
  const x = from * width,
    y = level * rowHeight;
  const place = {x: x.toFixed(1), y, width: room.toFixed(1), height: rowHeight - 2};
  const box = draw("rect", {...place, class: `${kind} edge`}, draw("title", {}, `${name}: ${time(us)}`));
  const text = [`${name}  ${time(us)}`, name].find(words => widthOfText(words) < room - 14);
  return [box, text ? label((x + 9).toFixed(1), y + 22, text, `on-${kind}`) : null];
}

const rowOf = ({name, us, kind}, from, size, level) =>
  make(
    "tr",
    {},
    make("th", {scope: "row", class: `depth-${level}`}, name),
    bar([[Math.min(from, 1), Math.min(size, 1), kind]]),
    make("td", {class: "number"}, digits(us, Number.isInteger(us) ? 0 : 1)),
    make("td", {class: "number"}, percent(size)),
  );

export function showInference(view, width) {
  const host = part("inference");
  if (!view || number(view.graph.average.duration_us) === 0) {
    host.replaceChildren(missing(view ? "No execution of this graph has both times." : noGraphs()));
    return;
  }
  const tree = inferenceOf(view);
  const pieces = [];
  const rows = [];
  let depth = 0;
  const place = (piece, from, level) => {
    const size = share(piece.us, tree.us);
    depth = Math.max(depth, level + 1);
    pieces.push(pieceOf(piece, from, size, level, width));
    rows.push(rowOf(piece, from, size, level));
    let start = from;
    for (const inner of piece.parts) {
      place(inner, start, level + 1);
      start += share(inner.us, tree.us);
    }
  };
  place(tree, 0, 0);
  const words = `Nested bars: ${tree.name} takes ${time(tree.us)}. The table below has the same figures.`;
  const titles = headings(["Part"], [""], ["Time (us)", "number"], ["Share", "number"]);
  host.replaceChildren(
    chart(width, depth * rowHeight, words, hatch(), pieces),
    make("div", {class: "scroll spread"}, make("table", {}, titles, make("tbody", {}, rows))),
  );
  if (!view.graph.breakdown) {
    host.append(
      missing("The log has no data of the backend on this graph, so it is not known what the time consists of."),
    );
  } else if (view.layers.length === 0) {
    host.append(missing(whyNoLayers(view)));
  }
}
