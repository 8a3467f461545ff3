// The program: an application object, the start order, the event loop.
#include <QApplication>
#include <cstdio>

#include "shell/app/command_line.h"
#include "shell/app/start_up.h"

int main(int argc, char **argv) {
    if (const auto status = numalink::answeredAtOnce(argc, argv)) return *status;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Numalink"));
    // The desktop finds icon and entry of the window by this name, which is another within a Flatpak.
    QApplication::setDesktopFileName(qEnvironmentVariable("FLATPAK_ID", QStringLiteral("numalink")));
    const std::vector<std::string> arguments(argv + 1, argv + argc);  // what Qt has left, in the system's own bytes
    if (const std::string option = numalink::unknownOption(arguments); !option.empty()) {
        std::fprintf(stderr, "numalink: there is no option %s; --help tells which there are\n", option.c_str());
        return numalink::wrongUse;
    }
    if (!numalink::startUp(numalink::chooseLibrary(arguments))) return 0;
    const int code = numalink::shuttingDown() ? 0 : QApplication::exec();
    numalink::tearDown();
    return code;
}
