#include "shell/run/recording.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QTimer>
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "calculator/charset.h"
#include "emulator/run/key_recording.h"
#include "emulator/screens/display.h"
#include "emulator/screens/keypad_picture.h"
#include "exchange/moving_picture.h"
#include "settings/settings_store.h"
#include "shell/parts/command_states.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/long_work.h"
#include "shell/parts/save_path.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/emulator_window.h"
#include "shell/run/run_marks.h"
#include "shell/views/bitmap_export.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct Recording {
    std::optional<MovieRecorder> recorder;
    std::unique_ptr<GifWriter> gif;  // of all frames but the last, whose length isn't known yet
    std::size_t framesWritten = 0;
    int zoom = 1;
    bool hasKeypad = false;
    std::uint64_t fullAt = 0;  // milliseconds; 0: it isn't full
    QElapsedTimer since;
};
Recording state;

// What was recorded, on its way into a file.
struct Recorded {
    MovingPicture picture;
    std::optional<Bytes> gif;
    int zoom = 1;
    QString name, length;
    std::uint64_t fullAt = 0;
};

std::uint64_t now() { return static_cast<std::uint64_t>(state.since.elapsed()); }

QString lengthText(std::uint64_t milliseconds) {
    const std::uint64_t seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void writeFrames() {
    const MovingPicture &picture = state.recorder->soFar();
    if (picture.frames.empty()) return;
    if (state.gif == nullptr) state.gif = std::make_unique<GifWriter>(picture, state.zoom);
    for (; state.framesWritten + 1 < picture.frames.size(); state.framesWritten++)
        state.gif->add(picture.frames[state.framesWritten]);
}

void show(const Surface &display) {
    state.recorder->show(state.hasKeypad ? keypadPicture(display, heldPadKey()) : display, now());
    writeFrames();
    if (state.fullAt == 0 && state.recorder->soFar().isFull) state.fullAt = now();
}

// Nothing when it was cancelled.
std::optional<Bytes> apngOf(const Recorded &recorded) {
    LongWork work(Text::recordWriting, recorded.picture.frames.size());
    return apngFile(recorded.picture, recorded.zoom, [&](std::size_t frame) { return work.step(frame); });
}

bool write(const Recorded &recorded, const QString &path) {
    const bool isPng = path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive);
    const std::string target = QFile::encodeName(path).toStdString();
    const std::optional<Bytes> png = isPng ? apngOf(recorded) : std::nullopt;
    const std::optional<Bytes> &bytes = isPng ? png : recorded.gif;
    if (!bytes || !writeUserFile(target, *bytes, false)) return false;
    statusLine(StatusPart::item, Text::shareDone, {target});
    return true;
}

bool asksToDrop(const Recorded &recorded) {
    const std::vector<std::string> length{recorded.length.toStdString()};
    return tellComposed(Text::recordDrop, wording(Text::recordDrop, length), length, BoxIcon::warning,
                        BoxButtons::okCancel) == Answer::ok;
}

// A file that couldn't be written, or none chosen, isn't the end of the recording: another one is asked for.
void save(const Recorded &recorded) {
    constexpr int mostQuestions = 5;
    if (!recorded.gif) return void(failWith(Text::recordNothing));
    if (recorded.fullAt != 0) tellUser(Text::recordFull, {lengthText(recorded.fullAt).toStdString()});
    for (int i = 0; i < mostQuestions && !boxesSilenced(); i++) {
        const QString path = askSavePath({{Text::filterMovies, "gif"}, {Text::filterMovies, "png"}}, recorded.name);
        if (!path.isEmpty() && write(recorded, path)) return;
        if (path.isEmpty() && asksToDrop(recorded)) break;
    }
    statusLine(StatusPart::item, Text::recordDropped);
}

}  // namespace

bool isRecording() { return state.recorder.has_value(); }

QString recordingWords() {
    const std::size_t size = state.gif == nullptr ? 0 : state.gif->size();
    const QString kilobytes = QLocale().toString(static_cast<qulonglong>((size + 1023) / 1024));
    return textOf(Text::recordingMark, {lengthText(now()).toStdString(), kilobytes.toStdString()});
}

bool recordsKeypad() { return settingsInt(setting::recordKeypad) != 0; }

void toggleRecordsKeypad() {
    settingsSetInt(setting::recordKeypad, recordsKeypad() ? 0 : 1);
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
    commandStatesChanged();
}

void toggleRecording() {
    if (isRecording()) return recordingEnds();
    state = {};
    state.hasKeypad = recordsKeypad();
    state.zoom = std::clamp(zoomOfPictures(), 1, movieZoomLimit);
    state.hasKeypad ? state.recorder.emplace(padColors) : state.recorder.emplace();
    state.since.start();
    show(displayNow());
    showRunMarks();
    commandStatesChanged();
}

void recordDisplay(const Surface &display) {
    if (state.recorder) show(display);
}

void recordHeldKey() {
    if (state.recorder && state.hasKeypad) show(displayNow());
}

void recordingEnds() {
    if (!state.recorder) return;
    Recorded recorded{.picture = {}, .gif = {}, .zoom = state.zoom, .name = {}, .length = lengthText(now())};
    recorded.fullAt = state.fullAt;
    recorded.picture = state.recorder->finish(now());
    if (state.gif == nullptr) state.gif = std::make_unique<GifWriter>(recorded.picture, state.zoom);
    for (; state.framesWritten < recorded.picture.frames.size(); state.framesWritten++)
        state.gif->add(recorded.picture.frames[state.framesWritten]);
    recorded.gif = state.gif->finish();
    state = {};
    showRunMarks();
    commandStatesChanged();
    if (const auto item = storeReadEntry(emulatedItem())) recorded.name = toQt(utf8FromCalculator(item->name));
    // Behind the end of the run, which may be on its way.
    QTimer::singleShot(0, qApp, [taken = std::make_shared<Recorded>(std::move(recorded))] { save(*taken); });
}

}  // namespace numalink
