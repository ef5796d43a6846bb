#include "c-interface/Failures.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "iphone-IOPort/exceptions/PortException.h"
#include "job/PrinterInquiry.h"

namespace quordalvane::c {
namespace {

// The text is in a fixed array, so that even a lack of memory can be reported.
thread_local std::array<char, 512> lastError{};

QuorCode keep(QuorCode code, const char* text) noexcept {
  const std::size_t size = std::min(std::strlen(text), lastError.size() - 1);
  std::copy_n(text, size, lastError.begin());
  lastError[size] = '\0';
  return code;
}

QuorCode codeOf(InquiryCause cause) noexcept {
  switch (cause) {
    case InquiryCause::NoAnswer:
      return QUOR_FAILED;
    case InquiryCause::NotUnderstood:
      return QUOR_UNREADABLE;
    case InquiryCause::NotReady:
      return QUOR_NOT_READY;
    case InquiryCause::LinkLost:
      return QUOR_PORT_EXCEPTION;
    case InquiryCause::UnknownEmulation:
      return QUOR_USAGE;
  }
  return QUOR_UNEXPECTED;
}

}  // namespace

QuorCode codeOfCurrentException() noexcept {
  try {
    throw;
  } catch (const CallFailure& failure) {
    return keep(failure.code(), failure.what());
  } catch (const InquiryError& failure) {
    return keep(codeOf(failure.cause()), failure.what());
  } catch (const PortException& failure) {
    return keep(QUOR_PORT_EXCEPTION, failure.what());
  } catch (const std::out_of_range& failure) {
    return keep(QUOR_UNREADABLE, failure.what());
  } catch (const std::invalid_argument& failure) {
    return keep(QUOR_USAGE, failure.what());
  } catch (const std::length_error&) {
    return keep(QUOR_NO_MEMORY, "the bytes do not fit into memory");
  } catch (const std::bad_alloc&) {
    return keep(QUOR_NO_MEMORY, "no memory is left");
  } catch (const std::exception& failure) {
    return keep(QUOR_UNEXPECTED, failure.what());
  } catch (...) {
    return keep(QUOR_UNEXPECTED, "an exception without a text");
  }
}

}  // namespace quordalvane::c

const char* quor_last_error(void) {
  return quordalvane::c::lastError.data();
}

const char* quor_version(void) {
  return QUOR_VERSION;
}
