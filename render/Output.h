#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace quordalvane::render {

using ByteView = std::span<const std::uint8_t>;

/// Receives the next bytes for the printer; they are valid during the call. If an output throws,
/// the exception passes through the renderer, which must not be used afterwards.
using Output = std::function<void(ByteView)>;

}  // namespace quordalvane::render
