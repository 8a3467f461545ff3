#include "shell/run/keys_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "emulator/machine/keypad.h"
#include "settings/settings_store.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/key_assignments.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct KeysDialog {
    QDialog *dialog = nullptr;
    QTreeWidget *list = nullptr;
    QLabel *line = nullptr;  // what is to be done, or was
    Assignments assigned;
    bool takesKey = false;  // the next key that is pressed is for the chosen row
};
KeysDialog *open = nullptr;  // while the dialog is

// "EXE (↵)".
QString nameOfCode(int code) {
    if (code == fastKey) return textOf(Text::keysRunFast);
    const KeyFace *face = keyFaceOf(code);
    if (face == nullptr) return {};
    const QString shift = QString::fromUtf8(face->shift);
    return QString::fromUtf8(face->legend) + (shift.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(shift));
}

int codeOf(const QTreeWidgetItem *row) { return row == nullptr ? 0 : row->data(0, Qt::UserRole).toInt(); }
int chosenCode() { return codeOf(open->list->currentItem()); }

void showNames() {
    for (int i = 0; i < open->list->topLevelItemCount(); i++) {
        QTreeWidgetItem *row = open->list->topLevelItem(i);
        row->setText(1, namesOfCode(codeOf(row), open->assigned).join(QStringLiteral("  ")));
    }
}

void tell(const QString &words) {
    open->line->setText(words);
    open->line->setAccessibleName(words.isEmpty() ? textOf(Text::keysTitle) : words);
}

std::string utf8(const QString &text) { return text.toStdString(); }

void take(BoardKey key) {
    const int code = chosenCode(), before = codeOfKey(key, open->assigned);
    const QString name = boardKeyName(key);
    if (!isAssignable(key)) return tell(textOf(Text::keysReserved, {utf8(name)}));
    if (!assign(open->assigned, key, code)) return tell(textOf(Text::keysTooMany));
    showNames();
    const bool moves = before != 0 && before != code;
    tell(moves ? textOf(Text::keysMoved, {utf8(name), utf8(nameOfCode(before)), utf8(nameOfCode(code))})
               : textOf(Text::keysGiven, {utf8(name), utf8(nameOfCode(code))}));
}

void endTaking() {
    open->takesKey = false;
    open->list->setFocus();
}

// While a key is awaited, none of them does what it does in a dialog.
bool lineEvent(QWidget *, QEvent *event) {
    if (open == nullptr || !open->takesKey) return false;
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept();
            return true;
        case QEvent::KeyPress: {
            const auto &key = *static_cast<QKeyEvent *>(event);
            const BoardKey pressed = boardKeyOf(key);
            if (key.isAutoRepeat()) return true;
            endTaking();
            key.key() == Qt::Key_Escape ? tell({}) : take(pressed);
            return true;
        }
        case QEvent::FocusOut:
            open->takesKey = false;
            return false;
        default:
            return false;
    }
}

void awaitKey() {
    if (chosenCode() == 0) return;
    open->takesKey = true;
    tell(textOf(Text::keysPress, {utf8(nameOfCode(chosenCode()))}));
    open->line->setFocus();
}

void takeAway() {
    tell(takeKeysAway(open->assigned, chosenCode()) ? QString() : textOf(Text::keysTooMany));
    showNames();
}

void reset() {
    resetKeysOf(open->assigned, chosenCode());
    tell({});
    showNames();
}

void resetAll() {
    open->assigned.clear();
    tell({});
    showNames();
}

// As they stand on the calculator, row by row; the window's own is the last.
void addRows() {
    const auto all = keyFaces();
    std::vector<KeyFace> faces(all.begin(), all.end());
    std::ranges::sort(faces, {}, [](const KeyFace &face) { return std::pair(face.y, face.x); });
    const auto add = [](int code) {
        auto *row = new QTreeWidgetItem(open->list, {nameOfCode(code)});
        row->setData(0, Qt::UserRole, code);
    };
    for (const KeyFace &face : faces) add(face.code);
    add(fastKey);
    showNames();
    open->list->resizeColumnToContents(0);
    open->list->setCurrentItem(open->list->topLevelItem(0));
}

QTreeWidget *makeList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("keysList"));
    list->setRootIsDecorated(false);
    list->setHeaderLabels({textOf(Text::keysOfCalculator), textOf(Text::keysOfKeyboard)});
    list->setAccessibleName(textOf(Text::keysTitle));
    list->setToolTip(textOf(Text::tipKeysList));
    QObject::connect(list, &QTreeWidget::itemActivated, list, [] { awaitKey(); });
    return list;
}

QLabel *makeLine() {
    auto *line = new QLabel;
    line->setObjectName(QStringLiteral("keysLine"));
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    line->setFocusPolicy(Qt::ClickFocus);
    line->setMinimumHeight(2 * line->fontMetrics().lineSpacing());
    line->setAlignment(Qt::AlignTop);
    hookEvents(line, lineEvent);
    return line;
}

void addButton(QBoxLayout *layout, Text words, Text tip, void (*act)()) {
    auto *button = new QPushButton(textOf(words));
    button->setToolTip(textOf(tip));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, open->dialog, act);
    layout->addWidget(button);
}

void build() {
    open->dialog->setObjectName(QStringLiteral("keysDialog"));
    open->dialog->setWindowTitle(textOf(Text::keysTitle));
    auto *layout = new QVBoxLayout(open->dialog);
    auto *parts = new QHBoxLayout;
    open->list = makeList();
    parts->addWidget(open->list, 1);
    auto *buttons = new QVBoxLayout;
    addButton(buttons, Text::keysAdd, Text::tipKeysAdd, awaitKey);
    addButton(buttons, Text::keysTakeAway, Text::tipKeysTakeAway, takeAway);
    addButton(buttons, Text::keysReset, Text::tipKeysReset, reset);
    addButton(buttons, Text::keysResetAll, Text::tipKeysResetAll, resetAll);
    buttons->addStretch();
    parts->addLayout(buttons);
    layout->addLayout(parts, 1);
    open->line = makeLine();
    layout->addWidget(open->line);
    layout->addWidget(dialogButtons(open->dialog));
    addRows();
    tell({});
    open->dialog->resize(QSize(520, 420) * textScale());
}

}  // namespace

void assignKeys() {
    QDialog dialog(mainWindow);
    KeysDialog state{.dialog = &dialog, .assigned = assignments()};
    open = &state;
    build();
    const bool isAccepted = runDialog(dialog) == QDialog::Accepted;
    open = nullptr;
    if (!isAccepted || state.assigned == assignments()) return;
    if (!storeAssignments(state.assigned)) {
        tellUser(Text::keysTooMany);
        return;
    }
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
}

}  // namespace numalink
