#include "backends/posix/LinkAccessory.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "backends/posix/LinkSession.h"

namespace quordalvane::posix {

LinkAccessory::LinkAccessory(AccessoryIdentity identity, Connector connect)
    : IdentifiedAccessory(std::move(identity)), connect_(std::move(connect)) {}

bool LinkAccessory::isConnected() {
  const std::lock_guard lock(mutex_);
  return !newest_ || !newest_->isLost();
}

void LinkAccessory::noticeLoss() {
  const std::lock_guard lock(mutex_);
  if (newest_) {
    newest_->noticeLoss();
  }
}

std::shared_ptr<EASession> LinkAccessory::openSession(const std::string& protocol) {
  const auto announced = protocolStrings();
  if (std::find(announced.begin(), announced.end(), protocol) == announced.end()) {
    return failed("the accessory does not announce the protocol \"" + protocol + "\"");
  }
  try {
    const auto link = std::make_shared<Link>(connect_());
    const std::lock_guard lock(mutex_);
    newest_ = link;
    lastError_.clear();
    lastErrorCode_.clear();
    return std::make_shared<LinkSession>(link);
  } catch (const std::system_error& error) {
    return failed(error.what(), error.code());
  } catch (const std::exception& error) {
    return failed(error.what());
  }
}

std::string LinkAccessory::lastError() {
  const std::lock_guard lock(mutex_);
  return lastError_;
}

std::error_code LinkAccessory::lastErrorCode() {
  const std::lock_guard lock(mutex_);
  return lastErrorCode_;
}

std::string LinkAccessory::portState() {
  const std::lock_guard lock(mutex_);
  return newest_ ? newest_->portState() : "";
}

std::shared_ptr<EASession> LinkAccessory::failed(std::string why, std::error_code code) {
  const std::lock_guard lock(mutex_);
  lastError_ = std::move(why);
  lastErrorCode_ = code;
  return nullptr;
}

}  // namespace quordalvane::posix
