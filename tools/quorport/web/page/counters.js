// What a printer has counted since it began.

import { make, write } from "./dom.js";
import { grouped, paperLength, titled } from "./words.js";

/** Counters whose name does not say it, and those that are a length. */
const names = {
  rows: "paper", bytes: "bytes printed", drawer: "drawer pulses", etbCounter: "job marks", buffered: "bytes waiting",
};
const lengths = ["rows"];
const ofTheState = ["buffered", "etbCounter"];

export class Counters {
  constructor() {
    this.values = new Map();
    this.element = make("dl", {class: "figures"});
  }

  show({counters, state, host}) {
    write(this.place("host"), host ? "connected" : "none");
    const all = {...counters, ...Object.fromEntries(ofTheState.map((key) => [key, state[key]]))};
    for (const [key, value] of Object.entries(all)) {
      write(this.place(key), lengths.includes(key) ? paperLength(value) : grouped(value));
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
