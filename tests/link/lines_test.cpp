// Plays a recording of tests/lines through a pseudo terminal: the real line carries every byte, and a clock that jumps
// takes the place of waiting. A recording tells what is in the library, what goes over the line in both directions, and
// what is shown, in the order in which it happens.
//
//   # a comment
//   type cfx                      or algebra
//   removecolour                  the setting is on
//   have 15 ABC                   an item of this kind; temp ahead of the kind puts it into the temporary folder,
//                                 beside 18 into the standard folder of that kind
//   info 20 ABC PASS              its first payload, as a ProgramInfo; or
//   head BYTES                    byte for byte
//   data BYTES
//   queue ABC   delete ABC        ahead of the conversation
//   queuedfor cfx                 the type at that time
//   begin                         the user starts the transmission; also later, while the line is read
//   transmit ABC                  the user sends this item
//   answer yes                    no, cancel, ok: to the next questions
//   slot 3                        to the questions for a picture's slot
//   > BYTES                       we send
//   < BYTES                       the calculator sends; << when it is to be dropped
//   ~ 510                         it stays silent: a read gives up, after so many milliseconds if told
//   tick                          a second passes, and the timer tests the deadline
//   cut                           the line is gone
//   break 3 9                     the disk takes so many writes from here on, and refuses as many; all, if not told
//   ! status 1                    is shown, also: box 43 2, ask, slot, tree
//   = 15 Programs/ABC             is in the library at the end, followed by its info or head, and data
//   gone ABC                      an item of "have" that isn't there any more
//   left 1                        entries in the queue at the end (0 unless told)
//   bar 16 of 32                  the farthest that the progress bar came
//
// BYTES are those of support/byte_text.h.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>

#include "calculator/charset.h"
#include "link/link_scene.h"
#include "support/byte_text.h"
#include "telling/language_table.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

namespace {

constexpr std::uint64_t dropQuiet = 50;

enum class PlayMode {
    whole,  // what the calculator sends comes at once
    alone,  // every byte by itself
    late    // and each just before the read would give up
};

struct ScriptItem {
    std::string path;  // or name
    ItemKind kind = 0;
    ItemKind folderKind = 0;  // of the standard folder
    bool inTemp = false;
    Bytes head;
    Bytes data;
};

enum class EventSort { sent, received, dropped, silence, shown, tick, cut, begin, transmit, breakDisk };

struct Event {
    EventSort sort;
    Bytes bytes;
    std::string text;
    int lineNumber;
};

// What the file says, and how far the playing has come.
struct Player {
    std::string name;
    bool algebra = false;
    bool removeColor = false;
    std::vector<ScriptItem> have, expected;
    std::vector<std::string> queue, deleted, gone;
    std::deque<std::string> answers;
    int writesTaken = 0, writesRefused = 0;
    std::string slot = "0", left = "0", bar, queuedFor;
    int barRange = 0, barFarthest = 0;
    std::vector<Event> events;

