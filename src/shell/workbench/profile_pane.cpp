#include "shell/workbench/profile_pane.h"

#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItem>
#include <map>

#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

enum Column { placeColumn, statementColumn, countColumn, shareColumn, timeColumn, beforeColumn };
constexpr int lookAgain = 500;  // milliseconds, while the program runs

// A row that is sorted by its numbers, not by their words.
class ProfileItem : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem &other) const override {
        const int column = treeWidget()->sortColumn();
        const QVariant mine = data(column, Qt::UserRole), its = other.data(column, Qt::UserRole);
        return mine.isValid() && its.isValid() ? mine.toDouble() < its.toDouble() : QTreeWidgetItem::operator<(other);
    }
};

struct ProfilePane {
    QTreeWidget *table = nullptr;  // its dock's, as are the next
    QCheckBox *faint = nullptr;
    QLabel *total = nullptr;
    QTimer *timer = nullptr;
    ProfileReport shown;
    std::map<std::string, std::uint64_t> before;  // units by the statement's words, of the report that was kept
    std::uint64_t unitsBefore = 0;                // of all of it
    bool hasBefore = false;
};
ProfilePane state;

// Statements of two texts of a program are the same where they read the same in the same program.
std::string keyOf(const ProfileRow &row) {
    return programNameShown(row.place.program) + "\n" + statementText(row.place.program, row.cell);
}

void setNumber(QTreeWidgetItem *row, int column, double number, const QString &words) {
    row->setData(column, Qt::UserRole, number);
    row->setText(column, words);
    row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
}

void addRow(const ProfileRow &counted) {
    auto *row = new ProfileItem;
    const double units = static_cast<double>(counted.paceUnits);
    const double share = state.shown.paceUnits == 0 ? 0 : units / static_cast<double>(state.shown.paceUnits);
    row->setText(placeColumn, QStringLiteral("%1:%2:%3")
                                  .arg(toQt(programNameShown(counted.place.program)))
                                  .arg(counted.place.line)
                                  .arg(counted.place.statement + 1));
    row->setData(placeColumn, Qt::UserRole + 1,
                 QVariantList{counted.place.item, counted.place.program, counted.place.line, counted.place.statement});
    row->setText(statementColumn, toQt(statementText(counted.place.program, counted.cell)));
    setNumber(row, countColumn, static_cast<double>(counted.count),
              QLocale().toString(static_cast<qulonglong>(counted.count)));
    setNumber(row, shareColumn, share, QLocale().toString(100 * share, 'f', 1) + QStringLiteral(" %"));
    const double time = profileMilliseconds(counted.paceUnits);
    setNumber(row, timeColumn, time, QLocale().toString(time, 'f', 1) + QStringLiteral(" ms"));
    if (state.hasBefore) {
        const auto found = state.before.find(keyOf(counted));
        const double then = found == state.before.end() ? 0 : profileMilliseconds(found->second);
        setNumber(row, beforeColumn, then, QLocale().toString(then, 'f', 1) + QStringLiteral(" ms"));
    }
    state.table->addTopLevelItem(row);
}

void goTo(QTreeWidgetItem *row) {
    const QVariantList place = row->data(placeColumn, Qt::UserRole + 1).toList();
    if (place.size() != 4) return;
    goToPlace({.item = place[0].toUInt(),
               .program = place[1].toInt(),
               .line = place[2].toInt(),
               .statement = place[3].toInt()});
}

void keep() {
    takeProfile();
    state.before.clear();
    for (const ProfileRow &row : state.shown.rows) state.before[keyOf(row)] += row.paceUnits;
    state.unitsBefore = state.shown.paceUnits;
    state.hasBefore = true;
    state.table->setColumnHidden(beforeColumn, false);
    refreshProfile();
}

