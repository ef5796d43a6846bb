// The faults of a printer: the user chooses one, fills in its parameters and adds it. The active faults are listed.

import { field, freshId, make, write } from "./dom.js";
import { inputFor } from "./inputs.js";
import { titled } from "./words.js";

/**
 * Joins the parameters of a fault into the fault's value, each preceded by its own separator. Optional parameters that
 * are empty are left out.
 */
export function joined(parts, values) {
  if (parts.length === 0) {
    return true;
  }
  return parts.map((part, index) => {
    const value = String(values[index]);
    return value === "" && part.optional ? "" : `${part.before}${value}`;
  }).join("");
}

export class Faults {
  constructor({faults, actions}, send) {
    this.known = faults;
    this.send = send;
    this.count = make("span", {class: "hint"});
    this.choice = make("select", {onchange: () => this.choose()},
      ...faults.map((fault) => make("option", {value: fault.name}, fault.name)));
    this.effect = make("p", {class: "hint", id: freshId("effect")});
    this.parts = make("div", {class: "fields"});
    this.list = make("ul", {class: "plain", "aria-label": "Active faults"});
    this.element = make("details", {class: "faults"}, make("summary", {}, "Faults ", this.count),
      this.list, this.form(), ...this.clearing(actions));
    this.choose();
  }

  form() {
    this.choice.setAttribute("aria-describedby", this.effect.id);
    const add = (event) => {
      event.preventDefault();
      this.send({fault: {[this.fault.name]: joined(this.fault.parts, this.inputs.map((input) => input.value()))}});
    };
    return make("form", {onsubmit: add}, field("Fault", this.choice), this.effect, this.parts,
      make("button", {type: "submit"}, "Add the fault"));
  }

  clearing(actions) {
    const clear = actions.find((action) => action.key === "clear");
    return clear ? [make("button", {type: "button", onclick: () => this.send(clear.line)}, titled(clear.label))] : [];
  }

  /** Shows the parameters of the chosen fault. */
  choose() {
    this.fault = this.known.find((fault) => fault.name === this.choice.value);
    this.inputs = this.fault.parts.map(inputFor);
    write(this.effect, this.fault.effect);
    this.parts.replaceChildren(...this.fault.parts.map((part, index) => {
      const {element, beside} = this.inputs[index];
      const shown = field(`${titled(part.label)}${part.optional ? " (optional)" : ""}`, element);
      shown.append(...beside);
      return shown;
    }));
  }

  show({faults}) {
    const held = JSON.stringify(faults);
    if (this.held === held) {
      return;
    }
    this.held = held;
    write(this.count, faults.length === 0 ? "" : `${faults.length} on`);
    this.list.replaceChildren(...faults.map((fault) =>
      make("li", {}, make("code", {}, fault.value === true ? fault.name : `${fault.name}=${fault.value}`))));
  }
}
