// The receipts that were torn off, the newest first. A receipt has a page of its own, at its address.

import { make, write } from "./dom.js";
import { clockTime, counted, paperLength } from "./words.js";

/** As many as the server keeps, and how many of them are shown at first. */
export const mostReceipts = 200;
const portion = 24;

/** Taller pictures are not worth their memory as a small one. */
const tallestPicture = 6000; // dots

export class Receipts {
  constructor(place) {
    this.list = make("ul", {class: "plain receipts", "aria-labelledby": "receipts-title"});
    this.note = make("p", {});
    this.older = make("button", {type: "button", onclick: () => this.showOlder()}, "Show older ones");
    place.replaceChildren(make("div", {class: "title"}, make("h2", {id: "receipts-title"}, "Receipts"), this.note),
      this.list, this.older);
    this.begin([], new Map());
  }

  begin(receipts, names) {
    this.names = names;
    this.kept = receipts.slice(-mostReceipts).reverse();
    this.most = portion;
    this.list.replaceChildren();
    this.showMore();
  }

  add(receipt) {
    this.kept.unshift(receipt);
    this.kept.length = Math.min(this.kept.length, mostReceipts);
    this.list.prepend(this.row(receipt));
    while (this.list.children.length > this.most) {
      this.list.lastElementChild.remove();
    }
    this.tell();
  }

  showOlder() {
    this.most += portion;
    const first = this.list.children.length;
    this.showMore();
    this.list.children[first]?.querySelector("a").focus();
  }

  showMore() {
    const more = this.kept.slice(this.list.children.length, this.most);
    this.list.append(...more.map((receipt) => this.row(receipt)));
    this.tell();
  }

  tell() {
    write(this.note, this.kept.length === 0 ? "None yet: print something, or a test receipt." : "");
    this.older.hidden = this.list.children.length >= this.kept.length;
  }

  row(receipt) {
    const where = this.names.size > 1 ? [make("span", {}, this.names.get(receipt.printer) ?? "")] : [];
    const fault = receipt.ok ? [] : [make("span", {class: "refused"}, "not as it was meant")];
    return make("li", {}, make("a", {href: receipt.address}, this.picture(receipt),
      make("strong", {}, `Receipt ${receipt.id}`), ...where, ...fault,
      make("span", {class: "hint"}, `${clockTime(receipt.time).slice(0, 8)}, ${this.size(receipt)}`)));
  }

  size(receipt) {
    return receipt.height === 0 ? "no paper" : `${paperLength(receipt.height)}, ${counted(receipt.bytes, "byte")}`;
  }

  picture(receipt) {
    if (receipt.height === 0 || receipt.height > tallestPicture) {
      return make("span", {class: "thumbnail"});
    }
    return make("img", {class: "thumbnail", alt: "", loading: "lazy", src: `${receipt.address}.png`,
      width: receipt.width, height: receipt.height});
  }
}
