#pragma once

#include <dlfcn.h>

namespace quordalvane::printer_app {

/// Returns the library's function of this name. This program defines a function of the same name,
/// which the framework calls instead, and which calls the library's.
template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace quordalvane::printer_app
