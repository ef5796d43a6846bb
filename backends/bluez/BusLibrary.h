#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Hides the differences between versions 1 and 2 of the library sdbus-c++. The two parts of this
/// file, one for each version, define the same names. No other file depends on the version.
namespace quordalvane::bluez {

/// A function that receives each message that matches a rule.
using MessageHandler = std::function<void(sdbus::Message&)>;

#if QUOR_SDBUS_VERSION == 1

// Version 1 of sdbus-c++ has no types for names: every name is a `std::string`.
using ServiceName = std::string;
using InterfaceName = std::string;
using MemberName = std::string;
using ErrorName = std::string;

/// The error in an answer; null if the answer is not an error.
using ReplyError = const sdbus::Error*;

/// A function that receives the answer to a call.
using ReplyHandler = std::function<void(sdbus::MethodReply&, const ReplyError&)>;

/// A function that adds one method or property to an object.
using Served = std::function<void(sdbus::IObject&, const std::string& interface)>;

/// Returns a method that calls `function`.
template <typename Function>
Served method(const std::string& name, Function function) {
  return [=](sdbus::IObject& object, const std::string& interface) {
    object.registerMethod(name).onInterface(interface).implementedAs(function);
  };
}

/// Returns a property with the value that `getter` returns.
template <typename Getter>
Served property(const std::string& name, Getter getter) {
  return [=](sdbus::IObject& object, const std::string& interface) {
    object.registerProperty(name).onInterface(interface).withGetter(getter);
  };
}

/// Makes `object` offer all methods and properties in `all` on `interface`. May be called once for
/// each object.
inline void serveOn(sdbus::IObject& object, const std::string& interface,
                    const std::vector<Served>& all) {
  for (const Served& one : all) {
    one(object, interface);
  }
  object.finishRegistration();
}

/// Returns the name of the calling program. To be called while `object` handles a call.
inline std::string callerOf(const sdbus::IObject& object) {
  return object.getCurrentlyProcessedMessage()->getSender();
}

/// Sends the call. Unless the call is cancelled, `take` receives the answer later, when messages
/// are handled.
inline sdbus::PendingAsyncCall send(sdbus::IProxy& proxy, const sdbus::MethodCall& message,
                                    ReplyHandler take, std::chrono::seconds timeout) {
  return proxy.callMethod(message, std::move(take), timeout);
}

/// Passes each message that matches `rule` to `take`, while the returned object exists.
inline sdbus::Slot addMatch(sdbus::IConnection& connection, const std::string& rule,
                            MessageHandler take) {
  return connection.addMatch(rule, std::move(take));
}

/// Handles one message that has arrived. Returns false if no message has arrived.
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
