#include "link/attention.h"

#include <atomic>
#include <cstdint>

#include "platform/clock.h"
#include "platform/serial_line.h"

namespace numalink {

namespace {

constexpr std::uint64_t answerMilliseconds = 1000;

std::atomic<bool> wished = false;
std::atomic<std::uint64_t> linkAttentionDeadline = 0;  // on the clock of tickCount; 0 when no answer is awaited

}  // namespace

void attentionWish() {
    wished = true;
    serialLine.wake();
}

bool attentionTakeWish() {
    if (!wished) return false;
    attentionSent();
    wished = false;
    return true;
}

void attentionSent() { linkAttentionDeadline = tickCount() + answerMilliseconds; }
void attentionAnswered() { linkAttentionDeadline = 0; }

void attentionForget() {
    wished = false;
    linkAttentionDeadline = 0;
}

bool attentionIsOut() { return wished || linkAttentionDeadline != 0; }

bool attentionIsOverdue() {
    std::uint64_t deadline = linkAttentionDeadline;
    if (deadline == 0 || tickCount() <= deadline) return false;
    return linkAttentionDeadline.compare_exchange_strong(deadline, 0);
}

}  // namespace numalink
