// What all dialogs have in common. Graphical thread only.
#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;

namespace numalink {

// The title of a message box: the program's name, and that it warns.
QString boxTitle(bool warns);

// OK, the default, Cancel and Help, in the program's wording, wired to the dialog, whose object name is set.
QDialogButtonBox *dialogButtons(QDialog *dialog);

// Close and Help, for a dialog that asks nothing, likewise; the escape key closes it too.
QDialogButtonBox *closeButtons(QDialog *dialog);

// A button, and F1, that open the manual at the dialog's page, which a table has by the dialog's object name.
void addHelp(QDialog *dialog, QDialogButtonBox *buttons);

// Opens the manual at a page; the manual puts itself in at the start.
inline void (*openManual)(const QString &page) = [](const QString &) {};

// While on, boxes of the graphical thread are answered with "cancel" unseen: the program ends at once.
void silenceBoxes(bool on);
bool boxesSilenced();

}  // namespace numalink
