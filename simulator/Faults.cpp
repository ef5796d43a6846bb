#include "simulator/Faults.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "simulator/PrinterState.h"
#include "text/Number.h"
#include "text/Quoted.h"

namespace quordalvane::simulator {
namespace {

using Text = std::string_view;

// One year. A longer time is refused as a mistake, so sums of times cannot overflow.
constexpr std::uint64_t longestMilliseconds = 365ULL * 24 * 3600 * 1000;

std::optional<std::uint64_t> number(
    Text text, int base = 10, std::uint64_t most = std::numeric_limits<std::uint64_t>::max()) {
  const auto value = numberIn<std::uint64_t>(text, base);
  return value && *value <= most ? value : std::nullopt;
}

// Shortens `text` to the part before its last `mark`, and returns the part after the mark. Without
// a mark, `text` remains unchanged and the result is empty.
std::optional<Text> takeTail(Text& text, char mark) {
  const std::size_t at = text.rfind(mark);
  if (at == Text::npos) {
    return std::nullopt;
  }
  const Text tail = text.substr(at + 1);
  text = text.substr(0, at);
  return tail;
}

bool parseCount(Text text, Fault& fault) {
  const auto count = number(text);
  fault.count = count.value_or(0);
  return count.has_value();
}

bool parsePositiveCount(Text text, Fault& fault) {
  return parseCount(text, fault) && fault.count > 0;
}

bool parseTime(Text text, Fault& fault) {
  const auto milliseconds = number(text, 10, longestMilliseconds);
  fault.time = std::chrono::milliseconds(milliseconds.value_or(0));
  return milliseconds.has_value();
}

bool parseReplyNumber(Text text, Fault& fault) {
  const auto reply = number(text);
  fault.reply = reply.value_or(0);
  return fault.reply > 0;
}

bool parseReplyKind(Text text, Fault& fault) {
  fault.replyKind = replyKindNamed(text);
  return fault.replyKind.has_value();
}

bool parseOneReply(Text text, Fault& fault) {
  return parseReplyKind(text, fault) || parseReplyNumber(text, fault);
}

bool parseReply(Text text, Fault& fault) {
  return text == "all" || parseOneReply(text, fault);
}

bool parseIdReply(Text text, Fault& fault) {
  return text == "all" || parseReplyNumber(text, fault);
}

bool parseProof(Text text, Fault& fault) {
  return parseReplyKind(text, fault) &&
         (fault.replyKind == ReplyKind::Block || fault.replyKind == ReplyKind::ProcessId ||
          fault.replyKind == ReplyKind::InOrder);
}

bool parseEnding(Text text, Fault& fault) {
  if (text == "drain") {
    fault.ending = Ending::Drain;
  } else if (text == "at-once") {
    fault.ending = Ending::AtOnce;
  } else if (text == "reset") {
    fault.ending = Ending::Reset;
  } else {
    return false;
  }
  return true;
}

// Reads VALUE or VALUE@REPLY. REPLY selects the affected replies by number or kind; without REPLY,
// every reply is affected.
bool parseAtReply(Text text, Fault& fault, bool (*parseValue)(Text, Fault&)) {
  const auto reply = takeTail(text, '@');
  return (!reply || parseOneReply(*reply, fault)) && parseValue(text, fault);
}

bool parseLate(Text text, Fault& fault) {
  return parseAtReply(text, fault, parseTime);
}

bool parseStrayByte(Text text, Fault& fault) {
  return parseAtReply(text, fault, [](Text byte, Fault& into) {
    const auto value = number(byte, 16, 0xff);
    into.count = value.value_or(0);
    return value.has_value();
  });
}

bool parseSplit(Text text, Fault& fault) {
  return parseAtReply(text, fault, [](Text offsets, Fault& into) {
    for (bool more = true; more;) {
      const std::size_t slash = offsets.find('/');
      more = slash != Text::npos;
      const auto offset = number(offsets.substr(0, slash));
      const std::uint64_t before = into.offsets.empty() ? 0 : into.offsets.back();
      if (!offset || *offset <= before) {
        return false;
      }
      into.offsets.push_back(*offset);
      offsets.remove_prefix(more ? slash + 1 : 0);
    }
    return true;
  });
}

bool parseCut(Text text, Fault& fault) {
  const auto ending = takeTail(text, ':');
  return (!ending || parseEnding(*ending, fault)) && parseCount(text, fault);
}

bool parseNoSpace(Text text, Fault& fault) {
  const auto time = takeTail(text, ':');
  return time && parseTime(*time, fault) && parseCount(text, fault);
}

bool parseTrue(Text text, Fault&) {
  return text == "true";
}

// Reads MS:KEY=VALUE. The delayed assignment must be valid now, so that it cannot fail later.
bool parseAt(Text text, Fault& fault) {
  const std::size_t colon = text.find(':');
  const std::size_t equals = text.find('=', colon == Text::npos ? 0 : colon);
  if (colon == Text::npos || equals == Text::npos || !parseTime(text.substr(0, colon), fault)) {
    return false;
  }
  fault.key = text.substr(colon + 1, equals - colon - 1);
  fault.value = text.substr(equals + 1);
  if (fault.key == "at") {
    return false;
  }
  if (isFault(fault.key)) {
    parseFault(fault.key, fault.value);
  } else {
    PrinterState().set(fault.key, fault.value);
  }
  return true;
}

constexpr Text everyReply =
    "\"all\", the number of a reply, or a kind of replies: \"block\", \"process-id\", "
    "\"in-order\", \"unasked\" or \"cleared\"";

using Part = FaultPart;
using Parts = std::span<const Part>;

constexpr Part bytesPart = {"", "bytes", Part::Kind::Number};
constexpr Part replyPart = {"", "reply", Part::Kind::Reply};
constexpr Part atReply = {"@", "reply", Part::Kind::Reply, true};
constexpr Part thenEnding = {":", "ending", Part::Kind::Ending, true};

constexpr Part countOfBytes[] = {bytesPart};
constexpr Part stall[] = {bytesPart, {":", "milliseconds", Part::Kind::Number}};
constexpr Part delay[] = {{"", "milliseconds", Part::Kind::Number}, atReply};
constexpr Part split[] = {{"", "offsets, like 3/7", Part::Kind::Text}, atReply};
constexpr Part oneReply[] = {replyPart};
constexpr Part strayByte[] = {{"", "two hex digits", Part::Kind::Hex}, atReply};
constexpr Part proofReply[] = {{"", "reply", Part::Kind::Proof}};
constexpr Part replyNumber[] = {{"", "number of the reply", Part::Kind::Number}};
constexpr Part cutAfter[] = {bytesPart, thenEnding};
constexpr Part cutNow[] = {{"", "ending", Part::Kind::Ending}};
constexpr Part later[] = {{"", "milliseconds", Part::Kind::Number},
                          {":", "setting or fault", Part::Kind::Text},
                          {"=", "value", Part::Kind::Text}};

struct Form {
  FaultKind kind;
  Text name;
  Text takes;
  bool (*parse)(Text, Fault&);
  Text effect;
  Parts parts;
};

constexpr Form commandForms[] = {
    {FaultKind::ShortWrites, "short-writes", "a count of bytes, 1 or more", parsePositiveCount,
     "no write takes more than the given count of bytes", countOfBytes},
    {FaultKind::NoSpace, "no-space", "BYTES:MS", parseNoSpace,
     "after the given count of bytes, the printer takes no data for the given time", stall},
    {FaultKind::LateReply, "late-reply",
     "MS or MS@REPLY, where REPLY is a number or a kind such as process-id", parseLate,
     "each reply is delayed by the given time", delay},
    {FaultKind::SplitReply, "split-reply", "rising offsets in the reply, such as 3/7 or 3/7@REPLY",
     parseSplit, "each reply arrives in pieces", split},
    {FaultKind::DuplicateReply, "duplicate-reply", everyReply, parseReply,
     "each reply is sent twice", oneReply},
    {FaultKind::DropReply, "drop-reply", everyReply, parseReply, "each reply is lost", oneReply},
    {FaultKind::CorruptReply, "corrupt-reply", everyReply, parseReply,
     "one bit of each reply is wrong", oneReply},
    {FaultKind::StrayByte, "stray-byte",
     "HH or HH@REPLY, where HH is two hex digits and REPLY is a number or a kind such as "
     "process-id",
     parseStrayByte, "the given byte is sent before each reply", strayByte},
    {FaultKind::WrongId, "wrong-id", "\"all\" or the number of a reply", parseIdReply,
     "one character of each returned process ID is wrong", oneReply},
    {FaultKind::ForeignReply, "foreign-reply", "\"block\", \"process-id\" or \"in-order\"",
     parseProof,
     "before each reply of the given kind, the printer sends a reply of this kind that belongs to "
     "another host's job",
     proofReply},
    {FaultKind::Silence, "silence", "the number of a reply", parseReplyNumber,
     "the reply with the given number and all later replies are lost", replyNumber},
    {FaultKind::CutAfterIn, "cut-after-in", "BYTES or BYTES:drain|at-once|reset", parseCut,
     "the link ends when the printer has received the given count of bytes", cutAfter},
    {FaultKind::CutAfterOut, "cut-after-out", "BYTES or BYTES:drain|at-once|reset", parseCut,
     "the link ends when the printer has sent the given count of bytes", cutAfter},
    {FaultKind::Cut, "cut", "\"drain\", \"at-once\" or \"reset\"", parseEnding, "the link ends now",
     cutNow},
    {FaultKind::PrintsNothing, "prints-nothing", "true", parseTrue,
     "all data is accepted but nothing is printed", Parts()},
    {FaultKind::At, "at",
     "MS:KEY=VALUE, where KEY is a printer setting or a fault other than \"at\"", parseAt,
     "after the given time a setting or a fault takes effect", later},
};

constexpr std::pair<Text, ReplyKind> replyNames[] = {
    {"block", ReplyKind::Block},      {"process-id", ReplyKind::ProcessId},
    {"in-order", ReplyKind::InOrder}, {"unasked", ReplyKind::Unasked},
    {"cleared", ReplyKind::Cleared},
};

const Form* formNamed(Text name) {
  const auto found = std::find_if(std::begin(commandForms), std::end(commandForms),
                                  [&](const Form& form) { return form.name == name; });
  return found == std::end(commandForms) ? nullptr : found;
}

std::string everyName() {
  std::string names = "seed";
  for (const Form& form : commandForms) {
    names.append(", ").append(form.name);
  }
  return names;
}

[[noreturn]] void refuse(Text name, Text value, Text takes) {
  throw std::invalid_argument(std::string(name) + " takes " + std::string(takes) + ", not " +
                              inQuotes(value));
}

}  // namespace

std::optional<ReplyKind> replyKindNamed(Text name) {
  const auto found = std::find_if(std::begin(replyNames), std::end(replyNames),
                                  [&](const auto& kind) { return kind.first == name; });
  return found == std::end(replyNames) ? std::nullopt : std::optional(found->second);
}

std::vector<FaultForm> faultForms() {
  static constexpr Part seed[] = {{"", "a whole number", Part::Kind::Number}};
  std::vector<FaultForm> forms;
  for (const Form& form : commandForms) {
    forms.push_back({form.name, form.takes, form.effect, form.parts});
  }
  forms.push_back({"seed", "a whole number", "the start value of all random choices", seed});
  return forms;
}

std::vector<Text> choicesOf(FaultPart::Kind kind) {
  switch (kind) {
    case FaultPart::Kind::Ending:
      return {"drain", "at-once", "reset"};
    case FaultPart::Kind::Proof:
      return {"block", "process-id", "in-order"};
    case FaultPart::Kind::Reply: {
      std::vector<Text> names = {"all"};
      for (const auto& [name, replyKind] : replyNames) {
        names.push_back(name);
      }
      return names;
    }
    default:
      return {};
  }
}

bool isFault(Text name) {
  return formNamed(name) != nullptr;
}

Fault parseFault(Text name, Text value) {
  const Form* form = formNamed(name);
  if (form == nullptr) {
    throw std::invalid_argument("there is no fault " + inQuotes(name) + "; there are " +
                                everyName());
  }
  Fault fault;
  fault.kind = form->kind;
  fault.name = name;
  fault.given = value;
  if (!form->parse(value, fault)) {
    refuse(name, value, form->takes);
  }
  return fault;
}

void Faults::add(Text name, Text value) {
  if (name != "seed") {
    list.push_back(parseFault(name, value));
    return;
  }
  const auto parsed = number(value);
  if (!parsed) {
    refuse(name, value, "a whole number");
  }
  seed = *parsed;
}

}  // namespace quordalvane::simulator
