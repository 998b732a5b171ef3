#include "shapes/shape_library.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/unit/shapes/temporary_folder.h"
#include "tests/unit/support/fake_host.h"

namespace vireon::test {
namespace {

TEST(BrushFileName, OfEverySlotCaseIncluded) {
    const char* const names[] = {"gaussian.brush",     "hoop.brush",          "kuplah.brush",
                                 "mass.brush",         "sixFlare.brush",      "sixSpikeHoriz.brush",
                                 "sixSpikeVert.brush", "sixSpikeWhack.brush", "spectacle.brush",
                                 "Tent.brush",         "Tree.brush",          "Whoopy.brush",
                                 "Zig.brush"};
    ASSERT_EQ(kLibraryShapes, 13);
    for (std::int32_t slot = 0; slot < 13; ++slot) EXPECT_STREQ(BrushFileName(slot), names[slot]);
}

TEST(LibraryShape, SlotsBeyondTheLibraryAreNone) {
    for (const std::int32_t slot : {13, 14, 1000, -1, -1000}) {
        EXPECT_EQ(LibraryShape(slot), nullptr) << slot;
    }
}

// Shapes are loaded once a process, so that everything about the load is one test.
TEST(LoadShapesOnce, ReadsTheFolderOfTheEnvironmentOnceAndLeavesUnusableSlotsEmpty) {
    for (std::int32_t slot = 0; slot < 13; ++slot) {
        ASSERT_NE(LibraryShape(slot), nullptr);
        EXPECT_FALSE(LibraryShape(slot)->hasTexels());
    }

    const TemporaryFolder folder;
    folder.write("gaussian.brush", FlatBrush("0.5"));
    folder.write("hoop.brush", "128\n128\nx\n0.5\n");
    folder.write("sixFlare.brush", FlatBrush("0.25"));
    folder.write("mass.brush", "256\n256\n");
    folder.write("Zig.brush", FlatBrush("0.125"));
    SetEnvironment(kBrushFolderVariable, folder.path().string());
    FakeHost host;
    host.resourceFile = "/nowhere/VireonGlow";
    LoadShapesOnce(host);
    for (std::int32_t slot = 0; slot < 13; ++slot) {
        const GlowKernel* const kernel = LibraryShape(slot);
        ASSERT_NE(kernel, nullptr);
        const bool usable = slot == 0 || slot == 4 || slot == 12;
        EXPECT_EQ(kernel->hasTexels(), usable) << slot;
        if (usable) {
            EXPECT_EQ(kernel->row(255)[255], slot == 0 ? 0.5f : slot == 4 ? 0.25f : 0.125f);
            EXPECT_FALSE(kernel->rowIsEmpty(0));
        }
    }
    EXPECT_EQ(host.count("reportError"), 0);

    // What changes on disk afterwards is not seen.
    folder.write("gaussian.brush", FlatBrush("0.75"));
    folder.write("Tent.brush", FlatBrush("0.75"));
    LoadShapesOnce(host);
    EXPECT_EQ(LibraryShape(0)->row(0)[0], 0.5f);
    EXPECT_FALSE(LibraryShape(9)->hasTexels());
    SetEnvironment(kBrushFolderVariable, "");
}

}  // namespace
}  // namespace vireon::test
