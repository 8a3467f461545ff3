#include "debugger/history.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <type_traits>

#include "debugger/machine_image.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/pace.h"
#include "emulator/run/key_recording.h"
#include "platform/clock.h"

namespace numalink {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t lookInterval = 256;                     // statements between two looks at the clock
constexpr std::uint64_t longestStretch = 32768;                 // statements without an image
constexpr auto longestTime = std::chrono::milliseconds(5);      // the same, as long as memory suffices
constexpr std::size_t bytesWanted = historyBytes - (2u << 20);  // the rest is for what is taken in between
constexpr unsigned mostThinned = 5;                             // then images are as far apart as the record reaches
constexpr std::size_t newestKept = 8;                           // images that thinning leaves alone

// Of the brief record: images are this far apart, and the looks at the clock so that one falls into some milliseconds.
constexpr auto briefTime = std::chrono::milliseconds(250);
constexpr auto shortLook = std::chrono::milliseconds(1), longLook = std::chrono::milliseconds(16);
constexpr std::uint64_t briefInterval = 4096;  // statements, at most

// Values in a row, alike ones as one entry.
template <class Value>
class InputLog {
public:
    bool hasNext() const { return cursor < end; }
    Value next() {
        while (at + 1 < entries.size() && entries[at + 1].from <= cursor) at++;
        cursor++;
        return entries[at].value;
    }
    void add(Value value) {
        if (entries.empty() || entries.back().value != value) {
            entries.push_back({value, end});
            taken += bytesOf(entries.back());
        }
        cursor = ++end;
        at = entries.size() - 1;
    }
    std::uint64_t place() const { return cursor; }
    void goTo(std::uint64_t place) {
        cursor = place;
        const auto behind = std::ranges::upper_bound(entries, place, {}, &Entry::from);
        at = behind == entries.begin() ? 0 : static_cast<std::size_t>(behind - entries.begin()) - 1;
    }
    void cut() {  // what comes behind the cursor
        end = cursor;
        while (!entries.empty() && entries.back().from >= end) {
            taken -= bytesOf(entries.back());
            entries.pop_back();
        }
        at = entries.empty() ? 0 : entries.size() - 1;
    }
    void forgetAhead(std::uint64_t place) {
        while (entries.size() > 1 && entries[1].from <= place) {
            taken -= bytesOf(entries.front());
            entries.pop_front();
            if (at > 0) at--;
        }
    }
    std::vector<RepeatedInput<Value>> from(std::uint64_t place, std::uint64_t to) const {
        std::vector<RepeatedInput<Value>> values;
        for (std::size_t i = 0; i < entries.size(); i++) {
            const std::uint64_t begins = std::max(entries[i].from, place);
            const std::uint64_t ends = std::min(i + 1 < entries.size() ? entries[i + 1].from : end, to);
            if (begins < ends) values.push_back({entries[i].value, ends - begins});
        }
        return values;
    }
    std::uint64_t placeOfEnd() const { return end; }
    void beginWith(const std::vector<RepeatedInput<Value>> &values) {
        *this = {};
        for (const RepeatedInput<Value> &each : values) {
            if (each.count == 0) continue;
            entries.push_back({each.value, end});
            taken += bytesOf(entries.back());
            end += each.count;
        }
    }
    std::size_t bytes() const { return taken; }

private:
    struct Entry {
        Value value;
        std::uint64_t from;
    };
    static std::size_t bytesOf(const Entry &entry) {
        if constexpr (std::is_same_v<Value, LineOutcome>)
            return sizeof entry + entry.value.head.size() + entry.value.data.size();
        else
            return sizeof entry;
    }
    std::deque<Entry> entries;
    std::uint64_t end = 0, cursor = 0;
    std::size_t at = 0;     // the entry of the cursor, or one ahead of it
    std::size_t taken = 0;  // bytes of all entries
};

struct Keyframe {
    std::uint64_t statement = 0;
    bool hasChange = false;  // the machine was changed by hand here
    std::uint64_t waits = 0, getKeys = 0, ticks = 0, lines = 0;
    MachineImage image;
};

struct History {
    HistoryMode mode = HistoryMode::off;
    bool changeDue = false;  // the next image stands for a change by hand
    std::deque<Keyframe> keyframes;
    std::size_t frameBytes = 0;  // of the keyframes beside their pages
    InputLog<int> waits, getKeys;
    InputLog<std::uint64_t> ticks;
    InputLog<LineOutcome> lines;
    Clock::time_point lastTaken, lastLook;
    std::uint64_t interval = 1;  // of the brief record's looks
    unsigned thinned = 0;        // how often memory has made the images fewer: each time they are twice as far apart
};
History history;

std::size_t bytesOf(const Keyframe &keyframe) { return sizeof keyframe + bytesOfImage(keyframe.image); }

std::size_t bytesUsed() {
    return imageBytes() + history.frameBytes + history.waits.bytes() + history.getKeys.bytes() + history.ticks.bytes() +
           history.lines.bytes();
}

void dropOldest() {
    history.frameBytes -= bytesOf(history.keyframes.front());
    history.keyframes.pop_front();
    const Keyframe &oldest = history.keyframes.front();
    history.waits.forgetAhead(oldest.waits);
    history.getKeys.forgetAhead(oldest.getKeys);
    history.ticks.forgetAhead(oldest.ticks);
    history.lines.forgetAhead(oldest.lines);
}

// Every second one goes, but for the oldest, the newest and those of changes by hand.
void thinOut() {
    std::deque<Keyframe> kept;
    history.frameBytes = 0;
    const std::size_t count = history.keyframes.size();
    for (std::size_t i = 0; i < count; i++) {
        Keyframe &keyframe = history.keyframes[i];
        if (i % 2 == 1 && i + newestKept < count && !keyframe.hasChange) continue;
        history.frameBytes += bytesOf(keyframe);
        kept.push_back(std::move(keyframe));
    }
    history.keyframes = std::move(kept);
    if (history.thinned < mostThinned) history.thinned++;
}

void makeRoom() {
    while (bytesUsed() > bytesWanted && history.keyframes.size() > 1) {
        const std::size_t before = history.keyframes.size();
        thinOut();
        if (history.keyframes.size() == before) dropOldest();
    }
}

void take(std::uint64_t statement) {
    while (!history.keyframes.empty() && history.keyframes.back().statement >= statement) {
        history.frameBytes -= bytesOf(history.keyframes.back());
        history.keyframes.pop_back();
    }
    history.keyframes.push_back({.statement = statement,
                                 .hasChange = history.changeDue,
                                 .waits = history.waits.place(),
                                 .getKeys = history.getKeys.place(),
                                 .ticks = history.ticks.place(),
                                 .lines = history.lines.place(),
                                 .image = takeImage()});
    history.frameBytes += bytesOf(history.keyframes.back());
    history.changeDue = false;
    history.lastTaken = Clock::now();
    const std::uint64_t kept = history.mode == HistoryMode::brief ? 0 : historyStatements;
    while (history.keyframes.size() > 1 && history.keyframes[1].statement + kept <= statement) dropOldest();
    if (bytesUsed() > bytesWanted) makeRoom();
}

bool isDue(std::uint64_t statement) {
    if (history.keyframes.empty() || history.changeDue) return true;
    if (bytesUsed() > bytesWanted) return true;  // by what came in since: only images behind it let that go
    const std::uint64_t stretch = statement - history.keyframes.back().statement;
    if (stretch >= longestStretch << history.thinned) return true;
    return stretch >= lookInterval && Clock::now() - history.lastTaken >= longestTime * (1u << history.thinned);
}

std::uint64_t briefAt(std::uint64_t statement) {
    const Clock::time_point now = Clock::now();
    const auto since = now - history.lastLook;
    history.lastLook = now;
    if (since < shortLook) history.interval = std::min(history.interval * 2, briefInterval);
    if (since > longLook) history.interval = 1;
    if (history.keyframes.empty() || history.changeDue || now - history.lastTaken >= briefTime) take(statement);
    return statement + history.interval;
}

template <class Value, class Source>
Value nextOf(InputLog<Value> &log, Source source) {
    if (!historyIsOn()) return source();
    if (log.hasNext()) return log.next();
    Value value = source();
    if (runGoesOn()) log.add(value);  // a run that ends here takes nothing any more
    return value;
}

}  // namespace

