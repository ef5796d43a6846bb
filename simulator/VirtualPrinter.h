#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "simulator/Asides.h"
#include "simulator/Bytes.h"
#include "simulator/FlowControl.h"
#include "simulator/Instant.h"
#include "simulator/JobBytes.h"
#include "simulator/PrintQueue.h"
#include "simulator/PrinterState.h"
#include "simulator/Printing.h"
#include "simulator/Reception.h"
#include "simulator/ReplyKind.h"
#include "simulator/UnaskedStatus.h"

namespace quordalvane::simulator {

/// A virtual printer. It outlives its connections, each of which is a `PrinterLink`.
///
/// The virtual printer is a state machine over bytes and time, without a thread, clock or input of
/// its own. Its behaviour depends only on the bytes and times that it is given, not on how often it
/// is called. The times must not decrease. A printer must not be used by two threads at once.
class VirtualPrinter {
 public:
  explicit VirtualPrinter(PrinterState state);
  VirtualPrinter(const VirtualPrinter&) = delete;
  VirtualPrinter& operator=(const VirtualPrinter&) = delete;

  const PrinterState& state() const { return state_; }

  /// Sets the flag of this name from `now` on. Returns false if there is no such flag. See
  /// `flagNames`.
  bool setFlag(std::string_view name, bool value, Instant now);

  /// Changes a setting from `now` on. The settings and the exceptions are those of
  /// `PrinterState::set`.
  void set(std::string_view key, std::string_view value, Instant now);

  /// Lets the printer work until `now`. The functions below show the printer's state at the
  /// greatest `now` of all calls so far.
  void advance(Instant now);

  /// Returns the output since the paper was last torn off.
  const Paper& paper() const { return printing_.paper(); }

  /// Returns the print data that produced the paper, byte for byte. They contain no ETBs, no
  /// commands that the printer answers, and no commands that it executes as soon as it receives
  /// them. The last line may be unfinished. Returns empty unless the printer has
  /// `PrinterState::keepsPrinted`.
  const Bytes& printed() const { return printed_; }

  /// Returns the count of bytes of print data that have been printed since the beginning.
  std::uint64_t printedBytes() const { return printedBytes_; }

  /// Returns the count of bytes that have been received but not printed.
  std::size_t buffered() const { return queue_.size() + reception_.undecided(); }

  /// Ends the current line, and removes and returns the paper. `printed` becomes empty.
  Paper tearOff();

  /// Makes each connection a job. When all data of the job have been printed or dropped, the paper
  /// is torn off and passed to `keep`, unless the job was empty or contained only questions. A
  /// paper that exceeds its limits (`Paper::isTooLong`) is torn off and passed on earlier. If
  /// `keepJobs` has not been called, a paper that exceeds its limits is lost.
  using JobKeeper = std::function<void(Paper)>;
  void keepJobs(JobKeeper keep) { keepJob_ = std::move(keep); }

  /// Calls `watch` with each command when it is executed, and with each answer when it is sent.
  /// `watch` must not call the printer.
  struct Deed {
    enum class Kind { Command, Answer };
    Kind kind;
    ByteView bytes;                      ///< valid until `watch` returns
    ReplyKind reply = ReplyKind::Other;  ///< the kind of the answer
  };
  using Watcher = std::function<void(const Deed&)>;
  void watch(Watcher watch) { watch_ = std::move(watch); }

  // The functions for the link.

  /// Receives replies for the host, with the time at which the printer sends each.
  using Sink = std::function<void(ByteView, Instant, ReplyKind)>;

  /// Begins a connection: from now on replies are sent to `sink`. The previous connection ends.
  /// Returns a number that distinguishes this connection from all others.
  std::uint64_t connect(Sink sink);

  /// Ends the connection, unless a later connection has begun. A command that the host left
  /// unfinished remains unfinished. Replies are dropped until the next connection.
  void disconnect(std::uint64_t connection);
  bool isConnection(std::uint64_t connection) const { return connection == connection_; }

