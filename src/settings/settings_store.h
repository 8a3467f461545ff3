// The settings: a table of dotted keys and text values, read by nearly everybody, written by the settings dialog.
// All operations may be called on any thread: one lock guards the table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace numalink {

struct Setting;  // settings_file.h

inline constexpr std::size_t settingsSlotCount = 100;
inline constexpr std::size_t settingsTextLimit = 99;  // characters of a key or a value

namespace setting {
inline constexpr char comPort[] = "Numalink.Settings.Communication.ComPort";
inline constexpr char linkType[] = "Numalink.Settings.Communication.Type";
inline constexpr char removeColor[] = "Numalink.Settings.Communication.RemoveColorInformation";
inline constexpr char haltOnError[] = "Numalink.Settings.Emulator.HaltOnError";
inline constexpr char displayDebug[] = "Numalink.Settings.Emulator.DisplayDebug";
inline constexpr char fullscreen[] = "Numalink.Settings.Emulator.Fullscreen";
inline constexpr char fillListsMatrices[] = "Numalink.Settings.Emulator.FillListsMatrices";
inline constexpr char fullSpeed[] = "Numalink.Settings.Emulator.FullSpeed";
inline constexpr char besideProgram[] = "Numalink.Settings.Emulator.BesideProgram";
inline constexpr char panes[] = "Numalink.Settings.Emulator.Panes";          // no default: as they were made
inline constexpr char paneSizes[] = "Numalink.Settings.Emulator.PaneSizes";  // no default, as windowPlace
inline constexpr char tornOff[] = "Numalink.Settings.Emulator.TornOff";      // and a pane's letter; as windowPlace
inline constexpr char windowPlace[] = "Numalink.Settings.Main.Window";       // Qt's, in base 64: 88 characters
inline constexpr char calculatorModes[] = "Numalink.Settings.Emulator.CalculatorModes";
inline constexpr char keepMoments[] = "Numalink.Settings.Emulator.KeepMoments";  // of runs that are stopped
inline constexpr char assignedKeys[] = "Numalink.Settings.Emulator.Keys";        // and a number from 1; no default
inline constexpr char recordKeypad[] = "Numalink.Settings.Emulator.RecordKeypad";
inline constexpr char farEndPort[] = "Numalink.Settings.Emulator.Port";  // what programs speak to by Send(; empty: none
inline constexpr char syntaxHighlighting[] = "Numalink.Settings.Editor.SyntaxHighlighting";
inline constexpr char autoCorrect[] = "Numalink.Settings.Editor.AutoCorrect";
inline constexpr char colorAscii[] = "Numalink.Settings.Editor.Colors.Ascii";
inline constexpr char colorText[] = "Numalink.Settings.Editor.Colors.Text";
inline constexpr char colorError[] = "Numalink.Settings.Editor.Colors.Error";
inline constexpr char colorTwoByteCommand[] = "Numalink.Settings.Editor.Colors.TwoByteCommand";
inline constexpr char colorOneByteCommand[] = "Numalink.Settings.Editor.Colors.OneByteCommand";
inline constexpr char colorOneByteCharacter[] = "Numalink.Settings.Editor.Colors.OneByteCharacter";
inline constexpr char colorNumbers[] = "Numalink.Settings.Editor.Colors.Numbers";
inline constexpr char colorComment[] = "Numalink.Settings.Editor.Colors.Comment";
inline constexpr char indentLines[] = "Numalink.Settings.Editor.IndentLines";
inline constexpr char completeWhileTyping[] = "Numalink.Settings.Editor.CompleteWhileTyping";
inline constexpr char codePanes[] = "Numalink.Settings.Editor.Panes";      // letters of those that are shown
inline constexpr char memoryCfx[] = "Numalink.Settings.Editor.MemoryCfx";  // bytes that a calculator has for programs
inline constexpr char memoryAlgebra[] = "Numalink.Settings.Editor.MemoryAlgebra";
inline constexpr char lastExportType[] = "Numalink.Settings.Export.LastExportType";
inline constexpr char treeOrder[] = "Numalink.Settings.Main.TreeOrder";  // name, kind, size or time
inline constexpr char language[] = "Numalink.Settings.Main.Language";

// The port is a device's path or COM1 to COM4, or one of the words below. A word for none, since a file without a value
// has the default.
inline constexpr char comPortDefault[] = "COM2";  // in a file without one; such a port was chosen by nobody
inline constexpr char portAutomatic[] = "automatic";
inline constexpr char portOff[] = "off";
}  // namespace setting

// The value of key. An unknown key is added at the end of the table with an empty value; with the table full it
// gives "" and nothing is added.
std::string settingsValue(std::string_view key);

// The value as a decimal integer: an optional sign and the leading digits, otherwise 0. Unknown keys give 0 and
// aren't added; digits beyond 32 bits saturate.
std::int32_t settingsInt(std::string_view key);

// Red in the low byte, green in the next, blue in the next; 0 for an unknown key or fewer than two commas.
std::uint32_t settingsColour(std::string_view key);

// False, with nothing changed, when the table is full, or key or value is too long or holds "<" or a control
// character, or when a component of the key can't be a tag: empty, with ">", "/" at either end, "?" or "!" ahead.
// Blanks at either end of a value go.
bool settingsSetValue(std::string_view key, std::string_view value);
bool settingsSetInt(std::string_view key, std::int32_t value);
bool settingsSetColour(std::string_view key, std::uint32_t color);

// All keys with their values, in the order of the table.
std::vector<Setting> settingsAll();

// The table's defaults, then settings.xml of the settings folder over them. A missing or damaged file leaves what
// it doesn't reach at its default. Returns false when there is a file that could not be read, or that holds a value
// which was refused.
bool settingsLoad();

// Writes the whole table to settings.xml, beside and renamed over; makes its folder where it is missing. False on
// failure: the caller tells.
bool settingsSave();

}  // namespace numalink
