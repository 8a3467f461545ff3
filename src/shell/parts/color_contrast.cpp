#include "shell/parts/color_contrast.h"

#include <algorithm>
#include <cmath>

namespace numalink {

namespace {

double linear(double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); }

double luminance(const QColor &color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &from, const QColor &to, double share) {
    const auto part = [&](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    return QColor(part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue()));
}

}  // namespace

double contrastOf(const QColor &one, const QColor &other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor readableOn(const QColor &ground, const QColor &color) {
    constexpr int steps = 20;
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor goal = contrastOf(ground, black) > contrastOf(ground, white) ? black : white;
    for (int step = 0; step <= steps; step++) {
        const QColor nearer = mixed(color, goal, static_cast<double>(step) / steps);
        if (contrastOf(ground, nearer) >= readableContrast) return nearer;
    }
    return goal;
}

QColor faintText(const QPalette &palette) {
    const QColor ground = palette.color(QPalette::Base);
    return readableOn(ground, mixed(ground, palette.color(QPalette::Text), 0.5));
}

}  // namespace numalink
