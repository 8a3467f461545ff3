// The three graphs of statistics: how they are set up, the window that fits them, and their drawing.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/curves.h"
#include "emulator/statements/list_names.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

// The words of a set-up.
constexpr Token drawOn{0xF7, 0xCC}, drawOff{0xF7, 0xDC};

struct MarkRow {
    Token token;
    StatMark mark = StatMark::square;
};
constexpr MarkRow marks[] = {
    {{0xF7, 0x4D}, StatMark::square}, {{0xF7, 0x4E}, StatMark::cross}, {{0xF7, 0x4F}, StatMark::dot}};

struct ColorRow {
    Token token;
    PixelColor color = pixelColor::blue;
};
constexpr ColorRow colors[] = {
    {{0x7F, 0x34}, pixelColor::orange}, {{0x7F, 0x35}, pixelColor::blue}, {{0x7F, 0x36}, pixelColor::green}};

struct KindRow {
    Token token;
    StatGraphKind kind = StatGraphKind::scatter;
    RegressionKind regression = RegressionKind::linear;
};
constexpr KindRow kinds[] = {
    {{0xF7, 0x32}, StatGraphKind::normalPlot},
    {{0xF7, 0x33}, StatGraphKind::regression, RegressionKind::sinusoidal},
    {{0xF7, 0x35}, StatGraphKind::regression, RegressionKind::logistic},
    {{0xF7, 0x50}, StatGraphKind::scatter},
    {{0xF7, 0x51}, StatGraphKind::xyLine},
    {{0xF7, 0x52}, StatGraphKind::histogram},
    {{0xF7, 0x53}, StatGraphKind::medianBox},
    {{0xF7, 0x54}, StatGraphKind::meanBox},
    {{0xF7, 0x55}, StatGraphKind::normalCurve},
    {{0xF7, 0x56}, StatGraphKind::broken},
    {{0xF7, 0x57}, StatGraphKind::regression, RegressionKind::linear},
    {{0xF7, 0x58}, StatGraphKind::regression, RegressionKind::medianLine},
    {{0xF7, 0x59}, StatGraphKind::regression, RegressionKind::quadratic},
    {{0xF7, 0x5A}, StatGraphKind::regression, RegressionKind::cubic},
    {{0xF7, 0x5B}, StatGraphKind::regression, RegressionKind::quartic},
    {{0xF7, 0x5C}, StatGraphKind::regression, RegressionKind::logarithmic},
    {{0xF7, 0x5D}, StatGraphKind::regression, RegressionKind::exponential},
    {{0xF7, 0x5E}, StatGraphKind::regression, RegressionKind::power},
};

template <typename Row>
const Row *rowOf(std::span<const Row> rows, const ProgramCell &cell) {
    const auto row = std::ranges::find_if(rows, [&cell](const Row &each) { return isToken(cell, each.token); });
    return row == rows.end() ? nullptr : &*row;
}

bool hasY(StatGraphKind kind) {
    return kind == StatGraphKind::scatter || kind == StatGraphKind::xyLine || kind == StatGraphKind::regression;
}

// One word of a set-up, from cell on: on or off, kind, lists in their order, 1 for no frequencies, mark, color. False
// where it is none, or comes out of turn.
bool takeWord(const RunState &state, int &cell, StatGraph &graph, int &listsTaken) {
    if (!hasCell(state, cell)) return false;
    const ProgramCell &word = state.statement[cell];
    if (const auto list = takeListName(state, cell)) {
        const bool skipsY = listsTaken > 0 && !hasY(graph.kind);
        const int place = listsTaken + (skipsY ? 1 : 0);
        listsTaken++;
        if (place == 0) graph.xList = *list;
        if (place == 1) graph.yList = *list;
        if (place == 2) graph.frequencies = list;
        return place <= 2;
    }
    cell++;
    if (isNumber(word)) return word.value.re == 1;
    if (isToken(word, drawOn) || isToken(word, drawOff)) {
        graph.isOn = isToken(word, drawOn);
    } else if (const KindRow *kind = rowOf<KindRow>(kinds, word)) {
        graph.kind = kind->kind;
        graph.regression = kind->regression;
        graph.frequencies.reset();
    } else if (const MarkRow *mark = rowOf<MarkRow>(marks, word)) {
        graph.mark = mark->mark;
    } else if (const ColorRow *color = rowOf<ColorRow>(colors, word)) {
        graph.color = color->color;
    } else {
        return false;
    }
    return true;
}

