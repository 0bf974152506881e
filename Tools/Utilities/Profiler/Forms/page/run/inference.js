// Where an inference goes: the parts of an average execution, each below what it is part of.

import {bar, chart, draw, headings, label, make, missing, part, widthOfText} from "../shared/elements.js";
import {number, percent, share, usDigits} from "../shared/figures.js";
import {noGraphs, whyNoLayers} from "./view.js";

const shades = {
  inference: "shade-1",
  backend: "shade-2",
  accelerator: "shade-3",
  krel: "krel",
  dsp: "dsp",
  "handing-over": "shade-1",
  host: "shade-2",
  "queue-wait": "shade-2",
  event: "shade-2",
  rest: "unknown",
};

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
  const box = draw("rect", {...place, class: `${shades[kind]} edge`}, draw("title", {}, `${name}: ${usDigits(us)} us`));
  const text = [`${name}  ${usDigits(us)} us`, name].find(words => widthOfText(words) < room - 14);
  return [box, text ? label((x + 9).toFixed(1), y + 22, text, `on-${shades[kind]}`) : null];
}

const rowOf = ({name, us, kind}, from, size, level) =>
  make(
    "tr",
    {},
    make("th", {scope: "row", class: `depth-${level}`}, name),
    bar([[Math.min(from, 1), Math.min(size, 1), shades[kind]]]),
    make("td", {class: "number"}, usDigits(us)),
    make("td", {class: "number"}, percent(size)),
  );

export function showInference(view, width) {
  const host = part("inference");
  if (!view || number(view.graph.average.duration_us) === 0) {
    host.replaceChildren(missing(view ? "No execution of this graph has both times." : noGraphs()));
    return;
  }
  const {inference: tree} = view.graph;
  const pieces = [];
  const rows = [];
  const notes = [];
  let depth = 0;
  const place = (piece, from, level) => {
    const size = share(piece.us, tree.us);
    depth = Math.max(depth, level + 1);
    pieces.push(pieceOf(piece, from, size, level, width));
    rows.push(rowOf(piece, from, size, level));
    if (piece.note) {
      notes.push(make("p", {class: "hint"}, piece.note));
    }
    let start = from;
    for (const inner of piece.parts) {
      place(inner, start, level + 1);
      start += share(inner.us, tree.us);
    }
  };
  place(tree, 0, 0);
  const words = `Nested bars: ${tree.name} takes ${usDigits(tree.us)} us. The table below has the same figures.`;
  const titles = headings(["Part"], [""], ["Time (us)", "number"], ["Share", "number"]);
  host.replaceChildren(
    chart(width, depth * rowHeight, words, hatch(), pieces),
    make("div", {class: "scroll spread"}, make("table", {}, titles, make("tbody", {}, rows))),
  );
  host.append(...notes, make("p", {class: "hint"}, "Averages, the first execution included."));
  if (view.layers.length === 0) {
    host.append(missing(whyNoLayers(view)));
  }
}
