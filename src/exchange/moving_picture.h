// A run's display as a moving picture: the frames as they come, each as the dots that it changes, and the files that
// hold them. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

inline constexpr int movieZoomLimit = 8;
inline constexpr std::uint64_t movieFrameShortest = 20;  // milliseconds: players take shorter ones as they like
inline constexpr std::size_t movieFrameLimit = 100'000;

// The colours of the calculator's display, and one that leaves the dot as it was.
inline constexpr Color movieColors[] = {lcdColor::background, lcdColor::green, lcdColor::orange, lcdColor::blue,
                                        lcdColor::black};
inline constexpr std::uint8_t movieUnchanged = 7;

struct MovieFrame {
    int x = 0, y = 0, width = 0, height = 0;  // dots of the picture, not zoomed; at least one
    std::vector<std::uint8_t> dots;           // places in movieColors, or movieUnchanged
    std::uint32_t hundredths = 0;             // of a second, until the next one
};

struct MovingPicture {
    int width = 0, height = 0;  // dots
    std::vector<MovieFrame> frames;
    bool isFull = false;  // the limit of frames was met, and what came behind is left out
};

// Takes what is shown and when, in milliseconds that never fall. What is shown for less than the shortest frame gives
// its place to what comes next.
class MovieRecorder {
public:
    void show(const Surface &surface, std::uint64_t milliseconds);
    MovingPicture finish(std::uint64_t milliseconds);

private:
    void keepFrame(std::uint64_t until);

    MovingPicture picture;
    Surface last, pending;  // what the frames have made of the picture, and what is on show
    std::uint64_t pendingSince = 0;
};

// The files, in which each dot is zoom by zoom dots. Nothing for a picture without frames, a zoom beyond 1 to the
// limit, or without memory. They go round for ever.
std::optional<Bytes> gifFile(const MovingPicture &picture, int zoom);
std::optional<Bytes> apngFile(const MovingPicture &picture, int zoom);

// A frame's dots, zoomed.
std::vector<std::uint8_t> zoomedDots(const MovieFrame &frame, int zoom);

}  // namespace numalink
