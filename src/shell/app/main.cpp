// The program: an application object, the start order, the event loop.
#include <QApplication>

#include "shell/app/start_up.h"

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Numalink"));
    QApplication::setDesktopFileName(QStringLiteral("numalink"));
    if (!numalink::startUp()) return 0;
    const int code = numalink::shuttingDown() ? 0 : QApplication::exec();
    numalink::tearDown();
    return code;
}
