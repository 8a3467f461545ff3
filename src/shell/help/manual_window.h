// The manual: pages of Markdown that lie beside the program, in the language of the window, with a search over all of
// them. One window, which can stay open beside everything else. Graphical thread only.
#pragma once

#include <QString>

namespace numalink {

// Pages are known by their file names without ".md"; one that isn't there gives the first. Over an open dialog the
// window is that dialog's, so that it can be used, and goes with it.
void showManual(const QString &page);

void showManualAtFirstPage();  // the commands of the Help menu
void showKeysPage();
void showWhatIsNew();

}  // namespace numalink
