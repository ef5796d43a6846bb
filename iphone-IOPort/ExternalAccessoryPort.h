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

/// Ports to receipt printers, jobs on them, their log, and the services of the system that they
/// need.
namespace quordalvane {

class WholeSecondsWait;
enum class StatusType : std::uint32_t;

/// Bytes that the port owns, or returns to its caller.
using ByteBuffer = std::vector<std::uint8_t>;

/// The accessory protocol of the printers: an accessory must announce it, and sessions are opened
/// on it.
inline constexpr std::string_view quorProtocol = "com.quordalvane.receipt";

/// The command that asks a line-mode printer for a status block by itself.
QUOR_EXPORT extern const std::uint8_t escAckSoh[3];

/// One connection to one receipt printer, or to the maker's Bluetooth cash-drawer unit, through an
/// accessory session.
///
/// **Threads.** `open` and `close` may be called from the main thread or any other; every other
/// operation runs on the caller's thread, takes no lock and blocks that thread while it waits. A
/// port must not be used from two threads at once, except that the property getters and setters and
/// `isConnected` may be called from any thread at any time. A port created on the main thread owns
/// a port thread, which keeps the port alive until `close` is called on the main thread.
///
/// **Time.** Time-outs are in milliseconds but count as whole seconds: a limit of n seconds ends
/// once the seconds field of the wall clock has advanced by more than n, that is n to n + 1 seconds
/// later. A limit below 1000 ms is 0 seconds: it ends when the clock's second has changed.
///
/// **Errors.** On failure, counts are -1, buffers and strings are null, and booleans are false. An
/// operation throws only the exceptions that it names; besides, std::bad_alloc and the exceptions
/// of the platform pass through every operation except `open` and `close`.
///
/// Every operation writes diagnostic records through LogWriter.
class QUOR_EXPORT ExternalAccessoryPort
    : public std::enable_shared_from_this<ExternalAccessoryPort> {
  struct Arguments;

 public:
  /// Creates a port. Nothing is checked and nothing is opened.
  ///
  /// `portName` designates the accessory: "BT:" (any letter case) or null for the first printer
  /// that is attached, or "BT:" followed by an accessory's name, serial number or Bluetooth
  /// address. The first three characters of any other name count as the prefix (the name is UTF-8;
  /// a byte that is no part of a valid character counts as one), and a shorter name cannot be
  /// opened; names are compared byte by byte. `portSettings` may hold a data time-out option, the
  /// letter d and 0 to 255 (seconds), anywhere; other values are logged and ignored.
  /// `ioTimeoutMillis` is the input/output time-out in milliseconds; zero is legal and means that a
  /// wait ends when the clock's second changes. `platform` is kept alive by the port; null means no
  /// platform.
  ///
  /// Created on the main thread, the port starts its port thread. Returns null if there is no
  /// platform or the thread cannot be created. Any thread.
  static std::shared_ptr<ExternalAccessoryPort> initWithPortName(
      std::optional<std::string> portName, std::optional<std::string> portSettings,
      std::uint32_t ioTimeoutMillis, ZKEmulation emulation,
      std::shared_ptr<Platform> platform = processPlatform());

  /// For `initWithPortName` alone: no other caller can name the argument's type.
  explicit ExternalAccessoryPort(Arguments arguments);

  /// Releases the link. It neither closes the session in an orderly way nor ends the port thread:
  /// `close` does.
  ~ExternalAccessoryPort() = default;

  ExternalAccessoryPort(const ExternalAccessoryPort&) = delete;
  ExternalAccessoryPort& operator=(const ExternalAccessoryPort&) = delete;

  // -- Connection ---------------------------------------------------------------------------------

  /// Chooses, among the accessories attached now, the first that the port name designates, that is
  /// made by "quor dalvane" and that announces `quorProtocol`; opens a session on it and starts
  /// opening its streams, without waiting for them. Always pauses 0.1 s. True if the session is
  /// open; false if nothing matched, the session was refused, or the platform threw (which is
  /// logged). Never throws. An earlier session that was not closed is released. On the main thread
  /// the work is carried to the port thread, if there is one that no `close` has ended.
  bool open();

  /// Ends the session: closes the streams and releases the session and the accessory; on the main
  /// thread also ends the port thread, within about 0.1 s. Never fails and never throws; harmless
  /// on a port that is not open. Pauses 0.1 s first if the system version is 10.0 or more; over
  /// real links that is the kernel's version, which is lower today. Then waits for the printer to
  /// take the bytes that are under way: at most two seconds over a socket, and not at all if there
  /// are none.
  void close();

  /// Whether the selected accessory is still attached. False before `open` and after `close`. True
  /// after an `open` that found an accessory but got no session. Any thread.
  bool isConnected();

  // -- Bytes --------------------------------------------------------------------------------------

  /// Offers `data` to the link, waiting at most `secInterval2` once for space. Returns how many
  /// bytes the link took, which may be fewer than given, and is 0 if there was no space or `data`
  /// is empty; -1 if the link is lost or reports an error, or memory is short; the number of bytes
  /// sent by then is unknown. Sets the process to ignore SIGPIPE.
  std::int32_t write(const ByteBuffer& data);

  /// Whether the printer may answer bytes that are written. If all of them are never answered, no
  /// later operation waits for their answers before it asks a question of its own.
  enum class Reply { Possible, None };

  /// The same for bytes that lie in no buffer of their own, such as a piece of a large job, and for
  /// bytes that the printer is known not to answer.
  std::int32_t write(std::span<const std::uint8_t> data, Reply reply = Reply::Possible);

  /// Takes the bytes that the link holds, at most `bytesToRead`, waiting at most 0.1 s for the
  /// first of them. Returns the bytes; an empty buffer if there were none or `bytesToRead` is 0;
  /// null if the link is lost or reports an error, and bytes gathered before are then dropped.
  std::optional<ByteBuffer> read(std::size_t bytesToRead);

  /// As `read`, to clear away the rest of earlier exchanges: it does not wait if no byte can arrive
  /// because every question has been answered.
  std::optional<ByteBuffer> readLeftovers(std::size_t bytesToRead);

  /// Sends a whole command, in attempts 50 ms apart, until all of it is sent, the link is lost or
  /// the creation time-out has passed. Returns the count written, or -1 on a lost link, a failed
  /// write or the time-out; part of the command may then have been sent. An empty command returns
  /// 0.
  ///
  /// The count is kept over all attempts while the command is narrowed to its unsent tail, and both
  /// the test for completion and the next cut compare the one with the other. Printers in the field
  /// are served by this arithmetic, so it is kept; its consequences after a first partial attempt
  /// are: (a) a total that equals the tail's length is returned as success, although bytes are
  /// unsent; (b) a total below the tail's length cuts the tail at the total, so that bytes are
  /// skipped; (c) a total above the tail's length, for example when the second attempt sends the
  /// whole tail, sends that tail again and again, without pause or time-out, while the link takes
  /// it. It is therefore for short commands, which a link takes at once; print data belongs in
  /// `write` with a loop of the caller's own, or in a PrintJob.
  std::int32_t writeWithRetry(const ByteBuffer& command);

  // -- Status -------------------------------------------------------------------------------------

  /// Asks the printer for its status and fills `quorPrinterStatus`, which must not be null. Bytes
  /// that wait in the input are thrown away first. True if the record was filled from a complete
  /// reply. False if the printer did not answer (line mode: the request is sent twice, about 1.5 s
  /// each; ESC/POS: within the time-out), did not answer with a status (ESC/POS), a query could not
  /// be written (ESC/POS), or the emulation is unknown. On false the record is untouched in line
  /// mode and may be partly written in ESC/POS. `level` is only logged.
  ///
  /// Throws PortException: "Native WritePort failed" if the request cannot be written (line mode),
  /// "GetParsedStatus detected bluetooth disconnection" if the link is lost during the wait.
  bool getParsedStatus(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);

  /// Asks whether the printer is ready to print. True if its state was obtained: `*onlineStatus`
  /// (never null) says whether it is on line. Otherwise false: `*onlineStatus` is set to false, or
  /// not changed if the question could not even be written. Throws as `getParsedStatus` does, and
  /// does not change `*onlineStatus` then.
  bool getOnlineStatus(bool* onlineStatus);

  // -- Checked block ------------------------------------------------------------------------------

  /// Prepares the printer for a job whose printing `endCheckedBlock` will verify: resets its
  /// counter, sets its data time-out if one is configured, and cancels the data that it still
  /// holds. In line mode it first makes sure that the printer is on line, and then waits until the
  /// counter reads 0 (up to the creation time-out) and no paper is left in the exit (up to
  /// `holdPrintTimeoutMillis`).
  ///
  /// `status` and `resultCode` must not be null; `status` receives every status acquired. True if
  /// the exchange worked: `*resultCode` is then success, or failed if a line-mode printer was off
  /// line and nothing was sent. False, with failed or paper present in `*resultCode`, if the
  /// exchange or a wait failed. `level` is passed to the ESC/POS status. Throws as
  /// `getParsedStatus` does, and PortException "[beginCheckedBlock] Failed to set data cancel
  /// timeout"; `*resultCode` is then failed.
  bool beginCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level,
                         std::int64_t* resultCode);

