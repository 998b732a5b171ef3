#include "tools/vireon/output_file.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/unit/tool/expect_error.h"
#include "tests/unit/tool/scratch_folder.h"

namespace vireon::tool {
namespace {

std::vector<std::uint8_t> BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string ContentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(OutputFile, ReplacesAFileAsAWhole) {
    const ScratchFolder folder;
    const std::filesystem::path path = folder / "a.png";
    WriteFileWhole(path, BytesOf("first and longer"));
    EXPECT_EQ(ContentOf(path), "first and longer");
    chmod(path.c_str(), 0640);
    WriteFileWhole(path, BytesOf("second"));
    EXPECT_EQ(ContentOf(path), "second");
    struct stat status {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(folder.count(), 1);
}

TEST(OutputFile, FollowsLinks) {
    const ScratchFolder folder;
    std::filesystem::create_symlink("target.png", folder / "link.png");
    WriteFileWhole(folder / "link.png", BytesOf("x"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
    EXPECT_EQ(ContentOf(folder / "target.png"), "x");
}

TEST(OutputFile, AFullDiskHasItsOwnCode) {
    const ScratchFolder folder;
    std::filesystem::create_symlink("/dev/full", folder / "out.png");
    CheckOutputPlace(folder / "out.png");
    const std::string text =
        ExpectError(kDiskFull, [&] { WriteFileWhole(folder / "out.png", BytesOf("some bytes")); });
    EXPECT_NE(text.find("disk is full"), std::string::npos);
    EXPECT_EQ(folder.count(), 1);
}

TEST(OutputFile, PlacesAreCheckedBeforehand) {
    const ScratchFolder folder;
    EXPECT_NO_THROW(CheckOutputPlace(folder / "new.png"));
    ExpectError(kOutputFolderMissing, [&] { CheckOutputPlace(folder / "no/such/a.png"); });
    std::filesystem::create_directory(folder / "sub.png");
    ExpectError(kOutputFailed, [&] { CheckOutputPlace(folder / "sub.png"); });
    std::ofstream(folder / "file") << "x";
    ExpectError(kOutputFolderMissing, [&] { CheckOutputPlace(folder / "file/a.png"); });
}

TEST(OutputFile, NothingIsLeftWhenTheFolderVanishes) {
    const ScratchFolder folder;
    ExpectError(kOutputFailed, [&] { WriteFileWhole(folder / "gone/a.png", BytesOf("x")); });
    EXPECT_EQ(folder.count(), 0);
}

}  // namespace
}  // namespace vireon::tool
