#include "shell/editor/completion_list.h"

#include <QAbstractListModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTreeView>

#include "language/completion.h"
#include "settings/settings_store.h"
#include "shell/editor/language_tips.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_reading.h"
#include "shell/editor/program_view.h"
#include "shell/parts/command_states.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int shownRows = 9, nameWidth = 150, listWidth = 560;  // pixels

// Name, and beside it syntax and meaning.
class CompletionModel : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;
    std::vector<Completion> rows;

    void take(std::vector<Completion> found) {
        beginResetModel();
        rows = std::move(found);
        endResetModel();
    }
    int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex &index, int role) const override {
        const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole || role == Qt::AccessibleTextRole;
        if (!index.isValid() || !isText) return {};
        const Completion &row = rows[static_cast<std::size_t>(index.row())];
        return index.column() == 0 ? qtFromCodes(row.shown) : explained(row);
    }

private:
    static QString explained(const Completion &row) {
        constexpr Text words[] = {Text::none, Text::completionLabel, Text::completionProgram, Text::completionList,
                                  Text::completionMatrix};
        if (row.kind != CompletionKind::token) return textOf(words[static_cast<std::size_t>(row.kind)]);
        const ReferenceRow *known = referenceOf(row.token);
        if (known == nullptr) return {};
        QString syntax = toQt(std::string(known->syntax));
        syntax.replace(QChar(0x21B5), QLatin1Char(' '));
        return syntax + QStringLiteral("  \u2013  ") + toQt(std::string(referenceMeaning(*known)));
    }
};

struct CompletionList {
    QTreeView *view = nullptr;  // the window's
    CompletionModel *model = nullptr;
    int from = 0;  // position of the first letter
};
CompletionList state;

void accept(int row);

void makeList() {
    if (state.view != nullptr) return;
    state.view = new QTreeView(programEdit->window());
    state.view->setWindowFlags(Qt::ToolTip);
    state.view->setFrameStyle(QFrame::Box | QFrame::Plain);  // it stands over text on the same ground
    state.view->setObjectName(QStringLiteral("completionList"));
    state.view->setAccessibleName(textOf(Text::completionName));
    state.view->setFocusPolicy(Qt::NoFocus);
    state.view->setAttribute(Qt::WA_ShowWithoutActivating);
    state.view->setRootIsDecorated(false);
    state.view->setUniformRowHeights(true);
    state.view->setAllColumnsShowFocus(true);
    state.view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    state.view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    state.view->header()->hide();
    state.view->header()->setStretchLastSection(true);
    state.model = new CompletionModel(state.view);
    state.view->setModel(state.model);
    state.view->setColumnWidth(0, grown(nameWidth));
    QObject::connect(state.view, &QTreeView::clicked, state.view,
                     [](const QModelIndex &index) { accept(index.row()); });
    QObject::connect(programEdit->verticalScrollBar(), &QScrollBar::valueChanged, state.view, closeCompletion);
}

int chosenRow() { return state.view->currentIndex().isValid() ? state.view->currentIndex().row() : -1; }
void choose(int row) { state.view->setCurrentIndex(state.model->index(row, 0)); }

CompletionQuery queryAtCaret() {
    const QTextCursor cursor = programEdit->textCursor();
    ViewLine line;
    const LineReading reading = readBlock(cursor.block(), line);
    return completionQuery(line, reading, static_cast<std::size_t>(cursor.positionInBlock()));
}

void place(int from) {
    QTextCursor start = programEdit->textCursor();
    start.setPosition(from);
    const QRect letter = programEdit->cursorRect(start);
    const int rowHeight = std::max(1, state.view->sizeHintForRow(0));
    const int rows = std::min(shownRows, state.model->rowCount());
    const QSize size(grown(listWidth), rows * rowHeight + 2 * state.view->frameWidth());
    QPoint at = programEdit->viewport()->mapToGlobal(letter.bottomLeft() + QPoint(0, 2));
    const QRect window = programEdit->window()->geometry();
    if (at.y() + size.height() > window.bottom())
        at = programEdit->viewport()->mapToGlobal(letter.topLeft()) - QPoint(0, size.height() + 2);
    const QRect room = programEdit->screen()->availableGeometry();
    at.setX(std::max(room.left(), std::min(at.x() - 4, room.right() - size.width())));
    state.view->setGeometry(QRect(at, size));
}

