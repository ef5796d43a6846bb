#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/AtomicProperty.h"
#include "iphone-IOPort/TransferObserver.h"
#include "iphone-IOPort/ZKQuorIOResultCode.h"
#include "iphone-IOPort/enum.h"
#include "iphone-IOPort/exceptions/PortException.h"
#include "platform/Platform.h"

/// The library: ports to receipt printers, print jobs, the log, and the interfaces to the operating
/// system.
namespace quordalvane {

class WholeSecondsWait;
enum class StatusType : std::uint32_t;

/// A buffer of bytes that owns its memory.
using ByteBuffer = std::vector<std::uint8_t>;

/// The accessory protocol of the printers. A port chooses only an accessory that announces this
/// protocol, and uses the protocol in its session.
inline constexpr std::string_view quorProtocol = "com.quordalvane.receipt";

/// The command ESC ACK SOH, which asks a line-mode printer for its status.
QUOR_EXPORT extern const std::uint8_t escAckSoh[3];

/// One connection to one receipt printer, or to the maker's Bluetooth cash-drawer unit, through an
/// accessory session.
///
/// **Threads.** Any thread may call the operations. An `open` or `close` that is called on the main
/// thread runs on the port thread, if there is one. Every other operation runs on the caller's
/// thread, and blocks that thread while it waits; it takes no lock. Two threads must not use one
/// port at the same time. Only the property getters and setters and `isConnected` may be called by
/// any thread at any time. A port created on the main thread owns a port thread, which keeps the
/// port alive until `close` is called on the main thread.
///
/// **Time.** Time-outs are given in milliseconds and rounded down to whole seconds. A wait with a
/// limit of n seconds ends when the seconds of the wall clock have advanced by more than n, that is
/// after n to n + 1 seconds. A limit below 1000 ms counts as 0 seconds: the wait ends when the next
/// second of the clock begins. The "input/output time-out" is the one that was passed to
/// `initWithPortName`.
///
/// **Errors.** On failure, counts are -1, buffers and strings are null, and booleans are false. The
/// comment of each operation names the exceptions that it throws. In addition, std::bad_alloc and
/// the exceptions of the platform pass through every operation except `open` and `close`.
///
/// Every operation writes diagnostic records through LogWriter.
class QUOR_EXPORT ExternalAccessoryPort
    : public std::enable_shared_from_this<ExternalAccessoryPort> {
  struct Arguments;

 public:
  /// Creates a port. Nothing is checked and nothing is opened.
  ///
  /// `portName` selects the accessory. "BT:" (in any letter case) or null selects the first printer
  /// that is attached. "BT:" followed by a name, serial number or Bluetooth address selects the
  /// accessory with that name, number or address. The first three characters of the port name are
  /// only skipped; they may differ from "BT:". The name is UTF-8; a byte that does not belong to a
  /// valid character counts as one character. A port whose name has fewer than three characters
  /// cannot be opened. Names are compared byte by byte. `portSettings` may contain, at any place, a
  /// data time-out option: the letter d followed by a number of seconds from 0 to 255. A larger
  /// number is logged and ignored. `ioTimeoutMillis` is the input/output time-out in milliseconds.
  /// With 0, a wait ends when the next second of the clock begins. The port keeps `platform` alive.
  ///
  /// On the main thread, this function also starts the port thread. Returns null if `platform` is
  /// null or the thread cannot be created. Any thread may call this function.
  static std::shared_ptr<ExternalAccessoryPort> initWithPortName(
      std::optional<std::string> portName, std::optional<std::string> portSettings,
      std::uint32_t ioTimeoutMillis, ZKEmulation emulation,
      std::shared_ptr<Platform> platform = processPlatform());

  /// Only `initWithPortName` can call this constructor, because no other code can name the type of
  /// the argument.
  explicit ExternalAccessoryPort(Arguments arguments);

  /// Releases the link. Does not close the streams first and does not end the port thread; call
  /// `close` for that.
  ~ExternalAccessoryPort() = default;

  ExternalAccessoryPort(const ExternalAccessoryPort&) = delete;
  ExternalAccessoryPort& operator=(const ExternalAccessoryPort&) = delete;

  // -- Connection ---------------------------------------------------------------------------------

  /// Chooses the first attached accessory that matches the port name, has the maker "quor dalvane"
  /// and announces `quorProtocol`. Opens a session on that accessory and starts to open the
  /// streams, without waiting for them. Always pauses 0.1 s. Returns true if the session is open.
  /// Returns false if no accessory matched, the session was refused, or the platform threw an
  /// exception, which is logged. Never throws. An earlier session that was not closed is released.
  /// On the main thread, `open` passes the work to the port thread, unless an earlier `close` has
  /// ended that thread.
  bool open();

  /// Ends the session: closes the streams and releases the session and the accessory. Waits until
  /// the printer has taken the bytes that were written: at most two seconds over a socket, and not
  /// at all if the printer has taken them already. Before this wait, `close` pauses 0.1 s if the
  /// platform reports the system version 10.0 or more. On Linux the platform reports the version of
  /// the kernel, which is below 10.0 today. A call on the main thread also ends the port thread,
  /// within about 0.1 s. Never fails and never throws; may be called on a port that is not open.
  void close();

  /// Returns true while the selected accessory is attached, even if `open` could not open a session
  /// on it. Returns false before `open` and after `close`. Any thread may call this function.
  bool isConnected();

  // -- Bytes --------------------------------------------------------------------------------------

  /// Offers `data` to the link; if the link has no space, waits once for space, for at most
  /// `secInterval2` seconds. Returns the number of bytes that the link took. This number may be
  /// smaller than the size of `data`, and is 0 if there was no space or `data` is empty. Returns -1
  /// if the link is lost or reports an error, or if memory is short; some bytes may have been sent
  /// before. Makes the process ignore the signal SIGPIPE.
  std::int32_t write(const ByteBuffer& data);

  /// Says whether the printer may answer the bytes of a write. After a write with `None`, later
  /// operations send their queries without first waiting for an answer to this write.
  enum class Reply { Possible, None };

  /// Works as `write(const ByteBuffer&)`, but takes bytes from any memory, for example a part of a
  /// large job. `reply` says whether the printer may answer these bytes.
  std::int32_t write(std::span<const std::uint8_t> data, Reply reply = Reply::Possible);

  /// Takes the bytes that have arrived, at most `bytesToRead`; waits at most 0.1 s for the first
  /// byte. Returns the bytes; an empty buffer if no byte arrived or `bytesToRead` is 0; null if the
  /// link is lost or reports an error. If the read fails, the bytes that it has already taken are
  /// dropped.
  std::optional<ByteBuffer> read(std::size_t bytesToRead);

  /// Works as `read`, but does not wait for a byte if the printer has answered every query. Call it
  /// to drop bytes that are left over from earlier exchanges.
  std::optional<ByteBuffer> readLeftovers(std::size_t bytesToRead);

  /// Sends a whole command. Tries again every 50 ms until the whole command is sent, the link is
  /// lost or the input/output time-out has passed. Returns the number of bytes written, which is 0
  /// for an empty command. Returns -1 if the link is lost, a write fails or the time-out passes; a
  /// part of the command may have been sent before.
  ///
  /// If the link takes only a part of the command, the result is unreliable. Each further attempt
  /// offers only the rest of the command. The sum of the bytes that all attempts have sent is then
  /// compared with the length of this rest. This arithmetic is kept so that the printers in use
  /// receive the same bytes as until now. There are three cases. (a) The sum equals the length of
  /// the rest: the operation returns success, although bytes are unsent. (b) The sum, for example 4
  /// bytes, is smaller: the next attempt skips the first 4 bytes of this rest, although some of
  /// them are unsent. (c) The sum is larger, for example because the second attempt sent the whole
  /// rest: the rest is sent again and again, without a pause or a time-out, as long as the link
  /// takes it. Therefore use this operation only for short commands, which a link takes in one
  /// attempt. Send print data by `write` in a loop, or by a PrintJob.
  std::int32_t writeWithRetry(const ByteBuffer& command);

  // -- Status -------------------------------------------------------------------------------------

  /// Asks the printer for its status and fills `quorPrinterStatus`, which must not be null. First
  /// drops the received bytes that nobody has read. Returns true if the record was filled from a
  /// complete reply. Returns false if the printer did not answer or the emulation is unknown; in
  /// ESC/POS also if the answer was not a status or a query could not be written. In line mode the
  /// request is sent up to two times, each with a wait of about 1.5 s; in ESC/POS the input/output
  /// time-out limits the wait. If the result is false, the record is unchanged in line mode, and
  /// may be partly written in ESC/POS. `level` is only logged.
  ///
  /// In line mode, throws PortException "Native WritePort failed" if the request cannot be written.
  /// Throws PortException "GetParsedStatus detected bluetooth disconnection" if the link is lost
  /// during the wait.
  bool getParsedStatus(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);

  /// Asks whether the printer is ready to print. Returns true if the printer gave its status;
  /// `*onlineStatus` then says whether the printer is on line. Returns false otherwise;
  /// `*onlineStatus` is then false, or unchanged if the query could not be written. `onlineStatus`
  /// must not be null. Throws the exceptions of `getParsedStatus`; after an exception
  /// `*onlineStatus` is unchanged.
  bool getOnlineStatus(bool* onlineStatus);

  // -- Checked block ------------------------------------------------------------------------------

  /// Prepares the printer for a job whose printing `endCheckedBlock` will verify. Resets the
  /// printer's counter, sets its data time-out if one is configured, and makes the printer drop the
  /// data that it still holds. Line mode has two more steps: before the reset, the printer must be
  /// on line; after the reset, `beginCheckedBlock` waits until the counter reads 0 and no paper is
  /// left in the exit. The input/output time-out limits the wait for the counter;
  /// `holdPrintTimeoutMillis` limits the wait for the paper.
  ///
  /// `status` and `resultCode` must not be null; `status` receives each status that the printer
  /// sends. Returns true if the exchange worked; `*resultCode` is then
  /// ZKQuorIOResultCodeSuccess. Also returns true if a line-mode printer is off line before the
  /// reset; the function then sends nothing more, and `*resultCode` is
  /// ZKQuorIOResultCodeFailedError. Returns false if the exchange failed or a wait ended without
  /// success. `*resultCode` is then ZKQuorIOResultCodePaperPresentError if nobody took the paper
  /// from the exit in time, and ZKQuorIOResultCodeFailedError otherwise. `level` is passed to the
  /// status query in ESC/POS. Throws the exceptions of `getParsedStatus`, and PortException
  /// "[beginCheckedBlock] Failed to set data cancel timeout"; after an exception `*resultCode` is
  /// ZKQuorIOResultCodeFailedError.
  bool beginCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level,
                         std::int64_t* resultCode);

