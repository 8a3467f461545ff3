#include "bench/contest_runs.h"

#include "emulator/machine/programs.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

// Ran# is a token. Empty where the words are none of a program.
Bytes imageOf(std::string words, int passes) {
    const std::string number = std::to_string(passes);
    for (std::size_t at = words.find('#'); at != words.npos; at = words.find('#', at + 1))
        if (!std::string_view(words).substr(0, at).ends_with("Ran")) words.replace(at, 1, number);
    Bytes image = {':'};
    if (tokensFromWords(words, image) != -1) return {};
    image.insert(image.end(), {0xFF, 0});
    return image;
}

}  // namespace

void prepareContests() {
    threadRole = ThreadRole::graphical;
    tokenTableLoad();
    settingsLoad();
    settingsSetInt(setting::fullSpeed, 1);
    settingsSetInt(setting::fillListsMatrices, 0);
}

bool loadContest(const Contest &contest, int passes) {
    programsClear();
    const auto add = [](const char *name, const Bytes &image) { return !image.empty() && programAdd(name, image); };
    const bool calls = contest.subprogram != nullptr;
    return add("MAIN", imageOf(contest.words, passes)) && (!calls || add("SUB", imageOf(contest.subprogram, 0)));
}

}  // namespace numalink
