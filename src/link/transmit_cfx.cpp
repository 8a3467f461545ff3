// To a CFX calculator: each queued item's head, perhaps a question about an existing item, its data with inner frames
// acknowledged one by one, and at the end the closing frame.
#include <algorithm>

#include "calculator/charset.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/conversations.h"
#include "link/transmit_end.h"
#include "settings/settings_store.h"
#include "telling/texts.h"

namespace numalink {

namespace {

enum class Step { goOn, next, idle };

Step giveUp() {
    dropQueue();
    dropInput();
    return Step::idle;
}

Step giveUp(Text text) {
    dropQueue();
    failBox(text, {}, BoxIcon::none);
    return Step::idle;
}

Step cancelAll() {
    send(control::cancel);
    return giveUp();
}

// The calculator has an item of this name.
Step askToOverwrite(const std::string &name, std::optional<std::uint8_t> &answer) {
    const Answer chosen = userInterface.askItemExists(wording(Text::itemExists, {name}));
    dropInput();
    if (conversationOver()) return Step::idle;
    if (chosen != Answer::yes && chosen != Answer::no) return cancelAll();
    send(chosen == Answer::yes ? control::acknowledge : control::refuse);
    answer = readByte(Wait::brief);
    if (!answer) return giveUp();
    return chosen == Answer::yes ? Step::goOn : Step::next;
}

// The head, up to the confirmation that the data may follow.
Step sendHead(const Outgoing &outgoing, const std::string &name) {
    send(outgoing.head);
    auto answer = readByte(Wait::brief);
    if (!answer) return giveUp();
    if (answer == control::itemExists) {
        const Step step = askToOverwrite(name, answer);
        if (step != Step::goOn) return step;
    }
    if (answer == control::headRefused) return giveUp(Text::headRefused);
    return answer == control::acknowledge ? Step::goOn : giveUp(Text::headNotConfirmed);
}

// The queue stays when the calculator stops confirming.
Step sendData(const Outgoing &outgoing) {
    const ByteView data = outgoing.data;
    std::size_t frameEnd = outgoing.frameLength;
    for (std::size_t at = 0; at < data.size() && !conversationOver();) {
        const std::size_t limit = outgoing.frameLength == 0 ? data.size() : std::min(data.size(), frameEnd);
        const std::size_t chunk = std::min(outgoing.chunk, limit - at);
        send(data.subspan(at, chunk));
        progressAt(at);
        at += chunk;
        if (outgoing.frameLength == 0 || at < frameEnd || at >= data.size()) continue;
        frameEnd += outgoing.frameLength;
        if (readByte(Wait::brief) == control::acknowledge) continue;
        failBox(Text::dataNotConfirmed);
        return Step::idle;
    }
    return Step::goOn;
}

// The calculator's last word on the item: stored, or not.
Step endItem() {
    const auto answer = readByte(Wait::brief);
    if (!answer) return giveUp();
    if (answer == control::acknowledge) return Step::goOn;
    readByte(Wait::brief);
    return giveUp(Text::itemNotConfirmed);
}

// What the user has to say about this item, where it wasn't asked ahead.
Step askMissing(NextItem &next) {
    const bool isPicture = next.item.kind == kind::picture;
    if (!isPicture && next.item.kind != kind::backup) return Step::goOn;
    const bool agreed = isPicture ? askPictureSlotOf(next.entry, next.item.name, next.item.head)
                                  : askBackupConsent(next.entry, next.item.name);
    if (conversationOver()) return Step::idle;
    if (agreed) return Step::goOn;
    return isPicture ? cancelAll() : Step::next;
}

Step transmitItem(NextItem &next) {
    const Refusal refusal = outgoingRefusal(next.item, Family::cfx);
    if (refusal != Refusal::none) {
        tellCannotGo(next, refusal);
        return Step::idle;
    }
    const Step asked = askMissing(next);
    if (asked == Step::next) transmitQueueRemove(next.entry.id);
    if (asked != Step::goOn) return asked;
    const bool removeColor = settingsInt(setting::removeColor) != 0;
    const Outgoing outgoing = outgoingToCfx(next.item, removeColor, next.entry.slot);
    const std::string name = utf8FromCalculator(next.item.name);
    linkStatus(Text::sendingItem, {name});
    progressStart(outgoing.data.size());
    Step step = sendHead(outgoing, name);
    if (step == Step::next && !conversationOver()) transmitQueueRemove(next.entry.id);
    if (step != Step::goOn) return step;
    step = sendData(outgoing);
    if (step == Step::goOn) step = endItem();
    if (conversationOver()) return Step::idle;
    if (step == Step::goOn) tellSent(next);
    return step;
}

}  // namespace

void transmitToCfx() {
    Step step = Step::goOn;
    while (step != Step::idle) {
        auto next = nextToTransmit();
        if (!next) break;
        step = transmitItem(*next);
    }
    if (step != Step::idle) sendSlowly(*buildHeadFrame(kind::endOfTransmission, Family::cfx, {}));
    clearSentFromTemp();
}

}  // namespace numalink
