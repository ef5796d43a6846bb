#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/Text.h"
#include "simulator/PrinterState.h"
#include "tools/quorport/simulate/Control.h"

using namespace quordalvane;
using namespace std::chrono_literals;
using fuzz::require;

/// The input is control lines for a running printer. Each line must be answered with one line, a
/// printable JSON object. A refused line must change nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  simulator::VirtualPrinter printer{simulator::PrinterState()};
  tool::Links links(printer, {});
  tool::Control control;
  control.add("", printer, links, {});
  links.begin(0s);
  const std::string_view look = R"({"get":"state"})";
  std::istringstream lines(std::string(data, data + size));
  for (std::string line; std::getline(lines, line);) {
    const std::string before = control.answer(look, 1s);
    const std::string text = control.answer(line, 1s);
    require(fuzz::isHarmless(text));
    const auto answer = tool::Json::parse(text);
    const bool isRefused = !answer.at("ok").get<bool>();
    require(isRefused == answer.contains("error"));
    require(!isRefused || control.answer(look, 1s) == before);
  }
  return 0;
}
