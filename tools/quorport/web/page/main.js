// The whole page: every printer of the server, all receipts and the log.

import { announce } from "./announce.js";
import { make, write } from "./dom.js";
import { Log } from "./log.js";
import { Receipts } from "./receipts.js";
import { control, follow, forms } from "./server.js";
import { Station } from "./station.js";
import { titled } from "./words.js";

const place = (id) => document.getElementById(id);

class Shop {
  constructor(known) {
    this.known = known;
    this.stations = new Map();
    this.receipts = new Receipts(place("receipts"));
    this.log = new Log(place("log"));
  }

  /** Builds the page anew. */
  begin({printers, receipts}) {
    this.stations = new Map(printers.map((printer) => [printer.id, new Station(printer, this.known)]));
    place("printers").replaceChildren(...[...this.stations.values()].map((station) => station.element));
    const names = new Map(printers.map((printer) => [printer.id, printer.name || printer.place]));
    this.receipts.begin(receipts, names);
    this.log.begin(names);
  }

  addReceipt(receipt) {
    this.receipts.add(receipt);
    announce(`Receipt ${receipt.id} is ready`);
  }
}

function showLink(isConnected) {
  const link = place("link");
  write(link, isConnected ? "live" : "no connection to the server; trying again");
  link.classList.toggle("lost", !isConnected);
}

function addEnd(actions) {
  const quit = actions.find((action) => action.key === "quit");
  if (quit) {
    const stop = make("button", {type: "button", onclick: () => control(null, quit.line)}, titled(quit.label));
    place("foot").replaceChildren(make("details", {}, make("summary", {}, "End the virtual printer"), stop));
  }
}

async function start() {
  const known = await forms();
  const shop = new Shop(known);
  addEnd(known.actions);
  follow({
    snapshot: (data) => shop.begin(data),
    state: (data) => shop.stations.get(data.printer)?.show(data),
    paper: (data) => shop.stations.get(data.printer)?.paper.draw(data),
    torn: (data) => shop.stations.get(data.printer)?.paper.tear(),
    receipt: (data) => shop.addReceipt(data),
    log: (data) => shop.log.add(data),
  }, showLink);
}

start().catch(() => showLink(false));
