// Any bytes as a page, and as the bundle in one: what is read is of its kind, and a bundle comes back to the byte.
#include "calculator/item_bundle.h"
#include "import_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace numalink;
    [[maybe_unused]] static const bool loaded = languageLoad("English", "English") == 1;
    ImportReport report;
    const ItemSink sink = [](ImportedItem &item) {
        item.name.resize(std::min<std::size_t>(item.name.size(), 9));
        checkItem(item);
        return true;
    };
    readPage({data, size}, sink, report);
    // The checksum is no puzzle for the fuzzer: it is put right.
    Bytes bundle(data, data + size);
    bundle.resize(size + 4);
    writeLittle32(bundle, size, checksum32({data, size}));
    if (const auto items = decodeBundle(bundle)) require(encodeBundle(*items) == bundle);
    return 0;
}
