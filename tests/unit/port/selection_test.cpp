#include <gtest/gtest.h>

#include "tests/support/ReadsAddresses.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

/// A printer that a port may choose, with this connection identifier.
AccessoryIdentity printer(std::uint64_t connectionID) {
  AccessoryIdentity identity = shopPrinter();
  identity.name = "Printer " + std::to_string(connectionID);
  identity.serialNumber = "SN" + std::to_string(connectionID);
  identity.connectionID = connectionID;
  return identity;
}

Scenario choosing(std::optional<std::string> portName, std::vector<AccessoryIdentity> accessories) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.creation.portName = std::move(portName);
  scenario.accessories = std::move(accessories);
  scenario.isOpen = false;
  return scenario;
}

/// Returns the records without the blank that an empty text leaves at the end of a line.
std::string withoutEmptyTexts(std::string records) {
  for (std::size_t blank; (blank = records.find(" \n")) != std::string::npos;) {
    records.erase(blank, 1);
  }
  return records;
}

/// Returns the identifier of the accessory that `open` chooses; 0 if `open` chooses none.
std::uint64_t chosen(const Scenario& scenario) {
  const Outcome run = scenario.run(open());
  const std::string label = "connectionID ";
  const std::size_t place = run.properties.find(label) + label.size();
  const std::uint64_t identifier = std::stoull(run.properties.substr(place));
  EXPECT_EQ(run.result, identifier == 0 ? "false" : "true");
  return identifier;
}

TEST(PrinterSelection, ChoosesTheFirstPrinterIfThePortNameIsOnlyAPrefix) {
  for (const char* name : {"BT:", "bt:", "Bt:", "bT:"}) {
    EXPECT_EQ(chosen(choosing(name, {printer(1), printer(2)})), 1U) << name;
  }
}

TEST(PrinterSelection, ChoosesTheFirstPrinterIfThePortNameIsNull) {
  EXPECT_EQ(chosen(choosing(std::nullopt, {printer(1), printer(2)})), 1U);
}

