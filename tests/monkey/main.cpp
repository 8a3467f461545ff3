// numalink-monkey [--seed N] [--actions N | --seconds S]: starts the program in a scratch folder, lets a monkey at it,
// ends it while things run, and starts it again. What fails aborts with the seed and the last actions.
#include <CLI/CLI.hpp>
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "link/link_thread.h"
#include "monkey/action_log.h"
#include "monkey/library_watch.h"
#include "monkey/monkey.h"
#include "platform/program_folder.h"
#include "platform/serial_line.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"

namespace {

using namespace monkey;

constexpr std::size_t itemsLimit = 300;  // a larger library is left for a new one

// Nothing but the monkey's own port is ever opened, whatever the settings come to name.
numalink::LineOpening openOwnPort(const std::string &name, unsigned baud) {
    if (name != theMonkey.scratch + "port") {
        numalink::LineOpening opening;
        opening.fault = numalink::LineFault::missing;
        opening.path = name;
        return opening;
    }
    return numalink::systemSerialLine.open(name, baud);
}

// Whatever the program or Qt keep for a user lies in the scratch folder, and no other program is found.
void leaveUserAlone(const std::string &scratch) {
    for (const char *name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        ::setenv(name, scratch.c_str(), 1);
    ::setenv("PATH", (scratch + "none").c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    std::filesystem::copy(NUMALINK_SAMPLES, scratch + "samples", std::filesystem::copy_options::recursive);
    std::filesystem::create_directory(scratch + "out");
    std::filesystem::current_path(scratch + "out");
}

void newLibrary(int number) {
    const std::string folder = theMonkey.scratch + "library" + std::to_string(number);
    std::filesystem::create_directory(folder);
    numalink::setLibraryFolder(folder);
    numalink::setSettingsFolder(theMonkey.scratch);  // the same ones, whatever library it opens
    numalink::settingsLoad();
    numalink::settingsSetValue(numalink::setting::comPort, theMonkey.scratch + "port");
    numalink::settingsSave();
}

std::size_t itemsInLibrary() {
    std::error_code absent;
    if (!std::filesystem::exists(numalink::libraryFolder() + "storage.dat", absent)) return 0;
    checkClosedLibrary();
    return numalink::storeOpen() ? numalink::storeListItems().size() : itemsLimit;
}

int liveOften() {
    int lives = 0;
    for (newLibrary(0); !allDone(); lives++) {
        if (!numalink::startUp()) fail("The program doesn't start");
        if (!numalink::shuttingDown()) {
            beginLife();
            QApplication::exec();
        }
        endLife();
        if (!numalink::shuttingDown()) fail("The event loop ended without the program");
        numalink::tearDown();
        checkWindowsGone();
        const std::size_t items = itemsInLibrary();
        numalink::storeClose();
        if (items >= itemsLimit) newLibrary(lives + 1);
    }
    return lives;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): it ends the program with its wording
int main(int argc, char **argv) {
    CLI::App options("Random keys and clicks at the real window");
    options.add_option("--seed", theMonkey.seed);
    auto *length = options.add_option_group("how long")->require_option(1);
    length->add_option("--actions", theMonkey.actionLimit);
    length->add_option("--seconds", theMonkey.secondsLimit);
    CLI11_PARSE(options, argc, argv);
    const numalink::ScratchFolder folder;
    theMonkey.scratch = folder.path;
    leaveUserAlone(folder.path);
    logAction(0, "The seed is %llu", static_cast<unsigned long long>(theMonkey.seed));
    numalink::serialLine.open = openOwnPort;
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    LinePartner partner(folder.path + "port", theMonkey.seed);
    theMonkey.partner = &partner;
    beginActing();
    const int lives = liveOften();
    std::printf("seed %llu: %llu actions in %d lives; the calculator sent %llu items and received %llu\n",
                static_cast<unsigned long long>(theMonkey.seed), static_cast<unsigned long long>(theMonkey.actions),
                lives, static_cast<unsigned long long>(partner.sent),
                static_cast<unsigned long long>(partner.received));
    return 0;
}
