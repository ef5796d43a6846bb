#include "tests/bluez/standins/NetworkService.h"

#include <utility>

namespace quordalvane::test {
namespace {

constexpr auto browserPath = "/Client0/ServiceBrowser0";
constexpr auto browserInterface = "org.freedesktop.Avahi.ServiceBrowser";
constexpr auto serverInterface = "org.freedesktop.Avahi.Server";

}  // namespace

StandInAvahi::StandInAvahi(std::vector<StandInAnnouncement> announcements)
    : announcements_(std::move(announcements)), connection_(sdbus::createSystemBusConnection()) {
  browser_ = sdbus::createObject(*connection_, sdbus::ObjectPath(browserPath));
  server_ = sdbus::createObject(*connection_, sdbus::ObjectPath("/"));
  bluez::serveOn(
      *server_, serverInterface,
      {bluez::method("ServiceBrowserNew",
                     [this](std::int32_t, std::int32_t, const std::string& type, const std::string&,
                            std::uint32_t) {
                       askedFor_.push_back(type);
                       announceAll();
                       return sdbus::ObjectPath(browserPath);
                     }),
       bluez::method("ResolveService",
                     [this](Resolved&& result, std::int32_t, std::int32_t, const std::string& name,
                            const std::string&, const std::string&, std::int32_t,
                            std::uint32_t) { resolve(std::move(result), name); })});
  connection_->requestName(bluez::ServiceName("org.freedesktop.Avahi"));
  thread_ = std::thread([this] {
    try {
      connection_->enterEventLoop();
    } catch (const sdbus::Error&) {
      // The bus has ended.
    }
  });
}

StandInAvahi::~StandInAvahi() {
  connection_->leaveEventLoop();
  thread_.join();
}

void StandInAvahi::announceAll() {
  for (const StandInAnnouncement& announcement : announcements_) {
    browser_->emitSignal("ItemNew")
        .onInterface(browserInterface)
        .withArguments(std::int32_t{2}, std::int32_t{0}, announcement.name, announcement.type,
                       std::string("local"), std::uint32_t{0});
  }
}

void StandInAvahi::resolve(Resolved&& result, const std::string& name) {
  for (const StandInAnnouncement& announcement : announcements_) {
    if (announcement.name == name && !announcement.address.empty()) {
      Texts texts;
      for (const std::string& text : announcement.texts) {
        texts.emplace_back(text.begin(), text.end());
      }
      return result.returnResults(2, 0, name, announcement.type, "local", "host.local", 0,
                                  announcement.address, announcement.port, texts,
                                  announcement.flags);
    }
  }
  unanswered_.push_back(std::make_shared<Resolved>(std::move(result)));
}

}  // namespace quordalvane::test
