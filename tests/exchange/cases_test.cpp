// The cases of tests/exchange/cases: a file and what readers make of it, or an item and the file that comes of it.
//
//   case a name                   begins one
//   read cat                      or cas, fxi (whose bytes are the case's in its scrambling)
//   write cat 15 ABC              or algebra, cas: the kind and the name of an item
//   info 20 ABC PASS              its first payload, as a ProgramInfo; or
//   head BYTES                    byte for byte
//   data BYTES
//   |A line of the file|another   each with CR LF behind it; also of one that is expected of a writer
//   < BYTES                       of the file
//   = item 15 ABC                 comes of it, followed by its "= head" or "= info", and "= data"
//   = told 100 /Record 2, ABC     a message: its number, and what stands behind that text, "/" for a line end
//   = skipped 1                   records without a kind
//   = refused notWhole            nothing is written; of code with the code behind it
#include <gmock/gmock.h>

#include <filesystem>

#include "calculator/charset.h"
#include "exchange/export/export_writers.h"
#include "exchange/reader_calls.h"
#include "support/byte_text.h"
#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

struct Case {
    std::string name, way, format;
    OutgoingItem item;
    Bytes file;
    std::string expected;
};

void takeLine(Case &one, const std::string &line) {
    const std::string word = line.substr(0, line.find(' ')), rest = line.substr(std::min(word.size() + 1, line.size()));
    if (line[0] == '|' || word == "<") {
        const Bytes bytes = parseFileLine(line);
        one.file.insert(one.file.end(), bytes.begin(), bytes.end());
    } else if (word == "read" || word == "write") {
        one.way = word;
        std::istringstream(rest) >> one.format >> one.item.itemKind >> one.item.name;
    } else if (word == "info" || word == "head") {
        one.item.head = word == "info" ? parseInfo(rest) : parseBytes(rest);
    } else if (word == "data") {
        one.item.data = parseBytes(rest);
    } else if (rest.starts_with("info") || rest.starts_with("head") || rest.starts_with("data")) {
        const std::string operand = rest.substr(std::min<std::size_t>(5, rest.size()));
        one.expected += (rest[0] == 'd' ? "data " : "head ") +
                        hexOf(rest[0] == 'i' ? parseInfo(operand) : parseBytes(operand)) + "\n";
    } else {
        one.expected += rest + "\n";
    }
}

std::vector<Case> allCases() {
    std::vector<Case> cases;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_EXCHANGE_CASES)) {
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("case ")) cases.emplace_back().name = line.substr(5);
            if (!line.empty() && line[0] != '#' && !line.starts_with("case ")) takeLine(cases.back(), line);
        }
    }
    return cases;
}

std::string readOf(const Case &one) {
    std::string file(one.file.begin(), one.file.end());
    if (one.format == "fxi") {
        for (char &byte : file) byte = static_cast<char>(byte ^ 0xE7);
        file.replace(0, 2, "20");
    }
    const ReadResult read = readWith(one.format == "cat" ? readCat : one.format == "cas" ? readCas : readFxi, file);
    std::string found;
    for (const ImportedItem &item : read.taken)
        found += "item " + std::to_string(item.itemKind) + (item.name.empty() ? "" : " ") +
                 utf8FromCalculator(item.name) + "\nhead " + hexOf(item.head) + "\ndata " + hexOf(item.data) + "\n";
    for (const ImportMessage &message : read.messages) {
        const bool known = textNumber(message.bodyText) < firstListNumber;
        found += "told " + std::to_string(textNumber(message.bodyText)) + " ";
        for (const char letter : message.body.substr(known ? wording(message.bodyText).size() : 0))
            if (letter != '\r') found += letter == '\n' ? '/' : letter;
        found.erase(found.find_last_not_of(' ') + 1);
        found += "\n";
    }
    return found + (read.unknownRecords > 0 ? "skipped " + std::to_string(read.unknownRecords) + "\n" : "");
}

void expectWritten(const Case &one) {
    constexpr const char *faults[] = {"kind", "code", "sizesDiffer", "tooLarge", "notWhole"};
    Bytes file;
    const auto refusal = one.format == "cas"   ? appendItem(one.item, ExportTarget::cas, file)
                         : one.format == "cat" ? appendItem(one.item, ExportTarget::cat, file)
                                               : appendItem(one.item, ExportTarget::catAlgebra, file);
    std::string found;
    if (refusal) {
        found = std::string("refused ") + faults[static_cast<std::size_t>(refusal->fault)];
        found += (refusal->code == 0 ? "" : " " + std::to_string(refusal->code)) + "\n";
    }
    EXPECT_EQ(found, one.expected);
    EXPECT_EQ(std::string(file.begin(), file.end()), std::string(one.file.begin(), one.file.end()));
}

using ExchangeCases = Exchange;

TEST_F(ExchangeCases, EndAsTheirFilesTell) {
    const std::vector<Case> cases = allCases();
    EXPECT_GT(cases.size(), 50u);
    for (const Case &one : cases) {
        SCOPED_TRACE(one.name);
        if (one.way == "write") {
            expectWritten(one);
        } else {
            EXPECT_EQ(readOf(one), one.expected);
        }
    }
}

TEST_F(ExchangeCases, ADumpCutAnywhereSaysWhereItStopped) {
    const calculator::Item program = calculator::program("ONE", {'A', 'B', 'C'});
    std::string dump(program.head.begin(), program.head.end());
    dump.append(program.data.begin(), program.data.end());
    const std::size_t size = dump.size();
    dump += dump;
    for (std::size_t length = 1; length <= dump.size(); length++) {
        const ReadResult read = readWith(readCas, dump.substr(0, length));
        ASSERT_EQ(read.taken.size(), length / size) << length;
        ASSERT_EQ(read.messages.size(), 1u) << "without a closing frame";
        EXPECT_THAT(read.messages[0].body, testing::EndsWith(std::to_string(length / size * size) + "."));
    }
}

}  // namespace
}  // namespace numalink
