#include "tests/bluez/standins/PrivateBus.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>

namespace quordalvane::test {
namespace {

constexpr auto configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path=SOCKET</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/>
  </policy>
</busconfig>
)";

}  // namespace

PrivateBus::PrivateBus() {
  const std::string socket = folder_.file("bus");
  std::string text = configuration;
  text.replace(text.find("SOCKET"), 6, socket);
  std::ofstream(folder_.file("bus.conf")) << text;
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket).c_str(), 1);

  // The daemon writes its address as soon as it listens.
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addclose(&actions, ends[0]);
  // If a test crashes, its daemon continues to run. The daemon must not keep standard error open,
  // because the runner reads this stream to its end.
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string file = "--config-file=" + folder_.file("bus.conf");
  std::array<char*, 5> arguments = {const_cast<char*>("dbus-daemon"), file.data(),
                                    const_cast<char*>("--nofork"),
                                    const_cast<char*>("--print-address"), nullptr};
  EXPECT_EQ(::posix_spawnp(&daemon_, "dbus-daemon", &actions, nullptr, arguments.data(), environ),
            0);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  char letter = 0;
  EXPECT_EQ(::read(ends[0], &letter, 1), 1) << "the bus has not started";
  ::close(ends[0]);
}

PrivateBus::~PrivateBus() {
  kill();
}

void PrivateBus::kill() {
  if (daemon_ > 0) {
    ::kill(daemon_, SIGKILL);
    ::waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
  }
}

}  // namespace quordalvane::test
