// How long each execution took, and how the times are spread.

import {chart, draw, headings, label, legend, make, missing, part, plural, rect, stroke} from "../shared/elements.js";
import {digits, number, percent, share, ticks, time, timeParts, unitOf} from "../shared/figures.js";
import {follow} from "../shared/state.js";
import {quantiles} from "./data.js";
import {subject} from "./subject.js";
import {noGraphs} from "./view.js";

const height = 240,
  top = 14,
  bottom = height - 26;

const line = kind =>
  stroke(
    [
      [0, 6],
      [16, 6],
    ],
    kind,
  );

// A quantile is shown where there are enough executions for it to tell anything.
const shows = (spread, {min_count: least}) => number(spread.count) >= least;
const showsP90 = spread => quantiles.some(quantile => quantile.key === "p90_us" && shows(spread, quantile));

function verticalAxis(left, right, from, to, y) {
  return ticks(from, to, 4).map(at => [
    stroke(
      [
        [left, y(at)],
        [right, y(at)],
      ],
      "axis",
    ),
    label(left - 8, y(at) + 4, timeParts(at).join(" "), "soft", "end"),
  ]);
}

/** What the bin at a place of the chart has, in words. */
function wordsOfBin(picture, place) {
  const first = place * picture.bin_size + 1;
  const median = picture.median_us[place];
  if (picture.bin_size === 1) {
    return `Execution ${digits(first)}: ${median === null ? "without time" : time(median)}`;
  }
  const last = Math.min(number(picture.count), first + picture.bin_size - 1);
  const times =
    median === null
      ? "without time"
      : `${time(picture.min_us[place])} to ${time(picture.max_us[place])}, median ${time(median)}`;
  return `Executions ${digits(first)} to ${digits(last)}: ${times}`;
}

// The scales of the timeline. Few long ones would press all others flat: what is far above them stands at the upper
// edge.
function scalesOf({picture, graph: {spread}}, width) {
  const left = 70,
    right = width - 8;
  const bins = picture.median_us.length;
  const reach = spread.p90_us + 3 * (spread.p90_us - spread.min_us);
  const highest = Math.min(spread.max_us, Math.max(1.05 * spread.p99_us, reach));
  const slack = Math.max((highest - spread.min_us) * 0.08, spread.median_us * 0.01, 1);
  const from = Math.max(0, spread.min_us - slack),
    to = highest + slack;
  const room = right - left - 12;
  return {
    left,
    right,
    from,
    to,
    x: place => left + (bins < 2 ? 0.5 : place / (bins - 1)) * room + 6,
    y: us => bottom - ((Math.min(us, to) - from) / (to - from)) * (bottom - top),
    placeAt: x => Math.min(bins - 1, Math.max(0, Math.round(((x - left - 6) / room) * (bins - 1)))) || 0,
  };
}

function markAt({x, y, to}, place, us, kind, text) {
  const at = `M${x(place).toFixed(1)} ${y(us).toFixed(1)}`;
  const shape = us > to ? `${at}l-4 7h8Z` : `${at}m0 -5l5 5l-5 5l-5 -5Z`;
  return draw("path", {class: kind, d: shape}, text ? draw("title", {}, text) : null);
}

// What has a mark of its own as an outlier is no dot besides.
function placesOf(outliers, picture) {
  return new Set(outliers.longest.map(({execution}) => Math.floor(execution / picture.bin_size)));
}

function singleMarks(picture, known, marked, scales) {
  const radius = known.length > 800 ? 1.4 : known.length > 150 ? 2 : 3;
  const dot = (place, us) =>
    draw("circle", {cx: scales.x(place).toFixed(1), cy: scales.y(us).toFixed(1), r: radius, class: "dot"});
  return known
    .filter(([, place]) => !marked.has(place))
    .map(([us, place]) => (us > scales.to ? markAt(scales, place, us, "dot") : dot(place, us)));
}

function binMarks(picture, known, marked, scales) {
  const {x, y, to} = scales;
  const edge = key => known.map(([, place]) => `${x(place).toFixed(1)} ${y(picture[key][place]).toFixed(1)}`);
  const outline = edge("max_us").concat(edge("min_us").reverse()).join("L");
  const far = known.filter(([, place]) => picture.max_us[place] > to && !marked.has(place));
  return [
    draw("path", {class: "range", d: `M${outline}Z`}),
    stroke(
      known.map(([us, place]) => [x(place), y(us)]),
      "line",
    ),
    far.map(([, place]) => markAt(scales, place, picture.max_us[place], "dot")),
  ];
}

