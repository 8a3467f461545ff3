// What the two font tools share: reading the dot drawings of data/fonts, of all 256 codes, with their faults told.
//
//   font large               5 columns by 7 rows each; "font small": 1 to 5 columns by 5 rows
//   // a comment
//   41    42    43           a band: the codes, and under them one line a row, "#" a dot and "." none
//   .###. ####. .###.
//   80 81 82 = 7F            three codes that take the drawing of a fourth
//   00 0D = none             codes without a drawing
#pragma once

#include <array>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "line_reader.h"

namespace tool {

inline constexpr int glyphCount = 256;

struct Glyph {
    std::vector<std::string> rows;  // of equal width; none without a drawing

    std::size_t width() const { return rows.empty() ? 0 : rows[0].size(); }
    bool dot(std::size_t column, std::size_t row) const { return row < rows.size() && rows[row][column] == '#'; }
};

struct Drawings {
    bool large = false;
    std::array<Glyph, glyphCount> glyphs;

    std::size_t rowCount() const { return large ? 7 : 5; }
};

struct DrawingReader {
    struct Alias {
        int line, code, of;  // of: -1 for none
    };

    std::string file;
    Drawings drawings;
    std::array<int, glyphCount> lineOf{};  // where a code was given its drawing, or 0
    std::vector<Alias> aliases;
    bool kindKnown = false;
    std::vector<int> band;  // the codes of the band that is being read
    std::size_t rowsRead = 0;

    void readKind(int line, const std::vector<std::string> &words) {
        if (words.size() != 2 || words[0] != "font" || (words[1] != "large" && words[1] != "small"))
            fault(file, line, "\"font large\" or \"font small\" is expected first");
        drawings.large = words[1] == "large";
        kindKnown = true;
    }

    int takeCode(int line, const std::string &word) {
        const long code = hexNumber(word, 2);
        if (code < 0) fault(file, line, "\"" + word + "\" is no code of two hexadecimal digits");
        int &known = lineOf[static_cast<std::size_t>(code)];
        if (known != 0) fault(file, line, "code " + word + " stands in line " + std::to_string(known) + " already");
        known = line;
        return static_cast<int>(code);
    }

    void readAlias(int line, const std::vector<std::string> &words) {
        const std::string &target = words.back();
        const int of = target == "none" ? -1 : static_cast<int>(hexNumber(target, 2));
        if (of < 0 && target != "none") fault(file, line, "a code or \"none\" is expected after \"=\"");
        for (std::size_t i = 0; i + 2 < words.size(); i++) aliases.push_back({line, takeCode(line, words[i]), of});
    }

    void checkWidth(int line, const std::string &word) const {
        if (word.find_first_not_of("#.") != std::string::npos)
            fault(file, line, "\"" + word + "\" isn't made of \"#\" and \".\"");
        if (word.size() > 5 || (drawings.large && word.size() != 5))
            fault(file, line, "\"" + word + "\" isn't as wide as a glyph of this font");
    }

    void readRow(int line, const std::vector<std::string> &words) {
        if (words.size() != band.size()) fault(file, line, "not as many drawings as the band has codes");
        for (std::size_t i = 0; i < words.size(); i++) {
            checkWidth(line, words[i]);
            Glyph &glyph = drawings.glyphs[static_cast<std::size_t>(band[i])];
            if (!glyph.rows.empty() && glyph.width() != words[i].size())
                fault(file, line, "\"" + words[i] + "\" isn't as wide as the row above it");
            glyph.rows.push_back(words[i]);
        }
        if (++rowsRead == drawings.rowCount()) band.clear();
    }

    void readLine(int line, const std::vector<std::string> &words) {
        if (!kindKnown) {
            readKind(line, words);
        } else if (!band.empty()) {
            readRow(line, words);
        } else if (words.size() >= 3 && words[words.size() - 2] == "=") {
            readAlias(line, words);
        } else {
            for (const std::string &word : words) band.push_back(takeCode(line, word));
            rowsRead = 0;
        }
    }

    void finish(int lastLine) {
        if (!band.empty()) fault(file, lastLine, "the last band has too few rows");
        for (const Alias &alias : aliases) {
            if (alias.of < 0) continue;
            const Glyph &source = drawings.glyphs[static_cast<std::size_t>(alias.of)];
            if (source.rows.empty()) fault(file, alias.line, "the code after \"=\" has no drawing of its own");
        }
        for (const Alias &alias : aliases) {
            if (alias.of >= 0)
                drawings.glyphs[static_cast<std::size_t>(alias.code)] =
                    drawings.glyphs[static_cast<std::size_t>(alias.of)];
        }
        for (std::size_t code = 0; code < glyphCount; code++) {
            if (lineOf[code] == 0) fault(file, lastLine, "code " + std::to_string(code) + " (decimal) is missing");
        }
    }
};

inline Drawings readDrawings(const std::string &file) {
    DrawingReader reader{.file = file, .drawings = {}, .lineOf = {}, .aliases = {}, .band = {}};
    int lastLine = 0;
    for (const Line &line : readLines(file)) {
        std::istringstream text(line.text);
        std::vector<std::string> words;
        for (std::string word; text >> word;) words.push_back(word);
        lastLine = line.number;
        if (words.empty() || words[0].starts_with("//")) {
            if (!reader.band.empty()) fault(file, line.number, "the band above has too few rows");
            continue;
        }
        reader.readLine(line.number, words);
    }
    reader.finish(lastLine);
    return reader.drawings;
}

}  // namespace tool
