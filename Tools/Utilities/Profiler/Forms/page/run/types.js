// What the accelerator makes of the network, by kind of work.

import {bar, headings, make, missing, part} from "../shared/elements.js";
import {digits, number, percent, share} from "../shared/figures.js";
import {change, follow, marked, state} from "../shared/state.js";
import {subject} from "./subject.js";
import {whyNoLayers} from "./view.js";

const maxTypes = 12; // that are shown unasked

const kindOf = type => (number(type.krel_layers) === 0 ? "dsp" : number(type.dsp_layers) === 0 ? "krel" : "other");

function placeOf(type) {
  const places = {
    dsp: "DSP",
    krel: "Krel",
    other: `Krel (${digits(type.krel_layers)}), DSP (${digits(type.dsp_layers)})`,
  };
  return places[kindOf(type)];
}

export function showTypes(view) {
  const host = part("types");
  const types = view ? view.graph.layer_types : [];
  if (types.length === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const whole = types.reduce((sum, type) => sum + number(type.time_us), 0);
  const longest = Math.max(1, ...types.slice(0, maxTypes).map(type => number(type.time_us)));
  const rows = new Map();
  const body = make("tbody", {});
  const add = type => {
    const us = number(type.time_us);
    const choice = make(
      "button",
      {type: "button", class: "choice", title: "Show the layers of this type alone"},
      type.name,
    );
    choice.addEventListener("click", () => change({type: state.type === type.name ? null : type.name}));
    const row = make(
      "tr",
      {},
      make("th", {scope: "row", class: "text"}, choice),
      bar([[0, us / longest, kindOf(type)]]),
      make("td", {class: "number"}, digits(number(type.dsp_layers) + number(type.krel_layers))),
      make("td", {class: "number"}, digits(type.time_us)),
      make("td", {class: "number"}, percent(share(us, whole))),
      make("td", {}, placeOf(type)),
    );
    rows.set(type.name, row);
    body.append(row);
  };
  types.slice(0, maxTypes).forEach(add);
  const said = make("p", {class: "note said", role: "status"});
  let marks = [];
  const showMarked = () => {
    marks.forEach(row => row.classList.remove("is-marked"));
    const positions = marked() === null ? [] : view.layers[marked()].oru;
    marks = [...new Set(positions.map(position => rows.get(view.oru[position].type_name)))].filter(Boolean);
    marks.forEach(row => row.classList.add("is-marked"));
    const about = new Set([...subject().oru].map(position => view.oru[position].type_name));
    rows.forEach((row, name) => row.classList.toggle("is-about", about.has(name)));
    rows.forEach((row, name) => row.querySelector("button").setAttribute("aria-pressed", String(name === state.type)));
    said.textContent =
      state.type === null
        ? ""
        : `The strip marks the layers of ${state.type}, and the tables have them alone. Press it again to show all.`;
  };
  const titles = headings(
    ["Type"],
    [""],
    ["Layers", "number"],
    ["Time (us)", "number"],
    ["Share", "number"],
    ["Runs on"],
  );
  host.replaceChildren(make("div", {class: "scroll"}, make("table", {}, titles, body)), said);
  if (types.length > maxTypes) {
    const more = make("button", {type: "button", class: "button more"}, `Show all ${digits(types.length)} types`);
    more.addEventListener("click", () => {
      types.slice(maxTypes).forEach(add);
      more.remove();
      showMarked();
    });
    host.append(more);
  }
  follow("types", showMarked);
  showMarked();
}
