// What statistics keeps from statement to statement beside the named values: the latest regression, where residuals go,
// and how the three graphs are set up. Run thread.
#pragma once

#include <array>
#include <optional>

#include "emulator/machine/machine.h"
#include "emulator/numerics/regression.h"

namespace numalink {

enum class StatGraphKind : std::uint8_t {
    scatter,
    xyLine,
    normalPlot,
    histogram,
    medianBox,
    meanBox,
    normalCurve,
    broken,
    regression  // its curve
};
enum class StatMark : std::uint8_t { square, cross, dot };

struct StatGraph {
    bool isOn = false;
    StatGraphKind kind = StatGraphKind::scatter;
    RegressionKind regression = RegressionKind::linear;
    std::size_t xList = 0, yList = 1;        // places in the file in use, from 0
    std::optional<std::size_t> frequencies;  // none: each counts once
    StatMark mark = StatMark::square;
    PixelColor color = pixelColor::blue;
};
inline constexpr std::size_t statGraphCount = 3;

struct StatisticsMemory {
    std::optional<Regression> curve;
    std::optional<std::size_t> residualList;  // from 0, of the file in use
    std::array<StatGraph, statGraphCount> graphs{};
    bool fitsWindow = true;  // S-WindAuto
};

inline StatisticsMemory statisticsMemory;  // as new at the start of a run

}  // namespace numalink
