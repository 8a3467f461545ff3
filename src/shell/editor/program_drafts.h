// Texts that are not stored: while they are typed, for a program that doesn't come to its end, and those that could not
// be stored when it ended. Files beside the library, which the next start reads. Graphical thread only.
#pragma once

#include <QString>
#include <optional>
#include <string>

#include "store/item_store.h"

namespace numalink {

// Writes the text of an item; over the draft that is open, else into the first free file. False when it can't.
bool keepDraft(const ItemEntry &item, const QString &text);
// The same, and it stays the open draft. One that was begun so goes when its text isn't wanted as a draft any more.
bool saveDraft(const ItemEntry &item, const QString &text);
void dropSavedDraft();  // the text is again as it is stored
void releaseDraft();    // the open draft is left as it lies, to be offered again
void forgetDraft();     // the open draft's text is stored or not wanted: its file goes

std::string draftFolder();

// What a draft's file holds.
struct Draft {
    std::string path;
    ItemId id = noItem;
    ItemKind kind = kind::program;
    QString name;
    QString text;
};

inline constexpr int draftLimit = 99;        // drafts are numbered from 1 on
std::optional<Draft> readDraft(int number);  // nothing where none lies, or none of this program's making
void takeDraft(const Draft &draft);          // its text is on view: it is the open draft from now on
void removeDraft(const Draft &draft);

}  // namespace numalink
