#include "link/link_thread.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>

#include "link/attention.h"
#include "link/conversation.h"
#include "link/idle_loop.h"
#include "link/link_family.h"
#include "link/notices.h"
#include "link/transmit_queue.h"
#include "platform/lock.h"
#include "platform/serial_line.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "telling/graphical_calls.h"

namespace numalink {

namespace {

constexpr std::chrono::milliseconds lookAgain{500};  // for a port that isn't there

std::thread linkThread;  // graphical thread
Lock closedLock;         // so that a stop can't fall between the look and the sleep of waitClosed
std::condition_variable closedChanged GUARDED_BY(closedLock);
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

// The port of the defaults, and the system has none of that name: nobody has chosen one.
bool noneChosen(const LineOpening &opening) {
    return opening.fault == LineFault::missing && opening.path == setting::comPortDefault;
}

// Why the port is closed.
Text causeOf(const LineOpening &opening) {
    if (noneChosen(opening)) return Text::portNone;
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
    if (count > 0) text += ". " + wording(Text::queueDropped, {std::to_string(count)});
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

void converse(Family family, const LineOpening &opening, bool isBack) {
    if (!opening.settingsTaken) tellUser(Text::lineSettingsRefused);
    const bool inTransfer = linkIdleLoop(family, isBack);
    serialLine.close();
    if (!conversationStopped()) userInterface.progressRange(0);
    if (!conversationStopped()) tellLost(opening.path, inTransfer);
}

void linkThreadBody(Family family, const std::string &port, bool chosenByUser) {
    threadRole = ThreadRole::link;
    bool told = false;
    bool wasOpen = false;
    while (!conversationStopped()) {
        conversationLineOpened();
        const LineOpening opening = serialLine.open(port, familyBaud(family));
        if (opening.fault == LineFault::none) portState = LinkPort::opened;
        if (portState == LinkPort::untried) portState = LinkPort::refused;
        if (opening.fault == LineFault::none && !conversationStopped()) {
            converse(family, opening, wasOpen);
            told = wasOpen = true;
        } else if (!told && !conversationStopped()) {
            if (chosenByUser && !noneChosen(opening))
                tellClosedInBox(opening);
            else
                statusLine(StatusPart::link, causeOf(opening), {opening.path, opening.group});
            told = true;
        }
        if (!conversationStopped()) waitClosed(opening);
    }
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
