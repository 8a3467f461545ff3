// The forms that the items of the open library have had, each with the time and the cause of its coming: in a file
// beside the library, NAME-versions, which may be deleted at any time. Of each item the last 20 earlier forms are kept,
// of all of them 64 MiB, beyond which the oldest go. An item keeps its forms over renames and moves, and hands them to
// the one that takes its place. Any thread.
#pragma once

#include <optional>
#include <vector>

#include "store/form_changes.h"

namespace numalink {

inline constexpr std::size_t historyFormLimit = 20;
inline constexpr std::uint64_t historySizeLimit = std::uint64_t{64} << 20;  // bytes of the forms of all items
inline constexpr char historyEnding[] = "-versions";

// Once the library is open: reads what is there, and follows the library from now on. A file that is damaged is kept
// under another name, and what is sound in it counts; one that isn't ours, or that can't be written, stays as it is,
// and nothing is kept. Both are told, and the library is as usable as ever.
void historyOpen();
// Ahead of the library's closing. Takes out what counts no more, where that is much. Harmless when closed.
void historyClose();

struct FormEntry {
    std::uint64_t time = 0;  // seconds since 1970, 0 when it isn't known
    FormCause cause = FormCause::unknown;
    ItemKind kind = kind::unknown;
    std::string name;      // calculator codes, as it was then
    std::size_t size = 0;  // bytes of its data
};

// The forms of an item that is there, the newest first; number 0 is as it is now. Empty for none, and for folders.
std::vector<FormEntry> historyForms(ItemId id);
// False when there is none of this number, or it can't be read whole; form is then untouched. Not told.
bool historyReadForm(ItemId id, std::size_t number, StoredItem &form);
// Puts an earlier form in the place of the one that is there, under the name and in the folder that the item has now: a
// step that can be taken back. False when it fails (told) or when there is no such form.
bool historyBringBack(ItemId id, std::size_t number);

// When the item came to be as it is, in seconds since 1970; 0 when that isn't known. For many at once, by rising id.
struct ItemTime {
    ItemId id = noItem;
    std::uint64_t time = 0;
};
std::vector<ItemTime> historyTimes();

// Items that have gone without another in their place, the newest first, by the forms that they went in.
struct GoneItem {
    ItemId id = noItem;
    FormEntry form;  // with the time of its going
};
std::vector<GoneItem> historyGone();
bool historyReadGone(ItemId id, StoredItem &form);  // as historyReadForm

}  // namespace numalink
