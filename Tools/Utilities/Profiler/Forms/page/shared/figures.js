// Numbers as people read them. Nothing is reckoned here but digits, units and places.

/** Whole numbers above 2^53 come as strings. */
export const number = value => (value === null || value === undefined ? null : Number(value));

export function digits(value, decimals = 0) {
  if (value === null || value === undefined) {
    return "–";
  }
  // Halves go to the even neighbour, as they do in the reports.
  const rounded = decimals === 0 && Math.abs(value % 1) === 0.5 ? 2 * Math.round(value / 2) : value;
  const plain = () => (Math.abs(value) < 1e21 ? rounded.toFixed(decimals) : String(value));
  const [whole, rest] = (typeof value === "string" ? value : plain()).split(".");
  const isLong = whole.replace("-", "").length > 4; // four digits are read at a glance, and the reports have no groups
  return (isLong ? whole.replace(/\B(?=(\d{3})+$)/g, ",") : whole) + (rest ? `.${rest}` : "");
}

const decimalsOf = us => (Number.isInteger(us) || Math.abs(us) >= 100 ? 0 : Math.abs(us) < 10 ? 2 : 1);

/** A time in us, without the unit. */
export const usDigits = us => digits(us, decimalsOf(number(us)));

/** The unit that suits a time of that size, and its digits: one for a column, by its longest time. */
export function unitOf(us) {
  const size = Math.abs(us);
  if (size < 1e4) {
    return {unit: "us", of: usDigits};
  }
  const [scale, unit] = size < 1e7 ? [1e3, "ms"] : [1e6, "s"];
  return {unit, of: value => digits(value / scale, Math.abs(value / scale) < 100 ? 1 : 0)};
}

/** A time in the unit that suits its size: the figure and the unit. */
export function timeParts(us) {
  const {unit, of} = unitOf(us);
  return [of(us), unit];
}

export const time = us => (us === null || us === undefined ? "not known" : timeParts(us).join(" "));
export const share = (piece, whole) => (whole > 0 ? piece / whole : 0);
/** What is not all is never "100.0%", and what is not nothing never "0.0%". */
export const percent = value =>
  value > 0 && value < 0.00005
    ? "<0.01%"
    : value < 1 && value >= 0.9995
      ? ">99.9%"
      : `${digits(value * 100, value > 0 && value < 0.001 ? 2 : 1)}%`;

/** Ends of steps that people count in, some `wanted` of them. */
export function ticks(from, to, wanted) {
  const room = Math.max(to - from, 1e-9) / wanted;
  const power = 10 ** Math.floor(Math.log10(room));
  const step = [1, 2, 5, 10].map(factor => factor * power).find(size => size >= room);
  const found = [];
  for (let at = Math.ceil(from / step) * step; at <= to + step * 1e-6 && found.length < 50; at += step) {
    found.push(at);
  }
  return found;
}
