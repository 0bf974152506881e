// Everything here is drawn from the two data elements.

const comparison = JSON.parse(part("comparison-data").textContent);
const view = JSON.parse(part("view-data").textContent);
const isSeveral = comparison.basis === "several";

// ---- Words and figures

const verdicts = {slower: ["▲", "slower"], faster: ["▼", "faster"], same: ["=", "same"], unsure: ["~", "can't tell"],
                  new: ["+", "new"], gone: ["−", "gone"]};
const wordOf = row => verdicts[row.verdict][1];

function verdictOf(row) {
  const [sign, word] = verdicts[row.verdict];
  return make("span", {class: `verdict is-${row.verdict}`}, make("i", {"aria-hidden": "true"}, sign), word);
}

const signed = (value, text) => (value > 0 ? "+" : value < 0 ? "−" : "") + text(Math.abs(value));
const signedPercent = change => signed(change, size => `${digits(size * 100, 1)} %`);
const intervalOf = row => row.low === null || row.high === null ? null : `${signedPercent(row.low)} to ${signedPercent(row.high)}`;
const pOf = p => p === null ? "–" : p < 0.001 ? "< 0.001" : p.toFixed(3);
const changeOf = row => row.verdict === "unsure" ? "~" : row.change === null ? "–" : signedPercent(row.change);
// Means of several logs have fractions, times of one have none.
const decimalsOf = values => values.every(value => value === null || Number.isInteger(value)) ? 0 : 1;
const kindOf = row => row.verdict === "slower" || row.verdict === "faster" ? row.verdict
  : row.verdict === "new" ? "slower" : row.verdict === "gone" ? "faster" : "other";
const nameOf = graph => graph.new_name || "Graph without a name";
const totalOf = (graph, key) => graph.totals.find(row => row.total === key) ?? null;
const isOnBoth = row => row !== null && row.base !== null && row.new !== null;

const nothingToCompare = "No graph was executed on both sides, so there is nothing to compare.";

// ---- 1. What is compared, and the answer

const mostLogsNamed = 3;
// A name that changes the writing direction does so to itself alone.
const isolated = name => make("bdi", {}, name);

function sideOf(title, logs) {
  const named = (names) => names.flatMap((name, at) => [at === 0 ? null : ", ", isolated(name)]);
  const more = logs.slice(mostLogsNamed);
  return make("div", {}, make("dt", {}, title), make("dd", {}, `${plural(logs.length, "log", "logs")}: `, named(logs.slice(0, mostLogsNamed)), " ",
    more.length === 0 ? null : make("details", {}, make("summary", {}, `and ${digits(more.length)} more`), make("div", {class: "list"}, named(more)))));
}

// Of a whole that may not have changed.
function partsThatChanged(graph) {
  const sayFor = verdict => {
    const names = graph.totals.filter(row => row.verdict === verdict).map(row => view.totals[row.total]);
    return names.length === 0 ? "" : `Surely ${verdict}: ${names.join(", ")}. `;
  };
  return sayFor("slower") + sayFor("faster");
}

// The answer in a sentence, and how sure it is.
function answerOf(graph) {
  const fewest = view.fewest_logs;
  const moreLogs = `Take ${fewest} logs or more of each, in turns.`;
  const row = graph && totalOf(graph, "marlix");
  if (!graph) {
    return {kind: "unsure", lead: "Nothing to compare:", rest: "no graph was executed on both sides.", sure: ""};
  }
  if (!isOnBoth(row)) {
    return {kind: "unsure", lead: "Can't tell:", rest: "not both sides have execution times of this graph.", sure: ""};
  }
  const decimals = decimalsOf([row.base.median_us, row.new.median_us]);
  const times = `an inference takes ${digits(row.new.median_us, decimals)} us in place of ${digits(row.base.median_us, decimals)} us`;
  const longer = row.change === null ? "" : `, ${digits(Math.abs(row.change) * 100, 1)} % ${row.change < 0 ? "less" : "more"}`;
  if (comparison.basis === "one-each") {
    return {kind: row.verdict, lead: row.verdict === "same" ? "The new log is as fast as that of the base:" : `The new log is ${wordOf(row)}:`, rest: `${times}${longer}.`,
            sure: `Nobody knows how sure that is. One log against one: a difference between runs can't be told from one between versions. ${moreLogs}`};
  }
  if (comparison.basis === "too-few") {
    return {kind: "unsure", lead: "Can't tell yet:", rest: `${times}, and that may be chance.`,
            sure: `Too few logs: it takes ${fewest} or more of each to tell a change from chance. ${moreLogs}`};
  }
  const interval = intervalOf(row);
  if (row.verdict === "unsure") {
    return {kind: "unsure", lead: "Can't tell them apart:", rest: `${times}, and that may be chance.`,
            sure: interval ? `With 95 % the true change lies between ${interval.replace(" to ", " and ")}, so there may be none. ${partsThatChanged(graph)}More logs of each tell more.`
              : `Too few logs have this graph, or one has a time of 0. ${moreLogs}`};
  }
  return {kind: row.verdict, lead: `The new version is ${wordOf(row)}:`, rest: `${times}${longer}.`,
          sure: `That is sure: with 95 % the true change lies between ${interval.replace(" to ", " and ")}.`};
}

