// The full tables.

import {missing, part} from "../shared/elements.js";
import {percent, share} from "../shared/figures.js";
import {change, state} from "../shared/state.js";
import {Table} from "../shared/Table.js";
import {run} from "./data.js";
import {subject} from "./subject.js";
import {oruTime, whyNoLayers, whyNoZebLayers} from "./view.js";

/** The chosen layer and type leave their rows alone. `layersOf` and `typesOf` tell what a row belongs to. */
function narrowing(view, layersOf, typesOf) {
  const {pinned, type} = state;
  if (layersOf === null ? type === null : pinned === null && type === null) {
    return null;
  }
  const words = [pinned !== null && layersOf ? view.layers[pinned].name || "the layer without a name" : null, type];
  return {
    words: words.filter(word => word !== null).join(", "),
    has: row =>
      (pinned === null || !layersOf || layersOf(row).includes(pinned)) &&
      (type === null || typesOf(row).includes(type)),
    release: () => change(layersOf ? {pinned: null, type: null} : {type: null}),
  };
}

const yes = value => (value ? "yes" : "no");
const shareOf = (title, piece, whole) => ({
  title,
  of: layer => share(piece(layer), whole),
  text: value => percent(value),
});

export function showZebTable(view) {
  const host = part("zeb");
  if (!view || !view.hasZeb) {
    host.replaceChildren(missing(whyNoZebLayers(view)));
    return;
  }
  const typesOf = layer => [...new Set(layer.oru.map(position => view.oru[position].type_name))];
  const ids = layer => layer.oru.map(position => view.oru[position].id).join(" ");
  const index = new Map(view.layers.map((layer, place) => [layer, place]));
  const columns = [
    {title: "#", of: layer => index.get(layer) + 1},
    {title: "Name", isText: true, isHeading: true, of: layer => layer.name},
    {title: "Time (us)", isDeciding: true, of: layer => layer.time},
    shareOf("Share", layer => layer.time, view.whole),
    {title: "DSP (us)", of: layer => layer.dsp},
    {title: "Krel (us)", of: layer => layer.krel},
    {title: "ORU layers", of: layer => layer.oru.length},
    {title: "Types", isText: true, of: layer => typesOf(layer).join(", ")},
    {title: "ORU ids", isText: true, isExtra: true, of: ids},
  ];
  new Table(host, {
    name: "All ZEB layers",
    rows: view.layers,
    layersOf: layer => [index.get(layer)],
    isAbout: layer => subject().layers.has(index.get(layer)),
    narrowing: () => narrowing(view, null, typesOf),
    narrowedBy: ["type"],
    columns,
  });
}

export function showOruTable(view) {
  const host = part("oru");
  if (!view || view.oru.length === 0) {
    host.replaceChildren(missing(whyNoLayers(view)));
    return;
  }
  const whole = view.oru.reduce((sum, layer) => sum + oruTime(layer), 0);
  const layersOf = layer => view.owners[layer.place];
  const names = layer =>
    layersOf(layer)
      .map(place => view.layers[place].name)
      .join(", ");
  const isInternal = run.level === "internal";
  const figure = (title, key, isExtra = true) => ({title, isExtra, of: layer => layer[key]});
  // As in the report, an offloaded layer has no cycles of the DSP, and others have none of the core's figures.
  const onDsp = (title, key, isExtra) => ({title, isExtra, of: layer => (layer.offloaded ? null : layer[key])});
  const onCore = (title, key, isExtra) => ({title, isExtra, of: layer => (layer.offloaded ? layer[key] : null)});
  const columns = [
    {title: "Id", isHeading: true, of: layer => layer.id},
    {title: "Type", isText: true, of: layer => layer.type_name},
    ...(view.hasZeb ? [{title: "ZEB layer", isText: true, of: names}] : []),
    {title: "Time (us)", isDeciding: true, of: oruTime},
    shareOf("Share", oruTime, whole),
    {title: "Runs on", isText: true, of: layer => (layer.offloaded ? "Krel" : "DSP")},
    figure("Executions", "executions", false),
    onDsp("DSP cycles", "dsp_cycles", false),
    onCore("Core cycles", "core_cycles", false),
    onCore("HAL (us)", "hal_us", !isInternal),
    onCore("Driver (us)", "driver_us", !isInternal),
    onCore("Cache flush (us)", "cache_flush_us", !isInternal),
    onCore("Krel exec (us)", "krel_exec_us", !isInternal),
    onCore("Core (us)", "core_us", true),
    figure("DSP's view (us)", "average_us"),
    figure("Total (us)", "total_us"),
    onDsp("Total DSP cycles", "total_dsp_cycles", true),
    onCore("Nodes", "nodes", true),
    {title: "Linked", isText: true, isExtra: true, of: layer => yes(layer.linked)},
    figure("Merged group", "merged_group"),
    {title: "Loopback", isText: true, isExtra: true, of: layer => yes(layer.loopback)},
    figure("Type number", "type"),
  ];
  new Table(host, {
    name: "All ORU layers",
    rows: view.oru,
    layersOf,
    isAbout: layer => subject().oru.has(layer.place),
    narrowing: () => narrowing(view, layersOf, layer => [layer.type_name]),
    narrowedBy: ["pinned", "type"],
    columns,
  });
}
