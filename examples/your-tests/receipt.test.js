// Tests the receipts of a shop on a virtual printer. Needs quorport in the PATH. Run it with:
// node --test receipt.test.js

const assert = require("node:assert");
const { spawn } = require("node:child_process");
const fs = require("node:fs");
const net = require("node:net");
const os = require("node:os");
const path = require("node:path");
const readline = require("node:readline");
const test = require("node:test");

/** The code under test: put yours here. */
function printReceipt(host, port) {
  const printer = net.connect(port, host);
  printer.end(Buffer.from("\x1b@\x1bt\x13Caf\x82  2.80 \xd5\n\x1bp\0\x19\xfa\x1dVA\0", "latin1"));
}

test("the receipt shows the price and opens the drawer", async () => {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "receipts-"));
  const printer = spawn("quorport", ["--json", "simulate", "--strict", "--set", "profile=escpos-80",
    "--listen", "tcp:", "--receipts", folder], { stdio: ["ignore", "pipe", "inherit"] });
  const lines = readline.createInterface({ input: printer.stdout })[Symbol.asyncIterator]();
  const next = async () => JSON.parse((await lines.next()).value);
  try {
    const [, host, port] = (await next()).listening[0].split(":");
    printReceipt(host, Number(port));
    const job = await next();
    assert.ok(job.ok, JSON.stringify(job));
    assert.deepStrictEqual([job.cuts, job.drawer, job.missing], [1, 1, []]);
    const text = fs.readFileSync(job.files.find((file) => file.endsWith(".txt")), "utf8");
    assert.ok(text.includes("Café  2.80 €"), text);
  } finally {
    printer.kill();
    fs.rmSync(folder, { recursive: true });
  }
});
