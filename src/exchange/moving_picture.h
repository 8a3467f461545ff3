// A run's display as a moving picture: the frames as they come, each as the dots that it changes, and the files that
// hold them. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

inline constexpr int movieZoomLimit = 8;
inline constexpr std::uint64_t movieFrameShortest = 20;  // milliseconds: players take shorter ones as they like
inline constexpr std::size_t movieFrameLimit = 100'000;
inline constexpr std::size_t movieDotLimit = 128u << 20;  // of all frames, a byte each

// The colours of the calculator's display, and one that leaves the dot as it was. A picture of more, of the key pad,
// has a second palette with room for them.
inline constexpr Color movieColors[] = {lcdColor::background, lcdColor::green, lcdColor::orange, lcdColor::blue,
                                        lcdColor::black};
inline constexpr std::uint8_t movieUnchanged = 7, movieUnchangedOfMany = 15;
inline constexpr std::size_t movieColorLimit = movieUnchangedOfMany;

struct MovieFrame {
    int x = 0, y = 0, width = 0, height = 0;  // dots of the picture, not zoomed; at least one
    std::vector<std::uint8_t> dots;           // places in the picture's colours, or its unchanged
    std::uint32_t hundredths = 0;             // of a second, until the next one
};

struct MovingPicture {
    int width = 0, height = 0;  // dots
    std::vector<Color> colors{std::begin(movieColors), std::end(movieColors)};
    std::uint8_t unchanged = movieUnchanged;
    std::vector<MovieFrame> frames;
    bool isFull = false;  // a limit was met, and what came behind is left out
};

// Takes what is shown and when, in milliseconds that never fall. What is shown for less than the shortest frame gives
// its place to what comes next.
class MovieRecorder {
public:
    MovieRecorder() = default;
    // What is shown has these colours too; of more than fit a picture the last ones are left out.
    explicit MovieRecorder(std::span<const Color> moreColors);
    void show(const Surface &surface, std::uint64_t milliseconds);
    MovingPicture finish(std::uint64_t milliseconds);
    const MovingPicture &soFar() const { return picture; }  // of its last frame the length may still grow

private:
    void keepFrame(std::uint64_t until);

    MovingPicture picture;
    std::size_t dots = 0;   // of all frames
    Surface last, pending;  // what the frames have made of the picture, and what is on show
    std::uint64_t pendingSince = 0;
};

// The files, in which each dot is zoom by zoom dots. Nothing for a picture without frames, a zoom beyond 1 to the
// limit, or without memory. They go round for ever.
std::optional<Bytes> gifFile(const MovingPicture &picture, int zoom);
// goesOn is asked ahead of each frame, by its number; false: nothing.
std::optional<Bytes> apngFile(
    const MovingPicture &picture, int zoom,
    const std::function<bool(std::size_t frame)> &goesOn = [](std::size_t) { return true; });

// A GIF file that grows with its frames, so that its size is known while they come.
class GifWriter {
public:
    GifWriter(const MovingPicture &picture, int zoom);  // of its size and colours; the frames follow
    ~GifWriter();
    GifWriter(const GifWriter &) = delete;
    GifWriter &operator=(const GifWriter &) = delete;

    void add(const MovieFrame &frame);
    std::size_t size() const;
    std::optional<Bytes> finish();  // once; nothing without a frame, beyond the zooms, or where memory gave out

private:
    struct File;
    std::unique_ptr<File> file;
};

// A frame's dots, zoomed.
std::vector<std::uint8_t> zoomedDots(const MovieFrame &frame, int zoom);

}  // namespace numalink