void save() {
    const ProfileReport report = profileReport();
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilter(textOf(Text::profileFilter) + QStringLiteral(" (*.txt *.json)"));
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    if (runDialog(dialog) != QDialog::Accepted) return;
    const QString path = dialog.selectedFiles().value(0);
    const bool json = path.endsWith(QLatin1String(".json"), Qt::CaseInsensitive);
    const std::string text = json ? profileAsJson(report) : profileAsText(report);
    writeUserFile(QFile::encodeName(path).toStdString(),
                  {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}, false);
}

QString milliseconds(std::uint64_t units) { return QLocale().toString(profileMilliseconds(units), 'f', 1); }

QString totalWords() {
    const QString count = QLocale().toString(static_cast<qulonglong>(state.shown.count));
    QString words =
        textOf(Text::profileTotal, {count.toStdString(), milliseconds(state.shown.paceUnits).toStdString()});
    if (state.hasBefore)
        words += QStringLiteral("  \u00B7  %1: %2 ms").arg(textOf(Text::columnBefore), milliseconds(state.unitsBefore));
    return words;
}

QPushButton *button(QHBoxLayout *row, Text words, void (*act)()) {
    auto *made = new QPushButton(textOf(words));
    QObject::connect(made, &QPushButton::clicked, made, act);
    row->addWidget(made);
    return made;
}

}  // namespace

QWidget *makeProfilePane() {
    auto *pane = new QWidget;
    auto *layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *head = new QHBoxLayout;
    auto *counting = new QCheckBox(textOf(Text::profileCount));
    counting->setChecked(countsStatements());
    QObject::connect(counting, &QCheckBox::toggled, counting, countStatements);
    head->addWidget(counting);
    state.faint = new QCheckBox(textOf(Text::profileFaint));
    QObject::connect(state.faint, &QCheckBox::toggled, state.faint, [] { debuggingChanged(); });
    head->addWidget(state.faint);
    head->addStretch(1);
    button(head, Text::profileKeep, keep);
    button(head, Text::profileSave, save);
    layout->addLayout(head);
    state.table =
        makePaneTable({textOf(Text::columnPlace), textOf(Text::columnStatement), textOf(Text::columnCount),
                       textOf(Text::columnShare), textOf(Text::columnCalculatorTime), textOf(Text::columnBefore)});
    state.table->setRootIsDecorated(false);
    state.table->setSortingEnabled(true);
    state.table->sortByColumn(timeColumn, Qt::DescendingOrder);
    state.table->setColumnHidden(beforeColumn, true);
    state.table->setAccessibleName(textOf(Text::paneProfile).remove(QLatin1Char('&')));
    layout->addWidget(state.table);
    state.total = new QLabel;
    layout->addWidget(state.total);
    QObject::connect(state.table, &QTreeWidget::itemActivated, state.table, goTo);
    state.timer = new QTimer(pane);
    state.timer->setInterval(lookAgain);
    QObject::connect(state.timer, &QTimer::timeout, pane, [] {
        if (!state.table->isVisible() || shownStop() != nullptr) return;
        takeProfile();
        refreshProfile();
    });
    return pane;
}

void refreshProfile() {
    const bool counting = profileIsOn() && runIsFollowed();
    counting ? state.timer->start() : state.timer->stop();
    state.table->setSortingEnabled(false);
    state.table->clear();
    for (const ProfileRow &row : state.shown.rows)
        if (row.count > 0) addRow(row);
    state.table->setSortingEnabled(true);
    fitColumns(state.table);
    state.total->setText(state.shown.rows.empty() ? QString() : totalWords());
}

void takeProfile() {
    if (profileIsOn()) state.shown = profileReport();
}

const ProfileReport &takenProfile() { return state.shown; }

void forgetProfiles() {
    state.shown = {};
    state.before.clear();
    state.hasBefore = false;
    state.table->setColumnHidden(beforeColumn, true);
    refreshProfile();
}

void forgetProfilePane() {
    if (state.table != nullptr) profileStop();
    state = {};
}

bool neverRunShown() { return state.faint != nullptr && state.faint->isChecked() && profileIsOn(); }

}  // namespace numalink
