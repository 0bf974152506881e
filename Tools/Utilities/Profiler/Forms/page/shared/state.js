// The one state of a page. Whoever changes it calls `change`, and each part of the page that follows is told.

export const state = {
  graph: 0, // which one is shown
  view: null, // what its layers are, see run/view.js; null without a graph
  hovered: null, // the layer that is pointed at, by its place in view.layers
  pinned: null, // the layer that was chosen
  finding: null, // the finding that was chosen, by its place, see run/subject.js
  type: null, // the type of ORU layers that was chosen, by its name
  zoom: null, // what the strip shows: {from, to}, shares of the whole; null for all of it
  search: "", // what the strip marks
  tables: {}, // by the id of its part: {sort, isDescending, filter}
};

export const nothingChosen = {...state};

const followers = new Map();

/** A part of the page has one follower, which is told the names of what has changed. */
export const follow = (name, follower) => followers.set(name, follower);

export const forgetFollowers = () => followers.clear();

export function change(values) {
  const changed = Object.keys(values).filter(key => state[key] !== values[key]);
  Object.assign(state, values);
  if (changed.length > 0) {
    followers.forEach(follower => follower(changed));
  }
}

/** The layer that all parts of the page mark. */
export const marked = () => state.hovered ?? state.pinned;
export const hover = layer => change({hovered: layer});
export const pin = layer => change({pinned: layer, hovered: null});
