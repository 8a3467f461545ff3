#include "shell/run/key_assignments.h"

#include <QKeyEvent>
#include <QKeySequence>
#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

#include "emulator/machine/keypad.h"
#include "settings/settings_store.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr BoardKey leftOfOne = Qt::Key_QuoteLeft;
constexpr quint32 leftOfOnePlace = 49;  // as X numbers the places of a keyboard
constexpr int settingCount = 6;         // a setting has too little room for all
constexpr std::size_t longestEntry = 11;
constexpr std::size_t entriesASetting = assignmentLimit / settingCount;
static_assert(entriesASetting * longestEntry <= settingsTextLimit);

Assignments current;

struct NamedKey {
    int key;
    KeyboardKey name;
};

// The usual keys but for letters, digits and F1 to F6, which stand in rows of their own.
constexpr NamedKey namedKeys[] = {
    {Qt::Key_Tab, KeyboardKey::tab},
    {Qt::Key_Return, KeyboardKey::enter},
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

// Keys that are another one of the table.
struct SameKey {
    int key;
    BoardKey same;
};
constexpr SameKey sameKeys[] = {{Qt::Key_Backtab, Qt::Key_Tab}, {Qt::Key_Enter, Qt::Key_Return}};
// The number pad's key of the point, whatever the layout and the Num Lock make of it.
constexpr SameKey padKeys[] = {{Qt::Key_Comma, Qt::Key_Period}, {Qt::Key_Delete, Qt::Key_Period}};

// The letters of the three rows of a keyboard by the numbers that X gives their places: q to p, a to l, z to m.
struct LetterRow {
    quint32 firstCode;
    const char *letters;
};
constexpr LetterRow letterRows[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

// Keys whose sign says more than their name.
struct KeySign {
    int key;
    const char *sign;
};
constexpr KeySign keySigns[] = {
    {Qt::Key_Left, "←"}, {Qt::Key_Up, "↑"}, {Qt::Key_Right, "→"}, {Qt::Key_Down, "↓"}, {Qt::Key_Backspace, "⌫"}};

constexpr int keptKeys[] = {Qt::Key_Escape,   Qt::Key_Alt,     Qt::Key_AltGr,      Qt::Key_Control,    Qt::Key_Meta,
                            Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_ScrollLock, Qt::Key_Menu,       Qt::Key_Super_L,
                            Qt::Key_Super_R,  Qt::Key_unknown, Qt::Key_Multi_key,  Qt::Key_Mode_switch};

template <std::size_t count>
std::optional<BoardKey> sameIn(const SameKey (&keys)[count], int key) {
    for (const SameKey &row : keys)
        if (row.key == key) return row.same;
    return std::nullopt;
}

std::optional<BoardKey> letterByPlace(quint32 scanCode) {
    for (const LetterRow &row : letterRows) {
        const quint32 place = scanCode - row.firstCode;
        if (scanCode >= row.firstCode && place < std::char_traits<char>::length(row.letters)) return row.letters[place];
    }
    return std::nullopt;
}

int codeFrom(KeyboardKey first, int steps) {
    return keyCodeOf(static_cast<KeyboardKey>(static_cast<int>(first) + steps));
}

int usualCode(BoardKey key) {
    if (key == leftOfOne) return fastKey;
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return codeFrom(KeyboardKey::digit0, key - Qt::Key_0);
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return codeFrom(KeyboardKey::a, key - Qt::Key_A);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F6) return codeFrom(KeyboardKey::f1, key - Qt::Key_F1);
    const auto *const named = std::ranges::find(namedKeys, key, &NamedKey::key);
    return named == std::end(namedKeys) ? 0 : keyCodeOf(named->name);
}

std::vector<BoardKey> usualKeys() {
    std::vector<BoardKey> keys;
    for (BoardKey key = Qt::Key_A; key <= Qt::Key_Z; key++) keys.push_back(key);
    for (BoardKey key = Qt::Key_0; key <= Qt::Key_9; key++) keys.push_back(key);
    for (BoardKey key = Qt::Key_F1; key <= Qt::Key_F6; key++) keys.push_back(key);
    for (const NamedKey &row : namedKeys) keys.push_back(row.key);
    keys.push_back(leftOfOne);
    return keys;
}

bool isCode(int code) { return code == 0 || code == fastKey || keyFaceOf(code) != nullptr; }

std::string keyOfSetting(int number) { return setting::assignedKeys + std::to_string(number); }

// "1000013=31": Qt's number in hexadecimal, and the code.
void takeEntry(std::string_view text, Assignments &assigned) {
    const std::size_t equals = std::min(text.find('='), text.size());
    Assignment entry;
    const char *const middle = text.data() + equals, *const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), middle, entry.key, 16);
    if (fault != std::errc() || stop != middle || middle == end) return;
    const auto [codeStop, codeFault] = std::from_chars(middle + 1, end, entry.code);
    if (codeFault != std::errc() || codeStop != end || !isCode(entry.code) || !isAssignable(entry.key)) return;
    assign(assigned, entry.key, entry.code);
}

