// What all dialogs have in common. Graphical thread only.
#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;

namespace numalink {

// The title of a message box: the program's name, and that it warns.
QString boxTitle(bool warns);

// OK, the default, and Cancel, in the program's wording, wired to the dialog.
QDialogButtonBox *dialogButtons(QDialog *dialog);

}  // namespace numalink
