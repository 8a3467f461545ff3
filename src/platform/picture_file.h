// Bitmap files of people's computers, decoded. Any thread; no state.
#pragma once

#include <functional>

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

enum class PictureResult { done, unreadable, tooLarge };

inline constexpr std::uint64_t pictureDotLimit = 32'000'000;  // dots of a picture that is decoded at all

// Whether the file's first bytes are those of a picture: BMP, PNG, JPEG, GIF and a few more. "BM" is enough.
bool isPictureFile(ByteView file);

// Decodes the file and takes from it, by the nearest dot without any smoothing, what fills scaled, whose size is set.
// The ratio of the sides isn't kept. What can be seen through becomes white. scaled is untouched unless done.
// read is told from time to time how many bytes of the file have been read.
PictureResult readScaledPicture(ByteView file, Surface &scaled, const std::function<void(std::size_t)> &read = {});

}  // namespace numalink
