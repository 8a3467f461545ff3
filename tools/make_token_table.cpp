// make_token_table tokens.tsv casio.ptt: compiles the calculators' token table, one record a line, in file order.
// Refuses texts that don't fit a record, marks that aren't hexadecimal and byte pairs that stand twice with the same
// first text (such a record could never be found).
#include <array>
#include <set>

#include "line_reader.h"

namespace {

constexpr std::size_t recordLimit = 800;
constexpr std::size_t textLimit = 19;

// Display bytes with "\xCE" for a calculator code.
std::string unescaped(const std::string &file, const tool::Line &line, std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text.substr(i, 2) != "\\x") {
            bytes += text[i];
            continue;
        }
        const long code = tool::hexNumber(text.substr(i + 2, 2), 2);
        if (code < 0) tool::fault(file, line.number, "bad code in display text");
        bytes += static_cast<char>(code);
        i += 3;
    }
    return bytes;
}

void appendText(std::string &record, const std::string &text) {
    record += text;
    record.append(textLimit + 1 - text.size(), '\0');
}

std::string recordOf(const std::string &file, const tool::Line &line) {
    const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
    if (fields.size() != 7) tool::fault(file, line.number, "not seven fields");
    const long byte1 = tool::hexNumber(fields[1], 2);
    const long byte2 = fields[0] == "1" ? 0 : tool::hexNumber(fields[2], 2);
    const long glyph = tool::hexNumber(fields[5], 2);
    if ((fields[0] != "1" && fields[0] != "2") || byte1 < 0 || byte2 < 0 || glyph < 0)
        tool::fault(file, line.number, "bad length, bytes or glyph");
    const bool prefixed = byte1 == 0x7F || byte1 == 0xF7;
    if (prefixed != (fields[0] == "2")) tool::fault(file, line.number, "two-byte tokens begin with 7F or F7");
    const std::string display = glyph != 0 ? "" : unescaped(file, line, fields[4]);
    if (display.size() > textLimit || fields[6].size() > textLimit) tool::fault(file, line.number, "text too long");
    std::string record;
    for (const long byte : {fields[0] == "1" ? 1L : 2L, byte1, byte2, glyph}) record += static_cast<char>(byte);
    appendText(record, display);
    appendText(record, fields[6]);
    return record;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) tool::fault("make_token_table", 0, "usage: make_token_table tokens.tsv casio.ptt");
    const std::string file = argv[1];
    std::string table;
    std::set<std::string> seen;
    for (const tool::Line &line : tool::readLines(file)) {
        if (line.number == 1) continue;
        const std::string record = recordOf(file, line);
        if (!seen.insert(record).second) tool::fault(file, line.number, "the same record stands twice");
        table += record;
    }
    if (seen.size() > recordLimit) tool::fault(file, 0, "more than 800 records");
    tool::writeFile(argv[2], table);
    return 0;
}
