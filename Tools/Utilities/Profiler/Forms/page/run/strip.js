// One inference as a strip: the layers in their order, as wide as their time. It shows a piece of the inference
// (`state.zoom`), and marks what is searched for (`state.search`).

import {draw, headings, label, legend, make, missing, part, plural, rect, widthOfText} from "../shared/elements.js";
import {digits, percent, share} from "../shared/figures.js";
import {change, follow, hover, marked, pin, state} from "../shared/state.js";
import {subject} from "./subject.js";
import {oruTime, whyNoLayers, wordsOfLayer} from "./view.js";

const marksHeight = 8,
  zebHeight = 56,
  oruTop = marksHeight + zebHeight + 8,
  oruHeight = 26,
  subjectHeight = 10;
const maxZebBars = 600,
  maxOruBars = 800,
  maxHits = 500; // that are drawn at a time
const maxOruShown = 12; // of a chosen layer

// ---- What is drawn

/**
 * Pieces {from, krel, dsp, name} (us, in their order) as bars on whole pixels. What is no wider than `grain` pixels
 * goes together with its neighbours; over many of them the colours have their shares.
 */
function barsOf(pieces, {from, scale}, grain) {
  const edge = us => Math.round(((us - from) * scale) / grain) * grain;
  const bars = [];
  let owed = 0;
  for (const piece of pieces) {
    const x = edge(piece.from),
      width = edge(piece.from + piece.krel + piece.dsp) - x;
    if (width > grain) {
      bars.push({...piece, x, width});
      continue;
    }
    owed += piece.dsp * scale;
    if (width === 0) {
      continue;
    }
    const kind = owed >= grain / 2 ? "dsp" : "krel";
    owed -= kind === "dsp" ? grain : 0;
    const last = bars[bars.length - 1];
    if (last?.kind === kind && last.x + last.width === x) {
      last.width += width;
    } else {
      bars.push({x, width, kind});
    }
  }
  return bars;
}

function fewBarsOf(pieces, window, most) {
  let grain = 1;
  let bars = barsOf(pieces, window, grain);
  for (; bars.length > most; bars = barsOf(pieces, window, grain)) {
    grain *= 2;
  }
  return bars;
}

// The end of a layer's name tells it from others, so it is the front that goes.
function endOf(name, width) {
  if (widthOfText(name) <= width) {
    return name;
  }
  const characters = Array.from(name).slice(-40);
  let start = 1;
  while (start < characters.length && widthOfText(`…${characters.slice(start).join("")}`) > width) {
    ++start;
  }
  const rest = characters.slice(start).join("");
  const border = rest.search(/[_/.:-]./);
  const words = border >= 0 && rest.length - border > 4 ? rest.slice(border + 1) : rest;
  return words.length < 4 ? "" : `…${words}`;
}

// Of a type's name it is the front that tells.
function startOf(name, width) {
  let shown = name.slice(0, 40);
  for (let most = shown.length; most > 0 && widthOfText(shown) > width; --most) {
    shown = `${name.slice(0, most - 1)}…`;
  }
  return shown.length < 4 && shown !== name ? "" : shown;
}

function drawnBar({x, width, kind, krel, dsp, name}, top, tall, fit) {
  if (kind) {
    return rect(x, top, width, tall, kind);
  }
  const room = width > 3 ? width - 1 : width; // a border to the next one
  const onKrel = Math.round(room * share(krel, krel + dsp));
  const [at, size, text] = onKrel * 2 >= room ? [x, onKrel, "on-krel"] : [x + onKrel, room - onKrel, "on-dsp"];
  const shown = size > 28 ? fit(name, size - 8) : "";
  return [
    onKrel > 0 ? rect(x, top, onKrel, tall, "krel") : null,
    onKrel < room ? rect(x + onKrel, top, room - onKrel, tall, "dsp") : null,
    shown !== "" ? label(at + 5, top + tall / 2 + 4, shown, text) : null,
  ];
}

/** What all names begin with, up to the last border of words in it. */
function prefixOf(names) {
  const borders = ["_", "/", ".", ":"];
  let prefix = names[0] ?? "";
  for (const name of names) {
    while (!name.startsWith(prefix)) {
      prefix = prefix.slice(0, -1);
    }
  }
  return names.length < 2 ? "" : prefix.slice(0, Math.max(...borders.map(end => prefix.lastIndexOf(end))) + 1);
}

