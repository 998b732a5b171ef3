#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vireon::test {

/// A brush file that somebody's program, disk or malice might leave behind.
struct HostileBrush {
    std::string name;  ///< also good for a file name
    std::string text;  ///< the whole file
    bool isUsable;     ///< the effect takes it, with zeros where it says nothing
};

/// The header of a proper brush and `count` times `sample`.
inline std::string BrushOf(const std::string& sample, int count = 65536) {
    std::string text = "256\n256\nflat\n";
    for (int i = 0; i < count; ++i) text += sample + '\n';
    return text;
}

/// `text` with two bytes a character, the lower first.
inline std::string Utf16(const std::string& text) {
    std::string wide = "\xFF\xFE";
    for (const char letter : text) {
        wide += letter;
        wide += '\0';
    }
    return wide;
}

/// Bytes of every value in no order, line ends and zeros among them.
inline std::string BinaryNoise(std::size_t count) {
    std::string noise;
    std::uint32_t state = 2463534242u;
    for (std::size_t i = 0; i < count; ++i) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        noise += static_cast<char>(state >> 24);
    }
    return noise;
}

inline std::vector<HostileBrush> HostileBrushes() {
    const std::string header = "256\n256\nx\n";
    const std::string whole = BrushOf("0.5");
    std::string spoilt = whole;
    spoilt[spoilt.size() - 2] = '\0';
    return {
        {"empty", "", false},
        {"one line", "256", false},
        {"no title", "256\n256\n", false},
        {"header only", header, true},
        {"wrong width", "128\n256\nx\n0.5\n", false},
        {"huge size", "2147483647\n2147483647\nx\n0.5\n", false},
        {"size beyond integers", "99999999999999999999\n256\nx\n0.5\n", false},
        {"negative size", "-256\n-256\nx\n0.5\n", false},
        {"cut short", BrushOf("0.5", 1000), true},
        {"cut within a number", header + "0.5\n1e", true},
        {"not a number", BrushOf("nan"), true},
        {"infinity", BrushOf("inf"), true},
        {"minus infinity", BrushOf("-infinity"), true},
        {"beyond double", BrushOf("1e999"), true},
        {"beyond single", BrushOf("-1e39"), true},
        {"below double", BrushOf("1e-999"), true},
        {"words", BrushOf("glow"), true},
        {"commas", BrushOf("0,5"), true},
        {"negative", BrushOf("-0.5"), true},
        {"largest single", BrushOf("3.4028234e38"), true},
        {"all zero", BrushOf("0"), true},
        {"too long", whole + BinaryNoise(100000), true},
        {"noise", BinaryNoise(300000), false},
        {"noise behind a header", header + BinaryNoise(300000), true},
        {"zeros", std::string(300000, '\0'), false},
        {"a zero within a sample", spoilt, true},
        {"one endless line", header + std::string(300000, '1'), true},
        {"one endless header", std::string(300000, ' ') + whole, false},
        {"a number of a million digits", header + std::string(1000000, '9') + "\n", true},
        {"line ends only", std::string(300000, '\n'), false},
        {"carriage returns only", "256\r256\rx\r0.5\r", false},
        {"utf 16", Utf16(whole), false},
        {"utf 8 mark", "\xEF\xBB\xBF" + whole, false},
    };
}

}  // namespace vireon::test
