// What ran, and its three figures.

import {cut, isolated, make, part, plural, visible} from "../shared/elements.js";
import {digits, number, percent, share, time, timeParts} from "../shared/figures.js";
import {run} from "./data.js";
import {noGraphs, whyNoLayers} from "./view.js";

const clock = hz => (number(hz) > 0 ? `${digits(number(hz) / 1e6, 1)} MHz` : null);

const fact = (name, value) => make("div", {}, make("dt", {}, name), make("dd", {}, value));

// A key is no text of the data, so what is hidden in it is not escaped yet.
function labelsOf() {
  const most = 20;
  const labels = Object.entries(run.labels);
  const shown = labels
    .slice(0, most)
    .map(([key, value]) => fact(isolated(cut(visible(key), 40)), isolated(value || "no value")));
  return labels.length > most ? [...shown, fact("Labels", `${labels.length - most} more`)] : shown;
}

function factsOf(view) {
  const {header} = run;
  const graph = view?.graph;
  const date = header && number(header.epoch_us) > 0 ? new Date(number(header.epoch_us) / 1000) : null;
  const facts = [
    ["Log", run.log],
    ["Recorded", date && !isNaN(date) ? `${date.toISOString().replace("T", " ").slice(0, 16)} UTC` : null],
    ["Executions", graph ? digits(view.picture.count) + (run.asynchronous ? ", asynchronous" : "") : null],
    ["Level", run.level],
    ["DSP clock", graph && clock(graph.dsp_clock_hz)],
    ["Krel clock", graph && clock(graph.krel_clock_hz)],
    ["Runtime", header && [header.generator, header.generator_version].filter(Boolean).join(" ")],
    ["Backend", header?.backend_version],
  ];
  return facts
    .filter(([, value]) => graph || value)
    .map(([name, value]) => fact(name, value || "not told"))
    .concat(labelsOf());
}

const figure = (name, value, unit, note) =>
  make(
    "div",
    {},
    make("dt", {}, name),
    make("dd", {class: "large"}, value, unit ? make("small", {}, unit) : null),
    make("dd", {class: "note"}, note),
  );

const percentFigure = (name, piece, whole, note, why) =>
  piece !== null && whole > 0
    ? figure(name, percent(share(piece, whole)).slice(0, -1), "%", note)
    : figure(name, "–", "", why);

function figuresOf(view) {
  const average = view && number(view.graph.average.duration_us);
  const spread = view?.graph.spread;
  const count = view && number(spread.count);
  const accelerator = view?.graph.breakdown ? number(view.graph.breakdown.accelerator_us) : null;
  const [value, unit] = count ? timeParts(spread.median_us) : ["–", ""];
  const krel = view && view.layers.length > 0 ? view.krel : null;
  return [
    figure(
      "Time of an inference",
      value,
      unit,
      count
        ? `the median of ${plural(count, "execution", "executions")}; ${time(average)} on average`
        : view
          ? "No execution has both times."
          : noGraphs(),
    ),
    percentFigure(
      "Share of the accelerator",
      accelerator,
      average,
      `${time(accelerator)} of an average inference`,
      view ? "The log has no data of the backend on this graph." : noGraphs(),
    ),
    percentFigure(
      "Share on the Krel core",
      krel,
      view?.whole,
      view ? `of the layers' time; ${time(view.dsp)} are on the DSP` : "",
      whyNoLayers(view),
    ),
  ];
}

export function showHeader(view) {
  const graph = view?.graph;
  const name = graph ? graph.name || "Graph without a name" : run.log.split("/").pop() || "Profile of a run";
  part("name").textContent = name;
  part("facts").replaceChildren(...factsOf(view));
  part("figures").replaceChildren(...figuresOf(view));
  document.title = `${name} – profile of a run`;
  part("origin").replaceChildren(
    "Made of ",
    isolated(run.log),
    ". Times are in microseconds (us) unless they say otherwise; layers' times are averages of an execution.",
  );
}
