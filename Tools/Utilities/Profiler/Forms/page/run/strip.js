// One inference as a strip: the layers in their order, as wide as their time.

import {draw, fitted, label, legend, make, missing, part, rect, widthOfText} from "../shared/elements.js";
import {follow, hover, marked, pin, state} from "../shared/state.js";
import {oruTime, whyNoLayers, wordsOfLayer} from "./view.js";

// What is narrower than a pixel goes together with its neighbours, so that the number of bars does not grow with the
// network.
function coalesced(pieces, pixel) {
  const bars = [];
  let open = null;
  for (const piece of pieces) {
    const size = piece.krel + piece.dsp;
    if (open && (size >= pixel || open.krel + open.dsp + size > pixel)) {
      bars.push(open);
      open = null;
    }
    if (size >= pixel) {
      bars.push(piece);
    } else if (open) {
      open = {...open, krel: open.krel + piece.krel, dsp: open.dsp + piece.dsp, name: null};
    } else if (size > 0) {
      open = piece;
    }
  }
  return open ? bars.concat(open) : bars;
}

// What is no wider than a pixel has one colour, and neighbours of one colour are one bar; over many of them the
// colours have their shares.
function split(pieces, scale) {
  const found = [];
  let owed = 0;
  for (const piece of coalesced(pieces, 1 / scale)) {
    const us = piece.krel + piece.dsp;
    if (us * scale > 1) {
      found.push(piece);
      continue;
    }
    owed += piece.dsp;
    const kind = owed >= us / 2 ? "dsp" : "krel";
    owed -= kind === "dsp" ? us : 0;
    const last = found[found.length - 1];
    if (last?.kind === kind && piece.from - last.from - last[kind] < 0.5 / scale) {
      last[kind] = piece.from + us - last.from;
    } else {
      found.push({kind, from: piece.from, krel: 0, dsp: 0, [kind]: us});
    }
  }
  return found;
}

function barOf(piece, scale, top, tall) {
  const x = piece.from * scale,
    krel = piece.krel * scale,
    all = krel + piece.dsp * scale;
  const gap = all > 4 && !piece.kind ? 1 : 0;
  const drawn = [];
  if (piece.krel > 0) {
    drawn.push(rect(x, top, piece.dsp > 0 ? krel : krel - gap, tall, "krel"));
  }
  if (piece.dsp > 0) {
    drawn.push(rect(x + krel, top, all - krel - gap, tall, "dsp"));
  }
  if (piece.name && all > 30) {
    const [from, room, kind] = krel >= all - krel ? [x, krel, "on-krel"] : [x + krel, all - krel, "on-dsp"];
    if (room > Math.min(widthOfText(piece.name), 50) + 8) {
      drawn.push(label(from + 5, top + tall / 2 + 4, fitted(piece.name, room - 8), kind));
    }
  }
  return drawn;
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
      return {from: from - us, krel: oru.offloaded ? us : 0, dsp: oru.offloaded ? 0 : us, name: oru.type_name};
    });
  });

/** The layer that lies at so many us of the strip. */
function layerAt(view, us) {
  let low = 0,
    high = view.layers.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (view.layers[middle].from <= us) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
}

const keySteps = {ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10};

function pressed(key, last) {
  const now = marked();
  if (key in keySteps) {
    hover(now === null ? 0 : Math.min(last, Math.max(0, now + keySteps[key])));
  } else if (key === "Home" || key === "End") {
    hover(key === "Home" ? 0 : last);
  } else if (key === "Enter" || key === " ") {
    pin(now !== null && state.pinned === now && state.hovered === null ? null : now);
  } else if (key === "Escape") {
    pin(null);
  } else {
    return false;
  }
  return true;
}

export function showStrip(view, width) {
  const host = part("strip");
  if (!view || view.whole === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const scale = width / view.whole;
  const zebHeight = 56,
    oruTop = 64,
    oruHeight = 26;
  const height = view.hasZeb ? oruTop + oruHeight : zebHeight;
  const bars = (pieces, top, tall) => split(pieces, scale).map(piece => barOf(piece, scale, top, tall));
  const mark = draw("rect", {class: "selected", y: 1, height: height - 2, rx: 2, visibility: "hidden"});
  const svg = draw(
    "svg",
    {class: "chart crisp", viewBox: `0 0 ${width} ${height}`, "aria-hidden": "true"},
    bars(view.layers, 0, zebHeight),
    view.hasZeb ? bars(oruPiecesOf(view), oruTop, oruHeight) : null,
    mark,
  );
  const range = {"aria-valuemin": 1, "aria-valuemax": view.layers.length, "aria-valuenow": 1};
  const words = {"aria-label": "Layers of an inference", "aria-valuetext": "no layer chosen"};
  const slider = make("div", {class: "strip", role: "slider", tabindex: "0", ...range, ...words}, svg);
  const readout = make("p", {class: "readout"});
  const at = event => {
    const box = slider.getBoundingClientRect();
    return layerAt(view, ((event.clientX - box.left) / box.width) * view.whole);
  };
  slider.addEventListener("pointermove", event => hover(at(event)));
  slider.addEventListener("pointerleave", () => hover(null));
  slider.addEventListener("click", event => pin(state.pinned === at(event) ? null : at(event)));
  slider.addEventListener("blur", () => hover(null));
  slider.addEventListener("keydown", event => {
    if (pressed(event.key, view.layers.length - 1)) {
      event.preventDefault();
    }
  });
  const showMarked = () => {
    const index = marked();
    if (index === null) {
      mark.setAttribute("visibility", "hidden");
      readout.replaceChildren(make("span", {class: "call"}, "Point at a layer to see its name and times."));
      slider.setAttribute("aria-valuetext", "no layer chosen");
      return;
    }
    const layer = view.layers[index];
    mark.setAttribute("visibility", "visible");
    mark.setAttribute("x", Math.max(1, layer.from * scale - 1));
    mark.setAttribute("width", Math.max(3, layer.time * scale + 1));
    const {name, facts} = wordsOfLayer(view, index);
    readout.replaceChildren(make("b", {}, name), ...facts.map(fact => make("span", {}, fact)));
    slider.setAttribute("aria-valuenow", index + 1);
    slider.setAttribute("aria-valuetext", [name, ...facts].join(", "));
  };
  const rows = view.hasZeb
    ? "upper row: ZEB layers; lower row: the ORU layers they became"
    : "ORU layers; the log does not map them to ZEB layers";
  host.replaceChildren(slider, legend(["krel", "on the Krel core"], ["dsp", "on the DSP"], ["plain", rows]), readout);
  follow("strip", showMarked);
  showMarked();
}
