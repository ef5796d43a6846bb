// The choice of a job's proof, and the confirmation by each kind of proof.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "job/PortMemory.h"
#include "job/ProcessIdProof.h"
#include "tests/support/Bytes.h"
#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;
using std::chrono::milliseconds;
using std::chrono::seconds;

struct Choice {
  const char* gives;
  ProofKind chosen;
};

class DefaultProof : public testing::TestWithParam<Choice> {};

INSTANTIATE_TEST_SUITE_P(Job, DefaultProof,
                         testing::Values(Choice{"block+process-id+in-order", ProofKind::Block},
                                         Choice{"block", ProofKind::Block},
                                         Choice{"process-id+in-order", ProofKind::ProcessId},
                                         Choice{"process-id", ProofKind::ProcessId},
                                         Choice{"in-order", ProofKind::InOrder}));

PrinterBuilder printerWith(const char* proofs) {
  PrinterBuilder builder;
  builder.set("proofs", proofs);
  return builder;
}

bool isReceiptOn(const ByteBuffer& paper) {
  return std::search(paper.begin(), paper.end(), receiptText.begin(), receiptText.end()) !=
         paper.end();
}

Till tillWith(PrinterBuilder printer) {
  return {std::move(printer), {.emulation = ZKEmulationESCPOS}};
}

TEST_P(DefaultProof, IsTheStrongestThatThePrinterSupports) {
  Till till = tillWith(printerWith(GetParam().gives));
  for (int i = 0; i < 2; ++i) {  // the second job already knows the proof
    const PrintResult result = PrintJob(till.port).run(receiptText);
    EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
    EXPECT_EQ(result.proof, GetParam().chosen) << nameOf(result.proof);
  }
}

TEST_P(DefaultProof, ConfirmsAJobOnlyAfterTheJobIsPrinted) {
  Till till = tillWith(printerWith(GetParam().gives).speed(100));
  const PrintResult result = PrintJob(till.port).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  const ByteBuffer paper = till.printed();
  EXPECT_TRUE(isReceiptOn(paper));
}

TEST(StrongestProof, IsChosenEvenIfAWeakerProofIsAnsweredFirst) {
  Till till = tillWith(printerWith("block+process-id+in-order"));
  till.reopenWith(with("late-reply", "50@block"));
  EXPECT_EQ(PrintJob(till.port).run(receiptText).proof, ProofKind::Block);
}

TEST(PrinterWithoutProof, LeavesTheJobUnconfirmedWithoutWaitingForAConfirmation) {
  Till till = tillWith(printerWith("none"));
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = PrintJob(till.port).run(receiptText);
  EXPECT_LT(till.platform->clock().monotonic() - start, seconds(4));
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.proof, ProofKind::None);
  EXPECT_EQ(
      result.reason,
      "the printer was asked how it confirms jobs and did not answer within 1 s; no confirmation "
      "after all 45 bytes");
}

TEST(PrinterWithoutProof, IsAskedForProofsOnlyOnceOnAPort) {
  Till till = tillWith(printerWith("none"));
  EXPECT_TRUE(PrintJob(till.port).run(receiptText).hasAskedForProof);
  const auto start = till.platform->clock().monotonic();
  const PrintResult second = PrintJob(till.port).run(receiptText);
  EXPECT_FALSE(second.hasAskedForProof);
  EXPECT_LT(till.platform->clock().monotonic() - start, milliseconds(500));
  EXPECT_EQ(second.outcome, PrintOutcome::Unconfirmed);
}

TEST(PrinterWithoutProof, StillOwesAnInOrderAnswerAfterTheJobHasEnded) {
  Till till = tillWith(printerWith("none"));
  EXPECT_TRUE(memoryOf(till.port).owed.empty());
  PrintJob(till.port).run(receiptText);
  EXPECT_TRUE(memoryOf(till.port).owed.contains(ProofKind::InOrder)) << "it may still arrive";
  Till answering = tillWith(printerWith("in-order"));
  PrintJob(answering.port).run(receiptText);
  EXPECT_TRUE(memoryOf(answering.port).owed.empty());
}

