// make_reference_table language_reference.tsv language_remarks.tsv reference_table.inc: the rows of the reference as
// C++ string literals, a row a literal, without the line of headings and in the order of their tokens; behind each the
// translations of its remark, from the second table, where a remark stands once. tools/make_reference.py checks what
// the rows say; here only what a reader of them counts on.
#include <algorithm>
#include <map>
#include <set>

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

// "Dutch TAB German TAB French" of each remark; two tabs for none.
std::map<std::string, std::string> remarksOf(const std::string &file) {
    std::map<std::string, std::string> remarks = {{"", "\t\t"}};
    for (const tool::Line &line : tool::readLines(file)) {
        const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        if (fields.size() != 4 || std::ranges::any_of(fields, &std::string::empty))
            tool::fault(file, line.number, "a remark and three translations are expected");
        if (!remarks.emplace(fields[0], line.text.substr(fields[0].size() + 1)).second)
            tool::fault(file, line.number, "remark stands twice");
    }
    return remarks;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4)
        tool::fault("make_reference_table", 0, "usage: make_reference_table TABLE.tsv REMARKS.tsv TABLE.inc");
    const std::string file = argv[1];
    const std::map<std::string, std::string> remarks = remarksOf(argv[2]);
    std::set<std::string> used = {"", "English"};
    std::map<long, std::string> rows;
    for (const tool::Line &line : tool::readLines(file)) {
        if (line.number == 1) continue;
        const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        const long code = tool::hexNumber(fields[0], fields[0].size());
        if (fields.size() != 13 || code < 0 || (fields[0].size() != 2 && fields[0].size() != 4))
            tool::fault(file, line.number, "a token and twelve more columns are expected");
        const auto remark = remarks.find(fields[12]);
        if (remark == remarks.end()) tool::fault(argv[2], 0, "no translation of: " + fields[12]);
        used.insert(fields[12]);
        if (!rows.emplace(code, line.text + "\t" + remark->second).second)
            tool::fault(file, line.number, "token stands twice");
    }
    for (const auto &[remark, translations] : remarks)
        if (!used.contains(remark)) tool::fault(argv[2], 0, "no token has the remark: " + remark);
    std::string table;
    for (const auto &[code, row] : rows) table += literal(row + "\n") + ",\n";
    tool::writeFile(argv[3], table);
    return 0;
}
