#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "tests/handheld/SocketLink.h"

@class QuorLinkWatch;

/// The input of a socket, as a stream of the framework. For each change, one event is delivered on
/// the run loop on which the stream is scheduled.
@interface QuorSocketInputStream : NSInputStream {
  QuorLinkWatch* watch_;
}
- (instancetype)initWithLink:(std::shared_ptr<quordalvane::test::SocketLink>)link;
@end

/// The output of a socket, as a stream of the framework.
@interface QuorSocketOutputStream : NSOutputStream {
  QuorLinkWatch* watch_;
}
- (instancetype)initWithLink:(std::shared_ptr<quordalvane::test::SocketLink>)link;
@end
