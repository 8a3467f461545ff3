#include "shell/workbench/code_panes.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTimer>
#include <QTreeWidget>
#include <array>

#include "calculator/charset.h"
#include "calculator/item_kinds.h"
#include "language/outline.h"
#include "settings/settings_store.h"
#include "shell/editor/program_reading.h"
#include "shell/parts/command_states.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/pane_sizes.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/workbench/code_commands.h"
#include "shell/workbench/pane_parts.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr int bottomHeight = 130, rightWidth = 200;  // pixels at first
constexpr int placeRole = Qt::UserRole, lengthRole = Qt::UserRole + 1, itemRole = Qt::UserRole + 2;
constexpr int longestLine = 80;  // characters of a line that is told

void fillProblems();
void fillOutline();
void fillUses() {}

struct PaneRow {
    CodePane pane;
    char letter;  // in the setting
    const char *name;
    Text title;
    Qt::DockWidgetArea area;
    void (*fill)();
};
constexpr PaneRow rows[] = {
    {CodePane::problems, 'P', "problemsDock", Text::paneProblems, Qt::BottomDockWidgetArea, fillProblems},
    {CodePane::outline, 'O', "outlineDock", Text::paneOutline, Qt::RightDockWidgetArea, fillOutline},
    {CodePane::uses, 'U', "usesDock", Text::paneUses, Qt::BottomDockWidgetArea, fillUses},
};

struct Dock {
    QDockWidget *widget = nullptr;
    QTreeWidget *table = nullptr;
};
std::array<Dock, std::size(rows)> docks;

Dock &dockOf(CodePane pane) { return docks[static_cast<std::size_t>(pane)]; }

void remember() {
    std::string shown;
    for (const PaneRow &row : rows)
        if (!dockOf(row.pane).widget->isHidden()) shown += row.letter;
    settingsSetValue(setting::codePanes, shown);
    settingsSave();
    commandStatesChanged();
}

void activated(QTreeWidgetItem *row) {
    const QVariant at = row->data(0, placeRole);
    if (!at.isValid() || !isTextKind(viewKind)) return;
    const auto item = row->data(0, itemRole).isValid() ? row->data(0, itemRole).value<ItemId>() : viewItemId;
    showInItem(item, at.toULongLong(), row->data(0, lengthRole).toULongLong());
}

QTreeWidgetItem *addRow(QTreeWidget *table, const QStringList &columns, std::size_t at, std::size_t length) {
    auto *row = new QTreeWidgetItem(table, columns);
    row->setData(0, placeRole, QVariant::fromValue<qulonglong>(at));
    row->setData(0, lengthRole, QVariant::fromValue<qulonglong>(length));
    row->setToolTip(static_cast<int>(columns.size()) - 1, columns.last());
    return row;
}

QString lineNumber(const ProgramText &text, std::size_t at) { return QString::number(placeOfByte(text, at).line + 1); }

void fillProblems() {
    QTreeWidget *table = dockOf(CodePane::problems).table;
    table->clear();
    const ProgramReading &reading = programReading();
    constexpr Text words[] = {Text::severityError, Text::severityWarning, Text::severityHint};
    for (const Problem &problem : problemsOnView()) {
        QString text = toQt(problemText(problem));
        if (problem.mend) text += QLatin1Char(' ') + textOf(Text::mendOffered);
        addRow(table,
               {lineNumber(reading.text, problem.at), textOf(words[static_cast<std::size_t>(severityOf(problem.kind))]),
                text},
               problem.at, problem.length);
    }
}

void fillOutline() {
    QTreeWidget *table = dockOf(CodePane::outline).table;
    table->clear();
    const ProgramReading &reading = programReading();
    for (const OutlineEntry &entry : outlineOf(reading.structure)) {
        constexpr const char *signs[] = {"%1", "Lbl %1", "Prog \"%1\"", "Menu \"%1\""};
        const ProgramToken &token = reading.structure.tokens[entry.token];
        QTreeWidgetItem *row =
            addRow(table,
                   {lineNumber(reading.text, token.at),
                    QString::fromLatin1(signs[static_cast<std::size_t>(entry.kind)]).arg(nameToQt(entry.text))},
                   token.at, token.length);
        QFont font = row->font(1);
        font.setBold(entry.kind == OutlineKind::remark);
        row->setFont(1, font);
    }
}

void fillShown() {
    for (const PaneRow &row : rows)
        if (dockOf(row.pane).widget->isVisible()) row.fill();
}

bool dockEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Close) QTimer::singleShot(0, mainWindow, remember);
    return false;
}

// Back to the text.
bool tableEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape) return false;
    programEdit->setFocus();
    return true;
}

QStringList columnsOf(CodePane pane) {
    QStringList columns = {textOf(Text::columnLine)};
    if (pane == CodePane::problems) columns << textOf(Text::columnSeverity);
    return columns << textOf(pane == CodePane::problems ? Text::columnProblem : Text::columnPlace);
}

