// The contents, which stay at the top of the window, and the help with the keys.

import {make, part} from "../shared/elements.js";

const keys = [
  ["?", "this list"],
  ["/", "find a layer in the strip"],
  ["← →, Page Up, Page Down, Home, End", "in the strip: the next layer, ten on, the first, the last"],
  ["Enter", "in the strip: choose the layer, or let it go; in its search: the next one found"],
  ["+ − 0", "in the strip: zoom in, zoom out, show the whole"],
  ["Escape", "let the chosen layer go, and the marks of a finding; close what is open"],
];

export function showHelp() {
  const rows = keys.map(([key, words]) => [make("dt", {}, make("kbd", {}, key)), make("dd", {}, words)]);
  const close = make("button", {type: "button", class: "button"}, "Close");
  const help = part("help");
  help.replaceChildren(make("h2", {}, "Keys"), make("dl", {}, rows), close);
  close.addEventListener("click", () => help.close());
  document.addEventListener("keydown", event => {
    const isTyping =
      event.target.matches?.("input, select, textarea") || event.ctrlKey || event.metaKey || event.altKey;
    if (event.key === "?" && !isTyping && !help.open) {
      event.preventDefault();
      help.showModal();
    } else if (event.key === "/" && !isTyping) {
      const search = part("strip").querySelector('input[type="search"]');
      if (search) {
        event.preventDefault();
        search.focus();
      }
    }
  });
}

/** Leads to the parts that are shown, which differ from graph to graph. */
export function showContents() {
  const sections = [...document.querySelectorAll("main section")].filter(section => !section.hidden);
  const links = sections.map(section => {
    const heading = section.querySelector("h2");
    const link = make("a", {href: `#${heading.id}`}, heading.dataset.short);
    // The address keeps what is shown.
    link.addEventListener("click", event => {
      event.preventDefault();
      heading.tabIndex = -1;
      heading.focus({preventScroll: true});
      section.scrollIntoView();
    });
    return link;
  });
  const keysButton = make("button", {type: "button", class: "choice", "aria-label": "Keys"}, "?");
  keysButton.addEventListener("click", () => part("help").showModal());
  part("contents").replaceChildren(...links, keysButton);
}
