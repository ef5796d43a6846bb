#include "tools/quorport/simulate/Listener.h"

#include <system_error>

#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/simulate/PtyListener.h"
#include "tools/quorport/simulate/SocketListener.h"

namespace quordalvane::tool {
namespace {

constexpr std::string_view tcpScheme = "tcp:";
constexpr std::string_view unixScheme = "unix:";
constexpr std::string_view ptyScheme = "pty:";

[[noreturn]] void refuse(const std::string& option, const std::string& text,
                         const std::string& takes) {
  throw CommandFailure(ExitCode::Usage, option + " takes " + takes + ", not " + inQuotes(text));
}

// Reads the path. A backslash makes the next character a part of the path. A comma is refused,
// because in a device text it begins a key.
std::string pathIn(const std::string& text, const std::string& option) {
  std::string path;
  for (std::size_t i = unixScheme.size(); i < text.size(); ++i) {
    const bool isEscape = text[i] == '\\' && i + 1 < text.size();
    if (text[i] == ',') {
      refuse(option, text, "unix:PATH with a backslash before each comma in PATH");
    }
    path += isEscape ? text[++i] : text[i];
  }
  if (path.empty() || path.size() > longestSocketPath) {
    refuse(option, text,
           "unix:PATH with a path of 1 to " + std::to_string(longestSocketPath) + " bytes");
  }
  return path;
}

template <typename Open>
std::unique_ptr<Listener> opened(const std::string& text, Open open) {
  try {
    return open();
  } catch (const std::exception& error) {
    throw CommandFailure(ExitCode::ExchangeFailed,
                         "cannot listen at " + inQuotes(text) + ": " + printable(error.what()));
  }
}

}  // namespace

std::unique_ptr<Listener> listenAt(const std::string& text) {
  if (text == ptyScheme) {
    return opened(text, [] { return std::make_unique<PtyListener>(); });
  }
  if (text.starts_with(unixScheme)) {
    const std::string path = pathIn(text, "--listen");
    return opened(text, [&] { return listenOnUnix(path, SocketAccess::AsUsual); });
  }
  if (text.starts_with(tcpScheme)) {
    if (const auto address = parseListenAddress(text.substr(tcpScheme.size()))) {
      return opened(text, [&] { return listenOnTcp(*address); });
    }
  }
  refuse("--listen", text,
         "tcp:, tcp:PORT, tcp:HOST:PORT (PORT from 0 to 65535, an IPv6 address in brackets), "
         "unix:PATH or pty:");
}

std::unique_ptr<Listener> listenForBrowsersAt(const std::string& text) {
  if (const auto address = text.empty() ? std::nullopt : parseListenAddress(text)) {
    return opened(text, [&] { return listenOnTcp(*address); });
  }
  refuse("--web", text, "PORT or HOST:PORT (PORT from 0 to 65535, an IPv6 address in brackets)");
}

std::unique_ptr<Listener> listenPrivatelyAt(const std::string& text, const std::string& option) {
  if (!text.starts_with(unixScheme)) {
    refuse(option, text, "unix:PATH");
  }
  const std::string path = pathIn(text, option);
  return opened(text, [&] { return listenOnUnix(path, SocketAccess::OwnerAlone); });
}

}  // namespace quordalvane::tool
