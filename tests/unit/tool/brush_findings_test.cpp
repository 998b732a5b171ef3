#include "tools/vireon/brush_check.h"

#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/unit/tool/scratch_folder.h"

namespace vireon::tool {
namespace {

std::filesystem::path WriteBrush(const ScratchFolder& folder, const std::string& header,
                                 int samples, const std::string& last = {}) {
    const std::filesystem::path path = folder / "test.brush";
    std::ofstream stream(path);
    stream << header;
    for (int i = 0; i < samples; ++i) {
        stream << "0.5\n";
    }
    stream << last;
    return path;
}

TEST(BrushCheck, WholeFilesHaveNoFault) {
    const ScratchFolder folder;
    EXPECT_EQ(BrushFault(WriteBrush(folder, "256\n256\ntitle\n", 65536)), "");
    EXPECT_EQ(BrushFault(WriteBrush(folder, "256\n256\n\n", 65535, "0")), "");
}

TEST(BrushCheck, FaultsAreNamed) {
    const ScratchFolder folder;
    EXPECT_EQ(BrushFault(folder / "none.brush"), "No such file or directory");
    EXPECT_EQ(BrushFault(folder.path()), "it is a folder");
    EXPECT_EQ(BrushFault(WriteBrush(folder, "256\n256\n", 0)), "its header is incomplete");
    EXPECT_EQ(BrushFault(WriteBrush(folder, "128\n256\nx\n", 10)),
              "it is 128 x 256, not 256 x 256");
    EXPECT_EQ(BrushFault(WriteBrush(folder, "256\n256\nx\n", 1000)),
              "it ends after 1000 of 65536 samples");
    EXPECT_EQ(BrushFault(WriteBrush(folder, "256\n256\nx\n", 2, "glow\n")), "line 6 is no number");
}

TEST(BrushCheck, FolderIsTheOneOfTheEffect) {
    unsetenv("ORVANTE_QUILLON_SVG_DIR");
    EXPECT_EQ(BrushFolder("/opt/x/VireonGlow.so"), "/opt/x/Vireon/Brush");
    setenv("ORVANTE_QUILLON_SVG_DIR", "/somewhere", 1);
    EXPECT_EQ(BrushFolder("/opt/x/VireonGlow.so"), "/somewhere");
    unsetenv("ORVANTE_QUILLON_SVG_DIR");
}

}  // namespace
}  // namespace vireon::tool
