// The status bar: how far something has come, what the link does, what is on view. Graphical thread only.
#pragma once

class QLabel;
class QString;

namespace numalink {

void makeStatusBar();  // in the main window

// The text of linkField or itemField, cut where the field ends; the whole of it is in its tool tip. It may be a link to
// the settings.
void showStatus(QLabel *field, const QString &text, bool leadsToSettings);

void showProgress(int maximum);  // an empty bar of so many steps; 0: nothing runs, and the bar hides
void moveProgress(int position);

}  // namespace numalink
