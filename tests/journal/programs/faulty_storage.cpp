// Loaded before a program (LD_PRELOAD), it makes the program's databases lie on a disk that fails:
// at the call number QUOR_FAILING_CALL, 0 for none, and at all later ones if QUOR_AND_ALL_LATER is
// set. How many calls there were is written into the file QUOR_STORAGE_CALLS when the program ends.
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
