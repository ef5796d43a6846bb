// The operations that move bytes: `write`, `read`, `readLeftovers` and `writeWithRetry`.

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <span>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/LogWriter.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/Subrange.h"
#include "iphone-IOPort/WholeSeconds.h"

namespace quordalvane {
namespace {

constexpr auto writeSelector = "-[ExternalAccessoryPort write:]";
constexpr auto readSelector = "-[ExternalAccessoryPort read:]";
constexpr std::size_t MAX_READ_SIZE = 128;

struct Deallocation {
  void operator()(void* memory) const noexcept { ::operator delete(memory); }
};

/// Memory without an object in it. It is allocated by a direct call of `operator new`, because a
/// compiler may remove the expression `new T` if nobody uses the object.
using RawMemory = std::unique_ptr<void, Deallocation>;

// A null stream means that there is no session. Without a session there is no space, and there are
// no bytes.
bool hasSpaceAvailable(const std::shared_ptr<NSOutputStream>& stream) {
  return stream != nullptr && stream->hasSpaceAvailable();
}

bool hasBytesAvailable(const std::shared_ptr<NSInputStream>& stream) {
  return stream != nullptr && stream->hasBytesAvailable();
}

/// Returns the count that a stream reports, limited to the range from 0 to `offered`. A faulty
/// stream may report any number.
std::uint64_t movedBytes(std::int64_t claimed, std::size_t offered) {
  return claimed < 0 ? 0 : std::min(static_cast<std::uint64_t>(claimed), std::uint64_t{offered});
}

/// Adds two counts as 32-bit integers that wrap around.
std::int32_t wrappingSum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

}  // namespace

std::shared_ptr<NSInputStream> ExternalAccessoryPort::inputStream() const {
  const auto session = _session.get();
  return session == nullptr ? nullptr : session->inputStream();
}

std::shared_ptr<NSOutputStream> ExternalAccessoryPort::outputStream() const {
  const auto session = _session.get();
  return session == nullptr ? nullptr : session->outputStream();
}

void ExternalAccessoryPort::runSlice(NSStream* awaited, double seconds) {
  auto& runLoop = platform_->currentRunLoop();
  if (awaited == nullptr) {
    runLoop.runUntilDate(seconds);
  } else {
    runLoop.runUntilDate(seconds, *awaited);
  }
}

std::int32_t ExternalAccessoryPort::write(const ByteBuffer& data) {
  return offer(data, &data, Reply::Possible);
}

std::int32_t ExternalAccessoryPort::write(std::span<const std::uint8_t> data, Reply reply) {
  return offer(data, data.data(), reply);
}

/// Does the work of `write`. The log names the data by `object`, the address of the caller's
/// object.
std::int32_t ExternalAccessoryPort::offer(std::span<const std::uint8_t> data, const void* object,
                                          Reply reply) {
  constexpr auto selector = writeSelector;
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@",
           LogWriter::createByteArrayDescription(data.data(), data.size()));
  platform_->ignoreSigPipe();
  const auto stream = outputStream();
  if (!hasSpaceAvailable(stream)) {
    QUOR_LOG(ZKLogTypeProcess, 0, "_session.outputStream.hasSpaceAvailable == NO, %d", 0);
    runSlice(stream.get(), secInterval2());
  }
  std::uint32_t amountWritten = 0;
  std::span<const std::uint8_t> tempData = data;
  bool hasSpace = hasSpaceAvailable(stream);
  while (hasSpace && !tempData.empty()) {
    const auto bytesWritten = writeChunk(*stream, tempData, reply);
    if (!bytesWritten) {
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", object, -1);
      return -1;
    }
    amountWritten += static_cast<std::uint32_t>(*bytesWritten);
    tempData = data.subspan(std::min<std::size_t>(amountWritten, data.size()));
    hasSpace = hasSpaceAvailable(stream);
  }
  const auto result = static_cast<std::int32_t>(amountWritten);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, -> %d", data, result);
  if (amountWritten == 0 && observer_ != nullptr) {
    observer_->bytesWritten({});
  }
  return result;
}

/// Offers all unsent bytes to the stream. Returns the count that the stream reports; null if the
/// whole write must fail. A negative count other than -1 is not an error.
std::optional<std::int64_t> ExternalAccessoryPort::writeChunk(
    NSOutputStream& stream, std::span<const std::uint8_t> tempData, Reply reply) {
  constexpr auto selector = writeSelector;
  if (!isConnected()) {
    QUOR_LOG(ZKLogTypeError, 0, "self.isConnected, %d", 0);
    return std::nullopt;
  }
  // A write must fail if there is no memory for a copy of its data. So the memory is allocated, but
  // nothing is copied: the stream reads the caller's data, which is faster.
  const RawMemory writeBuffer(::operator new(tempData.size(), std::nothrow));
  if (writeBuffer == nullptr) {
    QUOR_LOG(ZKLogTypeError, 0, "writeBuffer == NULL, %p", nullptr);
    return std::nullopt;
  }
  stream.setMayBeAnswered(reply == Reply::Possible);
  const std::int64_t bytesWritten = stream.write(tempData.data(), tempData.size());
  if (bytesWritten == -1) {
    QUOR_LOG(ZKLogTypeError, 0,
             "Fail to [_session.outputStream write:writeBuffer maxLength:tempData.length], %p, %p, "
             "%lu",
             &stream, nullptr, tempData.size());
    return std::nullopt;
  }
  const auto taken = tempData.first(movedBytes(bytesWritten, tempData.size()));
  QUOR_LOG(ZKLogTypeWrite, 0, "EAAccessory, size: %lu, command: %@", bytesWritten,
           LogWriter::createByteArrayDescription(taken.data(), taken.size()));
  if (observer_ != nullptr) {
    observer_->bytesWritten(taken);
  }
  return bytesWritten;
}

