// Bytes to lines and back, typed text among untouched bytes, and the classes of what is shown.
#include "text/view_runs.h"

#include <gmock/gmock.h>

#include <ctime>

#include "settings/settings_store.h"
#include "text/auto_correct.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::ElementsAre;

Bytes imageOf(std::string_view tokens) {
    std::string image = ":";
    image.append(tokens).append("\xFF");
    return {image.begin(), image.end()};
}

Bytes storedAgain(const std::vector<ViewLine> &lines) {
    std::vector<LineBytes> stored;
    for (const ViewLine &line : lines) stored.push_back(lineBytes(readLine(line, true)));
    return imageOfLines(stored);
}

// The bytes of one line after text has been put in at place.
std::string afterTyping(std::string_view tokens, std::size_t place, std::string_view text) {
    ViewLine line = viewLines(imageOf(tokens)).front();
    line.text.insert(place, text);
    line.origins.insert(line.origins.begin() + static_cast<std::ptrdiff_t>(place), text.size(), origin::typed);
    const LineReading reading = readLine(line, true);
    if (reading.faultAt >= 0) return "fault " + std::to_string(reading.faultAt);
    const LineReading again = readLine(shownLine(line, reading), true);
    EXPECT_EQ(lineBytes(again).bytes, lineBytes(reading).bytes) << "read anew, the line is another one";
    const Bytes bytes = lineBytes(reading).bytes;
    return {bytes.begin(), bytes.end()};
}

struct ViewRuns : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(tokenTableLoad());
        settingsSetInt(setting::autoCorrect, 1);
    }
};

TEST_F(ViewRuns, UntouchedLettersBesideTypedTextKeepTheirBytes) {
    // Letters of a string that spell a command, a star in a string, an assignment in letters.
    EXPECT_EQ(afterTyping("\"Score\"", 7, "A"), "\"Score\"A");
    EXPECT_EQ(afterTyping("\"A*B\"", 1, "X"), "\"XA*B\"");
    EXPECT_EQ(afterTyping("A or B", 6, "2"), "A or B2");
    EXPECT_EQ(afterTyping("'A or B", 7, "2"), "'A or B2");
    // Typed inside quotes, beside untouched letters: no joining.
    EXPECT_EQ(afterTyping("\"Sce\"", 3, "o"), "\"Scoe\"");
    EXPECT_EQ(afterTyping("\"xr\"", 2, "o"), "\"xor\"");
    // Outside of quotes what is typed joins its neighbours.
    EXPECT_EQ(afterTyping("Ao", 2, "r"), "A\xAA");
    EXPECT_EQ(afterTyping("A\x99", 2, ">"), "A\x0E");
    EXPECT_EQ(afterTyping("\xAA", 0, "x"), "\x9A");
    EXPECT_EQ(afterTyping("2=\xB9", 3, "=3"), "2\x11\x33");
    EXPECT_EQ(afterTyping("", 0, "P\xB9L\x99Orange"), "\x7F\x31");
}

TEST_F(ViewRuns, MarksFromBytesGiveThemBackAndTypedOnesAreText) {
    const std::string unknown = "A\xFA\x7F\x03\x42";
    ViewLine line = viewLines(imageOf(unknown)).front();
    EXPECT_EQ(line.text, "A<250> <127,3>B");
    EXPECT_EQ(afterTyping(unknown, line.text.size(), "C"), unknown + "C");
    EXPECT_EQ(afterTyping(unknown, 1, "C"), "AC" + unknown.substr(1));
    EXPECT_EQ(afterTyping("A", 1, "<250> "), "A<250> ");
    // Its blank may go, any other of its characters makes it text.
    line.text.erase(6, 1);
    line.origins.erase(line.origins.begin() + 6);
    EXPECT_EQ(lineBytes(readLine(line, true)).bytes[1], 0xFA);
    line.text.erase(3, 1);
    line.origins.erase(line.origins.begin() + 3);
    EXPECT_EQ(lineBytes(readLine(line, true)).bytes[1], '<');
}

TEST_F(ViewRuns, BytesBehindAnEndMarkInsideAreShownAndKept) {
    const Bytes image = {':', 'A', 0, 'B', 0x0D, 0xFF, 'C', 0xFF, 0x77};
    const std::vector<ViewLine> lines = viewLines(image);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, "A<0> <66> <13> <255> <67> ");
    EXPECT_EQ(storedAgain(lines), Bytes(image.begin(), image.end() - 1));
    EXPECT_EQ(viewLines({}).size(), 1u);
    EXPECT_EQ(viewLines(imageOf("\x7F")).front().text, "<127> ");
    EXPECT_EQ(viewLines(Bytes{':', 0xFF, 0x3B}).front().text, "");
}

TEST_F(ViewRuns, CharactersWithoutACodeAreTheFault) {
    ViewLine line = viewLines(imageOf("AB")).front();
    line.text += "?";
    line.origins.push_back(origin::foreign);
    const LineReading reading = readLine(line, true);
    EXPECT_EQ(reading.faultAt, 2);
    EXPECT_EQ(shownLine(line, reading), line);
    EXPECT_THAT(colorRuns(line, reading),
                ElementsAre(ColorRun{0, 2, RunClass::ascii}, ColorRun{2, 1, RunClass::error}));
}

std::string classesOf(std::string_view tokens) {
    const ViewLine line = viewLines(imageOf(tokens)).front();
    std::string classes;
    for (const ColorRun &run : colorRuns(line, readLine(line, true)))
        classes += std::to_string(static_cast<int>(run.runClass)) + ":" + std::to_string(run.size) + " ";
    return classes;
}

TEST_F(ViewRuns, ClassesFollowTheRules) {
    EXPECT_EQ(classesOf("A12.5{}"), "0:1 3:4 0:2 ");
    EXPECT_EQ(classesOf("A\x0E\x42"), "0:1 5:1 0:1 ");
    EXPECT_EQ(classesOf("\x81\x7F\x4A"), "4:4 6:9 ");
    EXPECT_EQ(classesOf("\"A1\x0E\"B"), "7:5 0:1 ");
    // A ' inside quotes opens no comment; a quote inside a comment flips all the same, and the comment wins.
    EXPECT_EQ(classesOf("\"'A\"B"), "7:4 0:1 ");
    EXPECT_EQ(classesOf("A'\"1\x81"), "0:1 1:7 ");
    EXPECT_EQ(classesOf("\"\xFA\"1"), "7:1 2:6 7:1 3:1 ");
}

TEST_F(ViewRuns, AnyLengthOfLineIsReadInStepWithIt) {
    ViewLine line;
    while (line.text.size() < 400000) line.text += "A or B->C:";
    line.origins.resize(line.text.size(), origin::typed);
    const std::clock_t start = std::clock();
    const LineReading reading = readLine(line, true);
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 15);
    EXPECT_EQ(reading.tokens.size(), line.text.size() / 10 * 6);
}

}  // namespace
}  // namespace numalink
