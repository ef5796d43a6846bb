#pragma once

// The texts of --help, except the lists of commands and options.

namespace quordalvane::tool::help {

inline constexpr auto description =
    "Talks to receipt printers: asks for their state, prints, and reports the outcome honestly.";

inline constexpr auto statusesAndExamples =
    "Exit status: 0 done, 1 the exchange with the printer failed, 2 usage, 3 no accessory matched "
    "or\n"
    "it could not be opened, 4 the printer is not ready, 5 the link was lost, 6 unconfirmed,\n"
    "7 the journal of jobs cannot be kept, and nothing was sent,\n"
    "128 and its number on a signal: 129 hung up, 130 interrupted, 143 terminated.\n"
    "\n"
    "Without a device print refuses, and every other command uses the virtual printer and "
    "says\n"
    "so. The variable QUORPORT_DEVICE names devices, separated by blanks.\n"
    "\n"
    "  quorport -d virtual: print receipt.txt                 on the printer that is built in\n"
    "  quorport -d tcp:192.0.2.10:9100 status\n"
    "  quorport -d tcp:192.0.2.10:9100 doctor                 when something does not work\n"
    "  quorport simulate --listen tcp:127.0.0.1:9100\n";

inline constexpr auto printFooter =
    "The outcome is one of\n"
    "  printed      the printer confirmed that it printed all of this job (exit status 0)\n"
    "  unconfirmed  bytes were handed over, and nothing proves that they were printed: sending\n"
    "               them again may print twice (6)\n"
    "  refused      nothing of the job was sent (1, 3, 4 or 5)\n";

inline constexpr auto commandFooter =
    "The global options, such as --device and --json, are taken here as well: quorport --help";

inline constexpr auto doctorFooter =
    "It examines every --device that is given, and prints nothing. Without one there is\n"
    "nothing to look at, and the exit status is 2. A serial printer that does not answer is asked\n"
    "at every other speed as well, which may make it print stray characters.\n"
    "The exit status is 0 if all is well, otherwise that of the first finding: 1, 3, 4 or 5.\n";

inline constexpr auto monitorFooter =
    "Each change is one line on standard output, with --json one JSON object: time, ok (whether\n"
    "the printer answered), device, state (ready, not-ready, no-answer, link-lost or "
    "unreachable),\n"
    "text, status (null if there is none), changed, the names of its fields, and error if ok is "
    "false.\n"
    "A lost link is opened again. Meanwhile a printer that serves one host at a time serves no\n"
    "other. With --count the exit status is that of the last look: 0, 1, 3 or 5.\n";

inline constexpr auto simulateFooter =
    "The first line on standard output is the place where it listens: the word listening, a\n"
    "blank, and a SPEC for --device. A terminal that was dropped is replaced by one with another\n"
    "path, which is written to standard error in the same words.\n"
    "With --json that line is an object, and each job is another one when it ends.\n"
    "On standard input and on the control socket it takes one JSON object a line and answers one:\n"
    "  {\"set\": {\"coverOpen\": true, \"speed\": 200}}   {\"get\": \"state\"}   {\"quit\": true}\n"
    "  {\"fault\": {\"late-reply\": 300}}               {\"clear\": \"faults\"}\n"
    "  {\"tear\": \"paper\"}                           {\"print\": \"test\"}\n"
    "With --web a browser shows the paper as it comes out, and sends the same lines.\n";

}  // namespace quordalvane::tool::help
