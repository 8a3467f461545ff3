#include "debugger/moment_files.h"

#include <charconv>
#include <cstdio>
#include <filesystem>

#include "store/item_store.h"

namespace numalink {

namespace {

constexpr char ending[] = ".moment";

std::string folder;  // of the library that is open

MomentFault readMoment(const std::string &path, Moment &moment) {
    Bytes bytes;
    const FileResult read = readWholeFile(path, bytes, momentFileLimit);
    return read == FileResult::done ? momentFromBytes(bytes, moment) : MomentFault::damaged;
}

// Other files that lie there stay.
void tidy() {
    std::error_code failed;
    for (const auto &entry : std::filesystem::directory_iterator(momentFolder(), failed)) {
        const std::string name = entry.path().filename().string();
        const std::size_t parting = name.find('-');
        ItemId program = noItem;
        const auto read = std::from_chars(name.data(), name.data() + std::min(parting, name.size()), program);
        if (parting == name.npos || read.ptr != name.data() + parting || !name.ends_with(ending)) continue;
        if (!storeReadEntry(program)) std::filesystem::remove(entry.path(), failed);
    }
}

}  // namespace

void momentsOpen(const std::string &library) {
    folder = library;
    if (!storeIsReadOnly()) tidy();
}

std::string momentFolder() { return folder + "moments/"; }

std::string momentPath(ItemId program, int slot) {
    return momentFolder() + std::to_string(program) + "-" + std::to_string(slot) + ending;
}

FileResult momentKeep(ItemId program, int slot, ByteView moment) {
    if (!makeFolders(momentFolder())) return FileResult::denied;
    return writeWholeFile(momentPath(program, slot), moment, folder + "storage.dat");
}

bool momentDrop(ItemId program, int slot) {
    const std::string path = momentPath(program, slot);
    return !fileExists(path) || std::remove(path.c_str()) == 0;
}

std::vector<KeptMoment> keptMoments(ItemId program) {
    std::vector<KeptMoment> kept;
    for (int slot = momentSlotOfStop; slot <= momentSlotCount; slot++) {
        const std::string path = momentPath(program, slot);
        if (!fileExists(path)) continue;
        Moment moment;
        const MomentFault fault = readMoment(path, moment);
        kept.push_back({slot, fault, moment.time, std::move(moment.picture)});
    }
    return kept;
}

MomentFault momentOfSlot(ItemId program, int slot, Moment &moment) {
    return readMoment(momentPath(program, slot), moment);
}

}  // namespace numalink
