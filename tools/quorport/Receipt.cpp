#include "tools/quorport/Receipt.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
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

bool isWritten(const std::string& bytes, const std::string& file) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return static_cast<bool>(out);
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

std::string writeFile(const std::string& bytes, const std::string& file) {
  return isWritten(bytes, file) ? "" : whyNotWritten(file);
}

std::string writeWholeFile(const std::string& bytes, const std::string& file) {
  const std::filesystem::path whole(file);
  const std::string part = whole.parent_path() / ("." + whole.filename().string() + ".part");
  if (isWritten(bytes, part) && std::rename(part.c_str(), file.c_str()) == 0) {
    return "";
  }
  std::string reason = whyNotWritten(file);
  std::remove(part.c_str());
  return reason;
}

std::string writePaper(const simulator::Paper& paper, const std::string& file,
                       decltype(writeFile)& write) {
  const std::string bytes = rendered(paper, file);
  if (bytes.empty() && isPicture(file)) {
    return "the receipt " + inQuotes(file) + " cannot be drawn";
  }
  return write(bytes, file);
}

Receipt::Receipt(std::string file, const std::shared_ptr<EAAccessory>& accessory)
    : file_(std::move(file)),
      accessory_(std::dynamic_pointer_cast<virtuals::VirtualAccessory>(accessory)) {
  if (accessory_ == nullptr) {
    throw CommandFailure(ExitCode::Usage,
                         "--receipt needs the virtual printer, but the port name chooses "
                         "another device; use --device virtual:");
  }
  // Opening the file for append does not change an older receipt, which the new one replaces later.
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
  return writePaper(paper, file_, writeFile);
}

}  // namespace quordalvane::tool
