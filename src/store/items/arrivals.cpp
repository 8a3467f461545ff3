#include "store/items/arrivals.h"

#include <algorithm>
#include <set>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/letter_case.h"

namespace numalink {

namespace {

using FolderKey = std::pair<ItemId, std::string>;

// What is known of a folder while a plan is made.
struct Folder {
    std::vector<ItemEntry> items;
    std::vector<const Arrival *> coming;  // of those planned so far
    std::set<std::string> givenNames;     // folded
};

bool isSame(ItemId left, ItemId right) {
    StoredItem one, other;
    if (!storeReadItem(left, one) || !storeReadItem(right, other)) return false;
    return one.data == other.data && headWithoutName(one.kind, one.head) == headWithoutName(other.kind, other.head);
}

void findState(Arrival &arrival, const Folder &folder) {
    for (const ItemEntry &item : folder.items)
        if (item.kind == arrival.kind && equalWithoutCase(item.name, arrival.codes)) arrival.taken.push_back(item.id);
    if (!arrival.taken.empty()) {
        arrival.there = arrival.taken.front();
        const bool same = std::ranges::any_of(arrival.taken, [&](ItemId id) { return isSame(id, arrival.id); });
        arrival.state = same ? ArrivalState::same : ArrivalState::differs;
        arrival.choice = same ? ArrivalChoice::skip : ArrivalChoice::keepBoth;
        if (same) return;  // whatever else comes
    }
    for (const Arrival *first : folder.coming) {
        if (first->kind != arrival.kind || first->from.batch == arrival.from.batch ||
            !equalWithoutCase(first->codes, arrival.codes))
            continue;
        const bool same = isSame(first->id, arrival.id);
        arrival.there = first->id;
        arrival.state = ArrivalState::twice;
        arrival.choice = same ? ArrivalChoice::skip : ArrivalChoice::keepBoth;
        if (same) return;
    }
}

// Names that come in as they are count as given, too: those of all files are known only once all are planned.
void findFreeName(Arrival &arrival, Folder &folder) {
    const ItemId parent = arrival.from.folder;
    const auto given = [&](std::string_view name) { return folder.givenNames.contains(foldCase(name)); };
    // The root has names that such a folder doesn't: a name is free in it all the same.
    const ItemId place = parent == noItem ? noItem - 1 : parent;
    std::string &wanted = arrival.from.wanted;
    const bool isFree = !wanted.empty() && !given(wanted) && !storeItemExists(wanted, place);
    if (!isFree) wanted = storeFreeName(arrival.codes, place, arrival.kind, given);
    arrival.freeCodes = wanted;
    arrival.freeName = utf8FromCalculator(arrival.freeCodes);
    folder.givenNames.insert(foldCase(arrival.freeCodes));
}

ArrivalChoice choiceNow(const Arrival &now, ArrivalChoice chosen) {
    if (now.state == ArrivalState::isNew) return chosen == ArrivalChoice::skip ? chosen : ArrivalChoice::take;
    if (chosen == ArrivalChoice::take) return ArrivalChoice::keepBoth;
    return now.state == ArrivalState::twice && chosen == ArrivalChoice::replace ? ArrivalChoice::keepBoth : chosen;
}

}  // namespace

std::vector<Arrival> planArrivals(const std::vector<Arriving> &arriving) {
    std::map<FolderKey, Folder> folders;
    std::vector<Arrival> arrivals;
    arrivals.reserve(arriving.size());  // folders point into it
    for (const Arriving &from : arriving) {
        const auto entry = storeReadEntry(from.id);
        if (!entry) continue;
        const auto [place, isNew] = folders.try_emplace({from.folder, from.folder == noItem ? from.where : ""});
        Folder &folder = place->second;
        if (isNew && from.folder != noItem) folder.items = storeListChildren(from.folder);
        Arrival arrival;
        arrival.id = from.id;
        arrival.kind = entry->kind;
        arrival.name = utf8FromCalculator(entry->name);
        arrival.where = from.where;
        arrival.from = from;
        arrival.codes = entry->name;
        findState(arrival, folder);
        folder.coming.push_back(&arrivals.emplace_back(std::move(arrival)));
        folder.givenNames.insert(foldCase(entry->name));
    }
    for (Arrival &arrival : arrivals) {
        if (arrival.state == ArrivalState::isNew) continue;
        const ItemId id = arrival.from.folder;
        findFreeName(arrival, folders.at({id, id == noItem ? arrival.from.where : ""}));
    }
    return arrivals;
}

bool anyTaken(const std::vector<Arrival> &arrivals) {
    return std::ranges::any_of(arrivals, [](const Arrival &arrival) { return arrival.state != ArrivalState::isNew; });
}

bool placeArrivals(const std::vector<Arrival> &arrivals, ArrivalCounts &counts) {
    std::map<ItemId, ArrivalChoice> chosen;
    std::vector<Arriving> arriving;
    for (const Arrival &arrival : arrivals) {
        chosen[arrival.id] = arrival.choice;
        if (arrival.choice != ArrivalChoice::skip) arriving.push_back(arrival.from);
    }
    ArrivalCounts counted{.skipped = arrivals.size() - arriving.size()};
    std::vector<ItemPlacing> placings;
    std::set<ItemId> leaving;
    for (const Arrival &now : planArrivals(arriving)) {
        ItemPlacing &placing = placings.emplace_back(ItemPlacing{now.id, now.from.folder, {}});
        const ArrivalChoice choice = choiceNow(now, chosen[now.id]);
        if (choice == ArrivalChoice::keepBoth) {
            placing.name = now.freeCodes;
            counted.renamed++;
        }
        if (choice != ArrivalChoice::replace) continue;
        leaving.insert(now.taken.begin(), now.taken.end());
        counted.replaced++;
    }
    counted.placed = placings.size();
    const std::vector<ItemId> gone(leaving.begin(), leaving.end());
    if (!placings.empty() && !storePlaceItems(placings, gone)) return false;
    counts = counted;
    return true;
}

std::string wordsOf(ArrivalState state) {
    constexpr Text words[] = {Text::arrivalNew, Text::arrivalSame, Text::arrivalDiffers, Text::arrivalTwice};
    return wording(words[static_cast<std::size_t>(state)]);
}

std::string choiceWords(const ArrivalRow &row) {
    constexpr Text words[] = {Text::choiceTake, Text::choiceReplace, Text::choiceKeepBoth, Text::choiceSkip};
    const Text text = words[static_cast<std::size_t>(row.choice)];
    return row.choice == ArrivalChoice::keepBoth ? wording(text, {row.freeName}) : wording(text);
}

}  // namespace numalink