WayOut runSetUp(RunState &state) {
    StatGraph &graph = statisticsMemory.graphs[static_cast<std::size_t>(state.statement[0].token2 - 0x4A)];
    StatGraph next = graph;
    int cell = 1, listsTaken = 0;
    bool fits = takeWord(state, cell, next, listsTaken);
    while (fits && hasCell(state, cell)) {
        fits = isToken(state.statement[cell], token::comma);
        fits = fits && takeWord(state, ++cell, next, listsTaken);
    }
    if (fits) {
        graph = next;
    } else {
        synError();
    }
    return handled(state);
}

template <bool fits>
WayOut runWindow(RunState &state) {
    expectAlone(state);
    statisticsMemory.fitsWindow = fits;
    return handled(state);
}

// A range of view window units, empty at first.
struct Range {
    double low = HUGE_VAL, high = -HUGE_VAL;

    void include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    void include(std::span<const double> values) {
        for (const double value : values) include(value);
    }
};

struct Bars {
    double start = 0, pitch = 1;
    std::vector<double> heights;

    double left(std::size_t bar) const { return start + pitch * static_cast<double>(bar); }
    double middle(std::size_t bar) const { return left(bar) + pitch / 2; }
};

// One graph with its data and what it draws.
struct Plot {
    const StatGraph *setUp = nullptr;
    std::size_t number = 0;  // 0 to 2
    ListSample sample;
    Bars bars;
    Regression curve;
};

constexpr Token barPitch{0x7F, 0x98};

// Bars from the smallest value on, as wide as H pitch says or as makes about as many bars as the root of the count; in
// a window of the user's own from its left edge on, as wide as its scale. False after Ma  ERROR.
bool makeBars(Plot &plot) {
    constexpr double barLimit = 1000;
    const auto [smallest, largest] = std::ranges::minmax(plot.sample.x);
    Bars &bars = plot.bars;
    const double count = momentsOf(plot.sample.ofX()).count;
    bars.start = statisticsMemory.fitsWindow ? smallest : machine.window[xMin].re;
    bars.pitch = statisticsMemory.fitsWindow ? 0 : machine.window[xScale].re;
    if (namedValue(barPitch).re > 0) bars.pitch = namedValue(barPitch).re;
    if (!(bars.pitch > 0)) bars.pitch = (largest - smallest) / std::ceil(std::sqrt(count));
    if (!(bars.pitch > 0)) bars.pitch = 1;
    const double barCount = std::floor((largest - bars.start) / bars.pitch) + 1;
    if (!(barCount >= 0 && barCount <= barLimit)) {
        maError();
        return false;
    }
    bars.heights.assign(static_cast<std::size_t>(barCount), 0.0);
    for (std::size_t i = 0; i < plot.sample.x.size(); i++) {
        const double bar = std::floor((plot.sample.x[i] - bars.start) / bars.pitch);
        if (bar >= 0 && bar < barCount) bars.heights[static_cast<std::size_t>(bar)] += plot.sample.ofX().weight(i);
    }
    return true;
}

// The values rise, and beside each stands where it would lie if they were normal.
void makeNormalPlot(ListSample &sample) {
    std::vector<double> rising;
    for (const std::size_t i : risingOrder(sample.x)) rising.push_back(sample.x[i]);
    sample.x = rising;
    sample.weights.clear();
    const auto count = static_cast<double>(rising.size());
    for (std::size_t i = 0; i < rising.size(); i++)
        sample.y.push_back(normalQuantile((static_cast<double>(i) + 0.5) / count));
}

// False after a report.
bool preparePlot(Plot &plot) {
    const StatGraph &graph = *plot.setUp;
    const auto y = hasY(graph.kind) ? std::optional(graph.yList) : std::nullopt;
    if (!readListSample(graph.xList, y, graph.frequencies, plot.sample)) return false;
    switch (graph.kind) {
        case StatGraphKind::histogram:
        case StatGraphKind::broken:
            return makeBars(plot);
        case StatGraphKind::normalPlot:
            makeNormalPlot(plot.sample);
            return true;
        case StatGraphKind::regression:
            if (const Regression *curve = runRegression(graph.regression, plot.sample)) {
                plot.curve = *curve;
                return true;
            }
            return false;
        default:
            return true;
    }
}

