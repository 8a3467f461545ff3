// What the small build tools share: reading a text file line by line, and telling a fault with file and line.
#pragma once

#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct Line {
    int number;
    std::string text;
};

[[noreturn]] inline void fault(const std::string &file, int line, const std::string &what) {
    std::cerr << file << ":" << line << ": " << what << "\n";
    std::exit(1);  // NOLINT(concurrency-mt-unsafe): a tool has one thread
}

inline std::vector<Line> readLines(const std::string &file) {
    std::ifstream input(file);
    if (!input) fault(file, 0, "can't be read");
    std::vector<Line> lines;
    std::string text;
    for (int number = 1; std::getline(input, text); number++) lines.push_back({number, text});
    return lines;
}

inline std::vector<std::string> splitAt(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end = 0; end != std::string_view::npos; start = end + 1) {
        end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
    }
    return parts;
}

// A hexadecimal number of exactly digits digits, or -1.
inline long hexNumber(std::string_view text, std::size_t digits) {
    if (text.size() != digits || text.find_first_not_of("0123456789ABCDEFabcdef") != std::string_view::npos) return -1;
    return std::stol(std::string(text), nullptr, 16);
}

inline void writeFile(const std::string &file, std::string_view bytes) {
    std::ofstream output(file, std::ios::binary);
    output.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    output.close();
    if (!output) fault(file, 0, "can't be written");
}

}  // namespace tool
