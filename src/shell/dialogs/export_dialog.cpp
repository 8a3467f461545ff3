#include "shell/dialogs/export_dialog.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <algorithm>
#include <array>
#include <functional>
#include <iterator>

#include "exchange/export/export.h"
#include "exchange/export/export_formats.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

QString lastFolder;  // of the file dialog, for this run

constexpr int idRole = Qt::UserRole;
constexpr int orderRole = Qt::UserRole + 1;  // place among the items of the question, by folder and name

// Both lists are sorted by their items' places in the question.
class CandidateItem : public QListWidgetItem {
public:
    using QListWidgetItem::QListWidgetItem;
    bool operator<(const QListWidgetItem &other) const override {
        return data(orderRole).toInt() < other.data(orderRole).toInt();
    }
};

struct ExportControls {
    QListWidget *available = nullptr;
    QListWidget *chosen = nullptr;
    std::vector<QRadioButton *> targets;  // in the order of the formats
    QCheckBox *each = nullptr;
    QPushButton *ok = nullptr;
};

const ExportFormat *choiceOf(const ExportControls &controls) {
    for (std::size_t i = 0; i < controls.targets.size(); i++) {
        if (controls.targets[i]->isChecked()) return &exportFormats()[i];
    }
    return nullptr;
}

void enableOk(const ExportControls &controls) {
    controls.ok->setEnabled(choiceOf(controls) != nullptr && controls.chosen->count() > 0);
}

// Moves rows of one list, which rise, to the other; then the row that stands where the first one stood is selected.
void moveRows(const ExportControls &controls, QListWidget *from, QListWidget *to, const std::vector<int> &rows) {
    if (rows.empty()) return;
    from->setUpdatesEnabled(false);
    to->setUpdatesEnabled(false);
    to->clearSelection();
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) to->addItem(from->takeItem(*row));
    to->sortItems();
    from->clearSelection();
    from->setCurrentRow(std::min(rows.front(), from->count() - 1));
    from->setUpdatesEnabled(true);
    to->setUpdatesEnabled(true);
    enableOk(controls);
}

void moveSelected(const ExportControls &controls, QListWidget *from, QListWidget *to) {
    std::vector<int> rows;
    for (int row = 0; row < from->count(); row++) {
        if (from->item(row)->isSelected()) rows.push_back(row);
    }
    moveRows(controls, from, to, rows);
    from->setFocus();
}

void moveAll(const ExportControls &controls, QListWidget *from, QListWidget *to) {
    std::vector<int> rows(static_cast<std::size_t>(from->count()));
    for (std::size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<int>(i);
    moveRows(controls, from, to, rows);
    to->setFocus();
    to->setCurrentRow(0);
}

// A list that takes what is dragged from the other one as if its button had been pressed.
class CandidateList : public QListWidget {
public:
    std::function<void()> takeDrop;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { allowFromOther(event); }
    void dragMoveEvent(QDragMoveEvent *event) override { allowFromOther(event); }
    void dropEvent(QDropEvent *event) override {
        allowFromOther(event);
        if (event->isAccepted()) takeDrop();
    }

private:
    void allowFromOther(QDropEvent *event) {
        const bool fromOther =
            event->source() != nullptr && event->source() != this && event->source()->parent() == parent();
        // Copied as far as Qt knows: the source would otherwise take its lines away a second time.
        event->setDropAction(Qt::CopyAction);
        event->setAccepted(fromOther);
    }
};

CandidateList *makeList(const QString &name, const QString &title, Text tip) {
    auto *list = new CandidateList;
    list->setObjectName(name);
    list->setAccessibleName(title);
    list->setToolTip(textOf(tip));
    list->setFont(treeFont());
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setDragEnabled(true);
    list->setAcceptDrops(true);
    list->setDragDropMode(QAbstractItemView::DragDrop);
    list->setDefaultDropAction(Qt::CopyAction);
    list->setUniformItemSizes(true);
    list->setSpacing(1);
    return list;
}

void fillLists(const ExportQuestion &question, const ExportControls &controls) {
    int order = 0;
    for (const ExportCandidate &candidate : question.items) {
        const std::string folder = candidate.folder.empty() ? "" : "(" + candidate.folder + ") ";
        auto *item = new CandidateItem(toQt(folder + candidate.name));
        item->setData(idRole, candidate.id);
        item->setData(orderRole, order++);
        const bool isChosen = std::ranges::find(question.chosen, candidate.id) != question.chosen.end();
        (isChosen ? controls.chosen : controls.available)->addItem(item);
    }
    for (QListWidget *list : {controls.available, controls.chosen}) list->setCurrentRow(0);
    // The one that is selected in the tree needs no looking for.
    for (int row = 0; row < controls.available->count(); row++)
        if (controls.available->item(row)->data(idRole).toUInt() == selectedItemId())
            controls.available->setCurrentRow(row);
}

QPushButton *moveButton(const QString &sign, Text tip, const std::function<void()> &work) {
    auto *button = new QPushButton(sign);
    button->setToolTip(textOf(tip));
    button->setAccessibleName(textOf(tip));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, button, work);
    return button;
}

// They stand between the lists, and Tab meets them there.
QVBoxLayout *moveButtons(const ExportControls &controls) {
    QListWidget *left = controls.available;
    QListWidget *right = controls.chosen;
    const std::array<QPushButton *, 4> buttons = {
        moveButton(QStringLiteral(">"), Text::exportAdd, [=] { moveSelected(controls, left, right); }),
        moveButton(QStringLiteral(">>"), Text::exportAddAll, [=] { moveAll(controls, left, right); }),
        moveButton(QStringLiteral("<"), Text::exportRemove, [=] { moveSelected(controls, right, left); }),
        moveButton(QStringLiteral("<<"), Text::exportRemoveAll, [=] { moveAll(controls, right, left); })};
    auto *layout = new QVBoxLayout;
    layout->addStretch();
    for (QPushButton *button : buttons) layout->addWidget(button);
    layout->addStretch();
    return layout;
}

