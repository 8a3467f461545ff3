// The program: an application object, the start order, the event loop.
#include <QApplication>

#include "shell/app/command_line.h"
#include "shell/app/start_up.h"

int main(int argc, char **argv) {
    if (const auto status = numalink::answeredAtOnce(argc, argv)) return *status;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Numalink"));
    // The desktop finds icon and entry of the window by this name, which is another within a Flatpak.
    QApplication::setDesktopFileName(qEnvironmentVariable("FLATPAK_ID", QStringLiteral("numalink")));
    QStringList arguments = QApplication::arguments().mid(1);
    arguments.removeOne(QStringLiteral("--"));
    if (!numalink::startUp(numalink::chooseLibrary(arguments))) return 0;
    const int code = numalink::shuttingDown() ? 0 : QApplication::exec();
    numalink::tearDown();
    return code;
}
