// From a double to ten digits in the calculator's characters.
#include "emulator/screens/screen_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace numalink {

namespace {

constexpr int significantDigits = 10;
constexpr char minusCode = '\x87', plusCode = '\x89', exponentCode = '\xDF';
constexpr char degreeCode = '\x9C', fractionCode = '\xBB';

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

constexpr double fixedLimit = 1e10;  // from there on Fix shows the exponential form

int significantDigitsOf(const NumberFormat &format) {
    const bool isScientific = format.form == NumberForm::scientific && format.digits > 0;
    return isScientific ? format.digits : significantDigits;
}

// "-1.5e-5" in the calculator's characters.
std::string inCalculatorCodes(std::string text) {
    for (char &c : text) c = c == '-' ? minusCode : c == '+' ? plusCode : c == 'e' ? exponentCode : c;
    return text;
}

// As the calculators count: 15 digits of base ten, of which the first stands for 10 to the exponent.
struct Decimal {
    std::string digits;
    int exponent = 0;
};

Decimal decimalOf(double value) {
    constexpr int decimalDigits = 15;
    char text[32];  // "d.dddddddddddddde+ddd"
    const auto end =
        std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific, decimalDigits - 1);
    const std::string all(text, end.ptr);
    const std::size_t mark = all.find('e');
    return {all.substr(0, 1) + all.substr(2, mark - 2),
            static_cast<int>(std::strtol(all.c_str() + mark + 1, nullptr, 10))};
}

// The first digits, so many, a 5 behind them rounding up. A carry ahead of the first makes it one digit more.
std::string roundedDigits(const std::string &digits, int keep) {
    if (keep < 0) return "0";
    const auto kept = static_cast<std::size_t>(keep);
    if (kept >= digits.size()) return digits + std::string(kept - digits.size(), '0');
    std::string result = "0" + digits.substr(0, kept);
    if (digits[kept] >= '5') {
        std::size_t place = kept;
        for (; result[place] == '9'; place--) result[place] = '0';
        result[place]++;
    }
    return result[0] == '0' && kept > 0 ? result.substr(1) : result;
}

std::string fixedDecimals(const Decimal &decimal, int places) {
    const auto behind = static_cast<std::size_t>(places);
    std::string text = roundedDigits(decimal.digits, decimal.exponent + 1 + places);
    if (text.size() <= behind) text.insert(0, behind + 1 - text.size(), '0');
    if (behind > 0) text.insert(text.size() - behind, ".");
    return text;
}

std::string scientificDigits(Decimal decimal, int count) {
    std::string text = roundedDigits(decimal.digits, count);
    if (static_cast<int>(text.size()) > count) {
        text.pop_back();
        decimal.exponent++;
    }
    text.insert(1, ".");
    return text + (decimal.exponent < 0 ? "e-" : "e+") + std::to_string(std::abs(decimal.exponent));
}

std::string formatted(double value, const NumberFormat &format) {
    const bool isFixed = format.form == NumberForm::fixed && std::fabs(value) < fixedLimit;
    const Decimal decimal = decimalOf(value);
    const std::string text =
        isFixed ? fixedDecimals(decimal, format.digits) : scientificDigits(decimal, significantDigitsOf(format));
    const bool isZero = text.find_first_of("123456789") >= std::min(text.find('e'), text.size());
    return value < 0 && !isZero ? "-" + text : text;
}

std::string normalText(double value, int lowestFixedExponent) {
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

std::string engineeringText(double value, NumberFormat format) {
    constexpr int lowest = -5, highest = 6;  // femto and exa as powers of 1000
    constexpr char lettersBelow[] = "\xE4\xE5\xE6\xE7\xE8", lettersAbove[] = "\xE9\xEA\xEB\xEC\xED\xEE";
    format.engineering = false;
    const int power = static_cast<int>(std::floor(decimalOf(roundedAsShown(value, {})).exponent / 3.0));
    if (power == 0 || power < lowest || power > highest) return numberText(value, format);
    const double thousands = std::pow(1000.0, std::abs(power));
    return power < 0 ? numberText(value * thousands, format) + lettersBelow[power - lowest]
                     : numberText(value / thousands, format) + lettersAbove[power - 1];
}

}  // namespace