QGroupBox *targetBox(const ExportQuestion &question, ExportControls &controls) {
    auto *box = new QGroupBox(textOf(Text::exportType));
    auto *layout = new QHBoxLayout(box);
    for (const ExportFormat &format : exportFormats()) {
        auto *button = new QRadioButton(textOf(format.label));
        button->setChecked(format.target == question.target);
        button->setToolTip(textOf(Text::tipExportTarget));
        layout->addWidget(button);
        controls.targets.push_back(button);
    }
    layout->addStretch();
    return box;
}

QLabel *titleOf(const QString &text, QListWidget *list) {
    auto *title = new QLabel(text);
    title->setBuddy(list);
    return title;
}

QGridLayout *listsLayout(ExportControls &controls) {
    auto *left = makeList(QStringLiteral("availableItems"), textOf(Text::exportAvailable), Text::tipExportAvailable);
    auto *right = makeList(QStringLiteral("chosenItems"), textOf(Text::exportChosen), Text::tipExportChosen);
    controls.available = left;
    controls.chosen = right;
    auto *layout = new QGridLayout;
    layout->addWidget(titleOf(textOf(Text::exportAvailable), left), 0, 0);
    layout->addWidget(titleOf(textOf(Text::exportChosen), right), 0, 2);
    layout->addWidget(left, 1, 0);
    layout->addWidget(right, 1, 2);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(2, 1);
    return layout;
}

void connectLists(const ExportControls &controls, QGridLayout *layout) {
    auto *left = static_cast<CandidateList *>(controls.available);
    auto *right = static_cast<CandidateList *>(controls.chosen);
    left->takeDrop = [=] { moveSelected(controls, right, left); };
    right->takeDrop = [=] { moveSelected(controls, left, right); };
    QObject::connect(left, &QListWidget::itemDoubleClicked, right, [=] { moveSelected(controls, left, right); });
    QObject::connect(right, &QListWidget::itemDoubleClicked, left, [=] { moveSelected(controls, right, left); });
    for (QRadioButton *target : controls.targets)
        QObject::connect(target, &QRadioButton::toggled, left, [=] { enableOk(controls); });
    QVBoxLayout *buttons = moveButtons(controls);
    layout->addLayout(buttons, 1, 1);
    QWidget *ahead = left;
    for (int i = 0; i < buttons->count(); i++) {
        QWidget *button = buttons->itemAt(i)->widget();
        if (button == nullptr) continue;
        QWidget::setTabOrder(ahead, button);
        ahead = button;
    }
    QWidget::setTabOrder(ahead, right);
}

void takeAnswers(ExportQuestion &question, const ExportControls &controls) {
    question.chosen.clear();
    for (int row = 0; row < controls.chosen->count(); row++)
        question.chosen.push_back(controls.chosen->item(row)->data(idRole).toUInt());
    const ExportFormat *choice = choiceOf(controls);
    question.target = choice == nullptr ? ExportTarget::none : choice->target;
    question.eachAlone = controls.each->isChecked();
}

// Whether an existing file may be replaced is asked further down, for every front end alike.
void askPath(ExportQuestion &question) {
    const ExportFormat *format = exportFormatOf(question.target);
    if (format == nullptr) return;
    if (question.eachAlone) {
        const QString folder = QFileDialog::getExistingDirectory(mainWindow, textOf(Text::exportTitle), lastFolder);
        if (!folder.isEmpty()) lastFolder = folder;
        question.path = QFile::encodeName(folder).toStdString();
        return;
    }
    const QString pattern = QStringLiteral("*") + QLatin1String(format->ending);
    const QString filter = textOf(format->filter) + QStringLiteral(" (") + pattern + QStringLiteral(" ") +
                           pattern.toUpper() + QStringLiteral(");;") + textOf(Text::filterAllFiles) +
                           QStringLiteral(" (*)");
    QString path = QFileDialog::getSaveFileName(mainWindow, textOf(Text::exportTitle), lastFolder, filter, nullptr,
                                                QFileDialog::DontConfirmOverwrite);
    if (path.isEmpty()) return;
    if (QFileInfo(path).suffix().isEmpty()) path += QLatin1String(format->ending);
    lastFolder = QFileInfo(path).absolutePath();
    question.path = QFile::encodeName(path).toStdString();
}

}  // namespace

void askExport(ExportQuestion &question) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("exportDialog"));
    dialog.setWindowTitle(textOf(Text::toolSave));
    ExportControls controls;
    auto *layout = new QVBoxLayout(&dialog);
    QGridLayout *lists = listsLayout(controls);
    layout->addLayout(lists);
    layout->addWidget(targetBox(question, controls));
    controls.each = new QCheckBox(textOf(Text::exportEach));
    controls.each->setToolTip(textOf(Text::tipExportEach));
    controls.each->setChecked(question.eachAlone);
    layout->addWidget(controls.each);
    QDialogButtonBox *buttons = dialogButtons(&dialog);
    controls.ok = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(buttons);
    fillLists(question, controls);
    connectLists(controls, lists);
    enableOk(controls);
    dialog.resize(dialog.sizeHint().expandedTo(QSize(680, 440) * textScale()));
    if (runDialog(dialog) != QDialog::Accepted) return;
    takeAnswers(question, controls);
    askPath(question);
}

void forgetExport() { lastFolder.clear(); }

}  // namespace numalink
