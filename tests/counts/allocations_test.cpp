#include "tests/counts/Allocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "bench/OpenPort.h"
#include "bench/Peer.h"
#include "iphone-IOPort/LogStatement.h"
#include "job/PrintJob.h"

// These tests measure the memory that is taken from the heap. The memory shows how often bytes were
// copied from one buffer into another.

namespace quordalvane {
namespace {

struct Speaker {
  void say(const std::vector<std::uint8_t>& bytes) const {
    constexpr auto selector = "-[Speaker say:]";
    QUOR_LOG(ZKLogTypeProcess, 0, "%@, %lu, %f, %@", bytes, bytes.size(), 0.5,
             LogWriter::createByteArrayDescription(bytes));
  }
};

TEST(AllocationCounter, CountsEachAllocationAndItsBytes) {
  // The test calls operator new by name, because the compiler may remove a new expression whose
  // memory is not used.
  const auto taken = allocationsOf([] { ::operator delete(::operator new(1000)); });
  EXPECT_EQ(taken.count, 1U);
  EXPECT_EQ(taken.bytes, 1000U);
}

TEST(AllocationCounts, ALogStatementAllocatesNothingWhileLoggingIsOff) {
  ASSERT_FALSE(LogWriter::isLogging());
  const std::vector<std::uint8_t> bytes(100);
  const auto taken = allocationsOf([&] { Speaker().say(bytes); });
  EXPECT_EQ(taken.count, 0U) << "neither a message nor a description is made without memory";
}

TEST(AllocationCounts, ALogStatementAllocatesNothingIfItsLevelIsOff) {
  LogWriter::setLogging(true);
  LogWriter::setTargetLogLevels({1});
  const std::vector<std::uint8_t> bytes(100);
  const auto taken = allocationsOf([&] { Speaker().say(bytes); });
  LogWriter::setTargetLogLevels({0});
  LogWriter::setLogging(false);
  EXPECT_EQ(taken.count, 0U);
}

// Every buffer that a job allocates is filled once. So the size of the allocated memory is the
// number of bytes that the job copies.
TEST(AllocationCounts, AJobCopiesItsBytesAtMostTwice) {
  for (const bench::Medium medium : {bench::Medium::Tcp, bench::Medium::Local}) {
    bench::Peer peer(bench::Core::Second);
    const auto endpoint = bench::makeEndpoint(medium);
    bench::OpenPort port(endpoint->device(), ZKEmulationESCPOS);
    peer.drain(endpoint->accept(), [](std::size_t) {});
    const std::vector<std::uint8_t> data(std::size_t{8} << 20U, ' ');
    PrintJob job(port.shared(), {.proof = ProofKind::None});
    PrintResult result;
    const auto taken = allocationsOf([&] { result = job.run(data); });
    EXPECT_EQ(result.bytesAccepted, data.size());
    EXPECT_LE(taken.bytes, 2 * data.size());
  }
}

}  // namespace
}  // namespace quordalvane
