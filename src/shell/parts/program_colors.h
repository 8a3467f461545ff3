// The eight colours of the program view, in the order of the classes, and the schemes that the settings offer.
#pragma once

#include <QColor>
#include <array>
#include <cstdint>

#include "settings/settings_store.h"
#include "text/view_runs.h"

namespace numalink {

inline constexpr std::array<const char *, runClassCount> programColorKeys = {
    setting::colorAscii,          setting::colorComment,          setting::colorError,          setting::colorNumbers,
    setting::colorOneByteCommand, setting::colorOneByteCharacter, setting::colorTwoByteCommand, setting::colorText};

// Red in the low byte, as the settings hold it.
inline QColor qtColor(std::uint32_t color) {
    return QColor(static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF),
                  static_cast<int>(color >> 16 & 0xFF));
}
inline std::uint32_t settingColor(const QColor &color) {
    return static_cast<std::uint32_t>(color.red() | color.green() << 8 | color.blue() << 16);
}

// 0xRRGGBB in the order of the classes; each reaches a contrast of 4.5 to 1 on its ground.
using ColorScheme = std::array<std::uint32_t, runClassCount>;
inline constexpr ColorScheme lightScheme = {0x202428, 0x5F6B5A, 0xC4202B, 0x0B6E99,
                                            0x8A3FA0, 0x9A5B00, 0x1F4FBF, 0x1E7A34};
inline constexpr ColorScheme darkScheme = {0xE6E8EA, 0x9AA893, 0xFF8A80, 0x6FCBF0,
                                           0xD9A0F0, 0xF2B866, 0x8FB4FF, 0x84D69A};

inline const ColorScheme &schemeOn(const QColor &ground) { return ground.lightness() < 128 ? darkScheme : lightScheme; }

}  // namespace numalink
