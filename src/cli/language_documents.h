// The text files that an editor has open, each a program in its readable form. Places are those of the Language Server
// Protocol: lines from 0, and within a line units of UTF-16. One thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "language/program_text.h"
#include "language/structure.h"

namespace numalink {

struct LanguageDocument {
    std::vector<ViewLine> lines;
    std::vector<std::vector<std::size_t>> units;  // of each line: where its characters begin, and its end
    std::vector<std::size_t> lengths;             // of each line as it was sent, in units
    ProgramText text;
    ProgramStructure structure;
    std::string name;                     // of the program, by that of its file; calculator codes
    std::optional<std::int64_t> version;  // as the editor counts them
};
using LanguageDocuments = std::map<std::string, LanguageDocument>;  // by their addresses

LanguageDocument readDocument(const std::string &address, std::string_view utf8);

// A folder's texts are the programs that call each other.
bool areInOneFolder(const std::string &address, const std::string &other);
// Where a program (calculator codes) lies: an open text in the folder of that address, else a file on the disk; empty
// where there is neither.
std::string addressOfProgram(const LanguageDocuments &documents, const std::string &beside, const std::string &program);
// A text of that name (UTF-8, as safeFileName leaves it) in the folder of another, with the other's ending.
std::string addressBeside(const std::string &address, const std::string &name);
bool isFileOnDisk(const std::string &address);
std::string fileNameOf(const std::string &address);  // UTF-8, with its ending

struct DocumentPlace {
    std::size_t line = 0, unit = 0;
};
DocumentPlace documentPlace(const LanguageDocument &document, std::size_t byte);
DocumentPlace documentPlace(const LanguageDocument &document, const TextPlace &place);
TextPlace textPlaceOf(const LanguageDocument &document, const DocumentPlace &place);

}  // namespace numalink
