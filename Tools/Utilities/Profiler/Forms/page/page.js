// Everything here is drawn from the two data elements. Texts of the log reach the document as text nodes and
// attribute values only.

const run = JSON.parse(document.getElementById("run-data").textContent);
const pictures = JSON.parse(document.getElementById("execution-data").textContent);

// ---- What only this page draws and says

const stroke = (points, kind) => draw("path", {class: kind, d: "M" + points.map(([x, y]) => `${x.toFixed(1)} ${y.toFixed(1)}`).join("L")});
const percent = value => value > 0 && value < 0.00005 ? "< 0.01 %" : `${digits(value * 100, value > 0 && value < 0.001 ? 2 : 1)} %`;

// A bar in a cell of a table; `pieces` are [from, share, class], of 1.
const bar = pieces => make("td", {class: "bar", "aria-hidden": "true"},
  draw("svg", {viewBox: "0 0 1000 13", preserveAspectRatio: "none"}, rect(0, 0, 1000, 13, "track"),
    pieces.map(([from, share, kind]) => rect(from * 1000, 0, share > 0 ? Math.max(share * 1000, 3) : 0, 13, kind))));

function fitted(text, width) {
  let shown = cut(text, 80);
  for (let most = Array.from(shown).length - 1; most > 0 && widthOfText(shown) > width; --most) {
    shown = cut(text, most);
  }
  return shown;
}

// Ends of steps that people count in, some `wanted` of them.
function ticks(from, to, wanted) {
  const room = Math.max(to - from, 1e-9) / wanted;
  const power = 10 ** Math.floor(Math.log10(room));
  const step = [1, 2, 5, 10].map(factor => factor * power).find(size => size >= room);
  const found = [];
  for (let at = Math.ceil(from / step) * step; at <= to + step * 1e-6 && found.length < 50; at += step) {
    found.push(at);
  }
  return found;
}

// ---- What a graph consists of

const clock = hz => number(hz) > 0 ? `${digits(number(hz) / 1e6, 1)} MHz` : null;
const oruTime = layer => number(layer.offloaded ? layer.core_us : layer.average_us);

// The layers that the page speaks of: those of the network, or those of the accelerator if there are no others.
function viewOf(graph) {
  const oru = graph.oru_layers;
  const positions = new Map(oru.map((layer, position) => [layer.id, position]));
  const hasZeb = graph.zeb_layers.length > 0;
  const layers = hasZeb
    ? graph.zeb_layers.map(layer => ({
        name: layer.name, dsp: number(layer.dsp_us), krel: number(layer.krel_us),
        oru: layer.oru_layers.map(id => positions.get(id)).filter(position => position !== undefined)}))
    : oru.map((layer, position) => ({
        name: `ORU layer ${layer.id} (${layer.type_name})`, dsp: layer.offloaded ? 0 : oruTime(layer),
        krel: layer.offloaded ? oruTime(layer) : 0, oru: [position]}));
  const owners = oru.map(() => []);
  let whole = 0;
  layers.forEach((layer, index) => {
    layer.time = layer.dsp + layer.krel;
    layer.from = whole;
    whole += layer.time;
    layer.oru.forEach(position => owners[position].push(index));
  });
  const sum = key => layers.reduce((total, layer) => total + layer[key], 0);
  return {graph, oru, layers, owners, hasZeb, whole, dsp: sum("dsp"), krel: sum("krel")};
}

const noGraphs = () => run.header && run.header.adapter_updater
  ? "This is a log of the adapter updater, which executes no graph."
  : "The log has no execution of a graph.";

function whyNoLayers(view) {
  if (!view) {
    return noGraphs();
  }
  if (!view.graph.breakdown) {
    return "The log has no data of the backend on this graph, so its layers are not known. Profile the run on the Murl backend to see them.";
  }
  return run.level === "basic"
    ? "The run was profiled at level basic, which records no layers. Profile it at level detailed to see them."
    : "The log has no data on the layers of this graph.";
}
const whyNoZebLayers = view => !view || view.oru.length === 0 ? whyNoLayers(view)
  : "The log does not map this graph's ORU layers to the layers of the network. The parts for ORU layers have their times.";

// ---- 1. What ran

