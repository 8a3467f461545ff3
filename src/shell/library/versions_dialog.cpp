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
    list->setCurrentItem(list->topLevelItem(forms.size() > 1 ? 1 : 0));
    return list;
}

struct VersionsDialog {
    QDialog dialog{mainWindow};
    ItemEntry entry;
    std::vector<FormEntry> forms;
    QTreeWidget *list = nullptr;
    QPushButton *compare = nullptr, *back = nullptr;

    std::size_t chosen() const {
        return static_cast<std::size_t>(std::max(0, list->indexOfTopLevelItem(list->currentItem())));
    }

    void compareWithNow() {
        StoredItem form;
        const std::size_t number = chosen();
        if (!historyReadForm(entry.id, number, form)) return;
        const QString label = textOf(Text::versionsOf, {utf8Name(), timeText(forms[number].time).toStdString()});
        compareSources({.id = noItem, .label = label, .image = std::move(form.data)}, compareSourceOf(entry.id));
        const std::vector<FormEntry> later = historyForms(entry.id);
        if (later.size() != forms.size()) dialog.reject();  // numbers have moved by what was taken over
    }

    void bringBack() {
        if (!historyBringBack(entry.id, chosen())) return;
        dialog.accept();
        showChangedItems();
        statusLine(StatusPart::item, Text::formCameBack, {utf8Name()});
    }

    void follow() {
        const bool isEarlier = chosen() > 0;
        compare->setEnabled(isEarlier && isTextKind(entry.kind));
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
        addButton(row, Text::versionsCompare, Text::tipVersionsCompare, &state.dialog, [&] { state.compareWithNow(); });
    state.back = addButton(row, Text::versionsBack, Text::tipVersionsBack, &state.dialog, [&] { state.bringBack(); });
    row->addStretch();
    row->addWidget(closeButtons(&state.dialog));
    layout->addLayout(row);
    QObject::connect(state.list, &QTreeWidget::currentItemChanged, &state.dialog, [&] { state.follow(); });
    QObject::connect(state.list, &QTreeWidget::itemActivated, &state.dialog, [&] {
        if (state.compare->isEnabled()) state.compareWithNow();
    });
    state.follow();
    state.dialog.resize(QSize(520, 360) * textScale());
    state.list->setFocus();
    runDialog(state.dialog);
}

}  // namespace numalink
