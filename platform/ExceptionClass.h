#pragma once

#include <string>

namespace quordalvane {

/// Returns the readable name of the class of the exception that is being handled, for example
/// "app::Fault" or "int". Returns "unknown" outside a handler and for exceptions of other
/// languages.
std::string currentExceptionClass();

}  // namespace quordalvane
