// The way from the wish to transmit to a calculator's answer: the graphical thread marks the wish, the link's thread
// sends the attention byte when it is idle, and a deadline runs until any byte is heard. Any thread.
#pragma once

namespace numalink {

void attentionWish();       // marks it and wakes the link
bool attentionTakeWish();   // link thread, idle; the deadline stands from here on, so that nobody sees a gap
void attentionSent();       // the deadline runs from now on
void attentionAnswered();   // any byte that was read
void attentionForget();     // wish and deadline, ahead of a restart
bool attentionIsOut();      // wished for or sent, and not yet answered
bool attentionIsOverdue();  // the deadline has passed; told once

}  // namespace numalink
