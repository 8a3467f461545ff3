// Any bytes as the file of earlier forms beside a library: the library opens, what is given of forms is what records
// with sound sums hold, and changes go on. The sums of record heads are put right first, so that sizes are looked at.
#include <cstring>
#include <filesystem>
#include <fstream>

#include "fuzz/require.h"
#include "history/form_file.h"
#include "history/history.h"
#include "platform/program_folder.h"
#include "store/file/journal.h"

namespace {

using namespace numalink;

void mendSums(Bytes &file) {
    for (std::size_t at = encodeFormFileHead().size(); at + sizeof(FormRecordHead) <= file.size();) {
        FormRecordHead head{};
        std::memcpy(&head, file.data() + at, sizeof head);
        std::memcpy(head.signature, "FORM", sizeof head.signature);
        head.headSum = sumOf(ByteView(file).subspan(at, offsetof(FormRecordHead, headSum)));
        std::memcpy(file.data() + at, head.signature, sizeof head.signature);
        head.headSum = sumOf(ByteView(file).subspan(at, offsetof(FormRecordHead, headSum)));
        std::memcpy(file.data() + at + offsetof(FormRecordHead, headSum), &head.headSum, sizeof head.headSum);
        const std::uint64_t size = sizeof head + std::uint64_t{head.nameSize} + head.headSize + head.dataSize + 8;
        if (size > file.size() - at) return;
        at += static_cast<std::size_t>(size);
    }
}

const std::string &folder() {
    static const std::string path = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "numalink-fuzz-XXXXXX").string();
        return std::string(mkdtemp(pattern.data())) + "/";
    }();
    return path;
}

NewItem program(std::uint8_t value) {
    return {.name = "A", .parent = rootId, .kind = kind::program, .head = Bytes(32, value), .data = Bytes(9, value)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 1 || size > 20000) return 0;
    setLibraryFolder(folder());
    std::filesystem::remove(folder() + "storage.dat");
    const Bytes head = encodeFormFileHead();
    Bytes file(data + 1, data + size);
    if (data[0] % 4 != 0) file.insert(file.begin(), head.begin(), head.end());
    if (data[0] % 2 != 0) mendSums(file);
    std::ofstream(folder() + "storage.dat-versions", std::ios::binary)
        .write(reinterpret_cast<const char *>(file.data()), static_cast<std::streamsize>(file.size()));
    require(storeOpen());
    historyOpen();
    const ItemId id = storeAddItem(program(1));
    require(id != noItem && storeWriteItem(id, program(2)));
    const std::vector<FormEntry> forms = historyForms(id);
    require(!forms.empty() && forms.size() <= historyFormLimit + 1);
    for (std::size_t i = 0; i < forms.size(); i++) {
        StoredItem form;
        if (historyReadForm(id, i, form)) require(form.data.size() == forms[i].size);
    }
    for (const GoneItem &item : historyGone()) {
        StoredItem form;
        historyReadGone(item.id, form);
    }
    historyTimes();
    historyBringBack(id, 1);
    historyClose();
    storeClose();
    for (const auto &entry : std::filesystem::directory_iterator(folder())) std::filesystem::remove(entry.path());
    return 0;
}
