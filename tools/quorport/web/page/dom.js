// Elements of the page. Texts become text nodes, so that a printer's bytes are never read as markup.

/**
 * Makes an element. An attribute `on…` that is a function listens to that event. An attribute that is true is written
 * without a value; one that is false, null or undefined is left out.
 */
export function make(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === "function") {
      made.addEventListener(name.slice(2), value);
    } else if (value === true) {
      made.setAttribute(name, "");
    } else if (value !== false && value !== null && value !== undefined) {
      made.setAttribute(name, value);
    }
  }
  made.append(...children);
  return made;
}

/** Writes a text, unless the element has it already: screen readers announce each write. */
export function write(element, text) {
  if (element.textContent !== text) {
    element.textContent = text;
  }
}

let made = 0;

/** An id that no other element has. */
export function freshId(stem) {
  made += 1;
  return `${stem}-${made}`;
}

/** A control under its label, with a hint if there is one. */
export function field(label, control, hint = "") {
  const id = control.id || freshId("field");
  control.id = id;
  const parts = [make("label", {for: id}, label), control];
  if (hint !== "") {
    const hintId = `${id}-hint`;
    control.setAttribute("aria-describedby", hintId);
    parts.push(make("p", {class: "hint", id: hintId}, hint));
  }
  return make("div", {class: "field"}, ...parts);
}
