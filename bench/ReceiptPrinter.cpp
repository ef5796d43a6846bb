#include "bench/ReceiptPrinter.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "bench/Peer.h"

namespace quordalvane::bench {
namespace {

constexpr std::size_t longestCommand = 11;
constexpr std::uint8_t statusByte = 0x12;

}  // namespace

ReceiptPrinter::ReceiptPrinter(int descriptor, Core core, Confirms confirms,
                               std::chrono::milliseconds printingTime)
    : descriptor_(descriptor), confirms_(confirms), printingTime_(printingTime), turns_(1) {
  thread_ = std::thread([this, core] {
    bindTo(core);
    run();
    ::close(descriptor_);
  });
}

ReceiptPrinter::~ReceiptPrinter() {
  thread_.join();
}

void ReceiptPrinter::forget() {
  const std::lock_guard lock(mutex_);
  turns_.assign(1, {});
}

std::vector<ReceiptPrinter::Turn> ReceiptPrinter::turns() const {
  const std::lock_guard lock(mutex_);
  return turns_;
}

void ReceiptPrinter::run() {
  std::array<std::uint8_t, 4096> buffer;
  while (true) {
    if (printedAt_.load() != Instant::max()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(
          printedAt_.load() - std::chrono::steady_clock::now());
      pollfd input{.fd = descriptor_, .events = POLLIN, .revents = 0};
      if (left.count() <= 0 || ::poll(&input, 1, static_cast<int>(left.count())) == 0) {
        signWhenPrinted();
        continue;
      }
    }
    const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
    if (count <= 0) {
      return;
    }
    std::for_each(buffer.begin(), buffer.begin() + count, [this](auto byte) { hear(byte); });
  }
}

void ReceiptPrinter::hear(std::uint8_t byte) {
  {
    const std::lock_guard lock(mutex_);
    turns_.back().heard.push_back(byte);
  }
  if (byte == firstOfReceipt) {
    heardDataAt_ = std::chrono::steady_clock::now();
  }
  last_.push_back(byte);
  if (last_.size() > longestCommand) {
    last_.erase(last_.begin());
  }
  const bool isLineMode = confirms_ == Confirms::Count;
  const bool knowsBlock = isLineMode || confirms_ == Confirms::Report;
  if (endsWith({0x1b, 0x1e, 0x45, 0x00}) || endsWith({0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00})) {
    counter_ = 0;
  } else if (isLineMode && byte == 0x17) {
    ++marks_;
    confirm({});
  } else if (isLineMode && endsWith({0x1b, 0x06, 0x01})) {
    answer(status());
  } else if (knowsBlock && endsWith({0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00})) {
    ++marks_;
    confirm({0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, static_cast<std::uint8_t>(counter_ + 1), 0x00});
  } else if (!isLineMode && endsWith({0x10, 0x04, -1})) {
    answer(std::array{statusByte});
  } else if (confirms_ == Confirms::ProcessId &&
             endsWith({0x1d, 0x28, 0x48, 0x06, 0x00, 0x30, 0x30, -1, -1, -1, -1})) {
    confirm({0x37, 0x22, last_[7], last_[8], last_[9], last_[10], 0x00});
  } else if (confirms_ == Confirms::InOrder && endsWith({0x1d, 0x72, -1})) {
    confirm({0x00});
  }
}

/// Returns true if the last bytes are `command`, in which -1 stands for any byte.
bool ReceiptPrinter::endsWith(std::initializer_list<int> command) const {
  return last_.size() >= command.size() &&
         std::equal(command.begin(), command.end(),
                    last_.end() - static_cast<std::ptrdiff_t>(command.size()),
                    [](int wanted, std::uint8_t byte) { return wanted == -1 || wanted == byte; });
}

void ReceiptPrinter::answer(std::span<const std::uint8_t> bytes) {
  {
    const std::lock_guard lock(mutex_);
    turns_.back().answer.assign(bytes.begin(), bytes.end());
    turns_.emplace_back();
  }
  sendAll(descriptor_, bytes);
}

/// Sends the confirmation when everything before it has been printed, or at once if there was no
/// receipt before it.
void ReceiptPrinter::confirm(std::vector<std::uint8_t> sign) {
  sign_ = std::move(sign);
  const auto now = std::chrono::steady_clock::now();
  const bool prints = heardDataAt_.load() > confirmedAt_.load();
  printedAt_ = std::min(printedAt_.load(), prints ? now + printingTime_ : now);
  if (printedAt_.load() <= now) {
    signWhenPrinted();
  }
}

void ReceiptPrinter::signWhenPrinted() {
  printedAt_ = Instant::max();
  counter_ = static_cast<std::uint8_t>(counter_ + std::exchange(marks_, 0));
  if (heardDataAt_.load() > confirmedAt_.load()) {
    confirmedAt_ = std::chrono::steady_clock::now();
  }
  if (const auto sign = std::exchange(sign_, {}); !sign.empty()) {
    answer(sign);
  }
}

std::vector<std::uint8_t> ReceiptPrinter::status() const {
  return {0x89, 0x01, 0x00, 0x00, 0x00, 0x20, counter_, 0x00, 0x00};
}

}  // namespace quordalvane::bench
