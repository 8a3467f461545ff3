#include "history/form_file.h"

#include <cstring>

#include "platform/file_port.h"
#include "store/file/journal.h"

namespace numalink {

namespace {

constexpr char fileSignature[16] = "NUMALINKFORMS\x01\x00";  // the version behind the name
constexpr char recordSignature[4] = {'F', 'O', 'R', 'M'};
constexpr std::size_t payloadLimit = std::size_t{64} << 20;  // bytes of one form; a record beyond it is damage
constexpr std::size_t recordLimit = 1'000'000;

struct OpenFile {
    OpenFile(const std::string &path, bool toWrite) {
        result = toWrite ? filePort.openOwn(path.c_str(), true, file) : filePort.openToRead(path.c_str(), file);
    }
    ~OpenFile() {
        if (result == OpenResult::opened) filePort.close(file);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
        return filePort.readAt(file, offset, bytes.data(), bytes.size()) == bytes.size();
    }

    OpenResult result = OpenResult::failed;
    int file = -1;
};

ByteView bytesOfHead(const FormRecordHead &head) {
    return {reinterpret_cast<const std::uint8_t *>(&head), offsetof(FormRecordHead, headSum)};
}

bool headIsSound(const FormRecordHead &head) {
    if (std::memcmp(head.signature, recordSignature, sizeof recordSignature) != 0) return false;
    if (sumOf(bytesOfHead(head)) != head.headSum) return false;
    return head.nameSize <= storeNameLimit && std::uint64_t{head.headSize} + head.dataSize <= payloadLimit &&
           head.cause < formCauseCount;
}

std::uint64_t bytesBehind(const FormRecordHead &head) {
    return std::uint64_t{head.nameSize} + head.headSize + head.dataSize + sizeof(std::uint64_t);
}

}  // namespace

std::uint64_t FormRecord::size() const { return sizeof head + bytesBehind(head); }

Bytes encodeFormFileHead() { return {std::begin(fileSignature), std::end(fileSignature)}; }

Bytes encodeFormRecord(FormRecordHead head, const StoredItem *form) {
    std::memcpy(head.signature, recordSignature, sizeof recordSignature);
    const std::string_view name = form ? std::string_view(form->name).substr(0, storeNameLimit) : std::string_view();
    head.hasForm = form != nullptr;
    head.nameSize = static_cast<std::uint32_t>(name.size());
    head.headSize = form ? static_cast<std::uint32_t>(form->head.size()) : 0;
    head.dataSize = form ? static_cast<std::uint32_t>(form->data.size()) : 0;
    head.headSum = sumOf(bytesOfHead(head));
    const auto *own = reinterpret_cast<const std::uint8_t *>(&head);
    Bytes bytes;
    bytes.reserve(sizeof head + name.size() + head.headSize + head.dataSize + sizeof(std::uint64_t));
    bytes.assign(own, own + sizeof head);
    bytes.insert(bytes.end(), name.begin(), name.end());
    if (form != nullptr) {
        bytes.insert(bytes.end(), form->head.begin(), form->head.end());
        bytes.insert(bytes.end(), form->data.begin(), form->data.end());
    }
    const std::uint64_t sum = sumOf(ByteView(bytes).subspan(sizeof head));
    const auto *ofSum = reinterpret_cast<const std::uint8_t *>(&sum);
    bytes.insert(bytes.end(), ofSum, ofSum + sizeof sum);
    return bytes;
}

bool decodeForm(const FormRecordHead &head, ByteView rest, StoredItem &form) {
    if (head.hasForm == 0 || rest.size() != bytesBehind(head)) return false;
    std::uint64_t sum = 0;
    const ByteView payload = rest.first(rest.size() - sizeof sum);
    std::memcpy(&sum, rest.data() + payload.size(), sizeof sum);
    if (sumOf(payload) != sum) return false;
    const ByteView name = payload.first(head.nameSize), first = payload.subspan(head.nameSize, head.headSize),
                   second = payload.subspan(head.nameSize + head.headSize);
    form = {};
    form.id = head.id;
    form.kind = head.kind;
    form.name.assign(name.begin(), name.end());
    form.head.assign(first.begin(), first.end());
    form.data.assign(second.begin(), second.end());
    form.headSize = head.headSize;
    form.dataSize = head.dataSize;
    return true;
}

FormFileState readFormRecords(const std::string &path, std::vector<FormRecord> &records, std::uint64_t &endOfSound) {
    endOfSound = 0;
    const OpenFile open(path, false);
    if (open.result == OpenResult::absent) return FormFileState::absent;
    if (open.result != OpenResult::opened) return FormFileState::unread;
    const std::int64_t known = filePort.size(open.file);
    if (known < 0) return FormFileState::unread;
    const auto size = static_cast<std::uint64_t>(known);
    if (size == 0) return FormFileState::absent;
    char signature[sizeof fileSignature] = {};
    const std::size_t there = static_cast<std::size_t>(std::min<std::uint64_t>(size, sizeof signature));
    if (!open.read(0, {reinterpret_cast<std::uint8_t *>(signature), there})) return FormFileState::unread;
    if (std::memcmp(signature, fileSignature, there) != 0) return FormFileState::foreign;
    if (there < sizeof signature) return FormFileState::absent;  // cut short as it was made
    for (std::uint64_t at = sizeof signature;;) {
        endOfSound = at;
        FormRecord record{.head = {}, .offset = at, .name = {}};
        if (size - at < sizeof record.head) return FormFileState::sound;
        if (!open.read(at, {reinterpret_cast<std::uint8_t *>(&record.head), sizeof record.head}))
            return FormFileState::unread;
        if (!headIsSound(record.head) || records.size() == recordLimit) return FormFileState::damaged;
        if (size - at < record.size()) return FormFileState::sound;
        Bytes name(record.head.nameSize);
        if (!open.read(at + sizeof record.head, name)) return FormFileState::unread;
        record.name.assign(name.begin(), name.end());
        at += record.size();
        records.push_back(std::move(record));
    }
}

bool appendToFormFile(const std::string &path, std::uint64_t offset, ByteView bytes) {
    const OpenFile open(path, true);
    if (open.result != OpenResult::opened) return false;
    const std::int64_t size = filePort.size(open.file);
    if (size < 0 || static_cast<std::uint64_t>(size) < offset) return false;
    const bool cut = static_cast<std::uint64_t>(size) == offset || filePort.cut(open.file, offset);
    const bool written = cut && filePort.writeAt(open.file, offset, bytes.data(), bytes.size()) == bytes.size() &&
                         filePort.sync(open.file);
    if (!written && cut) filePort.cut(open.file, offset);
    return written;
}

Bytes readRecordBytes(const std::string &path, const FormRecord &record) {
    const OpenFile open(path, false);
    if (open.result != OpenResult::opened) return {};
    Bytes bytes(static_cast<std::size_t>(record.size()));
    return open.read(record.offset, bytes) ? bytes : Bytes();
}

bool readForm(const std::string &path, const FormRecord &record, StoredItem &form) {
    const Bytes bytes = readRecordBytes(path, record);
    if (bytes.empty() || std::memcmp(bytes.data(), &record.head, sizeof record.head) != 0) return false;
    return decodeForm(record.head, ByteView(bytes).subspan(sizeof record.head), form);
}

}  // namespace numalink
