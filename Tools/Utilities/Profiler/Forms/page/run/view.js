// The layers that the page speaks of, and what it says where it knows none.

import {number} from "../shared/figures.js";
import {plural} from "../shared/elements.js";
import {digits, percent, share, time} from "../shared/figures.js";
import {pictures, run} from "./data.js";

export const oruTime = layer => number(layer.time_us);

function layersOf(graph) {
  const positions = new Map(graph.oru_layers.map((layer, position) => [layer.id, position]));
  if (graph.layers.kind === "zeb") {
    return graph.zeb_layers.map(layer => ({
      name: layer.name,
      dsp: number(layer.dsp_us),
      krel: number(layer.krel_us),
      time: number(layer.time_us),
      oru: layer.oru_layers.map(id => positions.get(id)).filter(position => position !== undefined),
    }));
  }
  return graph.oru_layers.map((layer, position) => ({
    name: `ORU layer ${layer.id} (${layer.type_name})`,
    dsp: layer.offloaded ? 0 : oruTime(layer),
    krel: layer.offloaded ? oruTime(layer) : 0,
    time: oruTime(layer),
    oru: [position],
  }));
}

/**
 * What the page shows of a graph: its ZEB layers, or its ORU layers if it has no others. A layer has its name, its
 * times on the DSP, the Krel core and both (us), where it begins (`from`), and its ORU layers, by place; `owners`
 * leads back. `whole` is the time of all layers.
 */
export function viewOf(index) {
  const graph = run.graphs[index];
  const layers = layersOf(graph);
  const owners = graph.oru_layers.map(() => []);
  let from = 0;
  layers.forEach((layer, place) => {
    layer.from = from;
    from += layer.time;
    layer.oru.forEach(position => owners[position].push(place));
  });
  return {
    graph,
    picture: pictures[index],
    oru: graph.oru_layers,
    layers,
    owners,
    hasZeb: graph.layers.kind === "zeb",
    whole: number(graph.layers.time_us),
    dsp: number(graph.layers.dsp_us),
    krel: number(graph.layers.krel_us),
  };
}

/** The name of a layer and what is to be said of it. */
export function wordsOfLayer(view, index) {
  const layer = view.layers[index];
  const facts = [
    `layer ${digits(index + 1)} of ${digits(view.layers.length)}`,
    `${time(layer.time)}, ${percent(share(layer.time, view.whole))}`,
    `DSP ${time(layer.dsp)}`,
    `Krel ${time(layer.krel)}`,
  ];
  if (view.hasZeb) {
    facts.push(plural(layer.oru.length, "ORU layer", "ORU layers"));
  }
  return {name: layer.name || "Layer without a name", facts};
}

export const noGraphs = () =>
  run.header && run.header.adapter_updater
    ? "This is a log of the adapter updater, which executes no graph."
    : "The log has no execution of a graph.";

export function whyNoLayers(view) {
  if (!view) {
    return noGraphs();
  }
  if (!view.graph.breakdown) {
    return (
      "The log has no data of the backend on this graph, so its layers are not known. Profile the run on the Murl " +
      "backend to see them."
    );
  }
  return run.level === "basic"
    ? "The run was profiled at level basic, which records no layers. Profile it at level detailed to see them."
    : "The log has no data on the layers of this graph.";
}

export const whyNoZebLayers = view =>
  !view || view.oru.length === 0
    ? whyNoLayers(view)
    : "The log does not map this graph's ORU layers to the layers of the network. The parts for ORU layers have " +
      "their times.";
