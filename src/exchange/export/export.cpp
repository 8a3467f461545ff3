// From chosen items to a file: reading, holding against the target, asking, writing.
#include "exchange/export/export.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "calculator/charset.h"
#include "exchange/export/export_formats.h"
#include "exchange/export/file_names.h"
#include "exchange/listed_names.h"
#include "exchange/shown_progress.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

std::vector<ItemId> lastChosen;  // of the question, for this run

ExportTarget lastTarget() {
    const std::string name = settingsValue(setting::lastExportType);
    for (const ExportFormat &format : exportFormats())
        if (equalWithoutCase(name, format.settingName)) return format.target;
    return ExportTarget::none;
}

// One box for all items that are refused for the same cause.
struct Refusals {
    std::map<std::pair<ExportFault, int>, std::vector<std::string>> names{};
};

void addRefusal(Refusals &refusals, const ExportRefusal &refusal, const std::string &name) {
    refusals.names[{refusal.fault, refusal.code}].push_back(name.empty() ? "?" : utf8FromCalculator(name));
}

Text causeText(ExportFault fault, ExportTarget target) {
    switch (fault) {
        case ExportFault::code:
            return Text::codeNotExported;
        case ExportFault::kind:
            return target == ExportTarget::cas ? Text::exportNotInCas : Text::kindNotExported;
        case ExportFault::sizesDiffer:
            return Text::exportSizesDiffer;
        case ExportFault::tooLarge:
            return Text::exportTooLarge;
        default:
            return Text::exportNotWhole;
    }
}

// False when there was something to tell.
bool tellRefusals(const Refusals &refusals, ExportTarget target) {
    for (const auto &[cause, names] : refusals.names) {
        const Text text = causeText(cause.first, target);
        const std::string list = listOfNames(names), code = std::to_string(cause.second);
        tellComposed(text, wording(text, {code}) + "\n" + wording(Text::exportItems, {list}), {list});
    }
    return refusals.names.empty();
}

bool writeFile(Bytes &file, std::size_t count, const ExportJob &job) {
    appendFileEnd(job.target, file);
    if (!writeUserFile(job.path, file, true)) return false;  // it was asked about ahead of the work
    statusLine(StatusPart::item, Text::exportDone, {std::to_string(count)});
    return true;
}

// Gives the item of a place, or false when it can't be had, which has been told.
using ItemSource = bool (*)(const void *items, std::size_t place, OutgoingItem &item);

bool itemFromLibrary(const void *items, std::size_t place, OutgoingItem &item) {
    StoredItem stored;
    if (!storeReadItem((*static_cast<const std::vector<ItemId> *>(items))[place], stored)) return false;
    item = {stored.kind, std::move(stored.name), std::move(stored.head), std::move(stored.data)};
    return true;
}

bool itemFromMemory(const void *items, std::size_t place, OutgoingItem &item) {
    item = (*static_cast<const std::vector<OutgoingItem> *>(items))[place];
    return true;
}

bool makeFile(ItemSource source, const void *items, std::size_t count, ExportTarget target, Bytes &file) {
    Refusals refusals;
    {
        ShownProgress progress(count);
        for (std::size_t i = 0; i < count; i++) {
            OutgoingItem item;
            if (!source(items, i, item)) return false;
            if (const auto refusal = appendItem(item, target, file)) addRefusal(refusals, *refusal, item.name);
            progress.step(i + 1);
        }
    }
    return tellRefusals(refusals, target);
}

bool exportFrom(ItemSource source, const void *items, std::size_t count, const ExportJob &job) {
    assertRole(ThreadRole::graphical);
    const ExportFormat *format = exportFormatOf(job.target);
    if (!format || count == 0 || !userFileIsFree(job.path, job.mayReplace)) return false;
    settingsSetValue(setting::lastExportType, format->settingName);
    Bytes file;
    return makeFile(source, items, count, job.target, file) && writeFile(file, count, job);
}

struct SingleFile {
    std::string path;
    Bytes bytes;
};

// Names that are alike but for their case get a number: not every disk tells them apart.
std::string pathOfSingle(const std::string &folder, const std::string &name, const char *ending,
                         std::set<std::string> &taken) {
    const std::string base = safeFileName(name);
    std::string file = base + ending;
    for (int number = 2; !taken.insert(foldCase(file)).second; number++)
        file = base + " " + std::to_string(number) + ending;
    return folder + "/" + file;
}