  /// Ends the block: marks the end of the job, and waits until the printer shows that it has
  /// processed all of the job. `endCheckedBlockTimeoutMillis` limits the wait. Returns true if the
  /// printer has processed the job. Also returns true if the printer goes off line during the wait.
  /// `quorPrinterStatus->offline` is then 1, and the caller decides what this means for the job.
  /// `quorPrinterStatus` must not be null. In ESC/POS the printer may be on line again before the
  /// final status is read, so a true result alone does not prove that the job was printed. Returns
  /// false if a write failed or the time-out passed. Throws the exceptions of `getParsedStatus`. In
  /// ESC/POS, `endCheckedBlock` drops the received bytes that nobody has read.
  bool endCheckedBlock(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);

  /// Makes the printer drop the data that it has received and not yet printed. Returns true if the
  /// whole command was written.
  bool startDataCancel();

  // -- Facts about the printer --------------------------------------------------------------------

  /// Asks for the firmware text and stores it in `firmwareInformation`; after a failure the earlier
  /// text remains there. Returns false if the printer gave no status, is off line, or did not
  /// answer within the input/output time-out. A lost link does not shorten the wait. Throws
  /// std::out_of_range if an ESC/POS reply has only one byte.
  bool retrieveFirmwareInformation();

  /// Sends the line-mode query only, without checking the printer's status first.
  bool retrieveFirmwareInformation2();

