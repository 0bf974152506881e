// Elements of the document, and of pictures in it. Texts of a log reach the document as text nodes and attribute values
// only.

import {digits} from "./figures.js";

/** Children are elements, texts, lists of them, and null for nothing; all else is an error of the script. */
function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (value !== null && value !== undefined && value !== false) {
      element.setAttribute(name, value === true ? "" : value);
    }
  }
  for (const child of children.flat(Infinity)) {
    if (child instanceof Node || typeof child === "string") {
      element.append(child);
    } else if (child !== null && child !== undefined) {
      throw new TypeError(`${element.tagName} can't take a ${typeof child}: ${child}`);
    }
  }
  return element;
}

export const make = (tag, attributes, ...children) => fill(document.createElement(tag), attributes, children);
export const draw = (tag, attributes, ...children) =>
  fill(document.createElementNS("http://www.w3.org/2000/svg", tag), attributes, children);
export const part = id => document.getElementById(id);

/** A name of a log within a sentence: one that has another writing direction turns itself alone. */
export const isolated = name => make("bdi", {}, name);

// What shows nothing and does something: control characters, marks and overrides of the writing direction, separators.
const hidden = /[\p{Cc}\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]/gu;
const isEscaped = /\\(?:[bfnrt]|u(?:00[01789]|061c|20[026]))/;
export const visible = text => text.replace(hidden, found => `\\u${found.charCodeAt(0).toString(16).padStart(4, "0")}`);

/** The data of a page, in whose texts all that is hidden shows as JSON writes it. */
export function dataOf(id) {
  const json = part(id).textContent;
  return isEscaped.test(json)
    ? JSON.parse(json, (_, value) => (typeof value === "string" ? visible(value) : value))
    : JSON.parse(json);
}

export function chart(width, height, words, ...children) {
  const attributes = {class: "chart", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": words};
  return draw("svg", attributes, ...children);
}

export const rect = (x, y, width, height, kind) =>
  draw("rect", {x: x.toFixed(2), y, width: Math.max(0, width).toFixed(2), height, class: kind});
export const label = (x, y, text, kind, anchor) => draw("text", {x, y, class: kind, "text-anchor": anchor}, text);
export const stroke = (points, kind) =>
  draw("path", {class: kind, d: `M${points.map(([x, y]) => `${x.toFixed(1)} ${y.toFixed(1)}`).join("L")}`});

/** Entries are [class, text, shape]; without a shape it is a box of that class, and "plain" has none. */
export function legend(...entries) {
  const picture = (kind, shape) =>
    draw("svg", {viewBox: "0 0 16 12", "aria-hidden": "true"}, shape ?? rect(0, 0, 16, 12, kind));
  return make(
    "ul",
    {class: "legend"},
    entries.map(([kind, text, shape]) =>
      make("li", {class: kind === "plain" ? kind : null}, kind === "plain" ? null : picture(kind, shape), text),
    ),
  );
}

/** A bar in a cell of a table; `pieces` are [from, share, class], of 1. */
export function bar(pieces) {
  const shown = pieces.map(([from, size, kind]) =>
    rect(from * 1000, 0, size > 0 ? Math.max(size * 1000, 3) : 0, 13, kind),
  );
  const picture = draw(
    "svg",
    {viewBox: "0 0 1000 13", preserveAspectRatio: "none"},
    rect(0, 0, 1000, 13, "track"),
    shown,
  );
  return make("td", {class: "bar", "aria-hidden": "true"}, picture);
}

/** The row of headings; each is [text, class], and one without a text is for the eye alone. */
export function headings(...columns) {
  return make(
    "thead",
    {},
    make(
      "tr",
      {},
      columns.map(([text, kind]) =>
        make("th", {scope: "col", class: kind ?? null, "aria-hidden": text === "" ? "true" : null}, text),
      ),
    ),
  );
}

/** What a part says that has nothing to show. */
export const missing = text => make("p", {class: "missing"}, text);
export const plural = (count, one, several) => `${digits(count)} ${count === 1 ? one : several}`;

/** What is cut shows an ellipsis in its middle. */
export function cut(text, most) {
  const characters = Array.from(text);
  if (characters.length <= most) {
    return text;
  }
  const front = Math.max(1, Math.ceil((most - 1) / 2));
  const back = characters.slice(characters.length - Math.max(0, most - 1 - front));
  return `${characters.slice(0, front).join("")}…${back.join("")}`;
}

const pen = document.createElement("canvas").getContext("2d");
pen.font = '12px system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif';
export const widthOfText = text => pen.measureText(text).width;

/** As much of a text as fits into so many pixels. */
export function fitted(text, width) {
  let shown = cut(text, 80);
  for (let most = Array.from(shown).length - 1; most > 0 && widthOfText(shown) > width; --most) {
    shown = cut(text, most);
  }
  return shown;
}
