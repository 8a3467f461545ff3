// The statements that speak to a far end: values, lists and matrices by name, each way.
#include <algorithm>
#include <optional>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "emulator/expressions/expression_code.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/far_end.h"
#include "emulator/machine/named_values.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

constexpr std::size_t complexFrameSize = 26;  // a second value ahead of the sum
constexpr std::size_t valueOffset = 5;        // of the ten bytes of a value in its frame
constexpr std::uint8_t frameVariableLength = 0x0A;
constexpr char variableMark[] = "VM", listMark[] = "LT", matrixMark[] = "MT";

// What is sent or received.
struct Sent {
    const char *mark = variableMark;
    std::string name;                  // as frames have it
    ComplexValue *variable = nullptr;  // or
    MatrixSlot *array = nullptr;
    bool isComplex = false;
};

// From cell 1 on, an unneeded parenthesis behind it; nothing where the cells name none of these.
std::optional<Sent> readOperand(const RunState &state) {
    int count = state.cellCount;
    if (count > 1 && isToken(state.statement[count - 1], token::closeParenthesis)) count--;
    const ProgramCell &cell = state.statement[1];
    if (count == 2 && cell.kind == CellKind::token) {
        ComplexValue *variable = variableRef(cell);
        const auto isLetter = [&](const ComplexValue &letter) { return &letter == variable; };
        if (std::ranges::none_of(machine.variables, isLetter)) return std::nullopt;
        return Sent{.name = std::string(1, static_cast<char>(cell.token1)), .variable = variable};
    }
    const bool isList = isToken(cell, token::list);
    if (count != 3 || (!isList && !isToken(cell, token::matrix))) return std::nullopt;
    const ProgramCell &name = state.statement[2];
    const auto array = arrayNamed(isList ? CellKind::list : CellKind::matrix, name, name.value.re);
    if (!array || isToken(name, token::ans)) return std::nullopt;
    const auto letter = static_cast<char>(name.token1);
    return Sent{.mark = isList ? listMark : matrixMark,
                .name = isList ? "List " + std::to_string(array->list + 1) : std::string("Mat ") + letter,
                .array = &slotOf(*array)};
}

Bytes headOf(const Sent &sent, const char *group, std::uint32_t rows, std::uint32_t columns) {
    Bytes head(headFrameSize, 0xFF);
    const std::string start = std::string(group) + '\0' + sent.mark;
    std::ranges::copy(start, head.begin());
    writeBig16(head, frameRowsOffset, rows);
    writeBig16(head, frameColumnsOffset, columns);
    std::ranges::copy(sent.name, head.begin() + frameNameOffset);
    constexpr std::string_view groupOfVariables = "Variable";
    if (sent.variable != nullptr) std::ranges::copy(groupOfVariables, head.begin() + frameGroupOffset);
    head[frameTypeOffset] = sent.isComplex ? 'C' : 'R';
    head[frameVariableLengthOffset] = frameVariableLength;
    frameChecksum(head);
    return head;
}

// False for a value that the calculators' digits don't hold.
bool appendValue(Bytes &data, std::uint32_t row, std::uint32_t column, double real, const double *imaginary = nullptr) {
    std::array<std::uint8_t, valueFrameSize> frame{};
    if (!encodeValue(frame, row, column, real)) return false;
    data.insert(data.end(), frame.begin(), frame.end() - 1);
    if (imaginary != nullptr) {
        if (!encodeValue(frame, row, column, *imaginary)) return false;
        data.insert(data.end(), frame.begin() + valueOffset, frame.end() - 1);
    }
    data.push_back(0);
    frameChecksum(std::span(data).last(imaginary != nullptr ? complexFrameSize : valueFrameSize));
    return true;
}

bool appendElements(Bytes &data, MatrixDescriptor *array) {
    for (int row = 0; row < array->rows; row++) {
        for (int column = 0; column < array->cols; column++) {
            if (!appendValue(data, static_cast<std::uint32_t>(row + 1), static_cast<std::uint32_t>(column + 1),
                             matrixElement(array, column, row)))
                return false;
        }
    }
    return true;
}