std::string entryText(const Assignment &entry) {
    char digits[16];
    const auto [end, fault] = std::to_chars(std::begin(digits), std::end(digits), entry.key, 16);
    return (fault == std::errc() ? std::string(digits, end) : std::string()) + "=" + std::to_string(entry.code);
}

}  // namespace

BoardKey boardKeyOf(const QKeyEvent &event) {
    const int key = event.key();
    if (event.modifiers() & Qt::KeypadModifier)
        if (const auto pad = sameIn(padKeys, key)) return *pad;
    if (const auto same = sameIn(sameKeys, key)) return *same;
    if (event.nativeScanCode() == leftOfOnePlace) return leftOfOne;
    return key < 0x80 ? key : letterByPlace(event.nativeScanCode()).value_or(key);
}

bool isAssignable(BoardKey key) {
    if (key < Qt::Key_Space || (key >= Qt::Key_F7 && key <= Qt::Key_F35)) return false;
    return key <= Qt::Key_unknown && std::ranges::find(keptKeys, key) == std::end(keptKeys);
}

QString boardKeyName(BoardKey key) {
    for (const KeySign &row : keySigns)
        if (row.key == key) return QString::fromUtf8(row.sign);
    if (key == leftOfOne) return textOf(Text::keyLeftOf1);
    const QString name = QKeySequence(key).toString(QKeySequence::NativeText);
    const bool isShown = !name.isEmpty() && std::ranges::all_of(name, [](QChar sign) { return sign.isPrint(); });
    return isShown ? name : QString::number(key, 16);
}

int codeOfKey(BoardKey key, const Assignments &assigned) {
    const auto found = std::ranges::find(assigned, key, &Assignment::key);
    return found != assigned.end() ? found->code : usualCode(key);
}

QStringList namesOfCode(int code, const Assignments &assigned) {
    QStringList names;
    for (const Assignment &entry : assigned)
        if (entry.code == code) names << boardKeyName(entry.key);
    for (const BoardKey key : usualKeys()) {
        const bool isHere =
            codeOfKey(key, assigned) == code && std::ranges::find(assigned, key, &Assignment::key) == assigned.end();
        const QString name = isHere ? boardKeyName(key) : QString();
        if (isHere && !names.contains(name)) names << name;
    }
    if (code == stopKey) names << boardKeyName(Qt::Key_Escape) << boardKeyName(Qt::Key_F7);
    return names;
}

bool assign(Assignments &assigned, BoardKey key, int code) {
    const auto found = std::ranges::find(assigned, key, &Assignment::key);
    const bool isUsual = usualCode(key) == code;
    if (found != assigned.end()) {
        if (isUsual) {
            assigned.erase(found);
        } else {
            found->code = code;
        }
        return true;
    }
    if (isUsual) return true;
    if (assigned.size() >= assignmentLimit) return false;
    assigned.push_back({key, code});
    return true;
}

bool takeKeysAway(Assignments &assigned, int code) {
    std::vector<BoardKey> keys = usualKeys();
    for (const Assignment &entry : assigned) keys.push_back(entry.key);
    return std::ranges::all_of(
        keys, [&](BoardKey key) { return codeOfKey(key, assigned) != code || assign(assigned, key, 0); });
}

void resetKeysOf(Assignments &assigned, int code) {
    std::erase_if(assigned,
                  [code](const Assignment &entry) { return entry.code == code || usualCode(entry.key) == code; });
}

const Assignments &assignments() { return current; }

void loadAssignments() {
    current.clear();
    for (int number = 1; number <= settingCount; number++) {
        const std::string text = settingsValue(keyOfSetting(number));
        if (text.empty()) break;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find(' ', start), text.size());
            takeEntry(std::string_view(text).substr(start, end - start), current);
            start = end + 1;
        }
    }
}

bool storeAssignments(const Assignments &assigned) {
    std::size_t next = 0;
    for (int number = 1; number <= settingCount; number++) {
        std::string text;
        for (const std::size_t end = std::min(next + entriesASetting, assigned.size()); next < end; next++)
            text.append(text.empty() ? "" : " ").append(entryText(assigned[next]));
        const bool wasThere = number == 1 || !settingsValue(keyOfSetting(number)).empty();
        if ((wasThere || !text.empty()) && !settingsSetValue(keyOfSetting(number), text)) return false;
    }
    current = assigned;
    return true;
}

}  // namespace numalink
