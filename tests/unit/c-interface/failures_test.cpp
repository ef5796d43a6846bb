#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "c-interface/Failures.h"
#include "iphone-IOPort/exceptions/PortException.h"

namespace quordalvane::c {
namespace {

template <typename Exception>
QuorCode codeOf(const Exception& exception) {
  return guarded([&] { throw exception; });
}

TEST(CInterface, MapsEachKindOfExceptionToItsCode) {
  EXPECT_EQ(codeOf(CallFailure(QUOR_STOPPED, "stopped")), QUOR_STOPPED);
  EXPECT_EQ(codeOf(PortException("lost")), QUOR_PORT_EXCEPTION);
  EXPECT_EQ(codeOf(std::out_of_range("cut")), QUOR_UNREADABLE);
  EXPECT_EQ(codeOf(std::invalid_argument("none")), QUOR_USAGE);
  EXPECT_EQ(codeOf(std::length_error("long")), QUOR_NO_MEMORY);
  EXPECT_EQ(codeOf(std::bad_alloc()), QUOR_NO_MEMORY);
  EXPECT_EQ(codeOf(std::runtime_error("other")), QUOR_UNEXPECTED);
  EXPECT_EQ(codeOf(7), QUOR_UNEXPECTED);
}

TEST(CInterface, LastErrorIsTheTextOfTheException) {
  codeOf(PortException("the link is lost"));
  EXPECT_STREQ(quor_last_error(), "the link is lost");
}

TEST(CInterface, CutsAnErrorTextAfter511Bytes) {
  codeOf(std::runtime_error(std::string(10000, 'x')));
  const std::string kept = quor_last_error();
  EXPECT_EQ(kept.size(), 511U);
  EXPECT_EQ(kept.find_first_not_of('x'), std::string::npos);
}

TEST(CInterface, ASuccessfulCallDoesNotClearTheLastError) {
  codeOf(PortException("lost"));
  EXPECT_EQ(guarded([] {}), QUOR_OK);
  EXPECT_EQ(guarded([] { return QuorCode{QUOR_NONE}; }), QUOR_NONE);
  EXPECT_STREQ(quor_last_error(), "lost");
}

TEST(CInterface, ReturnsTheValueOfACallOrZeroIfTheCallThrows) {
  EXPECT_EQ(answered([] { return 7; }), 7);
  EXPECT_EQ(answered([]() -> int { throw PortException("lost"); }), 0);
}

TEST(CInterface, AnExceptionOfTheProgressFunctionIsCaughtAndLeavesTheJobUnconfirmed) {
  const char* const spec = "virtual:";
  QuorPort* port = nullptr;
  QuorPrintJob* job = nullptr;
  const QuorProgress fail = [](void*, std::uint64_t, std::uint64_t) {
    throw std::runtime_error("no room on the screen");
  };
  ASSERT_EQ(quor_connect_devices(&spec, 1), QUOR_OK);
  ASSERT_EQ(quor_port_create(nullptr, nullptr, 3000, QUOR_EMULATION_LINE, &port), QUOR_OK);
  ASSERT_EQ(quor_port_open(port), QUOR_OK);
  ASSERT_EQ(quor_print_job_create(port, 1, fail, nullptr, &job), QUOR_OK);
  EXPECT_EQ(quor_print_job_run(job, "text\n", 5), QUOR_UNEXPECTED);
  EXPECT_STREQ(quor_last_error(), "no room on the screen");
  EXPECT_EQ(quor_print_job_outcome(job), QUOR_UNCONFIRMED);
  EXPECT_EQ(quor_print_job_bytes_total(job), 5U);
  quor_print_job_free(job);
  quor_port_close(port);
  quor_port_free(port);
}

}  // namespace
}  // namespace quordalvane::c
