// With two screens side by side: what opens beside the window opens where that is.
#include <QScreen>
#include <QWidget>

#include "emulator/machine/machine.h"
#include "shell/run/full_screen.h"
#include "shell/shell_fixture.h"

namespace numalink {

struct Screens : StartedShell {};

TEST_F(Screens, TheDisplayFillsThatOfTheWindow) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.size() < 2) GTEST_SKIP() << "there is one screen";
    settingsSetInt(setting::fullscreen, 1);
    show(addProgram("ASK", "?"));
    for (const int which : {1, 0, 1}) {
        SCOPED_TRACE(which);
        QScreen *screen = screens[which];
        mainWindow->setScreen(screen);
        mainWindow->move(screen->geometry().topLeft() + QPoint(50, 60));
        QTest::keyClick(mainWindow, Qt::Key_F7);
        ASSERT_TRUE(emulatorRunning);
        const QWidget *full = fullScreenShown();
        ASSERT_NE(full, nullptr);
        EXPECT_EQ(full->screen(), screen);
        EXPECT_EQ(full->geometry(), screen->geometry());
        EXPECT_TRUE(full->rect().contains(fullScreenDisplay()));
        handleCommand(CommandId::emulate);
        EXPECT_FALSE(emulatorRunning);
        EXPECT_EQ(fullScreenShown(), nullptr);
    }
}

}  // namespace numalink