TEST(PrinterWithoutProof, IsAskedForProofsAgainAfterALateAnswer) {
  Till till = tillWith(printerWith("process-id"));
  till.reopenWith(with("late-reply", "1500@process-id"));
  EXPECT_EQ(PrintJob(till.port).run(receiptText).proof, ProofKind::None);
  till.platform->clock().usleep(2000000);
  till.reopenWith({});
  EXPECT_EQ(PrintJob(till.port).run(receiptText).proof, ProofKind::None) << "nothing was heard";
  till.reopenWith(with("stray-byte", "00@1"));
  EXPECT_EQ(PrintJob(till.port).run(receiptText).proof, ProofKind::ProcessId);
}

TEST(PrinterWithoutProof, RefusesALaterJobIfItsCoverIsOpen) {
  Till till = tillWith(printerWith("none"));
  PrintJob(till.port).run(receiptText);
  till.set("coverOpen", true);
  const PrintResult result = PrintJob(till.port).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "cover open");
}

TEST(ChosenProof, IsUsedWithoutAskingThePrinter) {
  Till till(printerWith("process-id+in-order"),
            {.emulation = ZKEmulationESCPOS, .proof = ProofKind::InOrder});
  const PrintResult result = PrintJob(till.port).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  EXPECT_EQ(result.proof, ProofKind::InOrder);
  EXPECT_FALSE(result.hasAskedForProof);
}

TEST(ChosenProof, OfAJobOverridesTheChoiceOfTheDevice) {
  Till till(printerWith("process-id+in-order"),
            {.emulation = ZKEmulationESCPOS, .proof = ProofKind::InOrder});
  EXPECT_EQ(PrintJob(till.port, {.proof = ProofKind::ProcessId}).run(receiptText).proof,
            ProofKind::ProcessId);
  const PrintResult asked = PrintJob(till.port, {.proof = ProofKind::Auto}).run(receiptText);
  EXPECT_EQ(asked.proof, ProofKind::ProcessId);
  EXPECT_TRUE(asked.hasAskedForProof);
}

TEST(ChosenProof, LeavesTheJobUnconfirmedIfTheChoiceIsNone) {
  Till till(printerWith("block"), {.emulation = ZKEmulationESCPOS, .proof = ProofKind::None});
  const PrintResult result = PrintJob(till.port).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.proof, ProofKind::None);
}

TEST(ChosenProof, CanBeNoneInAnUnknownEmulation) {
  Till till(PrinterBuilder(), {.emulation = ZKEmulationUnknown, .proof = ProofKind::None});
  EXPECT_THAT(PrintJob(till.port).run(receiptText).reason,
              testing::HasSubstr("no confirmation was requested"));
}

TEST(ProofName, IdentifiesItsProof) {
  for (const ProofWords& proof : proofWords) {
    EXPECT_EQ(proofNamed(proof.name), proof.kind);
    EXPECT_EQ(nameOf(proof.kind), proof.name);
  }
  EXPECT_EQ(proofNamed("Block"), std::nullopt);
}

class ProofByAQueryAfterTheData : public testing::TestWithParam<ProofKind> {
 protected:
  static PrintResult printBy(Till& till, PrintJob::Options options = {}) {
    options.proof = GetParam();
    return PrintJob(till.port, std::move(options)).run(receiptText);
  }
  static const char* name() { return nameOf(GetParam()).data(); }
};

INSTANTIATE_TEST_SUITE_P(Job, ProofByAQueryAfterTheData,
                         testing::Values(ProofKind::ProcessId, ProofKind::InOrder));

