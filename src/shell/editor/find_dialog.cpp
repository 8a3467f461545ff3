#include "shell/editor/find_dialog.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "calculator/item_kinds.h"
#include "shell/editor/program_document.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"
#include "text/lenient_text.h"

namespace numalink {

namespace {

constexpr int findLimit = 49;  // characters

QString findText;

// False when cancelled, which forgets the text.
bool askFind() {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("findDialog"));
    dialog.setWindowTitle(textOf(Text::findTitle));
    auto *wanted = new QLineEdit(findText);
    wanted->setMaxLength(findLimit);
    wanted->setFont(programFont());
    wanted->setToolTip(textOf(Text::tipFindText));
    wanted->selectAll();
    auto *label = new QLabel(textOf(Text::findLabel));
    label->setBuddy(wanted);
    auto *fromStart = new QCheckBox(textOf(Text::findFromStart));
    fromStart->setToolTip(textOf(Text::tipFindFromStart));
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(wanted);
    layout->addWidget(fromStart);
    layout->addWidget(dialogButtons(&dialog));
    dialog.setMinimumWidth(grown(300));
    const bool accepted = runDialog(dialog) == QDialog::Accepted;
    findText = accepted ? wanted->text() : QString();
    if (accepted && fromStart->isChecked()) programEdit->moveCursor(QTextCursor::Start);
    return accepted && !findText.isEmpty();
}

// A text as the program shows it once it is typed: what is wanted comes from the same keyboard.
QString asShown(const QString &typed) {
    const ViewLine line = typedLine(typed.toStdString());
    const LineReading reading = readLine(line, true);
    return reading.faultAt < 0 ? qtFromCodes(shownLine(line, reading).text) : typed;
}

// The nearer of the text as it was typed and as it shows; from the end of the selection on, within a line.
QTextCursor nextFound() {
    const int from = programEdit->textCursor().selectionEnd();
    const QTextCursor typed = programEdit->document()->find(findText, from);
    const QTextCursor shown = programEdit->document()->find(asShown(findText), from);
    if (typed.isNull() || shown.isNull()) return typed.isNull() ? shown : typed;
    return typed.selectionStart() <= shown.selectionStart() ? typed : shown;
}

void search() {
    const QTextCursor found = nextFound();
    if (found.isNull()) {
        tellFixed(Text::findNothing, {}, programTitle);
    } else {
        programEdit->setTextCursor(found);
        programEdit->ensureCursorVisible();
    }
    programEdit->setFocus();
}

}  // namespace

void findInProgram() {
    if (isTextKind(viewKind) && askFind()) search();
}

void forgetFind() { findText.clear(); }

void findAgain() {
    if (findText.isEmpty()) return findInProgram();
    if (isTextKind(viewKind)) search();
}

}  // namespace numalink
