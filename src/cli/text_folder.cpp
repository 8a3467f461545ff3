#include "cli/text_folder.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/text_index.h"
#include "exchange/export/file_names.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "search/search.h"
#include "store/form_changes.h"
#include "store/items/item_path.h"
#include "store/undo/undo.h"
#include "text/lenient_text.h"
#include "text/program_images.h"
#include "text/view_copy.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t textFileLimit = 16u << 20;  // bytes

struct FolderStep {
    std::string folder;
    std::vector<TextRecord> records;  // of the index
    std::vector<TextRecord> kept;     // of the next one
    int conflicts = 0;
    bool failed = false;

    // What is known of a text that stays as it is counts the next time, too.
    void keep(const TextRecord *record) {
        if (record != nullptr) kept.push_back(*record);
    }
    void conflict(const std::string &file, const char *what) {
        std::fprintf(stderr, "numalink-cli: %s: %s\n", file.c_str(), what);
        conflicts++;
    }
    void fail(const std::string &file, const char *what) {
        commandFailed(file + ": " + what);
        failed = true;
    }
    int status() const { return failed ? exitFailed : conflicts > 0 ? exitShown : exitDone; }
    std::string pathOf(const std::string &file) const { return folder + "/" + file; }
};

std::string textOf(ByteView image) {
    std::string text;
    for (const ViewLine &line : viewLines(image)) text += partedUtf8(line) + "\n";
    return text;
}

