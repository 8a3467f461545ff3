#include <gtest/gtest.h>

#include <QApplication>

#include "shell/shell_fixture.h"

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    if (argc == 3 && argv[1] == std::string(numalink::secondCopyArgument)) return numalink::startSecondCopy(argv[2]);
    return RUN_ALL_TESTS();
}
