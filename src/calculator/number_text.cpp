// The digits of a value: nibbles of a frame, decimal text, and the double between them.
#include "calculator/number_text.h"

#include <charconv>
#include <cmath>

namespace numalink {

namespace {

constexpr int significantDigits = 16;  // of the text; a frame keeps the first 15
constexpr int exponentLimit = 99;
constexpr std::size_t firstDigitByte = 5;
constexpr std::size_t flagsByte = 13;
constexpr std::size_t exponentByte = 14;
constexpr int negativeNibble = 5;

struct Scaled {
    double mantissa;  // magnitude from 1 to below 10, or 0
    int exponent;
};

Scaled scaled(double value) {
    Scaled result{value, 0};
    while (std::fabs(result.mantissa) >= 10) {
        result.mantissa /= 10;
        result.exponent++;
    }
    while (std::fabs(result.mantissa) < 1 && result.mantissa != 0) {
        result.mantissa *= 10;
        result.exponent--;
    }
    return result;
}

std::string mantissaText(double mantissa) {
    char text[32];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, mantissa, std::chars_format::general, significantDigits);
    return error == std::errc{} ? std::string(text, end) : std::string();
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
    const auto [mantissa, exponent] = scaled(std::fabs(value));
    if (std::abs(exponent) > exponentLimit) return false;
    std::string digits = mantissaText(mantissa);
    std::erase(digits, '.');
    digits.resize(significantDigits, '0');
    const auto digit = [&](std::size_t place) { return digits[place] - '0'; };

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
    return std::pow(10.0, exponent - 14) * static_cast<double>(mantissa);
}

std::string formatValueText(double value) {
    if (!std::isfinite(value)) return {};
    const auto [mantissa, exponent] = scaled(value);
    std::string text = mantissaText(mantissa);
    if (exponent != 0) text += (exponent > 0 ? "\\EE+" : "\\EE-") + std::to_string(std::abs(exponent));
    return text;
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
        value *= std::pow(10.0, *exponent);
    }
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace numalink
