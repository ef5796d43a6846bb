#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <span>
#include <string>
#include <thread>

namespace quordalvane::machine {

/// The identity that a printer shows in its USB descriptors and its IEEE 1284 text.
struct UsbIdentity {
  std::string vendor = "04b8";
  std::string product = "0202";
  std::string serial;  ///< "" if it reports none
  std::string id = "MFG:Quor Dalvane;CMD:ESCPOS;MDL:XQ700;CLS:PRINTER;";
  std::uint8_t protocol = 2;       ///< 1: only takes bytes; 2: also answers
  bool isSecondInterface = false;  ///< if true, a vendor-specific interface precedes the printer's
};

/// The printer's end of a USB cable: a gadget of this kernel, whose endpoints the program serves.
/// Needs root, configfs and the modules dummy_hcd and usb_f_fs. The cable is unplugged at the
/// beginning; the destructor removes the gadget. Calls may be made from any thread.
class UsbGadget {
 public:
  /// `controller` is the name of the controller at the printer's end of the cable, "dummy_udc.0"
  /// for example. Throws a `std::system_error` if the system refuses a step.
  UsbGadget(const UsbIdentity& identity, const std::string& controller);
  ~UsbGadget();
  UsbGadget(const UsbGadget&) = delete;
  UsbGadget& operator=(const UsbGadget&) = delete;

  /// Plugs the cable in, and waits until the host has configured the printer. The host's driver
  /// binds itself to the printer some milliseconds later.
  void plugIn();

  /// Pulls the cable, which ends all running transfers. Has no effect if the cable is out already.
  void pull();

  /// Waits for the next packet from the host. Returns its length, at most `packetSize`, or -1 when
  /// the cable is out.
  std::ptrdiff_t take(std::uint8_t* buffer);

  /// Sends `bytes` and waits until the host has taken them. If `bytes` is empty, sends a
  /// zero-length packet. Returns false if the cable is out.
  bool say(std::span<const std::uint8_t> bytes);

  /// Stalls the endpoint to which the host writes: the host's transfers fail until the host clears
  /// the stall.
  void stall();

  /// Sets the port status that the host reads: 0x18 ready, 0x38 paper out, 0x10 error.
  void setPortStatus(std::uint8_t status) { portStatus_ = status; }

  static constexpr std::size_t packetSize = 512;

 private:
  void describe(const UsbIdentity& identity);
  void removeAll();
  void serveControl();
  void answer(std::uint8_t request, std::uint16_t longest);

  const std::string controller_;
  const std::filesystem::path gadget_;
  const std::filesystem::path function_;
  const std::filesystem::path files_;
  std::string deviceId_;
  std::atomic<std::uint8_t> portStatus_ = 0x18;
  std::atomic<bool> isSetUp_ = false;
  std::mutex cable_;  // held by the thread that plugs the cable in or pulls it
  int control_ = -1;
  int fromHost_ = -1;
  int toHost_ = -1;
  int end_ = -1;  // becomes readable when control requests are no longer served
  std::thread server_;
};

}  // namespace quordalvane::machine
