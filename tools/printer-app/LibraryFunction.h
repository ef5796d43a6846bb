#pragma once

#include <dlfcn.h>

namespace quordalvane::printer_app {

/// Returns the library's function of this name. This program defines its own function of this name,
/// which the framework calls instead, and which itself calls the library's function.
template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace quordalvane::printer_app
