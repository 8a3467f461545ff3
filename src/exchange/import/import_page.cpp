// A page that plays a program: the items that it holds.
#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/item_bundle.h"
#include "calculator/program_info.h"
#include "exchange/base64.h"
#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"
#include "exchange/page_parts.h"
#include "store/item_store.h"

namespace numalink {

namespace {

std::optional<std::vector<BundledItem>> itemsOfPage(std::string_view page) {
    const std::size_t head = page.find(pageItemsHead);
    if (head == std::string_view::npos) return std::nullopt;
    page.remove_prefix(head + pageItemsHead.size());
    const std::size_t end = page.find(pageItemsEnd);
    if (end > bundleSizeLimit * 2) return std::nullopt;
    const auto bytes = bytesFromBase64(page.substr(0, end));
    return bytes ? decodeBundle(*bytes) : std::nullopt;
}

// Whether the head is one of its kind; deliver holds it against the data.
bool isOfItsKind(const BundledItem &item) {
    if (item.name.size() > storeNameLimit) return false;
    if (isTextKind(item.kind)) return decodeProgramInfo(item.head).has_value();
    const bool isPagesKind = isValuesKind(item.kind) || item.kind == kind::picture;
    return isPagesKind && item.head.size() == headFrameLength(item.kind) &&
           classifyFrame(ByteView(item.head).subspan(1)) == item.kind;
}

}  // namespace

void readPage(ByteView file, const ItemSink &sink, ImportReport &report) {
    auto items = itemsOfPage({reinterpret_cast<const char *>(file.data()), file.size()});
    if (!items) return addMessage(report, Text::importPageDamaged, {});
    for (BundledItem &item : *items) {
        const std::string name = utf8FromCalculator(item.name);
        if (!isOfItsKind(item)) {
            addMessage(report, Text::importSizesDiffer, {name});
            continue;
        }
        if (!deliver({item.kind, item.name, std::move(item.head), std::move(item.data)}, sink, report)) return;
    }
}

}  // namespace numalink
