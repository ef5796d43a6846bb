#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Records a job's cuts, drawer pulses and similar events, and the parts of the job that the
/// printer could not print. Each list ends after `longestList` entries, so that no job makes it
/// grow for ever.
class JobRecord {
 public:
  struct Question {
    Bytes command;
    Bytes answer;
  };

  struct Unknown {
    std::uint64_t offset;  ///< where the command begins in the job
    Bytes bytes;           ///< the first bytes of the command
    std::string name;      ///< a name like "GS y"; "cut off" for an incomplete command
  };

  enum class EventKind : std::uint8_t { Cut, Drawer, Beep, Display, Question, Replaced };

  /// Events are in the order in which the printer executed them.
  struct Event {
    EventKind kind;
    /// For `Display`, the displayed text. For `Question`, the command in hex. For `Replaced`, the
    /// form that the job asked for and the form that was printed.
    std::string text;
  };

  static constexpr std::size_t longestList = 1000;

  unsigned cuts() const { return cuts_; }
  unsigned drawer() const { return drawer_; }  ///< pulses to the cash drawer
  unsigned beeps() const { return beeps_; }
  const std::vector<Event>& events() const { return events_; }

  void noteCut();
  void noteDrawer();
  void noteBeep();
  void noteDisplay(std::uint8_t byte);

  /// Notes that a symbol or command was printed in another form than the job asked for.
  void noteReplaced(const std::string& what);

  const Bytes& codePages() const { return codePages_; }
  const std::vector<Question>& asked() const { return asked_; }
  const std::vector<Unknown>& unknown() const { return unknown_; }

  /// Returns the bytes that have no character in the selected code page, like "81 in page 16", and
  /// the pages that the printer does not have, like "page 200".
  const std::set<std::string>& missing() const { return missing_; }

  /// Return the first received bytes of the job, and the count of all its bytes. Without
  /// `PrinterState::keepsReceived`, the bytes are empty and the count is 0.
  const Bytes& received() const { return received_; }
  std::uint64_t receivedCount() const { return receivedCount_; }
  void setReceived(Bytes bytes, std::uint64_t count);

  /// Returns true if the printer could print all of the job correctly.
  bool isClean() const { return unknown_.empty() && missing_.empty(); }

  /// Returns true if the job contained only questions.
  bool isEmpty() const;

  void noteCodePage(std::uint8_t number);
  void noteQuestion(ByteView command, ByteView answer);
  void noteUnknown(std::uint64_t offset, ByteView command);
  void noteCutOff(std::uint64_t offset, ByteView command);
  void noteMissing(ByteView bytes, const std::string& page);
  void noteMissingPage(std::uint8_t number);

 private:
  void noteEvent(EventKind kind, std::string text = "");

  unsigned cuts_ = 0;
  unsigned drawer_ = 0;
  unsigned beeps_ = 0;
  std::vector<Event> events_;
  Bytes codePages_;
  std::vector<Question> asked_;
  std::vector<Unknown> unknown_;
  std::set<std::string> missing_;
  Bytes received_;
  std::uint64_t receivedCount_ = 0;
};

}  // namespace quordalvane::simulator