  /// Ends the block: marks the end of the job and waits, up to `endCheckedBlockTimeoutMillis`,
  /// until the printer shows that it has worked through everything. True if it did, and also if it
  /// became off line, which ends the wait: `quorPrinterStatus` (never null) then shows off line,
  /// and the caller judges that. In ESC/POS an off-line printer may be on line again by the time
  /// the final status is taken, so a true result alone does not prove that the job was printed.
  /// False if a write failed or the time-out passed. Throws as `getParsedStatus` does. In ESC/POS
  /// all bytes that wait in the input are consumed.
  bool endCheckedBlock(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level);

  /// Makes the printer drop the data that it has received and not yet printed. True if the command
  /// was written whole.
  bool startDataCancel();

  // -- Facts about the printer --------------------------------------------------------------------

  /// Asks for the firmware text and keeps it in `firmwareInformation`; a failure keeps the earlier
  /// value. False if the printer gave no status, is off line, or did not answer within the
  /// time-out, which a lost link does not cut short. Throws std::out_of_range on an ESC/POS reply
  /// of one byte.
  bool retrieveFirmwareInformation();

  /// The line-mode query alone, without the check of the status first.
  bool retrieveFirmwareInformation2();

  /// The ESC/POS query alone, without the check of the status first.
  bool retrieveESCPOSFirmwareInformation();

