#pragma once

#include <string>

namespace quordalvane {

/// The readable name of the class of the exception that is being handled, "int" or "app::Fault" for
/// example; "unknown" outside a handler and for foreign exceptions.
std::string currentExceptionClass();

}  // namespace quordalvane