// Around the executions that the chosen finding is about.
function ringsOf({picture, graph: {spread, outliers}}, {x, y}) {
  const times = new Map([[0, spread.first_us], ...outliers.longest.map(({execution, us}) => [execution, us])]);
  return [...subject().executions].map(execution => {
    const place = Math.floor(execution / picture.bin_size);
    const us = times.get(execution) ?? picture.median_us[place];
    return us === null ? "" : draw("circle", {cx: x(place).toFixed(1), cy: y(us).toFixed(1), r: 8, class: "ring"});
  });
}

function timeline(view, width) {
  const {picture} = view;
  const {spread, outliers} = view.graph;
  const marked = placesOf(outliers, picture);
  const scales = scalesOf(view, width);
  const {left, right, from, to, y} = scales;
  const known = picture.median_us.map((us, place) => [us, place]).filter(([us]) => us !== null);
  const level = (us, kind) =>
    stroke(
      [
        [left, y(us)],
        [right, y(us)],
      ],
      kind,
    );
  const pointer = label(right, top - 3, "", "soft", "end");
  const words =
    `Times of ${plural(number(spread.count), "execution", "executions")} from ${time(spread.min_us)} to ` +
    `${time(spread.max_us)}, median ${time(spread.median_us)}; ` +
    `${plural(number(outliers.count), "outlier", "outliers")}. The tables below have the figures.`;
  const svg = chart(
    width,
    height,
    words,
    verticalAxis(left, right, from, to, y),
    level(spread.median_us, "median"),
    showsP90(spread) ? level(spread.p90_us, "p90") : null,
    picture.bin_size > 1 ? binMarks(picture, known, marked, scales) : singleMarks(picture, known, marked, scales),
    outliers.longest.map(({execution, us}) =>
      markAt(
        scales,
        Math.floor(execution / picture.bin_size),
        us,
        "outlier",
        `Execution ${digits(execution + 1)}: ${time(us)}`,
      ),
    ),
    label(left + 6, height - 6, "execution 1", "soft", "start"),
    label(right, height - 6, digits(number(picture.count)), "soft", "end"),
    pointer,
  );
  const rings = draw("g", {});
  svg.append(rings);
  svg.addEventListener("pointermove", event => {
    const box = svg.getBoundingClientRect();
    pointer.textContent = wordsOfBin(picture, scales.placeAt(((event.clientX - box.left) / box.width) * width));
  });
  svg.addEventListener("pointerleave", () => {
    pointer.textContent = "";
  });
  return {svg, showRings: () => rings.replaceChildren(...ringsOf(view, scales))};
}

function histogram(view, width) {
  const {picture} = view;
  const {spread} = view.graph;
  const left = 44;
  const above = number(picture.above);
  const right = width - (above > 0 ? 64 : 8);
  const counts = picture.columns.map(number);
  const most = Math.max(1, above, ...counts);
  const to = picture.from_us + counts.length * picture.column_us;
  const x = us => left + ((us - picture.from_us) / (to - picture.from_us)) * (right - left);
  const y = count => bottom - (count / most) * (bottom - top - 14);
  const column = (at, room, count, kind, words) => {
    const piece = rect(at, y(count), room, bottom - y(count), kind);
    piece.append(draw("title", {}, `${words}: ${plural(count, "execution", "executions")}`));
    return piece;
  };
  const edge = width - 8;
  const drawn = ticks(0, most, 4)
    .filter(Number.isInteger)
    .map(count => [
      stroke(
        [
          [left, y(count)],
          [edge, y(count)],
        ],
        "axis",
      ),
      label(left - 8, y(count) + 4, digits(count), "soft", "end"),
    ]);
  drawn.push(label(left - 8, top - 3, "executions", "soft", "start"));
  counts.forEach((count, index) => {
    const from = picture.from_us + index * picture.column_us,
      end = from + picture.column_us;
    if (count > 0) {
      const room = Math.max(1, x(end) - x(from) - 1);
      drawn.push(column(x(from) + 0.5, room, count, "krel", `${digits(from)} to ${digits(end)} us`));
    }
  });
  if (above > 0) {
    drawn.push(
      column(right + 14, 34, above, "other", `${digits(to)} us and more`),
      label(right + 31, y(above) - 5, digits(above), "soft", "middle"),
      label(right + 31, height - 6, "above", "soft", "middle"),
    );
  }
  for (const [us, kind] of [
    [spread.median_us, "median"],
    [spread.p90_us, "p90"],
  ]) {
    if (us <= to && (kind === "median" || showsP90(spread))) {
      drawn.push(
        stroke(
          [
            [x(us), top],
            [x(us), bottom],
          ],
          kind,
        ),
      );
    }
  }
  drawn.push(
    label(left, height - 6, timeParts(picture.from_us).join(" "), "soft", "start"),
    label(right, height - 6, timeParts(to).join(" "), "soft", "end"),
  );
  const words = showsP90(spread)
    ? `Distribution: most executions take ${time(spread.min_us)} to ${time(spread.p90_us)}.`
    : `Distribution: executions take ${time(spread.min_us)} to ${time(spread.max_us)}.`;
  return chart(width, height, words, drawn);
}

