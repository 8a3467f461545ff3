// How well a colour reads on another: the ratio of their luminances, 1 to 21. No state.
#pragma once

#include <QColor>
#include <QPalette>

namespace numalink {

inline constexpr double readableContrast = 4.5;

double contrastOf(const QColor &one, const QColor &other);

// The colour itself where it reads on the ground, else the nearest one toward black or white that does.
QColor readableOn(const QColor &ground, const QColor &color);

// For words that stand in the place of an entry: as faint on the ground of texts as can still be read.
QColor faintText(const QPalette &palette);

}  // namespace numalink