function showHeader(view) {
  const header = run.header;
  const graph = view && view.graph;
  part("name").textContent = graph ? graph.name || "Graph without a name" : run.log.split("/").pop() || "Profile of a run";
  const date = header && number(header.epoch_us) > 0 ? new Date(number(header.epoch_us) / 1000) : null;
  const facts = [
    ["Log", run.log],
    ["Recorded", date && !isNaN(date) ? date.toISOString().replace("T", " ").slice(0, 16) + " UTC" : null],
    ["Executions", graph ? digits(view.picture.count) + (run.asynchronous ? ", asynchronous" : "") : null],
    ["Level", run.level],
    ["DSP clock", graph && clock(graph.dsp_clock_hz)],
    ["Krel clock", graph && clock(graph.krel_clock_hz)],
    ["Runtime", header && [header.generator, header.generator_version].filter(Boolean).join(" ")],
    ["Backend", header && header.backend_version],
  ];
  part("facts").replaceChildren(...facts.filter(([, value]) => graph || value).map(([name, value]) =>
    make("div", {}, make("dt", {}, name), make("dd", {}, value || "not told"))));

  const average = graph && number(graph.average.duration_us);
  const accelerator = graph && graph.breakdown && number(graph.breakdown.accelerator_us);
  const figure = (name, value, unit, note) => make("div", {}, make("dt", {}, name),
    make("dd", {class: "large"}, value, unit ? make("small", {}, unit) : null), make("dd", {class: "note"}, note));
  const [value, unit] = average ? timeParts(average) : ["–", ""];
  const percentFigure = (name, known, piece, whole, note, why) => known && whole > 0
    ? figure(name, digits(share(piece, whole) * 100, 0), "%", note) : figure(name, "–", "", why);
  part("figures").replaceChildren(
    figure("Time of an inference", value, unit,
      average ? `on average; median ${time(graph.spread.median_us)}` : view ? "No execution has both times." : noGraphs()),
    percentFigure("Share of the accelerator", accelerator !== null, accelerator, average,
      `${time(accelerator)} of an inference`, view ? "The log has no data of the backend on this graph." : noGraphs()),
    percentFigure("Share on the Krel core", view && view.layers.length > 0, view && view.krel, view && view.whole,
      view ? `of the layers' time; ${time(view.dsp)} are on the DSP` : "", whyNoLayers(view)));
  document.title = `${part("name").textContent} – profile of a run`;
  part("origin").textContent = `Made of ${run.log}. Times are in microseconds (us) unless they say otherwise; layers' times are averages of an execution.`;
}

// ---- 2. What stands out

function showFindings(view) {
  const findings = run.findings.concat(view ? view.graph.findings : []);
  part("findings").replaceChildren(findings.length === 0
    ? missing(view ? "Nothing is out of the ordinary by the rules that were tried." : noGraphs())
    : make("ol", {class: "findings"}, findings.map(finding => make("li", {},
        make("b", {}, finding.us === null ? "Note" : time(finding.us)), make("span", {}, finding.text)))));
}

// ---- 3. Where an inference goes

