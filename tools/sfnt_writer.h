// A TrueType file as a set of tables with big-endian numbers: the container only, what stands in the tables is the
// caller's. Used by make_screen_face.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace tool {

struct BigEndian {
    std::string bytes;

    BigEndian &u8(std::uint32_t value) {
        bytes += static_cast<char>(value & 0xFF);
        return *this;
    }
    BigEndian &u16(long value) {
        return u8(static_cast<std::uint32_t>(value) >> 8).u8(static_cast<std::uint32_t>(value));
    }
    BigEndian &u32(std::uint32_t value) {
        return u16(static_cast<long>(value >> 16)).u16(static_cast<long>(value & 0xFFFF));
    }
    BigEndian &text(const std::string &more) {
        bytes += more;
        return *this;
    }
    BigEndian &pad(std::size_t unit) {
        while (bytes.size() % unit != 0) bytes += '\0';
        return *this;
    }
};

// The largest power of two not above count, as the search fields of the format want it.
struct SearchFields {
    long range, selector, shift;

    SearchFields(long count, long entrySize) : range(entrySize), selector(0) {
        for (; range * 2 <= count * entrySize; range *= 2) selector++;
        shift = count * entrySize - range;
    }
};

inline std::uint32_t tableSum(const std::string &bytes) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); i++)
        sum += static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (8 * (3 - i % 4));
    return sum;
}

// The whole file; "head" must be among the tables, with 0 at offset 8, where the file's own sum goes.
inline std::string sfntFile(const std::map<std::string, std::string> &tables) {
    const long count = static_cast<long>(tables.size());
    const SearchFields search(count, 16);
    BigEndian directory;
    directory.u32(0x00010000).u16(count).u16(search.range).u16(search.selector).u16(search.shift);
    BigEndian body;
    std::size_t headAt = 0;
    const std::size_t bodyAt = 12 + 16 * tables.size();
    for (const auto &[tag, bytes] : tables) {
        const std::size_t at = bodyAt + body.bytes.size();
        if (tag == "head") headAt = at;
        directory.text(tag).u32(tableSum(bytes)).u32(static_cast<std::uint32_t>(at));
        directory.u32(static_cast<std::uint32_t>(bytes.size()));
        body.text(bytes).pad(4);
    }
    std::string file = directory.bytes + body.bytes;
    BigEndian adjustment;
    adjustment.u32(0xB1B0AFBAU - tableSum(file));
    return file.replace(headAt + 8, 4, adjustment.bytes);
}

}  // namespace tool
