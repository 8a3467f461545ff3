#include "exchange/moving_picture.h"

#include <algorithm>

namespace numalink {

namespace {

// What isn't one of the display's colours can't come from it.
std::uint8_t placeOf(Color color, const std::vector<Color> &colors) {
    const auto found = std::ranges::find(colors, color);
    return found == colors.end() ? 0 : static_cast<std::uint8_t>(found - colors.begin());
}

// The smallest rectangle that holds all dots which differ; the first dot alone
// where none does.
MovieFrame rectangleOf(const Surface &from, const Surface &to) {
    int left = to.width, right = 0, top = to.height, bottom = 0;
    for (int y = 0; y < to.height; y++) {
        for (int x = 0; x < to.width; x++) {
            if (dotAt(from, x, y) == dotAt(to, x, y)) continue;
            left = std::min(left, x);
            right = std::max(right, x + 1);
            top = std::min(top, y);
            bottom = std::max(bottom, y + 1);
        }
    }
    if (right == 0) return {.width = 1, .height = 1, .dots = {}};
    return {.x = left, .y = top, .width = right - left, .height = bottom - top, .dots = {}};
}

MovieFrame changeBetween(const Surface *from, const Surface &to, const MovingPicture &picture) {
    MovieFrame frame{.width = to.width, .height = to.height, .dots = {}};
    if (from != nullptr) frame = rectangleOf(*from, to);
    frame.dots.reserve(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height));
    for (int y = frame.y; y < frame.y + frame.height; y++) {
        for (int x = frame.x; x < frame.x + frame.width; x++) {
            const bool isSame = from != nullptr && dotAt(*from, x, y) == dotAt(to, x, y);
            frame.dots.push_back(isSame ? picture.unchanged : placeOf(dotAt(to, x, y), picture.colors));
        }
    }
    return frame;
}

}  // namespace

MovieRecorder::MovieRecorder(std::span<const Color> moreColors) {
    picture.unchanged = movieUnchangedOfMany;
    const std::size_t room = movieColorLimit - picture.colors.size();
    const auto taken = moreColors.first(std::min(room, moreColors.size()));
    picture.colors.insert(picture.colors.end(), taken.begin(), taken.end());
}

void MovieRecorder::show(const Surface &surface, std::uint64_t milliseconds) {
    if (picture.width == 0) {
        picture.width = surface.width;
        picture.height = surface.height;
        pendingSince = milliseconds;
    } else if (milliseconds >= pendingSince + movieFrameShortest) {
        keepFrame(milliseconds);
    }
    pending = surface;
}

MovingPicture MovieRecorder::finish(std::uint64_t milliseconds) {
    if (picture.width != 0) keepFrame(std::max(milliseconds, pendingSince + movieFrameShortest));
    return std::move(picture);
}

// A frame's length is what its ends are apart in hundredths, so that no
// rounding adds up.
void MovieRecorder::keepFrame(std::uint64_t until) {
    picture.isFull = picture.isFull || picture.frames.size() >= movieFrameLimit || dots >= movieDotLimit;
    const auto length = static_cast<std::uint32_t>((until + 5) / 10 - (pendingSince + 5) / 10);
    const bool isSame = !picture.frames.empty() && last.dots == pending.dots;
    if (isSame || picture.isFull) {
        picture.frames.back().hundredths += length;
    } else {
        picture.frames.push_back(changeBetween(picture.frames.empty() ? nullptr : &last, pending, picture));
        dots += picture.frames.back().dots.size();
        picture.frames.back().hundredths = length;
        last = pending;
    }
    pendingSince = until;
}

std::vector<std::uint8_t> zoomedDots(const MovieFrame &frame, int zoom) {
    const auto width = static_cast<std::size_t>(frame.width), height = static_cast<std::size_t>(frame.height);
    const auto size = static_cast<std::size_t>(zoom);
    std::vector<std::uint8_t> dots;
    dots.reserve(frame.dots.size() * size * size);
    for (std::size_t y = 0; y < height * size; y++) {
        for (std::size_t x = 0; x < width * size; x++) dots.push_back(frame.dots[y / size * width + x / size]);
    }
    return dots;
}

}  // namespace numalink
