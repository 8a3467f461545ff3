#include "shell/library/versions_dialog.h"

#include <QDateTime>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLocale>
#include <QMainWindow>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "history/history.h"
#include "shell/library/compare_window.h"
#include "shell/library/item_paths.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr Text causeTexts[formCauseCount] = {Text::causeUnknown,     Text::causeMade,      Text::causeEdited,
                                             Text::causeReceived,    Text::causeImported,  Text::causeReplaced,
                                             Text::causeBroughtBack, Text::causeTakenBack, Text::causeRemoved};

QString timeText(std::uint64_t time) {
    if (time == 0) return QStringLiteral("-");
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(static_cast<qint64>(time)),
                              QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// Numbers of forms are the places in the list.
QTreeWidget *listOf(const std::vector<FormEntry> &forms) {
    auto *list = new QTreeWidget;
    list->setRootIsDecorated(false);
    list->setHeaderLabels({textOf(Text::versionsTime), textOf(Text::versionsCause), textOf(Text::versionsSize)});
    for (std::size_t number = 0; number < forms.size(); number++) {
        QString cause = textOf(causeTexts[static_cast<std::size_t>(forms[number].cause)]);
        if (number == 0) cause += QStringLiteral(" (") + textOf(Text::versionsNow) + QLatin1Char(')');
        auto *row = new QTreeWidgetItem(list, {timeText(forms[number].time), cause,
                                               QLocale().toString(static_cast<qulonglong>(forms[number].size))});
        row->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    }
    for (int column = 0; column < 3; column++) list->resizeColumnToContents(column);
    list->headerItem()->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    list->header()->setStretchLastSection(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setCurrentItem(list->topLevelItem(forms.size() > 1 ? 1 : 0));
    return list;
}

struct VersionsDialog {
    QDialog dialog{mainWindow};
    ItemEntry entry;
    std::vector<FormEntry> forms;
    QTreeWidget *list = nullptr;
    QPushButton *compare = nullptr, *back = nullptr;

    // Numbers of the selected forms, the newest first.
    std::vector<std::size_t> chosen() const {
        std::vector<std::size_t> numbers;
        for (QTreeWidgetItem *row : list->selectedItems())
            numbers.push_back(static_cast<std::size_t>(list->indexOfTopLevelItem(row)));
        std::ranges::sort(numbers);
        return numbers;
    }

    // The present one as the item that it is, so that differences can be taken over into it.
    CompareSource sourceOf(std::size_t number) const {
        StoredItem form;
        if (number == 0) return compareSourceOf(entry.id);
        if (!historyReadForm(entry.id, number, form)) return {};
        const QString label = textOf(Text::versionsOf, {utf8Name(), timeText(forms[number].time).toStdString()});
        return {.id = noItem, .label = label, .image = std::move(form.data)};
    }

    // Two forms, or one with the present one.
    void compareChosen() {
        const std::vector<std::size_t> numbers = chosen();
        if (numbers.empty() || numbers.size() > 2) return;
        const CompareSource left = sourceOf(numbers.back()), right = sourceOf(numbers.size() == 2 ? numbers[0] : 0);
        if (left.label.isEmpty() || right.label.isEmpty()) return;
        compareSources(left, right);
        const std::vector<FormEntry> later = historyForms(entry.id);
        if (later.size() != forms.size()) dialog.reject();  // numbers have moved by what was taken over
    }

    void bringBack() {
        if (chosen().size() != 1 || !historyBringBack(entry.id, chosen()[0])) return;
        dialog.accept();
        showChangedItems();
        statusLine(StatusPart::item, Text::formCameBack, {utf8Name()});
    }

    void follow() {
        const std::vector<std::size_t> numbers = chosen();
        const bool isEarlier = numbers.size() == 1 && numbers[0] > 0;
        compare->setText(textOf(numbers.size() == 2 ? Text::versionsCompareBoth : Text::versionsCompare));
        compare->setEnabled((isEarlier || numbers.size() == 2) && isTextKind(entry.kind));
        back->setEnabled(isEarlier && !storeIsReadOnly());
    }

    std::string utf8Name() const { return nameToQt(entry.name).toStdString(); }
};

QPushButton *addButton(QBoxLayout *row, Text text, Text tip, QDialog *dialog, std::function<void()> act) {
    auto *button = new QPushButton(textOf(text));
    button->setToolTip(textOf(tip));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, dialog, std::move(act));
    row->addWidget(button);
    return button;
}

}  // namespace

bool mayHaveVersions(ItemKind itemKind) { return itemKind != kind::none && !isFolderKind(itemKind); }

void showVersions() {
    const auto entry = storeReadEntry(selectedItemId());
    if (!entry || isFolderKind(entry->kind)) return;
    VersionsDialog state;
    state.entry = *entry;
    state.forms = historyForms(entry->id);
    if (state.forms.size() < 2) {
        tellUser(Text::versionsNone, {state.utf8Name()}, BoxIcon::information);
        return;
    }
    state.dialog.setObjectName(QStringLiteral("versionsDialog"));
    state.dialog.setWindowTitle(textOf(Text::versionsTitle, {state.utf8Name()}));
    auto *layout = new QVBoxLayout(&state.dialog);
    state.list = listOf(state.forms);
    state.list->setAccessibleName(state.dialog.windowTitle());
    state.list->setToolTip(textOf(Text::tipVersionsList));
    layout->addWidget(state.list);
    auto *row = new QHBoxLayout;
    state.compare =
        addButton(row, Text::versionsCompare, Text::tipVersionsCompare, &state.dialog, [&] { state.compareChosen(); });
    state.back = addButton(row, Text::versionsBack, Text::tipVersionsBack, &state.dialog, [&] { state.bringBack(); });
    row->addStretch();
    row->addWidget(closeButtons(&state.dialog));
    layout->addLayout(row);
    QObject::connect(state.list, &QTreeWidget::itemSelectionChanged, &state.dialog, [&] { state.follow(); });
    QObject::connect(state.list, &QTreeWidget::itemActivated, &state.dialog, [&] {
        if (state.compare->isEnabled()) state.compareChosen();
    });
    state.follow();
    state.dialog.resize(QSize(520, 360) * textScale());
    state.list->setFocus();
    runDialog(state.dialog);
}

}  // namespace numalink