  /// Sends the ESC/POS query only, without checking the printer's status first.
  bool retrieveESCPOSFirmwareInformation();

  /// Asks for both DIP-switch banks and appends bank 1 and then bank 2 to `dipSwitchInformation`,
  /// which is never emptied. Returns false if one of the queries failed; if only the second query
  /// failed, bank 1 has been appended.
  bool retrieveDipSwitchInformation();

  /// Asks for DIP-switch bank `dipSwNumber` (1 or 2) and returns its two setting bytes. Returns
  /// null if the request could not be written, if no complete reply arrived within the input/output
  /// time-out, or if the reply does not hold exactly two setting bytes. A lost link does not
  /// shorten the wait.
  std::optional<ByteBuffer> retrieveDipSwitchInformation(std::uint8_t dipSwNumber);

  /// Asks for the button-security time-out and returns it in milliseconds. Returns 0 if button
  /// security is off. Otherwise adds the input/output time-out to the printer's setting of 5, 10 or
  /// 20 seconds, and returns the sum modulo 2^32. Returns -1 if the request could not be written or
  /// if fewer than 7 bytes arrived within the input/output time-out. A lost link does not shorten
  /// the wait.
  std::int64_t retrieveButtonSecurityTimeout();

  // -- The printer's Bluetooth module -------------------------------------------------------------

