// The paper of a printer, drawn row by row. It consists of sheets of a fixed height. The oldest
// sheets are dropped, so twenty metres of paper take as much memory as one metre.

import { make } from "./dom.js";
import { paperLength } from "./words.js";

/** The rows of dots in a sheet, and the count of sheets that are kept: about a metre of paper. */
export const sheetRows = 512;
export const mostSheets = 16;

/** How much of the text is kept for screen readers. */
const mostWords = 2000; // characters

const partingMillis = 450;
const tooFast = "The paper is printed faster than it can be shown. The receipt will show all of it.";

function decoded(base64) {
  const bytes = Uint8Array.from(atob(base64), (character) => character.charCodeAt(0));
  return createImageBitmap(new Blob([bytes], {type: "image/png"}));
}

export class Paper {
  constructor(printerName, place) {
    this.empty = make("p", {class: "hint"}, "No paper hangs out of the printer. Print to ", make("code", {}, place));
    const label = `Paper of ${printerName}`;
    this.element = make("div", {class: "paper", role: "region", tabindex: "0", "aria-label": label});
    this.order = Promise.resolve(); // draws events in order, although their pictures are decoded at the same time
    this.begin();
  }

  begin() {
    this.strip = make("div", {class: "strip", role: "img"});
    this.sheets = new Map(); // the sheets by number, counted from the top
    this.cuts = [];
    this.words = make("pre", {class: "unseen"});
    this.lost = make("p", {class: "lost", hidden: true}, tooFast);
    this.width = 576;
    this.rows = 0;
    this.element.replaceChildren(this.lost, this.strip, this.words, this.empty);
    this.measure();
  }

  /** Draws rows. They replace earlier rows at the same place. */
  draw(part) {
    const picture = part.png ? decoded(part.png) : Promise.resolve(null);
    picture.catch(() => {}); // the chain below handles the error later
    this.order = this.order.then(async () => this.add(part, await picture)).catch(() => {});
  }

  /** Removes the paper, which was torn off. The next rows belong to a new paper. */
  tear() {
    this.order = this.order.then(() => {
      const gone = this.strip;
      const mayMove = this.rows > 0 && !matchMedia("(prefers-reduced-motion: reduce)").matches;
      this.begin();
      if (mayMove) {
        gone.classList.add("parting");
        this.element.append(gone);
        setTimeout(() => gone.remove(), partingMillis);
      }
    });
  }

  add(part, picture) {
    if (part.lost) { // the rest of this paper is not shown
      this.lost.hidden = false;
      this.empty.hidden = true;
      return;
    }
    this.words.textContent = (this.words.textContent + (part.text ?? "")).slice(-mostWords);
    this.width = part.width ?? this.width;
    this.rows = Math.max(this.rows, part.row + part.height);
    const last = Math.floor((part.row + part.height - 1) / sheetRows);
    for (let number = Math.floor(part.row / sheetRows); number <= last; number += 1) {
      this.drawOn(this.sheet(number), part, picture, part.row - number * sheetRows);
    }
    for (const cut of part.cuts ?? []) {
      this.addCut(cut);
    }
    this.dropOld();
    this.measure();
  }

  drawOn(canvas, part, picture, top) {
    const context = canvas.getContext("2d");
    context.clearRect(0, top, canvas.width, part.height);
    if (picture) {
      context.drawImage(picture, 0, top);
    }
  }

  sheet(number) {
    let canvas = this.sheets.get(number);
    if (!canvas) {
      canvas = make("canvas", {width: this.width, height: sheetRows});
      this.sheets.set(number, canvas);
      this.strip.append(canvas);
    }
    return canvas;
  }

  addCut({row, partial}) {
    const mark = make("div", {class: partial ? "cut partial" : "cut"});
    this.cuts.push({row, mark});
    this.strip.append(mark);
  }

  /** The first row that is still shown. */
  get first() {
    return Math.max(0, Math.ceil(this.rows / sheetRows) - mostSheets) * sheetRows;
  }

  dropOld() {
    for (const [number, canvas] of this.sheets) {
      if (number * sheetRows < this.first) {
        canvas.remove();
        this.sheets.delete(number);
      }
    }
    this.cuts.filter((cut) => cut.row < this.first).forEach((cut) => cut.mark.remove());
    this.cuts = this.cuts.filter((cut) => cut.row >= this.first);
  }

  /** Sets the position of each sheet in dots; the style sheet defines the size of a dot. */
  measure() {
    this.strip.style.setProperty("--columns", this.width);
    this.strip.style.setProperty("--rows", this.rows - this.first);
    for (const [number, canvas] of this.sheets) {
      canvas.style.setProperty("--row", number * sheetRows - this.first);
    }
    for (const cut of this.cuts) {
      cut.mark.style.setProperty("--row", cut.row - this.first);
    }
    this.strip.setAttribute("aria-label", `${paperLength(this.rows)} of paper`);
    this.strip.hidden = this.rows === 0;
    this.empty.hidden = this.rows > 0;
  }
}
