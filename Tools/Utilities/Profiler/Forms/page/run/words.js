// What the words of the page mean: a list at its end, and a title where a word comes first.

import {make, part} from "../shared/elements.js";
import {glossary} from "./data.js";

// Where a log has its names, what is drawn, and what has meanings of its own.
const elsewhere = "svg, bdi, h1, b, td, tbody:not(#inference *), button, select, script, dialog, nav, .readout, footer";

function firstUse(word) {
  const isWord = new RegExp(`\\b${word}\\b`);
  const wanted = NodeFilter.SHOW_ELEMENT | NodeFilter.SHOW_TEXT;
  const walker = document.createTreeWalker(part("page"), wanted, node => {
    if (node.nodeType === Node.ELEMENT_NODE) {
      return node.matches(elsewhere) ? NodeFilter.FILTER_REJECT : NodeFilter.FILTER_SKIP;
    }
    return isWord.test(node.data) ? NodeFilter.FILTER_ACCEPT : NodeFilter.FILTER_SKIP;
  });
  const node = walker.nextNode();
  return node && node.splitText(node.data.search(isWord));
}

/** Gives each word its title where it comes first, unless it has one. */
export function tellFirstUses() {
  for (const {word, meaning} of glossary) {
    const node = document.querySelector(`abbr[data-word="${word}"]`) ? null : firstUse(word);
    if (node) {
      node.splitText(word.length);
      node.replaceWith(make("abbr", {title: `${word}: ${meaning}`, "data-word": word}, word));
    }
  }
}

export function showWords() {
  part("words").replaceChildren(
    ...glossary.map(({word, meaning}) => make("div", {}, make("dt", {}, word), make("dd", {}, meaning))),
  );
}
