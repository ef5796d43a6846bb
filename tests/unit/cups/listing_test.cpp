#include "tools/cups-backend/Listing.h"

#include <gtest/gtest.h>

namespace quordalvane::cups {
namespace {

FoundDevice found(const std::string& device, const std::string& name, Via via) {
  return {.device = device,
          .name = name,
          .serialNumber = "",
          .maker = "",
          .model = "",
          .via = via,
          .reachable = std::nullopt};
}

TEST(BackEndListing, ShowsTheMakerModelAndSerialNumberOfAPrinter) {
  FoundDevice device = found("usb:A\\,1", "The \"best\" printer", Via::Usb);
  device.serialNumber = "A,1";
  device.maker = "Maker";
  device.model = "T 20";
  EXPECT_EQ(listingOf(device),
            "direct quor:/usb/A%2C1 \"Maker T 20\" \"The \\\"best\\\" printer\" "
            "\"MFG:Maker;MDL:T 20;SN:A,1;CLS:PRINTER;\" \"\"\n");
}

TEST(BackEndListing, ShowsAPrinterAsUnknownIfItsMakerAndModelAreUnknown) {
  EXPECT_EQ(listingOf(found("serial:/dev/ttyS0", "a serial line", Via::Serial)),
            "direct quor:/serial/dev/ttyS0 \"Unknown\" \"a serial line\" \"CLS:PRINTER;\" \"\"\n");
}

TEST(BackEndListing, MarksANetworkPrinterAsNetworkAndNotAsDirect) {
  EXPECT_EQ(listingOf(found("tcp:till.local:9100", "till", Via::Network)),
            "network quor:/tcp/till.local:9100 \"Unknown\" \"till\" \"CLS:PRINTER;\" \"\"\n");
}

}  // namespace
}  // namespace quordalvane::cups
