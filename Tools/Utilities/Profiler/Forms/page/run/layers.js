// The full tables.

import {missing, part} from "../shared/elements.js";
import {percent, share} from "../shared/figures.js";
import {change, state} from "../shared/state.js";
import {Table} from "../shared/Table.js";
import {run} from "./data.js";
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
    {title: "Krel (us)", of: layer => layer.krel},
    {title: "DSP (us)", of: layer => layer.dsp},
    {title: "ORU layers", of: layer => layer.oru.length},
    {title: "Types", isText: true, of: layer => typesOf(layer).join(", ")},
    {title: "ORU ids", isText: true, isExtra: true, of: ids},
  ];
  new Table(host, {
    name: "All ZEB layers",
    rows: view.layers,
    layersOf: layer => [index.get(layer)],
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
  const places = new Map(view.oru.map((layer, place) => [layer, place]));
  const layersOf = layer => view.owners[places.get(layer)];
  const names = layer =>
    layersOf(layer)
      .map(place => view.layers[place].name)
      .join(", ");
  const isInternal = run.level === "internal";
  const figure = (title, key, isExtra = true) => ({title, isExtra, of: layer => layer[key]});
  const columns = [
    {title: "Id", isHeading: true, of: layer => layer.id},
    {title: "Type", isText: true, of: layer => layer.type_name},
    ...(view.hasZeb ? [{title: "ZEB layer", isText: true, of: names}] : []),
    {title: "Runs on", isText: true, of: layer => (layer.offloaded ? "Krel" : "DSP")},
    {title: "Time (us)", isDeciding: true, of: oruTime},
    shareOf("Share", oruTime, whole),
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
  ];
  new Table(host, {
    name: "All ORU layers",
    rows: view.oru,
    layersOf,
    narrowing: () => narrowing(view, layersOf, layer => [layer.type_name]),
    narrowedBy: ["pinned", "type"],
    columns,
  });
}
