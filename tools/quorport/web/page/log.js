// The log of commands and answers, the newest first. The log limits how many entries it keeps and shows.

import { make, write } from "./dom.js";
import { bytesOf, clockTime, counted, paired } from "./words.js";

/** The most entries that are kept for filtering, and the most that are shown. */
export const mostKept = 2000;
export const mostShown = 200;

const kinds = {command: "commands", answer: "answers", control: "control lines", host: "hosts"};

/** True if an entry contains each of the words, in any column. */
export function fits(entry, words) {
  const {name, meaning = "", answer = "", bytes = "", where = ""} = entry;
  const text = `${name} ${meaning} ${answer} ${bytes} ${paired(bytes)} ${where}`.toLowerCase();
  return words.every((word) => text.includes(word));
}

export class Log {
  constructor(place) {
    this.entries = [];
    this.fresh = 0;
    this.frame = null;
    this.hidden = new Set();
    this.list = make("ol", {class: "plain entries", "aria-labelledby": "log-title"});
    this.note = make("p", {class: "hint"});
    const all = () => this.showAll();
    this.search = make("input", {type: "search", "aria-label": "Filter the log by words or bytes",
      placeholder: "Filter: words or bytes", oninput: all});
    this.following = make("input", {type: "checkbox", role: "switch", id: "log-follows", checked: true, onchange: all});
    const title = make("div", {class: "title"}, make("h2", {id: "log-title"}, "Log"));
    place.replaceChildren(title, this.filters(all), this.list, this.note);
  }

  filters(all) {
    const boxes = Object.entries(kinds).map(([kind, label]) => {
      const box = make("input", {type: "checkbox", checked: true, onchange: () => {
        this.hidden[box.checked ? "delete" : "add"](kind);
        all();
      }});
      return make("label", {class: "choice"}, box, label);
    });
    return make("div", {class: "filters", role: "group", "aria-label": "Filter of the log"}, this.search, ...boxes,
      make("div", {class: "switch"}, make("label", {for: "log-follows"}, "Follow"), this.following));
  }

  begin(names) {
    this.names = names;
    this.entries = [];
    this.showAll();
  }

  add({entries, skipped}) {
    if (skipped > 0) {
      const name = `${counted(skipped, "entry", "entries")} left out`;
      this.entries.push({kind: "host", time: entries[0]?.time ?? Date.now(), name});
    }
    for (const entry of entries) {
      this.entries.push(this.names.size > 1 ? {...entry, where: this.names.get(entry.printer)} : entry);
    }
    this.fresh += entries.length + (skipped > 0 ? 1 : 0);
    this.entries.splice(0, this.entries.length - mostKept);
    this.frame ??= requestAnimationFrame(() => this.showFresh());
  }

  wanted(entries) {
    const words = this.search.value.toLowerCase().split(/\s+/).filter(Boolean);
    return entries.filter((entry) => !this.hidden.has(entry.kind) && fits(entry, words)).slice(-mostShown).reverse();
  }

  showFresh() {
    this.frame = null;
    if (this.fresh === 0 || !this.following.checked) {
      return; // all entries were redrawn meanwhile, or will be
    }
    this.list.prepend(...this.wanted(this.entries.slice(-this.fresh)).map((entry) => this.row(entry)));
    while (this.list.children.length > mostShown) {
      this.list.lastElementChild.remove();
    }
    this.fresh = 0;
    this.tell();
  }

  showAll() {
    this.fresh = 0;
    this.list.replaceChildren(...this.wanted(this.entries).map((entry) => this.row(entry)));
    this.tell();
  }

  tell() {
    write(this.note, this.list.children.length === 0 ? "Nothing to show." :
      `At most the newest ${mostShown} are shown, of ${counted(this.entries.length, "entry", "entries")}.`);
  }

  row(entry) {
    const bytes = entry.bytes ? [make("code", {class: "bytes"}, bytesOf(entry))] : [];
    const name = entry.name === entry.kind ? [] : [make("strong", {}, entry.name)];
    const where = entry.where ? [make("span", {class: "hint"}, entry.where)] : [];
    const answer = entry.answer ? [make("span", {class: "hint"}, entry.answer)] : [];
    return make("li", {class: entry.kind}, make("time", {class: "hint"}, clockTime(entry.time)), ...where,
      make("span", {class: "kind"}, entry.kind), ...name, make("span", {}, entry.meaning ?? ""), ...answer, ...bytes);
  }
}
