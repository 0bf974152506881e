// What a reader of the page does, and what has to come of it. Each check gives what is wrong, in a word; nothing is
// good.
"use strict";

const element = id => document.getElementById(id);
const textsOf = (id, column) =>
  [...element(id).querySelectorAll("tbody tr")].map(row => row.children[column].textContent);
const heading = (id, title) =>
  [...element(id).querySelectorAll("thead th button")].find(button => button.textContent === title);
const columnOf = (id, title) =>
  [...element(id).querySelectorAll("thead th")].findIndex(cell => cell.textContent === title);
const numbersOf = (id, title) => textsOf(id, columnOf(id, title)).map(text => Number(text.replaceAll(",", "")));
const isSorted = (values, inOrder) => values.every((value, at) => at === 0 || inOrder(values[at - 1], value));
const buttonOf = (id, start) =>
  [...element(id).querySelectorAll("button")].find(button => button.textContent.startsWith(start));
const press = (target, key) =>
  target.dispatchEvent(new KeyboardEvent("keydown", {key, bubbles: true, cancelable: true}));
const textOf = node => node.textContent;
const rowsOf = id => element(id).querySelectorAll("tbody tr");
const wordsOf = row => [...row.cells].map(textOf).filter(Boolean).join(" ");
const rowTexts = host => [...host.querySelectorAll("tbody tr")].map(wordsOf);
const digitsOf = text => Number(text.replaceAll(",", ""));
function filter(id, text) {
  const field = element(id).querySelector('input[type="search"]');
  field.value = text;
  field.dispatchEvent(new Event("input"));
}
// What a script shows that does not know what it has.
function slips() {
  const words = document.querySelector("main").innerText.match(/.*(\[object|undefined|NaN).*/)?.[0];
  const drawn = document.querySelector(
    '[x*="NaN"], [y*="NaN"], [width*="NaN"], [height*="NaN"], [d*="NaN"]',
  )?.outerHTML;
  return words ?? drawn ?? "";
}
function wrongParts(wanted) {
  const titles = [...document.querySelectorAll("main section > h2")].map(title => title.textContent).join("; ");
  const silent = [...document.querySelectorAll("main section")].filter(
    section => section.querySelector(".hint + div").textContent.trim() === "",
  );
  const unsaid = document.querySelectorAll("main section:not([aria-labelledby])").length;
  return titles !== wanted
    ? titles
    : silent.length > 0
      ? `empty: ${silent[0].textContent}`
      : unsaid > 0
        ? "a part without a name"
        : slips();
}
// What of a log has become more than text.
function strangers() {
  const strange = [
    ...document.querySelectorAll(
      "img, iframe, object, b > *, td *, li > *, main script, [onerror], [onload], [onclick]",
    ),
  ].filter(
    found =>
      !found.closest(
        "td.bar, svg, .change, .verdict, td small, .legend, li > bdi:not(:has(*)), " +
          "#findings li > :not(:has(:not(bdi, i, button.marks, abbr)))",
      ),
  );
  return window.broken !== undefined || [...document.scripts].filter(script => script.type === "").length !== 1
    ? "a script of the log ran"
    : strange.length > 0
      ? strange[0].outerHTML
      : /[\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]/.test(document.body.textContent)
        ? "a name turns the direction of the text"
        : "";
}
function clipboard() {
  const copied = [];
  Object.defineProperty(navigator, "clipboard", {
    value: {
      writeText: text => {
        copied.push(text);
        return Promise.resolve();
      },
    },
  });
  return copied;
}
function took(action) {
  const start = performance.now();
  action();
  document.body.offsetHeight;
  return performance.now() - start;
}

// Does what the action gives, with the frames that it asks for in a list.
function byFrames(action) {
  const nextFrame = window.requestAnimationFrame;
  const frames = [];
  window.requestAnimationFrame = callback => frames.push(callback);
  const result = action(frames);
  window.requestAnimationFrame = nextFrame;
  return result;
}
// Makes all frames that are asked for, and tells how many.
function drain(frames) {
  let count = 0;
  for (; frames.length > 0; ++count) {
    frames.shift()();
  }
  return count;
}

/** Rows of a table when all of those have come that an action shows. */
const settled = (id, action) =>
  byFrames(frames => {
    action();
    drain(frames);
    return rowsOf(id).length;
  });

globalThis.checks = {
  parts() {
    return wrongParts(
      `${element("graphs") ? "Graphs of the run; " : ""}What stands out; Where an inference goes; ` +
        "One inference, layer by layer; Costliest ZEB layers; " +
        "ORU layers by type; Execution times over the run; Start-up and tear-down; All ZEB layers; All ORU layers",
    );
  },
  figures() {
    return [...document.querySelectorAll("#figures .large")].map(figure => figure.textContent).join(" ");
  },
  missing() {
    return [...new Set([...document.querySelectorAll(".missing")].map(text => text.textContent))].join(" | ");
  },
  // Those that would say once more what another says.
  hiddenParts() {
    const sections = [...document.querySelectorAll("main section")];
    const titles = sections.filter(section => section.hidden).map(section => section.querySelector("h2").textContent);
    const links = document.querySelectorAll("#contents a").length;
    return links + titles.length === sections.length ? titles.join("; ") || "none" : `${links} links, ${titles}`;
  },
  sorting() {
    heading("zeb", "Time (us)").click();
    const falls = isSorted(numbersOf("zeb", "Time (us)"), (left, right) => left >= right);
    const said = heading("zeb", "Time (us)").parentElement.getAttribute("aria-sort");
    heading("zeb", "Time (us)").click();
    const rises = isSorted(numbersOf("zeb", "Time (us)"), (left, right) => left <= right);
    const saidThen = heading("zeb", "Time (us)").parentElement.getAttribute("aria-sort");
    const hasFocus = document.activeElement === heading("zeb", "Time (us)");
    heading("zeb", "Name").click();
    const names = textsOf("zeb", columnOf("zeb", "Name"));
    const order = new Intl.Collator("en", {numeric: true});
    return !falls
      ? "does not fall"
      : !rises
        ? "does not rise"
        : said !== "descending" || saidThen !== "ascending"
          ? `${said} ${saidThen}`
          : !hasFocus
            ? "the heading has lost the focus"
            : !isSorted(names, (left, right) => order.compare(left, right) <= 0)
              ? names.join()
              : "";
  },
  filtering() {
    const all = rowsOf("oru").length;
    filter("oru", "GEMM");
    const some = textsOf("oru", columnOf("oru", "Type"));
    const count = element("oru").querySelector("[role=status]").textContent;
    filter("oru", "no such layer");
    const none = rowsOf("oru").length;
    filter("oru", "");
    return some.length === 0 || some.length === all || some.some(type => type !== "SUPERGEMM")
      ? `shows ${some.join()}`
      : none !== 0
        ? "shows others"
        : count !== `${some.length} of ${all} layers`
          ? count
          : rowsOf("oru").length !== all
            ? "does not come back"
            : "";
  },
  columns() {
    const boxes = [...element("oru").querySelectorAll("details label")];
    const box = boxes.find(label => label.textContent === "Total DSP cycles").querySelector("input");
    const before = columnOf("oru", "Total DSP cycles");
    box.click();
    const there = columnOf("oru", "Total DSP cycles");
    const cells = rowsOf("oru")[0].cells.length,
      titles = element("oru").querySelectorAll("thead th").length;
    box.click();
    return before !== -1 || there === -1 || cells !== titles || columnOf("oru", "Total DSP cycles") !== -1
      ? `${before} ${there} ${cells} ${titles}`
      : "";
  },
  copying() {
    const copied = clipboard();
    heading("zeb", "#").click();
    heading("zeb", "#").click();
    buttonOf("zeb", "Copy").click();
    const lines = copied[0].split("\r\n");
    return lines[0] !== "#,Name,Time (us),Share,DSP (us),Krel (us),ORU layers,Types" ||
      lines.length !== rowsOf("zeb").length + 2 ||
      !/^1,input_1,44,0\.025806,44,0,2,"QUANTIZE, LAYOUT_PAD"$/.test(lines[1])
      ? `copies ${copied}`
      : "";
  },
  following() {
    const slider = element("strip").querySelector("[role=slider]");
    const box = slider.getBoundingClientRect();
    const marks = id =>
      [...element(id).querySelectorAll("tr.is-marked")].map(row => row.children[1].textContent).join();
    slider.dispatchEvent(new PointerEvent("pointermove", {clientX: box.left + 2, clientY: box.top + 2}));
    const name = element("strip").querySelector(".readout b").textContent;
    const types = element("types").querySelectorAll("tr.is-marked").length;
    const pointed = `${name} ${marks("zeb")} ${marks("oru")} ${types}`;
    press(slider, "ArrowRight");
    const moved = slider.getAttribute("aria-valuetext").split(",")[0];
    press(slider, "Enter");
    const kept = `${rowsOf("oru").length} ${buttonOf("oru", "Only").textContent}`;
    press(slider, "Escape");
    const left = `${element("oru").querySelectorAll("tr.is-marked").length} ${rowsOf("oru").length > 2}`;
    const found = [pointed, moved, kept, left].join("; ");
    return found === "input_1 input_1 QUANTIZE,LAYOUT_PAD 2; conv1; 2 Only conv1 ✕; 0 true" ? "" : found;
  },
  // Bars have a width, lie behind one another, are few enough, and fill the strip in the shares of the colours.
  strip() {
    const width = element("strip").querySelector("svg").viewBox.baseVal.width;
    const rows = new Map();
    for (const bar of element("strip").querySelectorAll("[role=slider] rect:not(.selected, .hit)")) {
      const [x, y, room] = ["x", "y", "width"].map(name => Number(bar.getAttribute(name)));
      const row = rows.get(y) ?? {end: 0, drawn: 0, blue: 0};
      if (room < 1 || x < row.end || x + room > width) {
        return `from ${x}, ${room} wide, behind ${row.end}`;
      }
      const blue = row.blue + (bar.getAttribute("class") === "krel" ? room : 0);
      rows.set(y, {end: x + room, drawn: row.drawn + room, blue});
    }
    const bars = element("strip").querySelectorAll("[role=slider] rect").length;
    const [upper, lower] = [...rows.values()];
    const onKrel = parseFloat(document.querySelector("#figures div:last-child .large").textContent) / 100;
    const isFull = [upper, lower].every(row => row.end > 0.98 * width);
    return rows.size !== 2 || !isFull || bars > 2000
      ? `${rows.size} rows, ${bars} bars, ${upper.drawn} of ${width}`
      : [upper, lower]
          .map(row => row.blue / row.drawn)
          .filter(blue => Math.abs(blue - onKrel) > 0.02)
          .map(blue => `${blue} is blue`)
          .join();
  },
  zooming() {
    const strip = element("strip");
    const slider = strip.querySelector("[role=slider]");
    const box = slider.getBoundingClientRect();
    const shown = () => strip.querySelector("[role=status]").textContent.replace(" of the inference", "");
    const pointer = (kind, x, more = {}) =>
      slider.dispatchEvent(new PointerEvent(kind, {clientX: box.left + x * box.width, pointerId: 1, ...more}));
    const found = [];
    const isWithin = bar => {
      const [x, room] = ["x", "width"].map(name => Number(bar.getAttribute(name)));
      return x >= 0 && x + room <= slider.querySelector("svg").viewBox.baseVal.width;
    };
    const after = action => {
      action();
      const isInside = [...slider.querySelectorAll("rect.krel, rect.dsp")].every(isWithin);
      found.push(isInside ? shown() || "whole" : "a bar beyond the edge");
    };
    after(() => buttonOf("strip", "+").click());
    after(() => press(slider, "+"));
    after(() => press(slider, "-"));
    after(() => press(slider, "0"));
    after(() => {
      pointer("pointerdown", 0.2);
      pointer("pointermove", 0.3);
      pointer("pointermove", 0.6);
      pointer("pointerup", 0.6);
      slider.click();
    });
    const first = strip.querySelector("rect.krel, rect.dsp");
    after(() => buttonOf("strip", "Whole").click());
    const wheel = {deltaY: -100, clientX: box.left, bubbles: true, cancelable: true};
    slider.dispatchEvent(new WheelEvent("wheel", wheel));
    found.push(/^\d\d\.\d%$/.test(shown()));
    for (let step = 0; step < 60; ++step) {
      press(slider, "+");
    }
    const least = shown();
    pointer("pointermove", 0.5);
    const named = strip.querySelector(".readout b").textContent;
    press(slider, "End");
    found.push(parseFloat(least) < 1, named !== "", slider.getAttribute("aria-valuenow"));
    press(slider, "0");
    press(slider, "Escape");
    // Two fingers that go apart.
    const finger = (kind, id, x) => pointer(kind, x, {pointerId: id, pointerType: "touch"});
    finger("pointerdown", 1, 0.4);
    finger("pointerdown", 2, 0.6);
    finger("pointermove", 2, 0.8);
    found.push(shown());
    ["1", "2"].forEach(id => finger("pointerup", Number(id), 0.5));
    press(slider, "0");
    const wanted = "50.0%,25.0%,50.0%,whole,40.0%,whole,true,true,true,32,50.0%";
    return first === null || found.join() !== wanted ? found.join() : "";
  },
  searching() {
    const strip = element("strip");
    filter("strip", "PW_1");
    const found = [strip.querySelector("[role=status]").textContent, strip.querySelectorAll("rect.hit").length];
    press(strip.querySelector("input"), "Enter");
    press(strip.querySelector("input"), "Enter");
    found.push(strip.querySelector(".readout b").textContent);
    found.push([...strip.querySelectorAll(".chosen tbody tr")].map(wordsOf).join("; "));
    filter("strip", "");
    press(strip.querySelector("[role=slider]"), "Escape");
    found.push(strip.querySelectorAll("rect.hit").length, strip.querySelector(".chosen").textContent);
    const wanted = "5 of 32 layers found | 5 | conv_pw_10 | 37 SUPERCONV 102 97.1% Krel; 38 CACHE_OP 3 2.9% DSP | 0 | ";
    return found.join(" | ") === wanted ? "" : found.join(" | ");
  },
  // A press on a finding marks what it is about, until Escape or another press.
  marking() {
    const pressed = start => buttonOf("findings", start).click();
    const marks = () =>
      [
        ...["types", "zeb", "oru", "steps"].map(id => element(id).querySelectorAll("tr.is-about").length),
        element("ranking").querySelectorAll('.subject[visibility="visible"]').length,
        element("strip").querySelector(".subject").getAttribute("d").split("M").length - 1,
        element("executions").querySelectorAll(".ring").length,
        element("findings").querySelectorAll("[aria-pressed=true]").length,
      ].join(" ");
    const found = [marks()];
    pressed("Mark 25 ORU layers in 24 ZEB layers");
    found.push(marks(), location.hash);
    pressed("Mark 1 execution");
    found.push(marks());
    pressed("Marked: 1 execution");
    found.push(marks());
    pressed("Mark 1 step");
    found.push(marks(), element("steps").querySelector(".is-about").cells[0].textContent);
    document.body.dispatchEvent(new KeyboardEvent("keydown", {key: "Escape", bubbles: true}));
    found.push(marks(), location.hash);
    return found.join("; ");
  },
  // Each word is told where it comes first, and at the end.
  words() {
    const told = [...document.querySelectorAll("abbr")].map(word => `${word.textContent}=${word.title}`);
    const listed = [...element("words").children].map(({children}) => [...children].map(textOf).join(": "));
    const isSame = told.every(words => listed.some(meaning => words.endsWith(`=${meaning}`)));
    const first = told.map(words => words.split("=")[0]).sort();
    return `${isSame ? "" : "other meanings; "}${listed.length}; ${first}`;
  },
  // Offloaded layers have cycles of the core and none of the DSP, the others the other way round.
  cycles() {
    const cells = row =>
      ["Runs on", "DSP cycles", "Core cycles"].map(title => row.cells[columnOf("oru", title)].textContent);
    const kinds = [...rowsOf("oru")].map(cells).map(([place, dsp, core]) => `${place} ${dsp === "–"} ${core === "–"}`);
    return [...new Set(kinds)].sort().join("; ");
  },
  // What stands here stands in --top, in the same words, order and digits. The test puts that behind the page.
  alike() {
    const plain = text =>
      text
        .replaceAll(/[▆█▒├└│─•[\]]|(?<=\d) us\b/g, "")
        .replaceAll("–", "-")
        .replaceAll(" (us)", "")
        .replaceAll(/\s+/g, " ")
        .trim();
    const head = id => element(id).closest("section").querySelector("h2").textContent;
    const table = host => [...host.querySelectorAll("tr")].map(wordsOf);
    const [name, value, note] = [...element("figures").firstChild.children].map(textOf);
    const ranking = [...element("ranking").querySelectorAll("svg.chart g")].map(group =>
      [...group.querySelectorAll("text")].map(textOf).join(" "),
    );
    const findings = [...element("findings").querySelectorAll("li, h3")].flatMap(row =>
      row.tagName === "H3"
        ? [row.textContent]
        : [row.querySelector("span").textContent.split(" Next:")[0], row.querySelector("i").textContent],
    );
    const lines = [
      `Graph ${element("name").textContent}`,
      `${name}: ${value.replace("us", " us")}, ${note}`,
      head("findings"),
      ...findings,
      head("inference"),
      ...table(element("inference")),
      head("ranking"),
      ...ranking,
      head("types"),
      ...table(element("types")),
      `Graph ${table(element("executions"))[0]}`,
      `${element("name").textContent} ${table(element("executions"))[1]}`,
    ].map(plain);
    const top = element("top").textContent.split("\n").map(plain);
    const met = new Set();
    let at = 0;
    const absent = lines.filter(line => {
      const found = top.findIndex((text, place) => place >= at && text.startsWith(line));
      at = found < 0 ? at : found + 1;
      met.add(found);
      return found < 0;
    });
    const beside = /^$|^Total |^\d+ others? |^Layer Time|^Marlix: |^Execution times/; // what --top alone has
    const missed = top.filter((text, place) => !met.has(place) && !beside.test(text));
    return absent.concat(missed.map(text => `only --top: ${text}`)).join(" | ");
  },
  // A click on a type leaves its layers alone.
  typing() {
    const [all, every] = [rowsOf("zeb").length, rowsOf("oru").length];
    buttonOf("types", "SUPERGEMM").click();
    const types = textsOf("oru", columnOf("oru", "Type"));
    const found = [
      buttonOf("types", "SUPERGEMM").ariaPressed,
      buttonOf("zeb", "Only").textContent,
      rowsOf("zeb").length,
    ];
    found.push(new Set(types).size, types[0], element("types").querySelector(".said").textContent !== "");
    buttonOf("oru", "Only").click();
    found.push(
      buttonOf("types", "SUPERGEMM").ariaPressed,
      rowsOf("zeb").length === all,
      rowsOf("oru").length === every,
    );
    return found.join() === "true,Only SUPERGEMM ✕,1,1,SUPERGEMM,true,false,true,true" ? "" : found.join();
  },
  // The address follows what is shown.
  linking() {
    heading("zeb", "Time (us)").click();
    filter("strip", "conv & =");
    buttonOf("types", "CACHE_OP").click();
    press(element("strip").querySelector("[role=slider]"), "Home");
    press(element("strip").querySelector("[role=slider]"), "Enter");
    const link = location.hash;
    filter("strip", "");
    buttonOf("oru", "Only").click();
    heading("zeb", "Name").click();
    const wanted = "#layer=1&type=CACHE_OP&find=conv+%26+%3D&zeb.sort=Time+%28us%29&zeb.falls=1";
    return link === wanted && location.hash === "#zeb.sort=Name" ? "" : `${link} ${location.hash}`;
  },
  linked() {
    const chip = id => (buttonOf(id, "Only")?.hidden === false ? buttonOf(id, "Only").textContent : "");
    const sorted = heading("zeb", "Name").parentElement.getAttribute("aria-sort");
    const [found, shown = ""] = element("strip").querySelector("[role=status]").textContent.split(", ");
    return [
      element("strip").querySelector(".readout b")?.textContent ?? "",
      chip("zeb"),
      chip("oru"),
      element("strip").querySelector("input").value,
      shown || (found.includes("found") ? "" : found),
      sorted,
      element("oru").querySelector('input[type="search"]').value,
      element("findings").querySelector("[aria-pressed=true]")?.textContent ?? "",
    ].join("; ");
  },
  // Texts and marks stand out from what is behind them, by the rules of the Web's accessibility guidelines.
  contrast() {
    const style = getComputedStyle(document.documentElement);
    const lightOf = name => {
      const value = style.getPropertyValue(`--${name}`).trim();
      const parts = [1, 3, 5].map(at => parseInt(value.slice(at, at + 2), 16) / 255);
      const [red, green, blue] = parts.map(part => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));
      return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    };
    const ratio = (one, other) => {
      const [dark, light] = [lightOf(one), lightOf(other)].sort((left, right) => left - right);
      return (light + 0.05) / (dark + 0.05);
    };
    const texts =
      "ink/paper ink/card soft/paper soft/card soft/wash soft/hover on-krel/krel on-dsp/dsp ink/shade-1 ink/shade-3";
    const marks = "krel/card dsp/card other/card other/wash mark/card focus/card soft/card krel/wash dsp/wash";
    const low = (pairs, least) => pairs.split(" ").filter(pair => !(ratio(...pair.split("/")) >= least));
    return [...low(texts, 4.5), ...low(marks, 3)].join();
  },
  // In a narrow window each table has its time in sight.
  deciding() {
    const seen = id => {
      const cell = [...element(id).querySelectorAll("thead th")].find(found => /\(us\)|^us$/.test(found.textContent));
      return cell.getBoundingClientRect().right <= window.innerWidth;
    };
    return ["inference", "types", "zeb", "oru"].filter(id => !seen(id)).join();
  },
  // Nothing but what scrolls by itself is wider than the window.
  outside() {
    const {scrollWidth, clientWidth} = document.documentElement;
    return scrollWidth > clientWidth ? `${scrollWidth} of ${clientWidth}` : "";
  },
  large() {
    const text = element("steps").textContent;
    return text.includes("18,446,744,073,709,551,615 cycles") ? "" : text;
  },
  // Each graph is a row, which leads to it.
  graphTable() {
    const rows = [...rowsOf("graphs")].map(row => [...row.cells].slice(0, 4).map(textOf).join(" "));
    const wrong = rows.filter((_, place) => {
      const link = () => rowsOf("graphs")[place].querySelector("a");
      link().click();
      const [first] = element("findings").querySelectorAll("li > span");
      const isShown = element("name").textContent === link().textContent && link().ariaCurrent === "true";
      return !isShown || !first.textContent.startsWith(rowsOf("graphs")[place].cells[4].textContent);
    });
    const link = location.hash;
    rowsOf("graphs")[0].querySelector("a").click();
    return `${rows.join("; ")}; ${link}${wrong.join()}`;
  },
  graphs() {
    const choice = element("graph");
    const names = [];
    for (const option of choice.options) {
      choice.value = option.value;
      choice.dispatchEvent(new Event("change"));
      names.push(element("name").textContent === option.textContent ? "" : option.textContent);
    }
    return names.length < 2 || element("graph-choice").hidden ? "no choice" : names.join("");
  },
  executions() {
    const marks = [...element("executions").querySelectorAll("circle.dot, path.range, path.outlier")];
    const kinds = marks.filter(mark => !mark.closest(".legend")).map(mark => mark.getAttribute("class"));
    const first = element("executions").querySelector("tbody td")?.textContent;
    return `${[...new Set(kinds.sort())].join()}; ${first}`;
  },
  // The figures of the executions, and the outliers, which are behind their number.
  spread() {
    return rowTexts(element("executions")).join("; ");
  },
  // Each execution is in a column of the histogram.
  histogram() {
    const counts = [...element("executions").querySelectorAll("rect > title")].map(title =>
      Number(title.textContent.match(/: ([\d,]+) exec/)[1].replaceAll(",", "")),
    );
    const all = element("executions").querySelector("tbody td").textContent;
    const sum = counts.reduce((total, count) => total + count, 0);
    const axis = [...element("executions").querySelectorAll(".pair > :last-child text")].map(textOf);
    const medians = element("executions").querySelectorAll(".pair > :last-child path.median").length;
    return digitsOf(all) !== sum || medians !== 1
      ? `${sum} of ${all}, ${medians} medians`
      : axis.includes("executions") && axis.includes("0")
        ? ""
        : axis.join();
  },
  steps() {
    const rows = [...rowsOf("steps")].filter(row => !row.closest(".calls"));
    return rows
      .filter(row => row.querySelector("rect"))
      .map(wordsOf)
      .join("; ");
  },
  // Bars of steps begin at the left, end at the right, and follow the clock.
  clock() {
    const bars = [...element("steps").querySelectorAll("td.bar rect:last-child")];
    const starts = bars.map(bar => Number(bar.getAttribute("x")));
    const end = Math.max(...bars.map(bar => Number(bar.getAttribute("x")) + Number(bar.getAttribute("width"))));
    const isGood = starts[0] === 0 && isSorted(starts, (left, right) => left <= right) && Math.abs(end - 1000) < 3;
    return isGood ? "" : `from ${starts.join()} to ${end}`;
  },
  events() {
    return [...rowsOf("steps")]
      .map(row => row.cells[0].textContent)
      .filter(text => /^event|more$/.test(text))
      .join("; ");
  },
  findingTimes() {
    return [...element("findings").querySelectorAll("b")].map(textOf).join("; ");
  },
  shares() {
    return textsOf("zeb", columnOf("zeb", "Share")).slice(0, 4).join("; ");
  },
  // Nothing is said to take less than nothing.
  rest() {
    const texts = [...rowsOf("inference")].flatMap(row => [row.cells[2], row.cells[3]].map(textOf));
    return texts.length === 0 || texts.some(text => /^[-−]/.test(text)) ? texts.join() : "";
  },
  // The last row, which counts the layers that are not shown, and the longest name.
  ranking() {
    const texts = [...element("ranking").querySelectorAll("text")].map(textOf);
    const longest = texts.reduce((left, right) => (right.length > left.length ? right : left));
    return `${texts.filter(text => / others?$/.test(text))}; ${longest}`;
  },
  // Charts are as wide as their place, whatever the window was before.
  async drawn() {
    await new Promise(done => setTimeout(done, 100));
    return [...document.querySelectorAll("#strip svg.chart, #ranking svg.chart")]
      .map(chart => chart.viewBox.baseVal.width / chart.getBoundingClientRect().width)
      .filter(scale => !(Math.abs(scale - 1) < 0.02))
      .join();
  },
  medians() {
    return `${element("executions").querySelectorAll(".chart .line").length}`;
  },
  // Where all is shown there is nothing to ask for.
  whole() {
    const more = [...document.querySelectorAll("button")].filter(button => /^Show all/.test(button.textContent));
    return more
      .filter(button => !button.hidden)
      .map(textOf)
      .join();
  },
  edges() {
    const slider = element("strip").querySelector("[role=slider]");
    const after = (...keys) => {
      keys.forEach(key => press(slider, key));
      return slider.getAttribute("aria-valuetext").match(/layer ([\d,]+) of/)?.[1];
    };
    const found = [after("End", "ArrowRight"), after("PageDown"), after("PageUp"), after("Home", "ArrowLeft")];
    press(slider, "Escape");
    return found.join();
  },
  // However many rows there are, the page can be used while they come.
  many() {
    const sorted = settled("oru", () => heading("oru", "Time (us)").click());
    const bars = element("strip").querySelectorAll("rect").length;
    const showAll = () => {
      heading("oru", "Id").click();
      buttonOf("oru", "Show all").click();
    };
    const [first, steps, others, left] = byFrames(frames => {
      showAll();
      const shown = rowsOf("oru").length;
      const count = drain(frames);
      // The rows that were to come do not come into what is shown instead.
      showAll();
      const old = frames.splice(0);
      filter("oru", "cache");
      old.forEach(frame => frame());
      const some = rowsOf("oru").length;
      drain(frames);
      return [shown, count, some, rowsOf("oru").length];
    });
    filter("oru", "");
    const all = settled("oru", () => buttonOf("oru", "Show all").click());
    const ids = new Set(textsOf("oru", 0)).size;
    return sorted !== 500 || first !== 50 || steps < 3 || all < 19000 || ids !== all
      ? `rows ${sorted} ${first} ${all} ${ids} in ${steps} steps`
      : others !== 50 || left !== 500
        ? `rows ${others} ${left}`
        : bars > 2000
          ? `${bars} bars`
          : "";
  },
  // For people, who know what else their machine does meanwhile: no time is good or bad here.
  async speed() {
    await new Promise(done => requestIdleCallback(done)); // as when somebody has looked at it
    const times = {
      "first picture": performance.getEntriesByName("first-contentful-paint")[0].startTime,
      zoom: took(() => buttonOf("strip", "+").click()),
      "zoom out": took(() => buttonOf("strip", "Whole").click()),
      search: took(() => filter("strip", "1")),
      "filter ZEB layers": took(() => filter("zeb", "1")),
      "filter ORU layers": took(() => filter("oru", "cache")),
      "sort ORU layers": took(() => heading("oru", "Time (us)").click()),
    };
    filter("zeb", "");
    filter("oru", "");
    times["show all, longest frame"] = byFrames(frames => {
      buttonOf("oru", "Show all").click();
      let longest = 0;
      while (frames.length > 0) {
        longest = Math.max(longest, took(frames.shift()));
      }
      return longest;
    });
    return Object.entries(times)
      .map(([name, ms]) => `${name} ${ms.toFixed(0)} ms`)
      .join("; ");
  },
  hostile() {
    const wanted = [
      ["name", "<\/script><script>window.broken"],
      ["facts", "<img src=x onerror="],
      ["facts", "__proto__no value"],
      ["facts", "turned \\u202e\\u202e"],
      ["zeb", "<img src=x onerror="],
      ["zeb", "\\u2028 \\u202e"],
    ];
    const absent = wanted.filter(([id, text]) => !element(id).textContent.includes(text));
    return strangers() || absent.map(([id, text]) => `${id} lacks ${text}`).join("; ");
  },
  // A spreadsheet would reckon what begins like a formula.
  hostileCopy() {
    const copied = clipboard();
    buttonOf("zeb", "Copy").click();
    const lines = ["4,'=1+1,", '5,"\\u0009Tab ""quoted""",', "6,\\u000dReturn,"];
    return lines.every(line => copied[0].includes(`\r\n${line}`)) ? "" : copied[0];
  },
  // Of the page of a history.
  historyAnswer() {
    const causes = [...document.querySelectorAll(".answer li")].map(cause =>
      cause.textContent.replaceAll("\u00a0", " "),
    );
    const gate = document.querySelector(".note-box h2").textContent.slice(2);
    return `${document.querySelector(".answer").textContent.split(":")[0]}; ${causes}; ${gate}`;
  },
  courses() {
    const charts = [...document.querySelectorAll(".course svg.chart")];
    const count = kind => document.querySelectorAll(`.course .${kind}`).length;
    const widths = charts.map(chart => chart.viewBox.baseVal.width / chart.getBoundingClientRect().width);
    return widths.some(scale => Math.abs(scale - 1) > 0.02)
      ? `scaled: ${widths}`
      : `${charts.length} charts, ${count("step")} steps, ${count("level")} levels, ` +
          `${charts[0].querySelectorAll(".dot").length} dots`;
  },
  async courseFigures() {
    const figures = document.querySelector(".course details");
    figures.open = true;
    await new Promise(done => setTimeout(done, 100));
    const rows = figures.querySelectorAll("tbody tr");
    return `${rows.length} rows, ${[...rows[0].cells]
      .slice(0, 3)
      .map(cell => cell.textContent)
      .join(" ")}`;
  },
  hostileHistory() {
    return (
      strangers() ||
      (element("name").textContent.includes("<\/script><script>window.broken") &&
      element("layers").textContent.includes("<img src=x onerror=")
        ? ""
        : "the names are not there")
    );
  },
  // Of the page of two versions.
  comparedParts() {
    return wrongParts("Totals; Where an inference goes; ZEB layers; ORU layers by type");
  },
  lead() {
    return document.querySelector("#answer b").textContent.replace(/:$/, "");
  },
  answer() {
    return [...document.querySelector("#answer p").childNodes].map(node => node.textContent.trim()).join(" ");
  },
  sides() {
    return [...element("sides").children]
      .map(side =>
        [...side.children]
          .map(cell => cell.textContent)
          .join(" ")
          .replace("more", "more ")
          .trim(),
      )
      .join("; ");
  },
  notes() {
    const sentences = note => [...note.querySelectorAll("li")].map(textOf).join("; ") || note.children[1].textContent;
    return [...element("notes").children]
      .map(note => `${note.children[0].textContent}: ${sentences(note)}`)
      .join(" | ");
  },
  totals() {
    return [...rowsOf("totals")]
      .map(row => `${row.cells[4].firstChild.textContent} ${row.querySelector(".verdict").lastChild.textContent}`)
      .join(", ")
      .replaceAll("−", "-");
  },
  layers() {
    const words = row => [row.cells[0], row.cells[4], row.querySelector(".verdict").lastChild].map(textOf).join(" ");
    return [...rowsOf("layers")].map(words).join(", ").replaceAll(/[−–]/g, "-");
  },
  layerColumns() {
    return [...element("layers").querySelectorAll("thead th")].map(cell => cell.textContent).join(", ");
  },
  // Each row has its name for a heading, and the longest bar takes all of its place.
  heads() {
    const rows = document.querySelectorAll("#inference tbody tr, #layers tbody tr, #layers tfoot tr");
    const bars = [...element("inference").querySelectorAll(".pair rect")];
    const ends = bars.map(bar => parseFloat(bar.getAttribute("x") ?? 0) + parseFloat(bar.getAttribute("width")));
    return [...rows].some(row => row.cells[0].scope !== "row")
      ? "a row without a heading"
      : Math.abs(Math.max(...ends) - 100) > 0.01
        ? `bars up to ${Math.max(...ends)}`
        : "";
  },
  totalNames() {
    const titles = element("totals").querySelector("thead").querySelectorAll("th:not([aria-hidden])");
    const names = [...rowsOf("totals")].map(row => row.cells[0].firstChild.textContent);
    return `${[...titles].map(textOf).join(", ")}: ${names.join(", ")}`;
  },
  differences() {
    const wrong = [];
    for (const row of document.querySelectorAll("#totals tbody tr, #layers tbody tr, #types tbody tr")) {
      const bar = row.querySelector("svg rect");
      const change = row.cells[3].textContent;
      const from = parseFloat(bar.getAttribute("x")),
        to = from + parseFloat(bar.getAttribute("width"));
      const [near, far] = change.includes("+") ? [from, to] : [100 - to, 100 - from];
      const verdict = row.querySelector(".verdict").lastChild.textContent;
      const kind = {slower: "slower", new: "slower", faster: "faster", gone: "faster", "can't tell": "other"}[verdict];
      const isLongest = row === row.closest("tbody").rows[0] && !row.closest("#totals");
      if (
        Math.abs(near - 50) > 0.01 ||
        far > 100.01 ||
        (isLongest && Math.abs(far - 100) > 0.01) ||
        bar.getAttribute("class") !== kind
      ) {
        wrong.push(`${row.cells[0].firstChild.textContent}: ${kind} from ${from} to ${to}`);
      }
    }
    const arrows = [...rowsOf("totals")].map(row => row.querySelectorAll(".beyond").length).join("");
    const [left, right] = ["x1", "x2"].map(end =>
      parseFloat(rowsOf("totals")[0].querySelector(".whisker").getAttribute(end)),
    );
    const pieces = rowsOf("inference")[1].querySelectorAll("rect");
    const [base, now, saved] = [...pieces].map(piece => parseFloat(piece.getAttribute("width")));
    return wrong.length > 0
      ? wrong.join("; ")
      : arrows !== "00001"
        ? `arrows ${arrows}`
        : Math.abs((left - 50) / (right - 50) - 0.08 / 0.125) > 0.01
          ? `whisker from ${left} to ${right}`
          : Math.abs(base - now - saved) > 0.02 || now >= base || pieces[2].getAttribute("class") !== "saved"
            ? `base ${base}, now ${now}, saved ${saved}`
            : "";
  },
  copyingChanges() {
    const copied = clipboard();
    buttonOf("layers", "Copy").click();
    const wanted = [
      "Layer,Base (us),New (us),Change (us),Change,p,Verdict",
      "conv10,100,200,100,1,0.00001,slower",
      "old,60,0,-60,,,gone",
      "conv9,50,25,-25,-0.5,0.01,faster",
      "young,0,12,12,,,new",
      "loud,100,102.6,2.6,,0.2,can't tell",
      "",
    ];
    return copied[0] === wanted.join("\r\n") ? "" : copied[0];
  },
  sortingChanges() {
    const clicked = title => {
      heading("layers", title).click();
      return heading("layers", title).parentElement.getAttribute("aria-sort");
    };
    const changes = () => textsOf("layers", 3).map(text => Number(text.replace("−", "-").replaceAll(",", "")));
    const first = changes();
    const fallen = clicked("Change (us)"),
      falling = changes();
    const risen = clicked("Change (us)"),
      rising = changes();
    clicked("p");
    clicked("p");
    const p = textsOf("layers", 5);
    return !isSorted(first, (left, right) => Math.abs(left) >= Math.abs(right))
      ? `comes as ${first}`
      : fallen !== "descending" || risen !== "ascending"
        ? `${fallen} ${risen}`
        : !isSorted(falling, (left, right) => left >= right) || !isSorted(rising, (left, right) => left <= right)
          ? `sorted as ${falling} and ${rising}`
          : p.join() !== "< 0.001,0.010,0.200,–,–"
            ? `p sorted as ${p}`
            : "";
  },
  minorChanges() {
    const names = () => textsOf("layers", 0);
    const foot = () =>
      [...element("layers").querySelectorAll("tfoot tr")]
        .map(row =>
          [...row.cells]
            .slice(0, 4)
            .map(cell => cell.textContent)
            .join(" "),
        )
        .join("; ");
    const found = [`${names().length} ${element("layers").querySelector("[role=status]").textContent}`, foot()];
    filter("layers", "QUI");
    found.push(`${names()} ${buttonOf("layers", "Show the").hidden}`);
    filter("layers", "");
    found.push(names().length);
    buttonOf("layers", "Show the 2 layers that moved by less than 0.5% of the whole").click();
    found.push(names().length, foot());
    buttonOf("layers", "Hide the 2 layers").click();
    found.push(names().length);
    const wanted = [
      "5 5 of 7 layers",
      "2 others 190.0 190.5 +0.5; Sum 500.0 530.1 +30.1",
      "quiet true",
      5,
      7,
      "Sum 500.0 530.1 +30.1",
      5,
    ];
    return found.join(" | ") === wanted.join(" | ") ? "" : found.join(" | ");
  },
  hostileChanges() {
    return strangers()
      ? strangers()
      : !element("name").textContent.includes("<\/script><script>window.broken") ||
          !element("layers").textContent.includes("<img src=x onerror=") ||
          !element("layers").textContent.includes("\\u2028 \\u202e") ||
          !element("sides").textContent.includes("<!-" + "-<script>") ||
          !element("notes").textContent.includes("<img src=x")
        ? "the names are not there"
        : "";
  },
  manyChanges() {
    const shown = settled("layers", () => heading("layers", "Change (us)").click());
    filter("layers", "4999");
    const found = rowsOf("layers").length;
    filter("layers", "");
    const all = settled("layers", () => buttonOf("layers", "Show all 5000 layers").click());
    const again = settled("layers", () => heading("layers", "Layer").click());
    return shown !== 500 || found !== 1 || all !== 5000 || again !== 500 ? `${shown} ${found} ${all} ${again}` : "";
  },
  refusal() {
    const script = document.createElement("script");
    script.textContent = "window.broken = true";
    document.body.append(script);
    return window.broken === undefined ? "" : "another script runs";
  },
};
