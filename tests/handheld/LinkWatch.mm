#include "tests/handheld/LinkWatch.h"

#include <cstdint>

using quordalvane::test::SocketLink;

@implementation QuorLinkWatch

- (instancetype)initWithLink:(std::shared_ptr<SocketLink>)aLink
                      stream:(NSStream*)aStream
                        type:(RunLoopEventType)aType {
  if ((self = [super init]) != nil) {
    link = new std::shared_ptr<SocketLink>(std::move(aLink));
    stream = aStream;
    type = aType;
    status = NSStreamStatusNotOpen;
  }
  return self;
}

- (void)dealloc {
  delete link;
  [thread_ release];
  [super dealloc];
}

- (void)setDelegate:(id<NSStreamDelegate>)delegate {
  @synchronized(self) {
    delegate_ = delegate;
  }
}

- (id<NSStreamDelegate>)delegate {
  @synchronized(self) {
    return delegate_;
  }
}

- (void*)watched {
  return reinterpret_cast<void*>(static_cast<std::intptr_t>((*link)->number()));
}

- (void)scheduleInRunLoop:(NSRunLoop*)loop forMode:(NSString*)mode {
  [loop addEvent:[self watched] type:type watcher:self forMode:mode];
  @synchronized(self) {
    [thread_ release];
    thread_ = [[NSThread currentThread] retain];
  }
}

// On the device any thread may change a run loop; here only its own thread may.
- (void)removeFromRunLoop:(NSRunLoop*)loop forMode:(NSString*)mode {
  NSThread* const thread = [self scheduledThread];
  @synchronized(self) {
    [thread_ release];
    thread_ = nil;
  }
  if (thread == nil || [thread isFinished]) {
    return;
  }
  [self performSelector:@selector(leaveMode:) onThread:thread withObject:mode waitUntilDone:YES];
}

- (void)leaveMode:(NSString*)mode {
  [[NSRunLoop currentRunLoop] removeEvent:[self watched] type:type forMode:mode all:YES];
}

- (NSThread*)scheduledThread {
  @synchronized(self) {
    return [[thread_ retain] autorelease];
  }
}

- (BOOL)runLoopShouldBlock:(BOOL*)shouldTrigger {
  *shouldTrigger = NO;
  return !isTold_;
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)aType
                extra:(void*)extra
              forMode:(NSString*)mode {
  isTold_ = true;
  const BOOL isLost = (*link)->isLost() || (*link)->isOutputBroken();
  const NSStreamEvent ready =
      type == ET_RDESC ? NSStreamEventHasBytesAvailable : NSStreamEventHasSpaceAvailable;
  [[self delegate] stream:stream handleEvent:isLost ? NSStreamEventEndEncountered : ready];
}

/// Makes the loop watch the socket again, and wakes the loop.
- (void)rearm {
  if (!isTold_.exchange(false)) {
    return;
  }
  NSThread* const thread = [self scheduledThread];
  if (thread != nil && ![thread isEqual:[NSThread currentThread]] && ![thread isFinished]) {
    [self performSelector:@selector(awake) onThread:thread withObject:nil waitUntilDone:NO];
  }
}

- (void)awake {
}

- (void)close {
  status = NSStreamStatusClosed;
}

- (NSStreamStatus)currentStatus {
  if (status == NSStreamStatusOpen && (*link)->isLost()) {
    return NSStreamStatusAtEnd;
  }
  if (status == NSStreamStatusOpen && type == ET_WDESC && (*link)->isOutputBroken()) {
    return NSStreamStatusError;
  }
  return status;
}

@end
