// Any bytes as a program and as an edit of it: a view gives its bytes back, also by way of a mail, and an edited one
// never leaves its bounds.
#include <cstdlib>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "text/lenient_text.h"
#include "text/program_bytes.h"
#include "text/token_table.h"
#include "text/view_copy.h"
#include "text/view_edit.h"

namespace {

using namespace numalink;

Bytes storedAgain(const std::vector<ViewLine> &lines) {
    std::vector<LineBytes> stored;
    for (const ViewLine &line : lines) stored.push_back(lineBytes(readLine(line, true)));
    return imageOfLines(stored);
}

// Out as text that a mail takes the last blanks off, and in again.
Bytes throughAMail(const ViewLine &line) {
    std::vector<std::string> pieces = piecesOfLine(line);
    LenientText text;
    if (pieces.size() == 1) return lineBytes(readLine(lenientLine(text, utf8FromCalculator(pieces[0])), true)).bytes;
    if (pieces.back().starts_with('<') && pieces.back().ends_with("> ")) pieces.back().pop_back();
    ViewLine back;
    if (!lineOfPieces(pieces, back)) std::abort();
    return lineBytes(readLine(back, true)).bytes;
}

// The image as it must come back: what is shown, between ':' and one end mark.
Bytes wanted(ByteView image) {
    Bytes bytes = {':'};
    const ByteView viewed = viewedBytes(image);
    bytes.insert(bytes.end(), viewed.begin(), viewed.end());
    bytes.push_back(0xFF);
    return bytes;
}

// Puts in or takes out characters as the bytes of edits tell, three bytes an edit.
void edit(ViewLine &line, ByteView edits) {
    for (; edits.size() >= 3; edits = edits.subspan(3)) {
        const std::size_t place = edits[0] % (line.text.size() + 1);
        if (edits[1] % 4 == 0 && place < line.text.size()) {
            line.text.erase(place, 1);
            line.origins.erase(line.origins.begin() + static_cast<std::ptrdiff_t>(place));
        } else {
            line.text.insert(place, 1, static_cast<char>(edits[2]));
            line.origins.insert(line.origins.begin() + static_cast<std::ptrdiff_t>(place),
                                edits[1] == 255 ? origin::foreign : origin::typed);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool loaded = tokenTableLoad();
    if (!loaded || size < 2) return 0;
    const std::size_t split = 1 + data[0] % (size - 1);
    const ByteView image(data + 1, split - 1);
    const ByteView edits(data + split, size - split);
    std::vector<ViewLine> lines = viewLines(image);
    const Bytes whole = wanted(image);
    if (storedAgain(lines) != whole) std::abort();
    // What stands behind an end mark inside is shown as marks of its own, which a mail doesn't bring back.
    const bool isWhole = programTokens(whole).size() + 2 == whole.size();
    for (const ViewLine &line : lines) {
        if (isWhole && throughAMail(line) != lineBytes(readLine(line, true)).bytes) std::abort();
        std::size_t covered = 0;
        for (const ColorRun &run : colorRuns(line, readLine(line, true))) covered += run.size;
        if (covered != line.text.size()) std::abort();
    }
    ViewLine &edited = lines[edits.size() % lines.size()];
    edit(edited, edits);
    const LineReading reading = readLine(edited, true);
    const ViewLine shown = shownLine(edited, reading);
    if (shown.text.size() != shown.origins.size()) std::abort();
    colorRuns(edited, reading);
    if (reading.faultAt < 0 && lineBytes(readLine(keptLine(edited, reading), true)).bytes != lineBytes(reading).bytes)
        std::abort();
    Bytes written;
    imageOfViewLines(linesOverProgram(image, {reinterpret_cast<const char *>(edits.data()), edits.size()}).lines, true,
                     written);
    return 0;
}