void show(bool isAsked) {
    if (programEdit->isReadOnly() || programEdit->textCursor().hasSelection()) return closeCompletion();
    const CompletionQuery query = queryAtCaret();
    // A folder is read only where its programs are meant.
    const bool wantsPrograms = query.wish == CompletionQuery::Wish::programs;
    const std::vector<std::string> programs = wantsPrograms ? programsOfFolder() : std::vector<std::string>();
    std::vector<Completion> found = completionsOf(query, programReadingBefore().structure, programs);
    // What stands there already needs no list.
    const bool isThere = found.size() == 1 && found[0].shown == query.letters;
    if (found.empty() || (isThere && !isAsked)) return closeCompletion();
    makeList();
    const QTextCursor cursor = programEdit->textCursor();
    state.from = cursor.block().position() + static_cast<int>(query.from);
    state.model->take(std::move(found));
    state.view->clearSelection();
    place(state.from);
    if (isAsked) choose(0);
    if (!state.view->isVisible()) state.view->show();
}

// The token itself takes the letters' place, so that no reading can take it for another. One step of undo.
void accept(int row) {
    if (row < 0 || row >= state.model->rowCount()) return;
    const Completion chosen = state.model->rows[static_cast<std::size_t>(row)];
    QTextCursor cursor = programEdit->textCursor();
    const int caret = cursor.position();
    closeCompletion();
    cursor.beginEditBlock();
    cursor.setPosition(state.from);
    cursor.setPosition(caret, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    insertLine(cursor, lineOfTokens(chosen.bytes));
    cursor.endEditBlock();
    programEdit->setTextCursor(cursor);
    programEdit->ensureCursorVisible();
    commandPutIn();
    showSignature();
}

void moveBy(int rows) {
    const int now = chosenRow();
    choose(std::clamp(now < 0 ? 0 : now + rows, 0, state.model->rowCount() - 1));
}

}  // namespace

void completeNow() { show(true); }

void completionTyped() {
    if (completionShown() || completesWhileTyping()) show(false);
}

void closeCompletion() {
    if (state.view != nullptr) state.view->hide();
}

bool completionShown() { return state.view != nullptr && state.view->isVisible(); }

bool completionKey(const QKeyEvent &key) {
    if (!completionShown()) return false;
    const bool isPlain = (key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
    switch (isPlain ? key.key() : 0) {
        case Qt::Key_Escape:
            closeCompletion();
            return true;
        case Qt::Key_Down:
            moveBy(1);
            return true;
        case Qt::Key_Up:
            if (chosenRow() < 0) break;
            moveBy(-1);
            return true;
        case Qt::Key_PageDown:
            moveBy(shownRows);
            return true;
        case Qt::Key_Tab:
            accept(std::max(0, chosenRow()));
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (chosenRow() < 0) break;
            accept(chosenRow());
            return true;
        case Qt::Key_Shift:
        case Qt::Key_Backspace:
            return false;
        default:
            // Typing goes on, and tells anew.
            if (isPlain && !key.text().isEmpty() && key.text().at(0).isPrint()) return false;
            break;
    }
    closeCompletion();
    return false;
}

bool completesWhileTyping() { return settingsInt(setting::completeWhileTyping) != 0; }

void toggleCompletesWhileTyping() {
    settingsSetInt(setting::completeWhileTyping, completesWhileTyping() ? 0 : 1);
    settingsSave();
    closeCompletion();
    commandStatesChanged();
}

void forgetCompletion() { state = {}; }

}  // namespace numalink
