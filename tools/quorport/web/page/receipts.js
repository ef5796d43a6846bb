// The list of receipts, the newest first. Each receipt has a page of its own.

import { make, write } from "./dom.js";
import { receiptsBefore } from "./server.js";
import { clockTime, counted, paperLength } from "./words.js";

/** How many receipts are shown at first, and at most if the user asks for older ones. */
const shownAtFirst = 24;
export const mostReceipts = 200;

export class Receipts {
  constructor(place) {
    this.list = make("ul", {class: "plain receipts", "aria-labelledby": "receipts-title"});
    this.note = make("p", {});
    this.older = make("button", {type: "button", onclick: () => this.showOlder()}, "Show older receipts");
    place.replaceChildren(make("div", {class: "title"}, make("h2", {id: "receipts-title"}, "Receipts"), this.note),
      this.list, this.older);
    this.begin([], new Map());
  }

  /** The newest receipts, the newest first. */
  begin(receipts, names) {
    this.names = names;
    this.most = shownAtFirst;
    this.list.replaceChildren(...receipts.slice(0, this.most).map((receipt) => this.row(receipt)));
    this.hasOlder = receipts.length > this.most;
    this.tell();
  }

  add(receipt) {
    this.list.prepend(this.row(receipt));
    while (this.list.children.length > this.most) {
      this.list.lastElementChild.remove();
      this.hasOlder = true;
    }
    this.tell();
  }

  async showOlder() {
    const count = this.list.children.length;
    const older = await receiptsBefore(this.list.lastElementChild.dataset.receipt);
    this.most = mostReceipts;
    this.list.append(...older.map((receipt) => this.row(receipt)));
    this.hasOlder = older.length > 0 && this.list.children.length < mostReceipts;
    this.tell();
    this.list.children[count]?.querySelector("a").focus();
  }

  tell() {
    write(this.note, this.list.children.length === 0 ? "None yet: print something, or a test receipt." : "");
    this.older.hidden = !this.hasOlder;
  }

  row(receipt) {
    const where = this.names.size > 1 ? [make("span", {}, this.names.get(receipt.printer) ?? "")] : [];
    const fault = receipt.ok ? [] : [make("span", {class: "refused"}, "not as intended")];
    return make("li", {"data-receipt": receipt.id}, make("a", {href: receipt.address}, this.picture(receipt),
      make("strong", {}, `Receipt ${receipt.id}`), ...where, ...fault,
      make("span", {class: "hint"}, `${clockTime(receipt.time).slice(0, 8)}, ${this.size(receipt)}`)));
  }

  size(receipt) {
    return receipt.height === 0 ? "no paper" : `${paperLength(receipt.height)}, ${counted(receipt.bytes, "byte")}`;
  }

  picture(receipt) {
    if (receipt.height === 0) {
      return make("span", {class: "thumbnail"});
    }
    return make("img", {class: "thumbnail", alt: "", loading: "lazy", src: `${receipt.address}.png?from=0`,
      width: receipt.width, height: Math.min(receipt.height, receipt.pieceRows)});
  }
}
