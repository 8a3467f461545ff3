// make_charset charset.tsv charset_table.inc: the code points of the 256 calculator codes as a C++ initializer.
// Refuses a code that is missing and a code point that stands twice.
#include <set>

#include "line_reader.h"

int main(int argc, char **argv) {
    if (argc != 3) tool::fault("make_charset", 0, "usage: make_charset charset.tsv charset_table.inc");
    const std::string file = argv[1];
    std::string table;
    std::set<std::string> seen;
    for (const tool::Line &line : tool::readLines(file)) {
        if (line.number == 1) continue;
        const std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        if (fields.size() != 4 || tool::hexNumber(fields[0], 2) != line.number - 2)
            tool::fault(file, line.number, "four fields and codes in order are expected");
        if (tool::hexNumber(fields[1], 4) < 0) tool::fault(file, line.number, "bad code point");
        if (!seen.insert(fields[1]).second) tool::fault(file, line.number, "code point stands twice");
        table += "0x" + fields[1] + ",\n";
    }
    if (seen.size() != 256) tool::fault(file, 0, "not 256 codes");
    tool::writeFile(argv[2], table);
    return 0;
}
