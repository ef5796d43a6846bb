#pragma once

#include <mutex>
#include <optional>

#include <quordalvane/QuorIOPort.h>

namespace quordalvane::cups {

/// The state of the printer and of the job's data, for filters that ask during the job. May be used
/// from any thread.
class PrinterState {
 public:
  /// The state of the job's data.
  enum class Data {
    Collected,  ///< the back end is still collecting or printing the data
    Printed,    ///< the printer has confirmed all data
    Lost,       ///< the printer will not confirm the data
  };

  void setStatus(const QuorPrinterStatus_2& status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
  }

  void setData(Data data) {
    const std::lock_guard lock(mutex_);
    data_ = data;
  }

  /// Returns the last status; empty if there is none yet.
  std::optional<QuorPrinterStatus_2> status() const {
    const std::lock_guard lock(mutex_);
    return status_;
  }

  Data data() const {
    const std::lock_guard lock(mutex_);
    return data_;
  }

 private:
  mutable std::mutex mutex_;  // guards the members below
  std::optional<QuorPrinterStatus_2> status_;
  Data data_ = Data::Collected;
};

}  // namespace quordalvane::cups
