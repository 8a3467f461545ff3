// What is known of the file's records, in memory: chains of them by item. The forms themselves stay in the file.
#include "history/history.h"

#include <algorithm>
#include <chrono>
#include <map>

#include "calculator/program_info.h"
#include "history/form_file.h"
#include "platform/file_port.h"
#include "platform/files.h"
#include "platform/lock.h"
#include "store/file/journal.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int keptFileLimit = 1000;                          // damaged files kept beside the library
constexpr std::uint64_t smallFile = std::uint64_t{1} << 20;  // bytes that aren't worth taking anything out of

Lock historyLock;  // never held while the store is called: the store calls here with its own lock held

struct History {
    bool follows = false;  // changes are written down
    bool failed = false;   // one could not be: no more are, and it is still to be told
    std::string path, libraryPath;
    std::uint64_t end = 0;  // of the sound records; 0: there is no file
    std::vector<FormRecord> records;
    std::vector<bool> counts;                           // whether a record's form is among those that are kept
    std::map<ItemId, std::vector<std::size_t>> chains;  // records by the item that stands there now, in order
    std::uint64_t bytes = 0;                            // of the records that count
    std::size_t oldest = 0;                             // no record ahead of it counts
};
History history GUARDED_BY(historyLock);

std::uint64_t now() {
    using namespace std::chrono;
    return static_cast<std::uint64_t>(duration_cast<seconds>(system_clock::now().time_since_epoch()).count());
}

// Of an item but for its name, which a program's head holds as well.
std::uint64_t digestOf(const StoredItem &item) {
    Bytes head = item.head;
    if (isTextKind(item.kind) && head.size() == programInfoSize)
        std::fill_n(head.begin() + programNameOffset, programNameLimit + 1, std::uint8_t{0});
    const std::uint64_t digest = sumOf(head) * 31 + sumOf(item.data) + item.kind;
    return digest == 0 ? 1 : digest;
}

void drop(std::size_t number) REQUIRES_LOCK(historyLock) {
    if (!history.counts[number]) return;
    history.counts[number] = false;
    history.bytes -= history.records[number].size();
}

void trim(std::vector<std::size_t> &chain) REQUIRES_LOCK(historyLock) {
    std::size_t forms = 0;
    for (auto number = chain.rbegin(); number != chain.rend(); ++number) {
        // One more than is shown: it tells how the oldest one shown came.
        if (history.records[*number].head.hasForm != 0 && history.counts[*number] && ++forms > historyFormLimit + 1)
            drop(*number);
    }
    for (; history.bytes > historySizeLimit && history.oldest < history.records.size(); history.oldest++)
        drop(history.oldest);
    std::erase_if(chain, [](std::size_t number) REQUIRES_LOCK(historyLock) { return !history.counts[number]; });
}

// The record goes to the chain of the item that stands there from then on, with all that the one ahead of it had.
void takeRecord(FormRecord record) REQUIRES_LOCK(historyLock) {
    const std::size_t number = history.records.size();
    const ItemId from = record.head.id, into = record.head.successor == noItem ? from : record.head.successor;
    history.bytes += record.size();
    history.records.push_back(std::move(record));
    history.counts.push_back(true);
    std::vector<std::size_t> joined{number};
    if (from != into) {
        joined.insert(joined.end(), history.chains[from].begin(), history.chains[from].end());
        history.chains.erase(from);
    }
    std::vector<std::size_t> &chain = history.chains[into];
    chain.insert(chain.end(), joined.begin(), joined.end());
    std::ranges::sort(chain);
    trim(chain);
}

struct NewRecords {
    std::vector<FormRecord> records;
    Bytes bytes;
};

NewRecords recordsOf(std::span<const FormChange> changes, FormCause cause) REQUIRES_LOCK(historyLock) {
    NewRecords made;
    const std::uint64_t base = history.end == 0 ? encodeFormFileHead().size() : history.end;
    for (const FormChange &change : changes) {
        const auto takesOver = [&](const FormChange &other) { return other.successor == change.id; };
        const auto successor = std::ranges::find(changes, change.successor, &FormChange::id);
        const StoredItem *after = change.after;
        if (after == nullptr && change.successor != noItem && successor != changes.end()) after = successor->after;
        const StoredItem *known = change.before != nullptr ? change.before : after;
        if (known == nullptr) continue;
        FormRecordHead head{};
        head.id = change.id;
        head.kind = known->kind;
        head.successor = change.successor;
        head.time = now();
        head.cause = static_cast<std::uint8_t>(cause);
        if (change.before != nullptr) head.digestBefore = digestOf(*change.before);
        if (after != nullptr) head.digestAfter = digestOf(*after);
        if (change.after != nullptr && head.digestBefore == head.digestAfter) continue;  // renamed or moved
        if (change.before == nullptr && std::ranges::any_of(changes, takesOver)) continue;
        const Bytes bytes = encodeFormRecord(head, change.before);
        FormRecord record{.head = {}, .offset = base + made.bytes.size(), .name = {}};
        std::copy_n(bytes.begin(), sizeof record.head, reinterpret_cast<std::uint8_t *>(&record.head));
        if (change.before != nullptr) record.name = change.before->name;
        made.bytes.insert(made.bytes.end(), bytes.begin(), bytes.end());
        made.records.push_back(std::move(record));
    }
    return made;
}

