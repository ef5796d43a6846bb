#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "simulator/Bytes.h"
#include "simulator/Instant.h"
#include "simulator/JobBytes.h"
#include "simulator/PrintQueue.h"
#include "simulator/PrinterState.h"
#include "simulator/Printing.h"
#include "simulator/Reception.h"
#include "simulator/ReplyKind.h"

namespace quordalvane::simulator {

/// A printer. It outlives its connections, each of which is a `PrinterLink`.
///
/// It is a state machine over bytes and time, with no thread, clock or input of its own: its
/// behaviour follows from the bytes and the instants that it is given, and not from how often it is
/// looked at. Instants must not decrease. Not for use by two threads at once.
class VirtualPrinter {
 public:
  explicit VirtualPrinter(PrinterState state);
  VirtualPrinter(const VirtualPrinter&) = delete;
  VirtualPrinter& operator=(const VirtualPrinter&) = delete;

  const PrinterState& state() const { return state_; }

  /// Sets the flag of that name from `now` on; false if there is none. See `flagNames`.
  bool setFlag(std::string_view name, bool value, Instant now);

  /// Changes a setting by its name from `now` on, as `PrinterState::set` does and with its errors.
  void set(std::string_view key, std::string_view value, Instant now);

  /// Works up to `now`. Everything below is as it was at the latest instant given.
  void advance(Instant now);

  /// The output since the paper was last torn off.
  const Paper& paper() const { return printing_.paper(); }

  /// The print data that made it, byte for byte: without ETBs and without the commands that act on
  /// reception. Its whole commands are on the paper; a line may still be open. Only of a printer
  /// that `PrinterState::keepsPrinted`; empty otherwise.
  const Bytes& printed() const { return printed_; }

  /// How many bytes of print data have been printed since the beginning.
  std::uint64_t printedBytes() const { return printedBytes_; }

  /// How many bytes have been received and are not printed.
  std::size_t buffered() const { return queue_.size() + reception_.undecided(); }

  /// Takes the paper away, `printed` included, with a line that has begun. Returns it.
  Paper tearOff();

  /// From now on each connection is a job: when all of its data has been printed or dropped,
  /// the paper is torn off and given to `keep`, unless the paper is empty. A paper that grows
  /// heavier than `heaviestPaper` is torn off and given before; without a keeper it is lost.
  using JobKeeper = std::function<void(Paper)>;
  void keepJobs(JobKeeper keep) { keepJob_ = std::move(keep); }

  /// From now on `watch` is told each command when it is obeyed or printed, and each answer when it
  /// is given. It must not call the printer.
  struct Deed {
    enum class Kind { Command, Answer };
    Kind kind;
    ByteView bytes;                      ///< valid during the call
    ReplyKind reply = ReplyKind::Other;  ///< of an answer
  };
  using Watcher = std::function<void(const Deed&)>;
  void watch(Watcher watch) { watch_ = std::move(watch); }

  // ---- For the link ----

  /// The way of replies to the host, with the instant at which the printer gives them.
  using Sink = std::function<void(ByteView, Instant, ReplyKind)>;

  /// Begins a connection, which ends the one before it: from now on replies are sent to `sink`.
  /// Returns a number that distinguishes this connection from all others.
  std::uint64_t connect(Sink sink);

  /// Ends the connection, unless another one has begun: a command that it left unfinished remains
  /// unfinished. Replies are dropped until the next.
  void disconnect(std::uint64_t connection);
  bool isConnection(std::uint64_t connection) const { return connection == connection_; }

  /// How many bytes it can take: the free part of its buffer, or 0 while that is less than a
  /// command may need (64 bytes, or a quarter of a small buffer).
  std::size_t space() const;

  /// How many bytes at the beginning of `bytes` it can take without space: they act on reception
  /// and are not held.
  std::size_t actingAtOnce(ByteView bytes) const { return reception_.actingAtOnce(bytes); }

  /// Takes all of `bytes`, at most `space()` or `actingAtOnce(bytes)`. With `vanish`, print data is
  /// lost on the way: commands that act on reception are obeyed and nothing is printed. A command
  /// whose first bytes arrived before shares their fate.
  void receive(ByteView bytes, Instant now, bool vanish = false);

  /// Sends bytes to the host, if there is one: an answer, or a report that nobody asked for.
  void reply(ByteView bytes, Instant at, ReplyKind kind = ReplyKind::Other);

  /// When, after the latest instant given, it next does something that can be noticed from outside:
  /// has space again, passes an ETB, has printed all, or drops data. Empty while nothing is due.
  std::optional<Instant> nextEvent() const;

 private:
  /// A command, or the end of a connection, that waits until the print position has passed the
  /// first `end` bytes that were ever queued.
  struct Mark {
    std::optional<MachineCommand> command;  // empty: the end of a connection
    Bytes bytes;                            // of the command, which are not for the paper
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t received = 0;  // how many bytes had been received ever
  };

  /// Bytes that acted at once, before the byte that was queued as number `before`.
  struct Aside {
    std::uint64_t before;
    std::uint64_t bytes;
  };

  std::size_t readyAgain() const;
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
  void dropHeld();
  void endJob(std::uint64_t received);
  void setAside(std::size_t count);
  void passAsides();
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
  std::uint64_t takenEver_ = 0;  // of those queued: printed or dropped
  std::uint64_t receivedEver_ = 0;
  std::uint64_t jobBegin_ = 0;  // of the bytes received: the beginning of the job on the paper
  std::deque<Aside> asides_;    // that the print position has not passed
  std::uint64_t asidesPassed_ = 0;
  Bytes question_;          // the command that is being answered
  std::deque<Mark> marks_;  // of the queued bytes, in their order
  std::uint64_t printedBytes_ = 0;
  Bytes printed_;

  std::uint8_t dataTimeoutSeconds_ = 0;
  bool guarded_ = false;  // between a data cancel and its end
  bool dropping_ =
      false;  // the data time-out struck, and no end of the data cancel has arrived since
  Instant lastReceived_{};
  std::optional<Bytes> reported_;  // the latest unasked status; empty: not wanted

  JobBytes jobBytes_;
  JobKeeper keepJob_;
  Watcher watch_;
  Sink sink_;
  std::uint64_t connection_ = 0;
};

}  // namespace quordalvane::simulator
