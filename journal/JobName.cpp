#include "journal/JobName.h"

#include <stdexcept>

#include "text/PrintableText.h"

namespace quordalvane {

void checkJobName(std::string_view name) {
  constexpr std::size_t longest = 255;
  if (name.empty() || name.size() > longest || !isPrintable(name)) {
    throw std::invalid_argument(
        "the name of a job takes 1 to 255 bytes of UTF-8 without control characters");
  }
}

}  // namespace quordalvane
