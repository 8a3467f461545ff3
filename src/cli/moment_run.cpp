#include "cli/moment_run.h"

#include <charconv>

#include "cli/commands.h"
#include "debugger/moments.h"
#include "platform/files.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

struct SaveTarget {
    std::string path;
    std::uint64_t statement = 0;
    bool atEnd = true;
};

// The run thread's while a run is on.
Bytes taken;

SaveTarget targetOf(const std::string &save) {
    const std::size_t at = save.rfind('@');
    SaveTarget target;
    if (at != save.npos && at + 1 < save.size()) {
        const char *const end = save.data() + save.size();
        const auto read = std::from_chars(save.data() + at + 1, end, target.statement);
        target.atEnd = read.ec != std::errc() || read.ptr != end;
    }
    target.path = target.atEnd ? save : save.substr(0, at);
    return target;
}

const char *wordsOf(MomentFault fault) {
    switch (fault) {
        case MomentFault::foreign:
            return " is no moment";
        case MomentFault::newer:
            return " is a moment of a newer form than this program knows";
        case MomentFault::damaged:
            return " is damaged";
        case MomentFault::changed:
            return " is of other programs, or they have changed since";
        case MomentFault::none:
            break;
    }
    return "";
}

std::string resume(const std::string &path) {
    Bytes bytes;
    if (readWholeFile(path, bytes, momentFileLimit) != FileResult::done) return path + " can't be read";
    Moment moment;
    MomentFault fault = momentFromBytes(bytes, moment);
    if (fault == MomentFault::none) fault = momentResume(std::move(moment));
    return fault == MomentFault::none ? std::string() : path + wordsOf(fault);
}

}  // namespace

void declareMoment(CLI::App &command, MomentRun &options) {
    command.add_option("--save-moment", options.save,
                       "Write there the run as it stands at its end, or with FILE@N behind N statements");
    command.add_option("--moment", options.resume, "Go on with the run that --save-moment has written there");
}

std::string momentBegin(const MomentRun &options, bool mayReplace) {
    if (!options.isAsked()) return {};
    const SaveTarget target = targetOf(options.save);
    // Not only at the end, when a long run would be lost for it.
    if (!options.save.empty() && !userFileIsFree(target.path, mayReplace))
        return target.path + " can't be written; --replace writes over a file";
    taken.clear();
    momentTaken = [](const Bytes &moment) { taken = moment; };
    momentsFollow();
    if (!target.atEnd) momentAskAt(target.statement);
    return options.resume.empty() ? std::string() : resume(options.resume);
}

bool momentEnd(const MomentRun &options, bool mayReplace) {
    if (!options.isAsked()) return true;
    const SaveTarget target = targetOf(options.save);
    if (target.atEnd && !options.save.empty()) taken = momentOfEndedRun();
    momentTaken = nullptr;
    if (options.save.empty()) return true;
    if (taken.empty()) {
        commandFailed(target.atEnd ? "the run has no moment to be saved" : "the run didn't come that far");
        return false;
    }
    return writeUserFile(target.path, taken, mayReplace);
}

}  // namespace numalink
