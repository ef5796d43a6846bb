// Every setting of a printer, as the server lists them.

import { freshId, make } from "./dom.js";
import { inputFor } from "./inputs.js";
import { labelOf, titled } from "./words.js";

class Setting {
  constructor(form, send) {
    this.key = form.key;
    this.input = inputFor(form);
    const {element, beside} = this.input;
    element.id = freshId("setting");
    element.addEventListener("change", async () => {
      await send({set: {[this.key]: this.input.value()}});
      this.input.show(this.value); // the last known value, until the server sends the new one
    });
    const label = make("label", {for: element.id}, titled(labelOf(form)));
    const about = form.help ? [make("p", {class: "hint", id: `${element.id}-hint`}, form.help)] : [];
    if (form.help) {
      element.setAttribute("aria-describedby", `${element.id}-hint`);
    }
    this.element = make("div", {class: form.kind === "flag" ? "switch" : "field"}, label, element, ...beside, ...about);
  }

  show(value) {
    if (this.value !== value) {
      this.value = value;
      this.input.show(value);
    }
  }
}

export class Settings {
  constructor(forms, send) {
    this.settings = forms.map((form) => new Setting(form, send));
    this.element = make("details", {class: "settings"}, make("summary", {}, "All settings"),
      make("div", {class: "fields"}, ...this.settings.map((setting) => setting.element)));
  }

  show({settings}) {
    for (const setting of this.settings) {
      setting.show(settings[setting.key]);
    }
  }
}
