#include "shell/run/moments.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <utility>

#include "debugger/debugger.h"
#include "debugger/moments.h"
#include "emulator/machine/machine.h"
#include "platform/program_folder.h"
#include "settings/settings_store.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/run/mode_line.h"
#include "shell/tree/selection.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

void (*takenFor)(const Bytes &moment) = nullptr;  // who waits for the moment that was asked for

// On the run thread.
void momentIsTaken(const Bytes &moment) {
    QMetaObject::invokeMethod(
        qApp,
        [moment] {
            if (auto *const taken = std::exchange(takenFor, nullptr)) taken(moment);
        },
        Qt::QueuedConnection);
}

void tellFault(MomentFault fault, const std::string &path) {
    if (fault == MomentFault::changed) {
        tellUser(Text::momentChanged);
        return;
    }
    tellUser(fault == MomentFault::newer     ? Text::momentNewer
             : fault == MomentFault::foreign ? Text::momentForeign
                                             : Text::momentDamaged,
             {path});
}

// Where every slot holds something: whether the moment may go in the place of this one.
bool mayReplaceOldest(const KeptMoment &oldest) {
    const std::vector<std::string> names{slotName(oldest.slot), momentStateText(oldest)};
    const std::string body = wording(Text::momentsFull, names) + "\n\n" + wording(Text::momentsFullMore);
    if (tellComposed(Text::momentsFull, body, names, BoxIcon::warning, BoxButtons::cancelOk) == Answer::ok) return true;
    statusLine(StatusPart::item, Text::momentNotSaved);
    return false;
}

// The first slot that nothing is in, else the one that was saved first, if the user lets it go; 0: none.
int nextSlot(ItemId program) {
    std::vector<KeptMoment> kept = keptMoments(program);
    std::erase_if(kept, [](const KeptMoment &each) { return each.slot == momentSlotOfStop; });
    for (int slot = 1; slot <= momentSlotCount; slot++)
        if (std::ranges::find(kept, slot, &KeptMoment::slot) == kept.end()) return slot;
    // What can't be read tells no time, and isn't offered while anything else is.
    const auto age = [](const KeptMoment &each) { return each.fault == MomentFault::none ? each.time : UINT64_MAX; };
    const KeptMoment &oldest = *std::ranges::min_element(kept, {}, age);
    return mayReplaceOldest(oldest) ? oldest.slot : 0;
}

// What isn't asked for is offered once the run begins, where it fits.
void offerLastStop(ItemId program) {
    Moment moment;
    const bool isOffered = settingsInt(setting::keepMoments) != 0 &&
                           momentOfSlot(program, momentSlotOfStop, moment) == MomentFault::none && momentFits(moment);
    showStopLine(isOffered ? momentTimeText(moment.time) : std::string(),
                 [] { goOnFromSlot(programOfMoments(), momentSlotOfStop); });
}

void keepStop(ItemId program) {
    const Bytes moment = momentOfEndedRun();
    if (moment.empty()) return;
    // Behind its end there is nothing to go on to.
    if (debugWaitsAt() == RunEnd::end) return void(momentDrop(program, momentSlotOfStop));
    if (momentKeep(program, momentSlotOfStop, moment) != FileResult::done)
        statusLine(StatusPart::item, Text::fileFailed, {momentPath(program, momentSlotOfStop)});
}

}  // namespace

void connectMoments() {
    momentTaken = momentIsTaken;
    momentsOpen(libraryFolder());
}

void forgetMoments() {
    momentTaken = nullptr;
    takenFor = nullptr;
}

bool momentsBegin(ItemId program, const Moment *from) {
    takenFor = nullptr;
    momentsFollow();
    if (from == nullptr) {
        offerLastStop(program);
        return true;
    }
    showStopLine({}, [] {});
    const MomentFault fault = momentResume(*from);
    if (fault != MomentFault::none) tellFault(fault, momentFolder());
    return fault == MomentFault::none;
}

void keepWhereStopped(ItemId program) {
    showStopLine({}, [] {});
    if (settingsInt(setting::keepMoments) != 0 && storeReadEntry(program) && !storeIsReadOnly()) keepStop(program);
    runIsOver();
    debugForget();
}

ItemId programOfMoments() { return emulatorShown() ? emulatedItem() : selectedItemId(); }

bool hasProgramOfMoments() { return emulatorShown() || selectedKind() == kind::program; }

bool canSaveMoment() { return emulatorRunning && emulatorShown() && !storeIsReadOnly(); }

void askForMoment(void (*taken)(const Bytes &moment)) {
    takenFor = taken;
    if (!momentAsk()) momentIsTaken({});
}

bool keepMoment(ItemId program, int slot, const Bytes &moment) {
    if (moment.empty()) {
        tellUser(Text::momentNone);
        return false;
    }
    if (momentKeep(program, slot, moment) != FileResult::done) {
        tellUser(Text::fileFailed, {momentPath(program, slot)});
        return false;
    }
    statusLine(StatusPart::item, Text::momentSaved, {slotName(slot)});
    return true;
}

void saveMoment() {
    if (!canSaveMoment()) return;
    askForMoment([](const Bytes &moment) {
        const ItemId program = programOfMoments();
        if (program == noItem) return;
        const int slot = moment.empty() ? momentSlotCount : nextSlot(program);  // keepMoment tells that it is empty
        if (slot != 0) keepMoment(program, slot, moment);
    });
}

void goOnFromSlot(ItemId program, int slot) {
    Moment moment;
    const MomentFault fault = momentOfSlot(program, slot, moment);
    if (fault != MomentFault::none) return tellFault(fault, momentPath(program, slot));
    emulateFrom(program, moment);
}

void goOnFromNewest() {
    const ItemId program = programOfMoments();
    std::vector<KeptMoment> kept = keptMoments(program);
    std::erase_if(kept, [](const KeptMoment &each) { return each.fault != MomentFault::none; });
    if (kept.empty()) {
        tellUser(Text::momentNothingSaved, {}, BoxIcon::information);
        return;
    }
    goOnFromSlot(program, std::ranges::max_element(kept, {}, &KeptMoment::time)->slot);
}

std::string slotName(int slot) {
    return slot == momentSlotOfStop ? wording(Text::momentLastStop) : wording(Text::momentSlot, {std::to_string(slot)});
}

std::string momentStateText(const KeptMoment &moment) {
    return moment.fault == MomentFault::none ? momentTimeText(moment.time) : wording(Text::momentUnreadable);
}

std::string momentTimeText(std::uint64_t time) {
    constexpr std::uint64_t latest = 253402300799;  // the last second of the year 9999
    const auto seconds = static_cast<qint64>(std::min(time, latest));
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds), QLocale::ShortFormat).toStdString();
}

}  // namespace numalink
