// A link to a view: the state as the address's fragment, "#graph=1&layer=4&zoom=0.25-0.5&zeb.sort=Name". What it holds
// is looked up among what the run has; what is not there is left out, so that a damaged link shows the page.

import {state} from "../shared/state.js";
import {run} from "./data.js";
import {findingsOf} from "./subject.js";

const maxLink = 2000,
  maxText = 200; // characters
const tables = ["graphs", "zeb", "oru"]; // whose titles of columns are looked up by the table

export const isLink = hash => hash.length <= maxLink && hash.includes("=");

function linkOf({view, graph, pinned, finding, type, zoom, search, tables: wishes}) {
  const link = new URLSearchParams();
  const add = (name, value) => value !== null && value !== "" && link.set(name, String(value).slice(0, maxText));
  add("graph", graph === 0 ? null : graph + 1);
  add("layer", pinned === null ? null : pinned + 1);
  add("finding", finding === null ? null : findingsOf(view)[finding].rule);
  add("type", type);
  add("zoom", zoom && `${zoom.from.toPrecision(6)}-${zoom.to.toPrecision(6)}`);
  add("find", search);
  for (const table of tables) {
    const {sort = null, isDescending, filter = null} = wishes[table] ?? {};
    add(`${table}.sort`, sort);
    add(`${table}.falls`, sort && isDescending ? 1 : null);
    add(`${table}.filter`, filter);
  }
  return link.toString();
}

/** Tells the address what is shown. */
export function keepLink() {
  const link = linkOf(state);
  try {
    history.replaceState(null, "", link === "" ? location.pathname + location.search : `#${link}`);
  } catch {
    // A browser may refuse it, where the page comes from a file or changes often: the page works without.
  }
}

/** What of the state an address asks for. */
export function wantedByLink(hash) {
  const link = new URLSearchParams(isLink(hash) ? hash.slice(1) : "");
  const text = name => (link.get(name) ?? "").slice(0, maxText);
  const place = (name, count) => {
    const value = Number(text(name));
    return Number.isInteger(value) && value >= 1 && value <= count ? value - 1 : null;
  };
  const wanted = {graph: place("graph", run.graphs.length) ?? 0, search: text("find"), tables: {}};
  const graph = run.graphs[wanted.graph];
  if (graph) {
    wanted.pinned = place("layer", (graph.zeb_layers.length > 0 ? graph.zeb_layers : graph.oru_layers).length);
    const finding = findingsOf({graph}).findIndex(each => each.rule === link.get("finding"));
    wanted.finding = finding < 0 ? null : finding;
    wanted.type = graph.layer_types.find(type => type.name === link.get("type"))?.name ?? null;
    const [, from, to] = text("zoom").match(/^([\d.e-]+?)-(\d[\d.e-]*)$/) ?? [];
    if (Number(from) >= 0 && Number(to) <= 1 && Number(to) - Number(from) > 0) {
      wanted.zoom = {from: Number(from), to: Number(to)};
    }
  }
  for (const table of tables) {
    const [sort, filter] = [text(`${table}.sort`), text(`${table}.filter`)];
    wanted.tables[table] = {sort, isDescending: text(`${table}.falls`) === "1", filter};
  }
  return wanted;
}
