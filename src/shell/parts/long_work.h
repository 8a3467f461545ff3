// Work that may take long: how far it has come, and Cancel, once it takes longer than a moment. Graphical thread only.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QProgressDialog>
#include <cstddef>

#include "telling/texts.h"

namespace numalink {

class LongWork {
public:
    LongWork(Text words, std::size_t total);
    ~LongWork();
    LongWork(const LongWork &) = delete;
    LongWork &operator=(const LongWork &) = delete;

    bool step(std::size_t done);  // of total; false once it is cancelled. Events of the dialog are served within

private:
    QPointer<QProgressDialog> dialog;  // the main window's, which may go while events are served
    QElapsedTimer sinceLook;
};

}  // namespace numalink
