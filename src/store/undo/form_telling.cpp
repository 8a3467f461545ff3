#include "store/undo/form_telling.h"

#include <deque>

#include "platform/letter_case.h"

namespace numalink {

namespace {

FormListener formListener GUARDED_BY(storeLock) = nullptr;
thread_local FormCause namedCause = FormCause::unknown;

// The item that took the place of one that has left.
ItemId successorOf(const StoredItem &left) REQUIRES_LOCK(storeLock) {
    const std::size_t slot = lowestSlot(
        [&](const ItemHeader &head) { return head.kind == left.kind && isNamed(head, left.name, left.parent); });
    return slot == noSlot ? noItem : storeState.slots[slot].head.id;
}

struct Telling {
    std::vector<FormChange> told;
    std::deque<StoredItem> now;  // where after points to: it must not move

    const StoredItem *readNow(ItemId id) REQUIRES_LOCK(storeLock) {
        StoredItem item;
        if (readItem(id, item) != Fault::none || isFolderKind(item.kind)) return nullptr;
        return &now.emplace_back(std::move(item));
    }

    void add(ItemId id, const StoredItem *before) REQUIRES_LOCK(storeLock) {
        if (before != nullptr && isFolderKind(before->kind)) return;
        FormChange change{.id = id, .before = before, .after = readNow(id), .successor = noItem};
        if (before != nullptr && change.after == nullptr) change.successor = successorOf(*before);
        if (before != nullptr || change.after != nullptr) told.push_back(change);
    }
};

}  // namespace

FormCause causeOf(UndoAct act, bool isNew) {
    switch (act) {
        case UndoAct::deletion:
            return FormCause::removed;
        case UndoAct::replacement:
            return isNew ? FormCause::made : FormCause::replaced;
        case UndoAct::import:
            return FormCause::imported;
        default:
            return FormCause::edited;
    }
}

void tellForms(const std::vector<UndoChange> &changes, const std::vector<ItemId> &came, FormCause cause) {
    if (formListener == nullptr || (changes.empty() && came.empty())) return;
    try {
        Telling telling;
        for (const UndoChange &change : changes) telling.add(change.id, change.before ? &*change.before : nullptr);
        for (const ItemId id : came) telling.add(id, nullptr);
        if (!telling.told.empty()) formListener(telling.told, namedCause == FormCause::unknown ? cause : namedCause);
    } catch (const std::bad_alloc &) {  // an earlier form the less
        return;
    }
}

void storeTellForms(FormListener listener) {
    const HoldLock hold(storeLock);
    formListener = listener;
}

NamedCause::NamedCause(FormCause cause) : outer(namedCause) { namedCause = cause; }
NamedCause::~NamedCause() { namedCause = outer; }

std::string storePathBeside(std::string_view ending) {
    const HoldLock hold(storeLock);
    return storeState.open ? storeFilePath() + std::string(ending) : std::string();
}

}  // namespace numalink
