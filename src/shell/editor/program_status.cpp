#include "shell/editor/program_status.h"

#include <algorithm>

#include "calculator/program_info.h"
#include "language/folder_context.h"
#include "settings/settings_store.h"
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

int memoryOfCalculator(const char *key) { return std::clamp<int>(settingsInt(key), leastMemory, mostMemory); }

int memoryOfCalculator() {
    return memoryOfCalculator(problemContextAlone().isForCfx ? setting::memoryCfx : setting::memoryAlgebra);
}

void programToStatus(ItemId id) {
    StoredItem item;
    if (storeReadItem(id, item)) programToStatus(item);
}

}  // namespace numalink
