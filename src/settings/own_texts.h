// The texts of our own, from number 164 on. Each number is a list of texts joined by "|" in the language files
// (see languageItem); the enumerators are the places in the list. Keep the order of data/language/*.txt.
#pragma once

namespace numalink {

namespace ownText {
inline constexpr int fileCauses = 164;      // why a file could not be read or written: FileCause
inline constexpr int importMessages = 165;  // ImportText
inline constexpr int storeMessages = 166;   // StoreText
inline constexpr int treeMessages = 167;    // TreeText
inline constexpr int menuLabels = 168;      // commands without a number of their own: MenuText
inline constexpr int commandTips = 169;     // status tips, in the order of the command table
inline constexpr int dialogLabels = 170;    // DialogText
inline constexpr int shellMessages = 171;   // ShellText
inline constexpr int linkMessages = 172;
inline constexpr int emulatorMessages = 173;
inline constexpr int editorMessages = 174;
inline constexpr int exportMessages = 175;
inline constexpr int settingsLabels = 176;
inline constexpr int keypadLabels = 177;
}  // namespace ownText

}  // namespace numalink
