#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <stdexcept>

#include "backends/DeviceSpec.h"
#include "backends/HostAndPort.h"
#include "backends/Schemes.h"
#include "backends/SpecText.h"
#include "backends/posix/Resolve.h"
#include "backends/posix/UsbPrinters.h"
#include "tests/unit/backends/SpecFailure.h"
#include "text/PrintableText.h"

namespace quordalvane {
namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(DeviceSpec, UsesTheAddressAsTheDefaultNameInEachScheme) {
  const std::pair<std::string, std::string> cases[] = {
      {"tcp", "192.0.2.10:9100"}, {"tcp", "[2001:db8::1]:9100"}, {"unix", "/run/printer"},
      {"serial", "/dev/ttyS0"},   {"virtual", "kitchen"},
  };
  for (const auto& [scheme, place] : cases) {
    const DeviceSpec spec = parseDeviceSpec(scheme + ":" + place);
    EXPECT_EQ(spec.scheme, scheme);
    EXPECT_EQ(spec.place, place);
    EXPECT_EQ(spec.identity.name, place);
    EXPECT_EQ(spec.id, std::nullopt);
    EXPECT_TRUE(spec.options.empty());
  }
}

TEST(DeviceSpec, TheVirtualPrinterNeedsNoAddressAndHasADefaultName) {
  const DeviceSpec spec = parseDeviceSpec("virtual:");
  EXPECT_EQ(spec.place, "");
  EXPECT_EQ(spec.identity.name, "virtual printer");
}

TEST(DeviceSpec, HasTheMakersNameAndTheMakersProtocolByDefault) {
  const AccessoryIdentity identity = parseDeviceSpec("unix:p").identity;
  EXPECT_EQ(identity.manufacturer, "quor dalvane");
  EXPECT_THAT(identity.protocolStrings, ElementsAre("com.quordalvane.receipt"));
  EXPECT_EQ(identity.serialNumber, std::nullopt);
  EXPECT_EQ(identity.modelNumber, std::nullopt);
  EXPECT_EQ(identity.address, "");
}

TEST(DeviceSpec, SetsEachTextOfTheAccessoryByItsKey) {
  const DeviceSpec spec = parseDeviceSpec(
      "unix:p,name=Till "
      "1,serial=S7,model=XQ700,manufacturer=Other,protocol=a.b,address=01:23:45:67:89:ab,id=9,"
      "proof=in-order");
  EXPECT_EQ(spec.identity.name, "Till 1");
  EXPECT_EQ(spec.identity.serialNumber, "S7");
  EXPECT_EQ(spec.identity.modelNumber, "XQ700");
  EXPECT_EQ(spec.identity.manufacturer, "Other");
  EXPECT_THAT(spec.identity.protocolStrings, ElementsAre("a.b"));
  EXPECT_EQ(spec.identity.address, "01:23:45:67:89:ab");
  EXPECT_EQ(spec.id, 9U);
  EXPECT_EQ(spec.identity.proof, ProofKind::InOrder);
}

TEST(DeviceSpec, AcceptsTheCommonKeysInEveryScheme) {
  for (const char* start : {"virtual:", "tcp:h:1", "unix:p", "serial:/dev/x"}) {
    const std::string text =
        start + ",name=n,serial=,model=,manufacturer=,protocol=,address=,id=0,proof=none"s;
    EXPECT_EQ(parseDeviceSpec(text).identity.name, "n");
    EXPECT_TRUE(parseDeviceSpec(text).options.empty());
  }
}

TEST(DeviceSpec, RefusesAnInvalidBluetoothAddress) {
  for (const char* wrong :
       {"01:23", "0123456789AB", "01-23-45-67-89-AB", "01:23:45:67:89:AG", "01:23:45:67:89:AB ",
        " 01:23:45:67:89:AB", "01:23:45:67:89:AB:CD", "01:23:45:67:89:", "x"}) {
    EXPECT_THAT(failure("unix:p,address="s + wrong),
                AllOf(HasSubstr("address=\""s + wrong), HasSubstr("01:23:45:67:89:AB")))
        << wrong;
  }
}

TEST(DeviceSpec, AcceptsOnlyTheNamesOfProofsAsProof) {
  EXPECT_EQ(parseDeviceSpec("unix:p").identity.proof, ProofKind::Auto);
  for (const ProofWords& proof : proofWords) {
    EXPECT_EQ(parseDeviceSpec("unix:p,proof=" + std::string(proof.name)).identity.proof,
              proof.kind);
  }
  for (const char* wrong : {"", "Block", "process", "all"}) {
    EXPECT_THAT(failure("unix:p,proof="s + wrong),
                AllOf(HasSubstr("proof=\""s + wrong), HasSubstr("process-id")))
        << wrong;
  }
}

TEST(DeviceSpec, GivenProtocolsReplaceTheDefaultAndKeepTheirOrder) {
  EXPECT_THAT(parseDeviceSpec("unix:p,protocol=b,protocol=a").identity.protocolStrings,
              ElementsAre("b", "a"));
}

TEST(DeviceSpec, AnEmptyValueSetsAnEmptyText) {
  const AccessoryIdentity identity = parseDeviceSpec("unix:p,name=,serial=,manufacturer=").identity;
  EXPECT_EQ(identity.name, "");
  EXPECT_EQ(identity.serialNumber, "");
  EXPECT_EQ(identity.manufacturer, "");
}

TEST(DeviceSpec, ABackslashEscapesTheNextCharacter) {
  const DeviceSpec spec = parseDeviceSpec(R"(unix:/a\,b\\c,name=x\,y=\z)");
  EXPECT_EQ(spec.place, R"(/a,b\c)");
  EXPECT_EQ(spec.identity.name, "x,y=z");
}

TEST(DeviceSpec, AcceptsIdentifiersOf64Bits) {
  EXPECT_EQ(parseDeviceSpec("unix:p,id=0").id, 0U);
  EXPECT_EQ(parseDeviceSpec("unix:p,id=18446744073709551615").id,
            std::numeric_limits<std::uint64_t>::max());
  for (const char* wrong : {"", "-1", "+1", " 1", "1 ", "0x1", "18446744073709551616", "one"}) {
    EXPECT_THAT(failure("unix:p,id="s + wrong),
                AllOf(HasSubstr("id="), HasSubstr("a number from 0")))
        << wrong;
  }
}

TEST(DeviceSpec, AHostNameWithoutASchemeMeansTcpPort9100) {
  for (const char* host :
       {"kitchen", "printer.example", "192.0.2.10", "[2001:db8::1]", "a-z", "A_Z", "0-9"}) {
    const DeviceSpec spec = parseDeviceSpec(host + ",name=Till"s);
    EXPECT_EQ(spec.scheme, "tcp");
    EXPECT_EQ(spec.place, host + ":9100"s);
    EXPECT_EQ(spec.identity.name, "Till");
  }
}

TEST(DeviceSpec, APathOfATerminalDeviceNeedsNoScheme) {
  for (const char* path : {"/dev/ttyUSB0", "/dev/ttyS1", "/dev/serial/by-id/usb-x", "/dev/pts/3"}) {
    EXPECT_EQ(parseDeviceSpec(path).scheme, "serial");
    EXPECT_EQ(parseDeviceSpec(path).place, path);
  }
}

TEST(DeviceSpec, AUsbPrinterAcceptsAnyAddressEvenAnEmptyOne) {
  for (const char* place : {"", "S 1/7", "04b8:0202", "/dev/usb/lp0"}) {
    EXPECT_EQ(parseDeviceSpec("usb:"s + place).place, place);
  }
  EXPECT_EQ(parseDeviceSpec("/dev/usb/lp0").scheme, "usb");
  EXPECT_THAT(failure("usb:,baud=9600"), HasSubstr("\"baud\""));
  EXPECT_THAT(failure("usb:" + std::string(4096, 'S')), HasSubstr("1 to 4095"));
}

TEST(DeviceSpec, TheErrorOfATextWithoutASchemeSuggestsTheRightForm) {
  EXPECT_THAT(failure("/run/printer"),
              AllOf(HasSubstr("\"unix:/run/printer\""), HasSubstr("\"serial:/run/printer\"")));
  EXPECT_THAT(failure("kitchen:9100"), HasSubstr("perhaps \"tcp:kitchen:9100\""));
  EXPECT_THAT(failure("tcp"), testing::Not(HasSubstr("perhaps")));
}

TEST(Scheme, HasHelpTextsForItsKeysAndAdviceForItsErrors) {
  for (const Scheme* const scheme : schemes()) {
    EXPECT_EQ(findScheme(scheme->name), scheme);
    EXPECT_NE(scheme->about, "") << scheme->name;
    EXPECT_NE(scheme->ifSilent, "") << scheme->name;
    EXPECT_NE(scheme->ifNotUnderstood, "") << scheme->name;
    for (const SchemeKey& key : scheme->keys) {
      EXPECT_NE(key.values, "") << key.name;
    }
  }
  EXPECT_EQ(findScheme("pigeon"), nullptr);
}

TEST(Scheme, EachErrorOfTheUsbDriverHasItsOwnAdvice) {
  using posix::UsbError;
  const auto causes = findScheme("usb")->causes;
  for (const UsbError error : {UsbError::NotPluggedIn, UsbError::Ambiguous, UsbError::NoDriver,
                               UsbError::HeldByPrintSystem, UsbError::DroppedByHub}) {
    const std::error_code code(static_cast<int>(error), posix::usbCategory());
    EXPECT_EQ(std::count_if(causes.begin(), causes.end(),
                            [&](const OpenCause& cause) { return cause.fits(code); }),
              1)
        << code.message();
  }
}

TEST(OpenCause, MatchesAnErrorNumberOnlyInTheSystemAndGenericCategories) {
  const OpenCause busy{EBUSY, "in-use", "another program uses it", "end the other program"};
  EXPECT_TRUE(busy.fits({EBUSY, std::generic_category()}));
  EXPECT_TRUE(busy.fits({EBUSY, std::system_category()}));
  EXPECT_FALSE(busy.fits({EBUSY, posix::usbCategory()}));
  EXPECT_FALSE(busy.fits({ENOENT, std::system_category()}));
}

TEST(Schemes, TcpExplainsEachResolverErrorByExactlyOneCause) {
  const auto& causes = findScheme("tcp")->causes;
  for (const int code : {EAI_NONAME, EAI_AGAIN, EAI_FAIL}) {
    const std::error_code error(code, posix::resolverCategory());
    EXPECT_EQ(std::ranges::count_if(causes, [&](const auto& cause) { return cause.fits(error); }),
              1);
  }
}

TEST(Schemes, ASchemeOfAKnownNameIsNotAddedAgain) {
  const std::size_t before = schemes().size();
  addScheme(*findScheme("tcp"));
  EXPECT_EQ(schemes().size(), before);
}

TEST(DeviceSpec, KeepsTheOrderOfTheVirtualPrintersKeys) {
  for (const char* start : {"virtual:,", "virtual:"}) {
    EXPECT_EQ(parseDeviceSpec(start + "cover=open,model=M"s).options.front().second, "open");
  }
  const DeviceSpec spec = parseDeviceSpec("virtual:,cover=open,model=M,fault=a,fault=b,baud=1");
  EXPECT_THAT(spec.options, ElementsAre(Pair("cover", "open"), Pair("fault", "a"),
                                        Pair("fault", "b"), Pair("baud", "1")));
  EXPECT_EQ(spec.identity.modelNumber, "M");
}

TEST(DeviceSpec, TheErrorOfAnUnknownSchemeNamesTheKnownSchemes) {
  for (const char* wrong : {"", ":", "tcp", "virtual", "udp:h:1", "h h", "TCP:h:1", " tcp:h:1",
                            "tcp,:", "pty:", "[::1", "a{b"}) {
    EXPECT_THAT(failure(wrong), AllOf(HasSubstr("virtual:"), HasSubstr("tcp:HOST:PORT"),
                                      HasSubstr("unix:PATH"), HasSubstr("serial:PATH")))
        << wrong;
  }
}

TEST(DeviceSpec, TheErrorOfAnUnknownKeyNamesTheKeyAndTheKnownKeys) {
  EXPECT_THAT(failure("tcp:h:1,colour=red"),
              AllOf(HasSubstr("\"colour\""), HasSubstr("tcp:"), HasSubstr("name"), HasSubstr("id"),
                    testing::Not(HasSubstr("baud"))));
  EXPECT_THAT(failure("unix:p,baud=9600"), HasSubstr("\"baud\""));
  EXPECT_THAT(failure("serial:/dev/x,bauds=9600"),
              AllOf(HasSubstr("\"bauds\""), HasSubstr("baud")));
}

TEST(DeviceSpec, AKeyWithoutAnEqualsSignIsAnError) {
  for (const char* wrong :
       {"unix:p,", "unix:p,name", "unix:p,=x", "virtual:,,", "unix:p,name=a,"}) {
    EXPECT_THAT(failure(wrong), HasSubstr("key=value")) << wrong;
  }
}

TEST(DeviceSpec, TheErrorOfARepeatedKeyNamesTheKey) {
  EXPECT_THAT(failure("unix:p,name=a,name=a"), AllOf(HasSubstr("\"name\""), HasSubstr("twice")));
  EXPECT_THAT(failure("serial:/dev/x,baud=9600,baud=9600"), HasSubstr("\"baud\""));
}

TEST(DeviceSpec, ABackslashAtTheEndIsAnError) {
  EXPECT_THAT(failure(R"(unix:p\)"), HasSubstr("backslash"));
  EXPECT_THAT(failure(R"(unix:p,name=\\\)"), HasSubstr("backslash"));
}

TEST(DeviceSpec, TheErrorOfAnInvalidAddressShowsTheValidForm) {
  for (const std::string& wrong :
       {""s, "h"s, "h:"s, ":1"s, "h:0"s, "h:65536"s, "h:-1"s, "h:1 "s, "h h:1"s, "::1:9100"s,
        "[]:1"s, "h\0i:1"s, "h:1\0"s, std::string(254, 'h') + ":1"}) {
    EXPECT_THAT(failure("tcp:" + wrong), HasSubstr("HOST:PORT")) << wrong;
  }
  EXPECT_THAT(failure("unix:"), HasSubstr("1 to 107"));
  EXPECT_THAT(failure("unix:" + std::string(108, 'p')), HasSubstr("1 to 107"));
  EXPECT_EQ(failure("unix:" + std::string(107, 'p')), "it was taken");
  EXPECT_THAT(failure("unix:a\0b"s), HasSubstr("none of them zero"));
  EXPECT_THAT(failure("serial:"), HasSubstr("1 to 4095"));
  EXPECT_THAT(failure("serial:/dev\0"s), HasSubstr("none of them zero"));
}

TEST(HostAndPort, AreSplitAtTheLastColonAndBracketsAreRemoved) {
  EXPECT_EQ(parseHostAndPort("printer.example:9100").host, "printer.example");
  EXPECT_EQ(parseHostAndPort("printer.example:9100").port, 9100);
  EXPECT_EQ(parseHostAndPort("[::1]:65535").host, "::1");
  EXPECT_EQ(parseHostAndPort("[a]:1").host, "a");
  EXPECT_EQ(parseHostAndPort(std::string(253, 'h') + ":1").host.size(), 253U);
  EXPECT_EQ(parseHostAndPort("[::1]:65535").port, 65535);
}

TEST(HostAndPort, AnUnpairedBracketOrABlankIsRefused) {
  for (const char* text :
       {"[::1:9100", "::1]:9100", "a b:9100", "caf\xc3\xa9:9100", "h\x7f:9100"}) {
    EXPECT_THROW(parseHostAndPort(text), std::invalid_argument) << text;
  }
}

TEST(DeviceSpec, TheErrorOfAnyInvalidTextIsShortAndPrintable) {
  const std::string odd = "\0\x1b[31m%s%n\r\n\xff"s;
  const std::string huge(1'000'000, '%');
  for (const std::string& wrong :
       {odd, huge, "tcp:" + odd, "tcp:" + huge, "unix:" + huge, "serial:" + huge, "unix:p," + odd,
        "unix:p," + huge, "unix:p,id=" + huge, "unix:p," + huge + "=1", "serial:p,baud=" + odd,
        huge + "\\", "unix:p" + std::string(100'000, ',')}) {
    const std::string why = failure(wrong);
    EXPECT_NE(why, "it was taken");
    EXPECT_LT(why.size(), 300U);
    EXPECT_TRUE(isPrintable(why));
  }
}

TEST(DeviceSpec, AcceptsValuesOfAnyLengthWithAnyByte) {
  std::string odd = "%n \x1b\xff"s + '\0';
  EXPECT_EQ(parseDeviceSpec("unix:p,name=" + odd).identity.name, odd);
  const std::string huge(1'000'000, 'x');
  EXPECT_EQ(parseDeviceSpec("virtual:,name=" + huge).identity.name, huge);
}

TEST(DeviceText, GivesTheSameAddressAgainWhenParsed) {
  for (const std::string place : {"S 1/7", "a,b", "a\\b", "\\", ",baud=9600"}) {
    EXPECT_EQ(parseDeviceSpec(spec::deviceText("usb", place)).place, place);
  }
}

}  // namespace
}  // namespace quordalvane
