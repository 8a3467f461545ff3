// numalink-cli check
#include <cstdio>
#include <memory>

#include "cli/commands.h"
#include "cli/terminal_ui.h"
#include "platform/program_folder.h"
#include "store/care/daily_copies.h"
#include "store/care/library_check.h"
#include "store/item_store.h"

namespace numalink {

namespace {

struct CheckOptions {
    std::string library;
    bool repair = false;
    bool restore = false;
};

const char *wordOf(RecordFate fate) {
    switch (fate) {
        case RecordFate::sound:
            return "sound";
        case RecordFate::found:
            return "found outside the table";
        case RecordFate::shortened:
            return "bytes are missing from it";
        case RecordFate::lost:
            return "lost";
        case RecordFate::rest:
            return "bytes of no record";
    }
    return "";
}

std::string causeOf(CheckOutcome outcome, const std::string &file) {
    switch (outcome) {
        case CheckOutcome::absent:
            return file + ": there is no such file";
        case CheckOutcome::held:
            return file + " is in use by another program";
        case CheckOutcome::notWritten:
            return file + " could not be put in order for certain; it is as it was, or in order: check it again";
        case CheckOutcome::journalUnusable:
            return file +
                   "-journal can't be read, is a link, or the interrupted change that it tells of can't be taken back";
        case CheckOutcome::newer:
            return file + " was written by a newer version";
        case CheckOutcome::noCopy:
            return dailyCopyFolder() + " holds no copy in order";
        default:
            return file + " could not be opened for reading and writing";
    }
}

void tellRecords(const LibraryCheck &check) {
    std::size_t counts[5] = {};
    for (const CheckedRecord &record : check.records) {
        counts[static_cast<std::size_t>(record.fate)]++;
        if (record.fate == RecordFate::sound) continue;
        std::printf("%s: at %llu", wordOf(record.fate), static_cast<unsigned long long>(record.offset));
        if (record.id != noItem) std::printf(", id %u", record.id);
        if (record.fate == RecordFate::rest)
            std::printf(", behind %s\n", record.name.empty() ? "the head" : printableName(record.name).c_str());
        else
            std::printf(", kind %u, name %s\n", record.kind, printableName(record.name).c_str());
    }
    const auto countOf = [&](RecordFate fate) { return counts[static_cast<std::size_t>(fate)]; };
    std::printf("records: %zu sound, %zu found outside the table, %zu lost\n",
                countOf(RecordFate::sound) + countOf(RecordFate::shortened), countOf(RecordFate::found),
                countOf(RecordFate::lost));
    if (check.circles > 0) std::printf("folders in a circle: %u\n", check.circles);
}

int restoreCommand() {
    const std::string copy = newestSoundCopy();
    const LibraryCheck check = restoreLibrary();
    if (check.outcome != CheckOutcome::checked)
        return commandFailed(causeOf(check.outcome, libraryFolder() + "storage.dat"));
    if (!check.repaired) return commandFailed("the library is in order: it stays as it is");
    std::printf(
        "%s is in the place of the library; a damaged file that was there is kept beside it as storage.dat.damaged-N\n",
        copy.c_str());
    return exitDone;
}

int checkCommand(const CheckOptions &options) {
    setLibraryFolder(options.library);
    if (options.restore) return restoreCommand();
    if (storeIsEmptied())
        return commandFailed(libraryFolder() + "storage.dat is missing or empty, but copies of it lie in " +
                             dailyCopyFolder() + ": --restore puts the newest in its place");
    const LibraryCheck check = checkLibrary(options.repair);
    const bool notRepaired = check.outcome == CheckOutcome::notWritten;
    if (check.outcome != CheckOutcome::checked && !notRepaired)
        return commandFailed(causeOf(check.outcome, libraryFolder() + "storage.dat"));
    if (check.interrupted) {
        std::printf(options.repair ? "an interrupted change was taken back\n"
                                   : "a change was interrupted: the next start, or --repair, takes it back; what "
                                     "follows tells of its middle\n");
    }
    if (!check.otherJournal.empty())
        std::printf("an interrupted change that belongs to another library file was left alone: %s\n",
                    check.otherJournal.c_str());
    if (!check.headUsable && check.damage > 0) std::printf("the head of the file can't be used\n");
    tellRecords(check);
    std::printf("places with damage: %u\n", check.damage);
    if (check.repaired) std::printf("repaired; the damaged file is kept beside it as storage.dat.damaged-N\n");
    if (notRepaired) return commandFailed(causeOf(check.outcome, libraryFolder() + "storage.dat"));
    return check.damage > 0 || check.interrupted ? exitShown : exitDone;
}

}  // namespace

CommandRun declareCheck(CLI::App &command) {
    const auto options = std::make_shared<CheckOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    CLI::Option *repair = command.add_flag("--repair", options->repair,
                                           "Put a damaged library in order, with all records that can be saved");
    command
        .add_flag("--restore", options->restore,
                  "Put the newest copy of backups/ in the place of a library that is missing, empty or damaged")
        ->excludes(repair);
    command.footer(
        "Exit status: 0 in order, 1 damage or an interrupted change (repaired or not), 2 not done. --restore gives 0 "
        "or 2.");
    return [options] { return checkCommand(*options); };
}

}  // namespace numalink