function zebPiecesOf(view) {
  const prefix = prefixOf(view.layers.map(layer => layer.name)).length;
  return view.layers.map(({from, krel, dsp, name}) => ({from, krel, dsp, name: name.slice(prefix)}));
}

const oruPiecesOf = view =>
  view.layers.flatMap(layer => {
    const sum = layer.oru.reduce((total, position) => total + oruTime(view.oru[position]), 0);
    const shrink = sum > layer.time ? layer.time / sum : 1;
    let from = layer.from;
    return layer.oru.map(position => {
      const oru = view.oru[position],
        us = oruTime(oru) * shrink;
      from += us;
      const [krel, dsp] = oru.offloaded ? [us, 0] : [0, us];
      return {from: from - us, krel, dsp, name: oru.type_name, position};
    });
  });

/** The place of the last piece that begins at that time or before it. */
function placeAt(pieces, us) {
  let low = 0,
    high = pieces.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (pieces[middle].from <= us) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
}

// ---- Zoom

const minSpanUs = 4;
const whole = {from: 0, to: 1};
const zoomNow = () => state.zoom ?? whole;

/** Shows a piece of the inference, from and to a share of it, as far as there is one. */
function show(view, from, to) {
  const span = Math.min(1, Math.max(to - from, minSpanUs / view.whole));
  const start = Math.min(1 - span, Math.max(0, (from + to - span) / 2));
  change({zoom: span >= 1 ? null : {from: start, to: start + span}});
}

/** Shows so many times as much, around a place that stays where it is. */
function zoomBy(view, factor, around) {
  const {from, to} = zoomNow();
  const middle = around ?? (from + to) / 2;
  show(view, middle - (middle - from) * factor, middle + (to - middle) * factor);
}

function bringIntoView(view, index) {
  const {from, to} = zoomNow();
  const layer = view.layers[index];
  const start = layer.from / view.whole,
    end = (layer.from + layer.time) / view.whole;
  if (start < from || end > to) {
    const room = Math.max(to - from, (end - start) * 1.5);
    show(view, (start + end - room) / 2, (start + end + room) / 2);
  }
}

// ---- What the reader does

const keySteps = {ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10};
const keyZooms = {"+": 0.5, "=": 0.5, "-": 2, 0: Infinity};

function pressed(view, key) {
  const last = view.layers.length - 1;
  const now = marked();
  const go = index => {
    hover(index);
    bringIntoView(view, index);
  };
  if (key in keySteps) {
    go(now === null ? 0 : Math.min(last, Math.max(0, now + keySteps[key])));
  } else if (key === "Home" || key === "End") {
    go(key === "Home" ? 0 : last);
  } else if (key === "Enter" || key === " ") {
    pin(now !== null && state.pinned === now && state.hovered === null ? null : now);
  } else if (key === "Escape") {
    pin(null);
  } else if (key === "0") {
    change({zoom: null});
  } else if (key in keyZooms) {
    const layer = now === null ? null : view.layers[now];
    zoomBy(view, keyZooms[key], layer ? (layer.from + layer.time / 2) / view.whole : null);
  } else {
    return false;
  }
  return true;
}

let lastScroll = -Infinity; // of the page: who scrolls past the strip does not want to zoom
window.addEventListener("scroll", () => (lastScroll = performance.now()), {passive: true});

function takeWheel(view, slider, shareAt) {
  slider.addEventListener(
    "wheel",
    event => {
      const {from, to} = zoomNow();
      const isIdle = event.deltaX === 0 && event.deltaY > 0 && !state.zoom;
      if (isIdle || performance.now() - lastScroll < 300) {
        return;
      }
      event.preventDefault();
      if (Math.abs(event.deltaX) > Math.abs(event.deltaY) || event.shiftKey) {
        const way = ((event.deltaX || event.deltaY) / slider.clientWidth) * (to - from);
        show(view, from + Math.min(1 - to, Math.max(-from, way)), to + Math.min(1 - to, Math.max(-from, way)));
      } else {
        zoomBy(view, 1.0035 ** Math.max(-200, Math.min(200, event.deltaY)), shareAt(event.clientX));
      }
    },
    {passive: false},
  );
}

