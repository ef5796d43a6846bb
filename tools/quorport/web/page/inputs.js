// Inputs for the kinds of values that the server lists: flag, number and text, optionally with choices.

import { freshId, make } from "./dom.js";

function choiceOf({choices, optional}) {
  const options = optional ? ["", ...choices] : choices;
  return make("select", {}, ...options.map((choice) => make("option", {value: choice}, String(choice))));
}

function suggestionOf({choices}) {
  const list = make("datalist", {id: freshId("choices")}, ...choices.map((choice) => make("option", {value: choice})));
  return [make("input", {type: "text", list: list.id, autocomplete: "off"}), list];
}

/** An input for a value: its element, further elements beside it, and functions that read and show its value. */
export function inputFor(form) {
  if (form.kind === "flag") {
    const element = make("input", {type: "checkbox", role: "switch"});
    return {element, beside: [], value: () => element.checked, show: (value) => { element.checked = value; }};
  }
  const [element, ...beside] = elementsFor(form);
  element.required = !form.optional;
  const value = () => (form.kind === "number" && element.value !== "" ? Number(element.value) : element.value);
  return {element, beside, value, show: (shown) => { element.value = shown ?? ""; }};
}

function elementsFor(form) {
  if (form.choices) {
    return form.free ? suggestionOf(form) : [choiceOf(form)];
  }
  if (form.kind === "number") {
    return [make("input", {type: "number", min: form.min, max: form.max, step: 1})];
  }
  return [make("input", {type: "text", maxlength: form.maxLength, autocomplete: "off"})];
}
