// Sliders for speed and buffer. Exact numbers can be entered in the settings.

import { freshId, make, write } from "./dom.js";
import { binarySteps, decimalSteps, nearest } from "./steps.js";
import { counted, grouped, labelOf, titled } from "./words.js";

const unlimited = 0; // the speed that means no limit
const fastest = 100000; // bytes a second; a cash register sees no difference above this speed
const largest = 1 << 20;

const kinds = {
  speed: {
    steps: ({min, max}) => [...decimalSteps(Math.max(min, 10), Math.min(max, fastest)), unlimited],
    index: (steps, value) => (value === unlimited ? steps.length - 1 : nearest(steps.slice(0, -1), value)),
    words: (value) => (value === unlimited ? "unlimited" : `${grouped(value)} bytes a second`),
  },
  buffer: {
    steps: ({min, max}) => binarySteps(min, Math.min(max, largest)),
    index: nearest,
    words: (value) => counted(value, "byte"),
  },
};

class Slider {
  constructor(setting, send) {
    this.key = setting.key;
    this.kind = kinds[setting.key];
    this.steps = this.kind.steps(setting);
    const id = freshId("slider");
    this.output = make("output", {for: id});
    this.input = make("input", {type: "range", id, min: 0, max: this.steps.length - 1, step: 1,
      oninput: () => this.tell(this.chosen()),
      onchange: () => send({set: {[this.key]: this.chosen()}})});
    const name = make("label", {for: id}, titled(labelOf(setting)));
    const label = make("div", {class: "beside"}, name, this.output);
    this.element = make("div", {class: "field"}, label, this.input);
  }

  chosen() {
    return this.steps[this.input.valueAsNumber];
  }

  tell(value) {
    const text = this.kind.words(value);
    write(this.output, text);
    this.input.setAttribute("aria-valuetext", text);
  }

  show(value) {
    if (this.value === value) {
      return; // the user may be moving the slider
    }
    this.value = value;
    this.input.value = this.kind.index(this.steps, value);
    this.tell(value);
  }
}

export class Sliders {
  constructor(settings, send) {
    const slid = settings.filter((setting) => Object.hasOwn(kinds, setting.key));
    this.sliders = slid.map((setting) => new Slider(setting, send));
    this.element = make("fieldset", {class: "sliders"}, make("legend", {}, "Speed and buffer"),
      ...this.sliders.map((slider) => slider.element));
  }

  show({settings}) {
    for (const slider of this.sliders) {
      slider.show(settings[slider.key]);
    }
  }
}
