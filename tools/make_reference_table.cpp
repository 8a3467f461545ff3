// make_reference_table language_reference.tsv reference_table.inc: the rows of the reference as C++ string literals, a
// row a literal, without the line of headings and in the order of their tokens. tools/make_reference.py checks what
// they say; here only what a reader of the rows counts on.
#include <map>

#include "line_reader.h"

namespace {

std::string literal(std::string_view text) {
    constexpr std::string_view digits = "01234567";
    std::string made = "\"";
    for (const char sign : text) {
        const auto code = static_cast<unsigned char>(sign);
        if (code >= ' ' && code < 0x7F && code != '"' && code != '\\' && code != '?') {
            made += sign;
        } else {
            made += {'\\', digits[code >> 6], digits[code >> 3 & 7], digits[code & 7]};
        }
    }
    return made + "\"";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) tool::fault("make_reference_table", 0, "usage: make_reference_table TABLE.tsv TABLE.inc");
    const std::string file = argv[1];
    std::map<long, std::string> rows;
    for (const tool::Line &line : tool::readLines(file)) {
        if (line.number == 1) continue;
        const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        const long code = tool::hexNumber(fields[0], fields[0].size());
        if (fields.size() != 13 || code < 0 || (fields[0].size() != 2 && fields[0].size() != 4))
            tool::fault(file, line.number, "a token and twelve more columns are expected");
        if (!rows.emplace(code, line.text).second) tool::fault(file, line.number, "token stands twice");
    }
    std::string table;
    for (const auto &[code, row] : rows) table += literal(row + "\n") + ",\n";
    tool::writeFile(argv[2], table);
    return 0;
}
