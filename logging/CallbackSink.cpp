#include "logging/CallbackSink.h"

#include <exception>

#include "text/PrintableText.h"

namespace quordalvane {
namespace {

std::string printable(std::string_view text) {
  std::string result;
  appendPrintable(result, text);
  return result;
}

}  // namespace

void CallbackSink::write(std::span<const LogRecord> records) {
  std::exception_ptr failure;
  for (const LogRecord& record : records) {
    try {
      call(record);
    } catch (...) {
      failure = failure ? failure : std::current_exception();
    }
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}

void CallbackSink::call(const LogRecord& record) {
  if (isPrintable(record.message) && isPrintable(record.object)) {
    callback_(record);
    return;
  }
  LogRecord shown = record;
  shown.object = printable(record.object);
  shown.message = printable(record.message);
  callback_(shown);
}

}  // namespace quordalvane
