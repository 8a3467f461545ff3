// Words in the status bar that aren't a state of the conversation: what was replaced, renamed, dropped. They are shown
// at once, and again for some seconds when the link is idle, since the conversation writes over them. Any thread.
#pragma once

#include <string>
#include <vector>

#include "telling/texts.h"

namespace numalink {

void linkNotice(Text text, const std::vector<std::string> &arguments = {});
// For a text that is shown elsewhere: it stays for the same time.
void linkNoticeShown();

// How a conversation has ended well: stays until the next thing, in place of the words of the idle link.
void linkResult(Text text);
bool linkResultTake();  // whether the last conversation has shown one; told once

enum class NoticeState { none, standing, over };  // over: its time has passed, told once
NoticeState linkNoticeState();
bool linkNoticeRepeat();  // the link has come to rest: shows the standing notice once more; false when there is none

void linkNoticeForget();  // ahead of a new start of the link

}  // namespace numalink
