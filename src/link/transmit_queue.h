// The items that wait for a calculator, at most 100, in memory only. One lock guards them; the user interface is told
// by transmitQueueChanged after each change. Any thread, unless told.
#pragma once

#include <optional>
#include <vector>

#include "calculator/frames.h"
#include "calculator/item_kinds.h"
#include "link/outgoing_image.h"
#include "telling/user_interface.h"

namespace numalink {

inline constexpr std::size_t transmitQueueLimit = 100;

struct QueuedItem {
    ItemId id = noItem;
    int slot = 0;            // a picture's place in the calculator, 1 to 6; 0 until the user has been asked
    bool confirmed = false;  // a memory backup: the user has agreed
};

bool transmitAvailable();  // whether the program can transmit at all

// Appends the item, or all that a folder holds at any depth. What waits already keeps its place. False when it was
// refused (told by name) or the queue is full (told). What a folder holds and can't go is told item by item,
// a few at most, and the rest is queued.
bool queueItem(ItemId id);
bool queueItems(const std::vector<ItemId> &ids);  // the same for many, as for a folder of them

// Graphical thread. Asks for picture slots and the consent to backups, then marks the wish to transmit; the attention
// byte goes out as soon as the link is idle. False when there is nothing to send or the user declined.
bool beginTransmit();

// Graphical thread: the commands "queue" and "transmit". Both end with a line that tells what waits, unless a
// transmission is on its way. A folder of which only a part can go is queued and sent in part. False when nothing was
// begun.
void queueAndTell(const std::vector<ItemId> &ids);
bool queueAndBegin(const std::vector<ItemId> &ids);
inline void queueAndTell(ItemId id) { queueAndTell(std::vector{id}); }
inline bool queueAndBegin(ItemId id) { return queueAndBegin(std::vector{id}); }

// What waits, by number and first names, for the status bar; empty when nothing does.
std::string waitingText();
void tellWaiting();

// Whether command 40006 makes sense: items wait, and none is being sent or announced.
bool transmitCanBegin();

std::size_t transmitQueueCount();
std::vector<ItemId> transmitQueueIds();
std::vector<ItemId> transmitQueueHeld();  // those, and what can be queued again: not to be cleared from the library
void transmitQueueRemove(ItemId id);      // the first entry of this item
void transmitQueueClear();                // by the user's wish: nothing is kept for "queue again"

// What the last failure dropped can be queued again.
std::size_t transmitDroppedCount();
std::size_t transmitQueueAgain();  // how many came back

// The main window's timer calls this every 500 ms: when no calculator has answered, the queue is emptied.
void transmitDeadlineTest();

// For the link's thread: the first entry; emptying after a failure, which keeps the ids for "queue again" and gives
// their number; the answers that a question has brought.
std::optional<QueuedItem> transmitQueueFirst();
std::size_t transmitQueueDrop();
void transmitQueueAnswered(const QueuedItem &item);
void transmitConversation(bool runs);
bool transmitConversationRuns();
void transmitNoteSent(const std::string &utf8Name);

// What the conversations that are over have sent, in words: told once; empty where nothing was. Any thread.
std::string transmitSentWords();

// Tells that the item can't go, and why. The name is in calculator codes.
void tellRefusal(Refusal refusal, const std::string &name, BoxIcon icon);

// A box for a stored program that no calculator of the chosen family takes for its length.
void tellWhenTooLong(ItemId id);

// The user's answers, asked for where they are missing: false when the item isn't to go.
bool askPictureSlotOf(QueuedItem &entry, const std::string &name, ByteView head);
bool askBackupConsent(QueuedItem &entry, const std::string &name);

}  // namespace numalink
