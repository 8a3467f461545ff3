// The wait cursor and a moving bar while something long goes on. Graphical thread only.
#pragma once

#include <cstddef>

namespace numalink {

// Both are there for the life of the object. One at a time: the bar is the window's only one.
class ShownProgress {
public:
    explicit ShownProgress(std::size_t total);  // in steps or bytes, whatever step() counts
    ~ShownProgress();
    ShownProgress(const ShownProgress &) = delete;
    ShownProgress &operator=(const ShownProgress &) = delete;

    void step(std::size_t done);  // of total; painting waits until it has moved visibly

private:
    std::size_t whole;
    int shown = 0;  // hundredths
};

}  // namespace numalink