TEST_P(ProofByAQueryAfterTheData, WaitsForAPausedPrinterAndReportsTheCauseOfThePause) {
  Till till = tillWith(printerWith(name()).speed(10));
  till.after(milliseconds(2000), "coverOpen", true);
  till.after(milliseconds(5000), "coverOpen", false);
  std::vector<std::string> waits;
  const PrintResult result = printBy(till, {.progress = [&waits](const PrintProgress& progress) {
                                       waits.push_back(progress.waitsFor);
                                     }});
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  EXPECT_THAT(waits, testing::Contains("cover open"));
}

TEST_P(ProofByAQueryAfterTheData, LeavesTheJobUnconfirmedAndReportsTheCauseAfterTheEndTimeout) {
  Till till = tillWith(printerWith(name()).speed(10));
  till.port->setEndCheckedBlockTimeoutMillis(5000);
  till.after(milliseconds(2000), "coverOpen", true);
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = printBy(till);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_THAT(result.reason, testing::StartsWith("cover open"));
  EXPECT_LT(till.platform->clock().monotonic() - start, seconds(12));
}

TEST_P(ProofByAQueryAfterTheData, RefusesAPrinterThatIsNotReady) {
  Till till = tillWith(printerWith(name()).coverOpen());
  const PrintResult result = printBy(till);
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "cover open");
}

TEST_P(ProofByAQueryAfterTheData, LeavesTheJobUnconfirmedIfThePrinterLacksTheProof) {
  Till till = tillWith(printerWith("none"));
  EXPECT_EQ(printBy(till).outcome, PrintOutcome::Unconfirmed);
}

TEST_P(ProofByAQueryAfterTheData, IsUnaffectedByASimilarQueryInsideTheData) {
  for (const char* const question : {"1d 28 48 06 00 30 30 41 42 43 44", "1d 72 01"}) {
    for (const char* const wrapped : {"", "1d 76 30 00 0b 00 01 00 "}) {
      ByteBuffer data = test::bytes(std::string(wrapped) + question);
      data.resize(*wrapped == 0 ? data.size() : 8 + 11, 0x55);
      data.insert(data.end(), 200, 'x');
      Till till = tillWith(printerWith("process-id+in-order").speed(100));
      PrintJob job(till.port, {.proof = GetParam()});
      const PrintResult result = job.run(data);
      EXPECT_EQ(result.outcome, PrintOutcome::Printed) << wrapped << question << result.reason;
      const ByteBuffer paper = till.printed();
      EXPECT_EQ(std::count(paper.begin(), paper.end(), 'x'), 200) << wrapped << question;
    }
  }
}

TEST_P(ProofByAQueryAfterTheData, LeavesTheJobUnconfirmedIfTheDataClearsThePrintersBuffer) {
  Till till = tillWith(printerWith(name()));
  ByteBuffer data = receiptText;
  data.insert(data.end(), {0x10, 0x14, 0x08, 0x01, 0x03, 0x14, 0x01, 0x06, 0x02, 0x08});
  EXPECT_EQ(PrintJob(till.port, {.proof = GetParam()}).run(data).outcome,
            PrintOutcome::Unconfirmed);
}

/// A fault of the answer that should confirm the job, and whether the job is still confirmed.
struct SignFault {
  ProofKind proof;
  const char* name;
  const char* value;
  bool isConfirmed;
};

std::ostream& operator<<(std::ostream& out, const SignFault& fault) {
  return out << nameOf(fault.proof) << ", " << fault.name << "=" << fault.value;
}

class FaultyConfirmingAnswer : public testing::TestWithParam<SignFault> {};

