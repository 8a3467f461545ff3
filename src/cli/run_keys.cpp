#include "cli/run_keys.h"

#include <cstdio>

#include "calculator/charset.h"
#include "emulator/run/key_file.h"
#include "platform/files.h"
#include "settings/settings_store.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// Empty, or the part that is no key.
std::string badPart(const std::vector<std::string> &parts, KeyRuns &runs) {
    for (const std::string &part : parts)
        if (!keyRunsFromText(part, runs)) return part;
    return {};
}

std::string takeFile(const RunKeyOptions &options, ItemId item, RunScript &script) {
    Bytes bytes;
    const FileResult result = readWholeFile(options.playFile, bytes, keyFileLimit);
    if (result != FileResult::done) return "no file of keys: " + options.playFile;
    KeyFile file;
    const int line = keyFileRead({reinterpret_cast<const char *>(bytes.data()), bytes.size()}, file);
    if (line != 0) return wording(Text::keysDamaged, {options.playFile, std::to_string(line)});
    if (item != noItem && file.checksum != 0 && file.checksum != keyFileChecksum(item))
        std::fprintf(stderr, "numalink-cli: %s\n", wording(Text::keysOfOther, {file.program}).c_str());
    for (const auto &[component, value] : file.settings) settingsSetInt(keyFileSettingKey(component), value);
    script.keys = std::move(file.keys.waits);
    script.getKeys = std::move(file.keys.getKeys);
    script.begins = std::move(file.keys.begins);
    if (script.statementLimit == 0) script.statementLimit = file.keys.statements;
    return {};
}

}  // namespace

void declareRunKeys(CLI::App &command, RunKeyOptions &options) {
    command
        .add_option("--keys", options.keys,
                    "Key codes, one for each pass of a wait: 31,72,0*20,... (0*20: twenty passes without one)")
        ->delimiter(',');
    command.add_option("--getkey", options.getKeys, "What successive reads of GetKey give: 0*40,31,...")
        ->delimiter(',');
    command.add_option("--play", options.playFile, "Play the keys of a file, which the window or --record-keys wrote")
        ->excludes("--keys")
        ->excludes("--getkey");
    command.add_option("--record-keys", options.recordFile, "Write there the keys that the run takes, for --play");
}

std::string takeRunKeys(const RunKeyOptions &options, ItemId item, RunScript &script) {
    if (!options.playFile.empty()) return takeFile(options, item, script);
    std::string bad = badPart(options.keys, script.keys);
    if (bad.empty()) bad = badPart(options.getKeys, script.getKeys);
    return bad.empty() ? bad : "no key code: " + bad;
}

bool writeRunKeys(const RunKeyOptions &options, ItemId item, bool mayReplace) {
    if (options.recordFile.empty()) return true;
    KeyFile file{.program = {}, .settings = keyFileSettings(), .keys = keysTaken()};
    file.checksum = keyFileChecksum(item);
    if (const auto entry = storeReadEntry(item)) file.program = utf8FromCalculator(entry->name);
    const std::string text = keyFileText(file);
    return writeUserFile(options.recordFile, ByteView(reinterpret_cast<const std::uint8_t *>(text.data()), text.size()),
                         mayReplace);
}

}  // namespace numalink
