// What a user does most, by keys alone: each goes to whatever window has the focus, as from a keyboard, and finds its
// own way to menus, dialogs and the running calculator.
#include <thread>

#include "emulator/machine/machine.h"
#include "link/transmit_queue.h"
#include "shell/shell_fixture.h"
#include "support/cat_records.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

struct Keyboard : StartedShell {
    // As a window manager does: what was closed gives the keyboard back, a dialog gets it, and a window that is only
    // shown (the symbols) doesn't.
    static QWindow *windowWithKeyboard() {
        QWidget *active = QApplication::activeWindow(), *modal = QApplication::activeModalWidget();
        QWidget *wanted = modal != nullptr ? modal : mainWindow;
        const bool stays = modal == nullptr && active != nullptr && qobject_cast<QDialog *>(active) != nullptr;
        if (active != wanted && !stays) {
            wanted->activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(wanted));
        }
        return QGuiApplication::focusWindow();
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(windowWithKeyboard(), key, held);
    }
    static void type(const std::string &text) {
        for (const char letter : text) QTest::keyClick(windowWithKeyboard(), letter);
    }
    // Tab, until the control of that name has the focus, or one within it.
    static void tabTo(const char *name) {
        const auto isThere = [name] {
            const QWidget *widget = QApplication::focusWidget();
            return widget != nullptr && (widget->objectName() == QLatin1String(name) ||
                                         widget->parentWidget()->objectName() == QLatin1String(name));
        };
        for (int tabs = 0; tabs < 40 && !isThere(); tabs++) press(Qt::Key_Tab);
        EXPECT_TRUE(isThere()) << "Tab doesn't come to " << name;
    }
    // By the letters that are underlined in the menu bar and in the menu.
    static void menu(CommandId id) {
        const QAction *command = commandAction(id);
        QMenu *menu = nullptr;
        for (QObject *holder : command->associatedObjects())
            if (auto *found = qobject_cast<QMenu *>(holder); found != nullptr && found->isEnabled()) menu = found;
        ASSERT_NE(menu, nullptr);
        press(letterOf(menu->menuAction()->text()), Qt::AltModifier);
        ASSERT_EQ(QApplication::activePopupWidget(), menu);
        press(letterOf(command->text()));
    }
    static Qt::Key letterOf(const QString &text) {
        return static_cast<Qt::Key>(text.at(text.indexOf(QLatin1Char('&')) + 1).toUpper().unicode());
    }
    // What is done in the next dialog, and in the one that it leads to.
    void inDialog(std::function<void()> work, std::function<void()> then = nullptr) {
        whileOpen = [this, work = std::move(work), then = std::move(then)] {
            if (then) inDialog(then);
            answerBoxes = false;  // it stays open meanwhile
            QTest::qWait(1);
            answerBoxes = true;
            work();
        };
    }
    // In the file dialog the name has the focus.
    void typePath(const std::string &name) {
        QApplication::activeModalWidget()->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->clear();
        type(folder.path + name);
        press(Qt::Key_Return);
    }
    static std::string selectedName() {
        const auto entry = storeReadEntry(selectedItemId());
        return entry ? entry->name : "";
    }
};

TEST_F(Keyboard, ImportsFindsRenamesMovesAndTakesBack) {
    folder.write("pair.cat", catProgram("FIRST") + catProgram("SECOND"));
    const ItemId target = add(kind::folder, "Target");
    refreshTree();
    inDialog([this] { typePath("pair.cat"); }, [] { press(Qt::Key_Return); });
    press(Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([] { return storeFindItem("pair", rootId) != noItem; }));
    const ItemId pair = storeFindItem("pair", rootId);

    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    type("seco");
    press(Qt::Key_Down);  // into the tree
    for (int rows = 0; rows < 9 && selectedName() != "SECOND"; rows++) press(Qt::Key_Down);
    EXPECT_EQ(selectedName(), "SECOND");
    const ItemId second = selectedItemId();
    press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);

    press(Qt::Key_F2);
    press(Qt::Key_A, Qt::ControlModifier);
    type("OTHER");
    press(Qt::Key_Return);
    EXPECT_EQ(storeReadEntry(second)->name, "OTHER");
    inDialog([] {
        type("Target");
        press(Qt::Key_Return);
    });
    press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(storeReadEntry(second)->parent, target);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(storeReadEntry(second)->parent, pair);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(storeReadEntry(second)->name, "SECOND");
    EXPECT_TRUE(shown.empty()) << shown.front();
}