    PlayMode mode = PlayMode::whole;
    std::size_t next = 0;              // event
    std::deque<std::uint8_t> pending;  // of a "<" event that has begun
    Bytes sent;                        // of a ">" event that has begun
    std::uint64_t sentAt = 0;          // the last byte, on the clock
    int sleeps = 0;
    std::size_t dropped = 0;        // of a "<<" event that has begun
    std::uint64_t clock = 1000000;  // microseconds
    PseudoTerminal *terminal = nullptr;
    std::string fault;
};
Player player;

const Event *nextEvent() { return player.next < player.events.size() ? &player.events[player.next] : nullptr; }

bool fail(const std::string &what) {
    const Event *event = nextEvent();
    const std::string where = event == nullptr ? "at the end" : "ahead of line " + std::to_string(event->lineNumber);
    if (player.fault.empty()) player.fault = player.name + ", " + where + ": " + what;
    return false;
}

ScriptItem parseItem(const std::string &text) {
    ScriptItem item;
    item.inTemp = text.starts_with("temp ");
    const bool isBeside = text.starts_with("beside ");
    std::istringstream words(text.substr(item.inTemp ? 5 : isBeside ? 7 : 0));
    ItemKind beside = 0;
    if (isBeside) words >> beside;
    words >> item.kind;
    item.folderKind = standardFolderOfKind(isBeside ? beside : item.kind);
    std::getline(words >> std::ws, item.path);
    return item;
}

constexpr std::pair<const char *, EventSort> eventWords[] = {
    {">", EventSort::sent},           {"<", EventSort::received},      {"<<", EventSort::dropped},
    {"~", EventSort::silence},        {"!", EventSort::shown},         {"tick", EventSort::tick},
    {"cut", EventSort::cut},          {"break", EventSort::breakDisk}, {"begin", EventSort::begin},
    {"transmit", EventSort::transmit}};

// Takes in one line; current is the item that info, head and data belong to.
void takeLine(const std::string &word, const std::string &rest, int number, ScriptItem *&current) {
    const auto *event = std::ranges::find(eventWords, word, [](const auto &row) { return std::string(row.first); });
    if (event != std::end(eventWords)) {
        const bool hasBytes = event->second <= EventSort::dropped;
        player.events.push_back({event->second, hasBytes ? parseBytes(rest) : Bytes{}, rest, number});
    } else if (word == "have" || word == "=") {
        current = &(word == "=" ? player.expected : player.have).emplace_back(parseItem(rest));
    } else if (word == "info" || word == "head") {
        current->head = word == "info" ? parseInfo(rest) : parseBytes(rest);
    } else if (word == "data") {
        const Bytes more = parseBytes(rest);
        current->data.insert(current->data.end(), more.begin(), more.end());
    } else if (word == "type") {
        player.algebra = rest == "algebra";
    } else if (word == "removecolour") {
        player.removeColor = true;
    } else if (word == "answer") {
        player.answers.push_back(rest);
    } else if (word == "queuedfor") {
        player.queuedFor = rest;
    } else if (word == "slot" || word == "left" || word == "bar") {
        (word == "slot" ? player.slot : word == "left" ? player.left : player.bar) = rest;
    } else if (word == "queue" || word == "delete" || word == "gone") {
        (word == "queue" ? player.queue : word == "delete" ? player.deleted : player.gone).push_back(rest);
    } else {
        fail("what is " + word);
    }
}

void readFile(const std::string &path) {
    player.name = std::filesystem::path(path).stem();
    std::ifstream file(path);
    std::string line;
    ScriptItem *current = nullptr;
    for (int number = 1; std::getline(file, line); number++) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t blank = std::min(line.find(' '), line.size());
        takeLine(line.substr(0, blank), line.substr(std::min(blank + 1, line.size())), number, current);
    }
}

void show(const std::string &text) {
    const Event *event = nextEvent();
    if (!player.pending.empty() || event == nullptr || event->sort != EventSort::shown || event->text != text) {
        fail("shown: " + text);
        return;
    }
    player.next++;
}

// Frames for ALGEBRA, and a closing frame, go a byte at a time, and each waits for its millisecond.
bool isPaced(const Event &event, ByteView bytes) {
    const bool isSlow = event.bytes.size() > 1 && (player.algebra || event.text.starts_with("\":END"));
    return !isSlow || (bytes.size() == 1 && player.clock - player.sentAt >= 1000);
}

bool writePlayed(ByteView bytes) {
    if (!systemSerialLine.write(bytes)) return fail("the line takes nothing");
    const Bytes came = player.terminal->take(bytes.size(), 2000);
    player.sent.insert(player.sent.end(), came.begin(), came.end());
    const Event *event = nextEvent();
    if (event == nullptr || event->sort != EventSort::sent) return fail("sent: " + hexOf(came));
    if (!isPaced(*event, bytes)) return fail("sent too fast");
    player.sentAt = player.clock;
    const bool fits = player.sent.size() <= event->bytes.size() &&
                      std::equal(player.sent.begin(), player.sent.end(), event->bytes.begin());
    if (!fits) return fail("sent: " + hexOf(player.sent));
    if (player.sent.size() == event->bytes.size()) {
        player.sent.clear();
        player.next++;
    }
    return true;
}

// Gives the next pending bytes to the line and reads them from it.
std::size_t feed(std::span<std::uint8_t> target) {
    const std::size_t most = player.mode == PlayMode::whole ? target.size() : 1;
    const std::size_t count = std::min(most, player.pending.size());
    const auto end = player.pending.begin() + static_cast<std::ptrdiff_t>(count);
    player.terminal->put(Bytes(player.pending.begin(), end));
    player.pending.erase(player.pending.begin(), end);
    player.clock += 1000;
    const LineRead read = systemSerialLine.read(target.first(count), {.total = 2000});
    if (read.count != count) fail("the pseudo terminal lost bytes");
    return read.count;
}

LineRead readDropped(std::span<std::uint8_t> target) {
    const Event *event = nextEvent();
    if (event != nullptr && event->sort == EventSort::dropped) {
        const std::size_t count = std::min(event->bytes.size() - player.dropped, target.size());
        player.dropped += count;
        if (player.dropped < event->bytes.size()) return {count, ReadEnd::complete};
        player.dropped = 0;
        player.next++;
        return {count, ReadEnd::complete};
    }
    player.clock += dropQuiet * 1000;
    return {0, ReadEnd::timeOut};
}

