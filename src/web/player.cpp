// What a page calls: a program is loaded, run, keyed into and shown. All texts are UTF-8. A function that takes bytes
// finds them at playerBuffer; one that gives a text leaves it there too, and returns its size. While playerRun or
// playerScript sleeps, all others may be called but these two and playerLoad.
#include <algorithm>

#include "calculator/charset.h"
#include "drawing/dot_fonts.h"
#include "emulator/machine/keypad.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/run_loading.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/text_screen.h"
#include "platform/clock.h"
#include "settings/settings_store.h"
#include "telling/user_interface.h"
#include "text/token_table.h"
#include "text/view_runs.h"
#include "web/player.h"
#include "web/store_in_memory.h"

#define PLAYER_EXPORT(name) extern "C" [[clang::export_name(#name)]]

namespace numalink {

namespace {

Bytes buffer;
std::vector<std::uint32_t> pixels(static_cast<std::size_t>(displayWidth *displayHeight));
std::uint64_t displaySeen = 0;
std::string boxText;

std::string_view textInBuffer(int size) { return {reinterpret_cast<const char *>(buffer.data()), std::size_t(size)}; }

int giveText(std::string_view text) {
    buffer.assign(text.begin(), text.end());
    return static_cast<int>(buffer.size());
}

void appendQuoted(std::string &json, std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    json += '"';
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20) {
            json += std::string("\\u00") + digits[c >> 4 & 15] + digits[c & 15];
        } else {
            if (c == '"' || c == '\\') json += '\\';
            json += c;
        }
    }
    json += '"';
}

// In the order in which a canvas has red, green, blue and opacity.
void showDots(const Surface &surface) {
    std::ranges::transform(surface.dots, pixels.begin(), [](Color color) {
        return 0xFF000000 | (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
    });
}

void appendLine(std::string &json, const ViewLine &line) {
    json += json.ends_with('[') ? "[" : ",[";
    bool isFirst = true;
    for (const ColorRun &run : colorRuns(line, readLine(line, false))) {
        json += (isFirst ? "[" : ",[") + std::to_string(static_cast<int>(run.runClass)) + ",";
        appendQuoted(json, utf8FromCalculator(line.text.substr(run.from, run.size)));
        json += "]";
        isFirst = false;
    }
    json += "]";
}

// Key codes parted by commas.
KeyRuns codesOf(std::string_view text) {
    KeyRuns codes;
    for (int code = 0; const char c : text) {
        if (c == ',') {
            codes.emplace_back(code);
            code = 0;
        } else {
            code = code * 10 + (c - '0');
        }
    }
    return codes;
}

RunEnd runPage(const RunScript *script) {
    const auto load = [] { return loadRun(firstPageItem, itemsBeside(firstPageItem)); };
    if (script != nullptr) return runScripted(*script, load).ended;
    machineStart();
    if (!load() || !runStart()) return RunEnd::nothingToRun;
    runWait();
    return runEnded();
}

Answer keepBox(const Box &box) {
    boxText += (boxText.empty() ? "" : "\n") + box.body;
    return Answer::ok;
}

}  // namespace

// Where a page that unwinds the stack of a sleeper keeps it: its first free byte, its end, and then the room.
PLAYER_EXPORT(playerStack) void *playerStack() {
    static struct {
        std::uint8_t *next, *end;
        std::uint8_t room[256 * 1024];
    } stack;
    stack.next = stack.room;
    stack.end = stack.room + sizeof stack.room;
    return &stack;
}

PLAYER_EXPORT(playerBuffer) std::uint8_t *playerBuffer(int size) {
    if (size > static_cast<int>(buffer.size())) buffer.resize(static_cast<std::size_t>(size));
    return buffer.data();
}

// Once, ahead of all others: false when a part of the player is damaged.
PLAYER_EXPORT(playerBegin) bool playerBegin() {
    userInterface.messageBox = keepBox;
    settingsLoad();
    return tokenTableLoad() && loadLargeFont() && loadSmallFont();
}

PLAYER_EXPORT(playerText) void playerText(int number, int size) {
    setPageText(number, std::string(textInBuffer(size)));
}

// KEY=VALUE of the emulator's settings.
PLAYER_EXPORT(playerSetting) bool playerSetting(int size) {
    const std::string_view assignment = textInBuffer(size);
    const std::size_t equals = assignment.find('=');
    if (equals == std::string_view::npos) return false;
    return settingsSetValue("Numalink.Settings.Emulator." + std::string(assignment.substr(0, equals)),
                            assignment.substr(equals + 1));
}