std::string numberText(double value) { return normalText(value, NumberFormat{}.lowestFixedExponent); }

std::string numberText(double value, const NumberFormat &format) {
    if (format.engineering && value != 0 && std::isfinite(value)) return engineeringText(value, format);
    const bool isTooLarge = format.form == NumberForm::fixed && std::fabs(value) >= fixedLimit;
    if (format.form == NumberForm::normal || isTooLarge || !std::isfinite(value))
        return normalText(value, format.lowestFixedExponent);
    return inCalculatorCodes(formatted(value, format));
}

std::string sexagesimalText(double value) {
    constexpr double limit = 1e7;
    if (!(std::fabs(value) < limit)) return numberText(value);
    const auto hundredths = static_cast<std::int64_t>(std::llround(std::fabs(value) * 360000));
    const auto whole = [](std::int64_t number) { return std::to_string(number); };
    const std::string sign = value < 0 && hundredths > 0 ? std::string(1, minusCode) : std::string();
    const std::string seconds =
        numberText(static_cast<double>(hundredths % 6000) / 100, NumberFormat{.lowestFixedExponent = -2});
    return sign + whole(hundredths / 360000) + degreeCode + whole(hundredths / 6000 % 60) + degreeCode + seconds +
           degreeCode;
}

// By the continued fraction of the value: the first convergent that gives all of its 15 digits.
std::string fractionText(double value) {
    constexpr double limit = 1e10, closeEnough = 1e-14;
    constexpr std::size_t longest = 10;
    const double size = std::fabs(value), whole = std::trunc(size), part = size - whole;
    if (!(size < limit)) return {};
    double rest = part;
    double numerator = 0, denominator = 1, numeratorBefore = 1, denominatorBefore = 0;
    while (std::fabs(part - numerator / denominator) > closeEnough * std::fmax(1, size)) {
        rest = 1 / rest;
        const double next = std::trunc(rest);
        rest -= next;
        numeratorBefore = std::exchange(numerator, next * numerator + numeratorBefore);
        denominatorBefore = std::exchange(denominator, next * denominator + denominatorBefore);
        if (!(denominator < limit)) return {};
    }
    if (numerator == 0 || denominator == 1) return {};
    const auto digits = [](double number) { return std::to_string(static_cast<std::int64_t>(number)); };
    const std::string text = (whole == 0 ? std::string() : digits(whole) + fractionCode) + digits(numerator) +
                             fractionCode + digits(denominator);
    if (text.size() > longest) return {};
    return value < 0 ? minusCode + text : text;
}

std::string baseText(double value, int base) {
    constexpr double limit = 2147483648.0;
    if (!(std::fabs(value) <= limit)) return numberText(value);
    const auto bits = static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
    const bool isShort = base == 2 && value >= -32768 && value < 32768;
    const int places = base == 16 ? 8 : base == 8 ? 11 : isShort ? 16 : 32;
    constexpr char letterCode = '\xEF';  // the digit A
    std::string text(static_cast<std::size_t>(places), '0');
    std::uint32_t rest = isShort ? bits & 0xFFFF : bits;
    for (int place = places - 1; place >= 0; place--, rest /= static_cast<std::uint32_t>(base)) {
        const auto digit = static_cast<int>(rest % static_cast<std::uint32_t>(base));
        text[static_cast<std::size_t>(place)] = static_cast<char>(digit < 10 ? '0' + digit : letterCode + digit - 10);
    }
    return text;
}

double roundedAsShown(double value, const NumberFormat &format) {
    if (!std::isfinite(value)) return value;
    const bool isNormal = format.form == NumberForm::normal;
    const std::string text = formatted(value, isNormal ? NumberFormat{NumberForm::scientific, 0} : format);
    double rounded = value;
    std::from_chars(text.data(), text.data() + text.size(), rounded);
    return rounded;
}

}  // namespace numalink