double normalDensity(const Moments &moments, double x) {
    const double deviation = x - moments.mean;
    return std::exp(-deviation * deviation / (2 * moments.spread)) / std::sqrt(2 * std::numbers::pi * moments.spread);
}

void includePlot(const Plot &plot, Range &x, Range &y) {
    x.include(plot.sample.x);
    y.include(plot.sample.y);
    if (!plot.bars.heights.empty()) {
        x.include(plot.bars.left(plot.bars.heights.size()));
        y.include(0);
        y.include(plot.bars.heights);
    }
    if (plot.setUp->kind == StatGraphKind::normalCurve) {
        const Moments moments = momentsOf(plot.sample.ofX());
        y.include(0);
        if (moments.spread > 0) y.include(normalDensity(moments, moments.mean));
    }
}

// A tenth of room to either side, and a scale of 1, 2 or 5 times a power of ten.
void fitWindow(const Range &range, WindowValue low, WindowValue high, WindowValue scale) {
    if (!(range.low <= range.high)) return;
    const double span = range.high > range.low ? range.high - range.low : 2;
    const double room = span / 10;
    const double center = range.low == range.high ? span / 2 : 0;
    machine.window[low] = complexReal(range.low - room - center);
    machine.window[high] = complexReal(range.high + room + center);
    const double power = std::pow(10.0, std::floor(std::log10(room)));
    const double digit = room / power;
    machine.window[scale] = complexReal((digit < 2 ? 1 : digit < 5 ? 2 : 5) * power);
}

int columnAt(double x) { return cutToInteger(mapX(x)); }
int rowAt(double y) { return cutToInteger(mapY(y)); }

// Dots from one place to another, both included.
void putRow(int fromX, int toX, int y, PixelColor color) {
    for (int x = std::max(std::min(fromX, toX), 0); x <= std::min(std::max(fromX, toX), displayWidth - 1); x++)
        putPixel(x, y, color);
}
void putColumn(int x, int fromY, int toY, PixelColor color) {
    for (int y = std::max(std::min(fromY, toY), 0); y <= std::min(std::max(fromY, toY), displayHeight - 1); y++)
        putPixel(x, y, color);
}

void putMark(StatMark mark, int column, int row, PixelColor color) {
    if (mark == StatMark::dot) return putPixel(column, row, color);
    if (column < -1 || column > displayWidth || row < -1 || row > displayHeight) return;
    for (int dy = -1; dy <= 1; dy++) {
        for (int dx = -1; dx <= 1; dx++) {
            const bool isCorner = dx != 0 && dy != 0, isMiddle = dx == 0 && dy == 0;
            if (mark == StatMark::square ? !isMiddle : isCorner || isMiddle) putPixel(column + dx, row + dy, color);
        }
    }
}

void drawMarks(const Plot &plot) {
    for (std::size_t i = 0; i < plot.sample.x.size() && workGoesOn(); i++) {
        if (plot.sample.ofX().weight(i) > 0)
            putMark(plot.setUp->mark, columnAt(plot.sample.x[i]), rowAt(plot.sample.y[i]), plot.setUp->color);
    }
}

CurvePen penOf(const Plot &plot) { return {wholeFrame(), plot.setUp->color, LineStyle::normal, true}; }

void drawJoined(const Plot &plot) {
    drawMarks(plot);
    CurvePen pen = penOf(plot);
    for (std::size_t i = 0; i < plot.sample.x.size() && workGoesOn(); i++) pen.to(plot.sample.x[i], plot.sample.y[i]);
}

void drawBars(const Plot &plot) {
    const Bars &bars = plot.bars;
    const int ground = rowAt(0);
    for (std::size_t bar = 0; bar < bars.heights.size(); bar++) {
        const int left = columnAt(bars.left(bar)), right = columnAt(bars.left(bar + 1)), top = rowAt(bars.heights[bar]);
        putRow(left, right, top, plot.setUp->color);
        putRow(left, right, ground, plot.setUp->color);
        putColumn(left, ground, top, plot.setUp->color);
        putColumn(right, ground, top, plot.setUp->color);
    }
}