bool makeFiles(const ExportJob &job, const char *ending, std::vector<SingleFile> &files) {
    Refusals refusals;
    std::set<std::string> taken;
    ShownProgress progress(job.ids.size());
    for (std::size_t i = 0; i < job.ids.size(); i++) {
        OutgoingItem item;
        if (!itemFromLibrary(&job.ids, i, item)) return false;
        SingleFile &file = files.emplace_back();
        file.path = pathOfSingle(job.path, utf8FromCalculator(item.name), ending, taken);
        if (const auto refusal = appendItem(item, job.target, file.bytes)) addRefusal(refusals, *refusal, item.name);
        appendFileEnd(job.target, file.bytes);
        progress.step(i + 1);
    }
    return tellRefusals(refusals, job.target);
}

bool mayWriteAll(const std::vector<SingleFile> &files, bool mayReplace) {
    std::vector<std::string> there;
    for (const SingleFile &file : files) {
        if (!userFileIsFree(file.path, true)) return false;
        if (fileExists(file.path)) there.push_back(file.path.substr(file.path.find_last_of('/') + 1));
    }
    if (there.empty() || mayReplace) return true;
    const std::vector<std::string> words = {std::to_string(there.size()), listOfNames(there)};
    return tellComposed(Text::exportEachReplace, wording(Text::exportEachReplace, words), words, BoxIcon::warning,
                        BoxButtons::okCancel) == Answer::ok;
}

// "Games/Old"; nothing for the temporary folder and what lies in it.
std::optional<std::string> pathOfFolder(ItemId id, const std::unordered_map<ItemId, const ItemEntry *> &folders) {
    std::vector<std::string> names;
    std::unordered_set<ItemId> seen;
    // A folder whose parents lead nowhere, or round in a circle, counts from there on.
    for (auto folder = folders.find(id); folder != folders.end() && seen.insert(folder->first).second;
         folder = folders.find(folder->second->parent)) {
        if (folder->second->kind == kind::temporaryFolder) return std::nullopt;
        names.push_back(utf8FromCalculator(folder->second->name));
    }
    std::string path;
    for (auto name = names.rbegin(); name != names.rend(); ++name) path += (path.empty() ? "" : "/") + *name;
    return path;
}

std::vector<ExportCandidate> exportCandidates() {
    const std::vector<ItemEntry> entries = storeListItems();
    std::unordered_map<ItemId, const ItemEntry *> folders;
    for (const ItemEntry &entry : entries) {
        if (isFolderKind(entry.kind)) folders.emplace(entry.id, &entry);
    }
    std::unordered_map<ItemId, std::optional<std::string>> paths;
    std::vector<ExportCandidate> candidates;
    for (const ItemEntry &entry : entries) {
        if (isFolderKind(entry.kind)) continue;
        const auto [path, added] = paths.try_emplace(entry.parent);
        if (added) path->second = pathOfFolder(entry.parent, folders);
        if (path->second) candidates.push_back({entry.id, *path->second, utf8FromCalculator(entry.name)});
    }
    std::ranges::stable_sort(candidates, {}, [](const ExportCandidate &item) {
        return std::pair(foldCase(item.folder), foldCase(item.name));
    });
    return candidates;
}

}  // namespace

void exportWithQuestion(const std::vector<ItemId> &preset) {
    assertRole(ThreadRole::graphical);
    ExportQuestion question{.items = exportCandidates(),
                            .chosen = preset.empty() ? lastChosen : preset,
                            .target = lastTarget(),
                            .path = {}};
    userInterface.askExport(question);
    lastChosen = question.chosen;
    if (question.path.empty()) return;
    const ExportJob job{.path = question.path, .ids = question.chosen, .target = question.target};
    if (question.eachAlone)
        exportEach(job);
    else
        exportItems(job);
}

bool exportEach(const ExportJob &job) {
    assertRole(ThreadRole::graphical);
    const ExportFormat *format = exportFormatOf(job.target);
    if (!format || job.ids.empty()) return false;
    settingsSetValue(setting::lastExportType, format->settingName);
    std::vector<SingleFile> files;
    if (!makeFiles(job, format->ending, files) || !mayWriteAll(files, job.mayReplace)) return false;
    std::size_t written = 0;
    while (written < files.size() && writeUserFile(files[written].path, files[written].bytes, true)) written++;
    const std::vector<std::string> counts = {std::to_string(written), std::to_string(files.size())};
    if (written < files.size()) return failWith(Text::exportEachStopped, counts);
    statusLine(StatusPart::item, Text::exportDone, {counts.front()});
    return true;
}

bool exportItems(const ExportJob &job) { return exportFrom(itemFromLibrary, &job.ids, job.ids.size(), job); }

bool exportToFile(const std::vector<OutgoingItem> &items, const ExportJob &job) {
    return exportFrom(itemFromMemory, &items, items.size(), job);
}

}  // namespace numalink
