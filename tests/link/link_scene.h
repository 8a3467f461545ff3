// What a conversation in a test takes place in: an empty library on a disk that needs no waiting, a silent user
// interface, and the link in its idle loop. All ports are the system's again at the end.
#pragma once

#include "link/attention.h"
#include "link/conversation.h"
#include "link/idle_loop.h"
#include "link/notices.h"
#include "link/transmit_queue.h"
#include "platform/clock.h"
#include "platform/file_port.h"
#include "platform/serial_line.h"
#include "settings/settings_store.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "telling/user_interface.h"

namespace numalink {

struct LinkScene {
    LinkScene() {
        filePort.sync = [](int) { return true; };  // no power is lost here, and a disk takes its time
        isOpen = storeOpen();
    }
    ~LinkScene() {
        filePort = systemFilePort;
        userInterface = userInterfaceSilent;  // a library that could not be written says so once more
        storeClose();
        clockPort = systemClock;
        serialLine = systemSerialLine;
    }
    LinkScene(const LinkScene &) = delete;
    LinkScene &operator=(const LinkScene &) = delete;

    // Ahead of each conversation: nothing waits and nothing is noted from an earlier one.
    static void prepare(bool algebra, bool removeColor) {
        settingsSetValue(setting::linkType, algebra ? "algebra" : "cfx");
        settingsSetInt(setting::removeColor, removeColor ? 1 : 0);
        transmitQueueClear();
        attentionForget();
        linkNoticeForget();
        conversationReset();
        conversationLineOpened();
    }

    const ScratchFolder folder;
    bool isOpen = false;
};

}  // namespace numalink
