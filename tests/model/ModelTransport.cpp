#include <algorithm>

#include "tests/model/ModelLog.h"

namespace quordalvane::test {

std::shared_ptr<NSOutputStream> Model::output() {
  return session_ ? session_->outputStream() : nullptr;
}

std::shared_ptr<NSInputStream> Model::input() {
  return session_ ? session_->inputStream() : nullptr;
}

void Model::slice(NSStream* awaited, double seconds) {
  NSRunLoop& runLoop = platform_.currentRunLoop();
  awaited ? runLoop.runUntilDate(seconds, *awaited) : runLoop.runUntilDate(seconds);
}

namespace {

bool hasSpace(const std::shared_ptr<NSOutputStream>& stream) {
  return stream && stream->hasSpaceAvailable();
}

bool hasBytes(const std::shared_ptr<NSInputStream>& stream) {
  return stream && stream->hasBytesAvailable();
}

/// The number of offered bytes that a stream can really have moved, whatever number it reports.
std::ptrdiff_t moved(std::int64_t said, std::size_t offered) {
  return std::clamp<std::int64_t>(said, 0, static_cast<std::int64_t>(offered));
}

}  // namespace

std::int32_t Model::write(const Bytes& data, bool mayBeAnswered) {
  const Log log(*this, "write:");
  const std::string failed = log.at(&data) + ", -> -1";
  log.start(shown(data));
  platform_.ignoreSigPipe();
  const auto stream = output();
  if (!hasSpace(stream)) {
    log.process("_session.outputStream.hasSpaceAvailable == NO, 0");
    slice(stream.get(), 0.10000000149011612);
  }
  std::uint32_t amountWritten = 0;
  bool goOn = hasSpace(stream);
  Bytes tail = data;
  while (goOn && !tail.empty()) {
    if (!isConnected()) {
      log.error("self.isConnected, 0");
      log.end(failed);
      return -1;
    }
    stream->setMayBeAnswered(mayBeAnswered);
    const std::int64_t written = stream->write(tail.data(), tail.size());
    if (written == -1) {
      log.error("Fail to [_session.outputStream write:writeBuffer maxLength:tempData.length], " +
                std::string(someAddress) + ", 0x0, " + std::to_string(tail.size()));
      log.end(failed);
      return -1;
    }
    const Bytes sent(tail.begin(), tail.begin() + moved(written, tail.size()));
    log.say(ZKLogTypeWrite,
            "EAAccessory, size: " + std::to_string(static_cast<std::uint64_t>(written)) +
                ", command: " + shown(sent));
    amountWritten += static_cast<std::uint32_t>(written);
    tail.assign(data.begin() + moved(amountWritten, data.size()), data.end());
    goOn = hasSpace(stream);
  }
  const auto result = static_cast<std::int32_t>(amountWritten);
  log.end(shown(data) + ", -> " + number(result));
  return result;
}

/// A read that only drops left-over bytes does not wait if the stream expects no bytes.
std::optional<Bytes> Model::read(std::size_t bytesToRead, bool waitsInAnyCase) {
  const Log log(*this, "read:");
  const std::string asked = std::to_string(bytesToRead);
  const auto lost = [&]() -> std::optional<Bytes> {
    log.error("self.isConnected, 0");
    log.end(asked + ", -> 0x0");
    return std::nullopt;
  };
  log.start(asked);
  if (!isConnected()) {
    return lost();
  }
  const auto stream = input();
  if (!hasBytes(stream)) {
    log.process("_session.outputStream.hasSpaceAvailable == NO, ",
                [this] { return number(hasSpace(output())); });
    if (waitsInAnyCase || !stream || stream->expectsBytes()) {
      slice(stream.get(), 0.1);
    }
  }
  Bytes received;
  bool goOn = hasBytes(stream);
  while (goOn && received.size() < bytesToRead) {
    if (!isConnected()) {
      return lost();
    }
    std::uint8_t buffer[128];
    const std::size_t size = std::min<std::size_t>(128, bytesToRead - received.size());
    const std::int64_t count = stream->read(buffer, size);
    if (count < 0) {
      log.error("Fail to [_session.inputStream read:buf maxLength:recvSize], " +
                std::string(someAddress) + ", " + someAddress + ", " + std::to_string(size));
      log.end(asked + ", -> 0x0");
      return std::nullopt;
    }
    const Bytes chunk(buffer, buffer + moved(count, size));
    log.say(ZKLogTypeRead,
            "EAAccessory, size: " + std::to_string(count) + ", command: " + shown(chunk));
    received = received + chunk;
    goOn = hasBytes(stream);
  }
  log.end(asked + ", -> " + shown(received));
  return received;
}

std::int32_t Model::writeWithRetry(const Bytes& whole, bool mayBeAnswered) {
  const Log log(*this, "writeWithRetry:");
  std::string address = log.at(&whole);
  log.start(address);
  const std::int64_t start = second();
  std::uint32_t total = 0;  // the sum wraps around, as in the port
  std::optional<Bytes> tail;
  const auto fail = [&](const std::string& error) {
    log.error(error);
    log.end(address + ", -> -1");
    return -1;
  };
  while (isConnected()) {
    const Bytes& command = tail ? *tail : whole;
    const std::int32_t written = write(command, mayBeAnswered);
    if (written == -1) {
      return fail("Fail to [self write:command]: <self>, " + address);
    }
    total += static_cast<std::uint32_t>(written);
    const auto amount = static_cast<std::int32_t>(total);
    const auto length = static_cast<std::int32_t>(command.size());
    if (amount == length) {
      log.end(address + ", -> " + number(amount));
      return amount;
    }
    if (amount < length) {
      const std::int64_t end = second();
      if (end - start > limit_) {
        return fail("end.tv_sec - start.tv_sec > timeoutSec, " + number(end) + ", " +
                    number(start) + ", " + number(limit_));
      }
      platform_.clock().usleep(50000);
      tail = Bytes(command.begin() + moved(amount, command.size()), command.end());
      address = someAddress;
    }
  }
  return fail("self.isConnected: 0");
}

}  // namespace quordalvane::test
