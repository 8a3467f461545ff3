// The calculator link in the window: its commands, its timer, the window that shows the queue. Graphical thread only,
// but for queueMarked.
#pragma once

namespace numalink {

void startLink();  // the link's thread and the test of its deadline; with the library open
void stopLink();   // joins the thread; ahead of closing the library
void forgetLinkCommands();

void transmitSelected();  // queues the selected item and sends what waits
void queueSelected();     // queues it and says how many wait
void openQueueWindow();

void queueMarked();  // what can be sent has changed. Any thread

}  // namespace numalink
