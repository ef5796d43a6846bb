#include "iphone-IOPort/Guarded.h"

#include <exception>

#include "platform/ExceptionClass.h"

namespace quordalvane {

std::string thrownText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "Throws exception, class: " + currentExceptionClass();
  }
}

}  // namespace quordalvane
