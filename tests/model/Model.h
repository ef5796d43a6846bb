#pragma once

#include <quordalvane/QuorIOPort.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/model/ModelReplies.h"
#include "tests/support/Bytes.h"
#include "tests/support/Trace.h"

namespace quordalvane::test {

/// How a port is created.
struct Creation {
  std::optional<std::string> portName = "BT:";
  std::optional<std::string> portSettings = "";
  std::uint32_t timeout = 10000;
  std::int32_t emulation = 1;
};

/// An exception that an operation throws, as text.
struct Raised {
  std::string what;
};

/// A second implementation of every operation of a port. It was written from the documented
/// contracts alone, without the port's sources, helpers and parsers. It makes the same calls to the
/// platform as a port and lists the same records, so that tests can compare a run of the model with
/// a run of the port. It lives on one thread that is not the main thread.
class Model {
 public:
  /// The platform and the trace must outlive the model.
  Model(Creation creation, Platform& platform, Trace& trace);

  bool open();
  void close();
  bool isConnected();
  std::int32_t write(const Bytes& data, bool mayBeAnswered = true);
  std::optional<Bytes> read(std::size_t bytesToRead, bool waitsInAnyCase = true);
  std::int32_t writeWithRetry(const Bytes& command, bool mayBeAnswered = true);
  bool getParsedStatus(QuorPrinterStatus_2* status, std::uint32_t level);
  bool getOnlineStatus(bool* onlineStatus);
  bool beginCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level, std::int64_t* code);
  bool endCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level);
  bool startDataCancel();
  bool retrieveFirmwareInformation();
  bool retrieveFirmwareInformation2();
  bool retrieveESCPOSFirmwareInformation();
  bool retrieveDipSwitchInformation();
  std::optional<Bytes> retrieveDipSwitchInformation(std::uint8_t bank);
  std::int64_t retrieveButtonSecurityTimeout();
  bool enterATMode();
  std::optional<std::string> getPrinterResponseWithSettingTitle(std::optional<std::string> title,
                                                                std::int32_t length,
                                                                std::int32_t timeoutMillis);
  bool disconnect();
  bool disconnectBluetoothConnection();

  void setEndCheckedBlockTimeoutMillis(std::uint32_t millis) { endMillis_ = millis; }
  void setHoldPrintTimeoutMillis(std::uint32_t millis) { holdMillis_ = millis; }
  void setDataTimeoutSeconds(std::int64_t seconds) { dataTimeoutSeconds_ = seconds; }
  std::uint32_t endCheckedBlockTimeoutMillis() const { return endMillis_; }
  std::uint32_t holdPrintTimeoutMillis() const { return holdMillis_; }
  std::int64_t dataTimeoutSeconds() const { return dataTimeoutSeconds_; }
  std::optional<std::string> firmwareInformation() const { return firmware_; }
  std::vector<Bytes> dipSwitchInformation() const { return banks_; }
  bool isBrondel() const { return isBrondel_; }
  std::optional<bool> result71() const { return result_; }
  std::optional<std::string> name() const { return name_; }
  std::optional<std::string> serialNumber() const { return serialNumber_; }
  std::uint64_t connectionID() const { return connectionID_; }

 private:
  class Log;

  void parseDataTimeoutOption();
  void open71();
  bool openSession(const Log& log);
  void close71();
  static bool survives(const Log& log, const std::function<void()>& work);
  void select();
  bool fits(EAAccessory& accessory, const std::optional<std::string>& designation);
  bool isDesignated(EAAccessory& accessory, const std::string& designation);
  void adopt(const std::shared_ptr<EAAccessory>& accessory);

  std::int64_t second() { return platform_.clock().gettimeofday().tv_sec; }
  bool isLate(const Log& log, std::int64_t start, std::int32_t limit, const std::string& limitName);
  std::shared_ptr<NSOutputStream> output();
  std::shared_ptr<NSInputStream> input();
  void slice(NSStream* awaited, double seconds);

  bool sends(const Bytes& command) {
    return writeWithRetry(command, isAnswered(command)) >=
           static_cast<std::int32_t>(command.size());
  }
  bool lineStatus(const Log& log, QuorPrinterStatus_2* status, const std::string& entry);
  bool lineReply(const Log& log, QuorPrinterStatus_2* status, const std::string& entry);
  bool escposStatus(const Log& log, QuorPrinterStatus_2* status, const std::string& entry);
  bool escposQuery(const Log& log, QuorPrinterStatus_2* status, const std::string& entry,
                   unsigned type, std::int64_t start);
  bool beginWait(const Log& log, QuorPrinterStatus_2* status, std::int64_t* code);
  bool endInLineMode(const Log& log, QuorPrinterStatus_2* status, std::uint32_t level,
                     std::int64_t start);
  bool isReported(const Log& log, std::int64_t start);
  bool endInEscPos(const Log& log, QuorPrinterStatus_2* status, std::uint32_t level,
                   std::int64_t start);
  std::optional<std::uint8_t> nextByte(const Log& log, std::int64_t start);
  void sayEmpty(const Log& log, const std::optional<Bytes>& data);
  std::optional<Bytes> askForField(const Log& log, const char* header, std::int32_t& location,
                                   bool (*find)(const Bytes&, std::int32_t&, std::int32_t&),
                                   std::int32_t& length);

  const Creation creation_;
  Platform& platform_;
  Trace& trace_;
  const std::shared_ptr<const void> receiver_;  // receives the streams' events
  const std::int32_t limit_;                    // the input/output time-out in whole seconds
  std::uint32_t endMillis_;
  std::uint32_t holdMillis_ = 0;
  std::int64_t dataTimeoutSeconds_ = -1;
  std::optional<std::string> firmware_;
  std::vector<Bytes> banks_;
  bool isBrondel_ = false;
  std::optional<bool> result_;
  std::optional<std::string> name_;
  std::optional<std::string> serialNumber_;
  std::uint64_t connectionID_ = 0;
  std::shared_ptr<EAAccessory> accessory_;
  std::shared_ptr<EASession> session_;
};

}  // namespace quordalvane::test
