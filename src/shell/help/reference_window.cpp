#include "shell/help/reference_window.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSplitter>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

#include "platform/thread_role.h"
#include "shell/editor/program_clipboard.h"
#include "shell/editor/program_reading.h"
#include "shell/help/reference_page.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int windowWidth = 720, windowHeight = 480, listWidth = 250;
constexpr int searchLimit = 60;  // characters
constexpr int codeRole = Qt::UserRole;

struct Reference {
    QPointer<QDialog> window;
    QPointer<QLineEdit> search;
    QPointer<QTreeWidget> tree;
    QPointer<QRadioButton> byTopic, byLetter;
    QPointer<QTextBrowser> page;
};
Reference state;

const ReferenceRow *rowOf(const QTreeWidgetItem *entry) {
    if (entry == nullptr || !entry->data(0, codeRole).isValid()) return nullptr;
    return referenceOf(static_cast<TokenCode>(entry->data(0, codeRole).toUInt()));
}

// What a token stands under: its topic, or its first letter in any case; signs stand under one heading.
QString headingOf(const ReferenceRow &row) {
    if (state.byTopic->isChecked()) return topicInWords(row.topic);
    const QString name = nameInList(row);
    const bool isLetter = !name.isEmpty() && name.at(0).isLetter() && name.at(0).unicode() < 0x80;
    return isLetter ? QString(name.at(0).toUpper()) : textOf(Text::referenceSigns);
}

QTreeWidgetItem *addHeading(const QString &heading) {
    auto *entry = new QTreeWidgetItem(state.tree, {heading});
    entry->setToolTip(0, heading);
    return entry;
}

QTreeWidgetItem *addToken(QTreeWidgetItem *heading, const ReferenceRow &row) {
    auto *entry = new QTreeWidgetItem(heading, {nameInList(row)});
    entry->setData(0, codeRole, row.code);
    entry->setFont(0, treeFont());
    entry->setToolTip(0,
                      QString::fromUtf8(row.syntax.data(), static_cast<qsizetype>(row.syntax.size())).toHtmlEscaped());
    return entry;
}

QTreeWidgetItem *firstToken() {
    for (int i = 0; i < state.tree->topLevelItemCount(); i++)
        if (state.tree->topLevelItem(i)->childCount() > 0) return state.tree->topLevelItem(i)->child(0);
    return nullptr;
}

// Headings by topic in the order of the table, by letter in that of the alphabet; opened where they are looked through.
void listTokens() {
    const ReferenceRow *shown = rowOf(state.tree->currentItem());
    const QStringList wanted = state.search->text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    state.tree->clear();
    std::map<QString, QTreeWidgetItem *> headings;
    if (state.byTopic->isChecked())
        for (const std::string_view topic : topicsInOrder())
            headings[topicInWords(topic)] = addHeading(topicInWords(topic));
    QTreeWidgetItem *again = nullptr;
    for (const ReferenceRow &row : referenceRows()) {
        if (!tokenHolds(row, wanted)) continue;
        QTreeWidgetItem *&heading = headings[headingOf(row)];
        if (heading == nullptr) heading = addHeading(headingOf(row));
        QTreeWidgetItem *entry = addToken(heading, row);
        if (&row == shown) again = entry;
    }
    for (const auto &[name, heading] : headings) {
        heading->setHidden(heading->childCount() == 0);
        heading->setExpanded(!wanted.isEmpty());
        if (state.byLetter->isChecked()) heading->sortChildren(0, Qt::AscendingOrder);
    }
    if (state.byLetter->isChecked()) state.tree->sortItems(0, Qt::AscendingOrder);
    if (again == nullptr) again = firstToken();
    again != nullptr ? state.tree->setCurrentItem(again) : state.page->clear();
}

// The row of the token behind the caret of the program on view, else of the one ahead of it, or null.
const ReferenceRow *rowAtCaret() {
    if (!programEdit->isVisible()) return nullptr;
    const ProgramReading &reading = programReading();
    const std::size_t at = byteAtPosition(reading, programEdit->textCursor().position());
    const std::vector<ProgramToken> &tokens = reading.structure.tokens;
    for (const std::size_t place : {at, at - 1}) {
        const std::size_t token = place > 0 ? tokenAt(reading.structure, place) : noToken;
        if (token != noToken && tokens[token].role == TokenRole::code) return referenceOf(tokens[token].code);
    }
    return nullptr;
}

