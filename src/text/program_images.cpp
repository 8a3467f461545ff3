#include "text/program_images.h"

#include "calculator/program_info.h"

namespace numalink {

NewItem itemWithImage(const StoredItem &item, Bytes image) {
    ProgramInfo info =
        decodeProgramInfo(item.head).value_or(ProgramInfo{.imageLength = 1, .name = item.name, .password = {}});
    info.imageLength = static_cast<std::uint32_t>(image.size());
    NewItem written;
    written.name = item.name;
    written.parent = item.parent;
    written.kind = item.kind;
    written.head = encodeProgramInfo(info);
    written.data = std::move(image);
    return written;
}

bool writeProgramImage(ItemId id, Bytes image) {
    StoredItem item;
    if (!storeReadEntry(id) || !storeReadItem(id, item) || !isTextKind(item.kind)) return false;
    return storeWriteItem(id, itemWithImage(item, std::move(image)));
}

}  // namespace numalink
