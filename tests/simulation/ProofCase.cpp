#include "tests/simulation/ProofCase.h"

#include <algorithm>
#include <ostream>

#include "tests/support/Dice.h"

namespace quordalvane::simulation {
namespace {

using test::Dice;

constexpr std::initializer_list<std::uint8_t> idQuestion = {0x1d, 0x28, 0x48, 0x06, 0x00, 0x30,
                                                            0x30, 'A',  'B',  'C',  'D'};
constexpr std::initializer_list<std::uint8_t> inOrderQuestion = {0x1d, 0x72, 0x01};
// The answer to this question looks like the answer to inOrderQuestion. The in-order proof counts
// such answers, so it does not confirm a job that contains this question.
constexpr std::initializer_list<std::uint8_t> paperQuestion = {0x1b, 0x76};

/// A line of letters that no other line has.
ByteBuffer line(Dice& dice) {
  ByteBuffer letters;
  for (std::uint64_t i = dice.between(12, 40); i > 0; --i) {
    letters.push_back(static_cast<std::uint8_t>(dice.between('a', 'z')));
  }
  letters.push_back('\n');
  return letters;
}

/// An image whose dots contain the bytes of a question. A host sends such a question to learn
/// whether the printer has printed a job.
ByteBuffer image(Dice& dice) {
  constexpr std::uint8_t width = 32;
  ByteBuffer command = {0x1d, 0x76, 0x30, 0, width, 0, 1, 0};
  const auto question = dice.among({idQuestion, inOrderQuestion});
  command.insert(command.end(), question.begin(), question.end());
  while (command.size() < 8 + width) {
    command.push_back(dice.byte());
  }
  return command;
}

Receipt receipt(Dice& dice, bool isHonest) {
  Receipt made;
  for (std::uint64_t i = dice.between(1, 6); i > 0; --i) {
    made.parts.push_back(dice.oneIn(5) ? image(dice) : line(dice));
    made.data.insert(made.data.end(), made.parts.back().begin(), made.parts.back().end());
    if (dice.oneIn(20)) {
      const auto question = isHonest ? dice.among({idQuestion, inOrderQuestion})
                                     : dice.among({idQuestion, inOrderQuestion, paperQuestion});
      made.data.insert(made.data.end(), question.begin(), question.end());
    }
  }
  return made;
}

const char* anyKind(Dice& dice) {
  return dice.among<const char*>({"block", "process-id", "in-order"});
}

std::string anyReply(Dice& dice) {
  return dice.oneIn(2) ? anyKind(dice) : std::to_string(dice.between(1, 20));
}

// Each fault adds at most one byte that looks like an answer to inOrderQuestion. The in-order proof
// counts the answers. So it can detect one such byte, but not two.
void addFault(Case& made, Dice& dice) {
  auto add = [&made](const char* name, const std::string& value) {
    made.faults.emplace_back(name, value);
  };
  switch (dice.below(11)) {
    case 0:
      return add("late-reply", std::to_string(dice.between(1, 6000)) + "@" + anyReply(dice));
    case 1:
      return add("late-reply", std::to_string(dice.between(1, 900)));
    case 2:
      return add("duplicate-reply", anyReply(dice));
    case 3:
      return add("drop-reply", anyReply(dice));
    case 4:
      // The fault never affects all in-order replies. If every in-order reply were sent twice and
      // split, each reply would add a false answer.
      return add("split-reply",
                 dice.among<const char*>({"1@", "1/2@", "2/5@"}) +
                     (dice.oneIn(2) ? dice.among<const char*>({"block", "process-id"})
                                    : std::to_string(dice.between(1, 20))));
    case 5:
      return add("stray-byte",
                 dice.among<const char*>({"12@", "32@", "37@", "10@", "1b@", "13@", "5f@"}) +
                     anyReply(dice));
    case 6:
      return add("wrong-id", dice.oneIn(2) ? "all" : std::to_string(dice.between(1, 20)));
    case 7:
      return add("foreign-reply", anyKind(dice));
    case 8:
      return add("silence", std::to_string(dice.between(1, 20)));
    case 9:
      return add(dice.among<const char*>({"cut-after-in", "cut-after-out"}),
                 std::to_string(dice.between(1, 300)));
    default:
      return add("prints-nothing", "true");
  }
}

void addTroubles(Case& made, Dice& dice) {
  made.faults.emplace_back("seed", std::to_string(made.seed));
  for (std::uint64_t i = dice.below(4); i > 0; --i) {
    addFault(made, dice);
  }
  if (dice.oneIn(4)) {
    made.faults.emplace_back("stray-byte", "00@" + std::to_string(dice.between(1, 20)));
  }
  if (dice.oneIn(2)) {
    const std::string flag = dice.among<const char*>({"coverOpen", "receiptPaperEmpty"});
    const auto begin = std::chrono::milliseconds(dice.between(0, 4000));
    made.turns.push_back({begin, flag, true});
    made.turns.push_back({begin + std::chrono::milliseconds(dice.between(1, 6000)), flag, false});
  }
}

}  // namespace

std::vector<ProofKind> everyProof() {
  std::vector<ProofKind> kinds;
  for (const ProofWords& proof : proofWords) {
    if (proof.kind != ProofKind::None) {
      kinds.push_back(proof.kind);
    }
  }
  return kinds;
}

ProofCase makeProofCase(std::uint64_t seed) {
  Dice dice(seed);
  ProofCase made;
  Case& common = made.common;
  common.seed = seed;
  common.emulation = ZKEmulationESCPOS;
  common.proof = dice.oneIn(5) ? ProofKind::Auto : dice.among(everyProof());
  made.gives = dice.among<const char*>({"none", "block", "process-id", "in-order",
                                        "block+process-id", "block+in-order", "process-id+in-order",
                                        "block+process-id+in-order"});
  common.printer.emplace_back("proofs", made.gives);
  common.printer.emplace_back("speed", dice.among<const char*>({"0", "40", "100", "1000"}));
  made.isHonest = dice.oneIn(3);
  common.timeoutMillis = made.isHonest ? 10000 : dice.among<std::uint32_t>({1000, 2000, 5000});
  common.endTimeoutMillis = made.isHonest ? 20000 : dice.among<std::uint32_t>({0, 1000, 5000});
  if (!made.isHonest) {
    addTroubles(common, dice);
    if (dice.oneIn(3)) {
      made.ofAnotherHost = line(dice);
    }
  }
  for (std::uint64_t i = dice.between(1, 2); i > 0; --i) {
    made.receipts.push_back(receipt(dice, made.isHonest));
  }
  return made;
}

bool gives(const ProofCase& given, ProofKind proof) {
  return proof == ProofKind::Auto ? given.gives != "none"
                                  : given.gives.find(nameOf(proof)) != std::string::npos;
}

bool isOn(const ByteBuffer& paper, const Receipt& receipt) {
  auto from = paper.begin();
  for (const ByteBuffer& part : receipt.parts) {
    const auto found = std::search(from, paper.end(), part.begin(), part.end());
    if (found == paper.end()) {
      return false;
    }
    from = found + static_cast<std::ptrdiff_t>(part.size());
  }
  return true;
}

bool isNotOn(const ByteBuffer& paper, const Receipt& receipt) {
  return std::none_of(receipt.parts.begin(), receipt.parts.end(), [&](const ByteBuffer& part) {
    return std::search(paper.begin(), paper.end(), part.begin(), part.end()) != paper.end();
  });
}

std::ostream& operator<<(std::ostream& out, const ProofCase& given) {
  return out << given.common << ", proof " << nameOf(given.common.proof) << " of " << given.gives
             << ", " << given.receipts.size() << " receipts"
             << (given.ofAnotherHost ? ", after another host's" : "");
}

}  // namespace quordalvane::simulation