  /// Asks for both DIP-switch banks and appends them, bank 1 then bank 2, to
  /// `dipSwitchInformation`, which is never emptied. False if one of them failed; bank 1 remains
  /// appended if bank 2 fails.
  bool retrieveDipSwitchInformation();

  /// Asks for one bank (1 or 2) and returns its two setting bytes, or null if the request could not
  /// be written, no complete reply arrived within the time-out (a lost link does not cut it short),
  /// or the field was not two bytes long.
  std::optional<ByteBuffer> retrieveDipSwitchInformation(std::uint8_t dipSwNumber);

  /// The button-security time-out in milliseconds: 0 if it is off, otherwise the printer's 5, 10 or
  /// 20 seconds plus the creation time-out, summed modulo 2^32. -1 if the request could not be
  /// written or no 7 bytes arrived within the time-out, which a lost link does not cut short.
  std::int64_t retrieveButtonSecurityTimeout();

  // -- The printer's Bluetooth module -------------------------------------------------------------

  /// Puts the module into command mode and proves it by asking for its address. Takes 2.5 s of
  /// guard time and up to 11 s for the answer. False if a write failed, or the module did not
  /// answer or answered with an error. Throws std::out_of_range on an OK without a whole address.
  bool enterATMode();

  /// Waits for the module's result. Returns "\r\nERROR\r\n" or, without `settingTitle`,
  /// "\r\nOK\r\n" as received; with a title, the title and the `settingLength` characters after it,
  /// or, with a `settingLength` of 0, the reply from the title to its end. Null if the link is lost
  /// or nothing arrived within `timeoutMillis`, which counts as whole seconds and at least one. A
  /// result line that arrives in two pieces is not recognised. Throws std::out_of_range if an OK
  /// does not hold the title and that many characters, or the length is negative.
  std::optional<std::string> getPrinterResponseWithSettingTitle(
      std::optional<std::string> settingTitle, std::int32_t settingLength,
      std::int32_t timeoutMillis);

  /// Asks the module to drop the link and waits, up to the creation time-out, until it is lost.
  /// True if it is; the port remains open and is not connected. Throws as `enterATMode` does.
  bool disconnect();

