#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "shell/effect_identity.h"
#include "tests/structure/pe_file.h"

namespace {

using vireon::structure::ElfExports;
using vireon::structure::PeFile;

std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// The Windows build is a build of its own. Its tests are skipped where it was never made, unless
/// whoever runs them says that it must be there.
class WindowsLibrary : public testing::Test {
  protected:
    void SetUp() override {
        path_ = FromEnvironment("VIREON_WINDOWS_PLUGIN");
        if (std::filesystem::exists(path_)) return;
        if (!FromEnvironment("VIREON_REQUIRE_WINDOWS").empty()) {
            FAIL() << path_ << " is missing: build the preset \"windows\" first";
        }
        GTEST_SKIP() << path_ << " is missing: build the preset \"windows\" first";
    }
    std::string path_;
};

TEST(NativeLibrary, ExportsTheEntryPointAndNothingElse) {
    EXPECT_EQ(ElfExports(FromEnvironment("VIREON_PLUGIN")),
              std::vector<std::string>{"EntryPointFunc"});
}

TEST_F(WindowsLibrary, ExportsTheEntryPointAndNothingElse) {
    EXPECT_EQ(PeFile(path_).exports(), std::vector<std::string>{"EntryPointFunc"});
}

TEST_F(WindowsLibrary, ImportsOnlyTheSystemAndItsCRuntime) {
    const std::set<std::string> allowed = {"KERNEL32.DLL", "MSVCRT.DLL"};
    const std::vector<std::string> imports = PeFile(path_).imports();
    EXPECT_FALSE(imports.empty());
    for (const std::string& library : imports) {
        EXPECT_EQ(allowed.count(library), 1u) << library;
    }
}

void Append(std::vector<std::uint8_t>& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void AppendCode(std::vector<std::uint8_t>& bytes, std::string_view code) {
    bytes.insert(bytes.end(), code.rbegin(), code.rend());
}

void AppendProperty(std::vector<std::uint8_t>& bytes, std::string_view key,
                    std::vector<std::uint8_t> value) {
    AppendCode(bytes, "8BIM");
    AppendCode(bytes, key);
    Append(bytes, 0, 4);
    Append(bytes, static_cast<std::uint32_t>(value.size()), 4);
    value.resize((value.size() + 3) / 4 * 4, 0);
    bytes.insert(bytes.end(), value.begin(), value.end());
}

std::vector<std::uint8_t> Word(std::uint32_t value, int bytes = 4) {
    std::vector<std::uint8_t> word;
    Append(word, value, bytes);
    return word;
}

std::vector<std::uint8_t> VersionPair(std::uint32_t major, std::uint32_t minor) {
    return Word(major | minor << 16);
}

/// Length byte, text, zeros up to a multiple of 4 that count as part of the value.
std::vector<std::uint8_t> PascalText(std::string_view text) {
    std::vector<std::uint8_t> value((text.size() + 1 + 3) / 4 * 4, 0);
    value[0] = static_cast<std::uint8_t>(text.size());
    std::copy(text.begin(), text.end(), value.begin() + 1);
    return value;
}

std::vector<std::uint8_t> CText(std::string_view text) {
    std::vector<std::uint8_t> value((text.size() + 1 + 3) / 4 * 4, 0);
    std::copy(text.begin(), text.end(), value.begin());
    return value;
}

TEST_F(WindowsLibrary, DeclaresItselfToTheHostByteForByte) {
    std::vector<std::uint8_t> expected;
    Append(expected, 1, 2);
    Append(expected, 0, 4);
    Append(expected, 12, 4);
    std::vector<std::uint8_t> kind;
    AppendCode(kind, "eFKT");
    AppendProperty(expected, "kind", kind);
    AppendProperty(expected, "name", PascalText("Vireon Glow"));
    AppendProperty(expected, "catg", PascalText("Orvante Zephal"));
    AppendProperty(expected, "8664", CText("EntryPointFunc"));
    AppendProperty(expected, "ePVR", VersionPair(2, 0));
    AppendProperty(expected, "eSVR", VersionPair(13, 0));
    AppendProperty(expected, "eVER", Word(vireon::kPackedVersion));
    AppendProperty(expected, "eINF", Word(0, 2));
    AppendProperty(expected, "eGLO", Word(static_cast<std::uint32_t>(vireon::kOutFlags)));
    AppendProperty(expected, "eGL2", Word(static_cast<std::uint32_t>(vireon::kOutFlags2)));
    AppendProperty(expected, "eMNA", PascalText("tz Glow"));
    AppendProperty(expected, "aeFL", Word(0));
    ASSERT_EQ(expected.size(), 286u);
    EXPECT_EQ(PeFile(path_).resource("PIPL", 16000), expected);
}

TEST_F(WindowsLibrary, CarriesItsVersionForTheSystem) {
    constexpr std::uint32_t kVersionResource = 16;
    const std::vector<std::uint8_t> version = PeFile(path_).resource(kVersionResource, 1);
    // The fixed part begins with its signature; file version words are minor first in each pair.
    constexpr std::size_t kFixedPart = 40;
    ASSERT_GE(version.size(), kFixedPart + 16);
    const std::vector<std::uint8_t> fixed(version.begin() + kFixedPart,
                                          version.begin() + kFixedPart + 16);
    std::vector<std::uint8_t> expected;
    Append(expected, 0xFEEF04BDu, 4);
    Append(expected, 0x00010000u, 4);
    Append(expected, vireon::kVersionMajor << 16 | vireon::kVersionMinor, 4);
    Append(expected, vireon::kVersionBugfix << 16, 4);
    EXPECT_EQ(fixed, expected);
}

}  // namespace