// With a mouse a drag zooms to what it goes over; with fingers one moves the picture and two zoom.
function takePointers(view, slider, band, shareAt) {
  const fingers = new Map(); // where each pointer is down
  let start = null; // of a drag: its place, and what was shown then
  let isDrag = false;
  const ends = event => {
    fingers.delete(event.pointerId);
    start = null;
    band.hidden = true;
  };
  slider.addEventListener("pointerdown", event => {
    fingers.set(event.pointerId, event.clientX);
    start = {x: event.clientX, at: shareAt(event.clientX), ...zoomNow()};
    isDrag = false;
  });
  slider.addEventListener("pointermove", event => {
    hover(placeAt(view.layers, shareAt(event.clientX) * view.whole));
    if (!fingers.has(event.pointerId)) {
      return;
    }
    const before = [...fingers.values()];
    fingers.set(event.pointerId, event.clientX);
    const after = [...fingers.values()];
    isDrag = isDrag || Math.abs(event.clientX - start.x) > 4;
    if (after.length === 2) {
      const gap = places => Math.max(10, Math.abs(places[0] - places[1]));
      zoomBy(view, gap(before) / gap(after), shareAt((after[0] + after[1]) / 2));
    } else if (isDrag && event.pointerType === "touch" && state.zoom) {
      const way = ((start.x - event.clientX) / slider.clientWidth) * (start.to - start.from);
      const kept = Math.min(1 - start.to, Math.max(-start.from, way));
      show(view, start.from + kept, start.to + kept);
    } else if (isDrag && event.pointerType !== "touch") {
      const box = slider.getBoundingClientRect();
      const places = [start.x, event.clientX].map(x => Math.min(box.width, Math.max(0, x - box.left)));
      band.hidden = false;
      band.style.left = `${Math.min(...places)}px`;
      band.style.width = `${Math.abs(places[0] - places[1])}px`;
    }
  });
  slider.addEventListener("pointerup", event => {
    if (isDrag && start && event.pointerType !== "touch") {
      const places = [start.at, shareAt(event.clientX)].map(at => Math.min(1, Math.max(0, at)));
      show(view, Math.min(...places), Math.max(...places));
    }
    ends(event);
  });
  slider.addEventListener("pointercancel", ends);
  slider.addEventListener("pointerleave", event => {
    ends(event);
    hover(null);
  });
  slider.addEventListener("click", event => {
    const index = placeAt(view.layers, shareAt(event.clientX) * view.whole);
    if (!isDrag) {
      pin(state.pinned === index ? null : index);
    }
  });
}

// ---- The part

/** The ORU layers of the chosen layer. */
function chosenTable(view, index) {
  const layer = view.layers[index];
  const rows = layer.oru.slice(0, maxOruShown).map(position => {
    const oru = view.oru[position];
    return make(
      "tr",
      {},
      make("th", {scope: "row", class: "number"}, digits(oru.id)),
      make("td", {class: "text"}, make("bdi", {}, oru.type_name)),
      make("td", {class: "number"}, digits(oruTime(oru))),
      make("td", {class: "number"}, percent(share(oruTime(oru), layer.time))),
      make("td", {}, oru.offloaded ? "Krel" : "DSP"),
    );
  });
  const titles = headings(
    ["ORU layer", "number"],
    ["Type"],
    ["Time (us)", "number"],
    ["of the layer", "number"],
    ["Runs on"],
  );
  const more = layer.oru.length - rows.length;
  return [
    make("table", {}, make("caption", {}, "Became of ", make("bdi", {}, layer.name)), titles, make("tbody", {}, rows)),
    more > 0 ? make("p", {class: "note"}, `and ${digits(more)} more, in the table of all ORU layers`) : null,
  ];
}

/** What is searched for: the layers whose names have it. */
function hitsOf(view) {
  const wanted = state.search.toLowerCase();
  view.names ??= view.layers.map(layer => layer.name.toLowerCase());
  const isOfType = index => view.layers[index].oru.some(position => view.oru[position].type_name === state.type);
  const hits = [];
  if (wanted !== "" || state.type !== null) {
    view.names.forEach((name, index) => {
      if (name.includes(wanted) && (state.type === null || isOfType(index))) {
        hits.push(index);
      }
    });
  }
  return hits;
}

