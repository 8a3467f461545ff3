#include "debugger/machine_image.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <type_traits>

#include "debugger/machine_fields.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/bytes.h"

namespace numalink {

namespace {

std::atomic<std::size_t> pageCount = 0, graphCount = 0;

}  // namespace

struct KeptGraphs {
    explicit KeptGraphs(std::uint64_t itsDigest) : settings(graphs), digest(itsDigest) { graphCount++; }
    ~KeptGraphs() { graphCount--; }
    KeptGraphs(const KeptGraphs &) = delete;
    KeptGraphs &operator=(const KeptGraphs &) = delete;

    GraphSettings settings;
    std::uint64_t digest;
};

namespace {

using Rows = decltype(MachineState::textRows);

// What is neither a screen nor an element.
struct PlainPart {
    EmulatorMachine machine;
    PoolRecords pool;
    StatisticsMemory statistics;
    Rows textRows{};
    std::uint64_t workDone = 0;
    std::uint64_t reportsKept = 0;  // of errorTrace
    std::uint32_t random = 0;
};
static_assert(std::is_trivially_copyable_v<EmulatorMachine> && std::is_trivially_copyable_v<PoolRecords>);
static_assert(std::is_trivially_copyable_v<StatisticsMemory> && std::is_trivially_copyable_v<PlainPart>);

constexpr std::size_t surfaceBytes = std::size_t{displayWidth} * displayHeight * sizeof(Color);
static_assert(surfaceBytes % imagePageSize == 0);

// The last image, as bytes and as pages.
Bytes lastBytes;
std::vector<std::shared_ptr<const ImagePage>> lastPages;
std::shared_ptr<const KeptGraphs> lastGraphs;
std::vector<ErrorReport> lastReports;

std::size_t pagesFor(std::size_t bytes) { return (bytes + imagePageSize - 1) / imagePageSize; }

PlainPart plainPart() {
    PlainPart part;
    part.machine = machine;
    part.pool = poolRecords();
    part.statistics = statisticsMemory;
    for (std::size_t row = 0; row < part.textRows.size(); row++)
        std::ranges::copy(textRowCodes(static_cast<int>(row) + 1), part.textRows[row].begin());
    part.workDone = workDoneSoFar();
    part.reportsKept = machine.errorTrace == nullptr ? 0 : machine.errorTrace->size();
    part.random = randomPlace();
    return part;
}

// Puts the pages of so many bytes behind those that the image has.
void addPart(MachineImage &image, const void *bytes, std::size_t size) {
    const auto *from = static_cast<const std::uint8_t *>(bytes);
    for (std::size_t at = 0; at < size; at += imagePageSize) {
        const std::size_t length = std::min(imagePageSize, size - at);
        const std::size_t page = image.pages.size();
        if (lastBytes.size() < (page + 1) * imagePageSize) lastBytes.resize((page + 1) * imagePageSize);
        std::uint8_t *const last = lastBytes.data() + page * imagePageSize;
        if (page < lastPages.size() && std::memcmp(last, from + at, length) == 0) {
            image.pages.push_back(lastPages[page]);
            continue;
        }
        std::memcpy(last, from + at, length);
        auto made = std::make_shared<ImagePage>();
        std::memcpy(made->bytes.data(), last, imagePageSize);
        image.pages.push_back(std::move(made));
    }
}

void addSurface(MachineImage &image, const Surface &surface) { addPart(image, surface.dots.data(), surfaceBytes); }

Surface takenBack(const std::uint8_t *&from) {
    Surface surface(displayWidth, displayHeight);
    std::memcpy(surface.dots.data(), from, surfaceBytes);
    from += surfaceBytes;
    return surface;
}

void bringBackText(const MachineState &state) {
    TextScreenCopy text;
    text.surface = state.text;
    for (std::size_t row = 0; row < state.textRows.size(); row++)
        text.characters[row].assign(state.textRows[row].begin(), state.textRows[row].end());
    textScreenRestore(text);
}

// An image has but the number of its reports. Those that lie ahead of where one has gone back to are kept beside.
void bringBackReports(std::vector<ErrorReport> &trace, std::size_t count) {
    lastReports.resize(std::max(lastReports.size(), trace.size()));
    std::ranges::copy(trace, lastReports.begin());
    trace.assign(lastReports.begin(),
                 lastReports.begin() + static_cast<std::ptrdiff_t>(std::min(count, lastReports.size())));
}

struct Digest {
    std::uint64_t value = 14695981039346656037u;

    void add(const void *bytes, std::size_t size) {
        const auto *from = static_cast<const std::uint8_t *>(bytes);
        for (; size >= sizeof(std::uint64_t); size -= sizeof(std::uint64_t), from += sizeof(std::uint64_t)) {
            std::uint64_t word = 0;
            std::memcpy(&word, from, sizeof word);
            take(word);
        }
        for (; size > 0; size--) take(*from++);
    }
    void take(std::uint64_t word) {
        value = (value ^ word) * 1099511628211u;
        value ^= value >> 29;
    }
    template <class... Values>
    void addAll(const Values &...values) {
        (add(&values, sizeof values), ...);
    }
    void addSurface(const Surface &surface) { add(surface.dots.data(), surface.dots.size() * sizeof(Color)); }

