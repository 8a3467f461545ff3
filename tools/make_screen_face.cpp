// make_screen_face LARGE.txt charset.tsv FACE.ttf: the large characters as a scalable TrueType face of one width,
// "Numalink Screen", under the code points of the character set.
//
// The em is 10.5 dots, so that a height of 21 pixels gives exactly 2 pixels a dot, with half a dot on either side of
// a character. Letters stand on the base line; 1.5 dots of air above, 2 below.
#include <algorithm>
#include <map>

#include "dot_outlines.h"
#include "sfnt_writer.h"

namespace {

using tool::BigEndian;

// 128 units a dot make a unit exactly 1/64 pixel at 21 pixels, the grain of text engines: no advance is rounded there.
constexpr int dotUnits = 128;
constexpr int unitsPerEm = dotUnits * 21 / 2, ascent = dotUnits * 17 / 2, descent = dotUnits * 2;
constexpr int advance = dotUnits * 6, leftEdge = dotUnits / 2, capHeight = dotUnits * 7, smallHeight = dotUnits * 5;
static_assert(ascent + descent == unitsPerEm);
constexpr std::uint32_t madeAt = 3786912000U;  // 2024-01-01 in seconds since 1904; fixed, so that builds are alike

const tool::Glyph hollowBox{{"#####", "#...#", "#...#", "#...#", "#...#", "#...#", "#####"}};

struct Outline {
    std::vector<tool::Contour> contours;  // in units
    int left = 0, bottom = 0, right = 0, top = 0;
    std::size_t points = 0;
};

Outline outlineOf(const tool::Glyph &glyph) {
    Outline outline{.contours = tool::outlines(glyph)};
    bool first = true;
    for (tool::Contour &contour : outline.contours) {
        for (tool::Place &place : contour) {
            place = {place.x * dotUnits + leftEdge, place.y * dotUnits};
            outline.left = first ? place.x : std::min(outline.left, place.x);
            outline.bottom = first ? place.y : std::min(outline.bottom, place.y);
            outline.right = first ? place.x : std::max(outline.right, place.x);
            outline.top = first ? place.y : std::max(outline.top, place.y);
            first = false;
        }
        outline.points += contour.size();
    }
    return outline;
}

struct Face {
    std::vector<Outline> outlines;     // the hollow box, the 256 codes, the hollow box again
    std::map<long, long> glyphOfCode;  // by code point
};

// Line ends and other controls stay unmapped: a text engine must never draw them.
void mapCodePoints(Face &face, const std::string &charset, const tool::Drawings &drawings) {
    const long lastGlyph = static_cast<long>(face.outlines.size()) - 1;
    for (const tool::Line &line : tool::readLines(charset)) {
        if (line.number == 1) continue;
        const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        const long code = fields.size() < 2 ? -1 : tool::hexNumber(fields[0], 2);
        const long codePoint = fields.size() < 2 ? -1 : tool::hexNumber(fields[1], 4);
        if (code < 0 || codePoint < 0) tool::fault(charset, line.number, "a code and a code point are expected");
        const bool drawn = !drawings.glyphs[static_cast<std::size_t>(code)].rows.empty();
        if (codePoint >= 0x20) face.glyphOfCode[codePoint] = drawn ? code + 1 : lastGlyph;
    }
    if (!face.glyphOfCode.contains(' ')) tool::fault(charset, 0, "the blank is missing");
    face.glyphOfCode[0x00A0] = face.glyphOfCode[' '];
    for (const long box : {0x25A1L, 0xFFFDL}) face.glyphOfCode[box] = lastGlyph;
}

Face faceOf(const tool::Drawings &drawings, const std::string &charset) {
    Face face;
    face.outlines.push_back(outlineOf(hollowBox));
    for (const tool::Glyph &glyph : drawings.glyphs) face.outlines.push_back(outlineOf(glyph));
    face.outlines.push_back(outlineOf(hollowBox));
    mapCodePoints(face, charset, drawings);
    return face;
}

// All points lie on the outline; a coordinate that doesn't change is left out by its flag.
std::string glyphRecord(const Outline &outline) {
    if (outline.contours.empty()) return {};
    BigEndian record, flags, across, upward;
    record.u16(static_cast<long>(outline.contours.size()));
    record.u16(outline.left).u16(outline.bottom).u16(outline.right).u16(outline.top);
    long points = 0;
    tool::Place last{0, 0};
    for (const tool::Contour &contour : outline.contours) {
        points += static_cast<long>(contour.size());
        record.u16(points - 1);
        for (const tool::Place &place : contour) {
            flags.u8(0x01U | (place.x == last.x ? 0x10U : 0U) | (place.y == last.y ? 0x20U : 0U));
            if (place.x != last.x) across.u16(place.x - last.x);
            if (place.y != last.y) upward.u16(place.y - last.y);
            last = place;
        }
    }
    record.u16(0).text(flags.bytes).text(across.bytes).text(upward.bytes).pad(4);
    return record.bytes;
}

void addGlyphs(const Face &face, std::map<std::string, std::string> &tables) {
    BigEndian glyphs, places, metrics;
    metrics.u16(advance);  // one advance for all, then a left edge each
    for (const Outline &outline : face.outlines) {
        places.u32(static_cast<std::uint32_t>(glyphs.bytes.size()));
        glyphs.text(glyphRecord(outline));
        metrics.u16(outline.left);
    }
    places.u32(static_cast<std::uint32_t>(glyphs.bytes.size()));
    tables["glyf"] = glyphs.bytes;
    tables["loca"] = places.bytes;
    tables["hmtx"] = metrics.bytes;
}

void addHeads(const Face &face, std::map<std::string, std::string> &tables) {
    std::size_t mostPoints = 0, mostContours = 0;
    for (const Outline &outline : face.outlines) {
        mostPoints = std::max(mostPoints, outline.points);
        mostContours = std::max(mostContours, outline.contours.size());
    }
    const long right = leftEdge + 5 * dotUnits;
    BigEndian head;
    head.u32(0x00010000).u32(0x00010000).u32(0).u32(0x5F0F3CF5).u16(0x0001).u16(unitsPerEm);
    head.u32(0).u32(madeAt).u32(0).u32(madeAt);
    head.u16(leftEdge).u16(0).u16(right).u16(capHeight).u16(0).u16(10).u16(2).u16(1).u16(0);
    tables["head"] = head.bytes;

    BigEndian across;
    across.u32(0x00010000).u16(ascent).u16(-descent).u16(0).u16(advance).u16(0).u16(advance - right).u16(right);
    across.u16(1).u16(0).u16(0).u16(0).u16(0).u16(0).u16(0).u16(0).u16(1);
    tables["hhea"] = across.bytes;

    BigEndian limits;
    limits.u32(0x00010000).u16(static_cast<long>(face.outlines.size()));
    limits.u16(static_cast<long>(mostPoints)).u16(static_cast<long>(mostContours)).u16(0).u16(0).u16(2);
    for (int unused = 0; unused < 8; unused++) limits.u16(0);
    tables["maxp"] = limits.bytes;

    BigEndian post;
    post.u32(0x00030000).u32(0).u16(-dotUnits).u16(dotUnits).u32(1).u32(0).u32(0).u32(0).u32(0);
    tables["post"] = post.bytes;
}

void addSystemMetrics(const Face &face, std::map<std::string, std::string> &tables) {
    BigEndian table;
    table.u16(4).u16(advance).u16(400).u16(5).u16(0);
    for (const long part : {500, 500, 0, 100, 500, 500, 0, 350, 100, 300})
        table.u16(part);  // sub-, superscript, strike
    table.u16(0);
    for (const std::uint32_t part : {2U, 0U, 5U, 9U, 0U, 0U, 0U, 0U, 0U, 0U}) table.u8(part);  // of one width
    table.u32(1).u32(0).u32(0).u32(0).text("NMLK").u16(0x00C0);
    table.u16(face.glyphOfCode.begin()->first).u16(face.glyphOfCode.rbegin()->first);
    table.u16(ascent).u16(-descent).u16(0).u16(ascent).u16(descent).u32(1).u32(0);
    table.u16(smallHeight).u16(capHeight).u16(0).u16(' ').u16(1);
    tables["OS/2"] = table.bytes;
}

void addNames(std::map<std::string, std::string> &tables) {
    const std::map<long, std::string> names{{1, "Numalink Screen"}, {2, "Regular"},     {3, "Numalink Screen Regular"},
                                            {4, "Numalink Screen"}, {5, "Version 1.0"}, {6, "NumalinkScreen-Regular"}};
    BigEndian records, texts;
    for (const auto &[number, name] : names) {
        records.u16(3).u16(1).u16(0x0409).u16(number).u16(static_cast<long>(name.size() * 2));
        records.u16(static_cast<long>(texts.bytes.size()));
        for (const char letter : name) texts.u16(letter);
    }
    BigEndian table;
    table.u16(0).u16(static_cast<long>(names.size())).u16(static_cast<long>(6 + records.bytes.size()));
    tables["name"] = table.text(records.bytes).text(texts.bytes).bytes;
}

struct Segment {
    long first, last, glyph;  // code points, and the glyph of the first
};

std::vector<Segment> segmentsOf(const Face &face) {
    std::vector<Segment> segments;
    for (const auto &[codePoint, glyph] : face.glyphOfCode) {
        if (!segments.empty()) {
            Segment &segment = segments.back();
            if (segment.last + 1 == codePoint && segment.glyph + (codePoint - segment.first) == glyph) {
                segment.last = codePoint;
                continue;
            }
        }
        segments.push_back({codePoint, codePoint, glyph});
    }
    segments.push_back({0xFFFF, 0xFFFF, 0x10000});  // the end mark, which gives glyph 0
    return segments;
}

void addCodePoints(const Face &face, std::map<std::string, std::string> &tables) {
    const std::vector<Segment> segments = segmentsOf(face);
    const long count = static_cast<long>(segments.size());
    const tool::SearchFields search(count, 2);
    BigEndian starts, ends, deltas, noOffsets;
    for (const Segment &segment : segments) {
        ends.u16(segment.last);
        starts.u16(segment.first);
        deltas.u16((segment.glyph - segment.first) & 0xFFFF);
        noOffsets.u16(0);
    }
    BigEndian table;
    table.u16(0).u16(2).u16(0).u16(3).u32(20).u16(3).u16(1).u32(20);
    table.u16(4).u16(16 + 8 * count).u16(0).u16(2 * count).u16(search.range).u16(search.selector).u16(search.shift);
    table.text(ends.bytes).u16(0).text(starts.bytes).text(deltas.bytes).text(noOffsets.bytes);
    tables["cmap"] = table.bytes;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4) tool::fault("make_screen_face", 0, "usage: make_screen_face LARGE.txt charset.tsv FACE.ttf");
    const tool::Drawings drawings = tool::readDrawings(argv[1]);
    if (!drawings.large) tool::fault(argv[1], 0, "the large font is expected");
    const Face face = faceOf(drawings, argv[2]);
    std::map<std::string, std::string> tables;
    addGlyphs(face, tables);
    addHeads(face, tables);
    addSystemMetrics(face, tables);
    addNames(tables);
    addCodePoints(face, tables);
    tool::writeFile(argv[3], tool::sfntFile(tables));
    return 0;
}
