// How much slower or faster, as a bar.

import {draw} from "../shared/elements.js";

// A bar from the middle, which is no change, to one side, of `limit` at most; what lies beyond has an arrowhead.
export function differenceBar(height, limit, {change, low = null, high = null, kind}) {
  const at = value => 50 + 50 * Math.max(-1, Math.min(1, limit > 0 ? value / limit : 0));
  const line = (x1, x2, y1, y2, kindOfLine) =>
    draw("line", {x1: `${x1.toFixed(2)}%`, x2: `${x2.toFixed(2)}%`, y1, y2, class: kindOfLine});
  const middle = height / 2;
  const marks = [];
  if (change !== null && change !== 0) {
    const from = Math.min(50, at(change));
    marks.push(
      draw("rect", {
        x: `${from.toFixed(2)}%`,
        y: middle - 5,
        width: `${Math.max(0.4, Math.abs(at(change) - 50)).toFixed(2)}%`,
        height: 10,
        class: kind,
      }),
    );
  }
  marks.push(line(50, 50, 0, height, "zero"));
  if (low !== null && high !== null) {
    marks.push(line(at(low), at(high), middle, middle, "whisker"));
    [low, high]
      .filter(end => Math.abs(end) <= limit)
      .forEach(end => marks.push(line(at(end), at(end), middle - 4, middle + 4, "whisker")));
  }
  const ends = [change, low, high].filter(end => end !== null);
  [-1, 1]
    .filter(side => ends.some(end => end * side > limit))
    .forEach(side =>
      marks.push(
        draw(
          "svg",
          {x: side < 0 ? "0%" : "100%", y: middle, width: 1, height: 1, class: "beyond-side"},
          draw("path", {class: "beyond", d: `M0 -5L${side * 7} 0L0 5z`}),
        ),
      ),
    );
  return draw("svg", {height, "aria-hidden": "true"}, marks);
}
