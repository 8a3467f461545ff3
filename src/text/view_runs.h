// A program as the lines of its view: each character knows the token byte it comes from, so that what the user leaves
// alone keeps its bytes, and what the user types is read anew. Also the classes that colour it. Calculator codes
// throughout; no state; any thread once the tables are loaded.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"

namespace numalink {

// Where a character on view comes from, packed into a number that a text format can carry.
using CodeOrigin = std::uint32_t;
namespace origin {
inline constexpr CodeOrigin typed = 0;    // by the user: read anew, with its neighbours, at each change
inline constexpr CodeOrigin ownByte = 1;  // from a byte that is shown as the character of its own code

// A character that the calculators don't have, whose code means nothing: this flag and the code point below it.
inline constexpr CodeOrigin foreign = 1u << 31;
}  // namespace origin

inline bool isForeign(CodeOrigin from) { return (from & origin::foreign) != 0; }

// One line without its end. text and origins are of one length.
struct ViewLine {
    std::string text;
    std::vector<CodeOrigin> origins;
    bool operator==(const ViewLine &) const = default;
};

char32_t characterAt(const ViewLine &line, std::size_t place);

// In the order of the colours of the view.
enum class RunClass : std::uint8_t {
    ascii,
    comment,
    error,
    numbers,
    oneByteCommand,
    oneByteCharacter,
    twoByteCommand,
    text
};
inline constexpr std::size_t runClassCount = 8;

struct ViewToken {
    std::array<std::uint8_t, 2> bytes{};
    std::uint8_t length = 1;  // bytes
    bool isMark = false;      // stands as "<250> " or "<127,80>"
    bool isKept = false;      // untouched: bytes and characters are those that the line was opened with
    std::size_t from = 0;     // first character in the line
    std::size_t size = 0;     // characters
};

// A line read as tokens. faultAt is the first character that is no token, or -1; tokens then holds what came before.
struct LineReading {
    std::vector<ViewToken> tokens;
    std::ptrdiff_t faultAt = -1;
};

// A stretch of one class in a line.
struct ColorRun {
    std::size_t from;
    std::size_t size;
    RunClass runClass;
    bool operator==(const ColorRun &) const = default;
};

// The lines of an image, at least one. Bytes behind an end mark inside the image stand as marks at the end.
std::vector<ViewLine> viewLines(ByteView image);
// What of an image is shown: behind ':' and up to its last end mark, with or without a checksum behind that.
ByteView viewedBytes(ByteView image);

// Whether what comes next lies in a comment or in quotes: by the first bytes alone, also those of pairs. An apostrophe
// in a string opens no comment.
struct Quoting {
    bool inComment = false;
    bool inString = false;

    void follow(std::uint8_t firstByte);
    void follow(const ViewToken &token);
    bool quoted() const { return inComment || inString; }
};

// Untouched tokens keep their bytes. Typed characters take the longest reading, outside quotes and comments together
// with untouched neighbours; never across a mark, nor across half of an untouched token.
LineReading readLine(const ViewLine &line, bool autoCorrect);

// The line as its tokens show themselves: typed spellings become display texts. A reading with a fault gives the line
// as it is.
ViewLine shownLine(const ViewLine &line, const LineReading &reading);

// The same with every token as an untouched one: what a line is once it has been stored.
ViewLine keptLine(const ViewLine &line, const LineReading &reading);

// The bytes of a line. endsInDisplay tells that its last token is the display command, which takes the line end with
// it.
struct LineBytes {
    Bytes bytes;
    bool endsInDisplay = false;
};
LineBytes lineBytes(const LineReading &reading);

// ':', the lines with their ends, 0xFF.
Bytes imageOfLines(const std::vector<LineBytes> &lines);

// Characters of a token as the view shows it, without a line end.
std::string tokenOnView(ByteView token, bool isMark);
ViewLine lineOfTokens(ByteView tokens);  // untouched tokens; line ends among them are left out

// Every character of a line in exactly one run; neighbours differ in class. A line with a fault has one run of the
// class error, at the fault, and is of the class ascii elsewhere.
std::vector<ColorRun> colorRuns(const ViewLine &line, const LineReading &reading);

}  // namespace numalink
