#include "platform/ExceptionClass.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace quordalvane {

std::string currentExceptionClass() {
  const std::type_info* type = abi::__cxa_current_exception_type();
  if (type == nullptr) {
    return "unknown";
  }
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> name(
      abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), std::free);
  return status == 0 ? name.get() : type->name();
}

}  // namespace quordalvane
