#pragma once

#import <Foundation/Foundation.h>

#include <atomic>
#include <memory>

#include "tests/handheld/SocketLink.h"

/// Watches one direction of a socket on a run loop, and reports events to the delegate of a stream.
/// After an event, it reports no other event until `rearm` is called.
@interface QuorLinkWatch : NSObject <RunLoopEvents> {
 @public
  std::shared_ptr<quordalvane::test::SocketLink>* link;  // owned
  NSStream* stream;  // not retained, because the stream owns the watch
  RunLoopEventType type;
  std::atomic<NSStreamStatus> status;

 @private
  id<NSStreamDelegate> delegate_;
  NSThread* thread_;  // the thread on whose run loop the watch is scheduled, or nil
  std::atomic<bool> isTold_;
}

- (instancetype)initWithLink:(std::shared_ptr<quordalvane::test::SocketLink>)link
                      stream:(NSStream*)stream
                        type:(RunLoopEventType)type;
- (void)setDelegate:(id<NSStreamDelegate>)delegate;
- (id<NSStreamDelegate>)delegate;
- (void)scheduleInRunLoop:(NSRunLoop*)loop forMode:(NSString*)mode;
- (void)removeFromRunLoop:(NSRunLoop*)loop forMode:(NSString*)mode;
- (void)rearm;
- (void)close;
- (NSStreamStatus)currentStatus;
@end
