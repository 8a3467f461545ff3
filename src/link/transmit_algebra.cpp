// To an ALGEBRA calculator: model frames are exchanged, then each queued program or block goes as head and data, and
// at the end the closing frame. Every frame goes a byte at a time. A failure leaves the queue as it is.
#include "calculator/charset.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/conversations.h"
#include "link/notices.h"
#include "link/transmit_end.h"
#include "telling/texts.h"

namespace numalink {

namespace {

bool isConfirmed() {
    const auto answer = readByte(Wait::lasting);
    return answer == control::acknowledge || failUnconfirmed(answer);
}

// Our model frame first; the calculator's is the answer, which we confirm.
bool exchangeModels() {
    sendSlowly(*buildHeadFrame(kind::modelFrame, Family::algebra, {}));
    Bytes model(shortHeadFrameSize);
    if (!readGoodHead(model)) return failChecksum();
    send(control::acknowledge);
    return isConfirmed();
}

// Head and data, each confirmed by the calculator.
bool transmitItem(const NextItem &next) {
    const Refusal refusal = outgoingRefusal(next.item, Family::algebra);
    if (refusal != Refusal::none) {
        tellCannotGo(next, refusal);
        return false;
    }
    linkStatus(Text::sendingItem, {utf8FromCalculator(next.item.name)});
    const Outgoing outgoing = outgoingToAlgebra(next.item);
    sendSlowly(outgoing.head);
    if (!isConfirmed()) return false;
    sendSlowlyWithProgress(outgoing.data);
    if (!isConfirmed()) return false;
    tellSent(next);
    return true;
}

bool transmitQueued() {
    while (auto next = nextToTransmit())
        if (!transmitItem(*next)) return false;
    return !conversationOver();
}

}  // namespace

void transmitToAlgebra() {
    linkStatus(Text::algebraTransmitting);
    if (exchangeModels() && transmitQueued()) {
        linkStatus(Text::algebraClosing);
        sendSlowly(*buildHeadFrame(kind::endOfTransmission, Family::algebra, {}));
        linkResult(Text::algebraSent);
    }
    clearSentFromTemp();
}

}  // namespace numalink