    // As a visitor of fields.
    void real(const double &field) { add(&field, sizeof field); }
    void flag(const bool &field) { take(field); }
    void color(const PixelColor &field) { take(field); }
    template <class Number>
    void whole(const Number &field, int, int) {
        take(static_cast<std::uint64_t>(field));
    }
    void big(const std::uint64_t &field, std::uint64_t) { take(field); }
    void byte(const std::uint8_t &field, int) { take(field); }
    template <class Choice>
    void choice(const Choice &field, Choice) {
        take(static_cast<std::uint64_t>(field));
    }
    void length(const FormulaCells &formula, int) { take(formula.size()); }
    void row(MatrixSlot array) {
        if (array == nullptr) return take(0);
        take(static_cast<std::uint64_t>(array->cols) << 32 | static_cast<std::uint64_t>(array->rows));
        add(matrixElements(array), static_cast<std::size_t>(matrixSize(array)) * sizeof(double));
    }
    void report(const char *text) { add(text, std::strlen(text)); }
};

std::uint64_t digestOfGraphs() {
    Digest digest;
    visitFields(digest, graphs);
    return digest.value;
}

// Where the arrays of tables lie is no part of the state, but of an image.
bool graphsAreAsKept(std::uint64_t digest) {
    return lastGraphs != nullptr && lastGraphs->digest == digest &&
           lastGraphs->settings.tableResult == graphs.tableResult &&
           lastGraphs->settings.recursionResult == graphs.recursionResult;
}

}  // namespace

ImagePage::ImagePage() : bytes{} { pageCount++; }
ImagePage::~ImagePage() { pageCount--; }

MachineImage takeImage() {
    MachineImage image;
    image.pages.reserve(lastPages.size());
    const PlainPart part = plainPart();
    addPart(image, &part, sizeof part);
    addSurface(image, textScreen());
    addSurface(image, graphScreen());
    addSurface(image, matrixScreen());
    addSurface(image, displayNow());
    for (int number = 1; number <= memoryCount; number++) addSurface(image, *pictureMemory(number));
    addPart(image, poolElements(), static_cast<std::size_t>(part.pool.cellsUsed) * sizeof(double));
    image.calls = runCalls();
    const std::uint64_t ofGraphs = digestOfGraphs();
    if (!graphsAreAsKept(ofGraphs)) lastGraphs = std::make_shared<KeptGraphs>(ofGraphs);
    image.graphs = lastGraphs;
    lastPages = image.pages;
    return image;
}

MachineState stateOf(const MachineImage &image) {
    Bytes bytes(image.pages.size() * imagePageSize);
    for (std::size_t page = 0; page < image.pages.size(); page++)
        std::memcpy(bytes.data() + page * imagePageSize, image.pages[page]->bytes.data(), imagePageSize);
    PlainPart part{};
    std::memcpy(static_cast<void *>(&part), bytes.data(), sizeof part);
    const std::uint8_t *from = bytes.data() + pagesFor(sizeof part) * imagePageSize;
    MachineState state;
    state.machine = part.machine;
    state.pool = part.pool;
    state.statistics = part.statistics;
    state.graphs = image.graphs->settings;
    state.textRows = part.textRows;
    state.text = takenBack(from);
    state.graph = takenBack(from);
    state.matrices = takenBack(from);
    state.display = takenBack(from);
    for (Surface &picture : state.pictures) picture = takenBack(from);
    state.elements.resize(static_cast<std::size_t>(part.pool.cellsUsed));
    if (!state.elements.empty()) std::memcpy(state.elements.data(), from, state.elements.size() * sizeof(double));
    state.workDone = part.workDone;
    state.random = part.random;
    state.calls = image.calls;
    return state;
}

void bringBackState(const MachineState &state) {
    std::vector<ErrorReport> *const trace = machine.errorTrace;
    graphs = state.graphs;
    graphScreen() = state.graph;
    graphScreenTouch();
    for (int number = 1; number <= memoryCount; number++)
        *pictureMemory(number) = state.pictures[static_cast<std::size_t>(number - 1)];
    poolRestore(state.pool, state.elements.data());
    bringBackText(state);
    machine = state.machine;
    machine.errorTrace = trace;
    statisticsMemory = state.statistics;
    displayRestore(state.matrices, state.display);
    workDoneAgain(state.workDone);
    randomGoOn(state.random);
}

void bringBack(const MachineImage &image) {
    bringBackState(stateOf(image));
    lastPages = image.pages;
    lastGraphs = image.graphs;
    lastBytes.resize(image.pages.size() * imagePageSize);
    for (std::size_t page = 0; page < image.pages.size(); page++)
        std::memcpy(lastBytes.data() + page * imagePageSize, image.pages[page]->bytes.data(), imagePageSize);
    PlainPart part{};
    std::memcpy(static_cast<void *>(&part), lastBytes.data(), sizeof part);
    if (machine.errorTrace != nullptr) bringBackReports(*machine.errorTrace, part.reportsKept);
}

void forgetImages() {
    lastPages.clear();
    lastGraphs.reset();
    lastBytes = {};
    lastReports = {};
}

std::size_t imageBytes() {
    constexpr std::size_t formulasOfGraphs = 8192;  // bytes, of as many as people write
    return pageCount * (sizeof(ImagePage) + 2 * sizeof(void *)) + graphCount * (sizeof(KeptGraphs) + formulasOfGraphs);
}

std::size_t bytesOfImage(const MachineImage &image) {
    return image.pages.size() * sizeof image.pages[0] + image.calls.size() * sizeof image.calls[0];
}

std::uint64_t machineDigest() {
    Digest digest;
    visitFields(digest, machine);
    digest.take(digestOfGraphs());
    visitFields(digest, statisticsMemory);
    digest.take(randomPlace());
    digest.take(machine.errorTrace == nullptr ? 0 : machine.errorTrace->size());
    digest.addSurface(textScreen());
    digest.addSurface(graphScreen());
    digest.addSurface(matrixScreen());
    for (int number = 1; number <= memoryCount; number++) digest.addSurface(*pictureMemory(number));
    for (const CallPlace &call : runCalls())
        digest.addAll(call.program, call.position, call.forContinuing, call.left.kind);
    return digest.value;
}

}  // namespace numalink
