// From a double to ten digits in the calculator's characters.
#include "emulator/screens/screen_number.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace numalink {

namespace {

constexpr int significantDigits = 10;
constexpr int lowestFixedExponent = -1;
constexpr char minusCode = '\x87', plusCode = '\x89', exponentCode = '\xDF';

// digits are those of a number from 1 to 10; the point goes behind the first, or pointPlace digits further on.
std::string fixedText(const std::string &digits, int exponent) {
    std::string text = exponent < 0 ? "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits
                                    : digits.substr(0, static_cast<std::size_t>(exponent) + 1) + "." +
                                          digits.substr(static_cast<std::size_t>(exponent) + 1);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

// The point stays even with no digit behind it.
std::string exponentialText(const std::string &digits, int exponent) {
    std::string text = digits.substr(0, 1) + "." + digits.substr(1);
    text.erase(text.find_last_not_of('0') + 1);
    text += exponentCode;
    text += exponent < 0 ? minusCode : plusCode;
    return text + std::to_string(std::abs(exponent));
}

}  // namespace

std::string numberText(double value) {
    const std::string sign = std::signbit(value) && !std::isnan(value) ? std::string(1, minusCode) : std::string();
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return sign + "Inf";
    char scientific[32];  // "d.ddddddddde+dd"
    const auto end = std::to_chars(scientific, scientific + sizeof scientific, std::fabs(value),
                                   std::chars_format::scientific, significantDigits - 1);
    const std::string text(scientific, end.ptr);
    const std::size_t mark = text.find('e');
    const std::string digits = text.substr(0, 1) + text.substr(2, mark - 2);
    const int exponent = static_cast<int>(std::strtol(text.c_str() + mark + 1, nullptr, 10));
    const bool fixed = exponent >= lowestFixedExponent && exponent < significantDigits;
    return sign + (fixed ? fixedText(digits, exponent) : exponentialText(digits, exponent));
}

}  // namespace numalink
