#include "shell/editor/program_status.h"

#include "calculator/program_info.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// Tells that there is a password, and neither its letters nor how many they are.
constexpr char passwordMask[] = "••••";

}  // namespace

void programToStatus(const StoredItem &item) {
    const std::string size = std::to_string(item.dataSize);
    const std::optional<ProgramInfo> info = decodeProgramInfo(item.head);
    if (info && !info->password.empty()) {
        statusLine(StatusPart::item, Text::sizeWithPassword, {size, passwordMask});
    } else {
        statusLine(StatusPart::item, Text::size, {size});
    }
}

void programToStatus(ItemId id) {
    StoredItem item;
    if (storeReadItem(id, item)) programToStatus(item);
}

}  // namespace numalink
