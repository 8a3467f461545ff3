// The key port of a script.
#include "emulator/run/scripted_run.h"

#include "emulator/machine/key_port.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/runner.h"

namespace numalink {

namespace {

// Owned by the active run thread while a run is on.
const RunScript *current = nullptr;
std::size_t nextKey = 0, nextGetKey = 0;

constexpr KeyPort scriptKeys = {
    .getKey = [] { return nextGetKey < current->getKeys.size() ? current->getKeys[nextGetKey++] : 0; },
    .beforeWaitTest =
        [] {
            if (nextKey >= current->keys.size()) return false;
            keyCode = current->keys[nextKey++];
            return true;
        },
};

RunReport runOnce(const RunScript &script, const std::function<bool()> &load) {
    RunReport report;
    machineStart();
    if (!load()) return report;
    nextKey = nextGetKey = 0;
    machine.errorTrace = &report.errors;
    if (runStart({.statementLimit = script.statementLimit})) runWait();
    machine.errorTrace = nullptr;
    report.ended = runEnded();
    report.statements = machine.statementsRun;
    return report;
}

}  // namespace

RunReport runScripted(const RunScript &script, const std::function<bool()> &load) {
    current = &script;
    keyPort = scriptKeys;
    RunReport report;
    for (int i = 0; i < script.repeat; i++) report = runOnce(script, load);
    keyPort = windowKeys;
    return report;
}

}  // namespace numalink
