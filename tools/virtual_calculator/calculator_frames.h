// A calculator's own view of frames: how they are summed, how long heads and data are. Written apart from the
// program's code, so that a mistake of one side shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace calculator {

using Bytes = std::vector<std::uint8_t>;

struct Item {
    Bytes head;
    Bytes data;  // with all checksums
};

std::uint8_t sumOf(const Bytes &bytes, std::size_t from, std::size_t to);
void setSum(Bytes &frame);  // the last byte makes all bytes add up to 0x3A
bool isGood(const Bytes &frame);
bool isGood(const Item &item);  // its head and every frame of its data
bool startsWith(const Bytes &bytes, const std::string &mark);

std::size_t headLength(const Bytes &firstBytes);  // 40 or 50, told from at least 5 bytes
std::size_t dataLength(const Bytes &head);
std::size_t frameLength(const Bytes &head);  // of the frames inside the data, 0 for a single one
bool isLastByNature(const Bytes &head);      // backups and screen copies end a transmission

Bytes closingFrame(bool algebra);
Bytes modelFrame();

// Heads and data end to end, as in a cas file. What isn't whole at the end is left out.
std::vector<Item> itemsOf(const Bytes &file);

// Items made up, for tests and for people without any at hand.
Item program(const std::string &name, const Bytes &tokens);
Item valueItem(const std::string &type, const std::string &name, const std::string &group, int rows, int columns,
               std::uint8_t seed);
Item picture(int height, int width, int colors, int sheets, std::uint8_t seed);
Item memory(const std::string &type, const std::string &name, std::size_t length, std::uint8_t seed);
Item screenCopy(bool color, int height, int width, std::uint8_t seed);
Item algebraProgram(const std::string &name, const Bytes &tokens);
Item algebraBlock(const std::string &name, std::uint8_t type, std::size_t length, std::uint8_t seed);

}  // namespace calculator
