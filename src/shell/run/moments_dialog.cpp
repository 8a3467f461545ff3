#include "shell/run/moments_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "calculator/charset.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/run/moments.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct MomentsDialog {
    explicit MomentsDialog(QWidget *parent) : dialog(parent) {}

    QDialog dialog;
    ItemId program = noItem;
    std::vector<KeptMoment> kept;
    QListWidget *list = nullptr;  // a row a slot, that of the last stop ahead
    QPushButton *save = nullptr, *goOn = nullptr, *remove = nullptr;
    Bytes present;  // of the run, once it is there
    int chosen = -1;

    int slot() const { return list->currentRow(); }
    const KeptMoment *keptIn(int which) const {
        const auto found = std::ranges::find(kept, which, &KeptMoment::slot);
        return found == kept.end() ? nullptr : &*found;
    }

    void fill();
    void follow() const;
    void saveHere();
    void goOnHere();
    void removeHere();
};
MomentsDialog *open = nullptr;  // while it is

bool isSure(Text question, const std::vector<std::string> &arguments) {
    return tellComposed(question, wording(question, arguments), arguments, BoxIcon::warning, BoxButtons::okCancel) ==
           Answer::ok;
}

std::string whatIs(const KeptMoment &moment) {
    return moment.fault == MomentFault::none ? momentTimeText(moment.time) : slotName(moment.slot);
}

// What can't be read may come from a newer program.
bool mayReplace(const KeptMoment &moment) {
    if (moment.fault != MomentFault::none) return isSure(Text::momentReplaceOther, {slotName(moment.slot)});
    return isSure(Text::momentReplace, {slotName(moment.slot), momentTimeText(moment.time)});
}

QIcon pictureOf(const KeptMoment *moment) {
    QImage image(displayWidth, displayHeight, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const bool isShown = moment != nullptr && moment->fault == MomentFault::none;
    for (int y = 0; isShown && y < displayHeight; y++) {
        for (int x = 0; x < displayWidth; x++) image.setPixel(x, y, qRgb(0, 0, 0) | dotAt(moment->picture, x, y));
    }
    return QPixmap::fromImage(image);
}

QString wordsOf(int slot, const KeptMoment *moment) {
    const std::string state = moment != nullptr ? momentStateText(*moment) : wording(Text::momentEmpty);
    return toQt(slotName(slot) + "\n" + state);
}

void MomentsDialog::fill() {
    kept = keptMoments(program);
    const int current = std::max(list->currentRow(), 0);
    list->clear();
    for (int which = momentSlotOfStop; which <= momentSlotCount; which++) {
        const KeptMoment *moment = keptIn(which);
        auto *item = new QListWidgetItem(pictureOf(moment), wordsOf(which, moment), list);
        item->setSizeHint(list->gridSize());  // else it is as wide as its picture, and the time cut
    }
    list->setCurrentRow(current);
    follow();
}

void MomentsDialog::follow() const {
    const KeptMoment *moment = keptIn(slot());
    save->setEnabled(!present.empty() && slot() != momentSlotOfStop);
    goOn->setEnabled(moment != nullptr && moment->fault == MomentFault::none);
    remove->setEnabled(moment != nullptr);
}

void MomentsDialog::saveHere() {
    const KeptMoment *moment = keptIn(slot());
    if (moment != nullptr && !mayReplace(*moment)) return;
    if (keepMoment(program, slot(), present)) fill();
}

// Behind the dialog, which the emulator's windows may be under.
void MomentsDialog::goOnHere() {
    chosen = slot();
    dialog.accept();
}

void MomentsDialog::removeHere() {
    const KeptMoment *moment = keptIn(slot());
    if (moment == nullptr || !isSure(Text::momentRemoveAsk, {whatIs(*moment)})) return;
    momentDrop(program, slot());
    fill();
}

QListWidget *newList() {
    auto *list = new QListWidget;
    list->setObjectName(QStringLiteral("moments"));
    list->setViewMode(QListView::IconMode);
    list->setIconSize(QSize(displayWidth, displayHeight));
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->setUniformItemSizes(true);
    list->setSpacing(6);
    // As wide as the longest time that is shown, in two lines.
    const QFontMetrics words = list->fontMetrics();
    const int width = words.horizontalAdvance(toQt(momentTimeText(0)) + QStringLiteral("0000"));
    list->setGridSize({std::max(width, displayWidth) + 12, displayHeight + 2 * words.lineSpacing() + 16});
    return list;
}

}  // namespace

void showMoments() {
    const ItemId program = programOfMoments();
    const auto entry = storeReadEntry(program);
    if (!entry || entry->kind != kind::program) return;
    MomentsDialog state(runWindow());
    open = &state;
    state.program = program;
    state.dialog.setObjectName(QStringLiteral("momentsDialog"));
    state.dialog.setWindowTitle(textOf(Text::momentsTitle, {utf8FromCalculator(entry->name)}));
    state.list = newList();
    state.list->setAccessibleName(state.dialog.windowTitle());
    state.list->setToolTip(textOf(Text::tipMomentList));
    QDialogButtonBox *buttons = closeButtons(&state.dialog);
    const auto add = [&](Text text, Text tip, void (MomentsDialog::*act)()) {
        QPushButton *button = buttons->addButton(textOf(text), QDialogButtonBox::ActionRole);
        button->setToolTip(textOf(tip));
        QObject::connect(button, &QPushButton::clicked, &state.dialog, [&state, act] { (state.*act)(); });
        return button;
    };
    state.save = add(Text::momentSaveHere, Text::tipMomentSaveHere, &MomentsDialog::saveHere);
    state.goOn = add(Text::momentGoOn, Text::tipMomentGoOn, &MomentsDialog::goOnHere);
    state.remove = add(Text::momentRemove, Text::tipMomentRemove, &MomentsDialog::removeHere);
    QObject::connect(state.list, &QListWidget::currentRowChanged, &state.dialog, [&] { state.follow(); });
    QObject::connect(state.list, &QListWidget::itemActivated, &state.dialog, [&] {
        if (state.goOn->isEnabled())
            state.goOnHere();
        else if (state.save->isEnabled())
            state.saveHere();
    });
    auto *layout = new QVBoxLayout(&state.dialog);
    layout->addWidget(state.list, 1);
    layout->addWidget(buttons);
    state.fill();
    if (canSaveMoment()) {
        askForMoment([](const Bytes &moment) {
            if (open == nullptr) return;
            open->present = moment;
            open->follow();
        });
    }
    state.dialog.resize(QSize(620, 420) * textScale());
    state.list->setFocus();
    runDialog(state.dialog);
    open = nullptr;
    if (state.chosen >= 0) goOnFromSlot(program, state.chosen);
}

}  // namespace numalink
