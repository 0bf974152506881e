// The costliest layers, and what they add up to.

import {
  chart,
  draw,
  fitted,
  label,
  legend,
  missing,
  part,
  plural,
  rect,
  stroke,
  widthOfText,
} from "../shared/elements.js";
import {digits, percent, share, ticks, time} from "../shared/figures.js";
import {follow, hover, marked, pin, state} from "../shared/state.js";
import {subject} from "./subject.js";
import {whyNoZebLayers} from "./view.js";

const maxRanked = 20;
const rowHeight = 24,
  rankingTop = 22;

/** Columns of figures at the right edge; a narrow picture leaves the layer's share out, which the table has. */
function figureColumns(view, width) {
  const columns = [
    {title: "Time (us)", of: us => digits(us), kind: ""},
    {title: "Share", of: us => percent(share(us, view.whole)), kind: "soft"},
    {title: "Sum", of: (us, sum) => percent(share(sum, view.whole)), kind: "soft"},
  ].filter(({title}) => width >= 420 || title !== "Share");
  let right = width;
  for (const column of columns.toReversed()) {
    column.right = right;
    right -= Math.max(widthOfText(column.title), widthOfText(digits(view.whole)), 40) + 14;
  }
  return {columns, left: right};
}

export function showRanking(view, width) {
  const host = part("ranking");
  if (!view || !view.hasZeb || view.whole === 0) {
    host.replaceChildren(missing(whyNoZebLayers(view)));
    return;
  }
  const order = view.layers.map((layer, index) => index);
  order.sort((left, right) => view.layers[right].time - view.layers[left].time);
  const shown = order.slice(0, maxRanked);
  const others = order.length - shown.length;
  const nameWidth = Math.min(210, width * 0.3);
  const figures = figureColumns(view, width);
  const left = nameWidth + 10,
    room = figures.left - left - 6;
  const longest = view.layers[shown[0]].time;
  const height = rankingTop + (shown.length + (others > 0 ? 1 : 0)) * rowHeight + 4;
  const numbers = (y, us, sum) =>
    figures.columns.map(({right, of, kind}) => label(right, y + 16, of(us, sum), kind, "end"));
  const x = us => left + (us / longest) * room;
  const drawn = ticks(0, longest, room < 150 ? 1 : 3).map(us => [
    stroke(
      [
        [x(us), rankingTop - 4],
        [x(us), height],
      ],
      "axis",
    ),
    label(x(us), 11, us === 0 ? "0" : `${digits(us, us < 1 ? 1 : 0)} us`, "soft", us === 0 ? "start" : "middle"),
  ]);
  drawn.push(figures.columns.map(({title, right}) => label(right, 11, title, "soft", "end")));
  const marks = new Map();
  const subjects = new Map();
  let sum = 0;
  shown.forEach((index, row) => {
    const layer = view.layers[index],
      y = rankingTop + row * rowHeight;
    const mark = rect(0, y, width, rowHeight, "row-mark");
    mark.setAttribute("visibility", "hidden");
    marks.set(index, mark);
    const about = draw("path", {class: "subject", d: `M${nameWidth + 3} ${y + 8}l6 4l-6 4Z`, visibility: "hidden"});
    subjects.set(index, about);
    sum += layer.time;
    const group = draw(
      "g",
      {class: "clicked"},
      draw("title", {}, layer.name),
      rect(0, y, width, rowHeight, "row-room"),
      mark,
      about,
      label(nameWidth, y + 16, fitted(layer.name, nameWidth), "", "end"),
      rect(left, y + 4, x(layer.krel) - left, rowHeight - 8, "krel"),
      rect(x(layer.krel), y + 4, x(layer.time) - x(layer.krel), rowHeight - 8, "dsp"),
      numbers(y, layer.time, sum),
    );
    group.addEventListener("pointerenter", () => hover(index));
    group.addEventListener("pointerleave", () => hover(null));
    group.addEventListener("click", () => pin(state.pinned === index ? null : index));
    drawn.push(group);
  });
  if (others > 0) {
    const y = rankingTop + shown.length * rowHeight;
    drawn.push(
      label(nameWidth, y + 16, fitted(plural(others, "other", "others"), nameWidth), "soft", "end"),
      numbers(y, view.whole - sum, view.whole),
    );
  }
  const words =
    `The ${shown.length} costliest of ${order.length} ZEB layers take ${percent(share(sum, view.whole))} of the ` +
    `layers' time. The costliest is ${view.layers[shown[0]].name} with ${time(longest)}. The table of all ZEB layers ` +
    "has the figures.";
  host.replaceChildren(chart(width, height, words, drawn), legend(["krel", "on the Krel core"], ["dsp", "on the DSP"]));
  const show = (shapes, isShown) =>
    shapes.forEach((shape, index) => shape.setAttribute("visibility", isShown(index) ? "visible" : "hidden"));
  const showMarked = () => {
    show(marks, index => index === marked());
    show(subjects, index => subject().layers.has(index));
  };
  follow("ranking", showMarked);
  showMarked();
}