bool writeRecords(const Bytes &bytes) REQUIRES_LOCK(historyLock) {
    if (history.end > 0) return appendToFormFile(history.path, history.end, bytes);
    Bytes file = encodeFormFileHead();
    file.insert(file.end(), bytes.begin(), bytes.end());
    return writeWholeFile(history.path, file, history.libraryPath) == FileResult::done;
}

void follow(std::span<const FormChange> changes, FormCause cause) {
    const HoldLock hold(historyLock);
    if (!history.follows) return;
    NewRecords made = recordsOf(changes, cause);
    if (made.records.empty()) return;
    if (!writeRecords(made.bytes)) {
        history.follows = false;
        history.failed = true;
        return;
    }
    history.end = made.records.back().offset + made.records.back().size();
    for (FormRecord &record : made.records) takeRecord(std::move(record));
}

// Gives a damaged file another name; its path, empty when that fails.
std::string setAside(const std::string &path) {
    for (int number = 1; number <= keptFileLimit; number++) {
        const std::string kept = path + ".damaged-" + std::to_string(number);
        if (fileExists(kept)) continue;
        return filePort.rename(path.c_str(), kept.c_str()) ? kept : std::string();
    }
    return {};
}

// The records that count, with their places in the new file.
bool writeAnew(const std::string &source, const std::vector<std::size_t> &kept) REQUIRES_LOCK(historyLock) {
    Bytes file = encodeFormFileHead();
    for (const std::size_t number : kept) {
        const Bytes bytes = readRecordBytes(source, history.records[number]);
        if (bytes.empty()) return false;
        file.insert(file.end(), bytes.begin(), bytes.end());
    }
    return writeWholeFile(history.path, file, history.libraryPath) == FileResult::done;
}

std::vector<std::size_t> countingRecords() REQUIRES_LOCK(historyLock) {
    std::vector<std::size_t> kept;
    for (std::size_t number = 0; number < history.records.size(); number++)
        if (history.counts[number]) kept.push_back(number);
    return kept;
}

void readRecords(const std::string &path, FormFileState &found) REQUIRES_LOCK(historyLock) {
    std::vector<FormRecord> records;
    found = readFormRecords(path, records, history.end);
    for (FormRecord &record : records) takeRecord(std::move(record));
}

// Whether the file, where there is one, can be appended to.
bool canBeWritten(const std::string &path) {
    int file = -1;
    const OpenResult result = filePort.openOwn(path.c_str(), false, file);
    if (result == OpenResult::opened) filePort.close(file);
    return result == OpenResult::opened || result == OpenResult::absent;
}

// What is to be told, and the path of what was kept.
Text openFile(std::string &kept) REQUIRES_LOCK(historyLock) {
    FormFileState found{};
    readRecords(history.path, found);
    if (found == FormFileState::foreign || found == FormFileState::unread) {
        const std::string path = history.path;
        history = {};
        history.path = path;
        return found == FormFileState::foreign ? Text::formsForeign : Text::formsUnread;
    }
    if (found == FormFileState::damaged) {
        kept = setAside(history.path);
        if (kept.empty() || !writeAnew(kept, countingRecords())) return Text::formsUnread;
        history.records.clear();
        history.counts.clear();
        history.chains.clear();
        history.bytes = history.oldest = 0;
        readRecords(history.path, found);
        history.follows = found == FormFileState::sound;
        return Text::formsDamaged;
    }
    if (!canBeWritten(history.path)) return Text::formsUnread;
    history.follows = true;
    return Text::none;
}

// The records of an item's chain, the newest first, and the form that is there.
struct Chain {
    StoredItem present;
    std::vector<FormRecord> records;
};

bool readChain(ItemId id, Chain &chain) {
    const auto entry = storeReadEntry(id);
    if (!entry || isFolderKind(entry->kind) || !storeReadItem(id, chain.present)) return false;
    const HoldLock hold(historyLock);
    const auto found = history.chains.find(id);
    if (found == history.chains.end()) return true;
    for (auto number = found->second.rbegin(); number != found->second.rend(); ++number)
        if (history.records[*number].head.kind == chain.present.kind) chain.records.push_back(history.records[*number]);
    return true;
}

std::vector<FormRecord> formsOf(const Chain &chain) {
    std::vector<FormRecord> forms;
    for (const FormRecord &record : chain.records)
        if (record.head.hasForm != 0 && forms.size() < historyFormLimit) forms.push_back(record);
    return forms;
}