bool send(Sent &sent) {
    Bytes data;
    if (sent.variable != nullptr) {
        sent.isComplex = sent.variable->im != 0;
        if (!appendValue(data, 1, 1, sent.variable->re, sent.isComplex ? &sent.variable->im : nullptr)) return false;
    } else if (!appendElements(data, *sent.array)) {
        return false;
    }
    const int height = sent.array == nullptr ? 1 : (*sent.array)->rows,
              width = sent.array == nullptr ? 1 : (*sent.array)->cols;
    const Bytes head = headOf(sent, ":VAL", static_cast<std::uint32_t>(height), static_cast<std::uint32_t>(width));
    if (!farEndSend(head, data, sent.isComplex ? complexFrameSize : valueFrameSize)) comError();
    return true;
}

bool isComplexHead(ByteView head) { return head[frameTypeOffset] == 'C'; }

// Values only, of as many elements as the machine could hold.
DataSize sizeOfValues(ByteView head) {
    constexpr std::string_view mark(":VAL\0", 5);
    if (!std::ranges::equal(head.first(mark.size()), mark, {},
                            [](std::uint8_t byte) { return static_cast<char>(byte); }))
        return {};
    const std::size_t count = std::size_t{readBig16(head, frameRowsOffset)} * readBig16(head, frameColumnsOffset);
    if (count > poolCellLimit) return {};
    return {.frame = isComplexHead(head) ? complexFrameSize : valueFrameSize, .frames = count};
}

double valueAt(ByteView frame, std::size_t offset) {
    std::array<std::uint8_t, valueFrameSize> value{};
    std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(offset), 10, value.begin() + valueOffset);
    return decodeValue(value);
}

void keepArray(MatrixSlot &slot, ByteView head, ByteView data) {
    const int height = readBig16(head, frameRowsOffset), width = readBig16(head, frameColumnsOffset);
    matrixRenew(ownedByVariable, slot, width, height);
    for (std::size_t at = 0; at + valueFrameSize <= data.size() && matrixSize(slot) == height * width;
         at += valueFrameSize) {
        const ByteView frame = data.subspan(at, valueFrameSize);
        const int row = readBig16(frame, valueRowOffset) - 1, column = readBig16(frame, valueColumnOffset) - 1;
        if (row >= 0 && row < height && column >= 0 && column < width)
            matrixElement(slot, column, row) = valueAt(frame, valueOffset);
    }
}

// A value of another sort than the one asked for counts as none.
bool isOfItsSort(const Sent &sent, ByteView head) {
    const bool isItsMark =
        head[5] == static_cast<std::uint8_t>(sent.mark[0]) && head[6] == static_cast<std::uint8_t>(sent.mark[1]);
    return isItsMark && (sent.variable != nullptr || !isComplexHead(head));
}

void receive(const Sent &sent) {
    Bytes head, data;
    const bool came = farEndReceive(headOf(sent, ":REQ", 0, 0), sizeOfValues, head, data) && isOfItsSort(sent, head);
    if (!came) return comError();
    if (sent.array != nullptr) return keepArray(*sent.array, head, data);
    *sent.variable = complexMake(valueAt(data, valueOffset), isComplexHead(head) ? valueAt(data, valueOffset + 10) : 0);
}

template <bool sends, unsigned baud>
WayOut runExchange(RunState &state) {
    std::optional<Sent> sent = readOperand(state);
    if (!sent) {
        synError();
        return handled(state);
    }
    if (sends && sent->array != nullptr && *sent->array == nullptr) {
        dimError();
        return handled(state);
    }
    // The fast line is the program's to open and to close.
    const bool isOpen = baud == fastBaud ? farEndIsOpen() : farEndOpen(baud);
    if (!isOpen) {
        comError();
    } else if (!sends) {
        receive(*sent);
    } else if (!send(*sent)) {
        maError();
    }
    if (baud == slowBaud) farEndClose();
    return handled(state);
}

WayOut runOpenPort(RunState &state) {
    expectAlone(state);
    if (!farEndOpen(fastBaud)) comError();
    return handled(state);
}

WayOut runClosePort(RunState &state) {
    expectAlone(state);
    farEndClose();
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x11}, runExchange<true, slowBaud>),   // Send(
    one({0xF7, 0x12}, runExchange<false, slowBaud>),  // Receive(
    one({0xF7, 0x13}, runOpenPort),                   // OpenComport38k
    one({0xF7, 0x14}, runClosePort),                  // CloseComport38k
    one({0xF7, 0x15}, runExchange<true, fastBaud>),   // Send38k
    one({0xF7, 0x16}, runExchange<false, fastBaud>),  // Receive38k
};

}  // namespace

std::span<const StatementRow> lineStatements() { return rows; }

}  // namespace numalink
