#include "tests/handheld/Accessories.h"

#import <ExternalAccessory/ExternalAccessory.h>
#import <UIKit/UIKit.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "tests/handheld/SocketStreams.h"

using quordalvane::test::PluggedAccessory;
using quordalvane::test::SocketLink;

namespace {

std::mutex pluggedMutex;
EAAccessory* pluggedAccessory = nil;  // guarded by pluggedMutex
std::atomic<bool> serviceRaises = false;

NSString* stringOf(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

/// The members of an accessory of the stand-in service.
struct Inside {
  PluggedAccessory plugged;
  std::mutex mutex;
  std::weak_ptr<SocketLink> newest;  // guarded by mutex
};

}  // namespace

@interface QuorPluggedAccessory : EAAccessory {
 @public
  Inside* inside;  // owned
}
@end

@implementation EAAccessory
@dynamic connected, connectionID, manufacturer, name, modelNumber, serialNumber, protocolStrings;
@end

@implementation QuorPluggedAccessory

- (void)dealloc {
  delete inside;
  [super dealloc];
}

- (BOOL)isConnected {
  const std::lock_guard lock(inside->mutex);
  const auto link = inside->newest.lock();
  return !link || !link->isHungUp();
}

- (NSUInteger)connectionID {
  return 7;
}

- (NSString*)manufacturer {
  return stringOf(inside->plugged.manufacturer);
}

- (NSString*)name {
  return stringOf(inside->plugged.name);
}

- (NSString*)modelNumber {
  return stringOf(inside->plugged.modelNumber);
}

- (NSString*)serialNumber {
  return stringOf(inside->plugged.serialNumber);
}

- (NSArray*)protocolStrings {
  NSMutableArray* const protocols = [NSMutableArray array];
  for (const auto& protocol : inside->plugged.protocolStrings) {
    [protocols addObject:stringOf(protocol)];
  }
  return protocols;
}

- (NSString*)description {
  return
      [NSString stringWithFormat:@"<accessory 7: %@, model %@, serial %@, maker %@>", [self name],
                                 [self modelNumber], [self serialNumber], [self manufacturer]];
}

@end

@implementation EAAccessoryManager

+ (EAAccessoryManager*)sharedAccessoryManager {
  static EAAccessoryManager* const manager = [[EAAccessoryManager alloc] init];
  return manager;
}

- (NSArray*)connectedAccessories {
  if (serviceRaises) {
    [NSException raise:NSInternalInconsistencyException format:@"the service is not there"];
  }
  const std::lock_guard lock(pluggedMutex);
  return pluggedAccessory == nil ? [NSArray array] : [NSArray arrayWithObject:pluggedAccessory];
}

@end

@interface QuorSocketSession : EASession {
  NSInputStream* input_;
  NSOutputStream* output_;
  std::shared_ptr<SocketLink>* link_;  // owned
}
- (instancetype)initWithLink:(std::shared_ptr<SocketLink>)link;
@end

// The header declares no instance variables, so each session is an object of a subclass that has
// them.
@implementation EASession
@dynamic inputStream, outputStream;

- (instancetype)initWithAccessory:(EAAccessory*)accessory forProtocol:(NSString*)protocolString {
  [self release];
  auto* const inside = static_cast<QuorPluggedAccessory*>(accessory)->inside;
  const int socket =
      [[accessory protocolStrings] containsObject:protocolString] ? inside->plugged.connect() : -1;
  if (socket < 0) {
    return nil;
  }
  const auto link = std::make_shared<SocketLink>(socket);
  {
    const std::lock_guard lock(inside->mutex);
    inside->newest = link;
  }
  return static_cast<id>([[QuorSocketSession alloc] initWithLink:link]);
}

@end

@implementation QuorSocketSession

- (instancetype)initWithLink:(std::shared_ptr<SocketLink>)link {
  if ((self = [super init]) != nil) {
    input_ = [[QuorSocketInputStream alloc] initWithLink:link];
    output_ = [[QuorSocketOutputStream alloc] initWithLink:link];
    link_ = new std::shared_ptr<SocketLink>(std::move(link));
  }
  return self;
}

- (void)dealloc {
  (*link_)->end();
  [input_ release];
  [output_ release];
  delete link_;
  [super dealloc];
}

- (NSInputStream*)inputStream {
  return input_;
}

- (NSOutputStream*)outputStream {
  return output_;
}

@end

@implementation UIDevice

+ (UIDevice*)currentDevice {
  static UIDevice* const device = [[UIDevice alloc] init];
  return device;
}

- (NSString*)systemVersion {
  return @"12.5.7";
}

@end

namespace quordalvane::test {

void plugIn(PluggedAccessory accessory) {
  QuorPluggedAccessory* const plugged = [[QuorPluggedAccessory alloc] init];
  plugged->inside = new Inside{.plugged = std::move(accessory), .mutex = {}, .newest = {}};
  const std::lock_guard lock(pluggedMutex);
  [pluggedAccessory release];
  pluggedAccessory = plugged;
}

void unplug() {
  const std::lock_guard lock(pluggedMutex);
  [pluggedAccessory release];
  pluggedAccessory = nil;
}

void letServiceRaise(bool raises) {
  serviceRaises = raises;
}

}  // namespace quordalvane::test
