#include "tools/quorport/web/ReceiptShelf.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/CommandListing.h"
#include "text/Hex.h"
#include "tools/quorport/TimeText.h"

namespace quordalvane::tool {
namespace {

constexpr std::size_t shownBytes = 64;  // how many bytes of a command are shown

http::Text shared(std::string text) {
  return std::make_shared<const std::string>(std::move(text));
}

simulator::ByteView bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string timeText(std::int64_t milliseconds) {
  return utcText(std::chrono::system_clock::time_point(std::chrono::milliseconds(milliseconds)));
}

Json commandsIn(const simulator::Listing& listing, simulator::ByteView job) {
  Json commands = Json::array();
  for (const simulator::ListedCommand& command : listing.commands) {
    const auto shown = std::min<std::uint64_t>(command.length, shownBytes);
    commands.push_back({{"offset", command.offset},
                        {"length", command.length},
                        {"bytes", hexText(job.subspan(command.offset, shown))},
                        {"name", command.name},
                        {"meaning", command.meaning}});
    if (!command.isKnown) {
      commands.back()["unknown"] = true;
    }
  }
  return commands;
}

}  // namespace

std::size_t ReceiptShelf::Receipt::weight() const {
  std::size_t sum = sizeof *this + record->size() + text->size() + received->size();
  sum += picture == nullptr ? 0 : picture->size();
  for (const http::Text& piece : pieces) {
    sum += piece->size();
  }
  return sum;
}

std::size_t ReceiptShelf::add(ReceiptWriter::Done job, const Origin& origin, std::int64_t time) {
  const auto record = shared(std::move(job.line));
  const simulator::Bytes& bytes = job.record.received();
  const auto received = shared({bytes.begin(), bytes.end()});
  for (DrawnReceipt& drawn : job.receipts) {
    Receipt receipt{.id = ++latest_,
                    .origin = origin,
                    .time = time,
                    .report = job.report,
                    .byteCount = job.record.receivedCount(),
                    .cuts = job.record.cuts(),
                    .width = drawn.width,
                    .height = drawn.height,
                    .record = record,
                    .text = shared(std::move(drawn.text)),
                    .received = received,
                    .picture = drawn.picture.empty() ? nullptr : shared(std::move(drawn.picture)),
                    .pieces = {}};
    for (std::string& piece : drawn.pieces) {
      receipt.pieces.push_back(shared(std::move(piece)));
    }
    bytes_ += receipt.weight();
    receipts_.push_back(std::move(receipt));
  }
  while (receipts_.size() > mostReceipts || (bytes_ > mostBytes && receipts_.size() > 1)) {
    bytes_ -= receipts_.front().weight();
    receipts_.pop_front();
  }
  return std::min(job.receipts.size(), receipts_.size());
}

const ReceiptShelf::Receipt* ReceiptShelf::find(std::uint64_t id) const {
  const auto found = std::find_if(receipts_.begin(), receipts_.end(),
                                  [id](const Receipt& receipt) { return receipt.id == id; });
  return found == receipts_.end() ? nullptr : &*found;
}

Json ReceiptShelf::summary(const Receipt& receipt) {
  return {{"id", receipt.id},
          {"printer", receipt.origin.printer},
          {"job", receipt.report.job},
          {"ok", receipt.report.ok},
          {"time", timeText(receipt.time)},
          {"width", receipt.width},
          {"height", receipt.height},
          {"pieceRows", DrawnReceipt::pieceRows},
          {"bytes", receipt.byteCount},
          {"cuts", receipt.cuts},
          {"address", "receipts/" + std::to_string(receipt.id)}};
}

Json ReceiptShelf::list(std::optional<std::uint64_t> before) const {
  Json list = Json::array();
  for (auto receipt = receipts_.rbegin(); receipt != receipts_.rend(); ++receipt) {
    if (list.size() == mostListed) {
      break;
    }
    if (!before || receipt->id < *before) {
      list.push_back(summary(*receipt));
    }
  }
  return list;
}

Json ReceiptShelf::describe(std::uint64_t id, std::uint64_t from) const {
  const Receipt* receipt = find(id);
  if (receipt == nullptr) {
    return {};
  }
  const simulator::ByteView job = bytesOf(*receipt->received);
  const auto listing = simulator::listCommands(job, receipt->origin.dialect, from, mostCommands);
  Json json = summary(*receipt);
  json["printerName"] = receipt->report.printer;
  json["text"] = *receipt->text;
  json["record"] = Json::parse(*receipt->record);
  json["kept"] = job.size();
  json["commands"] = commandsIn(listing, job);
  json["next"] = listing.next < job.size() ? Json(listing.next) : Json();
  return json;
}

http::Text ReceiptShelf::piece(std::uint64_t id, std::uint64_t row) const {
  const Receipt* receipt = find(id);
  if (receipt == nullptr || row % DrawnReceipt::pieceRows != 0) {
    return nullptr;
  }
  if (receipt->pieces.empty()) {
    return row == 0 ? receipt->picture : nullptr;
  }
  const std::uint64_t index = row / DrawnReceipt::pieceRows;
  return index < receipt->pieces.size() ? receipt->pieces[index] : nullptr;
}

http::Text ReceiptShelf::file(std::uint64_t id, const std::string& kind) const {
  const Receipt* receipt = find(id);
  if (receipt == nullptr) {
    return nullptr;
  }
  if (kind == "png") {
    return receipt->picture;
  }
  return kind == "bin" ? receipt->received : kind == "txt" ? receipt->text : nullptr;
}

}  // namespace quordalvane::tool
