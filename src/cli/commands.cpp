// The table of commands, and the way from arguments to the one that runs.
#include "cli/commands.h"

#include <algorithm>
#include <cstdio>

#include "cli/terminal_ui.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"

namespace numalink {

namespace {

struct CommandRow {
    const char *name;
    const char *summary;
    CommandRun (*declare)(CLI::App &command);
};

constexpr CommandRow commandRows[] = {
    {"check", "Tell what of a library is sound, and repair it", declareCheck},
    {"convert", "Convert an item file or a bitmap into another item file", declareConvert},
    {"debug", "Step through a program by the Debug Adapter Protocol on standard input and output", declareDebug},
    {"diff", "Tell what two programs or item files differ in", declareDiff},
    {"duplicates", "List items that are there more than once", declareDuplicates},
    {"export", "Export items of a library into a file", declareExport},
    {"import", "Import item files into a library", declareImport},
    {"link", "Converse with a calculator over a serial line", declareLink},
    {"language-server", "Help other editors by the Language Server Protocol on standard input and output",
     declareLanguageServer},
    {"lint", "Tell what is wrong in the programs of a library", declareLint},
    {"list", "List the items of a library", declareList},
    {"share", "Write a program as a web page that plays it", declareShare},
    {"search", "Look for words, tokens or an expression, and replace them", declareSearch},
    {"show", "Show one item of a library", declareShow},
    {"run", "Run a program of a library on the emulated calculator", declareRun},
    {"eval", "Run a program given by its bytes", declareEval},
    {"tokens", "Convert between program bytes and text", declareTokens},
    {"versions", "List the earlier forms of an item, and bring one back", declareVersions},
    {"write", "Store a text into a program", declareWrite},
};

}  // namespace

int runCommandLine(int argc, const char *const *argv) {
    threadRole = ThreadRole::graphical;
    terminalUiInstall();
    setSettingsFolder(ownFolders().settings);
    CLI::App app(
        "Works on a Numalink library without a window.\nMessages go to standard error, one line each: "
        "box BODY-TEXT-NUMBER TITLE-TEXT-NUMBER: wording.\nExit status: 0 done, 1 done with messages, 2 not done.",
        "numalink-cli");
    app.set_version_flag("--version", "numalink-cli " NUMALINK_VERSION);
    app.require_subcommand(1);
    CommandRun chosen;
    for (const CommandRow &row : commandRows) {
        CLI::App *command = app.add_subcommand(row.name, row.summary);
        const CommandRun run = row.declare(*command);
        command->callback([&chosen, run] { chosen = run; });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &fault) {
        return app.exit(fault) == 0 ? exitDone : exitFailed;
    }
    const int status = chosen();
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) return commandFailed("the output could not be written");
    return std::max(status, terminalBoxCount() > 0 ? exitShown : exitDone);
}

int commandFailed(const std::string &wording) {
    std::fprintf(stderr, "numalink-cli: %s\n", wording.c_str());
    return exitFailed;
}

}  // namespace numalink
