// A library on a disk in memory, and what the store's tests ask of it.
#pragma once

#include <gtest/gtest.h>

#include "store/file/changes.h"
#include "store/file/check.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "support/simulated_disk.h"
#include "support/ui_recorder.h"

namespace numalink {

inline bool operator==(const StoredItem &a, const StoredItem &b) {
    return a.id == b.id && a.parent == b.parent && a.kind == b.kind && a.flags == b.flags && a.name == b.name &&
           a.head == b.head && a.data == b.data;
}

struct Store : ::testing::Test {
    Store() { setLibraryFolder("/library/"); }
    ~Store() override {
        storeClose();
        setGapLimits({});
        setLibraryFolder(programFolder());
    }

    static void setGapLimits(const GapLimits &limits) {
        const HoldLock hold(storeLock);
        gapLimits = limits;
    }

    static Bytes &file() { return diskFile("/library/storage.dat"); }

    // From its n-th operation on, from now, the disk fails so many times. 0: never.
    static void failDisk(int n, int times) {
        simulatedDisk.operations = 0;
        simulatedDisk.failingFrom = n;
        simulatedDisk.failingCount = times;
    }

    static void powerOff() {
        simulatedDisk.dead = true;
        storeClose();
        simulatedDisk.dead = false;
    }

    static bool openOn(const DiskImage &image) {
        storeClose();
        diskLoad(image);
        return storeOpen();
    }

    static NewItem item(const std::string &name, ItemKind itemKind, ItemId parent = rootId, const Bytes &head = {},
                        const Bytes &data = {}, NameTaken whenTaken = NameTaken::replaceSameKind) {
        return {.name = name, .parent = parent, .kind = itemKind, .head = head, .data = data, .whenTaken = whenTaken};
    }

    static ItemId add(const std::string &name, ItemKind itemKind, ItemId parent = rootId, const Bytes &head = {},
                      const Bytes &data = {}) {
        return storeAddItem(item(name, itemKind, parent, head, data));
    }

    static StoredItem read(ItemId id) {
        StoredItem found;
        EXPECT_TRUE(storeReadItem(id, found)) << id;
        return found;
    }

    static std::vector<StoredItem> allItems() {
        std::vector<StoredItem> items;
        for (const ItemEntry &entry : storeListItems()) items.push_back(read(entry.id));
        return items;
    }

    // The store closed and opened anew on a file of these bytes, with whatever that shows forgotten.
    static bool restart(const Bytes &content) {
        storeClose();
        file() = content;
        uiRecord.lines.clear();
        uiRecord.boxes.clear();
        return storeOpen();
    }

    // The file on the disk, by its own bytes: records in slot order, side by side but for gaps, and a head that fits
    // them.
    static void checkFile() {
        const Bytes &bytes = file();
        MainHeader main{};
        ASSERT_GE(bytes.size(), sizeof main);
        std::memcpy(&main, bytes.data(), sizeof main);
        ASSERT_LE(main.itemCount, storeSlotCount);
        std::uint64_t end = sizeof main;
        for (std::uint32_t i = 0; i < main.itemCount; i++) {
            ASSERT_GE(main.offsets[i], end);
            end = main.offsets[i];
            ItemHeader head{};
            ASSERT_LE(end + sizeof head, bytes.size());
            std::memcpy(&head, bytes.data() + end, sizeof head);
            EXPECT_STREQ(head.signature, itemSignature);
            EXPECT_LT(head.id, main.nextId);
            EXPECT_EQ(storeFindSlot(head.id), static_cast<int>(i));
            end += recordSize(head);
        }
        EXPECT_EQ(main.endOffset, end);
        EXPECT_LE(end, bytes.size());
    }

    SimulatedFiles disk;
    RecordedUi ui;
};

struct OpenStore : Store {
    OpenStore() { EXPECT_TRUE(storeOpen()); }
};

}  // namespace numalink
