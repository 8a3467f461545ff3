#include "shell/run/emulator_keys.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QKeySequence>
#include <QTimer>
#include <chrono>
#include <optional>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "shell/run/emulator_window.h"

namespace numalink {

namespace {

constexpr qint64 shortestPress = 60;  // milliseconds: a wait of a run looks at the key every 50 at the longest

struct EmulatorKeys {
    QElapsedTimer sincePress;
    unsigned presses = 0;  // counted, so that the late release of a tap ends no later press
};
EmulatorKeys state;

struct NamedKey {
    int key;
    KeyboardKey name;
};

constexpr NamedKey namedKeys[] = {
    {Qt::Key_Tab, KeyboardKey::tab},
    {Qt::Key_Backtab, KeyboardKey::tab},
    {Qt::Key_Return, KeyboardKey::enter},
    {Qt::Key_Enter, KeyboardKey::enter},
    {Qt::Key_Shift, KeyboardKey::shift},
    {Qt::Key_Space, KeyboardKey::space},
    {Qt::Key_Left, KeyboardKey::left},
    {Qt::Key_Up, KeyboardKey::up},
    {Qt::Key_Right, KeyboardKey::right},
    {Qt::Key_Down, KeyboardKey::down},
    {Qt::Key_BracketLeft, KeyboardKey::openBracket},
    {Qt::Key_ParenLeft, KeyboardKey::openParenthesis},
    {Qt::Key_ParenRight, KeyboardKey::closeParenthesis},
    {Qt::Key_Comma, KeyboardKey::comma},
    {Qt::Key_Period, KeyboardKey::point},
    {Qt::Key_Asterisk, KeyboardKey::multiply},
    {Qt::Key_Slash, KeyboardKey::divide},
    {Qt::Key_Plus, KeyboardKey::plus},
    {Qt::Key_Minus, KeyboardKey::minus},
    {Qt::Key_Backspace, KeyboardKey::erase},
    {Qt::Key_Delete, KeyboardKey::erase},
};

// The number pad's key of the point, whatever the layout and the Num Lock make of it.
constexpr NamedKey padKeys[] = {{Qt::Key_Comma, KeyboardKey::point}, {Qt::Key_Delete, KeyboardKey::point}};

// The letters of the three rows of a keyboard by the numbers that X gives their places: q to p, a to l, z to m.
struct LetterRow {
    quint32 firstCode;
    const char *letters;
};
constexpr LetterRow letterRows[] = {{24, "qwertyuiop"}, {38, "asdfghjkl"}, {52, "zxcvbnm"}};

// Keys whose sign says more than their name.
struct KeySign {
    int key;
    const char *sign;
};
constexpr KeySign keySigns[] = {
    {Qt::Key_Left, "←"}, {Qt::Key_Up, "↑"}, {Qt::Key_Right, "→"}, {Qt::Key_Down, "↓"}, {Qt::Key_Backspace, "⌫"}};

QString keyName(int key) {
    for (const KeySign &row : keySigns)
        if (row.key == key) return QString::fromUtf8(row.sign);
    return QKeySequence(key).toString(QKeySequence::NativeText);
}

KeyboardKey offsetFrom(KeyboardKey first, int steps) {
    return static_cast<KeyboardKey>(static_cast<int>(first) + steps);
}

template <std::size_t count>
std::optional<KeyboardKey> foundIn(const NamedKey (&keys)[count], int key) {
    for (const NamedKey &row : keys)
        if (row.key == key) return row.name;
    return std::nullopt;
}

std::optional<KeyboardKey> letterByPlace(quint32 scanCode) {
    for (const LetterRow &row : letterRows) {
        const quint32 place = scanCode - row.firstCode;
        if (scanCode >= row.firstCode && place < std::char_traits<char>::length(row.letters))
            return offsetFrom(KeyboardKey::a, row.letters[place] - 'a');
    }
    return std::nullopt;
}

std::optional<KeyboardKey> keyboardKeyOf(const QKeyEvent &event) {
    const int key = event.key();
    if (event.modifiers() & Qt::KeypadModifier)
        if (const auto pad = foundIn(padKeys, key)) return pad;
    if (const auto named = foundIn(namedKeys, key)) return named;
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return offsetFrom(KeyboardKey::digit0, key - Qt::Key_0);
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return offsetFrom(KeyboardKey::a, key - Qt::Key_A);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F6) return offsetFrom(KeyboardKey::f1, key - Qt::Key_F1);
    const bool ascii = key < 0x80;
    return ascii ? std::nullopt : letterByPlace(event.nativeScanCode());
}

}  // namespace

QStringList keyboardNamesOf(int code) {
    QStringList names;
    const auto add = [&](KeyboardKey key, int qtKey) {
        const QString name = keyCodeOf(key) == code ? keyName(qtKey) : QString();
        if (!name.isEmpty() && !names.contains(name)) names << name;
    };
    for (int i = 0; i < 26; i++) add(offsetFrom(KeyboardKey::a, i), Qt::Key_A + i);
    for (int i = 0; i < 10; i++) add(offsetFrom(KeyboardKey::digit0, i), Qt::Key_0 + i);
    for (int i = 0; i < 6; i++) add(offsetFrom(KeyboardKey::f1, i), Qt::Key_F1 + i);
    for (const NamedKey &row : namedKeys)
        if (row.key != Qt::Key_Backtab && row.key != Qt::Key_Enter) add(row.name, row.key);
    if (code == stopKey) names << keyName(Qt::Key_Escape) << keyName(Qt::Key_F7);
    return names;
}

bool isMenuKey(const QKeyEvent &event) {
    const bool isFunctionKey = event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F12;
    if (event.key() == Qt::Key_F12 || (isFunctionKey && (event.modifiers() & Qt::ControlModifier) != 0)) return true;
    return event.key() == Qt::Key_Alt || event.key() == Qt::Key_F10 || (event.modifiers() & Qt::AltModifier) != 0;
}

void pressKey(int code) {
    keyCode = code;
    state.sincePress.start();
    state.presses++;
}

void releaseKey() {
    const qint64 held = state.sincePress.isValid() ? state.sincePress.elapsed() : shortestPress;
    if (held >= shortestPress) {
        keyCode = 0;
        return;
    }
    const auto rest = std::chrono::milliseconds(shortestPress - held);
    QTimer::singleShot(rest, qApp, [press = state.presses] {
        if (press == state.presses) keyCode = 0;
    });
}

void forgetEmulatorKeys() { state = {}; }

bool emulatorKeyDown(const QKeyEvent &event) {
    if (event.key() == Qt::Key_Escape || event.key() == Qt::Key_F7) {
        // Once its event has returned: the stop opens the program's view and moves the focus.
        if (!event.isAutoRepeat()) {
            QTimer::singleShot(0, [] {
                if (emulatorRunning) emulatorToggle();
            });
        }
        return true;
    }
    const std::optional<KeyboardKey> key = keyboardKeyOf(event);
    if (!key) return true;
    event.isAutoRepeat() ? void(keyCode = keyCodeOf(*key)) : pressKey(keyCodeOf(*key));
    return true;
}

bool emulatorKeyUp(const QKeyEvent &event) {
    if (!event.isAutoRepeat()) releaseKey();
    return true;
}

}  // namespace numalink