void choose(const ReferenceRow &row) {
    for (QTreeWidgetItemIterator at(state.tree); *at != nullptr; ++at)
        if (rowOf(*at) == &row) state.tree->setCurrentItem(*at);
}

void showToken() {
    if (const ReferenceRow *row = rowOf(state.tree->currentItem())) state.page->setHtml(pageOfToken(*row));
}

void insertToken() {
    const ReferenceRow *row = rowOf(state.tree->currentItem());
    if (row == nullptr) return;
    if (!programEdit->isVisible() || programEdit->isReadOnly()) {
        tellUser(Text::referenceNoProgram);
        return;
    }
    insertTokens(bytesOfToken(row->code));
    mainWindow->activateWindow();
    programEdit->setFocus();
}

QWidget *makeContents() {
    auto *side = new QWidget;
    auto *layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    state.search = new QLineEdit;
    state.search->setObjectName(QStringLiteral("referenceSearch"));
    state.search->setPlaceholderText(textOf(Text::manualSearch));
    state.search->setAccessibleName(textOf(Text::manualSearch));
    state.search->setToolTip(textOf(Text::tipReferenceSearch));
    state.search->setClearButtonEnabled(true);
    state.search->setMaxLength(searchLimit);
    state.byTopic = new QRadioButton(textOf(Text::referenceByTopic));
    state.byTopic->setToolTip(textOf(Text::tipReferenceByTopic));
    state.byLetter = new QRadioButton(textOf(Text::referenceByLetter));
    state.byLetter->setToolTip(textOf(Text::tipReferenceByLetter));
    state.byTopic->setChecked(true);
    state.tree = new QTreeWidget;
    state.tree->setObjectName(QStringLiteral("referenceTree"));
    state.tree->setAccessibleName(textOf(Text::referenceTitle));
    state.tree->setToolTip(textOf(Text::tipReferenceTree));
    state.tree->setHeaderHidden(true);
    auto *order = new QHBoxLayout;
    order->addWidget(state.byTopic);
    order->addWidget(state.byLetter);
    layout->addWidget(state.search);
    layout->addLayout(order);
    layout->addWidget(state.tree);
    return side;
}

QDialogButtonBox *makeButtons() {
    auto *buttons = new QDialogButtonBox;
    QPushButton *insert = buttons->addButton(textOf(Text::referenceInsert), QDialogButtonBox::ActionRole);
    insert->setObjectName(QStringLiteral("referenceInsert"));
    insert->setToolTip(textOf(Text::tipReferenceInsert));
    insert->setAutoDefault(false);
    QObject::connect(insert, &QPushButton::clicked, state.window, insertToken);
    addHelp(state.window, buttons);
    return buttons;
}

void makeWindow() {
    state.window = new QDialog(mainWindow, Qt::Window);
    state.window->setObjectName(QStringLiteral("referenceWindow"));
    state.window->setAttribute(Qt::WA_DeleteOnClose);
    state.window->setWindowTitle(textOf(Text::referenceTitle));
    state.page = new QTextBrowser;
    state.page->setObjectName(QStringLiteral("referencePage"));
    state.page->setAccessibleName(textOf(Text::referenceTitle));
    state.page->setPlaceholderText(textOf(Text::tipReferenceTree));
    auto *parts = new QSplitter;
    parts->addWidget(makeContents());
    parts->addWidget(state.page);
    parts->setStretchFactor(1, 1);
    parts->setSizes({grown(listWidth), grown(windowWidth - listWidth)});
    auto *layout = new QVBoxLayout(state.window);
    layout->addWidget(parts, 1);
    layout->addWidget(makeButtons());
    QObject::connect(state.search, &QLineEdit::textChanged, state.window, listTokens);
    QObject::connect(state.byTopic, &QRadioButton::toggled, state.window, listTokens);
    QObject::connect(state.tree, &QTreeWidget::currentItemChanged, state.window, showToken);
    QObject::connect(state.tree, &QTreeWidget::itemDoubleClicked, state.window, insertToken);
    listTokens();
    const QSize room = mainWindow->screen()->availableSize() * 9 / 10;
    state.window->resize((QSize(windowWidth, windowHeight) * textScale()).boundedTo(room));
}

}  // namespace

void showReference() {
    assertRole(ThreadRole::graphical);
    if (state.window == nullptr) makeWindow();
    showUnminimised(state.window);
    state.window->raise();
    state.window->activateWindow();
    if (const ReferenceRow *row = rowAtCaret()) {
        state.search->clear();
        choose(*row);
    }
    state.search->setFocus();
}

}  // namespace numalink