class Strip {
  constructor(view, width, host) {
    const barsEnd = view.hasZeb ? oruTop + oruHeight : marksHeight + zebHeight;
    Object.assign(this, {view, width, barsEnd, height: barsEnd + subjectHeight});
    view.zebPieces ??= zebPiecesOf(view);
    view.oruPieces ??= view.hasZeb ? oruPiecesOf(view) : [];
    this.bars = draw("g", {});
    this.hits = draw("g", {});
    this.subject = draw("path", {class: "subject"});
    this.mark = draw("rect", {class: "selected", y: marksHeight + 1, height: barsEnd - marksHeight - 2, rx: 2});
    const size = {viewBox: `0 0 ${width} ${this.height}`, "aria-hidden": "true"};
    const svg = draw("svg", {class: "chart crisp", ...size}, this.bars, this.hits, this.subject, this.mark);
    const band = make("div", {class: "band", hidden: true});
    const range = {"aria-valuemin": 1, "aria-valuemax": view.layers.length, "aria-label": "Layers of an inference"};
    this.slider = make("div", {class: "strip", role: "slider", tabindex: "0", ...range}, svg, band);
    this.readout = make("p", {class: "readout"});
    this.chosen = make("div", {class: "chosen scroll"});
    const shareAt = x => {
      const box = this.slider.getBoundingClientRect();
      return zoomNow().from + ((x - box.left) / box.width) * (zoomNow().to - zoomNow().from);
    };
    takeWheel(view, this.slider, shareAt);
    takePointers(view, this.slider, band, shareAt);
    this.slider.addEventListener("blur", () => hover(null));
    this.slider.addEventListener("keydown", event => {
      if (!event.ctrlKey && !event.metaKey && !event.altKey && pressed(view, event.key)) {
        event.preventDefault();
      }
    });
    const rows = view.hasZeb
      ? "upper row: ZEB layers; lower row: the ORU layers they became"
      : "ORU layers; the log does not map them to ZEB layers";
    const colors = legend(["krel", "on the Krel core"], ["dsp", "on the DSP"], ["plain", rows]);
    host.replaceChildren(this.tools(), this.slider, colors, this.readout, this.chosen);
    this.showAll();
    follow("strip", changed => this.follow(changed));
  }

  tools() {
    this.search = make("input", {type: "search", autocomplete: "off", spellcheck: "false"});
    this.search.value = state.search;
    this.search.addEventListener("input", () => change({search: this.search.value}));
    this.search.addEventListener("keydown", event => {
      if (event.key === "Enter" && this.found.length > 0) {
        const next = this.found.find(index => index > (state.pinned ?? -1)) ?? this.found[0];
        pin(next);
        bringIntoView(this.view, next);
      }
    });
    this.count = make("span", {class: "count", role: "status"});
    const button = (text, words, action) => {
      const made = make("button", {type: "button", class: "button", "aria-label": words, title: words}, text);
      made.addEventListener("click", action);
      return made;
    };
    const field = make("label", {class: "field"}, "Find ", this.search);
    this.out = button("Whole", "Show the whole inference (0)", () => change({zoom: null}));
    return make(
      "div",
      {class: "tools"},
      field,
      button("+", "Zoom in (+)", () => zoomBy(this.view, 0.5)),
      button("−", "Zoom out (-)", () => zoomBy(this.view, 2)),
      this.out,
      this.count,
    );
  }

  window() {
    const {from, to} = zoomNow();
    const all = this.view.whole;
    return {from: from * all, to: to * all, scale: this.width / ((to - from) * all)};
  }

  showBars() {
    const window = this.window();
    const row = (pieces, most, top, tall, fit) =>
      fewBarsOf(piecesWithin(pieces, window), window, most).map(bar => drawnBar(bar, top, tall, fit));
    const zeb = row(this.view.zebPieces, maxZebBars, marksHeight, zebHeight, this.view.hasZeb ? endOf : startOf);
    const oru = row(this.view.oruPieces, maxOruBars, oruTop, oruHeight, startOf);
    this.bars.replaceChildren(...zeb.concat(oru).flat().filter(Boolean));
    this.out.disabled = state.zoom === null;
  }