std::optional<ByteBuffer> ExternalAccessoryPort::read(std::size_t bytesToRead) {
  return observed(receive(bytesToRead, Patience::Always));
}

std::optional<ByteBuffer> ExternalAccessoryPort::readLeftovers(std::size_t bytesToRead) {
  return observed(receive(bytesToRead, Patience::WhereExpected));
}

std::optional<ByteBuffer> ExternalAccessoryPort::observed(std::optional<ByteBuffer> recvBuffer) {
  if (observer_ != nullptr) {
    recvBuffer ? observer_->bytesRead(*recvBuffer) : observer_->readFailed();
  }
  return recvBuffer;
}

std::optional<ByteBuffer> ExternalAccessoryPort::receive(std::size_t bytesToRead,
                                                         Patience patience) {
  constexpr auto selector = readSelector;
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%lu", bytesToRead);
  if (!isConnected()) {
    QUOR_LOG(ZKLogTypeError, 0, "self.isConnected, %d", 0);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%lu, -> %p", bytesToRead, nullptr);
    return std::nullopt;
  }
  const auto stream = inputStream();
  if (!hasBytesAvailable(stream)) {
    // This function reads, but the log record has the text of `write`, because programs that read
    // the log expect this text.
    QUOR_LOG(ZKLogTypeProcess, 0, "_session.outputStream.hasSpaceAvailable == NO, %d",
             hasSpaceAvailable(outputStream()));
    if (patience == Patience::Always || stream == nullptr || stream->expectsBytes()) {
      runSlice(stream.get(), 0.1);
    }
  }
  ByteBuffer recvBuffer;
  bool hasBytes = hasBytesAvailable(stream);
  while (hasBytes && recvBuffer.size() < bytesToRead) {
    if (!readChunk(*stream, recvBuffer, bytesToRead)) {
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%lu, -> %p", bytesToRead, nullptr);
      return std::nullopt;
    }
    hasBytes = hasBytesAvailable(stream);
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%lu, -> %@", bytesToRead,
           LogWriter::createByteArrayDescription(recvBuffer));
  return recvBuffer;
}

/// Reads from the stream once and appends the bytes. Returns false if the whole read must fail.
bool ExternalAccessoryPort::readChunk(NSInputStream& stream, ByteBuffer& recvBuffer,
                                      std::size_t bytesToRead) {
  constexpr auto selector = readSelector;
  if (!isConnected()) {
    QUOR_LOG(ZKLogTypeError, 0, "self.isConnected, %d", 0);
    return false;
  }
  std::array<std::uint8_t, MAX_READ_SIZE> buf;
  const std::size_t recvSize = std::min(MAX_READ_SIZE, bytesToRead - recvBuffer.size());
  const std::int64_t readSize = stream.read(buf.data(), recvSize);
  if (readSize < 0) {
    QUOR_LOG(ZKLogTypeError, 0,
             "Fail to [_session.inputStream read:buf maxLength:recvSize], %p, %p, %lu", &stream,
             buf.data(), recvSize);
    return false;
  }
  const auto received = movedBytes(readSize, recvSize);
  QUOR_LOG(ZKLogTypeRead, 0, "EAAccessory, size: %lu, command: %@", readSize,
           LogWriter::createByteArrayDescription(buf.data(), received));
  recvBuffer.insert(recvBuffer.end(), buf.begin(),
                    buf.begin() + static_cast<std::ptrdiff_t>(received));
  return true;
}

std::int32_t ExternalAccessoryPort::writeWithRetry(const ByteBuffer& command) {
  return retryWrite(command, Reply::Possible);
}

/// Does the work of `writeWithRetry`. `reply` says whether the printer may answer the command.
std::int32_t ExternalAccessoryPort::retryWrite(const ByteBuffer& givenCommand, Reply reply) {
  constexpr auto selector = "-[ExternalAccessoryPort writeWithRetry:]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%p", &givenCommand);
  WholeSecondsWait wait(platform_->clock(), timeout_);
  const ByteBuffer* command = &givenCommand;
  ByteBuffer tail;
  std::int32_t amountWritten = 0;
  while (isConnected()) {
    const std::int32_t writtenSize = offer(*command, command, reply);
    if (writtenSize == -1) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [self write:command]: %p, %p", this, command);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", command, -1);
      return -1;
    }
    amountWritten = wrappingSum(amountWritten, writtenSize);
    const auto length = static_cast<std::int32_t>(command->size());
    if (amountWritten == length) {
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", command, amountWritten);
      return amountWritten;
    }
    if (amountWritten < length) {
      if (wait.isOver()) {
        QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeoutSec, %ld, %ld, %d",
                 wait.end(), wait.start(), wait.timeoutSec());
        QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", command, -1);
        return -1;
      }
      usleep(microseconds(secInterval1()));
      // After a second attempt, `*command` is only a rest of the command, but the offset also
      // counts the bytes that were sent before this rest. The comment on the declaration of
      // `writeWithRetry` says why.
      const std::int32_t offset = std::max(amountWritten, 0);
      const Range subDataRange = {.location = offset, .length = length - offset};
      tail = subrange(*command, subDataRange);
      command = &tail;
    }
  }
  QUOR_LOG(ZKLogTypeError, 0, "self.isConnected: %d", 0);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", command, -1);
  return -1;
}

void ExternalAccessoryPort::usleep(std::int32_t microseconds) {
  platform_->clock().usleep(static_cast<std::uint64_t>(microseconds));
}

bool ExternalAccessoryPort::writeWhole(const ByteBuffer& command, Reply reply) {
  return retryWrite(command, reply) >= static_cast<std::int32_t>(command.size());
}

}  // namespace quordalvane
