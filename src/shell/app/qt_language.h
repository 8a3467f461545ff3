// The language of Qt's own dialogs and menus. Graphical thread only.
#pragma once

namespace numalink {

// Qt's own translation for the language of the language table; Qt's English where the system has none. Once the
// languages are loaded, ahead of any window.
void chooseQtLanguage();

}  // namespace numalink
