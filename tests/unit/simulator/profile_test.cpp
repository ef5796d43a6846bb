#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "simulator/Profile.h"
#include "simulator/TextRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

std::string fileOf(const std::string& text) {
  std::string path = testing::TempDir() + "/printer.profile";
  std::ofstream(path) << text;
  return path;
}

TEST(Profile, IsAppliedByItsName) {
  for (const std::string_view name : profileNames()) {
    PrinterState state;
    applyProfile(name, state);
    EXPECT_EQ(state.profile, name);
  }
  PrinterState state;
  state.set("profile", "escpos-58");
  EXPECT_EQ(state.paperMillimetres(), 58U);
  EXPECT_EQ(state.dialect.proofs.text(), "in-order");
  EXPECT_FALSE(state.dialect.lineMode);
}

TEST(Profile, DoesNotDependOnAnEarlierProfile) {
  for (const std::string_view before : profileNames()) {
    for (const std::string_view name : profileNames()) {
      PrinterState fresh;
      applyProfile(name, fresh);
      PrinterState changed;
      applyProfile(before, changed);
      applyProfile(name, changed);
      for (const SettingForm& form : settingForms()) {
        EXPECT_EQ(changed.get(form.key), fresh.get(form.key))
            << form.key << " of " << name << " after " << before;
      }
    }
  }
}

TEST(Profile, CanLackLineMode) {
  Session session(PrinterBuilder().set("profile", "escpos-80"));
  EXPECT_EQ(session.ask("1b0601 1b232a0a00"), Bytes{});
  EXPECT_EQ(session.ask("100401 1d7201"), hex("12 00"));
}

TEST(Profile, CanBeReadFromAFile) {
  PrinterState state;
  applyProfile(fileOf("# mine\n\nmaker=Mine\npaper=58\n"), state);
  EXPECT_EQ(state.maker(), "Mine");
  EXPECT_EQ(state.paperMillimetres(), 58U);
}

TEST(Profile, CanLackGivenCommands) {
  Session session(PrinterBuilder().set("lacks", "1b4c+1d61 1d7201"));
  EXPECT_EQ(session.ask("1d61ff 1d7201 1d7202 100401"), hex("00 12"));
  session.send(hex("1b4c") + ascii("a\n"));
  EXPECT_EQ(renderText(session.printer.paper()), "a\n");
  std::vector<std::string> names;
  for (const auto& command : session.printer.paper().record().unknown()) {
    names.push_back(command.name);
  }
  EXPECT_THAT(names, ElementsAre("GS a", "GS r", "ESC L"));
  session.printer.set("lacks", "none", session.now);
  EXPECT_EQ(session.ask("1d7201"), hex("00"));
}

TEST(Profile, CanLackPageMode) {
  Session session(PrinterBuilder().set("profile", "silent-58"));
  session.send(hex("1b4c 1b57 0000 0000 c800 6400") + ascii("a\n") + hex("0c"));
  EXPECT_EQ(session.printer.paper().record().unknown().size(), 2U);
}

TEST(LackedCommands, AreGivenInHexOnly) {
  for (const char* wrong : {"1b", "1b4", "zz4c", "1b4c4c4c4c", "1b4c,1d61", "+1b4cx0"}) {
    PrinterState state;
    EXPECT_THAT([&] { state.set("lacks", wrong); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("in hex")))
        << wrong;
    EXPECT_EQ(state.lacked, LackedCommands());
  }
}

TEST(Profile, IsRefusedWithoutAnyChangeIfALineIsWrong) {
  PrinterState state;
  const std::string path = fileOf("maker=Mine\npaper=59\n");
  EXPECT_THAT([&] { applyProfile(path, state); }, ThrowsMessage<std::invalid_argument>(AllOf(
                                                      HasSubstr("line 2"), HasSubstr("58 or 80"))));
  EXPECT_EQ(state.maker(), PrinterState().maker());
  EXPECT_THROW(applyProfile(fileOf("profile=both"), state), std::invalid_argument);
  EXPECT_THROW(applyProfile(fileOf(std::string(70'000, '#')), state), std::invalid_argument);
  EXPECT_THROW(applyProfile("/", state), std::invalid_argument);
  EXPECT_THROW(applyProfile("/no/such/file", state), std::invalid_argument);
  EXPECT_THAT([&] { applyProfile("nobody", state); },
              ThrowsMessage<std::invalid_argument>(HasSubstr("escpos-80")));
}

}  // namespace
}  // namespace quordalvane::simulator
