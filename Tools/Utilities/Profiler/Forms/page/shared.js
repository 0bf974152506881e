"use strict";

// What the pages of a run and of a comparison are made with. Texts of a log reach the document as text nodes and
// attribute values only.

// ---- Elements

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes || {})) {
    if (value !== null && value !== undefined && value !== false) {
      element.setAttribute(name, value === true ? "" : value);
    }
  }
  element.append(...children.flat().filter(child => child !== null && child !== undefined));
  return element;
}

const make = (tag, attributes, ...children) => fill(document.createElement(tag), attributes, children);
const draw = (tag, attributes, ...children) =>
  fill(document.createElementNS("http://www.w3.org/2000/svg", tag), attributes, children);
const part = id => document.getElementById(id);

function chart(width, height, label, ...children) {
  return draw("svg", {class: "chart", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": label}, ...children);
}

const rect = (x, y, width, height, kind) =>
  draw("rect", {x: x.toFixed(2), y, width: Math.max(0, width).toFixed(2), height, class: kind});
const label = (x, y, text, kind, anchor) => draw("text", {x, y, class: kind, "text-anchor": anchor}, text);

function legend(...entries) {
  return make("ul", {class: "legend"}, entries.map(([kind, text, shape]) => make("li", {class: kind === "plain" ? kind : null},
    draw("svg", {viewBox: "0 0 16 12", "aria-hidden": "true"}, shape || rect(0, 0, 16, 12, kind)), text)));
}

const missing = text => make("p", {class: "missing"}, text);
const plural = (count, one, several) => `${digits(count)} ${count === 1 ? one : several}`;

// What is cut shows an ellipsis in its middle.
function cut(text, most) {
  const characters = Array.from(text);
  if (characters.length <= most) {
    return text;
  }
  const front = Math.max(1, Math.ceil((most - 1) / 2));
  return characters.slice(0, front).join("") + "…" + characters.slice(characters.length - Math.max(0, most - 1 - front)).join("");
}
const pen = document.createElement("canvas").getContext("2d");
pen.font = '12px system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif';
const widthOfText = text => pen.measureText(text).width;

// ---- Numbers

// Whole numbers above 2^53 come as strings.
const number = value => value === null || value === undefined ? null : Number(value);

function digits(value, decimals = 0) {
  if (value === null || value === undefined) {
    return "–";
  }
  // Halves go to the even neighbour, as they do in the reports.
  const rounded = decimals === 0 && Math.abs(value % 1) === 0.5 ? 2 * Math.round(value / 2) : value;
  const text = typeof value === "string" ? value : Math.abs(value) < 1e21 ? rounded.toFixed(decimals) : String(value);
  const [whole, rest] = text.split(".");
  return whole.replace(/\B(?=(\d{3})+$)/g, ",") + (rest ? "." + rest : "");
}

// A time in the unit that suits its size: the figure and the unit.
function timeParts(us) {
  const size = Math.abs(us);
  const [scale, unit] = size < 1e4 ? [1, "us"] : size < 1e7 ? [1e3, "ms"] : [1e6, "s"];
  const value = us / scale;
  const decimals = scale === 1 ? (size < 10 && !Number.isInteger(us) ? 2 : size < 100 && !Number.isInteger(us) ? 1 : 0)
    : Math.abs(value) < 100 ? 1 : 0;
  return [digits(value, decimals), unit];
}
const time = us => us === null || us === undefined ? "not known" : timeParts(us).join(" ");
const share = (piece, whole) => whole > 0 ? piece / whole : 0;

// ---- One layer that the whole page follows

const followers = [];
const selection = {view: null, hovered: null, pinned: null};
const selected = () => selection.hovered ?? selection.pinned;
const follow = () => followers.forEach(follower => follower(selected()));

function hover(index) {
  if (selection.hovered !== index) {
    selection.hovered = index;
    follow();
  }
}

const pinFollowers = [];
function pin(index) {
  selection.pinned = index;
  selection.hovered = null;
  pinFollowers.forEach(follower => follower(index));
  follow();
}

// ---- Tables

const mostRows = 500;
const rowsOfGroup = 100;

function csvField(value) {
  const text = String(typeof value === "number" ? Math.round(value * 1e6) / 1e6 : value);
  // A spreadsheet takes a text that begins like this for a formula.
  const safe = typeof value === "string" && /^[=+\-@\t\r]/.test(text) ? "'" + text : text;
  return /[",\r\n]/.test(safe) ? `"${safe.replaceAll('"', '""')}"` : safe;
}

async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const area = make("textarea", {"aria-hidden": "true"});
    area.value = text;
    document.body.append(area);
    area.select();
    const isCopied = document.execCommand("copy");
    area.remove();
    return isCopied;
  }
}

const widestCell = 260;
const widthOfCell = text => Math.ceil(widthOfText(text) * 13.5 / 12 * 1.08) + 22;

// Columns: title; of(row) the value that is sorted and copied, null last; text(value, row) what is shown of it, a text or an element, a
// number's digits if there is none; least, a width for what is no text. `things` are what rows are called. Rows that are `isMinor` are
// left out until they are asked for, by the button or by a filter; `minorWords` tells of them, and `foot(used, isShowingAll)` gives the
// rows below, for the columns that are used.
// Rows stand in groups of one height or so, of which the browser lays out those in view; columns have their widths beforehand, for
// the same reason. A row is made when it is first shown, and all that is asked of a column is asked once.
function showTable(host, {name, columns, rows, layersOf, narrowed, things = ["layer", "layers"], isMinor = () => false, minorWords, foot}) {
  const visible = new Set(columns.filter(column => !column.isExtra));
  const state = {column: null, isDescending: false, filter: "", isWhole: false, hasMinor: !rows.some(isMinor)};
  const search = make("input", {type: "search", autocomplete: "off", spellcheck: "false"});
  const count = make("span", {class: "count", role: "status"});
  const copy = make("button", {type: "button", class: "button"}, "Copy as CSV");
  const release = make("button", {type: "button", class: "button chip", hidden: true});
  const head = make("tr", {role: "row"});
  const table = make("table", {role: "table"}, make("thead", {role: "rowgroup"}, head));
  const region = make("div", {class: "scroll", role: "region", tabindex: "0", "aria-label": name}, table);
  const more = make("button", {type: "button", class: "button more", hidden: true});
  const sums = make("tfoot", {role: "rowgroup"});
  const minor = make("button", {type: "button", class: "button more", hidden: true});
  const minorCount = rows.filter(isMinor).length;
  const show = (column, value, row) => column.text ? column.text(value, row) : column.isText ? value : digits(value);
  const used = () => columns.filter(column => visible.has(column));
  let ordered = [];  // positions in rows
  let marked = [];
  let elements = new Map();
  let made = [];  // elements of rows, by their positions
  let filling = 0;

  const once = find => {
    const found = new Map();
    return column => {
      if (!found.has(column)) {
        found.set(column, find(column));
      }
      return found.get(column);
    };
  };
  const valuesOf = once(column => rows.map(row => column.of(row)));
  // Comparing texts as people do is slow, so each text is compared once.
  const keysOf = once(column => {
    if (!column.isText) {
      return Float64Array.from(valuesOf(column), value => value === null ? NaN : Number(value));
    }
    const texts = [...new Set(valuesOf(column))].sort(new Intl.Collator("en", {numeric: true}).compare);
    const ranks = new Map(texts.map((text, rank) => [text, rank]));
    return Float64Array.from(valuesOf(column), text => ranks.get(text));
  });
  const positionOfMost = (values, size) => values.reduce((most, value, position) => size(value) > size(values[most]) ? position : most, 0);
  const widthOf = once(column => {
    const values = valuesOf(column);
    const position = column.isText ? positionOfMost(values, text => text.length) : positionOfMost(keysOf(column), key => Math.abs(key) || 0);
    const longest = rows.length === 0 ? "" : show(column, values[position], rows[position]);
    const width = widthOfCell(longest.textContent ?? longest);
    return Math.max(column.least ?? 0, widthOfCell(`${column.title} \u2195`), Math.min(widestCell, width));
  });
  const haystacks = once(() => {
    const texts = columns.filter(column => column.isText).map(valuesOf);
    return rows.map((row, position) => texts.map(values => values[position]).join("\n").toLowerCase());
  });

  const choose = () => {
    const wanted = state.filter.toLowerCase();
    const texts = wanted === "" ? null : haystacks();
    ordered = [];
    rows.forEach((row, position) => {
      if ((texts !== null || state.hasMinor || !isMinor(row)) && (texts === null || texts[position].includes(wanted)) &&
          (!narrowed || selection.pinned === null || layersOf(row).includes(selection.pinned))) {
        ordered.push(position);
      }
    });
    if (state.column) {
      const keys = keysOf(state.column);
      const sign = state.isDescending ? -1 : 1;
      ordered = Uint32Array.from(ordered).sort((left, right) =>
        Number.isNaN(keys[left]) - Number.isNaN(keys[right]) || sign * (keys[left] - keys[right]));
    }
  };

  const showHead = () => {
    const widths = used().map(widthOf);
    table.style.setProperty("--columns", widths.map(width => `minmax(0, ${width}fr)`).join(" "));
    table.style.setProperty("--narrowest", `${widths.reduce((sum, width) => sum + width, 0)}px`);
    head.replaceChildren(...used().map(column => {
      const button = make("button", {type: "button"}, column.title);
      button.addEventListener("click", () => {
        state.isDescending = state.column === column ? !state.isDescending : !column.isText;
        state.column = column;
        update();
        head.querySelector('[aria-sort="ascending"] button, [aria-sort="descending"] button').focus();
      });
      return make("th", {scope: "col", role: "columnheader", class: column.isText ? null : "number",
                         "aria-sort": state.column !== column ? "none" : state.isDescending ? "descending" : "ascending"}, button);
    }));
  };

  const addRows = (from, to) => {
    const columnsNow = used();
    const values = columnsNow.map(valuesOf);
    const pattern = make("tr", {role: "row"}, columnsNow.map(column => make(column.isHeading ? "th" : "td",
      {role: column.isHeading ? "rowheader" : "cell", scope: column.isHeading ? "row" : null, class: column.isText ? "text" : "number"}, " ")));
    const group = make("tbody", {role: "rowgroup"});
    group.style.setProperty("--rows", to - from);
    for (const position of ordered.slice(from, to)) {
      let row = made[position];
      if (!row) {
        row = made[position] = pattern.cloneNode(true);
        let cell = row.firstChild;
        columnsNow.forEach((column, at) => {
          const shown = show(column, values[at][position], rows[position]);
          if (shown instanceof Node) {
            cell.replaceChildren(shown);
          } else {
            cell.firstChild.data = shown;
          }
          cell = cell.nextSibling;
        });
        row.layers = layersOf(rows[position]);
      }
      row.layers.forEach(layer => elements.has(layer) ? elements.get(layer).push(row) : elements.set(layer, [row]));
      group.append(row);
    }
    table.insertBefore(group, table.tFoot);
  };

  const showFoot = () => {
    sums.replaceChildren(...foot(used(), state.hasMinor));
    for (const row of sums.rows) {
      row.setAttribute("role", "row");
      [...row.cells].forEach(cell => cell.setAttribute("role", cell.tagName === "TH" ? "rowheader" : "cell"));
    }
  };

  const showRows = () => {
    mark(null);
    elements = new Map();
    const mine = ++filling;
    const shown = state.isWhole ? ordered.length : Math.min(ordered.length, mostRows);
    table.replaceChildren(table.tHead, ...(foot ? [sums] : []));
    let next = 0;
    const add = end => {
      for (; next < end; next += rowsOfGroup) {
        addRows(next, Math.min(shown, next + rowsOfGroup));
      }
    };
    // What is beyond the first rows comes between frames, so that the page can be used meanwhile.
    const addMore = () => {
      if (mine !== filling) {
        return;
      }
      const start = performance.now();
      do {
        add(next + 1);
      } while (next < shown && performance.now() - start < 10);
      if (next < shown) {
        requestAnimationFrame(addMore);
      }
      mark(selected());
    };
    add(Math.min(shown, mostRows));
    if (next < shown) {
      requestAnimationFrame(addMore);
    }
    more.hidden = ordered.length <= shown;
    more.textContent = `Show all ${digits(ordered.length)} ${things[1]}`;
    minor.hidden = minorCount === 0 || state.filter !== "";
    minor.textContent = `${state.hasMinor ? "Hide" : "Show"} ${minorWords?.(minorCount)}`;
    if (foot) {
      showFoot();
    }
    count.textContent = ordered.length === rows.length ? plural(rows.length, ...things) : `${digits(ordered.length)} of ${plural(rows.length, ...things)}`;
    if (shown < ordered.length) {
      count.textContent += `, the first ${digits(shown)} shown`;
    }
    release.hidden = !narrowed || selection.pinned === null;
    if (!release.hidden) {
      release.textContent = `Only ${cut(selection.view.layers[selection.pinned].name, 40)} ✕`;
      release.setAttribute("aria-label", `Of ${selection.view.layers[selection.pinned].name} only; press to show all`);
    }
    mark(selected());
  };

  const mark = index => {
    marked.forEach(element => element.classList.remove("is-marked"));
    marked = index === null ? [] : (elements.get(index) || []).slice();
    marked.forEach(element => element.classList.add("is-marked"));
  };

  // Rows first: a heading that goes while it has the focus makes the browser lay out what rows there are.
  const update = () => {
    state.isWhole = false;
    choose();
    showRows();
    showHead();
  };

  search.addEventListener("input", () => {
    state.filter = search.value;
    update();
  });
  more.addEventListener("click", () => {
    state.isWhole = true;
    showRows();
    region.focus({preventScroll: true});
  });
  minor.addEventListener("click", () => {
    state.hasMinor = !state.hasMinor;
    update();
  });
  copy.addEventListener("click", async () => {
    const values = used().map(valuesOf);
    const lines = [used().map(column => csvField(column.title))].concat(Array.from(ordered, position => values.map(list => csvField(list[position] ?? ""))));
    const isCopied = await copyText(lines.map(line => line.join(",")).join("\r\n") + "\r\n");
    copy.textContent = isCopied ? `Copied ${plural(ordered.length, "row", "rows")}` : "The browser does not let it be copied";
    setTimeout(() => { copy.textContent = "Copy as CSV"; }, 2500);
  });
  release.addEventListener("click", () => pin(null));
  table.addEventListener("pointerover", event => hover(event.target.closest("tr")?.layers?.[0] ?? null));
  table.addEventListener("pointerleave", () => hover(null));
  followers.push(mark);
  pinFollowers.push(() => {
    if (narrowed) {
      update();
    }
  });

  const choices = make("details", {}, make("summary", {}, "Columns"), make("div", {}, columns.map(column => {
    const box = make("input", {type: "checkbox"});
    box.checked = visible.has(column);
    box.disabled = Boolean(column.isHeading);
    box.addEventListener("change", () => {
      if (box.checked) {
        visible.add(column);
      } else {
        visible.delete(column);
      }
      made = [];
      showHead();
      showRows();
    });
    return make("label", {}, box, column.title);
  })));
  choices.addEventListener("keydown", event => {
    if (event.key === "Escape" && choices.open) {
      choices.open = false;
      choices.querySelector("summary").focus();
    }
  });
  host.replaceChildren(
    make("div", {class: "tools"}, make("label", {class: "field"}, "Filter ", search), choices, copy, release, count),
    region, more, minor);
  update();
}
