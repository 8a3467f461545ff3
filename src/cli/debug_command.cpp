// numalink-cli debug
#include <iostream>
#include <memory>
#include <vector>

#include "cli/commands.h"
#include "cli/debug_adapter.h"
#include "cli/library_session.h"
#include "drawing/dot_fonts.h"
#include "platform/clock.h"
#include "settings/settings_store.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

struct DebugCommandOptions {
    std::string library;
    std::string item;
    std::vector<std::string> settings;  // KEY=VALUE
};

int runDebug(const DebugCommandOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    settingsSetInt(setting::fullSpeed, 1);
    for (const std::string &assignment : options.settings) {
        if (!useSetting(assignment)) return commandFailed("--set takes KEY=VALUE");
    }
    loadLargeFont();
    loadSmallFont();
    clockPort.sleepMilliseconds = [](std::uint64_t) {};
    userInterface.statusText = userInterfaceSilent.statusText;  // the output belongs to the protocol
    return serveDebugger(options.item, std::cin, std::cout);
}

}  // namespace

CommandRun declareDebug(CLI::App &command) {
    const auto options = std::make_shared<DebugCommandOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item, "An id, or a path such as /Programs/SNAKE")->required();
    command.add_option("--set", options->settings, "A setting for this run, KEY=VALUE")->allow_extra_args(false);
    return [options] { return runDebug(*options); };
}

}  // namespace numalink