function noteBox(kind, title, sentences) {
  return make("div", {class: `note-box is-${kind}`, role: "note"}, make("h2", {}, title),
    sentences.length === 1 ? make("p", {}, sentences[0]) : make("ul", {}, sentences.map(sentence => make("li", {}, sentence))));
}

function gateBox(gate) {
  const rule = `${view.totals[gate.total]} may grow by ${digits(gate.fail_above * 100, 1)} %` +
    (gate.min_change_us > 0 ? `, and by less than ${digits(gate.min_change_us, 1)} us in any case.` : ".");
  if (gate.outcome === "pass") {
    return noteBox("pass", "✓ The gate passes", [`No time grew by more than is allowed: ${rule}`]);
  }
  return gate.outcome === "slower" ? noteBox("slower", "✗ The gate fails", [...gate.reasons, rule])
    : noteBox("warning", "✗ The gate has nothing that it can compare", [...gate.reasons, rule]);
}

function showHeader(graph) {
  part("name").textContent = graph ? nameOf(graph) : "No common graph";
  part("sides").replaceChildren(sideOf("Base", comparison.base), sideOf("New", comparison.new));
  const answer = answerOf(graph);
  part("answer").replaceChildren(make("p", {class: `answer is-${answer.kind}`},
    make("b", {}, `${verdicts[answer.kind][0]} ${answer.lead}`), ` ${answer.rest}`, answer.sure ? make("span", {class: "how-sure"}, answer.sure) : null));

  const row = graph && totalOf(graph, "marlix");
  const figure = (name, value, unit, note) => make("div", {}, make("dt", {}, name),
    make("dd", {class: "large"}, value, unit ? make("small", {}, unit) : null), make("dd", {class: "note"}, note));
  const side = (name, range) => {
    if (!range) {
      return figure(name, "–", "", "not known");
    }
    const [value, unit] = timeParts(range.median_us);
    return figure(name, value, unit, range.logs === 1 ? "median of the log's executions"
      : `median of ${digits(range.logs)} logs, from ${time(range.min_us)} to ${time(range.max_us)}`);
  };
  const [change, percentSign] = row ? changeOf(row).split(" ") : ["–"];
  part("figures").replaceChildren(side("Inference, base", row && row.base), side("Inference, new", row && row.new),
    figure("Change", change, percentSign, !isOnBoth(row) ? "not known"
      : [wordOf(row), signed(row.change_us, time), intervalOf(row), row.p !== null && `p ${pOf(row.p)}`].filter(Boolean).join("; ")));

  const notes = [];
  if (comparison.warnings.length > 0) {
    notes.push(noteBox("warning", comparison.warnings.length === 1 ? "⚠ Warning" : "⚠ Warnings", comparison.warnings));
  }
  if (comparison.gate) {
    notes.push(gateBox(comparison.gate));
  }
  const graphs = comparison.gone_graphs.map(name => ["Graph ", isolated(name), " is gone: the base alone has it."])
    .concat(comparison.new_graphs.map(name => ["Graph ", isolated(name), " is new: the base does not have it."]));
  if (graphs.length > 0) {
    notes.push(noteBox("graphs", "Graphs of one side", graphs));
  }
  part("notes").replaceChildren(...notes);
  document.title = `${answer.lead.replace(":", "")} – ${part("name").textContent}`;
  part("totals-hint").textContent = isSeveral ? " Whiskers hold the true change with 95 %: where they leave out the middle, the change is sure." : "";
  part("origin").textContent = "Times are in microseconds (us). Totals are medians over the logs, layers means of their averages.";
}

// ---- 2. Totals