INSTANTIATE_TEST_SUITE_P(
    Job, FaultyConfirmingAnswer,
    testing::Values(SignFault{ProofKind::ProcessId, "wrong-id", "all", false},
                    SignFault{ProofKind::ProcessId, "late-reply", "3000@process-id", true},
                    SignFault{ProofKind::ProcessId, "late-reply", "30000@process-id", false},
                    SignFault{ProofKind::ProcessId, "duplicate-reply", "process-id", true},
                    SignFault{ProofKind::ProcessId, "foreign-reply", "process-id", true},
                    SignFault{ProofKind::ProcessId, "split-reply", "1/2/3/4/5/6@process-id", true},
                    SignFault{ProofKind::ProcessId, "drop-reply", "process-id", false},
                    SignFault{ProofKind::InOrder, "late-reply", "3000@in-order", true},
                    SignFault{ProofKind::InOrder, "late-reply", "30000@in-order", false},
                    SignFault{ProofKind::InOrder, "duplicate-reply", "in-order", false},
                    SignFault{ProofKind::InOrder, "foreign-reply", "in-order", false},
                    SignFault{ProofKind::InOrder, "drop-reply", "in-order", false}));

TEST_P(FaultyConfirmingAnswer, IsAcceptedOnlyIfUnambiguousAndInTime) {
  Till till = tillWith(printerWith("process-id+in-order"));
  till.reopenWith(with(GetParam().name, GetParam().value));
  const PrintResult result = PrintJob(till.port, {.proof = GetParam().proof}).run(receiptText);
  EXPECT_EQ(result.outcome == PrintOutcome::Printed, GetParam().isConfirmed) << result.reason;
  EXPECT_NE(result.outcome, PrintOutcome::Refused);
}

TEST(InOrderProof, CannotBeFakedByAStrayByteWhileTheJobIsPrinted) {
  for (int reply = 4; reply <= 12; ++reply) {
    Till till = tillWith(printerWith("in-order").speed(10));
    till.reopenWith(with("stray-byte", ("00@" + std::to_string(reply)).c_str()));
    const PrintResult result = PrintJob(till.port, {.proof = ProofKind::InOrder}).run(receiptText);
    if (result.outcome == PrintOutcome::Printed) {
      EXPECT_EQ(till.printed().size(), receiptText.size()) << "before reply " << reply;
    }
  }
}

TEST(InOrderProof, CannotBeFakedByAnswersToOtherRequestsInTheData) {
  for (const char* const question : {"1b 76", "1b 75 00", "1b 06 01", "1d 28 45 02 00 04 01",
                                     "1d 28 4c 02 00 30 33", "1d 28 6b 03 00 31 52 30"}) {
    Till till = tillWith(printerWith("in-order").speed(10));
    ByteBuffer data = test::bytes(std::string(question) + " " + question + " " + question);
    data.insert(data.end(), receiptText.begin(), receiptText.end());
    const PrintResult result = PrintJob(till.port, {.proof = ProofKind::InOrder}).run(data);
    const ByteBuffer paper = till.printed();
    EXPECT_TRUE(result.outcome != PrintOutcome::Printed || isReceiptOn(paper)) << question;
  }
}

TEST(InOrderProof, CannotBeFakedByLateAnswersToAnEarlierJob) {
  Till till = tillWith(printerWith("in-order").speed(10));
  till.port->setEndCheckedBlockTimeoutMillis(1000);
  PrintJob::Options options{.proof = ProofKind::InOrder};
  ByteBuffer asking = receiptText;
  asking.insert(asking.end(), {0x1d, 0x72, 0x01, 0x1d, 0x72, 0x01});
  EXPECT_EQ(PrintJob(till.port, options).run(asking).outcome, PrintOutcome::Unconfirmed);
  till.port->setEndCheckedBlockTimeoutMillis(20000);
  const std::size_t both = receiptText.size() + asking.size() - 6;
  const PrintResult second = PrintJob(till.port, options).run(receiptText);
  EXPECT_EQ(second.outcome, PrintOutcome::Printed) << second.reason;
  EXPECT_GE(till.printed().size(), both);
}

