// The window's tests on a display that nobody sees; with --second-copy a start beside a program that runs.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <cstdio>

#include "platform/program_folder.h"
#include "shell/app/start_up.h"

namespace {

// A start with this library that closes each box, whose text goes to the standard output. 1 when it could have gone on.
int startSecondCopy(const char *folder, const std::vector<std::string> &files) {
    numalink::setLibraryFolder(folder);
    QTimer closing;
    QObject::connect(&closing, &QTimer::timeout, [] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        std::puts(qPrintable(box->text()));
        box->close();
    });
    closing.start(20);
    return numalink::startUp({.files = files}) ? 1 : 0;
}

}  // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");  // English, whoever runs it
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    if (argc >= 3 && argv[1] == std::string("--second-copy")) return startSecondCopy(argv[2], {argv + 3, argv + argc});
    return RUN_ALL_TESTS();
}
