// A table to sort, filter, choose columns of, and copy.

import {cut, make, plural, widthOfText} from "./elements.js";
import {digits} from "./figures.js";
import {change, follow, hover, marked, state} from "./state.js";

const maxRows = 500; // that are shown unasked
const rowsOfGroup = 50;
const rowsAtOnce = 50; // of a long table; the others of the first ones come between frames as well
const narrow = 480; // pixels, of a window where the name and the deciding column come first
const widestCell = 260;
const widthOfCell = text => Math.ceil((widthOfText(text) * 13.5 * 1.08) / 12) + 22;

export function csvField(value) {
  const text = String(typeof value === "number" ? Math.round(value * 1e6) / 1e6 : value);
  // A spreadsheet takes a text that begins like this for a formula.
  const safe = typeof value === "string" && /^[=+\-@\t\r]/.test(text) ? `'${text}` : text;
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

/** What is found for a column, once. */
function once(find) {
  const found = new Map();
  return column => {
    if (!found.has(column)) {
      found.set(column, find(column));
    }
    return found.get(column);
  };
}

const positionOfMost = (values, size) =>
  values.reduce((most, value, position) => (size(value) > size(values[most]) ? position : most), 0);

/**
 * The table of `host`, an element with an id. `rows` are anything, and never change.
 *
 * A column has a `title` and `of(row)`, the value that is sorted and copied, null last. Besides:
 *   isText     its values are texts
 *   text       (value, row) => what is shown of it, a text or an element; a number's digits if there is none
 *   isHeading  it names the row
 *   isDeciding it is in sight in a narrow window, too
 *   isExtra    it is shown when it is asked for
 *   least      a width for what is no text
 * Options:
 *   name       what the table is called; `things`, what its rows are called: one and several
 *   layersOf   (row) => the layers that it is marked with
 *   isAbout    (row) => whether the state's finding is about it, which marks it
 *   narrowing  () => what the state leaves of it: {words, has(row), release()}, or null for all rows
 *   narrowedBy the names of the state that decide that
 *   isMinor    (row) => whether it is left out until it is asked for, by a filter or by the button that says
 *              `minorWords(count)`
 *   foot       (columns, isShowingAll) => the rows below
 *
 * Rows stand in groups of one height or so, of which the browser lays out those in view; columns have their widths
 * beforehand, for the same reason. A row is made when it is first shown, and all that is asked of a column is asked
 * once.
 */
export class Table {
  constructor(host, options) {
    Object.assign(
      this,
      {
        things: ["layer", "layers"],
        isMinor: () => false,
        isAbout: () => false,
        layersOf: () => [],
        narrowing: () => null,
      },
      options,
    );
    if (window.innerWidth <= narrow) {
      const rank = column => (column.isHeading ? 0 : column.isDeciding ? 1 : 2);
      this.columns = this.columns.toSorted((left, right) => rank(left) - rank(right));
    }
    this.visible = new Set(this.columns.filter(column => !column.isExtra));
    this.minorCount = this.rows.filter(row => this.isMinor(row)).length;
    this.sorting = {column: null, isDescending: false};
    this.filter = "";
    this.isWhole = false; // whether more than the first rows are shown
    this.hasMinor = this.minorCount === 0;
    this.ordered = []; // places in rows of those that are chosen
    this.made = []; // elements of rows, by their places
    this.elements = new Map(); // of a layer, those in the table
    this.marks = [];
    this.filling = 0; // which filling of the table it is
    this.valuesOf = once(column => this.rows.map(row => column.of(row)));
    this.keysOf = once(column => this.findKeys(column));
    this.widthOf = once(column => this.findWidth(column));
    this.textsOf = once(column => this.findTexts(column));
    this.host = host;
    this.build(host);
    this.take(state.tables[host.id] ?? {});
    follow(host.id, changed => this.follow(changed));
    // What a filter looks in is found while nobody waits for it.
    const soon = window.requestIdleCallback ?? setTimeout;
    this.columns.filter(column => column.isText).forEach(column => soon(() => this.textsOf(column)));
  }

  /** What the reader has asked for, as it stands in the state: the title of a column, a text. */
  wishes() {
    const {column, isDescending} = this.sorting;
    return {sort: column?.title ?? null, isDescending, filter: this.filter};
  }

  take({sort = null, isDescending = false, filter = ""}) {
    this.sorting = {column: this.columns.find(column => column.title === sort) ?? null, isDescending};
    this.filter = this.search.value = filter;
    this.update();
  }

  build(host) {
    const button = (kind, action, text = "") => {
      const made = make("button", {type: "button", class: `button ${kind}`}, text);
      made.addEventListener("click", action);
      return made;
    };
    this.search = make("input", {type: "search", autocomplete: "off", spellcheck: "false"});
    this.search.addEventListener("input", () => {
      this.filter = this.search.value;
      this.update();
      change({tables: {...state.tables, [host.id]: this.wishes()}});
    });
    this.count = make("span", {class: "count", role: "status"});
    this.copyButton = button("", () => this.copy(), "Copy as CSV");
    this.release = button("chip", () => this.narrowing()?.release());
    this.more = button("more", () => this.showAll());
    this.minor = button("more", () => {
      this.hasMinor = !this.hasMinor;
      this.update();
    });
    this.head = make("tr", {role: "row"});
    this.table = make("table", {role: "table"}, make("thead", {role: "rowgroup"}, this.head));
    this.table.addEventListener("pointerover", event => hover(event.target.closest("tr")?.layers?.[0] ?? null));
    this.table.addEventListener("pointerleave", () => hover(null));
    this.sums = make("tfoot", {role: "rowgroup"});
    this.region = make("div", {class: "scroll", role: "region", tabindex: "0", "aria-label": this.name}, this.table);
    const field = make("label", {class: "field"}, "Filter ", this.search);
    const tools = make("div", {class: "tools"}, field, this.choices(), this.copyButton, this.release, this.count);
    host.replaceChildren(tools, this.region, this.more, this.minor);
    // Where it has room its head stays in the window while the page scrolls; else it scrolls by itself.
    new ResizeObserver(() =>
      this.region.classList.toggle("is-wider", this.table.offsetWidth > this.region.clientWidth + 1),
    ).observe(this.region);
  }

  choices() {
    const boxes = this.columns.map(column => {
      const box = make("input", {type: "checkbox"});
      box.checked = this.visible.has(column);
      box.disabled = Boolean(column.isHeading);
      box.addEventListener("change", () => this.choose(column, box.checked));
      return make("label", {}, box, column.title);
    });
    const choices = make("details", {}, make("summary", {}, "Columns"), make("div", {}, boxes));
    choices.addEventListener("keydown", event => {
      if (event.key === "Escape" && choices.open) {
        choices.open = false;
        choices.querySelector("summary").focus();
      }
    });
    return choices;
  }

  choose(column, isWanted) {
    if (isWanted) {
      this.visible.add(column);
    } else {
      this.visible.delete(column);
    }
    this.made = [];
    this.showHead();
    this.showRows();
  }

  // ---- What is asked of a column

  used() {
    return this.columns.filter(column => this.visible.has(column));
  }

  shownOf(column, value, row) {
    return column.text ? column.text(value, row) : column.isText ? value : digits(value);
  }

  /** The texts of a column, each once, and which of them each row has. */
  findTexts(column) {
    const places = new Map();
    const ofRows = new Uint32Array(this.rows.length);
    this.valuesOf(column).forEach((text, position) => {
      let place = places.get(text);
      if (place === undefined) {
        place = places.size;
        places.set(text, place);
      }
      ofRows[position] = place;
    });
    return {texts: [...places.keys()], ofRows};
  }

  findKeys(column) {
    const keys = new Float64Array(this.rows.length);
    if (!column.isText) {
      this.valuesOf(column).forEach((value, position) => (keys[position] = value === null ? NaN : Number(value)));
      return keys;
    }
    // Comparing texts as people do is slow, so each text is compared once.
    const {texts, ofRows} = this.textsOf(column);
    const {compare} = new Intl.Collator("en", {numeric: true});
    const ranks = new Uint32Array(texts.length);
    texts
      .map((_, place) => place)
      .sort((left, right) => compare(texts[left], texts[right]))
      .forEach((place, rank) => (ranks[place] = rank));
    ofRows.forEach((place, position) => (keys[position] = ranks[place]));
    return keys;
  }

  findWidth(column) {
    const values = this.valuesOf(column);
    const position = column.isText
      ? positionOfMost(values, text => text.length)
      : positionOfMost(this.keysOf(column), key => Math.abs(key) || 0);
    const longest = this.rows.length === 0 ? "" : this.shownOf(column, values[position], this.rows[position]);
    const width = widthOfCell(longest.textContent ?? longest);
    return Math.max(column.least ?? 0, widthOfCell(`${column.title} \u2195`), Math.min(widestCell, width));
  }

  // ---- What is shown

  order() {
    const wanted = this.filter.toLowerCase();
    const searched = wanted === "" ? [] : this.columns.filter(column => column.isText).map(this.textsOf);
    const hits = searched.map(({texts, ofRows}) => ({
      isHit: texts.map(text => text.toLowerCase().includes(wanted)),
      ofRows,
    }));
    const isFound = (row, position) =>
      wanted === "" ? this.hasMinor || !this.isMinor(row) : hits.some(({isHit, ofRows}) => isHit[ofRows[position]]);
    const narrowing = this.narrowing();
    this.ordered = [];
    this.rows.forEach((row, position) => {
      if (isFound(row, position) && (narrowing === null || narrowing.has(row))) {
        this.ordered.push(position);
      }
    });
    const {column, isDescending} = this.sorting;
    if (column) {
      const keys = this.keysOf(column);
      const sign = isDescending ? -1 : 1;
      this.ordered = Uint32Array.from(this.ordered).sort(
        (left, right) => Number.isNaN(keys[left]) - Number.isNaN(keys[right]) || sign * (keys[left] - keys[right]),
      );
    }
  }

  sort(column) {
    const isSame = this.sorting.column === column;
    this.sorting = {column, isDescending: isSame ? !this.sorting.isDescending : !column.isText};
    this.update();
    change({tables: {...state.tables, [this.host.id]: this.wishes()}});
    this.head.querySelector('[aria-sort="ascending"] button, [aria-sort="descending"] button').focus();
  }

  showHead() {
    const widths = this.used().map(this.widthOf);
    this.table.style.setProperty("--columns", widths.map(width => `minmax(0, ${width}fr)`).join(" "));
    this.table.style.setProperty("--narrowest", `${widths.reduce((sum, width) => sum + width, 0)}px`);
    const direction = this.sorting.isDescending ? "descending" : "ascending";
    const cells = this.used().map(column => {
      const button = make("button", {type: "button"}, column.title);
      button.addEventListener("click", () => this.sort(column));
      const sorted = this.sorting.column === column ? direction : "none";
      const kind = column.isText ? null : "number";
      return make("th", {scope: "col", role: "columnheader", class: kind, "aria-sort": sorted}, button);
    });
    this.head.replaceChildren(...cells);
  }

  pattern(columns) {
    const cells = columns.map(column => {
      const [tag, role, scope] = column.isHeading ? ["th", "rowheader", "row"] : ["td", "cell", null];
      return make(tag, {role, scope, class: column.isText ? "text" : "number"}, " ");
    });
    return make("tr", {role: "row"}, cells);
  }

  makeRow(pattern, position, columns) {
    const row = pattern.cloneNode(true);
    let cell = row.firstChild;
    for (const column of columns) {
      const shown = this.shownOf(column, this.valuesOf(column)[position], this.rows[position]);
      if (shown instanceof Node) {
        cell.replaceChildren(shown);
      } else {
        cell.firstChild.data = shown;
      }
      cell = cell.nextSibling;
    }
    row.layers = this.layersOf(this.rows[position]);
    row.classList.toggle("is-about", this.isAbout(this.rows[position]));
    return row;
  }

  addRows(from, to) {
    const columns = this.used();
    const pattern = this.pattern(columns);
    const group = make("tbody", {role: "rowgroup"});
    group.style.setProperty("--rows", to - from);
    for (const position of this.ordered.slice(from, to)) {
      const row = (this.made[position] ??= this.makeRow(pattern, position, columns));
      for (const layer of row.layers) {
        if (this.elements.has(layer)) {
          this.elements.get(layer).push(row);
        } else {
          this.elements.set(layer, [row]);
        }
      }
      group.append(row);
    }
    this.table.insertBefore(group, this.table.tFoot);
  }

  showRows() {
    this.mark(null);
    this.elements = new Map();
    const mine = ++this.filling;
    const shown = this.isWhole ? this.ordered.length : Math.min(this.ordered.length, maxRows);
    this.table.classList.toggle("is-long", shown > maxRows);
    this.table.replaceChildren(this.table.tHead, ...(this.foot ? [this.sums] : []));
    let next = 0;
    const add = end => {
      for (; next < end; next += rowsOfGroup) {
        this.addRows(next, Math.min(shown, next + rowsOfGroup));
      }
    };
    // What is beyond those comes between frames, so that the page can be used meanwhile.
    const addMore = () => {
      if (mine !== this.filling) {
        return;
      }
      const start = performance.now();
      do {
        add(next + 1);
      } while (next < shown && performance.now() - start < 10);
      if (next < shown) {
        requestAnimationFrame(addMore);
      }
      this.mark(marked());
    };
    add(Math.min(shown, this.rows.length > maxRows ? rowsAtOnce : maxRows));
    if (next < shown) {
      requestAnimationFrame(addMore);
    }
    this.showWords(shown);
    if (this.foot) {
      this.showFoot();
    }
    this.mark(marked());
  }

  showWords(shown) {
    const all = this.rows.length;
    this.more.hidden = this.ordered.length <= shown;
    this.more.textContent = `Show all ${digits(this.ordered.length)} ${this.things[1]}`;
    this.minor.hidden = this.minorCount === 0 || this.filter !== "";
    this.minor.textContent = `${this.hasMinor ? "Hide" : "Show"} ${this.minorWords?.(this.minorCount)}`;
    const some = this.ordered.length === all ? "" : `${digits(this.ordered.length)} of `;
    const first = shown < this.ordered.length ? `, the first ${digits(shown)} shown` : "";
    this.count.textContent = some + plural(all, ...this.things) + first;
    const narrowing = this.narrowing();
    this.release.hidden = narrowing === null;
    if (narrowing !== null) {
      this.release.textContent = `Only ${cut(narrowing.words, 40)} ✕`;
      this.release.setAttribute("aria-label", `Of ${narrowing.words} only; press to show all`);
    }
  }

  showFoot() {
    this.sums.replaceChildren(...this.foot(this.used(), this.hasMinor));
    for (const row of this.sums.rows) {
      row.setAttribute("role", "row");
      for (const cell of row.cells) {
        cell.setAttribute("role", cell.tagName === "TH" ? "rowheader" : "cell");
      }
    }
  }

  showAll() {
    this.isWhole = true;
    this.showRows();
    this.region.focus({preventScroll: true});
  }

  // Rows first: a heading that goes while it has the focus makes the browser lay out what rows there are.
  update() {
    this.isWhole = false;
    this.order();
    this.showRows();
    this.showHead();
  }

  mark(layer) {
    this.marks.forEach(element => element.classList.remove("is-marked"));
    this.marks = layer === null ? [] : (this.elements.get(layer) ?? []).slice();
    this.marks.forEach(element => element.classList.add("is-marked"));
  }

  follow(changed) {
    if (changed.includes("finding")) {
      this.made.forEach((row, position) => row.classList.toggle("is-about", this.isAbout(this.rows[position])));
    }
    if (changed.some(name => this.narrowedBy?.includes(name))) {
      this.update();
    } else {
      this.mark(marked());
    }
  }

  async copy() {
    const columns = this.used();
    const lines = [columns.map(column => csvField(column.title))];
    for (const position of this.ordered) {
      lines.push(columns.map(column => csvField(this.valuesOf(column)[position] ?? "")));
    }
    const isCopied = await copyText(`${lines.map(line => line.join(",")).join("\r\n")}\r\n`);
    this.copyButton.textContent = isCopied
      ? `Copied ${plural(this.ordered.length, "row", "rows")}`
      : "The browser does not let it be copied";
    setTimeout(() => {
      this.copyButton.textContent = "Copy as CSV";
    }, 2500);
  }
}
