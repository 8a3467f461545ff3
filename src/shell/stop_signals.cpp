#include "shell/stop_signals.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <csignal>

#include "shell/start_up.h"

namespace numalink {

namespace {

int signalPair[2] = {-1, -1};
QSocketNotifier *notifier = nullptr;

void onSignal(int) {
    const char mark = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPair[0], &mark, 1);
}

}  // namespace

void watchStopSignals() {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, signalPair) != 0) return;
    notifier = new QSocketNotifier(signalPair[1], QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] {
        char marks[16];
        [[maybe_unused]] const ssize_t count = ::read(signalPair[1], marks, sizeof marks);
        shutDownAtOnce();
    });
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, notifier, [](QSessionManager &) { shutDownAtOnce(); });
}

void forgetStopSignals() {
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    delete notifier;
    notifier = nullptr;
    for (int &end : signalPair) {
        if (end >= 0) ::close(end);
        end = -1;
    }
}

}  // namespace numalink
