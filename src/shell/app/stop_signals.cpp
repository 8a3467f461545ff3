#include "shell/app/stop_signals.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>

namespace numalink {

namespace {

// SIGHUP comes when the terminal is closed that the program was started from.
constexpr int stopSignals[] = {SIGTERM, SIGINT, SIGHUP};

struct StopSignals {
    int signalPair[2] = {-1, -1};
    QSocketNotifier *notifier = nullptr;
};
StopSignals state;

void onSignal(int) {
    const int error = errno;
    const char mark = 1;
    [[maybe_unused]] const ssize_t written = ::write(state.signalPair[0], &mark, 1);
    errno = error;
}

}  // namespace

void watchStopSignals(void (*stop)()) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, state.signalPair) != 0) return;
    state.notifier = new QSocketNotifier(state.signalPair[1], QSocketNotifier::Read);
    QObject::connect(state.notifier, &QSocketNotifier::activated, state.notifier, [stop] {
        char marks[16];
        [[maybe_unused]] const ssize_t count = ::read(state.signalPair[1], marks, sizeof marks);
        stop();
    });
    for (const int number : stopSignals) std::signal(number, onSignal);
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, state.notifier, [stop](QSessionManager &) { stop(); });
}

void forgetStopSignals() {
    for (const int stop : stopSignals) std::signal(stop, SIG_DFL);
    delete state.notifier;
    for (const int end : state.signalPair)
        if (end >= 0) ::close(end);
    state = {};
}

}  // namespace numalink
