// Draws the parts.

import {cut, make, part} from "../shared/elements.js";
import {showCourses} from "./courses.js";
import {groups, nameOf} from "./data.js";
import {showHeader} from "./header.js";

function showGroup(index) {
  const group = groups[index] ?? null;
  showHeader(group);
  showCourses(group);
}

part("page").hidden = false;
if (groups.length > 1) {
  part("graph-choice").hidden = false;
  const choice = part("graph");
  choice.append(...groups.map((group, index) => make("option", {value: index}, cut(nameOf(group), 80))));
  choice.addEventListener("change", () => showGroup(Number(choice.value)));
}
showGroup(0);

// What is drawn is as wide as its place.
let drawnWidth = window.innerWidth;
window.addEventListener("resize", () => {
  if (window.innerWidth !== drawnWidth) {
    drawnWidth = window.innerWidth;
    showGroup(Number(part("graph").value || 0));
  }
});
