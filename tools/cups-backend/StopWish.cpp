#include "tools/cups-backend/StopWish.h"

namespace quordalvane::cups {

void StopWish::cancel() {
  const std::lock_guard lock(mutex_);
  if (job_ != nullptr) {
    job_->cancel();
  } else {
    leave_();
  }
}

void StopWish::leaveWhenIdle() {
  const std::lock_guard lock(mutex_);
  isAlone_ = true;
  if (job_ == nullptr) {
    leave_();
  }
}

void StopWish::beginJob(PrintJob& job) {
  const std::lock_guard lock(mutex_);
  job_ = &job;
}

void StopWish::endJob() {
  const std::lock_guard lock(mutex_);
  job_ = nullptr;
  if (isAlone_) {
    leave_();
  }
}

}  // namespace quordalvane::cups
