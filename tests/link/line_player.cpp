#include "link/line_player.h"

#include <algorithm>
#include <deque>

#include "calculator/charset.h"
#include "link/attention.h"
#include "link/conversation.h"
#include "link/idle_loop.h"
#include "link/notices.h"
#include "link/transmit_queue.h"
#include "platform/clock.h"
#include "platform/file_port.h"
#include "platform/serial_line.h"
#include "settings/language_table.h"
#include "settings/settings_store.h"
#include "support/scratch_folder.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

namespace {

constexpr std::uint64_t dropQuiet = 50;

struct Player {
    const LineScript *script = nullptr;
    PlayMode mode = PlayMode::whole;
    std::size_t next = 0;              // event
    std::deque<std::uint8_t> pending;  // of a "<" event that has begun
    Bytes sent;                        // of a ">" event that has begun
    std::deque<std::string> answers;
    std::uint64_t clock = 1000000;  // microseconds
    PseudoTerminal *terminal = nullptr;
    std::string fault;
};
Player player;

std::string hexOf(ByteView bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr char digits[] = "0123456789ABCDEF";
        text += {digits[byte / 16], digits[byte % 16], ' '};
    }
    return text;
}

bool fail(const std::string &what) {
    if (player.fault.empty()) {
        const bool ended = player.next >= player.script->events.size();
        const std::string where =
            ended ? "at the end" : "ahead of line " + std::to_string(player.script->events[player.next].lineNumber);
        player.fault = player.script->name + ", " + where + ": " + what;
    }
    return false;
}

const ScriptEvent *nextEvent() {
    return player.next < player.script->events.size() ? &player.script->events[player.next] : nullptr;
}

void show(const std::string &text) {
    const ScriptEvent *event = nextEvent();
    if (!player.pending.empty() || event == nullptr || event->sort != EventSort::shown || event->text != text) {
        fail("shown: " + text);
        return;
    }
    player.next++;
}

bool writePlayed(ByteView bytes) {
    if (!systemSerialLine.write(bytes)) return fail("the line takes nothing");
    const Bytes came = player.terminal->take(bytes.size(), 2000);
    player.sent.insert(player.sent.end(), came.begin(), came.end());
    const ScriptEvent *event = nextEvent();
    if (event == nullptr || event->sort != EventSort::sent) return fail("sent: " + hexOf(came));
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
    const ScriptEvent *event = nextEvent();
    if (event != nullptr && event->sort == EventSort::dropped) {
        const std::size_t count = std::min(event->bytes.size(), target.size());
        player.next++;
        return {count, ReadEnd::complete};
    }
    player.clock += dropQuiet * 1000;
    return {0, ReadEnd::timeOut};
}