  /// Returns how many bytes the printer can accept: the free part of its buffer. If less than 64
  /// bytes and less than a quarter of the buffer are free, returns 0, because a command may need
  /// more.
  std::size_t space() const;

  /// Returns how many bytes at the start of `bytes` belong to commands that the printer executes as
  /// soon as it receives them. These bytes are not stored and need no free space.
  std::size_t actingAtOnce(ByteView bytes) const { return reception_.actingAtOnce(bytes); }

  /// Accepts all of `bytes`. They must either fit into `space()`, or all belong to commands that
  /// the printer executes as soon as it receives them (see `actingAtOnce`). If `vanish` is true,
  /// these commands are executed, and all other bytes are lost. If a command began in an earlier
  /// call, the `vanish` of that call applies to the whole command.
  void receive(ByteView bytes, Instant now, bool vanish = false);

  /// Sends bytes to the connected host. They answer a command, or the printer sends them by itself.
  /// If no host is connected, the bytes are lost.
  void reply(ByteView bytes, Instant at, ReplyKind kind = ReplyKind::Other);

  /// Returns the next time at which the printer changes without a call: it has space again,
  /// executes a queued command, has printed everything, or drops data. Returns empty if nothing is
  /// due.
  std::optional<Instant> nextEvent() const;

 private:
  /// A command, or the end of a connection. It takes effect when the printer has printed all bytes
  /// before the position `end`. Positions count the bytes that were ever queued.
  struct Mark {
    std::optional<MachineCommand> command;  // empty means the end of a connection
    Bytes bytes;                            // the bytes of the command, which are not printed
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t received = 0;  // how many bytes had been received before this mark was made
  };

  std::size_t freeBytes() const;
  std::size_t readyAgain() const;
  std::size_t untilFree(std::size_t bytes) const;
  void obey(MachineCommand command, ByteView bytes, Instant now);
  void act(MachineCommand command, ByteView bytes, Instant now);
  void answer(MachineCommand command, ByteView bytes, Instant now);
  void recover(std::uint8_t how, Instant now);
  void hold(MachineCommand command, ByteView bytes, Instant now);
  void printUntil(Instant now);
  void print(std::uint8_t byte);
  void passMarks(Instant at);
  void pass(const Mark& mark, Instant at);
  void answerInTurn(const Mark& mark, Instant at);
  void countEtb();
  void reportChange(Instant now);
  void controlFlow(Instant at);
  void dropHeld();
  void endJob(std::uint64_t received);
  void recordReceived(std::uint64_t position);
  void show(Deed::Kind kind, ByteView bytes, ReplyKind reply = ReplyKind::Other) const;
  void tearOffHeavyPaper();
  std::optional<Instant> dataTimeoutDue() const;
  void endConnection();
  void followState(Instant now);

  PrinterState state_;
  Reception reception_;
  PrintQueue queue_;
  Printing printing_;
  std::uint64_t queuedEver_ = 0;
  std::uint64_t takenEver_ = 0;  // how many queued bytes were printed or dropped
  std::uint64_t receivedEver_ = 0;
  std::uint64_t jobBegin_ = 0;  // how many bytes were received before the current job
  Asides asides_;
  Bytes question_;          // the command that is being answered
  std::deque<Mark> marks_;  // sorted by position
  std::uint64_t printedBytes_ = 0;
  Bytes printed_;

  std::uint8_t dataTimeoutSeconds_ = 0;
  bool guarded_ = false;   // true between the commands `DataCancel` and `DataCancelEnd`
  bool dropping_ = false;  // true after the data time-out, until `DataCancelEnd`
  Instant lastReceived_{};
  UnaskedStatus unasked_;
  FlowControl flow_;

  JobBytes jobBytes_;
  JobKeeper keepJob_;
  Watcher watch_;
  Sink sink_;
  std::uint64_t connection_ = 0;
};

}  // namespace quordalvane::simulator