void historyKeep(HistoryMode mode) {
    if (mode == HistoryMode::off) return historyForget();
    history.mode = mode;
    history.interval = 1;
}

void historyForget() {
    history = {};
    forgetImages();
}

HistoryMode historyMode() { return history.mode; }

std::uint64_t historyAt(std::uint64_t statement) {
    if (history.mode == HistoryMode::brief) return briefAt(statement);
    if (isDue(statement)) take(statement);
    return statement + lookInterval;
}

int historyWaitKey(RunEnd where) {
    return nextOf(history.waits, [where] { return takeWaitKey(where); });
}
int historyGetKey() {
    return nextOf(history.getKeys, [] { return keyPort.getKey(); });
}
// Of the clock nothing is left in a program but what blinks; repeated without a record it stands still.
std::uint64_t historyTicks() {
    const auto source = [] { return runRepeats ? 0 : tickCount(); };
    return history.mode == HistoryMode::brief ? source() : nextOf(history.ticks, source);
}
LineOutcome historyLine(const std::function<LineOutcome()> &exchange) { return nextOf(history.lines, exchange); }
bool historyHasInput() {
    return history.waits.hasNext() || history.getKeys.hasNext() || history.ticks.hasNext() || history.lines.hasNext();
}

std::uint64_t historyOldest() {
    return history.mode != HistoryMode::full || history.keyframes.empty() ? UINT64_MAX
                                                                          : history.keyframes.front().statement;
}