  showHits() {
    const window = this.window();
    this.found = hitsOf(this.view);
    const grain = Math.ceil(this.width / maxHits);
    const places = new Map();
    for (const index of this.found) {
      const layer = this.view.layers[index];
      const x = Math.round(((layer.from - window.from) * window.scale) / grain) * grain;
      const size = Math.max(grain, Math.round(layer.time * window.scale) - 1);
      if (x + size > 0 && x < this.width) {
        places.set(x, Math.max(size, places.get(x) ?? 0));
      }
    }
    const marks = [...places].map(([x, size]) =>
      rect(Math.max(0, x), 0, Math.min(size, this.width - x, size + x), marksHeight - 3, "hit"),
    );
    this.hits.replaceChildren(...marks);
    const {from, to} = zoomNow();
    const shown = state.zoom ? `${percent(to - from)} of the inference` : "";
    const isAsked = state.search !== "" || state.type !== null;
    const found = isAsked
      ? `${digits(this.found.length)} of ${plural(this.view.layers.length, "layer", "layers")} found`
      : "";
    this.count.textContent = [found, shown].filter(Boolean).join(", ");
  }

  // What the chosen finding is about, exactly: ORU layers where there are those.
  showSubject() {
    const window = this.window();
    const {oru, layers} = subject();
    const {hasZeb, oruPieces, zebPieces} = this.view;
    const pieces = hasZeb
      ? oruPieces.filter(({position}) => oru.has(position))
      : zebPieces.filter((_, place) => layers.has(place));
    const grain = 4;
    const places = pieces
      .map(({from, krel, dsp}) => Math.round(((from + (krel + dsp) / 2 - window.from) * window.scale) / grain) * grain)
      .filter(x => x >= 0 && x <= this.width);
    const shape = x => `M${x} ${this.barsEnd + 2}l4 7h-8Z`;
    this.subject.setAttribute("d", [...new Set(places)].map(shape).join(""));
  }

  showMarked() {
    const index = marked();
    if (index === null) {
      this.mark.setAttribute("visibility", "hidden");
      this.readout.replaceChildren(make("span", {class: "call"}, "Point at a layer to see its name and times."));
      this.slider.setAttribute("aria-valuenow", 1);
      this.slider.setAttribute("aria-valuetext", "no layer chosen");
      return;
    }
    const layer = this.view.layers[index];
    const {from, scale} = this.window();
    const x = Math.max(1, (layer.from - from) * scale - 1);
    const end = Math.min(this.width - 1, (layer.from + layer.time - from) * scale);
    this.mark.setAttribute("visibility", end > 0 && x < this.width ? "visible" : "hidden");
    this.mark.setAttribute("x", x.toFixed(1));
    this.mark.setAttribute("width", Math.max(3, end - x).toFixed(1));
    const {name, facts} = wordsOfLayer(this.view, index);
    const words = facts.map(fact => make("span", {}, fact));
    this.readout.replaceChildren(make("b", {}, make("bdi", {}, name)), ...words);
    this.slider.setAttribute("aria-valuenow", index + 1);
    this.slider.setAttribute("aria-valuetext", [name, ...facts].join(", "));
  }

  showChosen() {
    const has = state.pinned !== null && this.view.hasZeb && this.view.layers[state.pinned].oru.length > 0;
    this.chosen.replaceChildren(...(has ? chosenTable(this.view, state.pinned).filter(Boolean) : []));
  }

  showAll() {
    this.showBars();
    this.showHits();
    this.showSubject();
    this.showMarked();
    this.showChosen();
  }

  follow(changed) {
    if (changed.includes("zoom")) {
      this.showBars();
    }
    if (changed.some(name => ["zoom", "search", "type"].includes(name))) {
      this.showHits();
    }
    if (changed.includes("zoom") || changed.includes("finding")) {
      this.showSubject();
    }
    if (changed.includes("pinned")) {
      this.showChosen();
    }
    this.showMarked();
  }
}

function piecesWithin(pieces, window) {
  const shown = pieces.slice(placeAt(pieces, window.from), placeAt(pieces, window.to) + 1);
  for (const edge of shown.length > 0 ? new Set([0, shown.length - 1]) : []) {
    shown[edge] = clipped(shown[edge], window);
  }
  return shown;
}

// Of a piece that begins or ends beyond what is shown, the share of each colour within it.
function clipped(piece, {from, to}) {
  const size = piece.krel + piece.dsp;
  const start = Math.max(from, piece.from),
    end = Math.min(to, piece.from + size);
  const kept = size > 0 ? Math.max(0, end - start) / size : 0;
  return kept === 1 ? piece : {...piece, from: start, krel: piece.krel * kept, dsp: piece.dsp * kept};
}

export function showStrip(view, width) {
  const host = part("strip");
  if (!view || view.whole === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  new Strip(view, width, host);
}