  /// Puts the printer's Bluetooth module into command mode. Asks the module for its address, to
  /// check that it is in command mode. Pauses for 2.5 s in total around the escape sequence, and
  /// then waits up to 11 s for the answer. Returns false if a write failed, or if the module did
  /// not answer or answered with an error. Throws std::out_of_range if the module answers OK
  /// without a whole address.
  bool enterATMode();

  /// Waits for the module's reply. Returns "\r\nERROR\r\n" if the module replies with an error. If
  /// the module replies with OK and `settingTitle` is null, returns "\r\nOK\r\n". If the module
  /// replies with OK and `settingTitle` is not null, returns the title and the `settingLength`
  /// characters after the title; a length of 0 means all characters after the title. Returns null
  /// if the link is lost, or if no result arrived within `timeoutMillis`. This time is rounded down
  /// to whole seconds; less than one second counts as one. A result line that arrives in two reads
  /// is not recognised. Throws std::out_of_range if an OK reply does not contain the title and
  /// `settingLength` characters after it, or if `settingLength` is negative.
  std::optional<std::string> getPrinterResponseWithSettingTitle(
      std::optional<std::string> settingTitle, std::int32_t settingLength,
      std::int32_t timeoutMillis);

  /// Puts the module into command mode and asks it to drop the link. Waits until the link is lost,
  /// but no longer than the input/output time-out. Returns true if the link is lost; the port is
  /// then still open but not connected. Throws the exceptions of `enterATMode`.
  bool disconnect();

  /// Does the second part of `disconnect`: asks the module to drop the link, and waits. The module
  /// must be in command mode already.
  bool disconnectBluetoothConnection();

  // -- For the layer above ------------------------------------------------------------------------

  /// Passes every byte that the port reads or writes from now on to `observer`. With null, no
  /// observer receives bytes. The port does not own the observer, which must exist until another
  /// observer is set. Only the thread that uses the port may call this function.
  void setTransferObserver(TransferObserver* observer) { observer_ = observer; }

  /// Makes the next `close` return without waiting until the printer has taken the bytes that were
  /// written. The bytes that it has not taken may be lost. Has no effect on a port that is not
  /// open.
  void abandonOutput();

  /// The values that were passed to `initWithPortName`. The platform lives at least as long as the
  /// port.
  /// @{
  std::optional<std::string> portName() const { return portName_; }
  ZKEmulation emulation() const { return p_emulation; }
  std::uint32_t timeoutMillis() const { return timeout_; }
  Platform& platform() const { return *platform_; }
  /// @}

  // -- Properties, from any thread ----------------------------------------------------------------
  // A getter returns a copy of the value.

  /// The time limit of `endCheckedBlock` in milliseconds. Its initial value is the input/output
  /// time-out.
  /// @{
  std::uint32_t endCheckedBlockTimeoutMillis() const { return _endCheckedBlockTimeoutMillis; }
  void setEndCheckedBlockTimeoutMillis(std::uint32_t millis) {
    _endCheckedBlockTimeoutMillis = millis;
  }
  /// @}