// Takes up events that need no bytes. Nothing when bytes are pending; else how the read ends.
std::optional<ReadEnd> passEvents(std::uint64_t limitEnd) {
    while (player.pending.empty()) {
        const ScriptEvent *event = nextEvent();
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
                player.clock = limitEnd;
                return ReadEnd::timeOut;
            case EventSort::tick:
                player.clock += 1001000;
                transmitDeadlineTest();
                break;
            case EventSort::begin:
                beginTransmit();
                return ReadEnd::woken;
            case EventSort::breakDisk:
                filePort.writeAt = [](int, std::uint64_t, const void *, std::size_t) { return std::size_t{0}; };
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
        if (const auto end = passEvents(start + limit * 1000)) return {count, *end};
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

std::string statusLineOf(int number, const std::string &text) {
    const bool plain = number > 0 && number < 164 && text == languageText(number);
    return "status " + std::to_string(number) + (plain ? "" : " " + text);
}

void installUi() {
    userInterface = userInterfaceSilent;
    userInterface.messageBox = [](const Box &box) {
        std::string line = "box " + std::to_string(box.bodyNumber) + " " + std::to_string(box.titleNumber);
        if (box.bodyNumber == 0) line += " " + box.title + ": " + box.body;
        for (const std::string &argument : box.arguments) line += " " + argument;
        show(line);
        return box.buttons == BoxButtons::ok ? Answer::ok : nextAnswer();
    };
    userInterface.statusText = [](StatusPart, int number, const std::string &text) {
        show(statusLineOf(number, text));
    };
    userInterface.askItemExists = [](const std::string &question) {
        show("ask " + question);
        return nextAnswer();
    };
    userInterface.askPictureSlot = [](const std::string &name, int preset) {
        show("slot " + name + " " + std::to_string(preset));
        return player.script->slot;
    };
    userInterface.refreshTree = [] { show("tree"); };
}

void installClock() {
    serialLine = systemSerialLine;
    serialLine.read = readPlayed;
    serialLine.write = writePlayed;
    serialLine.microseconds = [] { return player.clock; };
    serialLine.sleepUntil = [](std::uint64_t end) { player.clock = std::max(player.clock, end); };
    serialLine.wake = [] {};
    clockPort.tickCount = [] { return player.clock / 1000; };
    clockPort.localDate = [] { return std::string("2026-11-24"); };
    clockPort.localTime = [] { return std::string("12:00:00"); };
}

ItemId itemNamed(const std::string &name) {
    for (const ItemEntry &entry : storeListItems())
        if (!isFolderKind(entry.kind) && entry.name == name) return entry.id;
    return noItem;
}

void setUpLibrary(const LineScript &script) {
    settingsSetValue(setting::linkType, script.algebra ? "algebra" : "cfx");
    settingsSetInt(setting::removeColor, script.removeColour ? 1 : 0);
    transmitQueueClear();
    attentionForget();
    for (const ScriptItem &item : script.have) {
        const ItemId parent = item.inTemp ? storeTempFolder() : storeStandardFolder(standardFolderOfKind(item.kind));
        storeAddItem({.name = item.path, .parent = parent, .kind = item.kind, .head = item.head, .data = item.data});
    }
    for (const std::string &name : script.queue)
        if (itemNamed(name) == noItem || !queueItem(itemNamed(name))) fail("can't be queued: " + name);
    for (const std::string &name : script.deleted) storeDelete(itemNamed(name));
}

std::string pathOf(const ItemEntry &entry) {
    const auto parent = storeReadEntry(entry.parent);
    const std::string name = utf8FromCalculator(entry.name);
    return parent ? pathOf(*parent) + "/" + name : name;
}

void compareItem(const StoredItem &item) {
    const std::string path = pathOf(item);
    const auto had = std::ranges::find_if(
        player.script->have, [&](const ScriptItem &have) { return item.name == have.path && item.kind == have.kind; });
    const auto wanted = std::ranges::find(player.script->expected, path, &ScriptItem::path);
    if (wanted != player.script->expected.end()) {
        if (wanted->kind != item.kind) fail(path + " is of kind " + std::to_string(item.kind));
        if (wanted->head != item.head) fail(path + " has the head " + hexOf(item.head));
        if (wanted->data != item.data) fail(path + " has the data " + hexOf(item.data));
    } else if (had == player.script->have.end()) {
        fail("in the library: " + path);
    } else if (had->head != item.head || had->data != item.data) {
        fail("altered in the library: " + path);
    }
}

void compareLibrary(const LineScript &script) {
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!isFolderKind(entry.kind) && storeReadItem(entry.id, item)) compareItem(item);
    }
    for (const ScriptItem &item : script.expected) {
        const bool there =
            std::ranges::any_of(storeListItems(), [&](const ItemEntry &entry) { return pathOf(entry) == item.path; });
        if (!there) fail("not in the library: " + item.path);
    }
    for (const ScriptItem &item : script.have) {
        const bool isGone = std::ranges::find(script.gone, item.path) != script.gone.end() ||
                            std::ranges::find(script.deleted, item.path) != script.deleted.end();
        if (isGone != (itemNamed(item.path) == noItem)) fail((isGone ? "still there: " : "gone: ") + item.path);
    }
    if (transmitQueueCount() != script.left) fail("in the queue: " + std::to_string(transmitQueueCount()));
}

}  // namespace

std::string playLineScript(const LineScript &script, PlayMode mode) {
    if (!script.fault.empty()) return script.name + ": " + script.fault;
    const ScratchFolder folder;
    PseudoTerminal terminal;
    const std::uint64_t clock = player.clock + 10000000;
    player = Player{};
    player.clock = clock;
    player.script = &script;
    player.mode = mode;
    player.terminal = &terminal;
    player.answers.assign(script.answers.begin(), script.answers.end());
    installUi();
    installClock();
    filePort.sync = [](int) { return true; };  // no power is lost here, and a disk takes its time
    if (!storeOpen()) return script.name + ": no library";
    setUpLibrary(script);
    linkNoticeForget();
    conversationReset();
    conversationLineOpened();
    const unsigned baud = script.algebra ? 38400 : 9600;
    if (serialLine.open(terminal.path, baud).fault != LineFault::none) fail("the terminal doesn't open");
    linkIdleLoop(script.algebra ? Family::algebra : Family::cfx);
    if (nextEvent() != nullptr) fail("ended too early");
    serialLine.close();
    filePort = systemFilePort;
    compareLibrary(script);
    userInterface = userInterfaceSilent;  // a library that could not be written says so once more
    storeClose();
    clockPort = systemClock;
    serialLine = systemSerialLine;
    return player.fault;
}

}  // namespace numalink
