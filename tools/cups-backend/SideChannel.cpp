#include "tools/cups-backend/SideChannel.h"

#include <sys/socket.h>
#include <sys/stat.h>

#include <array>
#include <utility>

#include "job/StatusText.h"

namespace quordalvane::cups {
namespace {

// A message is a command, a status, the length of its data in two bytes, and the data. The
// functions for messages in the print system's library are not used here, because that library
// loads two dozen others. While a back end loads libraries, it has not yet started its witness
// process (see Witness.h). If the back end is killed during this time, nobody notices.
constexpr std::size_t headSize = 4;
constexpr std::size_t longestData = 65535;

// A back end that is started by hand has no side channel; the descriptor may then be any file.
int channelIfGiven() {
  struct stat found {};
  return ::fstat(CUPS_SC_FD, &found) == 0 && S_ISSOCK(found.st_mode) ? CUPS_SC_FD : -1;
}

}  // namespace

SideChannel::SideChannel(const PrinterState& state, std::string deviceId,
                         std::function<bool()> isJobWhole)
    : state_(state),
      deviceId_(std::move(deviceId)),
      isJobWhole_(std::move(isJobWhole)),
      descriptor_(channelIfGiven()) {}

/// One read gets exactly one question, because a filter waits for an answer before it asks again.
bool SideChannel::serve() {
  std::array<char, headSize + longestData> message{};
  const ssize_t count = ::recv(descriptor_, message.data(), message.size(), MSG_DONTWAIT);
  if (count < static_cast<ssize_t>(headSize)) {
    return false;
  }
  answer(static_cast<cups_sc_command_t>(message.front()));
  return true;
}

/// A job is printed only when it is complete. A filter that waited until the first half is printed
/// would wait for ever, because this back end would wait for the second half.
void SideChannel::answer(cups_sc_command_t command) {
  switch (command) {
    case CUPS_SC_CMD_DRAIN_OUTPUT:
      if (!isJobWhole_()) {
        return write(command, CUPS_SC_STATUS_NOT_IMPLEMENTED);
      }
      isDrainOwed_ = true;
      answerOwed();
      return;
    case CUPS_SC_CMD_GET_BIDI:
      return write(command, CUPS_SC_STATUS_OK, {CUPS_SC_BIDI_SUPPORTED});
    case CUPS_SC_CMD_GET_DEVICE_ID:
      return write(command, CUPS_SC_STATUS_OK, deviceId_);
    case CUPS_SC_CMD_GET_STATE:
      if (const auto status = state_.status()) {
        return write(command, CUPS_SC_STATUS_OK, {stateBitsOf(*status)});
      }
      return write(command, CUPS_SC_STATUS_NO_RESPONSE);
    default:
      return write(command, CUPS_SC_STATUS_NOT_IMPLEMENTED);
  }
}

void SideChannel::answerOwed() {
  if (!isDrainOwed_ || state_.data() == PrinterState::Data::Collected) {
    return;
  }
  isDrainOwed_ = false;
  write(CUPS_SC_CMD_DRAIN_OUTPUT,
        state_.data() == PrinterState::Data::Printed ? CUPS_SC_STATUS_OK : CUPS_SC_STATUS_IO_ERROR);
}

/// This function never waits, because the filter that asked is either reading or has ended.
void SideChannel::write(cups_sc_command_t command, cups_sc_status_t status,
                        const std::string& data) {
  std::string message = {static_cast<char>(command), static_cast<char>(status),
                         static_cast<char>(data.size() >> 8U), static_cast<char>(data.size())};
  message += data;
  static_cast<void>(
      ::send(descriptor_, message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
}

char stateBitsOf(const QuorPrinterStatus_2& status) {
  int bits = status.offline != 0 ? CUPS_SC_STATE_OFFLINE : CUPS_SC_STATE_ONLINE;
  if (!errorsIn(status).empty()) {
    bits |= CUPS_SC_STATE_ERROR;
  }
  if (status.receiptPaperNearEmptyInner != 0 || status.receiptPaperNearEmptyOuter != 0) {
    bits |= CUPS_SC_STATE_MEDIA_LOW;
  }
  if (status.receiptPaperEmpty != 0) {
    bits |= CUPS_SC_STATE_MEDIA_EMPTY;
  }
  return static_cast<char>(bits);
}

}  // namespace quordalvane::cups
