// The frames that announce and carry an item, on the wire, in cas files and as first payload in the library:
// how they are built, told apart, measured and summed. Pure; any thread. Offsets in bytes, numbers big-endian.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "calculator/item_kinds.h"
#include "calculator/program_info.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr std::size_t headFrameSize = 50;       // CFX items
inline constexpr std::size_t shortHeadFrameSize = 40;  // screen copies and all frames of the ALGEBRA family
// The fields of a head frame.
inline constexpr std::size_t frameRowsOffset = 7;     // rows, or height in dots
inline constexpr std::size_t frameColumnsOffset = 9;  // columns, width in dots, or the length of the data
inline constexpr std::size_t frameDimensionsEnd = 11;
inline constexpr std::size_t frameNameOffset = 11;
inline constexpr std::size_t frameNameSize = 8;
inline constexpr std::size_t frameLetterOffset = 15;  // in a matrix's name
inline constexpr std::size_t frameDigitOffset = 18;   // in a picture's name: its slot
inline constexpr std::size_t frameGroupOffset = 19;
inline constexpr std::size_t frameTypeOffset = 27;            // of values: "R", of a backup: the calculator's
inline constexpr std::size_t frameVariableLengthOffset = 28;  // of values
inline constexpr std::size_t framePasswordOffset = 27;        // of texts
inline constexpr std::size_t frameOptionOffset = 35;          // of texts
inline constexpr std::size_t frameStartOffset = 27;           // of pictures: where the dots start, two letters
inline constexpr std::size_t frameDirectionOffset = 29;       // and three letters for how they run
inline constexpr std::size_t frameByteDirectionOffset = 30;
inline constexpr std::size_t frameBitWeightOffset = 31;
inline constexpr std::size_t frameColorsOffset = 32;  // of pictures: planes of a sheet
inline constexpr std::size_t frameSheetsOffset = 34;
inline constexpr std::size_t pictureHeadSize = 36;  // bytes up to and with the number of sheets

// The heads of the ALGEBRA family.
inline constexpr std::size_t algebraLengthOffset = 8;
inline constexpr std::size_t algebraTypeOffset = 10;  // 1 for a program

// The data of pictures: planes, each ':', sheet, color, dots and checksum.
inline constexpr std::size_t planeColorOffset = 4;  // the low byte of the color's number
inline constexpr std::size_t planeDotsOffset = 5;
inline constexpr std::size_t planeExtra = 6;  // bytes around the dots
// The data of screen copies of 128 by 64 dots.
inline constexpr std::size_t screenPlaneSize = 1024;
inline constexpr std::size_t screenPlaneStep = 1027;  // from plane to plane of a color screen

enum class Family { cfx = 1, algebra = 2 };

// The checksum of a frame whose last byte is its place: 0x3A minus the sum of all other bytes.
std::uint8_t frameChecksumOf(ByteView frame);
// Writes the last byte of the frame; an empty frame stays as it is.
void frameChecksum(std::span<std::uint8_t> frame);
// Whether all bytes, the checksum included, add up to 0x3A.
bool frameIsGood(ByteView frame);

// Frame, or nothing for a pair of kind and family that has none. Texts (of the ALGEBRA family programs alone) take
// info; the others are the closing frame and the ALGEBRA model frame.
std::optional<Bytes> buildHeadFrame(ItemKind itemKind, Family family, const ProgramInfo &info);

// bytes start at offset 1 of a frame; fewer bytes than a mark needs don't match it. kind::unknown when nothing fits.
ItemKind classifyFrame(ByteView bytes);

std::size_t headFrameLength(ItemKind itemKind);  // 40 for 7 and 8, else 50

// Length of the data that a head announces, in full 64 bits (callers of the wire keep 16). Screen copies are
// measured by their two dimensions. A head too short for its kind gives 0.
std::uint64_t frameDataLength(ByteView frame);

// At most 8 characters up to a zero byte, cut at the first 0xFF.
std::string copyFrameName(ByteView source);

// The ProgramInfo of the head of a text; nothing for others or a short head. Bytes 35 and 36 are kept when
// they aren't the usual ones of the kind ("NL" for 15, two 0xFF for 18).
std::optional<ProgramInfo> infoFromHeadFrame(ByteView frame);

// Length of one plane of a picture, ':' and checksum included, and how many planes the head announces.
std::uint64_t picturePlaneLength(ByteView head);
std::uint64_t picturePlaneCount(ByteView head);

}  // namespace numalink
