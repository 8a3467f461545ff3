#include "store/store_worker.h"

#include <algorithm>
#include <functional>

#include "store/undo/undo.h"

namespace numalink {

namespace {

constexpr std::size_t crowd = 24;  // items from which on folders go

std::uint32_t below(Random &random, std::size_t limit) { return static_cast<std::uint32_t>(random() % limit); }

Bytes someBytes(Random &random, std::size_t limit) {
    return Bytes(below(random, limit), static_cast<std::uint8_t>(random()));
}

NewItem someItem(Random &random, ItemId parent) {
    constexpr ItemKind kinds[] = {kind::program, kind::matrix, kind::list, kind::folder};
    NewItem item;
    item.name = std::string(1, static_cast<char>('A' + below(random, 6)));
    item.parent = parent;
    item.kind = kinds[below(random, 4)];
    if (!isFolderKind(item.kind)) item.head = someBytes(random, 40);
    const std::size_t dataSizes[] = {60, 60, 60, 3000, 60, 60, 60, 20000};
    if (!isFolderKind(item.kind)) item.data = someBytes(random, dataSizes[below(random, 8)]);
    item.whenTaken = static_cast<NameTaken>(below(random, 3));
    return item;
}

struct Scene {
    std::vector<ItemEntry> items;
    std::vector<ItemId> folders{rootId};
    ItemId temp = noItem;
};

Scene sceneNow() {
    Scene scene{storeListItems()};
    for (const ItemEntry &entry : scene.items)
        if (entry.kind == kind::temporaryFolder) scene.temp = entry.id;
    std::erase_if(scene.items, [](const ItemEntry &entry) { return entry.kind == kind::temporaryFolder; });
    for (const ItemEntry &entry : scene.items)
        if (isFolderKind(entry.kind)) scene.folders.push_back(entry.id);
    return scene;
}

bool moveSeveral(Random &random, const Scene &scene) {
    std::vector<ItemMove> moves;
    for (const ItemEntry &entry : scene.items)
        if (!isFolderKind(entry.kind) && random() % 2 == 0)
            moves.push_back({entry.id, scene.folders[below(random, scene.folders.size())]});
    return storeMoveItems(moves);
}

// Some come to a folder, each second one under another name, and others go.
bool placeSeveral(Random &random, const Scene &scene, ItemId folder) {
    std::vector<ItemPlacing> placings;
    std::vector<ItemId> leaving;
    for (const ItemEntry &entry : scene.items) {
        const auto lot = random() % 4;
        if (isFolderKind(entry.kind) || lot == 0) continue;
        if (lot == 1)
            leaving.push_back(entry.id);
        else
            placings.push_back({entry.id, folder, lot == 2 ? entry.name + "2" : ""});
    }
    return storePlaceItems(placings, leaving);
}

// A change as taking back makes it: the item goes and comes back under its own id, with another name.
bool putBackRenamed(ItemId id) {
    StoredItem item;
    if (!storeReadItem(id, item)) return false;
    item.name += "b";
    return storePutBack({item}, {id});
}

std::string pathOf(Random &random) { return std::string("/") + static_cast<char>('A' + below(random, 26)) + "/X/Y/"; }

bool workOn(Random &random, const Scene &scene, const ItemEntry &chosen, ItemId folder) {
    const std::function<bool()> operations[] = {
        [&] { return storeWriteItem(chosen.id, someItem(random, folder)); },
        [&] { return storeDelete(chosen.id); },
        [&] { return storeMove(chosen.id, folder); },
        [&] { return moveSeveral(random, scene); },
        [&] { return placeSeveral(random, scene, folder); },
        [&] { return storeRename(chosen.id, std::string(below(random, 50), 'r'), Bytes(chosen.headSize, 9)); },
        [&] { return storeSetFlags(chosen.id, below(random, 2)); },
        [&] { return storeRewriteHead(chosen.id, Bytes(chosen.headSize, static_cast<std::uint8_t>(random()))); },
        [] { return storeResetTemp(); },
        [&] { return storeResolvePath(pathOf(random), true) != noItem; },
        [] { return (storeClose(), storeOpen()); },
        [&] { return putBackRenamed(chosen.id); },
        [&] { return storeStandardFolder(ItemKind{1003 + below(random, 3)}) != noItem; },
        [&] {
            return (scene.temp == noItem ? storeTempFolder() : storeAddItem(someItem(random, scene.temp))) != noItem;
        },
        [&] {
            return !storeAddItems({someItem(random, folder), someItem(random, rootId)}).empty();
        }};
    return operations[below(random, 15)]();
}

}  // namespace

LibraryState libraryState() {
    LibraryState state;
    std::vector<ItemId> left{rootId};  // folders that are still to be looked through
    while (!left.empty()) {
        const std::vector<ItemEntry> children = storeListChildren(left.back());
        left.pop_back();
        for (const ItemEntry &entry : children) {
            EXPECT_TRUE(storeReadItem(entry.id, state.emplace_back())) << entry.id;
            if (isFolderKind(entry.kind)) left.push_back(entry.id);
        }
    }
    return state;
}

bool isAfterStart(const LibraryState &found, const LibraryState &expected) {
    const auto withoutTemp = [](LibraryState state) {
        std::vector<ItemId> temps;
        for (const StoredItem &item : state)
            if (item.kind == kind::temporaryFolder || std::ranges::count(temps, item.parent) > 0)
                temps.push_back(item.id);
        std::erase_if(state, [&](const StoredItem &item) { return std::ranges::count(temps, item.id) > 0; });
        return std::pair(temps.size(), state);
    };
    const auto [count, stays] = withoutTemp(expected);
    return count == 1 || found.empty() ? found == expected : withoutTemp(found) == std::pair(std::size_t{1}, stays);
}

Bytes bytesAt(const DiskImage &image, const std::string &path) {
    const auto name = image.names.find(path);
    const auto file = name == image.names.end() ? image.files.end() : image.files.find(name->second);
    return file == image.files.end() ? Bytes() : file->second;
}

bool workOnce(Random &random) {
    TakenBack shown;
    if (storeCanRedo() && random() % 3 == 0) return storeRedo(shown);
    if (storeUndoOffer() && random() % 6 == 0) return storeUndo(shown);
    const Scene scene = sceneNow();
    const ItemId folder = scene.folders[below(random, scene.folders.size())];
    if (scene.items.size() > crowd)
        return storeDelete(scene.folders.back() == rootId ? scene.items.back().id
                                                          : scene.folders[below(random, scene.folders.size() - 1) + 1]);
    if (scene.items.empty() || random() % 3 == 0) return storeAddItem(someItem(random, folder)) != noItem;
    return workOn(random, scene, scene.items[below(random, scene.items.size())], folder);
}

}  // namespace numalink
