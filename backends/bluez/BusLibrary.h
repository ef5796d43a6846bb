#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The parts of the library sdbus-c++ that differ between its versions 1 and 2, in one form. Both
/// halves define the same names, and no other file knows which version it is built with.
namespace quordalvane::bluez {

/// Takes a message that fits a rule.
using MessageHandler = std::function<void(sdbus::Message&)>;

#if QUOR_SDBUS_VERSION == 1

// Version 1 takes every name as a text.
using ServiceName = std::string;
using InterfaceName = std::string;
using MemberName = std::string;
using ErrorName = std::string;

/// The error that an answer is; null if it is none.
using ReplyError = const sdbus::Error*;

/// Takes the answer to a call.
using ReplyHandler = std::function<void(sdbus::MethodReply&, const ReplyError&)>;

/// A method or a property of an object.
using Served = std::function<void(sdbus::IObject&, const std::string& interface)>;

/// A method of which `function` gives the answer.
template <typename Function>
Served method(const std::string& name, Function function) {
  return [=](sdbus::IObject& object, const std::string& interface) {
    object.registerMethod(name).onInterface(interface).implementedAs(function);
  };
}

/// A property of which `getter` gives the value.
template <typename Getter>
Served property(const std::string& name, Getter getter) {
  return [=](sdbus::IObject& object, const std::string& interface) {
    object.registerProperty(name).onInterface(interface).withGetter(getter);
  };
}

/// Serves all of them on `interface` of `object`: once for each object.
inline void serveOn(sdbus::IObject& object, const std::string& interface,
                    const std::vector<Served>& all) {
  for (const Served& one : all) {
    one(object, interface);
  }
  object.finishRegistration();
}

/// The program whose call `object` is about to answer.
inline std::string callerOf(const sdbus::IObject& object) {
  return object.getCurrentlyProcessedMessage()->getSender();
}

/// Sends the call. `take` gets the answer when messages are handled, unless the call is cancelled.
inline sdbus::PendingAsyncCall send(sdbus::IProxy& proxy, const sdbus::MethodCall& message,
                                    ReplyHandler take, std::chrono::seconds timeout) {
  return proxy.callMethod(message, std::move(take), timeout);
}

/// `take` gets each message that fits `rule`, as long as the result lives.
inline sdbus::Slot addMatch(sdbus::IConnection& connection, const std::string& rule,
                            MessageHandler take) {
  return connection.addMatch(rule, std::move(take));
}

/// Handles one message that has arrived; false if there is none.
inline bool handleMessage(sdbus::IConnection& connection) {
  return connection.processPendingRequest();
}

#else

using sdbus::InterfaceName;
using sdbus::MemberName;
using sdbus::ServiceName;
using ErrorName = sdbus::Error::Name;
using ReplyError = std::optional<sdbus::Error>;
using ReplyHandler = std::function<void(sdbus::MethodReply&, const ReplyError&)>;
using Served = sdbus::VTableItem;

template <typename Function>
Served method(const std::string& name, Function function) {
  return sdbus::registerMethod(name).implementedAs(std::move(function));
}

template <typename Getter>
Served property(const std::string& name, Getter getter) {
  return sdbus::registerProperty(name).withGetter(std::move(getter));
}

inline void serveOn(sdbus::IObject& object, const std::string& interface,
                    const std::vector<Served>& all) {
  object.addVTable(InterfaceName(interface), all);
}

inline std::string callerOf(const sdbus::IObject& object) {
  return object.getCurrentlyProcessedMessage().getSender();
}

inline sdbus::PendingAsyncCall send(sdbus::IProxy& proxy, const sdbus::MethodCall& message,
                                    ReplyHandler take, std::chrono::seconds timeout) {
  return proxy.callMethodAsync(
      message,
      [take = std::move(take)](sdbus::MethodReply reply, const ReplyError& error) {
        take(reply, error);
      },
      timeout);
}

inline sdbus::Slot addMatch(sdbus::IConnection& connection, const std::string& rule,
                            MessageHandler take) {
  return connection.addMatch(
      rule, [take = std::move(take)](sdbus::Message message) { take(message); },
      sdbus::return_slot);
}

inline bool handleMessage(sdbus::IConnection& connection) {
  return connection.processPendingEvent();
}

#endif

}  // namespace quordalvane::bluez
