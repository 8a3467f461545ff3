// Bytes as changes to a moment: whatever they make of it, what is read is sound, is written again to the same bytes,
// and a run goes on from it and ends without harm. The checksum is no puzzle for the fuzzer: it is put right.
//
// Each change takes 4 bytes: whereabouts (the head, the machine, the end, anywhere), two for a place there, and what is
// put there. Fewer bytes than that at the end mean nothing.
#include <zlib.h>

#include <algorithm>

#include "calculator/item_bundle.h"
#include "debugger/debugger.h"
#include "debugger/moments.h"
#include "emulator/machine/programs.h"
#include "emulator/run/scripted_run.h"
#include "require.h"
#include "support/silent_runs.h"
#include "text/program_bytes.h"

namespace {

using namespace numalink;

constexpr std::size_t headSize = 20, sizeOffset = 12, sumOffset = 16;
constexpr std::uint64_t statementsMore = 300;
constexpr char mainProgram[] =
    "{3,1,2}\\->\\List 1:[[1,2][3,4]]\\->\\Mat A:\\Y=Type:\"X^2\"\\->\\Y 1:\\G SelOn 1:\\LinearReg \\List 1,\\List "
    "1,1\r\n"
    "\\For 1\\->I\\To 9:\"TEXT\":\\Prog \"SUB\":\\List 1[1]+I\\->A:\\Mat A[1,2]:\\Next:\\DrawGraph:\\StoPict 1:\"END\"";
constexpr char subProgram[] = "A+1\\->A:\\Plot A,A:?\\->B:A\\Disp\\Mat A";

Bytes imageOf(const char *words) {
    Bytes image = {':'};
    tokensFromWords(words, image);
    image.insert(image.end(), {0xFF, 0});
    return image;
}

bool load() {
    programsClear();
    return programAdd("MAIN", imageOf(mainProgram)) && programAdd("SUB", imageOf(subProgram));
}

// What a moment packs, of a run that stands in a wait of SUB.
Bytes makePayload() {
    require(prepareSilentRuns());
    runScripted({.keys = {72, 31, 31}, .getKeys = {}, .statementLimit = 1000}, [] {
        const bool loaded = load();
        momentsFollow();
        return loaded;
    });
    const Bytes moment = momentOfEndedRun();
    debugForget();
    require(moment.size() > headSize);
    Bytes payload(readLittle32(moment, sizeOffset));
    uLongf size = payload.size();
    require(uncompress(payload.data(), &size, moment.data() + headSize, moment.size() - headSize) == Z_OK);
    return payload;
}

Bytes fileOf(const Bytes &payload) {
    Bytes file = {'N', 'L', 'M', 'O', 'M', 'E', 'N', 'T', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    writeLittle32(file, sizeOffset, static_cast<std::uint32_t>(payload.size()));
    writeLittle32(file, sumOffset, checksum32(payload));
    uLongf packed = compressBound(payload.size());
    file.resize(headSize + packed);
    require(compress2(file.data() + headSize, &packed, payload.data(), payload.size(), 1) == Z_OK);
    file.resize(headSize + packed);
    return file;
}

std::size_t placeOf(std::uint8_t whereabouts, std::size_t offset, std::size_t size) {
    constexpr std::size_t head = 64, picture = 32768, machineSize = 60000, end = 400;
    switch (whereabouts % 4) {
        case 0:
            return offset % head;
        case 1:
            return picture + offset % machineSize;
        case 2:
            return size - 1 - offset % end;
        default:
            return offset * 7 % size;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const Bytes sound = makePayload();
    Bytes payload = sound;
    for (std::size_t at = 0; at + 4 <= size && at < 400; at += 4) {
        const std::size_t offset = data[at + 1] * 256u + data[at + 2];
        payload[std::min(placeOf(data[at], offset, payload.size()), payload.size() - 1)] = data[at + 3];
    }
    Moment moment;
    require(momentFromBytes({data, size}, moment) != MomentFault::none);
    if (momentFromBytes(fileOf(payload), moment) != MomentFault::none) return 0;
    const auto again = momentAsBytes(moment);
    require(again.has_value());
    const std::uint64_t limit = moment.statement + statementsMore;
    runScripted({.keys = {31, 31, 31, 72, 31}, .getKeys = {}, .statementLimit = limit}, [&] {
        const bool loaded = load();
        momentsFollow();
        return loaded && momentResume(moment) == MomentFault::none;
    });
    debugForget();
    return 0;
}
