// The page of one receipt: as a picture, as text, and as bytes with the name of each command.

import { make, write } from "./dom.js";
import { bytesOf, counted, moment, paired, paperLength } from "./words.js";

const number = location.pathname.split("/").pop();

async function load(from) {
  const answer = await fetch(`${number}.json${from === null ? "" : `?from=${from}`}`);
  if (!answer.ok) {
    throw new Error((await answer.json()).error);
  }
  return answer.json();
}

function part(title, ...children) {
  const id = `${title.toLowerCase().replaceAll(" ", "-")}-title`;
  return make("section", {class: "card", "aria-labelledby": id}, make("div", {class: "title"}, make("h2", {id}, title)),
    ...children);
}

/** The picture in pieces, each loaded when it is scrolled to: no browser shows a picture of many metres. */
function picture({width, height, pieceRows}) {
  if (height === 0) {
    return make("p", {class: "hint"}, "The job left no paper.");
  }
  const pieces = [];
  for (let row = 0; row < height; row += pieceRows) {
    const alt = row === 0 ? "The receipt as it was printed; its text follows" : "";
    const rows = Math.min(pieceRows, height - row);
    pieces.push(make("img", {alt, src: `${number}.png?from=${row}`, width, height: rows, loading: "lazy"}));
  }
  const label = "Picture of the receipt";
  return make("div", {class: "whole", role: "region", tabindex: "0", "aria-label": label}, ...pieces);
}

function figures(receipt) {
  const rows = {Printer: receipt.printerName, Printed: moment(receipt.time),
    Length: paperLength(receipt.height), Bytes: counted(receipt.bytes, "byte"), Cuts: receipt.cuts,
    "Drawer pulses": receipt.record.drawer, Beeps: receipt.record.beeps, Job: receipt.job};
  return make("dl", {class: "figures"}, ...Object.entries(rows).map(([name, value]) =>
    make("div", {}, make("dt", {}, name), make("dd", {}, String(value)))));
}

/** The parts of the job that were not printed correctly. */
function complaints({record}) {
  const unknown = record.unknown.map(({name, offset, bytes}) =>
    `unknown command ${name} at byte ${offset}: ${paired(bytes)}`);
  const missing = record.missing.map((one) => `the character ${one} is missing`);
  const items = [...unknown, ...missing].map((text) => make("li", {}, text));
  return items.length === 0 ? [] : [part("Not printed as intended", make("ul", {}, ...items))];
}

/** A table that scrolls sideways. */
function tableOf(titles, name, body) {
  const heads = titles.map((title) => make("th", {scope: "col"}, title));
  const caption = make("caption", {class: "unseen"}, name);
  const table = make("table", {}, caption, make("thead", {}, make("tr", {}, ...heads)), body);
  return make("div", {class: "wide", role: "region", tabindex: "0", "aria-label": name}, table);
}

function questions({record}) {
  const cell = (hex) => make("td", {}, make("code", {}, paired(hex)));
  const rows = record.asked.map(({command, answer}) => make("tr", {}, cell(command), cell(answer)));
  const table = tableOf(["Question", "Answer"], "Questions and answers", make("tbody", {}, ...rows));
  return rows.length === 0 ? [] : [part("Questions of the host", table)];
}

function commandRow(command) {
  return make("tr", {class: command.unknown ? "unknown" : command.name === "text" ? "text" : "command"},
    make("td", {class: "number"}, String(command.offset)), make("th", {scope: "row"}, command.name),
    make("td", {class: command.name === "text" ? "mono" : ""}, command.meaning),
    make("td", {}, make("code", {}, bytesOf(command))));
}

/** All commands, loaded a part at a time. */
function commands(receipt) {
  const rows = make("tbody", {class: "commands"});
  const more = make("button", {type: "button"}, "Show the next commands");
  let next = null;
  const add = (portion) => {
    rows.append(...portion.commands.map(commandRow));
    next = portion.next;
    more.hidden = next === null;
  };
  more.addEventListener("click", async () => add(await load(next)));
  add(receipt);
  const table = tableOf(["At", "Command", "Meaning", "Bytes"], "Commands in their order", rows);
  const kept = receipt.kept < receipt.bytes ? `The first ${counted(receipt.kept, "byte")} were kept.` : "";
  return [table, more, make("p", {class: "hint"}, kept)];
}

function files() {
  const kinds = {png: "picture", txt: "text", bin: "bytes", json: "data"};
  const links = Object.entries(kinds).map(([ending, name]) =>
    make("a", {href: `${number}.${ending}`, download: `receipt-${number}.${ending}`}, name));
  return make("p", {class: "files"}, "Save", ...links);
}

function show(receipt) {
  document.title = `Receipt ${receipt.id}`;
  write(document.getElementById("title"), `Receipt ${receipt.id}`);
  const seen = make("div", {class: "readings"}, part("Picture", picture(receipt)),
    part("Text", make("pre", {tabindex: "0", "aria-label": "Text of the receipt"}, receipt.text)));
  document.getElementById("receipt").replaceChildren(make("div", {class: "card"}, figures(receipt), files()),
    ...complaints(receipt), seen, part("Bytes", ...commands(receipt)), ...questions(receipt));
}

load(null).then(show, (error) => {
  document.getElementById("receipt").replaceChildren(make("p", {class: "card refused", role: "alert"}, error.message));
});
