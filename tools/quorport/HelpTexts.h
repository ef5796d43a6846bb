#pragma once

// The texts of --help, except the lists of commands and options.

namespace quordalvane::tool::help {

inline constexpr auto description =
    "Talks to receipt printers: asks for their state, prints, and reports the outcome honestly.";

inline constexpr auto statusesAndExamples =
    "Exit status: 0 done, 1 the exchange with the printer failed, 2 wrong usage, 3 no device\n"
    "matched the port name or the device could not be opened, 4 the printer is not ready,\n"
    "5 the link was lost, 6 unconfirmed, 7 the journal of jobs cannot be used, and nothing was\n"
    "sent, 128 plus the number of a signal: 129 hung up, 130 interrupted, 143 terminated.\n"
    "\n"
    "Without a device, the command \"print\" sends nothing and ends with exit status 2; every\n"
    "other command uses the virtual printer and says so. The variable QUORPORT_DEVICE names\n"
    "devices, separated by blanks.\n"
    "\n"
    "  quorport -d virtual: print receipt.txt                 on the virtual printer\n"
    "  quorport -d tcp:192.0.2.10:9100 status\n"
    "  quorport -d tcp:192.0.2.10:9100 doctor                 when something does not work\n"
    "  quorport simulate --listen tcp:127.0.0.1:9100\n";

inline constexpr auto printFooter =
    "The outcome is one of\n"
    "  printed      the printer confirmed that it printed the whole job (exit status 0)\n"
    "  unconfirmed  bytes were sent, and nothing proves that they were printed: if they are sent\n"
    "               again, they may be printed twice (exit status 6)\n"
    "  refused      nothing of the job was sent (exit status 1, 3, 4 or 5)\n";

inline constexpr auto commandFooter =
    "The global options, such as --device and --json, can also follow the command; quorport --help "
    "lists them.";

inline constexpr auto doctorFooter =
    "This command examines the device of every --device, and sends no data to be printed. Without\n"
    "--device the exit status is 2. If a serial printer does not answer, this command tries all\n"
    "speeds; then the printer may print stray characters.\n"
    "The exit status is 0 if no fault is found, otherwise that of the first fault: 1, 3, 4 or 5.\n";

inline constexpr auto monitorFooter =
    "Each change is one line on standard output. With --json the line is a JSON object with the\n"
    "keys time, ok (whether the printer answered), device, state (ready, not-ready, no-answer,\n"
    "link-lost or unreachable), text, status (null if there is none), changed (the names of the\n"
    "changed fields of the status), and error if ok is false.\n"
    "If the link is lost, this command opens it again. A printer that serves one host at a time\n"
    "serves no other host while this command runs. With --count the exit status is that of the\n"
    "last status request: 0, 1, 3 or 5.\n";

inline constexpr auto simulateFooter =
    "The first line on standard output names the place where the printer listens: the word\n"
    "listening, a blank, and a SPEC for --device. If a fault ends the link of a terminal (pty:),\n"
    "a terminal with a new path replaces it, and a line with this path is written to standard\n"
    "error. With --json the first line is a JSON object, and each job adds a JSON object when\n"
    "the job ends. Standard input and the control socket take control lines. Each control line\n"
    "is a JSON object, and the answer is a JSON object as well. Examples:\n"
    "  {\"set\": {\"coverOpen\": true, \"speed\": 200}}   {\"get\": \"state\"}   {\"quit\": true}\n"
    "  {\"fault\": {\"late-reply\": 300}}               {\"clear\": \"faults\"}\n"
    "  {\"tear\": \"paper\"}                           {\"print\": \"test\"}\n"
    "With --web a browser shows the paper while it is printed, and can send control lines.\n";

}  // namespace quordalvane::tool::help