// The next number that people count in.
function rounded(size) {
  const power = 10 ** Math.floor(Math.log10(size));
  return [1, 1.5, 2, 3, 4, 5, 6, 8, 10].map(factor => factor * power).find(step => step >= size * (1 - 1e-9));
}

// A bar from the middle, which is no change, to one side, of `limit` at most; what lies beyond has an arrowhead.
function differenceBar(height, limit, {change, low = null, high = null, kind}) {
  const at = value => 50 + 50 * Math.max(-1, Math.min(1, limit > 0 ? value / limit : 0));
  const line = (x1, x2, y1, y2, kindOfLine) => draw("line", {x1: `${x1.toFixed(2)}%`, x2: `${x2.toFixed(2)}%`, y1, y2, class: kindOfLine});
  const middle = height / 2;
  const marks = [];
  if (change !== null && change !== 0) {
    const from = Math.min(50, at(change));
    marks.push(draw("rect", {x: `${from.toFixed(2)}%`, y: middle - 5, width: `${Math.max(0.4, Math.abs(at(change) - 50)).toFixed(2)}%`, height: 10, class: kind}));
  }
  marks.push(line(50, 50, 0, height, "zero"));
  if (low !== null && high !== null) {
    marks.push(line(at(low), at(high), middle, middle, "whisker"));
    [low, high].filter(end => Math.abs(end) <= limit).forEach(end => marks.push(line(at(end), at(end), middle - 4, middle + 4, "whisker")));
  }
  const ends = [change, low, high].filter(end => end !== null);
  [-1, 1].filter(side => ends.some(end => end * side > limit)).forEach(side => marks.push(
    draw("svg", {x: side < 0 ? "0%" : "100%", y: middle, width: 1, height: 1, class: "beyond-side"}, draw("path", {class: "beyond", d: `M0 -5L${side * 7} 0L0 5z`}))));
  return draw("svg", {height, "aria-hidden": "true"}, marks);
}

const extentOf = row => Math.max(...[row.change, row.low, row.high].map(value => Math.abs(value ?? 0)));

function showTotals(graph) {
  const host = part("totals");
  if (!graph || graph.totals.length === 0) {
    host.replaceChildren(missing(graph ? "Neither side has a time of this graph." : nothingToCompare));
    return;
  }
  const rows = graph.totals;
  // A total that is hardly anything may change by a lot; the first one has to stay visible beside it.
  const widest = Math.max(0.001, ...rows.map(extentOf));
  const limit = rounded(Math.min(widest, Math.max(8 * extentOf(rows[0]), 0.05)));
  const us = row => {
    const decimals = decimalsOf([row.base, row.new].flatMap(range => range ? [range.median_us, range.min_us, range.max_us] : []));
    return value => digits(value, decimals);
  };
  const middleOf = (row, range) => range === null ? "–" : us(row)(range.median_us);
  const cell = (row, range) => make("td", {class: "number detail"}, middleOf(row, range),
    range !== null && range.logs > 1 ? make("small", {}, `${us(row)(range.min_us)} to ${us(row)(range.max_us)}`) : null);
  const head = (text, kind) => make("th", {scope: "col", class: kind || null}, text);
  const axis = draw("svg", {"aria-hidden": "true"}, [[-limit, "0%", "start"], [0, "50%", "middle"], [limit, "100%", "end"]].map(([value, x, anchor]) =>
    draw("text", {x, y: 11, class: "soft", "text-anchor": anchor}, value === 0 ? "0" : signed(value, size => `${digits(size * 100, size < 0.01 ? 1 : 0)} %`))));
  host.replaceChildren(
    make("div", {class: "scroll", role: "region", tabindex: "0", "aria-label": "Totals"}, make("table", {},
      make("thead", {}, make("tr", {}, head("Total"), head("Base (us)", "number detail"), head("New (us)", "number detail"), head("Change (us)", "number detail"), isSeveral ? make("th", {scope: "col", class: "number"}, "Change", make("small", {}, "95 % interval")) : head("Change", "number"),
        make("th", {scope: "col", class: "difference", "aria-hidden": "true"}, axis), isSeveral ? head("p", "number detail") : null, head("Verdict"))),
      make("tbody", {}, rows.map(row => make("tr", {}, make("th", {scope: "row"}, view.totals[row.total], make("small", {class: "in-short"}, `${middleOf(row, row.base)} → ${middleOf(row, row.new)}`)), cell(row, row.base), cell(row, row.new),
        make("td", {class: "number detail"}, isOnBoth(row) ? signed(row.change_us, us(row)) : "–"),
        make("td", {class: "number"}, changeOf(row), intervalOf(row) ? make("small", {}, intervalOf(row)) : null),
        make("td", {class: "difference", "aria-hidden": "true"}, isOnBoth(row) ? differenceBar(20, limit, {...row, kind: kindOf(row)}) : null),
        isSeveral ? make("td", {class: "number detail"}, pOf(row.p)) : null,
        make("td", {}, verdictOf(row))))))),
    legend(["slower", "slower"], ["faster", "faster"], ...(comparison.basis === "one-each" ? [] : [["other", "may be chance (~)"]]),
      ...(isSeveral ? [["", "95 % interval", draw("path", {class: "whisker", d: "M1 6H15M1 2V10M15 2V10"})]] : [])));
  if (graph.base_executions && graph.new_executions) {
    const spread = (name, executions) => make("tr", {}, make("th", {scope: "row"}, name), [executions.count, executions.median_us, executions.p90_us].map(value =>
      make("td", {class: "number"}, digits(value, decimalsOf([value])))));
    host.append(make("h3", {}, "Executions, without the first"), make("div", {class: "scroll"}, make("table", {class: "small"},
      make("thead", {}, make("tr", {}, head(""), head("Count", "number"), head("Median (us)", "number"), head("p90 (us)", "number"))),
      make("tbody", {}, spread("Base", graph.base_executions), spread("New", graph.new_executions)))));
  }
}