function againstMedian({first_us: first, median_us: median}) {
  const change = share(first - median, median);
  return (change < 0 ? "" : "+") + percent(change);
}

function spreadTable(spread) {
  const columns = [
    ["Count", digits(spread.count)],
    ...quantiles.map(quantile => [quantile.title, shows(spread, quantile) ? time(spread[quantile.key]) : "–"]),
    ["First", spread.first_us === null ? "–" : time(spread.first_us)],
    ["against median", spread.first_us === null ? "–" : againstMedian(spread)],
  ];
  const cells = columns.map(([, value]) => make("td", {class: "number"}, value));
  const titles = headings(...columns.map(([title]) => [title, "number"]));
  return make("div", {class: "scroll spread"}, make("table", {}, titles, make("tbody", {}, make("tr", {}, cells))));
}

function outlierTable(outliers, spread) {
  if (outliers.longest.length === 0) {
    return null;
  }
  const longest = outliers.longest
    .slice()
    .sort((left, right) => right.us - left.us)
    .slice(0, 10);
  const cell = text => make("td", {class: "number"}, text);
  const {unit, of} = unitOf(longest[0].us);
  const rows = longest.map(({execution, us}) =>
    make(
      "tr",
      {},
      make("th", {scope: "row", class: "number"}, digits(execution + 1)),
      cell(of(us)),
      cell(`× ${digits(share(us, spread.median_us), 1)}`),
    ),
  );
  const caption = outliers.count > longest.length ? `The ${longest.length} longest` : "All outliers";
  const titles = headings(["Execution", "number"], [`Time (${unit})`, "number"], ["of the median", "number"]);
  const table = make("table", {}, make("caption", {}, caption), titles, make("tbody", {}, rows));
  const summary = make("summary", {}, plural(number(outliers.count), "outlier", "outliers"));
  const details = make("details", {class: "more"}, summary, make("div", {class: "list"}, table));
  const showMarks = () => {
    const {executions} = subject();
    rows.forEach((row, place) => row.classList.toggle("is-about", executions.has(longest[place].execution)));
    details.open = details.open || rows.some(row => row.classList.contains("is-about"));
  };
  return {details, showMarks};
}

export function showExecutions(view, width) {
  const host = part("executions");
  const spread = view && view.graph.spread;
  if (!view || number(spread.count) === 0) {
    host.replaceChildren(missing(view ? "No execution of this graph has both times." : noGraphs()));
    return;
  }
  const {picture} = view;
  const {outliers} = view.graph;
  const isNarrow = width < 760;
  const overTime = isNarrow ? width : Math.floor(((width - 28) * 2) / 3);
  const distribution = isNarrow ? width : width - 28 - overTime;
  const dot = draw("circle", {cx: 8, cy: 6, r: 3, class: "dot"});
  const entries =
    picture.bin_size === 1
      ? [["", "an execution", dot]]
      : [
          ["range", `shortest to longest of ${digits(picture.bin_size)} executions`],
          ["", "their median", line("line")],
        ];
  const diamond = draw("path", {d: "M8 1L13 6L8 11L3 6Z", class: "outlier"});
  entries.push(
    ["", "median", line("median")],
    ...(showsP90(spread) ? [["", "p90: nine in ten are below", line("p90")]] : []),
    ["", `outlier, above ${time(outliers.limit_us)} (1.5 medians)`, diamond],
  );
  const {svg, showRings} = timeline(view, overTime);
  const pair = make(
    "div",
    {class: "pair"},
    make("div", {}, make("h3", {}, "In the order of the run"), svg),
    make("div", {}, make("h3", {}, "How often each time occurs"), histogram(view, distribution)),
  );
  host.replaceChildren(pair, legend(...entries), spreadTable(spread));
  const table = outlierTable(outliers, spread);
  host.append(table?.details ?? "");
  const showSubject = () => {
    showRings();
    table?.showMarks();
  };
  follow("executions", changed => changed.includes("finding") && showSubject());
  showSubject();
}
