// The small tool window of calculator symbols that no keyboard has. It floats without ever taking the focus. Graphical
// thread only.
#pragma once

#include <QRect>

namespace numalink {

void makeSymbolsWindow();  // hidden
void forgetSymbolsWindow();

// While a program is on view, unless the user has closed it.
void showSymbols();
void hideSymbols();
QRect symbolsPlace();  // on the screen, with its frame; null while it is hidden

bool symbolsWanted();
void setSymbolsWanted(bool wanted);

}  // namespace numalink