function inferenceOf(view) {
  const {graph} = view;
  const node = (name, us, kind, parts = []) => ({name, us, kind, parts});
  const addRest = (whole, name) => {
    if (whole.parts.length > 0) {
      whole.parts.push(node(name, Math.max(0, whole.us - whole.parts.reduce((sum, piece) => sum + piece.us, 0)), "unknown"));
    }
    return whole;
  };
  const whole = node("Marlix", number(graph.average.duration_us), "shade-1");
  const figures = graph.breakdown;
  if (!figures) {
    return whole;
  }
  const parts = [
    node("Accelerator", number(figures.accelerator_us), "shade-3"), node("IPC", number(figures.ipc_us), "shade-2"),
    node("Input tensor copy", number(figures.input_copy_us), "shade-2"),
    node("Output tensor copy", number(figures.output_copy_us), "shade-2"),
    node("Queue wait", number(figures.queue_wait_us), "shade-2")].filter(piece => piece.us !== null);
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

const hatch = () => draw("defs", {}, draw("pattern", {id: "hatch", width: 6, height: 6, patternUnits: "userSpaceOnUse", patternTransform: "rotate(45)"},
  draw("rect", {width: 6, height: 6, class: "track"}), draw("rect", {width: 2, height: 6, class: "other"})));

function showInference(view, width) {
  const host = part("inference");
  if (!view || number(view.graph.average.duration_us) === 0) {
    host.replaceChildren(missing(view ? "No execution of this graph has both times." : noGraphs()));
    return;
  }
  const tree = inferenceOf(view);
  const rowHeight = 38;
  const pieces = [];
  const rows = [];
  let depth = 0;
  const place = (piece, from, level) => {
    depth = Math.max(depth, level + 1);
    const size = share(piece.us, tree.us);
    const room = Math.min(size, Math.max(0, 1 - from)) * width;
    pieces.push(draw("rect", {x: (from * width).toFixed(1), y: level * rowHeight, width: room.toFixed(1), height: rowHeight - 2,
                              class: `${piece.kind} edge`}, draw("title", {}, `${piece.name}: ${time(piece.us)}`)));
    const texts = [`${piece.name}  ${time(piece.us)}`, piece.name].filter(text => widthOfText(text) < room - 14);
    if (texts.length > 0) {
      pieces.push(label((from * width + 9).toFixed(1), level * rowHeight + 22, texts[0], `on-${piece.kind}`));
    }
    rows.push(make("tr", {}, make("th", {scope: "row", class: `depth-${level}`}, piece.name),
      bar([[Math.min(from, 1), Math.min(size, 1), piece.kind]]),
      make("td", {class: "number"}, digits(piece.us, Number.isInteger(piece.us) ? 0 : 1)), make("td", {class: "number"}, percent(size))));
    let start = from;
    piece.parts.forEach(inner => {
      place(inner, start, level + 1);
      start += share(inner.us, tree.us);
    });
  };
  place(tree, 0, 0);
  host.replaceChildren(
    chart(width, depth * rowHeight, `Nested bars: ${tree.name} takes ${time(tree.us)}. The table below has the same figures.`, hatch(), pieces),
    make("div", {class: "scroll spread"}, make("table", {},
      make("thead", {}, make("tr", {}, make("th", {scope: "col"}, "Part"), make("th", {scope: "col", "aria-hidden": "true"}, ""),
        make("th", {scope: "col", class: "number"}, "Time (us)"), make("th", {scope: "col", class: "number"}, "Share"))),
      make("tbody", {}, rows))));
  if (!view.graph.breakdown) {
    host.append(missing("The log has no data of the backend on this graph, so it is not known what the time consists of."));
  } else if (view.layers.length === 0) {
    host.append(missing(whyNoLayers(view)));
  }
}

// ---- 4. One inference as a strip

// What is narrower than a pixel goes together with its neighbours, so that the number of bars does not grow with the network.
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

function layerWords(view, index) {
  const layer = view.layers[index];
  return {name: layer.name || "Layer without a name", facts: [
    `layer ${digits(index + 1)} of ${digits(view.layers.length)}`, `${time(layer.time)}, ${percent(share(layer.time, view.whole))}`,
    `Krel ${time(layer.krel)}`, `DSP ${time(layer.dsp)}`,
    ...(view.hasZeb ? [plural(layer.oru.length, "ORU layer", "ORU layers")] : [])]};
}

function showStrip(view, width) {
  const host = part("strip");
  if (!view || view.whole === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const scale = width / view.whole;
  const zebHeight = 56, oruTop = 64, oruHeight = 26;
  const height = view.hasZeb ? oruTop + oruHeight : zebHeight;
  // What is no wider than a pixel has one colour, and neighbours of one colour are one bar; over many of them the colours have
  // their shares.
  const split = pieces => {
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
  };
  const bars = (pieces, top, tall) => split(pieces).flatMap(piece => {
    const x = piece.from * scale, krel = piece.krel * scale, all = krel + piece.dsp * scale;
    const gap = all > 4 && !piece.kind ? 1 : 0;
    const drawn = [];
    if (piece.krel > 0) {
      drawn.push(rect(x, top, piece.dsp > 0 ? krel : krel - gap, tall, "krel"));
    }
    if (piece.dsp > 0) {
      drawn.push(rect(x + krel, top, all - krel - gap, tall, "dsp"));
    }
    if (piece.name && all > 30) {
      const first = Math.max(krel, all - krel) === krel ? [x, krel, "on-krel"] : [x + krel, all - krel, "on-dsp"];
      if (first[1] > Math.min(widthOfText(piece.name), 50) + 8) {
        drawn.push(label(first[0] + 5, top + tall / 2 + 4, fitted(piece.name, first[1] - 8), first[2]));
      }
    }
    return drawn;
  });
  const oruPieces = view.layers.flatMap(layer => {
    const sum = layer.oru.reduce((total, position) => total + oruTime(view.oru[position]), 0);
    const shrink = sum > layer.time ? layer.time / sum : 1;
    let from = layer.from;
    return layer.oru.map(position => {
      const oru = view.oru[position], us = oruTime(oru) * shrink;
      from += us;
      return {from: from - us, krel: oru.offloaded ? us : 0, dsp: oru.offloaded ? 0 : us, name: oru.type_name};
    });
  });
  const mark = draw("rect", {class: "selected", y: 1, height: height - 2, rx: 2, visibility: "hidden"});
  const svg = draw("svg", {class: "chart crisp", viewBox: `0 0 ${width} ${height}`, "aria-hidden": "true"},
    bars(view.layers, 0, zebHeight), view.hasZeb ? bars(oruPieces, oruTop, oruHeight) : null, mark);
  const slider = make("div", {class: "strip", role: "slider", tabindex: "0", "aria-label": "Layers of an inference",
                              "aria-valuemin": 1, "aria-valuemax": view.layers.length, "aria-valuenow": 1,
                              "aria-valuetext": "no layer chosen"}, svg);
  const readout = make("p", {class: "readout"});
  const at = event => {
    const box = slider.getBoundingClientRect();
    const us = (event.clientX - box.left) / box.width * view.whole;
    let low = 0, high = view.layers.length - 1;
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (view.layers[middle].from <= us) {
        low = middle;
      } else {
        high = middle - 1;
      }
    }
    return low;
  };
  slider.addEventListener("pointermove", event => hover(at(event)));
  slider.addEventListener("pointerleave", () => hover(null));
  slider.addEventListener("click", event => pin(selection.pinned === at(event) ? null : at(event)));
  slider.addEventListener("blur", () => hover(null));
  slider.addEventListener("keydown", event => {
    const last = view.layers.length - 1;
    const now = selected();
    const steps = {ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10};
    if (event.key in steps) {
      hover(now === null ? 0 : Math.min(last, Math.max(0, now + steps[event.key])));
    } else if (event.key === "Home" || event.key === "End") {
      hover(event.key === "Home" ? 0 : last);
    } else if (event.key === "Enter" || event.key === " ") {
      pin(now !== null && selection.pinned === now && selection.hovered === null ? null : now);
    } else if (event.key === "Escape") {
      pin(null);
    } else {
      return;
    }
    event.preventDefault();
  });
  followers.push(index => {
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
    const {name, facts} = layerWords(view, index);
    readout.replaceChildren(make("b", {}, name), ...facts.map(fact => make("span", {}, fact)));
    slider.setAttribute("aria-valuenow", index + 1);
    slider.setAttribute("aria-valuetext", [name, ...facts].join(", "));
  });
  host.replaceChildren(slider, legend(["krel", "on the Krel core"], ["dsp", "on the DSP"],
    ["plain", view.hasZeb ? "upper row: ZEB layers; lower row: the ORU layers they became" : "ORU layers; the log does not map them to ZEB layers"]), readout);
}

// ---- 5. Layers sorted, and by type

const mostRanked = 20;

function showRanking(view, width) {
  const host = part("ranking");
  if (!view || !view.hasZeb || view.whole === 0) {
    host.replaceChildren(missing(whyNoZebLayers(view)));
    return;
  }
  const order = view.layers.map((layer, index) => index).sort((left, right) => view.layers[right].time - view.layers[left].time);
  const shown = order.slice(0, mostRanked);
  const others = order.length - shown.length;
  const rowHeight = 24, top = 22;
  const nameWidth = Math.min(210, width * 0.32), numbersWidth = Math.max(104, 62 + widthOfText(digits(view.whole)));
  const left = nameWidth + 10, room = width - left - numbersWidth;
  const longest = view.layers[shown[0]].time;
  const height = top + (shown.length + (others > 0 ? 1 : 0)) * rowHeight + 4;
  const marks = new Map();
  const drawn = (room < 130 ? [0, 1] : [0, 0.5, 1]).flatMap(at => [
    stroke([[left + at * room, top - 4], [left + at * room, height]], "axis"),
    label(left + at * room, 11, `${at * 100} %`, "soft", at === 0 ? "start" : at === 1 ? "end" : "middle")]);
  const points = [[left, top]];
  let sum = 0;
  shown.forEach((index, row) => {
    const layer = view.layers[index], y = top + row * rowHeight;
    const mark = rect(0, y, width, rowHeight, "row-mark");
    mark.setAttribute("visibility", "hidden");
    marks.set(index, mark);
    const krel = layer.krel / longest * room, dsp = layer.dsp / longest * room;
    sum += layer.time;
    points.push([left + share(sum, view.whole) * room, y + rowHeight / 2]);
    const group = draw("g", {}, draw("title", {}, layer.name), mark,
      label(nameWidth, y + 16, fitted(layer.name, nameWidth), "", "end"),
      rect(left, y + 4, krel, rowHeight - 8, "krel"), rect(left + krel, y + 4, dsp, rowHeight - 8, "dsp"),
      label(width - 50, y + 16, digits(layer.time), "", "end"),
      label(width, y + 16, percent(share(layer.time, view.whole)), "soft", "end"));
    group.addEventListener("pointerenter", () => hover(index));
    group.addEventListener("pointerleave", () => hover(null));
    group.addEventListener("click", () => pin(selection.pinned === index ? null : index));
    drawn.push(group);
  });
  if (others > 0) {
    const y = top + shown.length * rowHeight;
    points.push([left + room, y + rowHeight / 2]);
    drawn.push(label(nameWidth, y + 16, fitted(plural(others, "other", "others"), nameWidth), "soft", "end"),
      label(width - 50, y + 16, digits(view.whole - sum), "soft", "end"),
      label(width, y + 16, percent(share(view.whole - sum, view.whole)), "soft", "end"));
  }
  drawn.push(stroke(points, "sum-halo"), stroke(points, "sum"), points.slice(1).map(([x, y]) => draw("circle", {cx: x.toFixed(1), cy: y, r: 2, class: "sum-dot"})));
  let marked = null;
  followers.push(index => {
    marked?.setAttribute("visibility", "hidden");
    marked = marks.get(index) ?? null;
    marked?.setAttribute("visibility", "visible");
  });
  host.replaceChildren(
    chart(width, height, `The ${shown.length} costliest of ${order.length} ZEB layers take ${percent(share(sum, view.whole))} of the layers' time. The costliest is ${view.layers[shown[0]].name} with ${time(longest)}. The table of all ZEB layers has the figures.`, drawn),
    legend(["krel", "Krel core (us)"], ["dsp", "DSP (us)"], ["", "sum so far, of all layers", stroke([[0, 6], [16, 6]], "sum")]));
}

const mostTypes = 12;

function showTypes(view) {
  const host = part("types");
  const types = view ? view.graph.layer_types : [];
  if (types.length === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const whole = types.reduce((sum, type) => sum + number(type.time_us), 0);
  const longest = Math.max(1, ...types.slice(0, mostTypes).map(type => number(type.time_us)));
  const place = type => number(type.krel_layers) === 0 ? "DSP" : number(type.dsp_layers) === 0 ? "Krel" : "both";
  const row = type => make("tr", {}, make("th", {scope: "row", class: "text"}, type.name),
    bar([[0, number(type.time_us) / longest, place(type) === "DSP" ? "dsp" : place(type) === "Krel" ? "krel" : "other"]]),
    make("td", {}, place(type)), make("td", {class: "number"}, digits(number(type.dsp_layers) + number(type.krel_layers))),
    make("td", {class: "number"}, digits(type.time_us)), make("td", {class: "number"}, percent(share(number(type.time_us), whole))));
  const rows = new Map();
  const body = make("tbody", {});
  const add = list => list.forEach(type => {
    const made = row(type);
    rows.set(type.name, made);
    body.append(made);
  });
  add(types.slice(0, mostTypes));
  let marked = [];
  followers.push(index => {
    marked.forEach(element => element.classList.remove("is-marked"));
    marked = index === null ? [] : [...new Set(view.layers[index].oru.map(position => rows.get(view.oru[position].type_name)))].filter(Boolean);
    marked.forEach(element => element.classList.add("is-marked"));
  });
  const headings = [["Type"], ["", "", true], ["On"], ["Layers", "number"], ["us", "number"], ["Share", "number"]];
  host.replaceChildren(make("div", {class: "scroll"}, make("table", {}, make("thead", {}, make("tr", {},
    headings.map(([text, kind, isHidden]) => make("th", {scope: "col", class: kind || null, "aria-hidden": isHidden ? "true" : null}, text)))), body)));
  if (types.length > mostTypes) {
    const more = make("button", {type: "button", class: "button more"}, `Show all ${digits(types.length)} types`);
    more.addEventListener("click", () => {
      add(types.slice(mostTypes));
      more.remove();
      follow();
    });
    host.append(more);
  }
}

// ---- 6. Execution times

function showExecutions(view, width) {
  const host = part("executions");
  const spread = view && view.graph.spread;
  if (!view || number(spread.count) === 0) {
    host.replaceChildren(missing(view ? "No execution of this graph has both times." : noGraphs()));
    return;
  }
  const {picture} = view;
  const isNarrow = width < 760;
  const overTime = isNarrow ? width : Math.floor((width - 28) * 2 / 3);
  const distribution = isNarrow ? width : width - 28 - overTime;
  host.replaceChildren(
    make("div", {class: "pair"},
      make("div", {}, make("h3", {}, "In the order of the run"), timeline(view, overTime)),
      make("div", {}, make("h3", {}, "How often each time occurs"), histogram(view, distribution))),
    legend(...(picture.bin_size === 1 ? [["", "an execution", draw("circle", {cx: 8, cy: 6, r: 3, class: "dot"})]]
      : [["range", `shortest to longest of ${digits(picture.bin_size)} executions`], ["", "their median", stroke([[0, 6], [16, 6]], "line")]]),
      ["", "median", stroke([[0, 6], [16, 6]], "median")], ["", "p90: nine in ten are below", stroke([[0, 6], [16, 6]], "p90")],
      ["", `outlier, above ${time(picture.outlier_limit_us)} (1.5 medians)`, draw("path", {d: "M8 1L13 6L8 11L3 6Z", class: "outlier"})]),
    spreadTable(spread), ...outlierTable(picture, spread));
}

function verticalAxis(left, right, from, to, y) {
  return ticks(from, to, 4).flatMap(at => [stroke([[left, y(at)], [right, y(at)]], "axis"),
    label(left - 8, y(at) + 4, timeParts(at).join(" "), "soft", "end")]);
}

function timeline(view, width) {
  const {picture} = view;
  const {spread} = view.graph;
  const height = 240, left = 70, right = width - 8, top = 14, bottom = height - 26;
  const bins = picture.median_us.length;
  // Few long ones would press all others flat: what is far above them stands at the upper edge, as a triangle.
  const highest = Math.min(spread.max_us, Math.max(1.05 * spread.p99_us, spread.p90_us + 3 * (spread.p90_us - spread.min_us)));
  const slack = Math.max((highest - spread.min_us) * 0.08, spread.median_us * 0.01, 1);
  const from = Math.max(0, spread.min_us - slack), to = highest + slack;
  const x = position => left + (bins < 2 ? 0.5 : position / (bins - 1)) * (right - left - 12) + 6;
  const y = us => bottom - (Math.min(us, to) - from) / (to - from) * (bottom - top);
  const drawn = verticalAxis(left, right, from, to, y);
  drawn.push(stroke([[left, y(spread.median_us)], [right, y(spread.median_us)]], "median"),
    stroke([[left, y(spread.p90_us)], [right, y(spread.p90_us)]], "p90"));
  const mark = (position, us, kind, text) => {
    const cx = x(position).toFixed(1), cy = y(us).toFixed(1);
    const shape = us > to ? `M${cx} ${cy}l-4 7h8Z` : `M${cx} ${cy}m0 -5l5 5l-5 5l-5 -5Z`;
    drawn.push(draw("path", {class: kind, d: shape}, text ? draw("title", {}, text) : null));
  };
  const known = picture.median_us.map((us, position) => [us, position]).filter(([us]) => us !== null);
  if (picture.bin_size > 1) {
    const edge = key => known.map(([, position]) => `${x(position).toFixed(1)} ${y(picture[key][position]).toFixed(1)}`);
    drawn.push(draw("path", {class: "range", d: "M" + edge("max_us").concat(edge("min_us").reverse()).join("L") + "Z"}),
      stroke(known.map(([us, position]) => [x(position), y(us)]), "line"));
    known.filter(([, position]) => picture.max_us[position] > to && picture.max_us[position] <= picture.outlier_limit_us)
      .forEach(([, position]) => mark(position, picture.max_us[position], "dot"));
  } else {
    const radius = bins > 800 ? 1.4 : bins > 150 ? 2 : 3;
    known.filter(([us]) => us <= picture.outlier_limit_us).forEach(([us, position]) => us > to ? mark(position, us, "dot")
      : drawn.push(draw("circle", {cx: x(position).toFixed(1), cy: y(us).toFixed(1), r: radius, class: "dot"})));
  }
  picture.outliers.forEach(([position, us]) =>
    mark(Math.floor(position / picture.bin_size), us, "outlier", `Execution ${digits(position + 1)}: ${time(us)}`));
  const last = number(picture.count);
  drawn.push(label(left + 6, height - 6, "execution 1", "soft", "start"), label(right, height - 6, digits(last), "soft", "end"));
  const pointer = label(right, top - 3, "", "soft", "end");
  const svg = chart(width, height, `Times of ${plural(number(spread.count), "execution", "executions")} from ${time(spread.min_us)} to ${time(spread.max_us)}, median ${time(spread.median_us)}; ${plural(number(picture.outlier_count), "outlier", "outliers")}. The tables below have the figures.`, drawn, pointer);
  svg.addEventListener("pointermove", event => {
    const box = svg.getBoundingClientRect();
    const place = ((event.clientX - box.left) / box.width * width - left - 6) / (right - left - 12);
    const position = Math.min(bins - 1, Math.max(0, Math.round(place * (bins - 1)))) || 0;
    const first = position * picture.bin_size + 1;
    const median = picture.median_us[position];
    pointer.textContent = picture.bin_size === 1
      ? `Execution ${digits(first)}: ${median === null ? "without time" : time(median)}`
      : `Executions ${digits(first)} to ${digits(Math.min(last, first + picture.bin_size - 1))}: ` +
        (median === null ? "without time" : `${time(picture.min_us[position])} to ${time(picture.max_us[position])}, median ${time(median)}`);
  });
  svg.addEventListener("pointerleave", () => { pointer.textContent = ""; });
  return svg;
}

function histogram(view, width) {
  const {picture} = view;
  const {spread} = view.graph;
  const height = 240, left = 8, top = 14, bottom = height - 26;
  const above = number(picture.above);
  const right = width - (above > 0 ? 64 : 8);
  const counts = picture.columns.map(number);
  const most = Math.max(1, above, ...counts);
  const to = picture.from_us + counts.length * picture.column_us;
  const x = us => left + (us - picture.from_us) / (to - picture.from_us) * (right - left);
  const y = count => bottom - count / most * (bottom - top - 14);
  const drawn = [stroke([[left, bottom], [right, bottom]], "axis")];
  counts.forEach((count, column) => {
    const from = picture.from_us + column * picture.column_us;
    if (count > 0) {
      const piece = rect(x(from) + 0.5, y(count), Math.max(1, x(from + picture.column_us) - x(from) - 1), bottom - y(count), "krel");
      piece.append(draw("title", {}, `${digits(from)} to ${digits(from + picture.column_us)} us: ${plural(count, "execution", "executions")}`));
      drawn.push(piece);
    }
  });
  if (above > 0) {
    const piece = rect(right + 14, y(above), 34, bottom - y(above), "other");
    piece.append(draw("title", {}, `${digits(to)} us and more: ${plural(above, "execution", "executions")}`));
    drawn.push(piece, label(right + 31, y(above) - 5, digits(above), "soft", "middle"), label(right + 31, height - 6, "above", "soft", "middle"));
  }
  [["median_us", "median"], ["p90_us", "p90"]].forEach(([key, kind]) => {
    if (spread[key] <= to) {
      drawn.push(stroke([[x(spread[key]), top], [x(spread[key]), bottom]], kind));
    }
  });
  drawn.push(label(left, height - 6, timeParts(picture.from_us).join(" "), "soft", "start"), label(right, height - 6, timeParts(to).join(" "), "soft", "end"));
  return chart(width, height, `Distribution: most executions take ${time(spread.min_us)} to ${time(spread.p90_us)}.`, drawn);
}

function spreadTable(spread) {
  const columns = [["Executions", digits(spread.count)], ["Shortest", time(spread.min_us)], ["Median", time(spread.median_us)], ["p90", time(spread.p90_us)],
    ["p99", time(spread.p99_us)], ["Longest", time(spread.max_us)], ["First", time(spread.first_us)]];
  return make("div", {class: "scroll spread"}, make("table", {},
    make("thead", {}, make("tr", {}, columns.map(([name]) => make("th", {scope: "col", class: "number"}, name)))),
    make("tbody", {}, make("tr", {}, columns.map(([, value]) => make("td", {class: "number"}, value))))));
}

function outlierTable(picture, spread) {
  if (picture.outliers.length === 0) {
    return [];
  }
  const longest = picture.outliers.slice().sort((left, right) => right[1] - left[1]).slice(0, 10);
  return [make("details", {class: "more"}, make("summary", {}, plural(number(picture.outlier_count), "outlier", "outliers")),
    make("div", {class: "list"}, make("table", {},
      make("caption", {}, picture.outlier_count > longest.length ? `The ${longest.length} longest` : "All outliers"),
      make("thead", {}, make("tr", {}, ["Execution", "Time", "of the median"].map(text => make("th", {scope: "col", class: "number"}, text)))),
      make("tbody", {}, longest.map(([position, us]) => make("tr", {}, make("td", {class: "number"}, digits(position + 1)),
        make("td", {class: "number"}, time(us)), make("td", {class: "number"}, `× ${digits(share(us, spread.median_us), 1)}`)))))))];
}

// ---- 7. Start-up and tear-down

const stepNames = {"library-load": "Load the library", "init-step": "Initialize a step of", compose: "Compose", init: "Initialize",
                   finalize: "Finalize", "de-init": "Tear down"};
const mostSteps = 40, mostEvents = 12;

function eventRows(events, depth, rows) {
  events.slice(0, mostEvents).forEach(event => {
    const units = {bytes: " bytes", cycles: " cycles", count: "", none: ""};
    const value = event.object_bytes !== null ? `object of ${digits(event.object_bytes)} bytes`
      : event.value === null ? "" : typeof event.value === "string" && !/^-?\d+$/.test(event.value) ? cut(event.value, 60)
      : event.unit === "us" ? time(number(event.value)) : digits(event.value, Number.isInteger(event.value) ? 0 : 2) + units[event.unit];
    rows.push(make("tr", {class: "part"}, make("th", {scope: "row", class: `depth-${Math.min(depth, 4)}`}, event.name),
      make("td", {class: "bar"}), make("td", {}), make("td", {class: "number soft"}, value)));
    eventRows(event.events, depth + 1, rows);
  });
  if (events.length > mostEvents) {
    rows.push(make("tr", {class: "part"}, make("th", {scope: "row", class: `depth-${Math.min(depth, 4)}`}, `and ${digits(events.length - mostEvents)} more`),
      make("td", {class: "bar"}), make("td", {}), make("td", {})));
  }
}

function showSteps() {
  const host = part("steps");
  const timed = run.steps.filter(step => step.start_us !== null && step.duration_us !== null);
  const zero = timed.reduce((least, step) => least === null || BigInt(step.start_us) < least ? BigInt(step.start_us) : least, null);
  const steps = run.steps.map(step => ({...step, isDown: step.step === "de-init",
    from: step.start_us === null || zero === null ? null : Number(BigInt(step.start_us) - zero), us: number(step.duration_us)}));
  const span = isDown => {
    const some = steps.filter(step => step.isDown === isDown && step.from !== null && step.us !== null);
    return some.length === 0 ? null : [some.reduce((least, step) => Math.min(least, step.from), Infinity),
                                       some.reduce((most, step) => Math.max(most, step.from + step.us), 0)];
  };
  const up = span(false), down = span(true);
  // The executions between the two would leave both of them a few pixels.
  const isBroken = up && down && down[0] > up[1];
  const pause = isBroken ? down[0] - up[1] : 0;
  const gap = isBroken ? Math.min(pause, (up[1] - up[0] + down[1] - down[0]) * 0.12) : 0;
  const whole = up && down ? Math.max(up[1], down[1]) - Math.min(up[0], down[0]) - pause + gap : up ? up[1] - up[0] : down ? down[1] - down[0] : 0;
  const offset = Math.min(up ? up[0] : Infinity, down ? down[0] : Infinity);
  const place = us => share(us - offset - (isBroken && us >= down[0] ? pause - gap : 0), whole);
  const entries = [];
  steps.forEach(step => {
    const rows = [];
    const hasBar = step.from !== null && step.us !== null;
    rows.push(make("tr", {}, make("th", {scope: "row"}, [stepNames[step.step], step.text].filter(Boolean).join(" ")),
      hasBar ? bar([[place(step.from), share(step.us, whole), step.isDown ? "other" : "shade-bar"]]) : make("td", {class: "bar"}),
      make("td", {class: "number"}, step.from === null ? "–" : time(step.from)),
      make("td", {class: "number"}, step.us === null ? "not in the log" : time(step.us))));
    eventRows(step.events, 1, rows);
    entries.push({from: step.isDown ? Infinity : step.from ?? 0, rows});
  });
  if (isBroken && run.graphs.length > 0) {
    entries.push({from: up[1], rows: [make("tr", {class: "part"}, make("th", {scope: "row"}, "Executions (not to scale)"),
      bar([[place(up[1]), share(gap, whole), "unknown-bar"]]), make("td", {class: "number soft"}, time(up[1])), make("td", {class: "number soft"}, time(pause)))]});
  }
  entries.sort((left, right) => left.from - right.from);
  const body = make("tbody", {});
  const add = list => list.forEach(entry => body.append(...entry.rows));
  add(entries.slice(0, mostSteps));
  host.replaceChildren(steps.length === 0 ? missing("The log has no messages on start-up and tear-down.")
    : make("div", {class: "scroll"}, make("table", {}, make("thead", {}, make("tr", {}, make("th", {scope: "col"}, "Step"),
        make("th", {scope: "col", "aria-hidden": "true"}, ""), make("th", {scope: "col", class: "number"}, "Begins after"), make("th", {scope: "col", class: "number"}, "Takes"))), body)));
  if (entries.length > mostSteps) {
    const more = make("button", {type: "button", class: "button more"}, `Show all ${digits(entries.length)} steps`);
    more.addEventListener("click", () => {
      add(entries.slice(mostSteps));
      more.remove();
    });
    host.append(more);
  }
  if (run.other_methods.length > 0) {
    const shown = run.other_methods.slice(0, 500);
    host.append(make("h3", {}, "Other calls"), make("div", {class: "scroll calls"}, make("table", {}, make("thead", {}, make("tr", {},
      [["Call"], ["Graph"], ["Count", "number"], ["Average (us)", "number"], ["Shortest", "number"], ["Longest", "number"]].map(([text, kind]) => make("th", {scope: "col", class: kind || null}, text)))),
      make("tbody", {}, shown.map(call => make("tr", {}, make("th", {scope: "row"}, call.method), make("td", {class: "text"}, call.graph),
        [call.count, call.average_us, call.min_us, call.max_us].map(value => make("td", {class: "number"}, digits(value)))))))));
  }
}

// ---- 8. The full tables

const yes = value => value ? "yes" : "no";

function showZebTable(view) {
  const host = part("zeb");
  if (!view || !view.hasZeb) {
    host.replaceChildren(missing(whyNoZebLayers(view)));
    return;
  }
  const types = layer => [...new Set(layer.oru.map(position => view.oru[position].type_name))].join(", ");
  const index = new Map(view.layers.map((layer, position) => [layer, position]));
  showTable(host, {name: "All ZEB layers", rows: view.layers, layersOf: layer => [index.get(layer)], columns: [
    {title: "#", of: layer => index.get(layer) + 1},
    {title: "Name", isText: true, isHeading: true, of: layer => layer.name},
    {title: "Time (us)", of: layer => layer.time},
    {title: "Share", of: layer => share(layer.time, view.whole), text: value => percent(value)},
    {title: "Krel (us)", of: layer => layer.krel},
    {title: "DSP (us)", of: layer => layer.dsp},
    {title: "ORU layers", of: layer => layer.oru.length},
    {title: "Types", isText: true, of: types},
    {title: "ORU ids", isText: true, isExtra: true, of: layer => layer.oru.map(position => view.oru[position].id).join(" ")},
  ]});
}

function showOruTable(view) {
  const host = part("oru");
  if (!view || view.oru.length === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const whole = view.oru.reduce((sum, layer) => sum + oruTime(layer), 0);
  const position = new Map(view.oru.map((layer, index) => [layer, index]));
  const isInternal = run.level === "internal";
  const figure = (title, key, isExtra = true) => ({title, isExtra, of: layer => layer[key]});
  showTable(host, {name: "All ORU layers", rows: view.oru, layersOf: layer => view.owners[position.get(layer)], narrowed: true, columns: [
    {title: "Id", isHeading: true, of: layer => layer.id},
    {title: "Type", isText: true, of: layer => layer.type_name},
    ...(view.hasZeb ? [{title: "ZEB layer", isText: true, of: layer => view.owners[position.get(layer)].map(index => view.layers[index].name).join(", ")}] : []),
    {title: "Runs on", isText: true, of: layer => layer.offloaded ? "Krel" : "DSP"},
    {title: "Time (us)", of: oruTime},
    {title: "Share", of: layer => share(oruTime(layer), whole), text: value => percent(value)},
    figure("Executions", "executions", false),
    figure("DSP cycles", "dsp_cycles", false),
    figure("Core cycles", "core_cycles", !isInternal),
    figure("HAL (us)", "hal_us", !isInternal),
    figure("Driver (us)", "driver_us", !isInternal),
    figure("Cache flush (us)", "cache_flush_us", !isInternal),
    figure("Krel exec (us)", "krel_exec_us", !isInternal),
    figure("Core (us)", "core_us"),
    figure("DSP's view (us)", "average_us"),
    figure("Total (us)", "total_us"),
    figure("Total DSP cycles", "total_dsp_cycles"),
    figure("Nodes", "nodes"),
    {title: "Linked", isText: true, isExtra: true, of: layer => yes(layer.linked)},
    figure("Merged group", "merged_group"),
    {title: "Loopback", isText: true, isExtra: true, of: layer => yes(layer.loopback)},
    figure("Type number", "type"),
  ]});
}

// ---- The page

const widthOf = id => Math.max(240, Math.floor(part(id).clientWidth));

// What is as wide as the window is drawn again when that changes; tables stay as they are.
function drawCharts() {
  followers.length = tableFollowers;
  const {view} = selection;
  showInference(view, widthOf("inference"));
  showStrip(view, widthOf("strip"));
  showRanking(view, widthOf("ranking"));
  showTypes(view);
  showExecutions(view, widthOf("executions"));
  follow();
}

let tableFollowers = 0;

function showGraph(index) {
  const graph = run.graphs[index];
  selection.view = graph ? {...viewOf(graph), picture: pictures[index]} : null;
  selection.hovered = selection.pinned = null;
  followers.length = pinFollowers.length = 0;
  showHeader(selection.view);
  showFindings(selection.view);
  showZebTable(selection.view);
  showOruTable(selection.view);
  tableFollowers = followers.length;
  drawCharts();
}

part("page").hidden = false;
if (run.graphs.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  choice.append(...run.graphs.map((graph, index) => make("option", {value: index}, cut(graph.name, 80) || "without a name")));
  choice.addEventListener("change", () => showGraph(Number(choice.value)));
}
// Without a graph one part says why, and the others would say the same.
if (run.graphs.length === 0) {
  document.querySelectorAll("#figures, main section").forEach(piece => {
    piece.hidden = !piece.querySelector("#findings, #steps");
  });
}
showSteps();
showGraph(0);

let drawnWidth = window.innerWidth;
window.addEventListener("resize", () => {
  if (window.innerWidth !== drawnWidth) {
    drawnWidth = window.innerWidth;
    drawCharts();
  }
});