void makeDock(const PaneRow &row) {
    Dock &dock = dockOf(row.pane);
    const QString title = textOf(row.title).remove(QLatin1Char('&'));
    dock.widget = new QDockWidget(title, mainWindow);
    dock.widget->setObjectName(QString::fromLatin1(row.name));
    dock.table = makePaneTable(columnsOf(row.pane));
    dock.table->setRootIsDecorated(false);
    dock.table->setAccessibleName(title);
    dock.table->setToolTip(textOf(Text::tipGoToPlace));
    for (int column = 0; column + 1 < dock.table->columnCount(); column++)  // the last one takes the rest
        dock.table->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    dock.widget->setWidget(dock.table);
    mainWindow->addDockWidget(row.area, dock.widget);
    dock.widget->hide();  // else it takes room from the others of its area until it is known whether it is shown
    hookEvents(dock.widget, dockEvent);
    hookEvents(dock.table, tableEvent);
    QObject::connect(dock.table, &QTreeWidget::itemActivated, dock.table, activated);
    QObject::connect(dock.table, &QTreeWidget::itemClicked, dock.table, activated);
    QObject::connect(dock.widget, &QDockWidget::visibilityChanged, dock.widget, [&row](bool visible) {
        if (visible && isTextKind(viewKind)) row.fill();
    });
}

bool isWanted(const QDockWidget *pane) {
    const std::string shown = settingsValue(setting::codePanes);
    return std::ranges::any_of(rows, [&](const PaneRow &row) {
        return dockOf(row.pane).widget == pane && row.pane != CodePane::uses && shown.find(row.letter) != shown.npos;
    });
}

// As it was left, or as at first; a hidden one would only change the panes that share its area.
void sizeDock(const PaneRow &row) {
    QDockWidget *dock = dockOf(row.pane).widget;
    if (dock->isHidden() || dock->isFloating()) return;
    const QSize known = paneSize(dock);
    if (row.area == Qt::BottomDockWidgetArea)
        mainWindow->resizeDocks({dock}, {known.isEmpty() ? grown(bottomHeight) : known.height()}, Qt::Vertical);
    else
        mainWindow->resizeDocks({dock}, {known.isEmpty() ? grown(rightWidth) : known.width()}, Qt::Horizontal);
}

void addUses(const ProgramText &text, const ProgramStructure &program, const ProgramName &name, const ItemEntry &item) {
    constexpr const char *signs[] = {"", "\u2192", "Lbl"};
    const std::vector<ViewLine> lines = viewLines(text.image);
    for (const NameUse &use : usesOf(program, name)) {
        const ProgramToken &token = program.tokens[use.first],
                           &last = program.tokens[use.first + std::max<std::size_t>(use.count, 1) - 1];
        const std::size_t line = lineOf(program, token.at);
        const QString shown = line < lines.size() ? nameToQt(lines[line].text).left(longestLine) : QString();
        const QString place = nameToQt(item.name) + QStringLiteral(":  ") + shown + QLatin1String("  ") +
                              QString::fromUtf8(signs[static_cast<std::size_t>(use.kind)]);
        QTreeWidgetItem *row = addRow(dockOf(CodePane::uses).table, {lineNumber(text, token.at), place}, token.at,
                                      last.at + last.length - token.at);
        row->setData(0, itemRole, QVariant::fromValue<ItemId>(item.id));
    }
}

}  // namespace

void makeCodePanes() {
    for (const PaneRow &row : rows) makeDock(row);
    mainWindow->tabifyDockWidget(dockOf(CodePane::problems).widget, dockOf(CodePane::uses).widget);
    for (const PaneRow &row : rows) {
        tearOffAgain(dockOf(row.pane).widget);
        bringUpPane(dockOf(row.pane).widget, isWanted);
    }
    for (const PaneRow &row : rows) sizeDock(row);
    readingChanged = fillShown;
    problemsChanged = fillShown;
}

void forgetCodePanes() {
    readingChanged = [] {};
    problemsChanged = [] {};
    docks = {};
    forgetCodeCommands();
}

bool codePaneShown(CodePane pane) { return dockOf(pane).widget != nullptr && !dockOf(pane).widget->isHidden(); }

void toggleCodePane(CodePane pane) {
    QDockWidget *dock = dockOf(pane).widget;
    dock->setVisible(dock->isHidden());
    if (!dock->isHidden()) dock->raise();
    remember();
}

void showUsesOf(const ProgramName &name) {
    Dock &dock = dockOf(CodePane::uses);
    dock.table->clear();
    const auto own = storeReadEntry(viewItemId);
    if (!own) return;
    const ProgramReading &reading = programReading();
    addUses(reading.text, reading.structure, name, *own);
    const bool isEverywhere = name.kind != NameKind::label;
    for (const ItemEntry &sibling : isEverywhere ? storeListChildren(own->parent) : std::vector<ItemEntry>()) {
        StoredItem other;
        if (sibling.id == own->id || !isTextKind(sibling.kind) || !storeReadItem(sibling.id, other)) continue;
        addUses(programText(other.data), structureOf(other.data), name, sibling);
    }
    dock.widget->setWindowTitle(textOf(Text::usesOf, {utf8FromCalculator(name.shown)}));
    dock.widget->show();
    dock.widget->raise();
    dock.table->setCurrentItem(dock.table->topLevelItem(0));
    dock.table->setFocus();
    commandStatesChanged();
}

}  // namespace numalink
