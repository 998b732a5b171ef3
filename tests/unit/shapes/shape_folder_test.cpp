#include <cstdint>
#include <filesystem>

#include <gtest/gtest.h>

#include "shapes/shape_library.h"
#include "tests/unit/shapes/temporary_folder.h"
#include "tests/unit/support/fake_host.h"

namespace vireon::test {
namespace {

// Shapes are loaded once a process; this is the process without the environment variable.
TEST(ShapeFolder, IsVireonBrushBesideTheEffectsFileWithoutTheVariable) {
    SetEnvironment(kBrushFolderVariable, "");
    const TemporaryFolder folder;
    folder.write(std::filesystem::path("Vireon") / "Brush" / "Tree.brush", FlatBrush("0.5"));
    // Only the folder of the effect counts, not the one it lies in.
    folder.write("hoop.brush", FlatBrush("0.5"));
    FakeHost host;
    host.resourceFile = (folder.path() / "VireonGlow.aex").string();
    LoadShapesOnce(host);
    for (std::int32_t slot = 0; slot < 13; ++slot) {
        EXPECT_EQ(LibraryShape(slot)->hasTexels(), slot == 10) << slot;
    }
    EXPECT_EQ(LibraryShape(10)->row(3)[3], 0.5f);
}

}  // namespace
}  // namespace vireon::test
