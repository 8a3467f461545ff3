// Surfaces as BMP files of 24 bits a dot, bottom row first. Any thread; no state.
#pragma once

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

inline constexpr std::size_t bitmapHeadSize = 54;

Bytes bitmapBytes(const Surface &surface);

}  // namespace numalink
