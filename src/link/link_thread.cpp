#include "link/link_thread.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "link/attention.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/idle_loop.h"
#include "link/link_family.h"
#include "link/notices.h"
#include "link/transmit_queue.h"
#include "platform/lock.h"
#include "platform/port_watch.h"
#include "platform/serial_line.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "telling/graphical_calls.h"

namespace numalink {

std::vector<std::string> (*linkPortsPresent)() = [] { return serialDevices(); };

namespace {

constexpr std::chrono::milliseconds lookAgain{500};  // for a port that isn't there
constexpr std::chrono::milliseconds oneLook{50};     // at ports that are watched, between looks for wishes and a stop

std::thread linkThread;  // graphical thread
Lock closedLock;         // so that a stop can't fall between the look and the sleep of waitClosed
Signal closedChanged GUARDED_BY(closedLock);
std::atomic<LinkPort> portState = LinkPort::untried;

struct Cause {
    LineFault fault;
    Text text;
};
constexpr Cause causes[] = {{LineFault::missing, Text::portMissing},
                            {LineFault::busy, Text::portBusy},
                            {LineFault::denied, Text::portDenied},  // portForbidden where no group helps
                            {LineFault::notSerial, Text::portNotSerial},
                            {LineFault::failed, Text::portFailed}};

bool isAutomatic(const std::string &port) { return port == setting::portAutomatic; }

// Why the port is closed.
Text causeOf(const LineOpening &opening) {
    if (opening.path.empty()) return Text::portNone;
    if (isAutomatic(opening.path)) return Text::portAwaited;
    if (opening.fault == LineFault::denied && opening.group.empty()) return Text::portForbidden;
    for (const Cause &cause : causes)
        if (cause.fault == opening.fault) return cause.text;
    return Text::portFailed;
}

void tellClosedInBox(const LineOpening &opening) {
    tellMore(Text::portNotOpened, causeOf(opening), {opening.path, opening.group}, BoxIcon::none);
}

// Nothing can go through a port that is closed: an attempt ends with what keeps the port closed, where without an
// answer it would have ended a second later.
void endAttempt(const LineOpening &opening) {
    attentionAnswered();
    const std::size_t count = transmitQueueDrop();
    const Text cause = causeOf(opening);
    std::string text = wording(cause, {opening.path, opening.group});
    if (count > 0) text += (text.ends_with('.') ? " " : ". ") + wording(Text::queueDropped, {std::to_string(count)});
    userInterface.statusText(StatusPart::link, cause, text);
    userInterface.transmitQueueChanged();
    tellClosedInBox(opening);
}

void tellLost(const std::string &path, bool inTransfer) {
    if (inTransfer) tellUser(Text::portLostInTransfer, {path});
    std::string text = wording(Text::portLost, {path});
    if (const std::string waiting = waitingText(); !waiting.empty()) text += " " + waiting;
    userInterface.statusText(StatusPart::link, Text::portLost, text);
}

void waitClosed(const LineOpening &opening) {
    if (attentionTakeWish()) endAttempt(opening);
    const auto end = std::chrono::steady_clock::now() + lookAgain;
    HoldLock hold(closedLock);
    while (!conversationStopped() && std::chrono::steady_clock::now() < end) hold.waitUntil(closedChanged, end);
}

void converse(Family family, const LineOpening &opening, bool isBack, std::optional<std::uint8_t> heard) {
    if (!opening.settingsTaken) tellUser(Text::lineSettingsRefused);
    const bool inTransfer = linkIdleLoop(family, isBack, heard);
    serialLine.close();
    if (!conversationStopped()) userInterface.progressRange(0);
    if (!conversationStopped()) tellLost(opening.path, inTransfer);
}

// Which of the ports a calculator speaks at, and with what.
struct FoundPort {
    std::string path;
    std::optional<std::uint8_t> heard = {};
};

// The wish to transmit goes to each port: the calculator is at the one that answers.
void askWatchedPorts(const PortWatch &watch) {
    if (!attentionTakeWish()) return;
    if (watch.open == 0) {
        endAttempt(watch.refused);
    } else if (transmitQueueCount() > 0) {
        sayToWatchedPorts(control::attention);
        attentionSent();
    } else {
        attentionAnswered();
    }
    userInterface.transmitQueueChanged();
}

// What the status bar has: why there is no port to listen at, or that the link waits. Told once, as it changes.
void tellWatch(Family family, const PortWatch &watch, Text &told) {
    const bool opened = watch.open > 0;
    portState = opened ? LinkPort::opened : portState == LinkPort::untried ? LinkPort::refused : portState.load();
    const Text state = opened ? Text::cfxLinkIdle : causeOf(watch.refused);
    if (state == told) return;
    told = state;
    if (opened)
        showLinkIdle(family);
    else
        statusLine(StatusPart::link, state, {watch.refused.path, watch.refused.group});
}

// Listens at all ports that are there until a calculator speaks at one of them, or the link is stopped. They are still
// open then.
FoundPort searchPort(Family family) {
    FoundPort found;
    Text told = Text::none;
    while (found.path.empty() && !conversationStopped()) {
        PortWatch watch = watchPorts(linkPortsPresent(), familyBaud(family));
        if (watch.refused.path.empty()) watch.refused = {.fault = LineFault::missing, .path = setting::portAutomatic};
        tellWatch(family, watch, told);
        for (auto rest = lookAgain; rest.count() > 0 && !conversationStopped() && found.path.empty(); rest -= oneLook) {
            askWatchedPorts(watch);
            const auto byte = hearWatchedPorts(static_cast<int>(oneLook.count()));
            if (byte && beginsConversation(family, byte->byte)) found = {byte->path, byte->byte};
            if (linkNoticeState() == NoticeState::over) told = Text::none;
        }
    }
    releaseWatchedPorts();
    return found;
}

// Without a path where there is none to open: no port, or that of the defaults where the system has none of that name.
LineOpening openPort(const std::string &path, Family family, bool chosenByUser) {
    if (path.empty() || path == setting::portOff) return {.fault = LineFault::missing};
    LineOpening opening = serialLine.open(path, familyBaud(family));
    const bool byDefault = !chosenByUser && opening.path == setting::comPortDefault;
    if (byDefault && opening.fault == LineFault::missing) opening.path.clear();
    return opening;
}

// Why the port is closed. Who has chosen none isn't told.
void tellClosed(const LineOpening &opening, bool chosenByUser) {
    if (opening.path.empty()) return;
    if (chosenByUser)
        tellClosedInBox(opening);
    else
        statusLine(StatusPart::link, causeOf(opening), {opening.path, opening.group});
}

void linkThreadBody(Family family, const std::string &port, bool chosenByUser) {
    threadRole = ThreadRole::link;
    bool told = false;
    bool wasOpen = false;
    while (!conversationStopped()) {
        conversationLineOpened();
        const FoundPort found = isAutomatic(port) ? searchPort(family) : FoundPort{port};
        if (conversationStopped()) break;
        const LineOpening opening = openPort(found.path, family, chosenByUser);
        stopWatchingPorts();
        if (opening.fault == LineFault::none) portState = LinkPort::opened;
        if (portState == LinkPort::untried) portState = LinkPort::refused;
        if (opening.fault == LineFault::none && !conversationStopped()) {
            converse(family, opening, wasOpen, found.heard);
            told = wasOpen = true;
        } else if (!told && !conversationStopped()) {
            tellClosed(opening, chosenByUser);
            told = true;
        }
        if (!conversationStopped() && !isAutomatic(port)) waitClosed(opening);
    }
    stopWatchingPorts();
    serialLine.close();
}

}  // namespace

void stopLinkThread() {
    if (!linkThread.joinable()) return;
    {
        const HoldLock hold(closedLock);
        conversationStop();
        closedChanged.notify_all();
    }
    graphicalCallsRefuse(ThreadRole::link);
    serialLine.interrupt();
    linkThread.join();
    graphicalCallsAccept(ThreadRole::link);
    attentionForget();
    transmitConversation(false);
}

void startLinkThread() {
    // At the program's start nobody has asked for the port yet; behind the settings somebody has just chosen it.
    const bool restart = linkThread.joinable();
    if (restart) {
        const bool cut = linkConversationRuns();
        stopLinkThread();
        linkNoticeForget();
        userInterface.statusText(StatusPart::link, Text::none, "");
        userInterface.progressRange(0);
        if (cut) {
            userInterface.refreshTree();  // what the stopped conversation has stored
            linkNotice(Text::transferStopped);
        }
    }
    conversationReset();
    portState = LinkPort::untried;
    linkThread = std::thread(linkThreadBody, linkFamily(), settingsValue(setting::comPort), restart);
}

bool linkConversationRuns() { return transmitConversationRuns(); }
LinkPort linkPort() { return portState; }
bool linkThreadRuns() { return linkThread.joinable(); }

}  // namespace numalink
