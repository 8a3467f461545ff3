// What all dialogs have in common. Graphical thread only.
#pragma once

class QDialog;
class QDialogButtonBox;

namespace numalink {

// OK, the default, and Cancel, in the program's wording, wired to the dialog.
QDialogButtonBox *dialogButtons(QDialog *dialog);

}  // namespace numalink
