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
import {digits, percent, share, time} from "../shared/figures.js";
import {follow, hover, marked, pin, state} from "../shared/state.js";
import {whyNoZebLayers} from "./view.js";

const maxRanked = 20;
const rowHeight = 24,
  top = 22;

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
  const nameWidth = Math.min(210, width * 0.32);
  const numbersWidth = Math.max(104, 62 + widthOfText(digits(view.whole)));
  const left = nameWidth + 10,
    room = width - left - numbersWidth;
  const longest = view.layers[shown[0]].time;
  const height = top + (shown.length + (others > 0 ? 1 : 0)) * rowHeight + 4;
  const numbers = (y, us, kind) => [
    label(width - 50, y + 16, digits(us), kind, "end"),
    label(width, y + 16, percent(share(us, view.whole)), "soft", "end"),
  ];
  const drawn = (room < 130 ? [0, 1] : [0, 0.5, 1]).map(at => [
    stroke(
      [
        [left + at * room, top - 4],
        [left + at * room, height],
      ],
      "axis",
    ),
    label(left + at * room, 11, `${at * 100} %`, "soft", at === 0 ? "start" : at === 1 ? "end" : "middle"),
  ]);
  const marks = new Map();
  const points = [[left, top]];
  let sum = 0;
  shown.forEach((index, row) => {
    const layer = view.layers[index],
      y = top + row * rowHeight;
    const mark = rect(0, y, width, rowHeight, "row-mark");
    mark.setAttribute("visibility", "hidden");
    marks.set(index, mark);
    const krel = (layer.krel / longest) * room,
      dsp = (layer.dsp / longest) * room;
    sum += layer.time;
    points.push([left + share(sum, view.whole) * room, y + rowHeight / 2]);
    const group = draw(
      "g",
      {},
      draw("title", {}, layer.name),
      mark,
      label(nameWidth, y + 16, fitted(layer.name, nameWidth), "", "end"),
      rect(left, y + 4, krel, rowHeight - 8, "krel"),
      rect(left + krel, y + 4, dsp, rowHeight - 8, "dsp"),
      numbers(y, layer.time, ""),
    );
    group.addEventListener("pointerenter", () => hover(index));
    group.addEventListener("pointerleave", () => hover(null));
    group.addEventListener("click", () => pin(state.pinned === index ? null : index));
    drawn.push(group);
  });
  if (others > 0) {
    const y = top + shown.length * rowHeight;
    points.push([left + room, y + rowHeight / 2]);
    drawn.push(
      label(nameWidth, y + 16, fitted(plural(others, "other", "others"), nameWidth), "soft", "end"),
      numbers(y, view.whole - sum, "soft"),
    );
  }
  const dots = points.slice(1).map(([x, y]) => draw("circle", {cx: x.toFixed(1), cy: y, r: 2, class: "sum-dot"}));
  drawn.push(stroke(points, "sum-halo"), stroke(points, "sum"), dots);
  const words =
    `The ${shown.length} costliest of ${order.length} ZEB layers take ${percent(share(sum, view.whole))} of the ` +
    `layers' time. The costliest is ${view.layers[shown[0]].name} with ${time(longest)}. The table of all ZEB layers ` +
    "has the figures.";
  host.replaceChildren(
    chart(width, height, words, drawn),
    legend(
      ["krel", "Krel core (us)"],
      ["dsp", "DSP (us)"],
      [
        "",
        "sum so far, of all layers",
        stroke(
          [
            [0, 6],
            [16, 6],
          ],
          "sum",
        ),
      ],
    ),
  );
  const showMarked = () =>
    marks.forEach((mark, index) => mark.setAttribute("visibility", index === marked() ? "visible" : "hidden"));
  follow("ranking", showMarked);
  showMarked();
}
