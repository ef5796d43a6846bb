#include "tools/quorport/SchemeHelp.h"

#include "backends/Schemes.h"
#include "platform/ProofKind.h"

namespace quordalvane::tool {
namespace {

std::string linesOf(const Scheme& scheme) {
  constexpr std::size_t column = 18;
  std::string line = "  " + std::string(scheme.name) + ":" + std::string(scheme.place);
  line += std::string(column > line.size() ? column - line.size() : 1, ' ');
  line += std::string(scheme.about) + "\n";
  for (const SchemeKey& key : scheme.keys) {
    line +=
        std::string(column, ' ') + std::string(key.name) + ": " + std::string(key.values) + "\n";
  }
  if (!scheme.moreKeys.empty()) {
    line += std::string(column, ' ') + std::string(scheme.moreKeys) + "\n";
  }
  return line;
}

}  // namespace

std::string schemeHelp() {
  std::string text = "A SPEC is one of these forms, followed by any number of ,key=value:\n";
  for (const Scheme* const scheme : schemes()) {
    text += linesOf(*scheme);
  }
  return text +
         "Every form takes the keys name, serial, model, manufacturer, protocol (repeatable),\n"
         "address, id and proof (" +
         proofNames() +
         ": how the printer\n"
         "confirms jobs). A host without a scheme means tcp:HOST:9100; a path such as "
         "/dev/ttyUSB0\n"
         "needs no scheme.\n";
}

}  // namespace quordalvane::tool
