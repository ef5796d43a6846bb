#pragma once

#include <dlfcn.h>

namespace quordalvane::printer_app {

/// Returns the library's function of this name; null if there is no such function. This program
/// defines a function of the same name, so the framework calls the program's function in place of
/// the library's. The program's function uses this template to call the library's function.
template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace quordalvane::printer_app
