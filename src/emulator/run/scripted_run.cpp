// The key port of a script.
#include "emulator/run/scripted_run.h"

#include "emulator/machine/key_port.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/runner.h"

namespace numalink {

namespace {

// Owned by the active run thread while a run is on.
KeyReader keys, getKeys;

constexpr KeyPort scriptKeys = {
    .getKey = [] { return getKeys.next().value_or(0); },
    .waitKey =
        [] {
            const std::optional<int> key = keys.next();
            if (key) keyCode = *key;
            return key.value_or(noKeyAnyMore);
        },
};

RunReport runOnce(const RunScript &script, const std::function<bool()> &load) {
    RunReport report;
    machineStart();
    if (script.begins) beginAs(*script.begins);
    keys = KeyReader(&script.keys);
    getKeys = KeyReader(&script.getKeys);
    if (!load()) return report;
    machine.errorTrace = &report.errors;
    if (runStart({.statementLimit = script.statementLimit, .limitsWork = !script.begins})) runWait();
    machine.errorTrace = nullptr;
    report.ended = runEnded();
    report.statements = machine.statementsRun;
    return report;
}

}  // namespace

RunReport runScripted(const RunScript &script, const std::function<bool()> &load) {
    keyPort = scriptKeys;
    RunReport report;
    for (int i = 0; i < script.repeat; i++) report = runOnce(script, load);
    keyPort = windowKeys;
    return report;
}

}  // namespace numalink
