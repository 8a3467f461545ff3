#include "virtual_calculator/calculator_mover.h"

#include <poll.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace calculator {

namespace {

std::uint64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000000 + static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

void sleepUntil(std::uint64_t end) {
    const timespec time{static_cast<time_t>(end / 1000000), static_cast<long>(end % 1000000 * 1000)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr) == EINTR) {
    }
}

struct Mover {
    Calculator &calculator;
    Moving &moving;
    int descriptor;
    std::uint64_t speakAt = 0;   // when the next byte may be put on the line
    std::uint64_t heardAt = 0;   // when the last byte had come over the line
    std::uint64_t lastSign = 0;  // of life from the other side
    std::size_t told = 0;        // of the calculator's received items
    Bytes out;
    Bytes in;
};

bool stopped(const Mover &mover) { return mover.moving.stop != nullptr && *mover.moving.stop; }

// Takes from the descriptor what is there. False when it failed.
bool takeIn(Mover &mover, int waitMicroseconds) {
    pollfd entry{mover.descriptor, POLLIN, 0};
    const timespec wait{waitMicroseconds / 1000000, waitMicroseconds % 1000000 * 1000L};
    if (ppoll(&entry, 1, &wait, nullptr) <= 0) return true;
    if ((entry.revents & POLLIN) == 0) return false;
    std::uint8_t buffer[4096];
    const ssize_t count = ::read(mover.descriptor, buffer, sizeof buffer);
    if (count < 0) return errno == EAGAIN || errno == EINTR;
    if (mover.in.empty()) mover.heardAt = std::max(mover.heardAt, now());
    for (ssize_t i = 0; i < count; i++) {
        const Bytes spoilt = spoil(mover.moving.faults, buffer[i]);
        mover.in.insert(mover.in.end(), spoilt.begin(), spoilt.end());
    }
    mover.lastSign = now();
    return true;
}

// Lets the calculator hear what has had its time on the line.
void hearDue(Mover &mover) {
    std::size_t count = 0;
    while (count < mover.in.size() && mover.heardAt + mover.moving.byteMicroseconds <= now()) {
        mover.heardAt += mover.moving.byteMicroseconds;
        hear(mover.calculator, mover.in[count++]);
        mover.lastSign = now();
    }
    mover.in.erase(mover.in.begin(), mover.in.begin() + static_cast<std::ptrdiff_t>(count));
}

void takeWords(Mover &mover) {
    if (mover.calculator.said.empty()) return;
    if (mover.out.empty()) mover.speakAt = std::max(mover.speakAt, now() + mover.moving.answerMilliseconds * 1000);
    for (const std::uint8_t byte : mover.calculator.said) {
        const Bytes spoilt = spoil(mover.moving.faults, byte);
        mover.out.insert(mover.out.end(), spoilt.begin(), spoilt.end());
    }
    mover.calculator.said.clear();
}

// A byte arrives when its time on the line is over.
bool speakDue(Mover &mover) {
    const std::uint64_t pace = mover.moving.byteMicroseconds;
    if (mover.out.empty() || mover.speakAt + pace > now()) return true;
    std::size_t count = pace == 0 ? mover.out.size() : 1;
    if (pace != 0) mover.speakAt += pace;
    const ssize_t written = ::write(mover.descriptor, mover.out.data(), count);
    if (written < 0) return errno == EAGAIN || errno == EINTR;
    mover.out.erase(mover.out.begin(), mover.out.begin() + written);
    return true;
}

void tellTaken(Mover &mover) {
    const std::vector<Item> &received = mover.calculator.received;
    if (!mover.out.empty() || !mover.calculator.said.empty()) return;
    for (; mover.told < received.size(); mover.told++)
        if (mover.moving.taken) mover.moving.taken(received[mover.told]);
}

std::uint64_t nextDue(const Mover &mover) {
    std::uint64_t due = now() + 50000;
    if (!mover.out.empty()) due = std::min(due, mover.speakAt + mover.moving.byteMicroseconds);
    if (!mover.in.empty()) due = std::min(due, mover.heardAt + mover.moving.byteMicroseconds);
    return due;
}

}  // namespace

Bytes spoil(Faults &faults, std::uint8_t byte) {
    const double lost = faults.lost;
    const double doubled = lost + faults.doubled;
    const double flipped = doubled + faults.flipped;
    if (flipped == 0) return {byte};
    const double roll = std::uniform_real_distribution<double>(0, 1)(faults.chance);
    if (roll < lost) return {};
    if (roll < doubled) return {byte, byte};
    if (roll < flipped) return {static_cast<std::uint8_t>(byte ^ (1u << (faults.chance() % 8)))};
    return {byte};
}

bool moveCalculator(Calculator &calculator, int descriptor, Moving &moving) {
    Mover mover{calculator, moving, descriptor, 0, 0, now(), calculator.received.size(), {}, {}};
    for (;;) {
        if (stopped(mover)) return false;
        takeWords(mover);
        if (!speakDue(mover)) return false;
        tellTaken(mover);
        hearDue(mover);
        takeWords(mover);
        if (calculator.state == State::over && mover.out.empty()) return true;
        const std::uint64_t due = nextDue(mover);
        const std::uint64_t moment = now();
        // A wait for the descriptor is too coarse ahead of a due byte: the rest is slept exactly.
        if (due > moment + 200 && !takeIn(mover, static_cast<int>(due - moment - 100))) return false;
        if (mover.in.empty() || !mover.out.empty()) {
            if (due <= moment + 200) {
                sleepUntil(due);
                if (!takeIn(mover, 0)) return false;
            }
        } else {
            sleepUntil(nextDue(mover));
        }
        if (calculator.state != State::rest && now() - mover.lastSign > moving.patience * 1000 && mover.out.empty())
            hearSilence(calculator);
    }
}

}  // namespace calculator
