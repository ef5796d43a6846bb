#include "simulator/Printing.h"

namespace quordalvane::simulator {

void Printing::pass(std::uint8_t byte) {
  if (scanner_.feed(byte)) {
    typesetter_.set(scanner_.bytes());
  }
}

}  // namespace quordalvane::simulator
