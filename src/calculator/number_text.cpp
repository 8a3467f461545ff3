// The digits of a value: nibbles of a frame, decimal text, and the double between them.
#include "calculator/number_text.h"

#include <charconv>
#include <cmath>

namespace numalink {

namespace {

constexpr int significantDigits = 15;  // of a frame; any decimal of so many comes through a double unharmed
constexpr int exponentLimit = 99;
constexpr std::size_t firstDigitByte = 5;
constexpr std::size_t flagsByte = 13;
constexpr std::size_t exponentByte = 14;
constexpr int negativeNibble = 5;

// The decimal that a value stands for, rounded at the digits of a frame.
struct Decimal {
    std::string digits;  // all of them, without sign and point; the first is 0 only in zero
    int exponent;        // of the first digit
};

Decimal decimalOf(double magnitude) {
    char text[32];
    const char *end =
        std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, significantDigits - 1).ptr;
    const std::string_view written(text, static_cast<std::size_t>(end - text));
    const std::size_t mark = written.find('e');
    Decimal decimal{std::string(written.substr(0, mark)), 0};
    std::erase(decimal.digits, '.');
    const bool isBelowOne = written[mark + 1] == '-';
    std::from_chars(text + mark + 2, end, decimal.exponent);
    if (isBelowOne) decimal.exponent = -decimal.exponent;
    return decimal;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The whole of text as a number, a leading "+" allowed.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
    text = withoutBlanks(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

bool encodeValue(std::span<std::uint8_t, valueFrameSize> frame, std::uint32_t row, std::uint32_t column, double value) {
    if (!std::isfinite(value)) return false;
    const Decimal decimal = decimalOf(std::fabs(value));
    const int exponent = decimal.exponent;
    if (std::abs(exponent) > exponentLimit) return false;
    const auto digit = [&](std::size_t place) { return decimal.digits[place] - '0'; };

    frame[0] = ':';
    writeBig16(frame, 1, row);
    writeBig16(frame, 3, column);
    frame[firstDigitByte] = static_cast<std::uint8_t>(digit(0));
    for (std::size_t i = 0; i < 7; i++)
        frame[firstDigitByte + 1 + i] = static_cast<std::uint8_t>(digit(2 * i + 1) << 4 | digit(2 * i + 2));
    frame[flagsByte] = static_cast<std::uint8_t>((value < 0 ? negativeNibble << 4 : 0) | (exponent >= 0 ? 1 : 0));
    const int stored = exponent < 0 ? exponent + 100 : exponent;
    frame[exponentByte] = static_cast<std::uint8_t>(stored / 10 << 4 | stored % 10);
    return true;
}

double decodeValue(std::span<const std::uint8_t, valueFrameSize> frame) {
    std::int64_t mantissa = frame[firstDigitByte] & 0xF;
    for (std::size_t i = firstDigitByte + 1; i < flagsByte; i++)
        mantissa = (mantissa * 10 + (frame[i] >> 4)) * 10 + (frame[i] & 0xF);
    int exponent = (frame[exponentByte] >> 4) * 10 + (frame[exponentByte] & 0xF);
    if ((frame[flagsByte] & 0xF) == 0) exponent -= 100;
    if (frame[flagsByte] >> 4 == negativeNibble) mantissa = -mantissa;
    // By way of its decimal text: a power of ten as a factor would miss the nearest double now and then.
    const std::string text = std::to_string(mantissa) + "e" + std::to_string(exponent - (significantDigits - 1));
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string formatValueText(double value) {
    if (!std::isfinite(value)) return {};
    auto [digits, exponent] = decimalOf(std::fabs(value));
    digits.erase(std::max<std::size_t>(1, digits.find_last_not_of('0') + 1));
    if (digits.size() > 1) digits.insert(1, ".");
    if (value < 0) digits.insert(0, "-");
    if (exponent != 0) digits += (exponent > 0 ? "\\EE+" : "\\EE-") + std::to_string(std::abs(exponent));
    return digits;
}

std::optional<double> parseValueText(std::string_view text) {
    const std::size_t backslash = text.find('\\');
    const auto mantissa = wholeNumber<double>(text.substr(0, backslash));
    if (!mantissa) return std::nullopt;
    double value = *mantissa;
    if (backslash != std::string_view::npos) {
        constexpr std::size_t markLength = 3;
        if (text.size() < backslash + markLength) return std::nullopt;
        const auto exponent = wholeNumber<int>(text.substr(backslash + markLength));
        if (!exponent) return std::nullopt;
        const auto whole = wholeNumber<double>(std::string(withoutBlanks(text.substr(0, backslash))) + "e" +
                                               std::to_string(*exponent));
        value = whole ? *whole : value * std::pow(10.0, *exponent);
    }
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace numalink
