#include "exchange/shown_progress.h"

#include <algorithm>
#include <cstdint>

#include "telling/user_interface.h"

namespace numalink {

namespace {

constexpr int barSteps = 100;

}  // namespace

ShownProgress::ShownProgress(std::size_t total) : whole(std::max<std::size_t>(total, 1)) {
    userInterface.waitCursor(true);
    userInterface.progressRange(barSteps);
}

ShownProgress::~ShownProgress() {
    userInterface.progressRange(0);
    userInterface.waitCursor(false);
}

void ShownProgress::step(std::size_t done) {
    const int place = static_cast<int>(std::uint64_t{std::min(done, whole)} * barSteps / whole);
    if (place == shown) return;
    shown = place;
    userInterface.progressPosition(place);
}

}  // namespace numalink
