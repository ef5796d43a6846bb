#include "tests/handheld/SocketStreams.h"

#include "tests/handheld/LinkWatch.h"

using quordalvane::test::SocketLink;

// The methods that both streams share. The base classes of the streams leave these methods to a
// subclass.
#define QUOR_COMMON_STREAM_METHODS                                        \
  -(void)dealloc {                                                        \
    [watch_ release];                                                     \
    [super dealloc];                                                      \
  }                                                                       \
  -(void)open {                                                           \
    watch_->status = NSStreamStatusOpen;                                  \
  }                                                                       \
  -(void)close {                                                          \
    [watch_ close];                                                       \
  }                                                                       \
  -(id<NSStreamDelegate>)delegate {                                       \
    return [watch_ delegate];                                             \
  }                                                                       \
  -(void)setDelegate : (id<NSStreamDelegate>)delegate {                   \
    [watch_ setDelegate:delegate];                                        \
  }                                                                       \
  -(NSStreamStatus)streamStatus {                                         \
    return [watch_ currentStatus];                                        \
  }                                                                       \
  -(void)scheduleInRunLoop : (NSRunLoop*)loop forMode : (NSString*)mode { \
    [watch_ scheduleInRunLoop:loop forMode:mode];                         \
  }                                                                       \
  -(void)removeFromRunLoop : (NSRunLoop*)loop forMode : (NSString*)mode { \
    [watch_ removeFromRunLoop:loop forMode:mode];                         \
  }

@implementation QuorSocketInputStream

- (instancetype)initWithLink:(std::shared_ptr<SocketLink>)link {
  if ((self = [super init]) != nil) {
    watch_ = [[QuorLinkWatch alloc] initWithLink:std::move(link) stream:self type:ET_RDESC];
  }
  return self;
}

QUOR_COMMON_STREAM_METHODS

- (BOOL)hasBytesAvailable {
  const BOOL hasBytes = watch_->status == NSStreamStatusOpen && (*watch_->link)->hasBytes();
  if (!hasBytes && !(*watch_->link)->isLost()) {
    [watch_ rearm];
  }
  return hasBytes;
}

- (NSInteger)read:(uint8_t*)buffer maxLength:(NSUInteger)length {
  return watch_->status == NSStreamStatusOpen ? (*watch_->link)->read(buffer, length) : -1;
}

@end

@implementation QuorSocketOutputStream

- (instancetype)initWithLink:(std::shared_ptr<SocketLink>)link {
  if ((self = [super init]) != nil) {
    watch_ = [[QuorLinkWatch alloc] initWithLink:std::move(link) stream:self type:ET_WDESC];
  }
  return self;
}

QUOR_COMMON_STREAM_METHODS

- (BOOL)hasSpaceAvailable {
  const BOOL hasSpace = watch_->status == NSStreamStatusOpen && (*watch_->link)->hasSpace();
  if (!hasSpace) {
    [watch_ rearm];
  }
  return hasSpace;
}

- (NSInteger)write:(const uint8_t*)buffer maxLength:(NSUInteger)length {
  return watch_->status == NSStreamStatusOpen ? (*watch_->link)->write(buffer, length) : -1;
}

@end