TEST_F(Keyboard, EditsSearchesAndExports) {
    const ItemId program = addProgram("EDITED", "A");
    addProgram("OTHER", "B");
    refreshTree();
    treeView->setFocus();
    type("ed");
    ASSERT_EQ(selectedItemId(), program);
    press(Qt::Key_Return);  // into its text
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Return);
    type("B+1");
    press(Qt::Key_Escape);  // back to the tree
    press(Qt::Key_Down);
    StoredItem stored;
    ASSERT_TRUE(storeReadItem(program, stored));
    EXPECT_EQ(std::string(stored.data.begin(), stored.data.begin() + 6), ":A\rB\x89\x31");

    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    auto *window = mainWindow->findChild<QDialog *>(QStringLiteral("searchWindow"));
    ASSERT_TRUE(window != nullptr && QTest::qWaitForWindowActive(window));
    type("B+1");
    press(Qt::Key_Return);
    auto *found = window->findChild<QTreeWidget *>();
    ASSERT_TRUE(QTest::qWaitFor([found] { return found->topLevelItemCount() == 1; }));
    while (QApplication::focusWidget() != found) press(Qt::Key_Tab);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(viewItemId, program);
    EXPECT_EQ(programEdit->textCursor().selectedText().size(), 3);
    QTest::keyClick(window->windowHandle(),
                    Qt::Key_Escape);  // still the active one, had the symbols not come with the program
    ASSERT_FALSE(window->isVisible());

    inDialog(
        [] {
            press(Qt::Key_Home);  // of what there is
            press(Qt::Key_Tab);   // ">"
            press(Qt::Key_Space);
            press(Qt::Key_Return);
        },
        [this] { typePath("out.cat"); });
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_NE(folder.read("out.cat").find("EDITED"), std::string::npos);
    EXPECT_TRUE(shown.empty()) << shown.front();
}

TEST_F(Keyboard, RunsAProgramAnswersItAndStopsIt) {
    settingsSetInt(setting::fullSpeed, 1);
    show(addProgram("ASKS",
                    "?\x0E"
                    "A:A\xA9"
                    "2\x0C\xE2"
                    "1\r\xEC"
                    "1"));
    press(Qt::Key_F7);
    ASSERT_TRUE(emulatorRunning);
    const QWidget *window = mainWindow->findChild<QWidget *>(QStringLiteral("emulatorWindow"));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return windowWithKeyboard() != nullptr && QApplication::focusWidget() == window; }));
    const auto shows = [window](const char *text) {
        return QTest::qWaitFor([=] { return window->accessibleDescription().contains(QLatin1String(text)); }, 3000);
    };
    ASSERT_TRUE(shows("?"));
    for (const auto &[key, seen] :
         {std::pair(Qt::Key_2, "2"), std::pair(Qt::Key_1, "21"), std::pair(Qt::Key_Return, "42")}) {
        press(key);
        EXPECT_TRUE(shows(seen)) << seen;
    }
    press(Qt::Key_Return);  // on, into the endless loop
    QTest::qWait(50);
    EXPECT_TRUE(emulatorRunning);
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return !emulatorRunning; }, 3000));
    EXPECT_TRUE(programEdit->isVisible());
}

TEST_F(Keyboard, ChoosesAPortInTheSettingsAndSendsToACalculator) {
    const PseudoTerminal terminal;
    calculator::Calculator other;
    calculator::Moving moving;
    inDialog([&] {
        press(Qt::Key_Tab, Qt::ControlModifier);  // the page of the calculator
        tabTo(setting::comPort);
        press(Qt::Key_A, Qt::ControlModifier);
        type(terminal.path);
        press(Qt::Key_Return);
    });
    menu(CommandId::settings);
    EXPECT_EQ(settingsValue(setting::comPort), terminal.path);
    ASSERT_TRUE(QTest::qWaitFor([] { return linkField->toolTip().contains(QLatin1String("Ready")); }, 10000));
    addProgram("SENT", "A");
    refreshTree();
    treeView->setFocus();
    type("sent");
    std::thread receiving([&] { moveCalculator(other, terminal.master, moving); });
    press(Qt::Key_F6);
    EXPECT_TRUE(QTest::qWaitFor([] { return transmitQueueCount() == 0; }, 10000));
    receiving.join();
    ASSERT_EQ(other.received.size(), 1u);
    EXPECT_TRUE(other.closed);
    EXPECT_TRUE(shown.empty()) << shown.front();
}

}  // namespace numalink
