#include "debugger/moment_form.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstring>
#include <utility>

#include "calculator/item_bundle.h"
#include "debugger/machine_fields.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/programs.h"

namespace numalink {

namespace {

constexpr std::uint8_t signature[] = {'N', 'L', 'M', 'O', 'M', 'E', 'N', 'T'};
constexpr std::uint32_t formVersion = 1;
constexpr std::size_t headSize = 20;  // signature, version, size and checksum of what is packed behind
constexpr std::size_t versionOffset = 8, sizeOffset = 12, sumOffset = 16;

constexpr std::size_t momentBytesUsual = 450000;    // with 10,000 elements or so
constexpr std::size_t inputLimit = 100000;          // entries of a kind
constexpr std::size_t lineLimit = 64;               // exchanges on a line
constexpr std::size_t lineBytesLimit = 1u << 20;    // of one
constexpr std::uint64_t repeatLimit = 100'000'000;  // statements from the state to the moment
constexpr std::uint64_t passLimit = 10'000'000;     // of waits, together; of one input that repeats
constexpr std::size_t reportLimit = 20;             // characters

class Writer {
public:
    bool good = true;
    Bytes bytes;

    void real(const double &field) { put(std::bit_cast<std::uint64_t>(field), 8); }
    void flag(const bool &field) { put(field, 1); }
    void color(const PixelColor &field) { big(field, 0xFFFFFF, 4); }
    template <class Number>
    void whole(const Number &field, std::int64_t low, std::int64_t high) {
        const auto value = static_cast<std::int64_t>(field);
        good = good && value >= low && value <= high;
        put(static_cast<std::uint64_t>(value), 4);
    }
    void big(const std::uint64_t &field, std::uint64_t high, int size = 8) {
        good = good && field <= high;
        put(field, size);
    }
    void byte(const std::uint8_t &field, int) { put(field, 1); }
    template <class Choice>
    void choice(const Choice &field, Choice last) {
        good = good && field <= last;
        put(static_cast<std::uint64_t>(field), 1);
    }
    template <class Values>
    void length(const Values &values, std::size_t limit) {
        good = good && values.size() <= limit;
        put(values.size(), 4);
    }
    void characters(const char *field, std::size_t count) { bytes.insert(bytes.end(), field, field + count); }
    void row(const MatrixDescriptor *const &slot) {
        put(std::uint64_t{1} + static_cast<std::uint64_t>(matrixRowOf(slot)), 2);
    }
    void report(const char *text) {
        std::string field = text;
        visitText(field);
    }
    void visitText(const std::string &field) {
        length(field, reportLimit);
        characters(field.data(), field.size());
    }
    void random(const std::uint32_t &field) { put(field, 4); }

private:
    void put(std::uint64_t value, int size) {
        std::array<std::uint8_t, 8> low{};
        for (int i = 0; i < size; i++) low[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
        bytes.insert(bytes.end(), low.begin(), low.begin() + size);
    }
};

// Behind a fault everything reads as what is sound in its place.
class Reader {
public:
    explicit Reader(ByteView from) : left(from) {}

    bool good = true;

    bool isAtEnd() const { return left.empty(); }
    void real(double &field) { field = std::bit_cast<double>(take(8)); }
    void flag(bool &field) { field = within(take(1), 1) != 0; }
    void color(PixelColor &field) { field = static_cast<PixelColor>(within(take(4), 0xFFFFFF)); }
    template <class Number>
    void whole(Number &field, std::int64_t low, std::int64_t high) {
        auto value = std::int64_t{static_cast<std::int32_t>(static_cast<std::uint32_t>(take(4)))};
        good = good && value >= low && value <= high;
        if (!good) value = low;
        field = static_cast<Number>(value);
    }
    void big(std::uint64_t &field, std::uint64_t high) { field = within(take(8), high); }
    void byte(std::uint8_t &field, int) { field = static_cast<std::uint8_t>(take(1)); }
    template <class Choice>
    void choice(Choice &field, Choice last) {
        field = static_cast<Choice>(within(take(1), static_cast<std::uint64_t>(last)));
    }
    // Every element takes a byte at least.
    template <class Values>
    void length(Values &values, std::size_t limit) {
        const std::uint64_t count = within(take(4), std::min<std::uint64_t>(limit, left.size()));
        values.assign(static_cast<std::size_t>(count), {});
    }
    void characters(char *field, std::size_t count) {
        good = good && count <= left.size();
        if (!good || count == 0) return;
        std::memcpy(field, left.data(), count);
        left = left.subspan(count);
    }
    void row(MatrixSlot &slot) {
        const std::uint64_t place = within(take(2), matrixRowLimit);
        slot = place == 0 ? nullptr : matrixRowAt(static_cast<int>(place) - 1);
    }
    void report(const char *&field) {
        std::string text;
        visitText(text);
        field = reportNamed(text);
        good = good && text == field;
    }
    void visitText(std::string &field) {
        length(field, reportLimit);
        characters(field.data(), field.size());
    }
    void random(std::uint32_t &field) { field = static_cast<std::uint32_t>(take(4)); }

private:
    std::uint64_t take(std::size_t size) {
        good = good && size <= left.size();
        if (!good) return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; i++) value |= std::uint64_t{left[i]} << (8 * i);
        left = left.subspan(size);
        return value;
    }
    std::uint64_t within(std::uint64_t value, std::uint64_t high) {
        good = good && value <= high;
        return good ? value : 0;
    }

