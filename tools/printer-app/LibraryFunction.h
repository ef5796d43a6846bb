#pragma once

#include <dlfcn.h>

namespace quordalvane::printer_app {

/// Returns the library's function of this name. This program defines functions of the same names;
/// the framework calls these, and they call the library's.
template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace quordalvane::printer_app
