#include "tools/quorport/Receipt.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "backends/virtual/VirtualAccessory.h"
#include "simulator/TextRendering.h"
#include "simulator/drawing/ImageRendering.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"

namespace quordalvane::tool {
namespace {

std::string whyNotWritten(const std::string& file) {
  return "the receipt " + inQuotes(file) +
         " cannot be written: " + std::generic_category().message(errno);
}

bool isPicture(const std::string& file) {
  return file.ends_with(".png");
}

std::string rendered(const simulator::Paper& paper, const std::string& file) {
  if (!isPicture(file)) {
    return simulator::renderText(paper);
  }
  const std::vector<std::uint8_t> png = simulator::renderPng(paper);
  return {png.begin(), png.end()};
}

}  // namespace

std::string writePaper(const simulator::Paper& paper, const std::string& file) {
  const std::string bytes = rendered(paper, file);
  if (bytes.empty() && isPicture(file)) {
    return "the receipt " + inQuotes(file) + " cannot be drawn";
  }
  return writeFile(bytes, file);
}

std::string writeFile(const std::string& bytes, const std::string& file) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return out ? "" : whyNotWritten(file);
}

Receipt::Receipt(std::string file, const std::shared_ptr<EAAccessory>& accessory)
    : file_(std::move(file)),
      accessory_(std::dynamic_pointer_cast<virtuals::VirtualAccessory>(accessory)) {
  if (accessory_ == nullptr) {
    throw CommandFailure(ExitCode::Usage,
                         "--receipt shows the paper of the virtual printer, but the port "
                         "name chooses another device; use --device virtual:");
  }
  // Opening the file for append does not change an older receipt; a new one replaces it later.
  if (!std::ofstream(file_, std::ios::app)) {
    throw CommandFailure(ExitCode::Usage,
                         "--receipt: " + whyNotWritten(file_) + "; nothing was sent");
  }
}

std::string Receipt::write() {
  simulator::Paper paper;
  accessory_->withPrinter([&paper](simulator::VirtualPrinter& printer, simulator::Instant) {
    paper = printer.tearOff();
  });
  return writePaper(paper, file_);
}

}  // namespace quordalvane::tool
