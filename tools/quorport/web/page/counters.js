// The printer's counters since it was started.

import { make, write } from "./dom.js";
import { grouped, paperLength, titled } from "./words.js";

/** The words for counters whose key does not explain itself. */
const names = {
  bytes: "bytes printed", drawer: "drawer pulses", etbCounter: "job marks", buffered: "bytes waiting",
};
const ofTheState = ["buffered", "etbCounter"];

export class Counters {
  constructor() {
    this.values = new Map();
    this.element = make("dl", {class: "figures"});
  }

  show({counters, state, host, paper}) {
    write(this.place("host"), host ? "connected" : "none");
    write(this.place("paper"), paperLength(paper.rows));
    const all = {...counters, ...Object.fromEntries(ofTheState.map((key) => [key, state[key]]))};
    for (const [key, value] of Object.entries(all)) {
      write(this.place(key), grouped(value));
    }
  }

  place(key) {
    if (!this.values.has(key)) {
      const value = make("dd", {});
      this.values.set(key, value);
      this.element.append(make("div", {}, make("dt", {}, titled(names[key] ?? key)), value));
    }
    return this.values.get(key);
  }
}
