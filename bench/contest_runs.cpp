#include "bench/contest_runs.h"

#include "emulator/machine/programs.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

Bytes imageOf(std::string words, int passes) {
    for (std::size_t at = words.find('#'); at != words.npos; at = words.find('#', at))
        words.replace(at, 1, std::to_string(passes));
    Bytes image = {':'};
    tokensFromWords(words, image);
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
    const bool calls = contest.subprogram != nullptr;
    return programAdd("MAIN", imageOf(contest.words, passes)) &&
           (!calls || programAdd("SUB", imageOf(contest.subprogram, 0)));
}

}  // namespace numalink