// ---- 3. Where an inference goes

const partsOfInference = [["marlix", []], ["backend", ["marlix"]], ["accelerator", ["marlix", "backend"]], ["layers", ["marlix", "backend", "accelerator"]],
                          ["ipc", ["marlix", "backend"]], ["copies", ["marlix", "backend"]], ["queue-wait", ["marlix", "backend"]]];

// The base above, the new version below with what it has more or less.
function pairOfBars(row, longest) {
  const base = row.base?.median_us ?? 0, now = row.new?.median_us ?? 0;
  const width = us => `${(share(us, longest) * 100).toFixed(2)}%`;
  const both = Math.min(base, now);
  const isSure = kindOf(row) !== "other";
  return draw("svg", {"aria-hidden": "true"},
    draw("rect", {x: 0, y: 1, width: width(base), height: 9, class: "base"}), draw("rect", {x: 0, y: 12, width: width(both), height: 9, class: "new"}),
    now > base ? draw("rect", {x: width(base), y: 12, width: width(now - base), height: 9, class: isSure ? "slower" : "rest"}) : null,
    now < base ? draw("rect", {x: width(now), y: 12.75, width: width(base - now), height: 7.5, class: isSure ? "saved" : "saved is-unsure"}) : null);
}

function showInference(graph) {
  const host = part("inference");
  const rows = graph ? partsOfInference.map(([key, within]) => ({row: totalOf(graph, key), depth: within.filter(outer => totalOf(graph, outer)).length})).filter(({row}) => row) : [];
  if (rows.length === 0) {
    host.replaceChildren(missing(graph ? "Neither side has execution times of this graph." : nothingToCompare));
    return;
  }
  const times = rows.flatMap(({row}) => [row.base, row.new]).map(range => range?.median_us ?? 0);
  const longest = Math.max(...times);
  const us = range => range === null ? "–" : digits(range.median_us, decimalsOf([range.median_us]));
  host.replaceChildren(
    make("div", {class: "scroll", role: "region", tabindex: "0", "aria-label": "Where an inference goes"}, make("table", {},
      make("thead", {}, make("tr", {}, make("th", {scope: "col"}, "Part"), make("th", {scope: "col", "aria-hidden": "true"}, ""),
        [["Base (us)", "detail"], ["New (us)", "detail"], ["Change (us)", ""]].map(([title, kind]) => make("th", {scope: "col", class: `number ${kind}`}, title)))),
      make("tbody", {}, rows.map(({row, depth}) => make("tr", {}, make("th", {scope: "row", class: `depth-${depth}`}, view.totals[row.total], make("small", {class: "in-short"}, `${us(row.base)} → ${us(row.new)}`)),
        make("td", {class: "pair", "aria-hidden": "true"}, pairOfBars(row, longest)),
        make("td", {class: "number detail"}, us(row.base)), make("td", {class: "number detail"}, us(row.new)),
        make("td", {class: "number"}, isOnBoth(row) ? signed(row.change_us, size => digits(size, decimalsOf([row.base.median_us, row.new.median_us]))) : "–")))))),
    legend(["base", "base"], ["new", "new"], ["slower", "longer than the base"], ["", "shorter than the base", draw("rect", {x: 1, y: 2, width: 14, height: 8, class: "saved"})],
      ...(comparison.basis === "one-each" ? [] : [["rest", "longer, but it may be chance"]])));
}

