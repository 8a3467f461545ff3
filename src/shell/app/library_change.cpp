#include "shell/app/library_change.h"

#include <QMainWindow>
#include <QTimer>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/event_log.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "settings/recent_libraries.h"
#include "shell/app/draft_offer.h"
#include "shell/app/library_start.h"
#include "shell/app/single_copy.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/library_commands.h"
#include "shell/commands/link_commands.h"
#include "shell/editor/program_view.h"
#include "shell/library/search_window.h"
#include "shell/parts/main_widgets.h"
#include "shell/run/emulator_window.h"
#include "shell/run/moments.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "shell/workbench/debugging.h"
#include "store/care/daily_copies.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// What is known by ids of the library that goes: the queue, texts that were left, the tree with its selection.
void forgetItems() {
    transmitQueueClear();
    forgetKeptPrograms();
    searchLibraryChanged();
    refreshTreeNow();
}

bool mayLeaveLibrary() {
    if (linkConversationRuns()) return failWith(Text::libraryTransferRuns);
    return finishLabelEdit() && leaveViewAtEnd();
}

}  // namespace

bool changeLibraryTo(const std::string &folder, bool mayBegin, ListLibrary list) {
    assertRole(ThreadRole::graphical);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): what libraryFolder gives changes below
    const std::string former = libraryFolder();
    if (isSameFile(folder, former)) {
        tellLibrary();
        return true;
    }
    if (!mayBegin && !fileExists(folder + "storage.dat")) return failWith(Text::storeAbsent, {folder});
    if (!mayLeaveLibrary()) return false;
    stopAnsweringCopies();
    setLibraryFolder(folder);
    if (raiseRunningCopy({.ofThisLibrary = true})) {
        setLibraryFolder(former);
        answerFurtherCopies();
        return false;
    }
    emulatorStop();
    stopLink();
    eventLogRelease();
    closeLibrary();
    forgetItems();
    const bool opened = openLibraryFolder(mayBegin ? WhenEmptied::refuse : WhenEmptied::neverBegin, Text::cancel);
    if (!opened) {
        setLibraryFolder(former);
        if (!openLibraryAtStart()) {
            endProgram();
            return false;
        }
    }
    answerFurtherCopies();
    keepEvents();
    loadBreakpoints();
    connectMoments();
    refreshTreeNow();
    startLink();
    if (!opened) return false;
    if (list == ListLibrary::asUsual) {
        rememberLibrary(former);
        rememberLibrary(folder);
    }
    listRecentLibraries();
    if (!keepDailyCopy()) tellUser(Text::dailyCopyFailed, {dailyCopyFolder()});
    tellLibrary();
    QTimer::singleShot(0, mainWindow, offerDrafts);
    return true;
}

}  // namespace numalink
