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

int signalPair[2] = {-1, -1};
QSocketNotifier *notifier = nullptr;

void onSignal(int) {
    const int error = errno;
    const char mark = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPair[0], &mark, 1);
    errno = error;
}

}  // namespace

void watchStopSignals(void (*stop)()) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, signalPair) != 0) return;
    notifier = new QSocketNotifier(signalPair[1], QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [stop] {
        char marks[16];
        [[maybe_unused]] const ssize_t count = ::read(signalPair[1], marks, sizeof marks);
        stop();
    });
    for (const int number : stopSignals) std::signal(number, onSignal);
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, notifier, [stop](QSessionManager &) { stop(); });
}

void forgetStopSignals() {
    for (const int stop : stopSignals) std::signal(stop, SIG_DFL);
    delete notifier;
    notifier = nullptr;
    for (int &end : signalPair) {
        if (end >= 0) ::close(end);
        end = -1;
    }
}

}  // namespace numalink
