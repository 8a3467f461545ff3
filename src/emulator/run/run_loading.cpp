// From the library to the machine: the program, then the items beside it.
#include "emulator/run/run_loading.h"

#include <algorithm>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "drawing/plane_picture.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/programs.h"
#include "emulator/screens/pictures.h"
#include "platform/letter_case.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

void loadElements(MatrixDescriptor *matrix, ByteView data) {
    const std::size_t count = std::min(data.size() / valueFrameSize, static_cast<std::size_t>(matrixSize(matrix)));
    for (std::size_t i = 0; i < count; i++) {
        const auto record = data.subspan(i * valueFrameSize).first<valueFrameSize>();
        const int row = readBig16(record, valueRowOffset) - 1;
        const int column = readBig16(record, valueColumnOffset) - 1;
        if (row < 0 || column < 0 || row >= matrix->rows || column >= matrix->cols) continue;
        matrixElement(matrix, column, row) = decodeValue(record);
    }
}

struct LoadTrouble {
    int programsLeftOut = 0;
};

void loadItem(ItemId id, LoadTrouble &trouble) {
    const auto entry = storeReadEntry(id);
    if (!entry || !(isTextKind(entry->kind) || entry->kind == kind::matrix || entry->kind == kind::picture)) return;
    StoredItem item;
    if (!storeReadItem(id, item)) return;
    if (isTextKind(item.kind) && !programAdd(item.name, item.data, item.id)) trouble.programsLeftOut++;
    if (item.kind == kind::matrix) loadMatrixItem(item.head, item.data);
    if (item.kind == kind::picture) loadPictureItem(item.head, item.data);
}

}  // namespace

// What stood in the slot stays in the pool until the next reset.
void loadMatrixItem(ByteView head, ByteView data) {
    if (head.size() <= frameLetterOffset || head[frameLetterOffset] < 'A' || head[frameLetterOffset] > 'Z') return;
    const int rows = readBig16(head, frameRowsOffset);
    const int columns = readBig16(head, frameColumnsOffset);
    const std::int64_t size = std::int64_t{rows} * columns;
    if (size == 0) return;
    if (size > poolCellLimit - poolCellsUsed()) {
        tellUser(Text::matrixMemoryFull);
        return;
    }
    MatrixDescriptor *matrix = matrixAllocate(ownedByVariable, columns, rows);
    machine.matrixSlots[static_cast<std::size_t>(head[frameLetterOffset] - 'A')] = matrix;
    loadElements(matrix, data);
}

void loadPictureItem(ByteView head, ByteView data) {
    if (head.size() < pictureHeadSize) return;
    if (Surface *memory = pictureMemory(head[frameDigitOffset] - '0')) drawPicture(*memory, head, data);
}

std::vector<ItemId> itemsBeside(ItemId item) {
    const auto entry = storeReadEntry(item);
    if (!entry) return {};
    std::vector<ItemEntry> siblings = storeListChildren(entry->parent);
    std::ranges::stable_sort(siblings, {}, [](const ItemEntry &sibling) { return foldCase(sibling.name); });
    std::vector<ItemId> order;
    order.reserve(siblings.size());
    for (const ItemEntry &sibling : siblings) order.push_back(sibling.id);
    return order;
}

bool loadRun(ItemId item, const std::vector<ItemId> &order) {
    programsClear();
    StoredItem program;
    if (!storeReadItem(item, program) || program.kind != kind::program) return false;
    LoadTrouble trouble;
    if (!programAdd(program.name, program.data, program.id)) trouble.programsLeftOut++;
    const auto own = std::ranges::find(order, item);
    for (auto before = own; before != order.begin();) loadItem(*--before, trouble);
    for (auto behind = own; behind != order.end();) {
        if (++behind != order.end()) loadItem(*behind, trouble);
    }
    if (trouble.programsLeftOut > 0)
        tellUser(Text::programsLeftOut, {std::to_string(trouble.programsLeftOut)}, BoxIcon::warning);
    return programCount() > 0;
}

}  // namespace numalink