TEST(CancelledJob, ClearsTheBufferOfAPrinterThatLacksCheckedBlocks) {
  for (const char* const proofs : {"process-id", "in-order", "none"}) {
    Till till = tillWith(printerWith(proofs).speed(200));
    PrintJob job(till.port);
    till.at(seconds(4), [&job] { job.cancel(); });
    const PrintResult result = job.run(ByteBuffer(5000, 'x'));
    EXPECT_EQ(result.obstacle, PrintObstacle::Cancelled);
    till.platform->clock().usleep(60000000);
    EXPECT_LT(till.printed().size(), 1500U) << proofs;
  }
}

TEST(ProcessIds, AreNewForEachJobAndReproducibleInVirtualTime) {
  test::VirtualPlatform one;
  test::VirtualPlatform other;
  const JobId first = randomProcessId(one);
  EXPECT_NE(first, randomProcessId(one));
  EXPECT_EQ(first, randomProcessId(other));
  for (int i = 0; i < 1000; ++i) {
    for (const std::uint8_t character : randomProcessId(one)) {
      EXPECT_TRUE(character >= 0x20 && character <= 0x7e);
    }
  }
}

TEST(LineModeBlock, IsRefusedIfAnotherHostEndsItsJobWhileTheBlockBegins) {
  bool isRefused = false;
  for (milliseconds moment(0); !isRefused && moment < seconds(3); moment += milliseconds(10)) {
    Till till(ZKEmulationQuorLine);
    till.reopenWith(with("late-reply", "200"));
    till.at(moment, [&till] {
      till.accessory->withPrinter([](simulator::VirtualPrinter& printer, auto now) {
        constexpr std::uint8_t markOfTheOther[] = {0x17};
        printer.receive(markOfTheOther, now);
      });
    });
    const PrintResult result = till.print(receiptText);
    constexpr unsigned ofBothHosts = 2;
    isRefused = result.outcome == PrintOutcome::Refused && result.status &&
                result.status->etbCounter == ofBothHosts;
  }
  EXPECT_TRUE(isRefused);
}

TEST(InOrderProof, IsAbandonedIfAnUnaskedAnswerArrivesDuringTheData) {
  Till till = tillWith(printerWith("in-order"));
  till.reopenWith(with("no-space", "30:2000"));
  till.at(milliseconds(1000), [&till] {
    till.accessory->withPrinter([](simulator::VirtualPrinter& printer, auto now) {
      constexpr std::uint8_t answer[] = {0x00};
      printer.reply(answer, now);
    });
  });
  const PrintResult result = PrintJob(till.port, {.proof = ProofKind::InOrder}).run(receiptText);
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.reason,
            "not every question to the printer had exactly one answer after all 45 bytes");
}

TEST(ProcessIds, DifferFromAllIdsRequestedInsideTheData) {
  ByteBuffer data;
  {
    test::VirtualPlatform sameNumbers;
    for (int i = 0; i < 20; ++i) {
      const auto command = processIdCommand(randomProcessId(sameNumbers));
      data.insert(data.end(), command.begin(), command.end());
    }
  }
  data.insert(data.end(), 200, 'x');
  Till till = tillWith(printerWith("process-id").speed(100));
  const PrintResult result = PrintJob(till.port, {.proof = ProofKind::ProcessId}).run(data);
  EXPECT_EQ(result.outcome, PrintOutcome::Printed) << result.reason;
  const ByteBuffer paper = till.printed();
  EXPECT_EQ(std::count(paper.begin(), paper.end(), 'x'), 200);
}

TEST(InOrderProof, DoesNotConfirmDataThatRequestsSimilarAnswers) {
  Till till = tillWith(printerWith("in-order"));
  const PrintResult result = PrintJob(till.port).run(ByteBuffer{'a', 0x1d, 0x49, 0x41, '\n'});
  EXPECT_EQ(result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.obstacle, PrintObstacle::NoProof);
  EXPECT_THAT(result.reason, testing::HasSubstr("in-order answers"));
}

}  // namespace
}  // namespace quordalvane
