#include "shapes/brush_number.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace vireon {
namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string_view SkipBlanks(std::string_view text) {
    const std::size_t start = text.find_first_not_of(kBlanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

// The converters know no plus sign; a sign that follows another one is no number.
std::string_view SkipPlus(std::string_view text) {
    const bool signedNumber = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return signedNumber ? text.substr(1) : text;
}

/// Which end of a double's range a number is beyond, which its converter does not tell.
bool IsSmall(std::string_view number) {
    const std::size_t exponent = number.find_first_of("eE");
    if (exponent != std::string_view::npos) return number.substr(exponent + 1, 1) == "-";
    const std::size_t digit = number.find_first_not_of("-0");
    return digit == std::string_view::npos || number[digit] == '.';
}

}  // namespace

std::int32_t ParseBrushSize(std::string_view line) {
    const std::string_view text = SkipPlus(SkipBlanks(line));
    std::int32_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

BrushSample ParseBrushSample(std::string_view line) {
    const std::string_view text = SkipPlus(SkipBlanks(line));
    double value = 0.0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (parsed.ec == std::errc::invalid_argument) return {0.0f, SampleReading::kNoNumber};
    const auto length = static_cast<std::size_t>(parsed.ptr - text.data());
    const bool more = !SkipBlanks(text.substr(length)).empty();
    const SampleReading number = more ? SampleReading::kMore : SampleReading::kNumber;
    if (parsed.ec != std::errc()) {
        return {0.0f, IsSmall(text.substr(0, length)) ? number : SampleReading::kTooLarge};
    }
    if (!std::isfinite(value)) return {0.0f, SampleReading::kNotFinite};
    const auto sample = static_cast<float>(value);
    if (!std::isfinite(sample)) return {0.0f, SampleReading::kTooLarge};
    return {sample, number};
}

}  // namespace vireon