// The items of a bundle; false for what is none, or holds no program.
PLAYER_EXPORT(playerLoad) bool playerLoad(int size) {
    auto items = decodeBundle(ByteView(buffer).first(static_cast<std::size_t>(size)));
    if (!items || items->empty() || items->front().kind != kind::program) return false;
    setPageItems(std::move(*items));
    return true;
}

// Runs the first program until it ends by itself or is stopped; sleeps again and again meanwhile. The end as a RunEnd.
PLAYER_EXPORT(playerRun) int playerRun() {
    boxText.clear();
    return static_cast<int>(runPage(nullptr));
}

// For tests: the same at full speed with keys that are known, each code followed by a comma: those of the waits, a
// semicolon, those of GetKey. At most so many statements, 0 for no limit.
PLAYER_EXPORT(playerScript) int playerScript(int size, unsigned statements) {
    const std::string_view text = textInBuffer(size);
    const std::size_t semicolon = text.find(';');
    if (semicolon == std::string_view::npos) return static_cast<int>(RunEnd::nothingToRun);
    RunScript script{.keys = codesOf(text.substr(0, semicolon)),
                     .getKeys = codesOf(text.substr(semicolon + 1)),
                     .statementLimit = statements};
    boxText.clear();
    clockPort.sleepMilliseconds = [](std::uint64_t) {};
    const RunEnd end = runPage(&script);
    clockPort = systemClock;
    return static_cast<int>(end);
}

// Statements that the last run has done.
PLAYER_EXPORT(playerStatements) double playerStatements() { return static_cast<double>(machine.statementsRun); }

PLAYER_EXPORT(playerStop) void playerStop() {
    emulatorRunning = false;
    runWake();
}

PLAYER_EXPORT(playerKey) void playerKey(int code) {
    keyCode = code;
    runWake();
}

PLAYER_EXPORT(playerFullSpeed) void playerFullSpeed(bool on) {
    settingsSetInt(setting::fullSpeed, on ? 1 : 0);
    fullSpeed = on;
}

PLAYER_EXPORT(playerPixels) std::uint32_t *playerPixels() { return pixels.data(); }

// Whether there is a new picture at playerPixels.
PLAYER_EXPORT(playerTakeDisplay) bool playerTakeDisplay() {
    Surface copy(displayWidth, displayHeight);
    if (!displayCopy(copy, displaySeen)) return false;
    showDots(copy);
    return true;
}

// For tests: another of the screens at playerPixels.
PLAYER_EXPORT(playerTakeScreen) void playerTakeScreen(int mode) {
    displaySeen = 0;
    showDots(mode == graphMode ? graphScreen() : mode == matrixMode ? matrixScreen() : textScreen());
}

PLAYER_EXPORT(playerDisplayText) int playerDisplayText() { return giveText(displayText()); }
PLAYER_EXPORT(playerBoxes) int playerBoxes() { return giveText(boxText); }

// [[code, shape, x, y, width, height, legend, shift, alpha], ...]
PLAYER_EXPORT(playerKeypad) int playerKeypad() {
    std::string json = "[";
    for (const KeyFace &face : keyFaces()) {
        const KeySize size = keySize(face.shape);
        json += json.size() > 1 ? ",[" : "[";
        for (const int number : {face.code, static_cast<int>(face.shape), face.x, face.y, size.width, size.height})
            json += std::to_string(number) + ",";
        appendQuoted(json, face.legend);
        json += ",";
        appendQuoted(json, face.shift);
        json += ",";
        appendQuoted(json, face.alpha);
        json += "]";
    }
    return giveText(json + "]");
}

PLAYER_EXPORT(playerKeyCodeOf) int playerKeyCodeOf(int key) {
    return key >= 0 && key < static_cast<int>(KeyboardKey::count) ? keyCodeOf(static_cast<KeyboardKey>(key)) : 0;
}

PLAYER_EXPORT(playerItemCount) int playerItemCount() { return static_cast<int>(pageItems().size()); }

// The name of an item, and the lines of a program, each as runs of a class and a text; "[]" for what is no program.
PLAYER_EXPORT(playerItemName) int playerItemName(unsigned index) {
    return giveText(index < pageItems().size() ? utf8FromCalculator(pageItems()[index].name) : std::string());
}
PLAYER_EXPORT(playerItemLines) int playerItemLines(unsigned index) {
    std::string json = "[";
    if (index < pageItems().size() && isTextKind(pageItems()[index].kind)) {
        for (const ViewLine &line : viewLines(pageItems()[index].data)) appendLine(json, line);
    }
    return giveText(json + "]");
}

}  // namespace numalink
