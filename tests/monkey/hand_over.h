// Tells the thread sanitizer what it can't see in an uninstrumented Qt: a call that one thread queues for another
// happens ahead of its being carried out there.
#pragma once

#include <QApplication>

namespace monkey {

struct Application : QApplication {
    using QApplication::QApplication;
    bool notify(QObject *receiver, QEvent *event) override;
};

}  // namespace monkey
