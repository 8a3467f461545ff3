#include "link/notices.h"

#include <atomic>

#include "link/conversation.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

constexpr std::uint64_t noticeMilliseconds = 5000;

struct Notice {
    bool standing = false;
    bool atRest = false;  // has been shown while the link was idle
    std::uint64_t since = 0;
    Text text = Text::none;
    std::string worded;  // empty for one that is shown elsewhere
};

Lock noticeLock;
std::atomic<bool> resultShown = false;
Notice notice GUARDED_BY(noticeLock);

void keep(const Notice &kept) {
    const HoldLock hold(noticeLock);
    notice = kept;
}

}  // namespace

void linkNotice(Text text, const std::vector<std::string> &arguments) {
    const Notice shown{.standing = true, .since = tickCount(), .text = text, .worded = wording(text, arguments)};
    keep(shown);
    userInterface.statusText(StatusPart::link, shown.text, shown.worded);
}

void linkNoticeShown() {
    keep({.standing = true, .atRest = true, .since = tickCount(), .text = Text::none, .worded = {}});
}

// What was shown elsewhere ahead of the conversation, such as what waits, is over with it.
void linkResult(Text text) {
    if (const HoldLock hold(noticeLock); notice.text == Text::none) notice = {};
    resultShown = true;
    linkStatus(text);
}

bool linkResultTake() { return resultShown.exchange(false); }

void linkNoticeForget() {
    resultShown = false;
    keep({});
}

NoticeState linkNoticeState() {
    const HoldLock hold(noticeLock);
    if (!notice.standing) return NoticeState::none;
    if (tickCount() - notice.since < noticeMilliseconds) return NoticeState::standing;
    notice.standing = false;
    return NoticeState::over;
}

bool linkNoticeRepeat() {
    Notice shown;
    {
        const HoldLock hold(noticeLock);
        if (!notice.standing || notice.atRest || notice.worded.empty()) return false;
        notice.atRest = true;
        notice.since = tickCount();
        shown = notice;
    }
    userInterface.statusText(StatusPart::link, shown.text, shown.worded);
    return true;
}

}  // namespace numalink
