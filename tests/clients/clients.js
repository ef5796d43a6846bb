// Prints one receipt by a client library, asks for the status if the library can, and shows the answers:
//   node clients.js CLIENT HOST PORT [MODE] [FILE]
// With FILE, the receipt is the text in this file. Otherwise it is one line.

const fs = require("node:fs");
const net = require("node:net");

const [client, host, port, mode, file] = process.argv.slice(2);
const words = file ? fs.readFileSync(file, "utf8").trimEnd() : "Total 4.20";
const lines = words.split("\n");

function within(milliseconds, promise, what) {
  const late = new Promise((_, reject) => {
    setTimeout(() => reject(new Error(`no ${what} in time`)), milliseconds).unref();
  });
  return Promise.race([promise, late]);
}

const clients = {
  // This library always connects to port 9100.
  async receiptio(host, port, mode) {
    const { print } = require("receiptio");
    return print(`^^^RECEIPT\n\n${lines.map((line) => `${line}|`).join("\n")}`, `-d ${host} ${mode ? `-p ${mode} ` : ""}-c 42`);
  },

  async "node-thermal-printer"(host, port) {
    const { ThermalPrinter, PrinterTypes } = require("node-thermal-printer");
    const printer = new ThermalPrinter({ type: PrinterTypes.EPSON, interface: `tcp://${host}:${port}` });
    if (!(await printer.isPrinterConnected())) {
      return "not connected";
    }
    lines.forEach((line) => printer.println(line));
    printer.cut();
    await printer.execute();
    return "success";
  },

  escpos(host, port) {
    const escpos = require("escpos");
    escpos.Network = require("escpos-network");
    const device = new escpos.Network(host, port);
    return new Promise((resolve, reject) => {
      device.open((error) => {
        if (error) {
          return reject(error);
        }
        new escpos.Printer(device).text(words).cut().close((failure) => {
          (failure ? reject : resolve)(failure ?? "success");
        });
      });
    });
  },

  async "@node-escpos"(host, port) {
    const { Printer } = require("@node-escpos/core");
    const { default: Network } = await import("@node-escpos/network-adapter");
    const Adapter = Network.default ?? Network;
    const device = new Adapter(host, port);
    await new Promise((resolve, reject) => device.open((error) => (error ? reject(error) : resolve())));
    const printer = new Printer(device, {});
    // getStatuses asks four questions and reads the answers only if they arrive together, so the questions are sent
    // together.
    device.device.cork();
    process.nextTick(() => device.device.uncork());
    const statuses = await within(5000, printer.getStatuses(), "statuses");
    printer.text(words).cut();
    await printer.close();
    return statuses.length > 0 ? "success" : "no statuses";
  },

  async "receipt-printer-encoder"(host, port) {
    const { default: Encoder } = await import("@point-of-sale/receipt-printer-encoder");
    const encoder = new Encoder({ language: "esc-pos" }).initialize().codepage("auto");
    [...lines, "Grüße €"].forEach((line) => encoder.line(line));
    const bytes = encoder.cut().encode();
    await new Promise((resolve, reject) => {
      const socket = net.connect(port, host, () => socket.end(Buffer.from(bytes), resolve));
      socket.on("error", reject);
    });
    return "success";
  },
};

within(20000, clients[client](host, Number(port), mode), "end")
  .then((result) => process.stdout.write(`${result}\n`))
  .catch((error) => process.stdout.write(`${error.message}\n`))
  .finally(() => process.exit());
