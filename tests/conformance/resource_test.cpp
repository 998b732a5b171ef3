#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using Bytes = std::vector<std::uint8_t>;

void AppendWord(Bytes& bytes, std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(word >> shift & 0xFF));
    }
}

/// Four characters as a number with the first one on top, so that they lie backwards.
void AppendCode(Bytes& bytes, const std::string& code) {
    bytes.insert(bytes.end(), code.rbegin(), code.rend());
}

void AppendProperty(Bytes& bytes, const std::string& key, const Bytes& value) {
    AppendCode(bytes, "8BIM");
    AppendCode(bytes, key);
    AppendWord(bytes, 0);
    AppendWord(bytes, static_cast<std::uint32_t>(value.size()));
    bytes.insert(bytes.end(), value.begin(), value.end());
    bytes.resize(bytes.size() + (4 - value.size() % 4) % 4, 0);
}

Bytes Number(std::uint32_t word) {
    Bytes bytes;
    AppendWord(bytes, word);
    return bytes;
}

Bytes Code(const std::string& code) {
    Bytes bytes;
    AppendCode(bytes, code);
    return bytes;
}

/// Text with zeros up to a number of bytes.
Bytes Text(const std::string& text, std::size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size, 0);
    return bytes;
}

/// A length byte, then the text.
Bytes Pascal(const std::string& text, std::size_t size) {
    return Text(std::string(1, static_cast<char>(text.size())) + text, size);
}

TEST(Resource, HoldsTheTwelvePropertiesByteForByte) {
    Bytes expected{1, 0};
    AppendWord(expected, 0);
    AppendWord(expected, 12);
    AppendProperty(expected, "kind", Code("eFKT"));
    AppendProperty(expected, "name", Pascal("Vireon Glow", 12));
    AppendProperty(expected, "catg", Pascal("Orvante Zephal", 16));
    AppendProperty(expected, "8664", Text("EntryPointFunc", 16));
    AppendProperty(expected, "ePVR", Number(2));
    AppendProperty(expected, "eSVR", Number(13));
    AppendProperty(expected, "eVER", Number(0x00089600));
    AppendProperty(expected, "eINF", {0, 0});
    AppendProperty(expected, "eGLO", Number(0x06008021));
    AppendProperty(expected, "eGL2", Number(0x00001408));
    AppendProperty(expected, "eMNA", Pascal("tz Glow", 8));
    AppendProperty(expected, "aeFL", Number(0));
    ASSERT_EQ(expected.size(), 286u);

    const std::optional<Bytes> resource = Effect().pipl();
    ASSERT_TRUE(resource.has_value());
    EXPECT_EQ(*resource, expected);
}

TEST(Resource, AgreesWithWhatGlobalSetupReports) {
    const std::optional<Bytes> resource = Effect().pipl();
    ASSERT_TRUE(resource.has_value());
    ASSERT_EQ(resource->size(), 286u);
    const auto word = [&](std::size_t offset) {
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) {
            value = value << 8 | (*resource)[offset + i];
        }
        return value;
    };
    headless::Host host(Effect());
    const headless::CommandResult result = host.globalSetup();
    EXPECT_EQ(word(178), result.out.my_version);
    EXPECT_EQ(word(218), static_cast<std::uint32_t>(result.out.out_flags));
    EXPECT_EQ(word(238), static_cast<std::uint32_t>(result.out.out_flags2));
}

}  // namespace
}  // namespace vireon::conformance
