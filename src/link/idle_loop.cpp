#include "link/idle_loop.h"

#include "link/attention.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/conversations.h"
#include "link/notices.h"
#include "link/transmit_end.h"
#include "platform/serial_line.h"

namespace numalink {

namespace {

enum class IdleEnd { byte, timeOut, woken };

struct IdleRead {
    IdleEnd end = IdleEnd::timeOut;
    std::uint8_t byte = 0;
};

// Unlike the reads of a conversation it comes back on a wake, which tells of a wish to transmit.
IdleRead readIdle(Family family) {
    const ReadLimits limits{.total = family == Family::cfx ? 510u : 10010u};
    IdleRead idle;
    const LineRead read = serialLine.read({&idle.byte, 1}, limits);
    if (read.end == ReadEnd::gone) conversationLineGone();
    if (read.count == 1) idle.end = IdleEnd::byte;
    if (read.count == 0 && read.end == ReadEnd::woken) idle.end = IdleEnd::woken;
    return idle;
}

void sendAttention() {
    if (!attentionTakeWish()) return;
    if (transmitQueueCount() > 0) {
        send(control::attention);
        attentionSent();
    } else {
        attentionAnswered();
    }
    userInterface.transmitQueueChanged();
}

// Which conversation the byte begins, or nothing for a byte of no meaning.
void (*conversationOf(Family family, std::uint8_t byte))() {
    const bool cfx = family == Family::cfx;
    if (byte == control::ready) return cfx ? transmitToCfx : transmitToAlgebra;
    if (byte == control::attention) return cfx ? receiveFromCfx : receiveFromAlgebra;
    return cfx && byte == control::cfxAttention ? receiveFromCfx : nullptr;
}

void actOn(Family family, std::uint8_t byte) {
    const auto conversation = conversationOf(family, byte);
    if (conversation != nullptr) transmitConversation(true);
    attentionAnswered();
    if (family == Family::cfx && byte != control::ready) dropQueue();
    if (conversation == nullptr) {
        if (family == Family::algebra) linkStatus(Text::algebraNotUnderstood);
        return;
    }
    conversation();
    transmitConversation(false);
}

}  // namespace

void showLinkIdle(Family family) { linkStatus(family == Family::cfx ? Text::cfxLinkIdle : Text::algebraLinkIdle); }

bool beginsConversation(Family family, std::uint8_t byte) { return conversationOf(family, byte) != nullptr; }

bool linkIdleLoop(Family family, bool isBack, std::optional<std::uint8_t> heard) {
    bool idleIsDue = true;
    bool tellsWaiting = isBack || heard;
    if (heard) {
        actOn(family, *heard);
        if (conversationOver()) return !conversationStopped();
    }
    while (!conversationOver()) {
        if (idleIsDue) userInterface.progressRange(0);
        const bool showsResult = idleIsDue && linkResultTake();
        if (idleIsDue ? !showsResult : linkNoticeState() == NoticeState::over) showLinkIdle(family);
        if (idleIsDue && !linkNoticeRepeat() && tellsWaiting) tellWaiting();
        idleIsDue = false;
        sendAttention();
        const IdleRead idle = readIdle(family);
        if (idle.end != IdleEnd::byte || conversationOver()) continue;
        actOn(family, idle.byte);
        idleIsDue = tellsWaiting = true;
        if (conversationOver()) return !conversationStopped();
    }
    return false;
}

}  // namespace numalink
