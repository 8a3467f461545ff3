#include "exchange/export/share_page.h"

#include "calculator/charset.h"
#include "calculator/item_bundle.h"
#include "exchange/base64.h"
#include "exchange/import/import_readers.h"
#include "exchange/page_parts.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::uint64_t templateLimit = std::uint64_t{8} * 1024 * 1024;  // bytes
constexpr std::string_view titleMark = "@@title@@", itemsMark = "@@items@@";

std::string templatePath() { return dataPath("player.html"); }

bool isForPage(ItemKind itemKind) {
    return isTextKind(itemKind) || isValuesKind(itemKind) || itemKind == kind::picture;
}

bool addItem(ItemId id, std::vector<BundledItem> &items) {
    StoredItem item;
    if (!storeReadItem(id, item)) return false;
    items.push_back({item.kind, item.name, item.head, item.data});
    return true;
}

// The program first, then what lies beside it.
bool collect(const ItemEntry &program, std::vector<BundledItem> &items) {
    if (!addItem(program.id, items)) return false;
    for (const ItemEntry &entry : storeListChildren(program.parent)) {
        if (entry.id != program.id && isForPage(entry.kind) && !addItem(entry.id, items)) return false;
    }
    return true;
}

// What stands between the marks is copied once, so that nothing which is put in is looked at again.
std::string filled(std::string_view page, const std::string &title, const std::string &items) {
    const std::size_t titleAt = page.find(titleMark), itemsAt = page.find(itemsMark);
    if (titleAt == std::string_view::npos || itemsAt == std::string_view::npos || itemsAt < titleAt) return {};
    const std::size_t behindTitle = titleAt + titleMark.size();
    std::string text(page.substr(0, titleAt));
    text += title;
    text += page.substr(behindTitle, itemsAt - behindTitle);
    text += items;
    return text += page.substr(itemsAt + itemsMark.size());
}

// Whether an import of the page brings these items to the byte.
bool readsBack(const std::string &page, const std::vector<BundledItem> &items) {
    std::size_t place = 0;
    ImportReport report;
    const ItemSink sink = [&](ImportedItem &item) {
        const bool same =
            place < items.size() && BundledItem{item.itemKind, item.name, item.head, item.data} == items[place];
        place++;
        return same;
    };
    readPage({reinterpret_cast<const std::uint8_t *>(page.data()), page.size()}, sink, report);
    return report.items == items.size() && report.messages.empty();
}

}  // namespace

bool pagePlayerThere() { return fileExists(templatePath()); }

std::string pageText(const std::string &utf8) {
    std::string text;
    for (const char c : utf8) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        switch (c) {
            case '<':
                text += "&lt;";
                break;
            case '>':
                text += "&gt;";
                break;
            case '&':
                text += "&amp;";
                break;
            case '"':
                text += "&quot;";
                break;
            default:
                text += isControl ? ' ' : c;
        }
    }
    return text;
}

bool sharePage(const PageJob &job) {
    assertRole(ThreadRole::graphical);
    const auto program = storeReadEntry(job.program);
    if (!program || program->kind != kind::program) return failWith(Text::shareNoProgram);
    Bytes file;
    const FileResult result = readWholeFile(templatePath(), file, templateLimit);
    if (result != FileResult::done) return failWith(Text::shareNoPlayer);
    if (!userFileIsFree(job.path, job.mayReplace)) return false;
    std::vector<BundledItem> items;
    if (!collect(*program, items)) return false;
    const Bytes bundle = encodeBundle(items);
    if (bundle.empty()) return failWith(Text::shareTooLarge);
    const std::string title = job.title.empty() ? utf8FromCalculator(program->name) : job.title;
    const std::string page =
        filled({reinterpret_cast<const char *>(file.data()), file.size()}, pageText(title), base64FromBytes(bundle));
    if (page.empty()) return failWith(Text::shareNoPlayer);
    if (!readsBack(page, items)) return failWith(Text::shareNotWhole);
    return writeUserFile(job.path, {reinterpret_cast<const std::uint8_t *>(page.data()), page.size()}, true);
}

}  // namespace numalink
