#include "cli/recorded_run.h"

#include "emulator/machine/key_port.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/keypad_picture.h"
#include "exchange/moving_picture.h"
#include "platform/letter_case.h"
#include "store/care/user_files.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::uint64_t keyMilliseconds = 500;   // that a key of a wait leaves for reading what stands there
constexpr std::uint64_t frameMilliseconds = 40;  // of a frame that is counted in statements

// The run thread's while a run is on.
MovieRecorder recorder;
std::uint64_t statementsOfFrame = 0, unitsBefore = 0, waitedBefore = 0, milliseconds = 0;
KeyPort keysBehind;
bool hasKeypad = false;
int heldKey = 0;

// A run without pauses, in the time that it would take: its units of 0.3 ms, or its statements, its waits and its keys.
std::uint64_t now() {
    const std::uint64_t waited = milliseconds + waitMilliseconds - waitedBefore;
    return waited + (statementsOfFrame > 0 ? machine.statementsRun * frameMilliseconds / statementsOfFrame
                                           : (paceUnitsPaid - unitsBefore) * 3 / 10);
}

void show() { recorder.show(hasKeypad ? keypadPicture(displayNow(), heldKey) : displayNow(), now()); }

void hold(int key) {
    if (key == heldKey) return;
    heldKey = key;
    if (hasKeypad) show();
}

// The pass of a wait that finds a key stands for as long as somebody takes to press one.
int takeKey() {
    const int key = keysBehind.waitKey();
    if (key > 0) milliseconds += keyMilliseconds;
    if (key != noKeyAnyMore) hold(key);
    return key;
}

int readKey() {
    const int key = keysBehind.getKey();
    hold(key);
    return key;
}

bool isPng(const std::string &path) { return foldCase(path).ends_with(".png"); }

}  // namespace

void declareRecorded(CLI::App &command, RecordedRun &options) {
    command.add_option("--record", options.file, "Write there what is shown, as a moving picture: *.gif or *.png");
    command.add_option("--record-zoom", options.zoom, "Dots of the picture for a dot of the display, 1 to 8")
        ->check(CLI::Range(1, movieZoomLimit));
    command.add_option("--record-statements", options.statements,
                       "So many statements a frame of 40 ms, in place of the calculator's pace");
    command.add_flag("--keypad", options.keypad, "Record the key pad below the display, with the key that is held");
}

std::string recordFault(const RecordedRun &options) {
    const std::string name = foldCase(options.file);
    const bool isKnown = name.empty() || name.ends_with(".gif") || name.ends_with(".png");
    return isKnown ? std::string() : "--record takes *.gif or *.png";
}

void recordBegin(const RecordedRun &options) {
    if (options.file.empty()) return;
    recorder = options.keypad ? MovieRecorder(padColors) : MovieRecorder();
    hasKeypad = options.keypad;
    heldKey = 0;
    milliseconds = 0;
    statementsOfFrame = options.statements;
    unitsBefore = paceUnitsPaid;
    waitedBefore = waitMilliseconds;
    if (statementsOfFrame == 0) paceCounted = true;
    keysBehind = keyPort;
    keyPort = {.getKey = readKey, .waitKey = takeKey};
    userInterface.displayChanged = show;
}

bool recordEnd(const RecordedRun &options, bool mayReplace) {
    if (options.file.empty()) return true;
    userInterface.displayChanged = userInterfaceSilent.displayChanged;
    const std::uint64_t end = now();
    const MovingPicture picture = recorder.finish(end);
    if (picture.isFull) tellUser(Text::recordFull, {std::to_string(end / 1000) + " s"});
    const auto bytes = isPng(options.file) ? apngFile(picture, options.zoom) : gifFile(picture, options.zoom);
    if (!bytes) return failWith(Text::recordNothing);
    return writeUserFile(options.file, *bytes, mayReplace);
}

}  // namespace numalink
