// One printer: its paper, switches, settings, faults and counters.

import { announce } from "./announce.js";
import { Counters } from "./counters.js";
import { freshId, make, write } from "./dom.js";
import { Faults } from "./faults.js";
import { Paper } from "./paper.js";
import { control } from "./server.js";
import { Settings } from "./settings.js";
import { Sliders } from "./sliders.js";
import { Switches } from "./switches.js";
import { condition, titled } from "./words.js";

/** Actions that have a button of their own elsewhere on the page. */
const placedElsewhere = ["quit", "clear"];

export class Station {
  constructor(printer, known) {
    this.printer = printer.id;
    this.name = printer.name || printer.place;
    this.flags = known.flags;
    const send = (line) => this.send(line);
    this.paper = new Paper(this.name, printer.place);
    this.daily = [new Switches(known.flags, send), new Sliders(known.settings, send)];
    this.others = [new Settings(known.settings, send), new Faults(known, send)];
    this.counters = new Counters();
    this.element = this.card(printer, known.actions);
    this.show(printer);
  }

  card(printer, actions) {
    const id = freshId("printer");
    this.condition = make("p", {class: "condition"});
    this.refusal = make("p", {class: "refused", role: "alert"});
    const place = printer.name ? make("p", {}, make("code", {}, printer.place)) : "";
    const title = make("div", {class: "title"}, make("h2", {id}, this.name), place, this.condition);
    const machine = make("div", {class: "machine"}, this.paper.element, this.buttons(actions));
    const daily = make("div", {class: "controls"}, this.refusal, ...this.daily.map((part) => part.element));
    const others = make("div", {class: "controls"}, ...this.others.map((part) => part.element));
    return make("article", {class: "card printer", "aria-labelledby": id}, title,
      make("div", {class: "sides"}, machine, daily), others, this.counters.element);
  }

  buttons(actions) {
    const own = actions.filter((action) => !placedElsewhere.includes(action.key));
    return make("div", {class: "body"}, ...own.map((action) =>
      make("button", {type: "button", onclick: () => this.send(action.line)}, titled(action.label))));
  }

  /** Sends a control line to this printer, and shows a refusal. Returns true if the server accepted the line. */
  async send(line) {
    try {
      await control(this.printer, line);
      write(this.refusal, "");
      return true;
    } catch (error) {
      write(this.refusal, error.message);
      return false;
    }
  }

  /** Shows the printer's current state, faults and counters. */
  show(data) {
    for (const part of [...this.daily, ...this.others]) {
      part.show(data);
    }
    this.counters.show(data);
    this.showCondition(condition(this.flags, data.state), data.state.offline);
  }

  showCondition(text, isStopped) {
    const isNew = this.condition.textContent !== text;
    const isFirst = this.condition.textContent === "";
    write(this.condition, text);
    this.condition.classList.toggle("stopped", isStopped);
    this.condition.classList.toggle("ready", !isStopped);
    if (isNew && !isFirst) {
      announce(`${this.name}: ${text}`);
    }
  }
}
