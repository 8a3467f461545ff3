#include "shell/run/recording.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <algorithm>
#include <optional>

#include "calculator/charset.h"
#include "emulator/screens/display.h"
#include "exchange/moving_picture.h"
#include "shell/parts/command_states.h"
#include "shell/parts/cursors.h"
#include "shell/parts/save_path.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/surface_view.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int zoomWhenFitted = 3;

struct Recording {
    std::optional<MovieRecorder> recorder;
    QElapsedTimer since;
};
Recording state;

std::uint64_t now() { return static_cast<std::uint64_t>(state.since.elapsed()); }

void save(const MovingPicture &picture, const QString &name) {
    const QString path = askSavePath(Text::filterMovies, QStringLiteral("gif"), name);
    if (path.isEmpty()) return;
    const int zoom = surfaceZoom() == zoomToFit ? zoomWhenFitted : std::clamp(surfaceZoom(), 1, movieZoomLimit);
    userInterface.waitCursor(true);
    const auto bytes = gifFile(picture, zoom);
    userInterface.waitCursor(false);
    if (!bytes) return void(failWith(Text::recordNothing));
    if (!writeUserFile(QFile::encodeName(path).toStdString(), *bytes, false)) return;
    statusLine(StatusPart::item, Text::shareDone, {path.toStdString()});
}

}  // namespace

bool isRecording() { return state.recorder.has_value(); }

void toggleRecording() {
    if (isRecording()) return recordingEnds();
    state.recorder.emplace();
    state.since.start();
    recordDisplay(displayNow());
    commandStatesChanged();
}

void recordDisplay(const Surface &display) {
    if (state.recorder) state.recorder->show(display, now());
}

void recordingEnds() {
    if (!state.recorder) return;
    const MovingPicture picture = state.recorder->finish(now());
    state.recorder.reset();
    commandStatesChanged();
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    const QString name = item ? toQt(utf8FromCalculator(item->name)) : QString();
    // Behind the end of the run, which may be on its way.
    QTimer::singleShot(0, qApp, [picture, name] { save(picture, name); });
}

}  // namespace numalink
