#include "simulator/BluetoothModule.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quordalvane::simulator {
namespace {

using namespace std::chrono_literals;

constexpr Instant guardTime = 1s;
constexpr Instant timeToDrop = 300ms;
constexpr std::uint8_t escape = 0x2f;
constexpr std::size_t escapeLength = 3;

constexpr std::string_view askAddress = "AT*AILBA?";
constexpr std::string_view dropLink = "AT*AMWS=10,0,0,0,1,0";

// The length of the longest known command. If a command is longer, the module keeps one byte more
// than this length. So the kept bytes differ from every known command.
constexpr std::size_t longestCommand = dropLink.size();

}  // namespace

BluetoothModule::BluetoothModule(std::string address, Outlets outlets, Instant now)
    : address_(std::move(address)), outlets_(std::move(outlets)), lastReceived_(now) {}

void BluetoothModule::receive(ByteView bytes, Instant now) {
  if (bytes.empty()) {
    return;
  }
  advance(now);
  if (commandMode_) {
    for (std::uint8_t byte : bytes) {
      receiveCommand(byte, now);
    }
  } else {
    const bool mayBeEscape = !escape_.empty() || now - lastReceived_ >= guardTime;
    lastReceived_ = now;
    receiveData(bytes, mayBeEscape);
  }
}

void BluetoothModule::receiveData(ByteView bytes, bool mayBeEscape) {
  const bool onlyEscape =
      std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == escape; });
  if (mayBeEscape && onlyEscape && escape_.size() + bytes.size() <= escapeLength) {
    escape_.insert(escape_.end(), bytes.begin(), bytes.end());
    return;
  }
  release(lastReceived_);
  outlets_.toPrinter(bytes, lastReceived_);
}

void BluetoothModule::advance(Instant now) {
  const auto due = nextEvent();
  if (!due || *due > now) {
    return;
  }
  if (dropAt_) {
    dropped_ = true;
    dropAt_.reset();
  } else if (escape_.size() == escapeLength) {
    commandMode_ = true;
    escape_.clear();
  } else {
    release(*due);
  }
}

std::optional<Instant> BluetoothModule::nextEvent() const {
  if (dropAt_) {
    return dropAt_;
  }
  if (!escape_.empty()) {
    return lastReceived_ + guardTime;
  }
  return std::nullopt;
}

void BluetoothModule::release(Instant now) {
  const auto kept = std::exchange(escape_, {});
  if (!kept.empty()) {
    outlets_.toPrinter(kept, now);
  }
}

void BluetoothModule::receiveCommand(std::uint8_t byte, Instant now) {
  if (byte == '\r') {
    return obey(now);
  }
  if (command_.size() <= longestCommand) {
    command_ += static_cast<char>(byte);
  }
}

void BluetoothModule::obey(Instant now) {
  const std::string command = std::exchange(command_, {});
  if (command == askAddress) {
    reply("\r\n*AILBA:" + address_ + "\r\n\r\nOK\r\n", now);
  } else if (command == dropLink) {
    reply("\r\nOK\r\n", now);
    if (!dropAt_) {
      dropAt_ = now + timeToDrop;
    }
  } else {
    reply("\r\nERROR\r\n", now);
  }
}

void BluetoothModule::reply(const std::string& text, Instant now) {
  const Bytes bytes(text.begin(), text.end());
  outlets_.toHost(bytes, now);
}

}  // namespace quordalvane::simulator
