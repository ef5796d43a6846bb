#!/usr/bin/env node
// Prints a text. Usage: print.js DEVICE TEXT. Needs the npm package koffi, which calls C functions.
//
// The exit status is 0 if the text was printed, 6 if nothing proves that it was printed, and 1 otherwise.
'use strict';
const koffi = require('koffi');
const {promisify} = require('util');

const quor = koffi.load('libQuorIOPort.so.0');
koffi.opaque('QuorPort');
koffi.opaque('QuorPrintJob');
const quorLastError = quor.func('const char *quor_last_error()');
const connectDevices = quor.func('int quor_connect_devices(const char **specs, size_t count)');
const createPort = quor.func(
    'int quor_port_create(const char *name, const char *settings, uint32_t timeout, int emulation, _Out_ QuorPort **port)');
const openPort = quor.func('int quor_port_open(QuorPort *port)');
const closePort = quor.func('int quor_port_close(QuorPort *port)');
const freePort = quor.func('void quor_port_free(QuorPort *port)');
const createJob = quor.func(
    'int quor_print_job_create(QuorPort *port, int proof, void *progress, void *context, _Out_ QuorPrintJob **job)');
const runJob = quor.func('int quor_print_job_run(QuorPrintJob *job, const uint8_t *data, size_t size)');
const outcomeOf = quor.func('int quor_print_job_outcome(QuorPrintJob *job)');
const reasonOf = quor.func('int quor_print_job_reason(QuorPrintJob *job, _Out_ char *text, size_t capacity, void *length)');
const freeJob = quor.func('void quor_print_job_free(QuorPrintJob *job)');

const timeout = 10000; // milliseconds
const emulationLine = 1;
const proofAuto = 1;

function check(code) {
  if (code < 0) {
    throw new Error(quorLastError());
  }
}

async function print(device, data) {
  const port = [null];
  const job = [null];
  check(connectDevices([device], 1));
  check(createPort('BT:', null, timeout, emulationLine, port));
  try {
    check(openPort(port[0]));
    check(createJob(port[0], proofAuto, null, null, job));
    // The job runs on another thread, so that the event loop continues.
    if (await promisify(runJob.async)(job[0], data, data.length) < 0) {
      throw new Error('the job could not be run');
    }
    const reason = Buffer.alloc(256);
    check(reasonOf(job[0], reason, reason.length, null));
    return {outcome: outcomeOf(job[0]), reason: reason.toString('utf8', 0, reason.indexOf(0))};
  } finally {
    closePort(port[0]);
    freeJob(job[0]);
    freePort(port[0]);
  }
}

async function main([device, text, ...others]) {
  if (text === undefined || others.length > 0) {
    console.error('usage: print.js DEVICE TEXT');
    return 2;
  }
  try {
    const {outcome, reason} = await print(device, Buffer.from(text));
    console.log(['printed', 'unconfirmed', 'refused'][outcome], reason);
    return [0, 6, 1][outcome];
  } catch (error) {
    console.error(error.message);
    return 1;
  }
}

main(process.argv.slice(2)).then((code) => { process.exitCode = code; });
