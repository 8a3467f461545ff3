// Boxes and questions that the link's thread or a run opens. They stay open without holding the graphical thread, so
// that the worker can be stopped and joined meanwhile; they close when it is. Any thread.
#pragma once

#include <functional>

class QDialog;

namespace numalink {

// Opens the dialog that make gives on the graphical thread and waits for its result (QDialog::done), 0 when the wait
// was ended. On the graphical thread itself the dialog runs at once. make holds what it uses by value.
int askByDialog(const std::function<QDialog *()> &make);

}  // namespace numalink
