#include "shell/shell_fixture.h"

#include <utility>

#include "telling/tell_user.h"
#include "text/program_bytes.h"

namespace numalink {

namespace {

ShellTest *current = nullptr;
QTimer *answering = nullptr;

// From the button that has the focus on, Tab reaches every other one, and the first again at last.
void expectTabReachesAll(QMessageBox &box) {
    QWidget *first = box.focusWidget();
    if (first == nullptr) return;  // not on the screen yet
    QSet<QWidget *> reached;
    for (qsizetype i = 0; i < box.buttons().size(); i++) {
        QTest::keyClick(&box, Qt::Key_Tab);
        reached << box.focusWidget();
    }
    EXPECT_EQ(reached.size(), box.buttons().size());
    EXPECT_EQ(box.focusWidget(), first);
}

std::string wordingOf(QWidget *dialog) {
    auto *box = qobject_cast<QMessageBox *>(dialog);
    if (box != nullptr) {
        EXPECT_EQ(box->textFormat(), Qt::PlainText) << "names may hold what reads as markup";
        EXPECT_TRUE(box->windowTitle() == QLatin1String(programTitle) ||
                    box->windowTitle() == textOf(Text::warningTitle));
        expectTabReachesAll(*box);
    }
    return box != nullptr ? box->text().toStdString() : dialog->windowTitle().toStdString();
}

QAbstractButton *buttonNamed(QWidget *dialog, const std::string &text) {
    for (QAbstractButton *button : dialog->findChildren<QAbstractButton *>())
        if (button->text().remove(QLatin1Char('&')).toStdString() == text) return button;
    return nullptr;
}

// Buttons that only choose are pressed and the next answer follows; one that closes ends the dialog.
void answerOpenDialog() {
    QWidget *dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || current == nullptr || !current->answerBoxes) return;
    if (const auto work = std::exchange(current->whileOpen, nullptr)) return work();
    current->shown.push_back(wordingOf(dialog));
    for (bool asked = false; dialog == QApplication::activeModalWidget() && !asked;) {
        const std::string next = current->answers.empty() ? "Esc" : current->answers.front();
        if (!current->answers.empty()) current->answers.pop_front();
        if (QAbstractButton *button = buttonNamed(dialog, next)) {
            button->click();
            asked = qobject_cast<QPushButton *>(button) != nullptr;
        } else {
            QTest::keyClick(dialog, next == "Return" ? Qt::Key_Return : Qt::Key_Escape);
            asked = true;
        }
    }
    // The offscreen platform has no window manager that would do it.
    if (mainWindow != nullptr && QApplication::activeModalWidget() == nullptr) mainWindow->activateWindow();
}

}  // namespace

void ShellTest::SetUp() {
    current = this;
    answering = new QTimer;
    QObject::connect(answering, &QTimer::timeout, answerOpenDialog);
    answering->start(5);
}

void ShellTest::TearDown() {
    if (running) endProgram();
    delete answering;
    current = nullptr;
}

void StartedShell::SetUp() {
    ShellTest::SetUp();
    ASSERT_TRUE(startProgram());
}

bool ShellTest::startProgram() {
    running = startUp();
    if (running) {
        mainWindow->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(mainWindow));
    }
    return running;
}

void ShellTest::endProgram() {
    running = false;
    shutDown();
    EXPECT_FALSE(storeIsOpen());
    tearDown();
}

void ShellTest::select(ItemId id) {
    // Without a window manager a closed box may leave no window active, and keys would go nowhere.
    if (QApplication::activeWindow() == nullptr) {
        mainWindow->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(mainWindow));
    }
    treeView->scrollToItem(treeEntryOf(id));
    QTest::mouseClick(treeView->viewport(), Qt::LeftButton, {}, centreOf(id));
}

void ShellTest::show(ItemId id) {
    refreshTree();
    select(id);
}

void ShellTest::typeKeys(const QString &text) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClicks(QApplication::focusWidget(), text);
}

QPoint ShellTest::centreOf(ItemId id) {
    const QRect row = treeView->visualItemRect(treeEntryOf(id));
    return {row.left() + 12, row.center().y()};
}

void ShellTest::drag(ItemId item, const QPoint &to) {
    QWidget *viewport = treeView->viewport();
    const QPoint from = centreOf(item);
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    for (int step = 1; step <= 4; step++) {
        QMouseEvent move(QEvent::MouseMove, QPointF(from + (to - from) * step / 4 + QPoint(0, step == 4 ? 0 : 1)),
                         QPointF(viewport->mapToGlobal(to)), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move);
    }
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

ItemId ShellTest::add(ItemKind itemKind, const std::string &name, ItemId parent) {
    const bool isFolder = isFolderKind(itemKind);
    return storeAddItem({.name = name,
                         .parent = parent,
                         .kind = itemKind,
                         .head = isFolder ? Bytes() : Bytes(50, 0xFF),
                         .data = {},
                         .whenTaken = NameTaken::keepBoth,
                         .flags = isFolder ? folderOpenFlag : 0});
}

std::string ShellTest::tokensOf(std::string_view words) {
    Bytes tokens;
    EXPECT_EQ(tokensFromWords(words, tokens), -1);
    return {tokens.begin(), tokens.end()};
}

ItemId ShellTest::addProgram(const std::string &name, const std::string &tokens, ItemId parent) {
    const Bytes head = encodeProgramInfo({.imageLength = 1, .name = name, .password = {}});
    const std::string image = ":" + tokens + "\xFF";
    return storeAddItem(
        {.name = name, .parent = parent, .kind = kind::program, .head = head, .data = {image.begin(), image.end()}});
}

}  // namespace numalink