ItemId itemNamed(const std::string &name) {
    for (const ItemEntry &entry : storeListItems())
        if (!isFolderKind(entry.kind) && entry.name == name) return entry.id;
    return noItem;
}

void breakDisk(const std::string &which) {
    player.writesTaken = 0;
    player.writesRefused = std::numeric_limits<int>::max();
    std::istringstream(which) >> player.writesTaken >> player.writesRefused;
    filePort.writeAt = [](int file, std::uint64_t at, const void *bytes, std::size_t count) {
        if (player.writesTaken-- > 0) return systemFilePort.writeAt(file, at, bytes, count);
        player.writesTaken = 0;
        return player.writesRefused-- > 0 ? std::size_t{0} : systemFilePort.writeAt(file, at, bytes, count);
    };
}

// Takes up events that need no bytes. Nothing when bytes are pending; else how the read ends.
std::optional<ReadEnd> passEvents(std::uint64_t limitEnd, std::uint64_t limit) {
    while (player.pending.empty()) {
        const Event *event = nextEvent();
        if (event == nullptr) {
            if (transmitConversationRuns()) fail("the conversation still waits");
            return ReadEnd::gone;
        }
        player.next++;
        switch (event->sort) {
            case EventSort::received:
                player.pending.assign(event->bytes.begin(), event->bytes.end());
                break;
            case EventSort::silence:
                if (!event->text.empty() && event->text != std::to_string(limit))
                    fail("waits for " + std::to_string(limit));
                player.clock = limitEnd;
                return ReadEnd::timeOut;
            case EventSort::tick:
                player.clock += 1001000;
                transmitDeadlineTest();
                break;
            case EventSort::begin:
                beginTransmit();
                return ReadEnd::woken;
            case EventSort::transmit:
                queueAndBegin(itemNamed(event->text));
                return ReadEnd::woken;
            case EventSort::breakDisk:
                breakDisk(event->text);
                break;
            case EventSort::cut:
                return ReadEnd::gone;
            default:
                player.next--;
                fail("waits for a byte");
                return ReadEnd::gone;
        }
    }
    return std::nullopt;
}

LineRead readPlayed(std::span<std::uint8_t> target, ReadLimits limits) {
    if (!player.fault.empty()) return {0, ReadEnd::gone};
    if (limits.total == 0 && limits.quiet == dropQuiet) return readDropped(target);
    const std::uint64_t start = player.clock;
    const std::uint64_t limit = limits.quiet == 0 ? limits.total : std::min(limits.total, limits.quiet);
    std::size_t count = 0;
    while (count < target.size()) {
        if (const auto end = passEvents(start + limit * 1000, limit)) return {count, *end};
        if (count == 0 && player.mode == PlayMode::late) player.clock = start + (limit - 2) * 1000;
        count += feed(target.subspan(count));
    }
    return {count, ReadEnd::complete};
}

Answer nextAnswer() {
    if (player.answers.empty()) return Answer::cancel;
    const std::string answer = player.answers.front();
    player.answers.pop_front();
    return answer == "yes" ? Answer::yes : answer == "no" ? Answer::no : answer == "ok" ? Answer::ok : Answer::cancel;
}

void installUi() {
    userInterface = userInterfaceSilent;
    userInterface.messageBox = [](const Box &box) {
        std::string line =
            "box " + std::to_string(textNumber(box.bodyText)) + " " + std::to_string(textNumber(box.titleText));
        if (box.bodyText == Text::none) line += " " + box.title + ": " + box.body;
        for (const std::string &argument : box.arguments) line += " " + argument;
        show(line);
        return box.buttons == BoxButtons::ok ? Answer::ok : nextAnswer();
    };
    userInterface.statusText = [](StatusPart, Text told, const std::string &text) {
        const int number = textNumber(told);
        const bool plain = number > 0 && number < 164 && text == languageText(number);
        show("status " + std::to_string(number) + (plain ? "" : " " + text));
    };
    userInterface.askItemExists = [](const std::string &question) {
        show("ask " + question);
        return nextAnswer();
    };
    userInterface.askPictureSlot = [](const std::string &name, int preset) {
        show("slot " + name + " " + std::to_string(preset));
        return std::stoi(player.slot);
    };
    userInterface.refreshTree = [] { show("tree"); };
    userInterface.progressRange = [](int range) { player.barRange = std::max(player.barRange, range); };
    userInterface.progressPosition = [](int at) { player.barFarthest = std::max(player.barFarthest, at); };
}

