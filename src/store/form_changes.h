// What the store tells of each change of an item that people see: for who keeps the forms that items have had. Told
// once a change is on the disk, by whichever way it went.
#pragma once

#include <span>
#include <string>

#include "store/item_store.h"

namespace numalink {

// How a form came about. The numbers lie in files.
enum class FormCause : std::uint8_t {
    unknown,
    made,  // a new item of the program's
    edited,
    received,  // from a calculator
    imported,
    replaced,     // by an item that took its place
    broughtBack,  // an earlier form
    takenBack,    // by undo or redo
    removed       // no form: the item has gone
};
inline constexpr std::size_t formCauseCount = 9;

struct FormChange {
    ItemId id = noItem;
    const StoredItem *before = nullptr;  // null: it came
    const StoredItem *after = nullptr;   // null: it left
    ItemId successor = noItem;           // of one that left: the item of its kind and name that stands in its place
};

// Called with the store's lock held, so it mustn't call the store; it may throw std::bad_alloc. Folders and what lies
// in the temporary folder are never told of.
using FormListener = void (*)(std::span<const FormChange> changes, FormCause cause);
void storeTellForms(FormListener listener);  // null: nobody

// While one lives, what its thread changes has this cause, whatever it is done by.
class NamedCause {
public:
    explicit NamedCause(FormCause cause);
    ~NamedCause();
    NamedCause(const NamedCause &) = delete;
    NamedCause &operator=(const NamedCause &) = delete;

private:
    FormCause outer;
};

// The path of a file that goes with the library: beside storage.dat itself where that is a link. Empty while closed.
std::string storePathBeside(std::string_view ending);

}  // namespace numalink