// The newest change behind which the item was as this digest tells, among those that are older than the form itself.
void findComing(FormEntry &entry, const Chain &chain, std::uint64_t digest, std::uint64_t before) {
    for (const FormRecord &record : chain.records) {
        if (record.offset >= before || record.head.digestAfter != digest) continue;
        entry.time = record.head.time;
        entry.cause = static_cast<FormCause>(record.head.cause);
        return;
    }
}

std::string pathOfForms() {
    const HoldLock hold(historyLock);
    return history.path;
}

void tellFailure() {
    std::string path;
    {
        const HoldLock hold(historyLock);
        if (!history.failed) return;
        history.failed = false;
        path = history.path;
    }
    failWith(Text::formsUnread, {path});
}

}  // namespace

void historyOpen() {
    historyClose();
    const std::string path = storePathBeside(historyEnding), libraryPath = storePathBeside("");
    if (path.empty()) return;
    const bool readOnly = storeIsReadOnly();
    Text trouble = Text::none;
    std::string kept;
    {
        const HoldLock hold(historyLock);
        history = {};
        history.path = path;
        history.libraryPath = libraryPath;
        if (readOnly) {
            FormFileState found{};
            readRecords(path, found);
        } else {
            trouble = openFile(kept);
        }
    }
    if (!readOnly) storeTellForms(follow);
    if (trouble != Text::none) failWith(trouble, {path, kept});
}

void historyClose() {
    storeTellForms(nullptr);
    tellFailure();
    const HoldLock hold(historyLock);
    if (history.follows && history.end > smallFile && history.bytes < history.end / 2)
        writeAnew(history.path, countingRecords());  // should it fail, the next end of a run does it
    history = {};
}

std::vector<FormEntry> historyForms(ItemId id) {
    tellFailure();
    Chain chain;
    if (!readChain(id, chain)) return {};
    std::vector<FormEntry> entries(1);
    entries[0].kind = chain.present.kind;
    entries[0].name = chain.present.name;
    entries[0].size = chain.present.data.size();
    findComing(entries[0], chain, digestOf(chain.present), UINT64_MAX);
    for (const FormRecord &record : formsOf(chain)) {
        FormEntry entry{.kind = record.head.kind, .name = record.name, .size = record.head.dataSize};
        findComing(entry, chain, record.head.digestBefore, record.offset);
        entries.push_back(std::move(entry));
    }
    return entries;
}

bool historyReadForm(ItemId id, std::size_t number, StoredItem &form) {
    Chain chain;
    if (!readChain(id, chain)) return false;
    if (number == 0) {
        form = std::move(chain.present);
        return true;
    }
    const std::vector<FormRecord> forms = formsOf(chain);
    return number <= forms.size() && readForm(pathOfForms(), forms[number - 1], form);
}

bool historyBringBack(ItemId id, std::size_t number) {
    StoredItem form;
    const auto entry = storeReadEntry(id);
    if (!entry) return false;
    if (!historyReadForm(id, number, form)) return failWith(Text::formsUnread, {pathOfForms()});
    if (isTextKind(form.kind) && form.head.size() == programInfoSize) {
        auto info = decodeProgramInfo(form.head);
        if (info) {
            info->name = entry->name;
            form.head = encodeProgramInfo(*info);
        }
    }
    const NamedCause cause(FormCause::broughtBack);
    return storeWriteItem(id, {.name = entry->name,
                               .parent = entry->parent,
                               .kind = form.kind,
                               .head = std::move(form.head),
                               .data = std::move(form.data)});
}

std::vector<ItemTime> historyTimes() {
    std::vector<ItemTime> times;
    for (const ItemEntry &entry : storeListItems()) times.push_back({entry.id, 0});
    const HoldLock hold(historyLock);
    for (ItemTime &item : times) {
        const auto found = history.chains.find(item.id);
        if (found != history.chains.end() && !found->second.empty())
            item.time = history.records[found->second.back()].head.time;
    }
    return times;
}

std::vector<GoneItem> historyGone() {
    std::vector<ItemId> there;
    for (const ItemEntry &entry : storeListItems()) there.push_back(entry.id);
    std::vector<GoneItem> gone;
    const HoldLock hold(historyLock);
    for (const auto &[id, chain] : history.chains) {
        if (chain.empty() || std::ranges::binary_search(there, id)) continue;
        const FormRecord &last = history.records[chain.back()];
        if (last.head.hasForm == 0) continue;
        gone.push_back({id,
                        {.time = last.head.time,
                         .cause = static_cast<FormCause>(last.head.cause),
                         .kind = last.head.kind,
                         .name = last.name,
                         .size = last.head.dataSize}});
    }
    std::ranges::sort(gone, std::greater{}, [](const GoneItem &item) { return item.form.time; });
    return gone;
}

bool historyReadGone(ItemId id, StoredItem &form) {
    if (storeReadEntry(id)) return false;
    FormRecord last;
    {
        const HoldLock hold(historyLock);
        const auto found = history.chains.find(id);
        if (found == history.chains.end() || found->second.empty()) return false;
        last = history.records[found->second.back()];
    }
    return readForm(pathOfForms(), last, form);
}

}  // namespace numalink
