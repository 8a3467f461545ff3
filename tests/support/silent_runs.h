// What a process needs ahead of runs that nobody watches and nothing slows.
#pragma once

#include "drawing/dot_fonts.h"
#include "platform/clock.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "telling/user_interface.h"
#include "text/token_table.h"

namespace numalink {

// Tables and fonts, default settings at full speed, no waits and nobody to ask. False where a file is missing.
inline bool prepareSilentRuns() {
    threadRole = ThreadRole::graphical;
    const bool loaded = tokenTableLoad() && loadLargeFont() && loadSmallFont();
    settingsLoad();
    settingsSetInt(setting::fullSpeed, 1);
    clockPort.sleepMilliseconds = [](std::uint64_t) {};
    userInterface = userInterfaceSilent;
    return loaded;
}

}  // namespace numalink
