// Bytes as tests write them in their files: hexadecimal pairs, texts in double quotes, and both with *COUNT behind.
#pragma once

#include <sstream>
#include <string>

#include "calculator/program_info.h"
#include "platform/bytes.h"

namespace numalink {

inline std::string hexOf(ByteView bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr char digits[] = "0123456789ABCDEF";
        text += {digits[byte / 16], digits[byte % 16], ' '};
    }
    return text;
}

// Throws std::exception at what is no bytes.
inline Bytes parseBytes(const std::string &text) {
    Bytes bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            at++;
            continue;
        }
        std::string part(1, ' ');
        std::size_t used = 0;
        if (text[at] == '"') {
            part = text.substr(at + 1, text.find('"', at + 1) - at - 1);
            at += part.size() + 2;
        } else {
            part[0] = static_cast<char>(std::stoi(text.substr(at, 2), &used, 16));
            at += 2;
        }
        std::size_t count = 1;
        if (at < text.size() && text[at] == '*') {
            count = std::stoul(text.substr(at + 1), &used);
            at += 1 + used;
        }
        while (count-- > 0) bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

// Of a line "< BYTES", or "|a line|another", each with CR LF behind it.
inline Bytes parseFileLine(const std::string &line) {
    if (line[0] == '<') return parseBytes(line.substr(1));
    Bytes bytes;
    for (const char letter : line.substr(1) + "|") {
        if (letter == '|') bytes.push_back('\r');
        bytes.push_back(static_cast<std::uint8_t>(letter == '|' ? '\n' : letter));
    }
    return bytes;
}

// A ProgramInfo as "LENGTH NAME PASSWORD".
inline Bytes parseInfo(const std::string &text) {
    ProgramInfo info;
    std::istringstream(text) >> info.imageLength >> info.name >> info.password;
    return encodeProgramInfo(info);
}

}  // namespace numalink