void installClock() {
    serialLine = systemSerialLine;
    serialLine.read = readPlayed;
    serialLine.write = writePlayed;
    serialLine.microseconds = [] { return player.clock; };
    serialLine.sleepUntil = [](std::uint64_t end) {  // at times too long, as systems do
        player.clock = std::max(player.clock, end) + (++player.sleeps % 5 == 0 ? 4000 : 0);
    };
    serialLine.wake = [] {};
    clockPort.tickCount = [] { return player.clock / 1000; };
    clockPort.localDate = [] { return std::string("2026-11-24"); };
    clockPort.localTime = [] { return std::string("12:00:00"); };
}

void setUpLibrary() {
    for (const ScriptItem &item : player.have) {
        const ItemId parent = item.inTemp ? storeTempFolder() : storeStandardFolder(item.folderKind);
        storeAddItem({.name = item.path, .parent = parent, .kind = item.kind, .head = item.head, .data = item.data});
    }
    const std::string type = settingsValue(setting::linkType);
    if (!player.queuedFor.empty()) settingsSetValue(setting::linkType, player.queuedFor);
    for (const std::string &name : player.queue)
        if (!queueItem(itemNamed(name)) && player.next == 0) fail("refused without a box: " + name);
    settingsSetValue(setting::linkType, type);
    for (const std::string &name : player.deleted) storeDelete(itemNamed(name));
}

std::string pathOf(const ItemEntry &entry) {
    const auto parent = storeReadEntry(entry.parent);
    const std::string name = utf8FromCalculator(entry.name);
    return parent ? pathOf(*parent) + "/" + name : name;
}

std::string contentOf(ItemKind itemKind, ByteView head, ByteView data) {
    return std::to_string(itemKind) + ", head " + hexOf(head) + ", data " + hexOf(data);
}

// By path, without folders.
using Library = std::map<std::string, std::string>;

Library libraryNow() {
    Library library;
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!isFolderKind(entry.kind) && storeReadItem(entry.id, item))
            library[pathOf(item)] = contentOf(item.kind, item.head, item.data);
    }
    return library;
}

// What was there is to be there still, but for what has gone, was replaced, or has come.
void compareLibrary(Library wanted) {
    for (const std::string &name : player.gone)
        if (std::erase_if(wanted, [&](const auto &item) { return item.first.ends_with("/" + name); }) != 1)
            fail("never was there: " + name);
    for (const ScriptItem &item : player.expected) wanted[item.path] = contentOf(item.kind, item.head, item.data);
    Library found = libraryNow();
    for (const auto &[path, content] : wanted)
        if (found[path] != content) fail(path + " is of kind " + found[path] + ", not " + content);
    for (const ItemEntry &entry : storeListItems())
        if (entry.kind == kind::folder && storeListChildren(entry.id).empty()) fail("an empty folder: " + entry.name);
    for (const auto &[path, content] : found)
        if (!wanted.contains(path)) fail("in the library: " + path);
    if (std::to_string(transmitQueueCount()) != player.left) fail("left in the queue");
    const std::string bar = std::to_string(player.barFarthest) + " of " + std::to_string(player.barRange);
    if (!player.bar.empty() && player.bar != bar) fail("the bar came to " + bar);
}

// Empty when everything went, was shown and was stored as recorded; else what differs first.
std::string playLineFile(const std::string &path, PlayMode mode) {
    PseudoTerminal terminal;
    const std::uint64_t clock = player.clock + 10000000;
    player = Player{};
    player.mode = mode;
    player.clock = clock;
    player.terminal = &terminal;
    readFile(path);
    const LinkScene scene;
    installUi();
    installClock();
    if (!scene.isOpen) fail("no library");
    LinkScene::prepare(player.algebra, player.removeColor);
    setUpLibrary();
    const Library before = libraryNow();
    const unsigned baud = player.algebra ? 38400 : 9600;
    if (serialLine.open(terminal.path, baud).fault != LineFault::none) fail("the terminal doesn't open");
    linkIdleLoop(player.algebra ? Family::algebra : Family::cfx);
    if (nextEvent() != nullptr) fail("ended too early");
    serialLine.close();
    filePort = systemFilePort;
    compareLibrary(before);
    return player.fault;
}

struct Recordings : testing::TestWithParam<PlayMode> {};

TEST_P(Recordings, pass) {
    languageLoad("English", "English");
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_LINES)) {
        EXPECT_EQ(playLineFile(entry.path(), GetParam()), "");
        count++;
    }
    EXPECT_GE(count, 80);
}

INSTANTIATE_TEST_SUITE_P(InEachMode, Recordings, testing::Values(PlayMode::whole, PlayMode::alone, PlayMode::late));

}  // namespace

}  // namespace numalink
