// Writes names, numbers and bytes for people.

/** The text with a capital first letter. */
export function titled(text) {
  return text.charAt(0).toUpperCase() + text.slice(1);
}

/** Words for keys of the server that do not explain themselves. */
const plainWords = {
  offline: "off line",
  compulsionSwitch: "drawer open",
  overTemp: "print head too hot",
  mechError: "mechanism error",
  pageModeCmdError: "page mode command error",
  receiptBlackMarkDetection: "black mark seen",
  receiptPaperEmpty: "paper out",
  receiptPaperNearEmptyInner: "paper near end",
  receiptPaperNearEmptyOuter: "paper near end, outer sensor",
  paperPresent: "paper left in the exit",
  etbAvailable: "job marks are counted",
  utf8: "UTF-8",
  modelId: "model number",
  typeId: "type number",
  dip1: "DIP switches, bank 1",
  dip2: "DIP switches, bank 2",
};

/** The words for a flag or a setting in the server's list. */
export function labelOf({key, label}) {
  return plainWords[key] ?? label ?? key;
}

/** A number with thin spaces between its thousands. */
export function grouped(number) {
  return String(number).replace(/\B(?=(\d{3})+$)/g, "\u2009");
}

/** "1 byte", "2 bytes". */
export function counted(number, one, many = `${one}s`) {
  return `${grouped(number)} ${number === 1 ? one : many}`;
}

/** The bytes of a command in hex; of a long command only the first ones. */
export function bytesOf({bytes, length}) {
  return bytes.length < 2 * length ? `${paired(bytes)} … ${counted(length, "byte")}` : paired(bytes);
}

/** Hex digits in pairs. */
export function paired(hex) {
  return hex.replace(/..(?=.)/g, "$& ");
}

/** The time of day to the millisecond, from milliseconds since 1970 or a text. */
export function clockTime(moment) {
  const date = new Date(moment);
  const two = (number) => String(number).padStart(2, "0");
  const fraction = String(date.getMilliseconds()).padStart(3, "0");
  return `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}.${fraction}`;
}

/** The date and time of day in the user's own format. */
export function moment(text) {
  return new Intl.DateTimeFormat(undefined, {dateStyle: "medium", timeStyle: "medium"}).format(new Date(text));
}

/** The length of paper in millimetres or metres, from dots; eight dots are a millimetre. */
export function paperLength(dots) {
  const millimetres = dots / 8;
  return millimetres < 1000 ? `${Math.round(millimetres)} mm` : `${(millimetres / 1000).toFixed(2)} m`;
}

const stoppingGroups = ["cover", "error"];

/** The printer's condition in words: ready, or the reasons why not, from the flags that the server lists. */
export function condition(flags, state) {
  if (!state.offline) {
    return "Ready";
  }
  const reasons = flags.filter((flag) => state[flag.key] &&
    (stoppingGroups.includes(flag.group) || flag.key === "receiptPaperEmpty"));
  return reasons.length === 0 ? "Off line" : `Off line: ${reasons.map(labelOf).join(", ")}`;
}