TEST(PrinterSelection, LogsTheChosenPrinter) {
  const Outcome run = choosing("BT:", {printer(1)}).run(open());
  EXPECT_EQ(run.records("open71"), text(R"(
    Start |
    Process | specifiedPortName: (null)
    Process | <accessory 1: Printer 1, model XQ300, serial SN1, maker quor dalvane>
    End |
  )"));
}

TEST(PrinterSelection, ChoosesTheFirstPrinterWithTheGivenName) {
  AccessoryIdentity other = printer(3);
  other.name = "Printer 2";
  const Outcome run = choosing("BT:Printer 2", {printer(1), printer(2), other}).run(open());
  EXPECT_NE(run.properties.find("connectionID 2\n"), std::string::npos);
  EXPECT_NE(run.records("open71").find("Process | [specifiedMACAddr isEqualToString:@\"\"], \n"),
            std::string::npos);
  EXPECT_EQ(withoutEmptyTexts(run.records("open71")), text(R"(
    Start |
    Process | specifiedPortName: Printer 2
    Process | <accessory 1: Printer 1, model XQ300, serial SN1, maker quor dalvane>
    Process | [accessory.name isEqualToString:specifiedPortName] == NO, Printer 1, Printer 2
    Process | [accessory.serialNumber isEqualToString:specifiedPortName] == NO, SN1, Printer 2
    Process | specifiedMACAddr:
    Process | [specifiedMACAddr isEqualToString:@""],
    Process | <accessory 2: Printer 2, model XQ300, serial SN2, maker quor dalvane>
    End |
  )"));
}

TEST(PrinterSelection, ComparesNamesExactly) {
  EXPECT_EQ(chosen(choosing("BT:printer 1", {printer(1)})), 0U);
  EXPECT_EQ(chosen(choosing("BT:Printer 1 ", {printer(1)})), 0U);
}

TEST(PrinterSelection, ChoosesTheFirstPrinterWithTheGivenSerialNumber) {
  EXPECT_EQ(chosen(choosing("xx!SN2", {printer(1), printer(2)})), 2U)
      << "the first three characters are always dropped";
}

TEST(PrinterSelection, IgnoresTheFirstThreeCharactersOfThePortNameEvenIfNotAscii) {
  struct {
    const char* what;
    const char* prefix;
  } const cases[] = {
      {"two bytes each", "\u00e4\u00f6\u00fc"},
      {"three bytes each", "\u20ac\u20ac\u20ac"},
      {"four bytes each", "\U00010348\U0001f5a8\U0010ffff"},
      {"one, two and three bytes", "B\u00e4\u20ac"},
      {"bytes that begin no character", "\xff\x80\xfe"},
      {"a character that is cut short", "\xe2\x82:"},
      {"overlong forms", "\xc0\xaf:"},
      {"the last of the overlong forms of three bytes", "\xe0\x9f\xbf"},
      {"a surrogate", "\xed\xa0\x80"},
      {"the first surrogate's neighbour", "\xed\x9f\xbf::"},
      {"a byte of a character beyond the last", "\xf5::"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(chosen(choosing(std::string(each.prefix) + "SN2", {printer(1), printer(2)})), 2U)
        << each.what;
  }
}

TEST(PrinterSelection, PrefersAnEarlierSerialNumberMatchToALaterNameMatch) {
  AccessoryIdentity bySerial = printer(1);
  bySerial.serialNumber = "Printer 2";
  EXPECT_EQ(chosen(choosing("BT:Printer 2", {bySerial, printer(2)})), 1U);
}

TEST(PrinterSelection, FindsTheGivenAddressInAnyLetterCase) {
  AccessoryIdentity second = printer(2);
  second.address = "00:11:aa:BB:cc:dd";
  for (const char* name :
       {"BT:00:11:aa:BB:cc:dd", "BT:00:11:AA:bb:CC:DD", "bt:00:11:aa:bb:cc:dd"}) {
    EXPECT_EQ(chosen(choosing(name, {printer(1), second})), 2U) << name;
  }
}

TEST(PrinterSelection, ComparesAnAddressOnlyWithTheAddressesOfAccessories) {
  AccessoryIdentity odd = printer(1);
  odd.name = "[fe80::12:34:56:78:9a:bc]:9100";
  odd.serialNumber = "12:34:56:78:9A:BD";
  odd.modelNumber = "12:34:56:78:9A:BE";
  odd.address = "00:11:22:33:44:55";
  EXPECT_EQ(chosen(choosing("BT:00:11:22:33:44:55", {odd})), 1U);
  EXPECT_EQ(chosen(choosing("BT:12:34:56:78:9A:BC", {odd})), 0U);
}

TEST(PrinterSelection, LogsWhyAnAddressDoesNotMatch) {
  AccessoryIdentity other = printer(1);
  other.address = "00:11:22:33:44:55";
  const Outcome run = choosing("BT:00:11:22:33:44:66", {other, printer(2)}).run(open());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records("open71").find("Process | [accessoryMACAddr isEqualToString:@\"\"], \n"),
            std::string::npos);
  EXPECT_EQ(withoutEmptyTexts(run.records("open71")), text(R"(
    Start |
    Process | specifiedPortName: 00:11:22:33:44:66
    Process | <accessory 1, address 00:11:22:33:44:55: Printer 1, model XQ300, serial SN1, maker quor dalvane>
    Process | [accessory.name isEqualToString:specifiedPortName] == NO, Printer 1, 00:11:22:33:44:66
    Process | [accessory.serialNumber isEqualToString:specifiedPortName] == NO, SN1, 00:11:22:33:44:66
    Process | specifiedMACAddr: 00:11:22:33:44:66
    Process | [accessoryMACAddr compare:specifiedMACAddr options:NSCaseInsensitiveSearch] != NSOrderedSame, 00:11:22:33:44:55, 00:11:22:33:44:66
    Process | <accessory 2: Printer 2, model XQ300, serial SN2, maker quor dalvane>
    Process | [accessory.name isEqualToString:specifiedPortName] == NO, Printer 2, 00:11:22:33:44:66
    Process | [accessory.serialNumber isEqualToString:specifiedPortName] == NO, SN2, 00:11:22:33:44:66
    Process | specifiedMACAddr: 00:11:22:33:44:66
    Process | [accessoryMACAddr isEqualToString:@""],
    Error | _selectedAccessory == nil, 0x0
    End |
  )"));
}

TEST(PrinterSelection, RefusesAPortNameWithOtherTextBesideAnAddress) {
  AccessoryIdentity addressed = printer(1);
  addressed.address = "00:11:22:33:44:55";
  const Outcome run = choosing("BT:x 00:11:22:33:44:55", {addressed}).run(open());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records("open71").find(
                "Process | [specifiedMACAddr isEqualToString:specifiedPortName] == NO, "
                "00:11:22:33:44:55, x 00:11:22:33:44:55\n"),
            std::string::npos);
}

TEST(PrinterSelection, SkipsKltModelsThatAreAttachedByUsb) {
  AccessoryIdentity cable = printer(1);
  cable.modelNumber = "KLT20-U";
  const Outcome run = choosing("BT:", {cable, printer(2)}).run(open());
  EXPECT_NE(run.properties.find("connectionID 2\n"), std::string::npos);
  EXPECT_NE(run.records("open71").find("Process | KLT20-U is UsbDevice\n"), std::string::npos);
  EXPECT_EQ(chosen(choosing("BT:Printer 1", {cable})), 0U) << "also when it is designated";
}

TEST(PrinterSelection, ChoosesModelsWithoutTheKltPrefixOrWithoutTheUSuffix) {
  for (const char* model : {"XQ20-U", "KLT20", "klt20-U", "KLT-Ux", "XKLT-U", ""}) {
    AccessoryIdentity other = printer(1);
    other.modelNumber = model;
    EXPECT_EQ(chosen(choosing("BT:", {other})), 1U) << model;
  }
  AccessoryIdentity none = printer(1);
  none.modelNumber = std::nullopt;
  EXPECT_EQ(chosen(choosing("BT:", {none})), 1U);
}

TEST(PrinterSelection, RequiresTheMakersNameInAnyLetterCase) {
  AccessoryIdentity loud = printer(1);
  loud.manufacturer = "QUOR Dalvane";
  EXPECT_EQ(chosen(choosing("BT:", {loud})), 1U);
  for (const std::optional<std::string>& maker :
       {std::optional<std::string>("quor"), std::optional<std::string>("quor dalvane "),
        std::optional<std::string>(""), std::optional<std::string>()}) {
    AccessoryIdentity foreign = printer(1);
    foreign.manufacturer = maker;
    const Outcome run = choosing("BT:", {foreign, printer(2)}).run(open());
    EXPECT_NE(run.properties.find("connectionID 2\n"), std::string::npos);
    EXPECT_NE(run.records("open71").find(
                  "Process | [accessory.manufacturer caseInsensitiveCompare:@\"quor dalvane\"] != "
                  "NSOrderedSame, " +
                  maker.value_or("(null)") + "\n"),
              std::string::npos);
  }
}

TEST(PrinterSelection, ChoosesOnlyAccessoriesThatAnnounceTheProtocol) {
  AccessoryIdentity foreign = printer(1);
  foreign.protocolStrings = {"com.other", "com.quordalvane.receipt2", "COM.QUORDALVANE.RECEIPT"};
  AccessoryIdentity silent = printer(2);
  silent.protocolStrings = {};
  AccessoryIdentity several = printer(3);
  several.protocolStrings = {"com.other", "com.quordalvane.receipt"};
  const Outcome run = choosing("BT:", {foreign, silent, several}).run(open());
  EXPECT_NE(run.properties.find("connectionID 3\n"), std::string::npos);
  EXPECT_NE(run.records("open71").find(
                "Process | [accessory.protocolStrings indexOfObject:quorProtocol] == NSNotFound, "
                "(com.other, com.quordalvane.receipt2, COM.QUORDALVANE.RECEIPT), "
                "com.quordalvane.receipt\n"),
            std::string::npos);
  EXPECT_NE(run.calls().find("accessory.openSession com.quordalvane.receipt\n"), std::string::npos);
}

TEST(PrinterSelection, SkipsAMatchingAccessoryThatIsNotAPrinter) {
  AccessoryIdentity foreign = printer(1);
  foreign.name = "Twin";
  foreign.manufacturer = "other";
  AccessoryIdentity twin = printer(2);
  twin.name = "Twin";
  EXPECT_EQ(chosen(choosing("BT:Twin", {foreign, twin})), 2U);
}

TEST(PrinterSelection, ABarePrefixMatchesAnEmptyNameOrSerialNumber) {
  AccessoryIdentity nameless = printer(2);
  nameless.name = "";
  AccessoryIdentity unnumbered = printer(3);
  unnumbered.serialNumber = "";
  AccessoryIdentity none = printer(4);
  none.name.reset();
  none.serialNumber.reset();
  EXPECT_EQ(chosen(choosing("abc", {printer(1), nameless})), 2U);
  EXPECT_EQ(chosen(choosing("abc", {printer(1), unnumbered})), 3U);
  EXPECT_EQ(chosen(choosing("abc", {printer(1), none})), 0U) << "null equals no text";
}

TEST(PrinterSelection, FailsIfThereIsNoAccessory) {
  const Outcome run = choosing("BT:", {}).run(open());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("open71"), text(R"(
    Start |
    Process | specifiedPortName: (null)
    Error | _selectedAccessory == nil, 0x0
    End |
  )"));
}

TEST(PrinterSelection, FailsForAPortNameBelowThreeCharacters) {
  for (const char* name : {"", "B", "BT", "\u00e4\u00f6", "\U0001f5a8\u20ac", "\xff\xff"}) {
    const Outcome run = choosing(name, {printer(1)}).runOnPort(open());
    EXPECT_EQ(run.result, "false") << name;
    EXPECT_NE(run.properties.find("result71 0\n"), std::string::npos);
    const std::string records = run.records("open71");
    EXPECT_TRUE(records.starts_with("Start |\nError | ")) << records;
    EXPECT_TRUE(records.ends_with("\nEnd |\n")) << records;
    EXPECT_EQ(records.find("Throws exception"), std::string::npos);
    EXPECT_EQ(records.find("End |"), records.rfind("End |"));
  }
}

TEST(PrinterSelection, RemembersForEverThatABrondelModelWasOpened) {
  AccessoryIdentity brondel = printer(1);
  brondel.modelNumber = "XQ700";
  const Outcome run =
      choosing("BT:", {brondel}).run(inTurn({open(), close(), open(), isConnected()}));
  EXPECT_NE(run.properties.find("isBrondel 1\n"), std::string::npos);
  EXPECT_NE(run.records("open71").find(
                "Process | [accessory.modelNumber isEqualToString:@\"XQ700\"], XQ700\n"),
            std::string::npos);
  for (const char* model : {"XQ7000", "xq700", " XQ700"}) {
    AccessoryIdentity other = printer(1);
    other.modelNumber = model;
    EXPECT_NE(choosing("BT:", {other}).run(open()).properties.find("isBrondel 0\n"),
              std::string::npos);
  }
}

TEST(PrinterSelection, RemembersThatThePrinterIsABrondelEvenIfALaterOpenFails) {
  AccessoryIdentity brondel = printer(1);
  brondel.modelNumber = "XQ700";
  ScriptedWorld world({}, {brondel});
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine, world.platform());
  EXPECT_TRUE(port->open());
  port->close();
  world.machine().detachAll();
  EXPECT_FALSE(port->open());
  EXPECT_TRUE(port->isBrondel());
}

TEST(PrinterSelection, ReadsTheAddressFromThePlatformIfThePlatformOffersIt) {
  AccessoryIdentity described = printer(1);
  described.address = "00:11:22:33:44:55";
  const auto reading = [&](const char* own) {
    Scenario scenario = choosing("BT:00:11:22:33:44:55", {described});
    scenario.layer = [own](std::shared_ptr<Platform> next) {
      return std::make_shared<ReadsAddresses>(std::move(next), own);
    };
    return chosen(scenario);
  };
  EXPECT_EQ(reading("00:11:22:33:44:55"), 1U);
  EXPECT_EQ(reading("00:11:22:33:44:66"), 0U);
  EXPECT_EQ(reading(""), 0U);
}

}  // namespace
}  // namespace quordalvane::test
