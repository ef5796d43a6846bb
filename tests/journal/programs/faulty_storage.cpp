// This library is loaded before a program (LD_PRELOAD). It makes the disk of the program's
// databases fail at the call number QUOR_FAILING_CALL (0: at no call), and at all later calls if
// QUOR_AND_ALL_LATER is set. When the program ends, the library writes the number of calls to the
// file QUOR_STORAGE_CALLS.
#include <cstdlib>
#include <fstream>

#include "tests/journal/FaultyStorage.h"

namespace {

class Preloaded {
 public:
  ~Preloaded() { std::ofstream(std::getenv("QUOR_STORAGE_CALLS")) << disk_.calls(); }

 private:
  quordalvane::test::FaultyStorage disk_{
      std::strtoull(std::getenv("QUOR_FAILING_CALL"), nullptr, 10),
      std::getenv("QUOR_AND_ALL_LATER") != nullptr};
};

const Preloaded preloaded;

}  // namespace
