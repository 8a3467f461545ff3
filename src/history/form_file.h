// The file of earlier forms, byte for byte: a head, and behind it one record for each change, only ever appended to. A
// record is a head with a sum of its own, so that a walk over the records reads no forms, then name, first payload,
// second payload and their sum. Numbers are little-endian. Not locked: its one user is.
#pragma once

#include <string>
#include <vector>

#include "store/form_changes.h"

namespace numalink {

struct FormRecordHead {
    char signature[4];
    ItemId id;
    ItemKind kind;
    ItemId successor;            // noItem, or the item that took this one's place
    std::uint64_t time;          // of the change, seconds since 1970
    std::uint64_t digestBefore;  // of the form that follows; 0 for none
    std::uint64_t digestAfter;   // of the form that came; 0 for none
    std::uint32_t nameSize, headSize, dataSize;
    std::uint8_t cause;  // of the change: how the form that came is called
    std::uint8_t hasForm;
    std::uint8_t spare[2];
    std::uint64_t headSum;  // of all above
};
static_assert(sizeof(FormRecordHead) == 64);

struct FormRecord {
    FormRecordHead head{};
    std::uint64_t offset = 0;  // of its head in the file
    std::string name;

    std::uint64_t size() const;  // bytes in the file
};

enum class FormFileState {
    sound,
    absent,
    damaged,  // the records up to the damage were read
    foreign,  // of another program, or of a newer version
    unread
};

// All records of the file in order. A last one that was cut short, as when the machine died, is left out and is no
// damage; endOfSound tells where it begins.
FormFileState readFormRecords(const std::string &path, std::vector<FormRecord> &records, std::uint64_t &endOfSound);

// The bytes of a record. form is null for one without.
Bytes encodeFormRecord(FormRecordHead head, const StoredItem *form);
Bytes encodeFormFileHead();
// Whether what follows a record's head is what was written; gives name and payloads to form.
bool decodeForm(const FormRecordHead &head, ByteView rest, StoredItem &form);

// Appends at the offset to a file that is there; what lies behind the offset goes. On the disk when true.
bool appendToFormFile(const std::string &path, std::uint64_t offset, ByteView bytes);
// The form of a record; false when it can't be read whole.
bool readForm(const std::string &path, const FormRecord &record, StoredItem &form);
// The bytes of a record as they lie; empty on failure.
Bytes readRecordBytes(const std::string &path, const FormRecord &record);

}  // namespace numalink
