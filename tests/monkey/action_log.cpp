#include "monkey/action_log.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <thread>

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace monkey {

namespace {

constexpr std::uint64_t kept = 50;
constexpr int hangSeconds = 150;  // a sanitized program on a busy machine is slow

char lines[kept][160];
std::uint64_t lineCount = 0;
std::uint64_t seedOfRun = 0;
std::atomic<std::uint64_t> signsOfLife = 0;
std::atomic<bool> watching = false;
std::thread watch;

void tellLast() {
    static std::atomic<bool> told = false;
    if (told.exchange(true)) return;
    std::fprintf(stderr, "\nThe monkey's seed was %llu. Its last actions:\n",
                 static_cast<unsigned long long>(seedOfRun));
    for (std::uint64_t i = lineCount > kept ? lineCount - kept : 0; i < lineCount; i++)
        std::fprintf(stderr, "  %s\n", lines[i % kept]);
}

void onAbort(int) {
    tellLast();
    std::signal(SIGABRT, SIG_DFL);
    std::abort();
}

void watchForHang() {
    std::uint64_t last = 0;
    for (int tenths = 0; watching; tenths++) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (const std::uint64_t now = signsOfLife; now != last) {
            last = now;
            tenths = 0;
        }
        if (tenths < hangSeconds * 10) continue;
        std::fprintf(stderr, "No action for %d s: the program hangs.\n", hangSeconds);
        std::abort();
    }
}

}  // namespace

void watchForDeath(std::uint64_t seed) {
    seedOfRun = seed;
    std::signal(SIGABRT, onAbort);
    if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(tellLast);
    watching = true;
    watch = std::thread(watchForHang);
}

void stopWatching() {
    watching = false;
    watch.join();
}

void logAction(std::uint64_t number, const char *format, ...) {
    char *line = lines[lineCount++ % kept];
    const int start = std::snprintf(line, sizeof lines[0], "%llu ", static_cast<unsigned long long>(number));
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + start, sizeof lines[0] - static_cast<std::size_t>(start), format, arguments);
    va_end(arguments);
    signsOfLife++;
}

void fail(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
    std::abort();
}

}  // namespace monkey
