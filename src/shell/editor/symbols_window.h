// The small tool window of calculator symbols that no keyboard has. It floats without ever taking the focus. Graphical
// thread only.
#pragma once

namespace numalink {

void makeSymbolsWindow();  // hidden
void forgetSymbolsWindow();

// While a program is on view, unless the user has closed it.
void showSymbols();
void hideSymbols();

bool symbolsWanted();
void setSymbolsWanted(bool wanted);

}  // namespace numalink
