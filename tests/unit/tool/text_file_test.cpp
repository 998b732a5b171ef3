#include "tools/vireon/text_file.h"

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/unit/tool/expect_error.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::tool {
namespace {

constexpr std::size_t kLimit = 1000;

class TextFile : public testing::Test {
  protected:
    std::filesystem::path write(const std::string& bytes) const {
        std::ofstream(path_, std::ios::binary) << bytes;
        return path_;
    }
    /// The error for the file as it stands; it has to name the file.
    std::string refusal(const std::filesystem::path& path) const {
        const std::string text = ExpectError(kInputUnreadable, [&] { ReadTextFile(path, kLimit); });
        EXPECT_NE(text.find(path.string()), std::string::npos) << text;
        return text;
    }
    void expectRefusal(const std::filesystem::path& path, const std::string& words) const {
        const std::string text = refusal(path);
        EXPECT_NE(text.find(words), std::string::npos) << "no \"" << words << "\" in: " << text;
    }

    ScratchFolder folder_;
    std::filesystem::path path_ = folder_ / "a.json";
};

TEST_F(TextFile, IsReadAsItIs) {
    const std::string bytes("a\r\nb\xC3\xA4\0c", 8);
    EXPECT_EQ(ReadTextFile(write(bytes), kLimit), bytes);
    EXPECT_EQ(ReadTextFile(write(""), kLimit), "");
    EXPECT_EQ(ReadTextFile(write("1"), kLimit), "1");
}

TEST_F(TextFile, LosesTheByteOrderMarkOfUtf8) {
    EXPECT_EQ(ReadTextFile(write("\xEF\xBB\xBF{}"), kLimit), "{}");
}

TEST_F(TextFile, MayHaveAsManyBytesAsAllowed) {
    EXPECT_EQ(ReadTextFile(write(std::string(kLimit, 'x')), kLimit).size(), kLimit);
    write(std::string(kLimit + 1, 'x'));
    expectRefusal(path_, "more than 1000 bytes");
}

TEST_F(TextFile, OtherEncodingsAreNamed) {
    for (const std::string& bytes :
         {std::string("\xFF\xFE{\0}\0", 6), std::string("\xFE\xFF\0{\0}", 6),
          std::string("{\0}\0", 4), std::string("\0{\0}", 4)}) {
        write(bytes);
        expectRefusal(path_, "UTF-16");
    }
}

TEST_F(TextFile, WhatIsNoFileIsRefused) {
    expectRefusal(path_, "No such file");
    expectRefusal(folder_.path(), "it is a folder");
    expectRefusal("/dev/zero", "no ordinary file");
    expectRefusal(path_ / "b.json", "");
}

TEST_F(TextFile, NobodyWaitsForAPipe) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    expectRefusal(path_, "no ordinary file");
}

TEST_F(TextFile, PermissionIsNeeded) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may read everything";
    }
    write("{}");
    ASSERT_EQ(chmod(path_.c_str(), 0), 0);
    expectRefusal(path_, "Permission denied");
}

TEST(QuotedText, StaysOneShortLine) {
    EXPECT_EQ(Quoted("Glow Radius"), "\"Glow Radius\"");
    EXPECT_EQ(Quoted("a\nb\x1B\x7F"), "\"a?b??\"");
    EXPECT_EQ(Quoted(std::string(60, 'k')), '"' + std::string(60, 'k') + '"');
    EXPECT_EQ(Quoted(std::string(61, 'k')), '"' + std::string(60, 'k') + "...\"");
    // A character of two bytes is shown as a whole or not at all.
    EXPECT_EQ(Quoted(std::string(59, 'k') + "\xC3\xA4\xC3\xA4"),
              '"' + std::string(59, 'k') + "...\"");
}

}  // namespace
}  // namespace vireon::tool