void historyCut(std::uint64_t statement, bool hasChanged, bool betweenStatements) {
    keysSpoil();
    if (!historyIsOn()) return;
    history.waits.cut();
    history.getKeys.cut();
    history.ticks.cut();
    history.lines.cut();
    while (!history.keyframes.empty() && history.keyframes.back().statement > statement) {
        history.frameBytes -= bytesOf(history.keyframes.back());
        history.keyframes.pop_back();
    }
    history.changeDue = hasChanged;
    if (hasChanged && betweenStatements) take(statement);
}

std::size_t historyImageAt(std::uint64_t statement) {
    const auto behind = std::ranges::upper_bound(history.keyframes, statement, {}, &Keyframe::statement);
    return behind == history.keyframes.begin() ? 0 : static_cast<std::size_t>(behind - history.keyframes.begin()) - 1;
}

std::uint64_t historyStatementOf(std::size_t image) { return history.keyframes[image].statement; }

bool historyBringBack(std::size_t image) {
    const Keyframe &keyframe = history.keyframes[image];
    bringBack(keyframe.image);
    history.waits.goTo(keyframe.waits);
    history.getKeys.goTo(keyframe.getKeys);
    history.ticks.goTo(keyframe.ticks);
    history.lines.goTo(keyframe.lines);
    return runCarryOnFrom(keyframe.image.calls);
}

std::optional<std::uint64_t> historyNextChange(std::uint64_t statement) {
    for (std::size_t i = historyImageAt(statement); i < history.keyframes.size(); i++) {
        if (history.keyframes[i].hasChange && history.keyframes[i].statement > statement)
            return history.keyframes[i].statement;
    }
    return std::nullopt;
}

const MachineImage *historyImageFor(std::uint64_t statement) {
    if (history.keyframes.empty()) return nullptr;
    const Keyframe &keyframe = history.keyframes[historyImageAt(statement)];
    return keyframe.statement <= statement ? &keyframe.image : nullptr;
}

RecordedInputs historyInputsFor(std::uint64_t statement, bool isWhole) {
    const Keyframe &keyframe = history.keyframes[historyImageAt(statement)];
    const auto behind = [isWhole](const auto &log, std::uint64_t place) {
        return log.from(place, isWhole ? log.placeOfEnd() : log.place());
    };
    return {behind(history.waits, keyframe.waits), behind(history.getKeys, keyframe.getKeys),
            behind(history.lines, keyframe.lines)};
}

void historyBeginWith(const RecordedInputs &inputs, HistoryMode mode) {
    historyForget();
    history.mode = mode;
    history.waits.beginWith(inputs.waits);
    history.getKeys.beginWith(inputs.getKeys);
    history.lines.beginWith(inputs.lines);
    take(machine.statementsRun);
}

HistorySize historySize() {
    return history.mode == HistoryMode::full ? HistorySize{history.keyframes.size(), bytesUsed()} : HistorySize();
}

}  // namespace numalink
