// The wire decoded: recordings of tests/lines told in words, and a trace file of a line.
#include <gtest/gtest.h>

#include <fstream>

#include "link/wire_decoder.h"
#include "link/wire_trace.h"
#include "platform/serial_line.h"
#include "support/byte_text.h"
#include "support/scratch_folder.h"

namespace numalink {

namespace {

using Told = std::vector<std::string>;

void add(Told &told, const std::vector<WireEvent> &events) {
    for (const WireEvent &event : events) told.push_back((event.way == WireWay::sent ? "> " : "< ") + event.meaning);
}

// What passes over the line in a recording, in parts of so many bytes.
Told decoded(const std::string &recording, std::size_t part) {
    std::ifstream file(std::string(NUMALINK_LINES) + "/" + recording + ".line");
    EXPECT_TRUE(file.is_open()) << recording;
    WireDecoder decoder;
    Told told;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("> ") && !line.starts_with("< ")) continue;
        const WireWay way = line[0] == '>' ? WireWay::sent : WireWay::received;
        const Bytes bytes = parseBytes(line.substr(2));
        for (std::size_t at = 0; at < bytes.size(); at += part)
            add(told, decoder.pass(way, at, ByteView(bytes).subspan(at, std::min(part, bytes.size() - at))));
    }
    add(told, decoder.end());
    return told;
}

const std::string cfxEnd = "head: end of transmission, 50 bytes, checksum right";
const std::string model = "head: model frame, 40 bytes, checksum right";

}  // namespace

TEST(WireDecoder, TellsRecordingsInWordsHoweverTheirBytesArrive) {
    struct Row {
        const char *recording;
        Told told;
    };
    const Row rows[] = {
        {"cfx_receive_list",
         {"< attention", "> ready", "< head: list \"List 1\", 50 bytes, announces 3 frames of 16 bytes, checksum right",
          "> acknowledge", "< data 1 of 3, 16 bytes, checksum right", "> acknowledge",
          "< data 2 of 3, 16 bytes, checksum right", "> acknowledge", "< data 3 of 3, 16 bytes, checksum right",
          "> acknowledge", "< " + cfxEnd}},
        {"cfx_receive_bad_data",
         {"< attention", "> ready", "< head: program \"ABC\", 50 bytes, announces 10 bytes of data, checksum right",
          "> acknowledge", "< data 1 of 1, 10 bytes, checksum WRONG", "> error: checksum wrong, or not stored"}},
        {"cfx_receive_exists_refused",
         {"< attention", "> ready", "< head: program \"ABC\", 50 bytes, announces 10 bytes of data, checksum right",
          "> such an item exists: overwrite?", "< refuse: don't overwrite, on to the next item", "> acknowledge",
          "< head: program \"TWO\", 50 bytes, announces 6 bytes of data, checksum right", "> acknowledge",
          "< data 1 of 1, 6 bytes, checksum right", "> acknowledge", "< " + cfxEnd}},
        {"cfx_receive_data_ends_early",
         {"< attention", "> ready", "< head: program \"ABC\", 50 bytes, announces 10 bytes of data, checksum right",
          "> acknowledge", "< CUT: 5 of 10 bytes of a frame"}},
        {"algebra_receive_program",
         {"< attention", "> ready", "< " + model, "> " + model, "< acknowledge", "> acknowledge",
          "< head: item of an ALGEBRA calculator \"ABC\", 40 bytes, announces 17 bytes of data, checksum right",
          "> acknowledge", "< data 1 of 1, 17 bytes, checksum right", "> acknowledge",
          "< head: end of transmission, 40 bytes, checksum right"}},
    };
    for (const Row &row : rows)
        for (const std::size_t part : {std::size_t{1}, std::size_t{16}, std::size_t{1000}})
            EXPECT_EQ(decoded(row.recording, part), row.told) << row.recording;
}

TEST(WireTrace, WritesWhatPassesAndPutsTheLineBack) {
    const ScratchFolder folder;
    static std::uint64_t clock = 0;
    static Bytes written;
    const SerialLine before = serialLine;
    serialLine.open = [](const std::string &name, unsigned) { return LineOpening{.path = name, .group = {}}; };
    serialLine.microseconds = [] { return clock += 2000; };
    serialLine.write = [](ByteView bytes) { return written.assign(bytes.begin(), bytes.end()), true; };
    serialLine.read = [](std::span<std::uint8_t> target, ReadLimits) {
        target[0] = 0x13;
        return LineRead{.count = 1, .end = ReadEnd::timeOut};
    };
    serialLine.close = [] {};
    const SerialLine own = serialLine;

    folder.write("storage.dat", "not a trace");
    EXPECT_EQ(wireTraceStart(folder.path + "storage.dat"), Text::traceOtherFile);
    EXPECT_EQ(folder.read("storage.dat"), "not a trace");
    EXPECT_EQ(serialLine.write, own.write);

    for (int run = 0; run < 2; run++) {
        ASSERT_EQ(wireTraceStart(folder.path + "wire.txt"), Text::none);
        serialLine.open("/dev/x", 9600);
        const std::uint8_t attention = 0x16, head[] = {':', 'E', 'N', 'D'};
        EXPECT_TRUE(serialLine.write({&attention, 1}));
        EXPECT_EQ(written, Bytes{0x16});
        std::uint8_t answer = 0;
        EXPECT_EQ(serialLine.read({&answer, 1}, {}).count, 1u);
        EXPECT_EQ(answer, 0x13);
        serialLine.write(ByteView(head));
        serialLine.close();
        EXPECT_EQ(wireTraceLast().size(), 5u);
        EXPECT_TRUE(wireTraceEnd());
        EXPECT_EQ(serialLine.write, own.write);
    }
    const std::string text = folder.read("wire.txt");
    EXPECT_TRUE(text.starts_with("Numalink wire trace\n     0.000 - begun "));
    EXPECT_NE(text.find("     0.004 > 16 attention\n     0.006 < 13 ready\n"
                        "     0.008 > CUT: 4 bytes of a frame\n               3A 45 4E 44\nNumalink wire trace\n"),
              std::string::npos)
        << text;
    serialLine = before;
}

}  // namespace numalink