void drawBroken(const Plot &plot) {
    CurvePen pen = penOf(plot);
    for (std::size_t bar = 0; bar < plot.bars.heights.size() && workGoesOn(); bar++)
        pen.to(plot.bars.middle(bar), plot.bars.heights[bar]);
}

// Whiskers from the ends to a box with a line in it, each graph on rows of its own.
void drawBox(const Plot &plot, const Quartiles &of) {
    constexpr int firstRow = 11, rowsApart = 20, half = 6;
    const int row = firstRow + rowsApart * static_cast<int>(plot.number);
    const int top = row - half, bottom = row + half;
    const PixelColor color = plot.setUp->color;
    putRow(columnAt(of.smallest), columnAt(of.first), row, color);
    putRow(columnAt(of.third), columnAt(of.largest), row, color);
    putRow(columnAt(of.first), columnAt(of.third), top, color);
    putRow(columnAt(of.first), columnAt(of.third), bottom, color);
    for (const double x : {of.first, of.median, of.third}) putColumn(columnAt(x), top, bottom, color);
    for (const double x : {of.smallest, of.largest}) putColumn(columnAt(x), row - half / 2, row + half / 2, color);
}

// The mean with the deviation to either side in the place of median and quartiles.
Quartiles meanBoxOf(const Sample &sample) {
    const Moments moments = momentsOf(sample);
    const double deviation = std::sqrt(moments.spread);
    const Quartiles ends = quartilesOf(sample);
    return {ends.smallest, moments.mean - deviation, moments.mean, moments.mean + deviation, ends.largest};
}

// Over all columns in view, broken where the curve has no value.
template <typename Curve>
void drawCurve(const Plot &plot, const Curve &curve) {
    const GraphFrame frame = wholeFrame();
    CurvePen pen = penOf(plot);
    for (int column = 1; column <= frame.width && workGoesOn(); column++)
        pen.toColumn(column, curve(columnX(frame, column)));
}

void drawPlot(const Plot &plot) {
    switch (plot.setUp->kind) {
        case StatGraphKind::scatter:
        case StatGraphKind::normalPlot:
            return drawMarks(plot);
        case StatGraphKind::xyLine:
            return drawJoined(plot);
        case StatGraphKind::histogram:
            return drawBars(plot);
        case StatGraphKind::broken:
            return drawBroken(plot);
        case StatGraphKind::medianBox:
            return drawBox(plot, quartilesOf(plot.sample.ofX()));
        case StatGraphKind::meanBox:
            return drawBox(plot, meanBoxOf(plot.sample.ofX()));
        case StatGraphKind::normalCurve: {
            const Moments moments = momentsOf(plot.sample.ofX());
            return drawCurve(plot, [&moments](double x) { return normalDensity(moments, x); });
        }
        case StatGraphKind::regression:
            return drawCurve(plot, [&plot](double x) { return curveAt(plot.curve, x); });
    }
}

// All graphs that are on, on a cleared screen.
WayOut runDrawStat(RunState &state) {
    expectAlone(state);
    std::vector<Plot> plots;
    for (std::size_t i = 0; i < statGraphCount; i++) {
        Plot plot;
        plot.setUp = &statisticsMemory.graphs[i];
        plot.number = i;
        if (!plot.setUp->isOn) continue;
        if (!preparePlot(plot)) return handled(state);
        plots.push_back(plot);
    }
    if (statisticsMemory.fitsWindow) {
        Range x, y;
        for (const Plot &plot : plots) includePlot(plot, x, y);
        fitWindow(x, xMin, xMax, xScale);
        fitWindow(y, yMin, yMax, yScale);
    }
    clearGraph();
    drawAxes(wholeFrame());
    for (const Plot &plot : plots) drawPlot(plot);
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x23}, runDrawStat),               // DrawStat
    range({0xF7, 0x4A}, {0xF7, 0x4C}, runSetUp),  // S-Gph1 to S-Gph3
    one({0xF7, 0x60}, runWindow<true>),           // S-WindAuto
    one({0xF7, 0x61}, runWindow<false>),          // S-WindMan
};

}  // namespace

std::span<const StatementRow> statisticsGraphStatements() { return rows; }

}  // namespace numalink