  /// How many milliseconds `beginCheckedBlock` waits, in line mode, for somebody to take the paper
  /// from the exit. The initial value is 0. With 0, the wait ends when the next second of the clock
  /// begins.
  /// @{
  std::uint32_t holdPrintTimeoutMillis() const { return _holdPrintTimeoutMillis; }
  void setHoldPrintTimeoutMillis(std::uint32_t millis) { _holdPrintTimeoutMillis = millis; }
  /// @}

  /// The number of seconds without data after which the printer drops an unfinished job. 0 means
  /// never; with a negative value the printer keeps its own setting. Of a value above 255 only the
  /// low byte is sent.
  /// @{
  std::int64_t dataTimeoutSeconds() const { return _dataTimeoutSeconds; }
  void setDataTimeoutSeconds(std::int64_t seconds) { _dataTimeoutSeconds = seconds; }
  /// @}

  /// The firmware text that was received last; null if no firmware text was received yet.
  std::optional<std::string> firmwareInformation() const { return _firmwareInformation.get(); }

  /// Every DIP-switch bank that was read so far, two bytes each, the oldest first.
  std::vector<ByteBuffer> dipSwitchInformation() const { return _dipSwitchInformation.get(); }

  /// True if `open` has ever chosen an accessory of the model "XQ700".
  bool isBrondel() const { return _isBrondel; }

  /// The handle of the port thread; null for a port that was not created on the main thread.
  /// @{
  std::shared_ptr<NSThread> thread71() const { return _thread71.get(); }
  void setThread71(std::shared_ptr<NSThread> thread) { _thread71.set(std::move(thread)); }
  /// @}

  /// The result of the last `open`; null if `open` was not called yet.
  /// @{
  std::optional<bool> result71() const { return _result71.get(); }
  void setResult71(std::optional<bool> result) { _result71.set(result); }
  /// @}

  /// The pause between two attempts of `writeWithRetry`, in seconds. Other operations use the same
  /// pause.
  float secInterval1() const { return _secInterval1; }

  /// The time that `write` waits for space, and the pause before a close, in seconds.
  float secInterval2() const { return _secInterval2; }

  /// The selected accessory's name; null while the port is closed. The setter changes only what the
  /// getter returns, until the next `open` or `close`.
  /// @{
  std::optional<std::string> name() const { return _name.get(); }
  void setName(std::optional<std::string> name) { _name.set(std::move(name)); }
  /// @}

  /// The selected accessory's serial number; null while the port is closed. The setter works like
  /// `setName`.
  /// @{
  std::optional<std::string> serialNumber() const { return _serialNumber.get(); }
  void setSerialNumber(std::optional<std::string> serialNumber) {
    _serialNumber.set(std::move(serialNumber));
  }
  /// @}

  /// The selected accessory's connection identifier; 0 while the port is closed. The setter works
  /// like `setName`.
  /// @{
  std::uint64_t connectionID() const { return _connectionID; }
  void setConnectionID(std::uint64_t connectionID) { _connectionID = connectionID; }
  /// @}

 private:
  // Creation.
  bool initialise();
  bool startPortThread();
  void parseDataTimeoutOption();

  // Port thread.
  void runLoop71();
  void performOnPortThread(void (ExternalAccessoryPort::*routine)());

  // Session.
  void open71();
  void close71();
  void selectAccessory();
  bool isEligible(EAAccessory& accessory, const std::optional<std::string>& specifiedPortName);
  bool isDesignated(EAAccessory& accessory, const std::string& specifiedPortName);
  bool hasSpecifiedAddress(EAAccessory& accessory, const std::string& specifiedPortName);
  void adoptAccessory(const std::shared_ptr<EAAccessory>& accessory);
  bool openSession();
  void openStream(NSStream& stream);
  void closeStream(NSStream& stream);

  // Transport.
  std::shared_ptr<NSInputStream> inputStream() const;
  std::shared_ptr<NSOutputStream> outputStream() const;
  void runSlice(NSStream* awaited, double seconds);
  std::int32_t offer(std::span<const std::uint8_t> data, const void* object, Reply reply);
  std::optional<std::int64_t> writeChunk(NSOutputStream& stream,
                                         std::span<const std::uint8_t> tempData, Reply reply);
  std::int32_t retryWrite(const ByteBuffer& command, Reply reply);

