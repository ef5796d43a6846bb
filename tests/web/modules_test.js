// The page's modules that need no document. Run by page_sources_test.py.

import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { test } from "node:test";
import { SourceTextModule } from "node:vm";

import { joined } from "./faults.js";
import { fits } from "./log.js";
import { binarySteps, decimalSteps, nearest } from "./steps.js";
import { clockTime, condition, counted, grouped, paired, paperLength, titled } from "./words.js";

test("every module can be read as one", () => {
  for (const name of readdirSync(".").filter((file) => file.endsWith(".js"))) {
    assert.doesNotThrow(() => new SourceTextModule(readFileSync(name, "utf8")), name);
  }
});

test("the steps of a slider lie within its range", () => {
  assert.deepEqual(decimalSteps(10, 1000), [10, 20, 50, 100, 200, 500, 1000]);
  assert.deepEqual(decimalSteps(3, 40), [5, 10, 20]);
  assert.deepEqual(binarySteps(16, 100), [16, 32, 64]);
});

test("the nearest step is that of the smallest ratio", () => {
  const steps = [10, 20, 50, 100];
  assert.equal(nearest(steps, 20), 1);
  assert.equal(nearest(steps, 34), 2);
  assert.equal(nearest(steps, 0), 0);
  assert.equal(nearest(steps, 4294967295), 3);
});

test("a fault's value is its parts, each with the sign before it", () => {
  const parts = [{before: ""}, {before: "@", optional: true}];
  assert.equal(joined(parts, [300, "process-id"]), "300@process-id");
  assert.equal(joined(parts, [300, ""]), "300");
  assert.equal(joined([], []), true);
});

test("an entry of the log fits if it holds each of the words", () => {
  const entry = {name: "ESC @", meaning: "initialise", bytes: "1b40", where: "kitchen"};
  assert.ok(fits(entry, []));
  assert.ok(fits(entry, ["esc", "kitchen"]));
  assert.ok(fits(entry, ["1b", "40"]));
  assert.ok(fits(entry, ["1b40"]));
  assert.ok(!fits(entry, ["esc", "bar"]));
  assert.ok(fits({name: "control", meaning: '{"set": {}}', answer: '{"ok": false}'}, ["false"]));
});

test("numbers, lengths and bytes are written for people", () => {
  assert.equal(grouped(1234567), "1\u2009234\u2009567");
  assert.equal(grouped(12), "12");
  assert.equal(counted(1, "byte"), "1 byte");
  assert.equal(counted(2, "entry", "entries"), "2 entries");
  assert.equal(paired("1b4000"), "1b 40 00");
  assert.equal(paired(""), "");
  assert.equal(paperLength(80), "10 mm");
  assert.equal(paperLength(160000), "20.00 m");
  assert.equal(titled("cover open"), "Cover open");
  assert.match(clockTime(5), /^\d\d:\d\d:\d\d\.005$/);
});

test("a printer's condition names each reason for being off line", () => {
  const flags = [{key: "coverOpen", label: "cover open", group: "cover"}, {key: "jamError", label: "jam", group: "error"},
    {key: "receiptPaperEmpty", label: "paper out", group: "paper"}, {key: "paperPresent", label: "paper left", group: "paper"}];
  assert.equal(condition(flags, {offline: false, paperPresent: true}), "Ready");
  assert.equal(condition(flags, {offline: true, coverOpen: true, receiptPaperEmpty: true, paperPresent: true}),
    "Off line: cover open, paper out");
  assert.equal(condition(flags, {offline: true}), "Off line");
});
