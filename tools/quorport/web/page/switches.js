// Switches for the printer's conditions. The common ones are visible; the others are folded away.

import { freshId, make, write } from "./dom.js";
import { labelOf, titled } from "./words.js";

const inSight = ["cover", "paper", "drawer"];
const foldedTitles = {
  error: "Errors", presenter: "Presenter and peeler", slip: "Slip and validation", other: "Other conditions",
};

/** A switch with its label; `turn` is called with the value that the user wants. */
function makeSwitch(label, turn) {
  const id = freshId("switch");
  const input = make("input", {type: "checkbox", role: "switch", id, onchange: () => turn(input.checked)});
  return {input, element: make("div", {class: "switch"}, make("label", {for: id}, titled(label)), input)};
}

export class Switches {
  constructor(flags, send) {
    this.inputs = new Map();
    this.state = {};
    this.folds = [];
    const add = (flag) => this.add(flag, send);
    const shown = inSight.flatMap((group) => flags.filter((flag) => flag.group === group)).map(add);
    const groups = [...new Set(flags.map((flag) => flag.group))].filter((group) => !inSight.includes(group));
    const byTitle = (group) => Object.keys(foldedTitles).indexOf(group);
    groups.sort((one, other) => byTitle(one) - byTitle(other));
    this.element = make("div", {class: "switches"},
      make("fieldset", {}, make("legend", {}, "Cover, paper and drawer"), ...shown),
      ...groups.map((group) => this.fold(group, flags.filter((flag) => flag.group === group), add)));
  }

  add(flag, send) {
    const turn = async (wanted) => {
      await send({set: {[flag.key]: wanted}});
      this.showFlag(flag.key); // shows the true value if the server has refused the change
    };
    const {input, element} = makeSwitch(labelOf(flag), turn);
    this.inputs.set(flag.key, input);
    return element;
  }

  fold(group, flags, add) {
    const on = make("span", {class: "hint"});
    if (group !== "other") { // some conditions of that group are normally on
      this.folds.push({on, keys: flags.map((flag) => flag.key)});
    }
    return make("details", {}, make("summary", {}, `${foldedTitles[group] ?? titled(group)} `, on), ...flags.map(add));
  }

  showFlag(key) {
    this.inputs.get(key).checked = this.state[key];
  }

  show({state}) {
    this.state = state;
    for (const key of this.inputs.keys()) {
      this.showFlag(key);
    }
    for (const {on, keys} of this.folds) {
      const count = keys.filter((key) => state[key]).length;
      write(on, count === 0 ? "" : `${count} on`);
    }
  }
}