ByteView bytesOf(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

// False for what is no program.
bool imageOf(std::string_view utf8, Bytes &image) {
    std::vector<std::string_view> texts = linesOfText(utf8);
    if (texts.size() > 1 && texts.back().empty()) texts.pop_back();
    LenientText text = lenientTextOf(utf8);
    std::vector<ViewLine> lines;
    for (const std::string_view line : texts)
        if (!lineOfPartedUtf8(text, line, lines.emplace_back())) return false;
    return imageOfViewLines(lines, true, image).empty();
}

std::optional<std::string> readText(const std::string &path) {
    Bytes bytes;
    if (readWholeFile(path, bytes, textFileLimit) != FileResult::done) return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

// "/Programs/SNAKE" with its folders, in UTF-8; a "/" in a name stands as such, as in the library's own paths.
std::vector<std::string> pathParts(const ItemEntry &entry) {
    std::vector<std::string> parts;
    for (const std::string &name : storePathOf(entry)) parts.push_back(utf8FromCalculator(name));
    return parts;
}

std::string joined(const std::vector<std::string> &parts) {
    std::string path;
    for (const std::string &part : parts) path += "/" + part;
    return path;
}

std::string fileOf(const std::vector<std::string> &parts, ItemKind itemKind) {
    std::string file;
    for (const std::string &part : parts) file += (file.empty() ? "" : "/") + safeFileName(part);
    const std::string ending = textEnding(itemKind);
    return file + (kindOfTextFile(file + ending) == itemKind ? "" : "_") + ending;  // a program may be called "A.fm"
}

TextRecord recordOf(const StoredItem &item, std::string file, std::string path, const std::string &text) {
    TextRecord record{.file = std::move(file),
                      .path = std::move(path),
                      .itemKind = item.kind,
                      .head = item.head,
                      .text = digestOf(bytesOf(text)),
                      .image = digestOf(item.data),
                      .bytes = {}};
    Bytes again;
    if (!imageOf(text, again) || again != item.data) record.bytes = item.data;
    return record;
}

const TextRecord *recordOfItem(const std::vector<TextRecord> &records, const std::string &path, ItemKind itemKind) {
    const auto found = std::ranges::find_if(
        records, [&](const TextRecord &record) { return record.path == path && record.itemKind == itemKind; });
    return found == records.end() ? nullptr : &*found;
}

// ---- out

void exportOne(FolderStep &step, const StoredItem &item, const std::string &path, const std::string &file,
               const TextRecord *record) {
    if (liesBehindLink(step.folder, file)) {
        step.conflict(file, "lies behind a link; what that leads to stays as it is");
        return step.keep(record);
    }
    const std::string text = textOf(item.data);
    const auto there = readText(step.pathOf(file));
    const bool isThere = fileExists(step.pathOf(file));
    if (isThere && !there) {
        step.fail(file, "can't be read");
        return step.keep(record);
    }
    const bool isOurs = record != nullptr && there && digestOf(bytesOf(*there)) == record->text;
    if (isThere && !isOurs && there != text) {
        const bool awaitsImport = record != nullptr && digestOf(item.data) == record->image;
        step.conflict(file, awaitsImport        ? "has been edited and waits for its import; it stays as it is"
                            : record != nullptr ? "has been edited, and so has the program; both stay as they are"
                                                : "isn't of this program's making; it stays as it is");
        return step.keep(record);
    }
    makeFolders(fs::path(step.pathOf(file)).parent_path());
    const FileResult written = there == text ? FileResult::done : writeWholeFile(step.pathOf(file), bytesOf(text));
    if (written != FileResult::done) {
        step.fail(file, written == FileResult::diskFull ? "the disk is full" : "can't be written");
        return step.keep(record);
    }
    step.kept.push_back(recordOf(item, file, path, text));
}

// Texts of programs that are no more, or are called otherwise now.
void removeGone(FolderStep &step, const std::set<std::string> &paths) {
    for (const TextRecord &record : step.records) {
        if (paths.contains(record.path + textEnding(record.itemKind))) continue;
        if (liesBehindLink(step.folder, record.file)) continue;
        const auto there = readText(step.pathOf(record.file));
        if (!there) continue;
        if (digestOf(bytesOf(*there)) != record.text) {
            step.conflict(record.file, "has been edited, but its program has gone; it stays as it is");
            step.kept.push_back(record);
        } else if (std::remove(step.pathOf(record.file).c_str()) != 0) {
            step.fail(record.file, "can't be removed");
        }
    }
}

// ---- in

struct LibraryItems {
    std::map<std::string, StoredItem> byPath;        // path and ending
    std::map<std::string, std::string> pathsByFile;  // of the texts that they would be written to anew
};

LibraryItems libraryItems() {
    LibraryItems items;
    for (const ItemId id : searchedItems(rootId)) {
        const auto entry = storeReadEntry(id);
        StoredItem item;
        if (!entry || !isTextKind(entry->kind) || !storeReadItem(id, item)) continue;
        const std::vector<std::string> parts = pathParts(*entry);
        const std::string path = joined(parts);
        items.pathsByFile.try_emplace(fileOf(parts, entry->kind), path);
        items.byPath.try_emplace(path + textEnding(entry->kind), std::move(item));
    }
    return items;
}

ItemId folderOf(const std::string &path) {
    const std::size_t slash = path.find_last_of('/');
    return storeResolvePath(calculatorFromUtf8(path.substr(0, slash)) + "/", true);
}

// A new item of this image under the path; its record, or nothing when it can't be stored.
bool addItem(FolderStep &step, const TextRecord &wanted, Bytes image, const std::string &text) {
    const ItemId parent = folderOf(wanted.path);
    if (parent == noItem) return false;
    const std::size_t limit = wanted.itemKind == kind::program ? programNameLimit : storeNameLimit;
    const std::string asked = calculatorFromUtf8(wanted.path.substr(wanted.path.find_last_of('/') + 1));
    const std::string name = storeFreeName(asked.substr(0, limit), parent, wanted.itemKind);
    StoredItem item;
    item.kind = wanted.itemKind;
    item.name = name;
    item.parent = parent;
    item.head = wanted.head;
    NewItem made = itemWithImage(item, std::move(image));
    auto info = decodeProgramInfo(made.head);
    const bool isUnchanged =
        digestOf(made.data) == wanted.image && wanted.head.size() == made.head.size() && name == asked;
    if (isUnchanged) made.head = wanted.head;
    if (!isUnchanged && info) {
        info->name = name.substr(0, programNameLimit);
        made.head = encodeProgramInfo(*info);
    }
    made.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(made);
    StoredItem stored;
    if (id == noItem || !storeReadItem(id, stored)) return false;
    step.kept.push_back(recordOf(stored, wanted.file, joined(pathParts(stored)), text));
    return true;
}

bool addFile(FolderStep &step, const TextRecord &wanted) {
    const auto text = readText(step.pathOf(wanted.file));
    Bytes image;
    const bool asWritten = text && digestOf(bytesOf(*text)) == wanted.text && !wanted.bytes.empty();
    if (asWritten) image = wanted.bytes;
    const bool isProgram = text && (asWritten || imageOf(*text, image));
    if (isProgram && addItem(step, wanted, std::move(image), *text)) return true;
    step.fail(wanted.file, !text ? "can't be read" : isProgram ? "can't be stored" : "isn't the text of a program");
    return false;
}

// A text that the index doesn't have: another's, or of an export or import that was cut off.
void importFresh(FolderStep &step, const std::string &file, const LibraryItems &items) {
    TextRecord wanted{.file = file, .path = {}, .itemKind = kindOfTextFile(file), .head = {}, .bytes = {}};
    const auto known = items.pathsByFile.find(file);
    if (known == items.pathsByFile.end()) {
        wanted.path = "/" + file.substr(0, file.find_last_of('/') + 1) + nameOfTextFile(file);
        addFile(step, wanted);
        return;
    }
    const StoredItem &item = items.byPath.at(known->second + textEnding(wanted.itemKind));
    const auto text = readText(step.pathOf(file));
    if (!text) return step.fail(file, "can't be read");
    if (textOf(item.data) != *text)
        return step.conflict(file,
                             "is new here, and the library has another program of this name; both stay as they are");
    step.kept.push_back(recordOf(item, file, known->second, *text));
}

// A text that was there the last time, too.
void importKnown(FolderStep &step, const TextRecord &record, const StoredItem *item, const std::string &text) {
    const bool edited = digestOf(bytesOf(text)) != record.text;
    if (item == nullptr) {
        addFile(step, record);
        return;
    }
    if (!edited && digestOf(item->data) != record.image && textOf(item->data) != text) {
        step.conflict(record.file, "is as it was written, but the program isn't; both stay as they are");
        step.kept.push_back(record);
        return;
    }
    if (!edited || textOf(item->data) == text) {
        step.kept.push_back(recordOf(*item, record.file, record.path, textOf(item->data)));
        if (!edited) step.kept.back().text = record.text;
        return;
    }
    if (digestOf(item->data) != record.image) {
        step.conflict(record.file, "has been edited, and so has the program; both stay as they are");
        step.kept.push_back(record);
        return;
    }
    Bytes image;
    if (!imageOf(text, image)) {
        step.kept.push_back(record);
        return step.fail(record.file, "isn't the text of a program");
    }
    StoredItem stored;
    if (!writeProgramImage(item->id, std::move(image)) || !storeReadItem(item->id, stored)) {
        step.kept.push_back(record);
        return step.fail(record.file, "can't be stored");
    }
    step.kept.push_back(recordOf(stored, record.file, record.path, text));
}

// A text that has gone: under another name, or for good.
void importGone(FolderStep &step, const TextRecord &record, const StoredItem *item, std::set<std::string> &fresh) {
    if (item == nullptr) return;
    const auto isIt = [&](const std::string &file) {
        const auto text = readText(step.pathOf(file));
        return text && digestOf(bytesOf(*text)) == record.text && kindOfTextFile(file) == record.itemKind;
    };
    const auto renamed = std::ranges::find_if(fresh, isIt);
    if (renamed == fresh.end() && digestOf(item->data) != record.image) {
        step.conflict(record.file, "has gone, but its program has been edited; that stays as it is");
        return;
    }
    if (renamed != fresh.end()) {
        TextRecord wanted = record;
        wanted.file = *renamed;
        const std::string folder = renamed->substr(0, renamed->find_last_of('/') + 1);
        wanted.path = "/" + folder + nameOfTextFile(*renamed);
        if (digestOf(item->data) != record.image) wanted.bytes = item->data;
        fresh.erase(renamed);
        if (!addFile(step, wanted)) {
            step.kept.push_back(record);
            return;
        }
    }
    if (!storeDelete(item->id)) step.fail(record.file, "its program can't be deleted");
}

// A program is deleted only for a text that isn't there at all.
void importRecord(FolderStep &step, const TextRecord &record, const LibraryItems &items, std::set<std::string> &fresh) {
    const auto found = items.byPath.find(record.path + textEnding(record.itemKind));
    const StoredItem *item = found == items.byPath.end() ? nullptr : &found->second;
    if (liesBehindLink(step.folder, record.file)) {
        step.conflict(record.file, "lies behind a link; its program stays as it is");
        step.kept.push_back(record);
    } else if (!fileExists(step.pathOf(record.file))) {
        importGone(step, record, item, fresh);
    } else if (const auto text = readText(step.pathOf(record.file))) {
        importKnown(step, record, item, *text);
    } else {
        step.fail(record.file, "can't be read");
        step.kept.push_back(record);
    }
}

bool openFolder(FolderStep &step, const std::string &folder) {
    step.folder = folder;
    auto records = readTextIndex(folder);
    if (!records) return false;
    step.records = std::move(*records);
    return true;
}

int closeFolder(FolderStep &step) {
    if (!writeTextIndex(step.folder, step.kept)) step.fail(textIndexName, "can't be written");
    return step.status();
}

}  // namespace

int exportTexts(const std::string &folder) {
    FolderStep step;
    makeFolders(folder);
    if (!openFolder(step, folder)) return exitFailed;
    std::set<std::string> paths, files;  // files without regard to case, as some systems have them
    for (const TextRecord &record : step.records) files.insert(foldCase(record.file));
    for (const ItemId id : searchedItems(rootId)) {
        const auto entry = storeReadEntry(id);
        if (!entry || !isTextKind(entry->kind)) continue;
        const std::vector<std::string> parts = pathParts(*entry);
        const std::string path = joined(parts);
        if (!paths.insert(path + textEnding(entry->kind)).second) {
            step.conflict(path, "there are two of this name; the later one is left out");
            continue;
        }
        const TextRecord *record = recordOfItem(step.records, path, entry->kind);
        StoredItem item;
        if (!storeReadItem(id, item)) {  // told; its text may be all that is left of it
            step.failed = true;
            step.keep(record);
            continue;
        }
        std::string file = record != nullptr ? record->file : fileOf(parts, item.kind);
        const std::string stem = file.substr(0, file.size() - textEnding(item.kind).size());
        for (int number = 2; record == nullptr && !files.insert(foldCase(file)).second; number++)
            file = stem + " " + std::to_string(number) + textEnding(item.kind);
        exportOne(step, item, path, file, record);
    }
    removeGone(step, paths);
    return closeFolder(step);
}

int importTexts(const std::string &folder) {
    FolderStep step;
    if (!openFolder(step, folder)) return exitFailed;
    const auto files = textFiles(folder);
    if (!files) return exitFailed;
    std::set<std::string> fresh(files->begin(), files->end());
    for (const TextRecord &record : step.records) fresh.erase(record.file);
    const LibraryItems items = libraryItems();
    const UndoGroup group(UndoAct::import, "");
    const NamedCause cause(FormCause::imported);
    for (const TextRecord &record : step.records) importRecord(step, record, items, fresh);
    for (const std::string &file : fresh) importFresh(step, file, items);
    return closeFolder(step);
}

}  // namespace numalink