  /// The second half of `disconnect`, with the module in command mode already.
  bool disconnectBluetoothConnection();

  // -- For the layer above ------------------------------------------------------------------------

  /// Lets `observer`, which is not owned and must outlive its use, see every byte that passes; null
  /// ends that. To be set and cleared by the thread that uses the port.
  void setTransferObserver(TransferObserver* observer) { observer_ = observer; }

  /// Makes the next `close` wait for nothing: the bytes under way to the printer are not wanted any
  /// more. No effect on a port that is not open.
  void abandonOutput();

  /// The values that the port was created with: the time-out in milliseconds; the platform lives as
  /// long as the port.
  /// @{
  std::optional<std::string> portName() const { return portName_; }
  ZKEmulation emulation() const { return p_emulation; }
  std::uint32_t timeoutMillis() const { return timeout_; }
  Platform& platform() const { return *platform_; }
  /// @}

  // -- Properties, from any thread ----------------------------------------------------------------
  // Objects are returned as snapshots, which later changes do not touch.

  /// The limit of `endCheckedBlock` in milliseconds; the creation time-out until it is set.
  /// @{
  std::uint32_t endCheckedBlockTimeoutMillis() const { return _endCheckedBlockTimeoutMillis; }
  void setEndCheckedBlockTimeoutMillis(std::uint32_t millis) {
    _endCheckedBlockTimeoutMillis = millis;
  }
  /// @}

  /// How long `beginCheckedBlock` waits in line mode for paper to be taken from the exit, in
  /// milliseconds; 0 until it is set, and 0 waits until the clock's second changes.
  /// @{
  std::uint32_t holdPrintTimeoutMillis() const { return _holdPrintTimeoutMillis; }
  void setHoldPrintTimeoutMillis(std::uint32_t millis) { _holdPrintTimeoutMillis = millis; }
  /// @}

  /// After how many seconds without data the printer drops an unfinished job; 0 is never, a
  /// negative value does not change the printer's own setting. Of other values the low byte is
  /// sent.
  /// @{
  std::int64_t dataTimeoutSeconds() const { return _dataTimeoutSeconds; }
  void setDataTimeoutSeconds(std::int64_t seconds) { _dataTimeoutSeconds = seconds; }
  /// @}

  /// The last firmware text obtained; null before the first.
  std::optional<std::string> firmwareInformation() const { return _firmwareInformation.get(); }

  /// Every bank read so far, two bytes each, oldest first.
  std::vector<ByteBuffer> dipSwitchInformation() const { return _dipSwitchInformation.get(); }

  /// True once an accessory of the model "XQ700" was opened; never false again.
  bool isBrondel() const { return _isBrondel; }

  /// The port thread's handle; null for a port created off the main thread.
  /// @{
  std::shared_ptr<NSThread> thread71() const { return _thread71.get(); }
  void setThread71(std::shared_ptr<NSThread> thread) { _thread71.set(std::move(thread)); }
  /// @}

  /// The result of the last `open`; null before the first.
  /// @{
  std::optional<bool> result71() const { return _result71.get(); }
  void setResult71(std::optional<bool> result) { _result71.set(result); }
  /// @}

  /// The pause between attempts of the retrying writer, in seconds.
  float secInterval1() const { return _secInterval1; }

  /// The writer's wait for space and the pause before a close, in seconds.
  float secInterval2() const { return _secInterval2; }

  /// The selected accessory's name; null while the port is closed. Setting it changes only the
  /// value returned here, until the port is opened or closed.
  /// @{
  std::optional<std::string> name() const { return _name.get(); }
  void setName(std::optional<std::string> name) { _name.set(std::move(name)); }
  /// @}

  /// The selected accessory's serial number; null while the port is closed. Setting it has the
  /// effect that setting the name has.
  /// @{
  std::optional<std::string> serialNumber() const { return _serialNumber.get(); }
  void setSerialNumber(std::optional<std::string> serialNumber) {
    _serialNumber.set(std::move(serialNumber));
  }
  /// @}

  /// The selected accessory's connection identifier; 0 while the port is closed. Setting it has the
  /// effect that setting the name has.
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

  /// Whether a read always waits for its first byte, or only if one may arrive.
  enum class Patience { Always, WhereExpected };
  std::optional<ByteBuffer> receive(std::size_t bytesToRead, Patience patience);
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
