#pragma once

#include <dlfcn.h>

namespace quordalvane::printer_app {

/// The library's function of this name, for a function of the same name with which this program
/// gets in front of it: the framework then calls this program's.
template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace quordalvane::printer_app
