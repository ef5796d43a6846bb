#pragma once

namespace quordalvane::posix {

/// The speed at which the serial line of `descriptor` is set to send, in bits a second.
unsigned speedOf(int descriptor);

}  // namespace quordalvane::posix
