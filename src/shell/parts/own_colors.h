// The colours that the window has beside the desktop's and those of the program text: a row each, for light and dark
// windows. What is written on a ground is in the palette's colour of texts, or in those of the program text where that
// is told; signs are told from what is around them by a contrast of 3 to 1. Graphical thread only.
#pragma once

#include <QColor>
#include <QPalette>
#include <cstdint>

namespace numalink {

enum class OwnColor : std::uint8_t {
    partners,  // behind what belongs together in the program text
    nextStatement,
    error,
    warning,
    hint,
    breakpoint,
    heat,
    missing,  // the rows of a comparison, and those of the difference that is picked
    missingPicked,
    changed,
    changedPicked,
    removed,
    removedPicked,
    added,
    addedPicked,
    moved,
    movedPicked,
    differing,  // behind the characters that differ
};

enum class ColorUse : std::uint8_t { underText, underProgram, signOnText, signOnWindow };

struct OwnColorRow {
    OwnColor name;
    ColorUse use;
    QRgb light, dark;
};
inline constexpr OwnColorRow ownColorRows[] = {
    {OwnColor::partners, ColorUse::underProgram, 0xFFE0F6E4, 0xFF203528},
    {OwnColor::nextStatement, ColorUse::underText, 0xFFFFE87A, 0xFF6B5A00},
    {OwnColor::error, ColorUse::signOnText, 0xFFD01010, 0xFFFF7070},
    {OwnColor::warning, ColorUse::signOnText, 0xFFB07000, 0xFFF0B040},
    {OwnColor::hint, ColorUse::signOnText, 0xFF3060C0, 0xFF80B0FF},
    {OwnColor::breakpoint, ColorUse::signOnWindow, 0xFFD02020, 0xFFFF6A6A},
    {OwnColor::heat, ColorUse::signOnWindow, 0xFFC85F00, 0xFFF08A30},
    {OwnColor::missing, ColorUse::underText, 0xFFEDEDED, 0xFF2E2E2E},
    {OwnColor::missingPicked, ColorUse::underText, 0xFFD8D8D8, 0xFF454545},
    {OwnColor::changed, ColorUse::underText, 0xFFFFF6D6, 0xFF3A3420},
    {OwnColor::changedPicked, ColorUse::underText, 0xFFFFE69A, 0xFF5C5020},
    {OwnColor::removed, ColorUse::underText, 0xFFFFE3E1, 0xFF432628},
    {OwnColor::removedPicked, ColorUse::underText, 0xFFFFC4C0, 0xFF6B3034},
    {OwnColor::added, ColorUse::underText, 0xFFDFF5DF, 0xFF1F3A26},
    {OwnColor::addedPicked, ColorUse::underText, 0xFFB4E6B4, 0xFF2B5C38},
    {OwnColor::moved, ColorUse::underText, 0xFFE1EAFF, 0xFF24324F},
    {OwnColor::movedPicked, ColorUse::underText, 0xFFBFD2FF, 0xFF34497A},
    {OwnColor::differing, ColorUse::underText, 0xFFFFC83D, 0xFF6F5700},
};

// Whether texts stand on dark ground.
inline bool isDark(const QPalette &palette) { return palette.color(QPalette::Base).lightness() < 128; }

constexpr const OwnColorRow &ownColorRow(OwnColor name) { return ownColorRows[static_cast<std::size_t>(name)]; }

inline QColor ownColor(OwnColor name, const QPalette &palette) {
    const OwnColorRow &row = ownColorRow(name);
    return QColor::fromRgb(isDark(palette) ? row.dark : row.light);
}

// Makes those roles of the application's palette readable that a desktop may have too faint: links and the words in the
// place of an entry on the ground of texts, and what is selected. Again whenever the palette changes, for as long as
// keeper lives.
void keepPaletteReadable(QObject *keeper);

}  // namespace numalink
