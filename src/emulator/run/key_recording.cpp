#include "emulator/run/key_recording.h"

#include <atomic>
#include <utility>

#include "emulator/machine/key_port.h"
#include "emulator/machine/machine.h"
#include "platform/lock.h"

namespace numalink {

namespace {

// One sort of keys. take is the run thread's; it locks only where another key comes than before.
class KeyTape {
public:
    // False when there is no room.
    bool take(int code) {
        const std::uint64_t before = openCount.load(std::memory_order_relaxed);
        if (before == 0 || code != openCode || before >= keyCountLimit) return begin(code);
        openCount.store(before + 1, std::memory_order_release);
        return true;
    }
    KeyRuns taken() {
        const HoldLock held(lock);
        KeyRuns all = runs;
        if (openCount != 0) all.emplace_back(openCode, openCount.load(std::memory_order_acquire));
        return all;
    }
    void forget() {
        const HoldLock held(lock);
        runs.clear();
        openCount = 0;
    }

private:
    bool begin(int code) {
        const HoldLock held(lock);
        if (runs.size() + 1 >= keyRunLimit) return false;
        if (openCount != 0) runs.emplace_back(openCode, openCount.load(std::memory_order_relaxed));
        openCode = code;
        openCount = 1;
        return true;
    }

    Lock lock;
    KeyRuns runs GUARDED_BY(lock);
    std::atomic<int> openCode = 0;  // changes under the lock
    std::atomic<std::uint64_t> openCount = 0;
};

KeyTape waits, getKeys;
std::atomic<std::uint64_t> statement = 0;  // of the last key: it is told behind the key, and asked for ahead of it
std::atomic<bool> isCut = false;
RunBeginning begins;  // the graphical thread's
KeyPort source;       // set by keysBegin; the run thread's while a run is on, as are those that follow

RunKeys played;
KeyReader playedWaits, playedGetKeys;
std::atomic<bool> isPlaying = false;

void keep(KeyTape &tape, int code) {
    if (isCut || code == noKeyAnyMore) return;
    const std::uint64_t now = machine.statementsRun;
    if (now < statement || !tape.take(code)) {
        isCut = true;
        return;
    }
    statement.store(now, std::memory_order_release);
}

// Of a record that was played to its end the keyboard's come next.
int nextOf(KeyReader &reader, int (*behind)()) {
    const std::optional<int> next = isPlaying ? reader.next() : std::nullopt;
    if (next) return *next;
    if (isPlaying.exchange(false)) keyCode = 0;
    return behind();
}

constexpr KeyPort keptKeys = {
    .getKey =
        [] {
            const int code = nextOf(playedGetKeys, source.getKey);
            keep(getKeys, code);
            return code;
        },
    .waitKey =
        [] {
            const int code = nextOf(playedWaits, source.waitKey);
            keep(waits, code);
            return code;
        },
};

}  // namespace

void keysBegin(const KeyPort &from) {
    source = from;
    isPlaying = false;
    isCut = false;
    statement = 0;
    waits.forget();
    getKeys.forget();
    begins = beginning();
    keyPort = keptKeys;
}

void keysBeginPlaying(RunKeys wanted) {
    played = std::move(wanted);
    playedWaits = KeyReader(&played.waits);
    playedGetKeys = KeyReader(&played.getKeys);
    beginAs(played.begins);
    keysBegin();
    isPlaying = true;
}

RunKeys keysTaken() {
    RunKeys taken{
        .begins = begins, .waits = {}, .getKeys = {}, .statements = statement.load(std::memory_order_acquire)};
    taken.waits = waits.taken();
    taken.getKeys = getKeys.taken();
    taken.isCut = isCut;
    if (!emulatorRunning && !taken.isCut) taken.statements = machine.statementsRun;
    return taken;
}

bool keysArePlayed() { return isPlaying; }

void keysSpoil() { isCut = true; }

}  // namespace numalink
