#include "shell/app/start_up.h"

#include <QApplication>
#include <QMainWindow>
#include <QThread>
#include <QTimer>
#include <cstdio>
#include <filesystem>

#include "drawing/dot_fonts.h"
#include "link/wire_trace.h"
#include "platform/event_log.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "shell/app/draft_offer.h"
#include "shell/app/first_start.h"
#include "shell/app/library_change.h"
#include "shell/app/library_start.h"
#include "shell/app/message_boxes.h"
#include "shell/app/qt_language.h"
#include "shell/app/single_copy.h"
#include "shell/app/stop_signals.h"
#include "shell/app/tour.h"
#include "shell/app/tray.h"
#include "shell/app/window_events.h"
#include "shell/app/window_place.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/library_commands.h"
#include "shell/commands/link_commands.h"
#include "shell/commands/menus.h"
#include "shell/dialogs/about_box.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/editor/program_view.h"
#include "shell/help/manual_window.h"
#include "shell/library/search_window.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/pane_sizes.h"
#include "shell/parts/program_colors.h"
#include "shell/run/emulator_window.h"
#include "shell/run/moments.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/tree_filter.h"
#include "shell/tree/tree_mouse.h"
#include "shell/views/item_views.h"
#include "shell/workbench/code_panes.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/panes.h"
#include "store/care/daily_copies.h"
#include "store/item_store.h"
#include "telling/language_table.h"
#include "telling/tell_user.h"
#include "text/token_table.h"