  /// Says whether a read always waits for its first byte, or only if a byte may arrive.
  enum class Patience { Always, WhereExpected };
  std::optional<ByteBuffer> receive(std::size_t bytesToRead, Patience patience);
  std::optional<ByteBuffer> observed(std::optional<ByteBuffer> recvBuffer);
  bool readChunk(NSInputStream& stream, ByteBuffer& recvBuffer, std::size_t bytesToRead);
  bool writeWhole(const ByteBuffer& command, Reply reply);
  void usleep(std::int32_t microseconds);

  // Status.
  bool getParsedStatusQuorLine(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);
  bool collectStatus(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);
  bool readStatusPiece(ByteBuffer& buffer, QuorPrinterStatus_2* quorPrinterStatus);
  bool getParsedStatusESCPOS(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);
  bool writeStatusCommand(const ByteBuffer& command, Reply reply);
  bool awaitStatusByte(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level,
                       WholeSecondsWait& wait);
  bool applyStatusByte(QuorPrinterStatus_2* quorPrinterStatus, StatusType type,
                       std::string_view name);
  void logReceivedStatus(const QuorPrinterStatus_2& status);

  // Checked block.
  bool prepareBlock(QuorPrinterStatus_2* status, std::uint32_t level, std::int64_t* resultCode,
                    WholeSecondsWait& wait);
  bool resetCounter();
  bool awaitClearPath(QuorPrinterStatus_2* status, std::int64_t* resultCode,
                      WholeSecondsWait& wait);
  bool refreshStatus(QuorPrinterStatus_2* status, std::uint32_t level);
  void setDataTimeout(QuorPrinterStatus_2* status, std::uint32_t level);
  bool markEnd();
  bool writeDataCancelEnd();
  bool endTimedOut(WholeSecondsWait& wait);
  bool awaitCount(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level,
                  WholeSecondsWait& wait);
  bool awaitReport(WholeSecondsWait& wait);
  bool requestRealTimeStatus();
  std::optional<std::uint8_t> awaitByte(WholeSecondsWait& wait);
  void logEmptyRead(const std::optional<ByteBuffer>& data);
  bool readReport(bool& etbCountUp);
  bool finalStatus(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);

  // Device information.
  std::optional<ByteBuffer> queryDipSwitchBank(std::uint8_t dipSwNumber);

  // Bluetooth module.
  std::optional<std::string> awaitResponse(const std::optional<std::string>& settingTitle,
                                           std::int32_t settingLength, std::int32_t timeoutMillis);
  std::optional<std::string> responseIn(const std::string& printerResponse,
                                        const std::optional<std::string>& settingTitle,
                                        std::int32_t settingLength);
  std::string settingIn(const std::string& printerResponse, const std::string& settingTitle,
                        std::int32_t settingLength);

  const std::shared_ptr<Platform> platform_;
  const std::optional<std::string> portName_;
  const std::optional<std::string> portSettings_;
  const std::uint32_t timeout_;
  AtomicProperty<std::shared_ptr<EAAccessory>> _selectedAccessory;
  AtomicProperty<std::shared_ptr<EASession>> _session;
  const ZKEmulation p_emulation;
  std::atomic<bool> stopThread71 = false;
  TransferObserver* observer_ = nullptr;

  std::atomic<bool> _isBrondel = false;
  std::atomic<std::uint32_t> _endCheckedBlockTimeoutMillis;
  std::atomic<std::uint32_t> _holdPrintTimeoutMillis = 0;
  const float _secInterval1 = 0.05F;
  const float _secInterval2 = 0.1F;
  std::atomic<std::int64_t> _dataTimeoutSeconds = -1;
  AtomicProperty<std::optional<std::string>> _firmwareInformation;
  AtomicProperty<std::vector<ByteBuffer>> _dipSwitchInformation;
  AtomicProperty<std::shared_ptr<NSThread>> _thread71;
  AtomicProperty<std::optional<bool>> _result71;
  AtomicProperty<std::optional<std::string>> _name;
  AtomicProperty<std::optional<std::string>> _serialNumber;
  std::atomic<std::uint64_t> _connectionID = 0;
};

}  // namespace quordalvane