// ---- 4. Layers, and types of layers

const sumOf = (rows, key) => rows.reduce((sum, row) => sum + row[key], 0);

// Rows come with the largest change first, in either direction.
function showChanges(host, rows, {name, title, things, none}) {
  if (rows.length === 0) {
    host.replaceChildren(missing(none));
    return;
  }
  const least = view.hide_below * sumOf(rows, "base_us");
  const isMinor = row => Math.abs(row.change_us) < least;
  const others = rows.filter(isMinor);
  const longest = Math.abs(rows[0].change_us);
  const isNarrow = window.innerWidth <= 620; // where the change comes first, and the rest is to be chosen
  const decimals = decimalsOf(rows.flatMap(row => [row.base_us, row.new_us]));
  const us = value => digits(value, decimals);
  const bar = (change, row) => make("span", {class: "change"}, differenceBar(14, longest, {change, kind: row ? kindOf(row) : "other"}),
    make("span", {}, signed(change, us)));
  const minorWords = count => `${count === rows.length ? "all" : "the"} ${plural(count, ...things)} that moved by less than ${digits(view.hide_below * 100, 1)} % of the whole`;
  const sumRow = (kind, head, summed) => used => {
    const values = {base_us: sumOf(summed, "base_us"), new_us: sumOf(summed, "new_us"), change_us: sumOf(summed, "change_us")};
    return make("tr", {class: kind}, used.map(column => column.isHeading ? make("th", {scope: "row"}, head)
      : make("td", {class: column.isText ? "text" : "number"}, column.key === undefined ? "" : column.key === "change_us" ? signed(values.change_us, us) : us(values[column.key]))));
  };
  const otherRow = sumRow("is-others", plural(others.length, "other", "others"), others), wholeRow = sumRow("is-sum", "Sum", rows);
  showTable(host, {name, rows, things, layersOf: () => [], isMinor, minorWords,
    foot: (used, isShowingAll) => (isShowingAll ? [] : [otherRow(used)]).concat(wholeRow(used)),
    columns: [
      {title, isText: true, isHeading: true, of: row => row.name},
      {title: "Base (us)", key: "base_us", isExtra: isNarrow, of: row => row.base_us, text: us},
      {title: "New (us)", key: "new_us", isExtra: isNarrow, of: row => row.new_us, text: us},
      {title: "Change (us)", key: "change_us", least: isNarrow ? 180 : 300, of: row => row.change_us, text: bar},
      {title: "Change", of: row => row.verdict === "unsure" ? null : row.change, text: (value, row) => changeOf(row)},
      ...(isSeveral ? [{title: "p", isExtra: isNarrow, of: row => row.p, text: pOf}] : []),
      {title: "Verdict", isText: true, of: wordOf, text: (value, row) => verdictOf(row)},
    ]});
  host.append(legend(["slower", "slower, or new"], ["faster", "faster, or gone"], ...(comparison.basis === "one-each" ? [] : [["other", "may be chance (~)"]]),
    ["plain", `The longest bar is ${time(longest)}.`]));
}

function showLayers(graph) {
  const noLayers = comparison.different_levels ? "The logs have different profiling levels, so their layers can't be compared."
    : "Not both sides have data on layers. Profile the runs at level detailed to see them.";
  const hasTypes = graph && graph.types.length > 0;
  showChanges(part("layers"), graph ? graph.layers : [], {name: "ZEB layers", title: "Layer", things: ["layer", "layers"],
    none: !graph ? nothingToCompare : hasTypes ? "Not both sides map their ORU layers to the layers of the network." : noLayers});
  showChanges(part("types"), graph ? graph.types : [], {name: "ORU layers by type", title: "Type", things: ["type", "types"], none: graph ? noLayers : nothingToCompare});
}

// ---- The page

function showGraph(index) {
  const graph = comparison.graphs[index] ?? null;
  showHeader(graph);
  showTotals(graph);
  showInference(graph);
  showLayers(graph);
}

part("page").hidden = false;
if (comparison.graphs.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  choice.append(...comparison.graphs.map((graph, index) => make("option", {value: index}, cut(nameOf(graph), 80))));
  choice.addEventListener("change", () => showGraph(Number(choice.value)));
}
showGraph(0);