namespace numalink {

namespace {

struct StartStep {
    const char *name;
    bool (*run)();
    bool stops;  // the program ends when it gives false
};

bool done(void (*work)()) {
    work();
    return true;
}

// Once the window is alive: the questions must not hold up the start.
void offerDraftsSoon() { QTimer::singleShot(0, mainWindow, offerDrafts); }

struct Start {
    bool settingsRead = true;
    bool isFirstUse = false;     // neither a library nor settings were there
    bool lacksSettings = false;  // there were none
    bool shutting = false;
    StartWish wish = {};
};
Start state;

// Once: from now on there are a library and settings.
void askFirstStartSoon() {
    if (state.isFirstUse && state.wish.asksWhenNew) QTimer::singleShot(0, mainWindow, askFirstStart);
}

void openFilesSoon() {
    if (!state.wish.files.empty()) QTimer::singleShot(0, mainWindow, [] { importDropped(state.wish.files); });
}

// A library that isn't there, or an empty file, as a full disk leaves it, and no copies of one.
bool isNoLibrary(const std::string &path) {
    std::error_code missing;
    return (std::filesystem::file_size(path, missing) == 0 || missing) && !storeIsEmptied();
}

bool loadSettings() {
    state.lacksSettings = !fileExists(settingsFolder() + "settings.xml");
    state.isFirstUse = state.lacksSettings && isNoLibrary(libraryFolder() + "storage.dat");
    return settingsLoad();
}

// Programs show their colours from the start, where nobody has chosen otherwise, and no port is opened. Beside a
// library that was there already the settings need not be kept: it may lie where nothing can be written.
bool beginFirstUse() {
    if (!state.lacksSettings) return true;
    settingsSetValue(setting::comPort, setting::portOff);
    const ColorScheme &scheme = schemeOn(mainWindow->palette().color(QPalette::Base));
    for (std::size_t i = 0; i < scheme.size(); i++)
        settingsSetColour(programColorKeys[i], settingColor(QColor::fromRgb(scheme[i])));
    settingsSetInt(setting::syntaxHighlighting, 1);
    return settingsSave() || !state.isFirstUse || failWith(Text::settingsNotSaved);
}

// What could be read is in force; the rest has its default, and the next OK of the settings dialog writes it so.
bool tellSettings() {
    tellUser(Text::fileFailed, {settingsFolder() + "settings.xml"});
    return true;
}

bool leftToRunningCopy() {
    if (!raiseRunningCopy(state.wish)) return false;
    if (!state.wish.trace.empty()) std::fputs("numalink: the copy that runs keeps no trace for this start\n", stderr);
    return true;
}

bool startTrace() {
    if (state.wish.trace.empty()) return true;
    const Text cause = wireTraceStart(state.wish.trace);
    return cause == Text::none || failWith(cause, {state.wish.trace});
}

bool showFirst() {
    mainWindow->show();
    showSplash();
    return true;
}

// In this order: wording ahead of windows, the window ahead of any box, the library ahead of the tree.
constexpr StartStep startSteps[] = {
    {"running copy", [] { return !leftToRunningCopy(); }, true},
    {"settings", [] { return state.settingsRead = loadSettings(); }, false},
    {"languages", [] { return languageLoadChosen(settingsValue(setting::language)) == 1; }, false},
    {"language of Qt", [] { return done(chooseQtLanguage); }, false},
    {"main window", [] { return done(makeMainWindow); }, false},
    {"recent libraries", [] { return done(listRecentLibraries); }, false},
    {"menus", [] { return done(buildMenus); }, false},
    {"boxes and status bar", [] { return done(installUserInterface); }, false},
    {"widgets", [] { return done(makeClientWidgets); }, false},
    {"editor", [] { return done(makeProgramEdit); }, false},
    {"toolbar", [] { return done(buildToolbar); }, false},
    {"views", [] { return done(connectViews); }, false},
    {"emulator", [] { return done(makeEmulatorWindow); }, false},
    {"workbench", [] { return done(makePanes); }, false},
    {"panes of the editor", [] { return done(makeCodePanes); }, false},
    {"its bar", [] { return done(buildDebugBar); }, false},
    {"window events", [] { return done(connectWindow); }, false},
    {"its place", [] { return done(restoreWindowPlace); }, false},
    {"window on screen", showFirst, false},
    {"faulty settings told", [] { return state.settingsRead || tellSettings(); }, false},
    {"library", openLibraryAtStart, true},
    {"events", [] { return done(keepEvents); }, false},
    {"first settings", beginFirstUse, false},
    {"daily copy", [] { return keepDailyCopy() || failWith(Text::dailyCopyFailed, {dailyCopyFolder()}); }, false},
    {"moments", [] { return done(connectMoments); }, false},
    {"further copies", [] { return done(answerFurtherCopies); }, false},
    {"tree", [] { return done(connectTree); }, false},
    {"notification area", [] { return done(addTrayIcon); }, false},
    {"tokens", tokenTableLoad, false},
    {"large font", loadLargeFont, false},
    {"small font", loadSmallFont, false},
    {"breakpoints", [] { return done(connectDebugging); }, false},  // their conditions are of tokens
    {"trace of the wire", startTrace, false},
    {"link", [] { return done(startLink); }, false},
    {"signals", [] { return done([] { watchStopSignals(shutDownAtOnce); }); }, false},
    {"drafts", [] { return done(offerDraftsSoon); }, false},
    {"first start", [] { return done(askFirstStartSoon); }, false},
    {"files", [] { return done(openFilesSoon); }, false},
};

void closeLibraryAndQuit() {
    state.shutting = true;
    emulatorStop();  // beside the program it doesn't end with the view
    stopLink();
    if (!wireTraceEnd()) std::fputs("numalink: the trace isn't whole: it could not be written to its end\n", stderr);
    eventLogRelease();
    rememberWindowPlace();
    closeLibrary();
    forgetTour();
    removeTrayIcon();
    stopAnsweringCopies();
    forgetStopSignals();
    // Not quit(): that asks every window first, and this one only ever closes by shutDown.
    if (QThread::currentThread()->loopLevel() > 0) QCoreApplication::exit(0);
}

}  // namespace

bool startUp(const StartWish &wish) {
    threadRole = ThreadRole::graphical;
    state = {.wish = wish};
    endProgram = shutDown;
    changeLibrary = [](const std::string &folder, bool mayBegin) { return changeLibraryTo(folder, mayBegin); };
    beginTour = startTour;
    openManual = showManual;
    QApplication::setQuitOnLastWindowClosed(false);
    for (const StartStep &step : startSteps) {
        if (!step.run() && step.stops) {
            closeLibrary();
            tearDown();
            return false;
        }
    }
    return true;
}

bool shuttingDown() { return state.shutting; }

void shutDown() {
    if (state.shutting) return;
    if (raiseOpenDialog()) return;
    if (finishLabelEdit() && leaveViewAtEnd()) closeLibraryAndQuit();
}

void shutDownAtOnce() {
    if (state.shutting) return;
    closeOpenWindows();
    finishLabelEditAtOnce();
    leaveViewAtOnce();
    closeLibraryAndQuit();
}

void tearDown() {
    forgetCopies();
    removeTrayIcon();
    forgetStopSignals();
    removeUserInterface();
    forgetMenus();
    forgetLayout();
    forgetFileCommands();
    forgetLinkCommands();
    forgetExport();
    forgetTree();
    forgetViews();
    forgetDebugging();
    forgetMoments();
    forgetCodePanes();
    forgetPanes();
    forgetSearchWindow();
    forgetTreeFilter();
    forgetPaneSizes();
    forgetEmulatorWindow();
    destroyWidgets();
}

}  // namespace numalink