    ByteView left;
};

template <class Visitor>
void visitSurface(Visitor &with, Surface &surface) {
    if (surface.dots.empty()) surface = Surface(displayWidth, displayHeight);
    for (Color &dot : surface.dots) with.color(dot);
}

static_assert(fieldCount<MachineState>() == 14 && fieldCount<CallPlace>() == 5);

template <class Visitor>
void visitState(Visitor &with, MachineState &state) {
    visitFields(with, state.machine);
    visitFields(with, state.pool);
    state.elements.resize(static_cast<std::size_t>(state.pool.cellsUsed));
    for (double &element : state.elements) with.real(element);
    visitFields(with, state.statistics);
    visitFields(with, state.graphs);
    for (auto &row : state.textRows) with.characters(row.data(), row.size());
    for (Surface *surface : {&state.text, &state.graph, &state.matrices, &state.display}) visitSurface(with, *surface);
    for (Surface &picture : state.pictures) visitSurface(with, picture);
    with.big(state.workDone, statementCountLimit);
    with.random(state.random);
}

template <class Visitor>
void visitCall(Visitor &with, MomentCall &call) {
    CallPlace &place = call.place;
    with.whole(call.program, 0, programLimit - 1);
    with.whole(place.position, 0, INT_MAX);
    with.whole(place.statementLength, 0, INT_MAX);
    with.flag(place.forContinuing);
    with.choice(place.left.kind, CellKind::list);
    with.byte(place.left.token1, 0xFF);
    with.byte(place.left.token2, 0xFF);
    with.byte(place.left.stringLength, 0xFF);
    visitFields(with, place.left.value);
    if (isArray(place.left)) with.row(place.left.matrix);
    with.whole(call.textProgram, 0, programLimit - 1);
    with.whole(call.textCell, 0, INT_MAX);
}

template <class Visitor>
void visitKeys(Visitor &with, std::vector<RepeatedInput<int>> &keys, int lowest) {
    with.length(keys, inputLimit);
    for (RepeatedInput<int> &key : keys) {
        with.whole(key.value, lowest, INT_MAX);
        with.big(key.count, passLimit);
    }
}

template <class Visitor>
void visitBytes(Visitor &with, Bytes &bytes) {
    with.length(bytes, lineBytesLimit);
    with.characters(reinterpret_cast<char *>(bytes.data()), bytes.size());
}

template <class Visitor>
void visitInputs(Visitor &with, RecordedInputs &inputs) {
    visitKeys(with, inputs.waits, 0);  // below 0 is that no key comes any more
    visitKeys(with, inputs.getKeys, INT_MIN);
    with.length(inputs.lines, lineLimit);
    for (RepeatedInput<LineOutcome> &line : inputs.lines) {
        with.flag(line.value.isGood);
        visitBytes(with, line.value.head);
        visitBytes(with, line.value.data);
        with.big(line.count, passLimit);
    }
}

template <class Visitor>
void visitMoment(Visitor &with, Moment &moment) {
    with.length(moment.programs, programLimit);
    for (MomentProgram &program : moment.programs) {
        with.visitText(program.name);
        with.big(program.digest, UINT64_MAX);
    }
    with.big(moment.time, UINT64_MAX);
    with.big(moment.statement, statementCountLimit);
    with.choice(moment.waitsAt, RunEnd::nothingToRun);
    visitSurface(with, moment.picture);
    visitState(with, moment.state);
    with.length(moment.calls, callLimit);
    for (MomentCall &call : moment.calls) visitCall(with, call);
    visitInputs(with, moment.inputs);
}

// The rows in use cover the cells in use without gap or overlap; what a row that isn't in use tells lies inside of the
// pool all the same, since the end of a program may show it.
bool poolIsSound(const PoolRecords &pool) {
    std::vector<const MatrixDescriptor *> inUse;
    for (const MatrixDescriptor &row : pool.table) {
        if (std::int64_t{row.cols} * row.rows > poolCellLimit - row.firstCell) return false;
        if (row.owner != 0) inUse.push_back(&row);
    }
    std::ranges::sort(inUse, {},
                      [](const MatrixDescriptor *row) { return std::pair(row->firstCell, row->cols * row->rows); });
    int next = 0;
    for (const MatrixDescriptor *row : inUse) {
        if (row->firstCell != next) return false;
        next += row->cols * row->rows;
    }
    return next == pool.cellsUsed;
}

void countRows(PoolRecords &pool) {
    pool.rowsInUse = pool.temporaryCount = 0;
    for (const MatrixDescriptor &row : pool.table) {
        pool.rowsInUse += row.owner != 0;
        pool.temporaryCount += row.owner == ownedTemporarily;
    }
}

// Each slot names a row of a variable that no other names, lists one of a single column; the display slot a temporary.
bool slotsAreSound(const MachineState &state) {
    std::array<bool, matrixRowLimit> isNamed{};
    const auto slotIsSound = [&](const MatrixDescriptor *slot, bool isList) {
        if (slot == nullptr) return true;
        const auto place = static_cast<std::size_t>(matrixRowOf(slot));
        const MatrixDescriptor &row = state.pool.table[place];
        return row.owner == ownedByVariable && (!isList || row.cols == 1) && !std::exchange(isNamed[place], true);
    };
    for (int slot = 0; slot < matrixDisplaySlot; slot++) {
        if (!slotIsSound(state.machine.matrixSlots[static_cast<std::size_t>(slot)], false)) return false;
    }
    for (const auto &file : state.machine.listSlots) {
        if (!std::ranges::all_of(file, [&](const MatrixDescriptor *slot) { return slotIsSound(slot, true); }))
            return false;
    }
    const MatrixDescriptor *shown = state.machine.matrixSlots[matrixDisplaySlot];
    if (shown != nullptr && state.pool.table[static_cast<std::size_t>(matrixRowOf(shown))].owner != ownedTemporarily)
        return false;
    return slotIsSound(state.graphs.tableResult, false) && slotIsSound(state.graphs.recursionResult, false);
}

bool callsAreSound(const Moment &moment) {
    const auto count = static_cast<int>(moment.programs.size());
    return !moment.calls.empty() && std::ranges::all_of(moment.calls, [count](const MomentCall &call) {
        const bool hasArray = !isArray(call.place.left) || call.place.left.matrix != nullptr;
        return call.program < count && call.textProgram < count && hasArray;
    });
}

// Each is gone through when the run goes on.
bool waitsAreSound(const RecordedInputs &inputs) {
    std::uint64_t passes = 0;
    for (const RepeatedInput<int> &key : inputs.waits) passes += key.count;
    return passes <= passLimit;
}

bool isSound(const Moment &moment) {
    const MachineState &state = moment.state;
    const std::uint64_t from = state.machine.statementsRun;
    const int base = state.machine.numberBase;
    return poolIsSound(state.pool) && slotsAreSound(state) && callsAreSound(moment) && waitsAreSound(moment.inputs) &&
           (base == 2 || base == 8 || base == 10 || base == 16) &&
           variableRef(tokenCell(state.graphs.dynamicVariable)) != nullptr && moment.statement >= from &&
           moment.statement - from <= repeatLimit;
}

}  // namespace

std::optional<Bytes> momentAsBytes(Moment moment) {
    Writer writer;
    writer.bytes.reserve(momentBytesUsual);
    visitMoment(writer, moment);
    if (!writer.good || writer.bytes.size() > momentFileLimit || !isSound(moment)) return std::nullopt;
    uLongf packed = compressBound(writer.bytes.size());
    Bytes file(headSize + packed);
    std::ranges::copy(signature, file.begin());
    writeLittle32(file, versionOffset, formVersion);
    writeLittle32(file, sizeOffset, static_cast<std::uint32_t>(writer.bytes.size()));
    writeLittle32(file, sumOffset, checksum32(writer.bytes));
    if (compress(file.data() + headSize, &packed, writer.bytes.data(), writer.bytes.size()) != Z_OK)
        return std::nullopt;
    file.resize(headSize + packed);
    if (file.size() > momentFileLimit) return std::nullopt;
    return file;
}

MomentFault momentFromBytes(ByteView bytes, Moment &moment) {
    if (bytes.size() < headSize || !std::ranges::equal(bytes.first(sizeof signature), signature))
        return MomentFault::foreign;
    if (readLittle32(bytes, versionOffset) > formVersion) return MomentFault::newer;
    const std::uint32_t size = readLittle32(bytes, sizeOffset);
    if (readLittle32(bytes, versionOffset) != formVersion || size > momentFileLimit || bytes.size() > momentFileLimit)
        return MomentFault::damaged;
    Bytes unpacked(size);
    uLongf count = size;
    const ByteView packed = bytes.subspan(headSize);
    if (uncompress(unpacked.data(), &count, packed.data(), packed.size()) != Z_OK || count != size ||
        checksum32(unpacked) != readLittle32(bytes, sumOffset))
        return MomentFault::damaged;
    Moment read;
    Reader reader(unpacked);
    visitMoment(reader, read);
    if (!reader.good || !reader.isAtEnd() || !isSound(read)) return MomentFault::damaged;
    countRows(read.state.pool);
    moment = std::move(read);
    return MomentFault::none;
}

}  // namespace numalink
