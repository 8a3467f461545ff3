// The command line: one row a command, each command in a file of its own. Exit status: 0 when all was done and
// nothing had to be shown, 1 when a box was shown, 2 when something could not be done.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace numalink {

inline constexpr int exitDone = 0;
inline constexpr int exitShown = 1;
inline constexpr int exitFailed = 2;

using CommandRun = std::function<int()>;

// Each declares its options on command and gives what runs once they are parsed.
CommandRun declareCheck(CLI::App &command);
CommandRun declareConvert(CLI::App &command);
CommandRun declareDebug(CLI::App &command);
CommandRun declareDiff(CLI::App &command);
CommandRun declareDuplicates(CLI::App &command);
CommandRun declareExport(CLI::App &command);
CommandRun declareImport(CLI::App &command);
CommandRun declareLink(CLI::App &command);
CommandRun declareLanguageServer(CLI::App &command);
CommandRun declareLint(CLI::App &command);
CommandRun declareList(CLI::App &command);
CommandRun declareEval(CLI::App &command);
CommandRun declareRun(CLI::App &command);
CommandRun declareShare(CLI::App &command);
CommandRun declareSearch(CLI::App &command);
CommandRun declareShow(CLI::App &command);
CommandRun declareTokens(CLI::App &command);
CommandRun declareVersions(CLI::App &command);
CommandRun declareWrite(CLI::App &command);

int runCommandLine(int argc, const char *const *argv);

// Says on standard error what could not be done; always exitFailed.
int commandFailed(const std::string &wording);

}  // namespace numalink
