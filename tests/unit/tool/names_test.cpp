#include "tools/vireon/names.h"

#include <gtest/gtest.h>

namespace vireon::tool {
namespace {

TEST(Names, KebabName) {
    EXPECT_EQ(KebabName("Glow Radius"), "glow-radius");
    EXPECT_EQ(KebabName("Input Source Channels"), "input-source-channels");
    EXPECT_EQ(KebabName("  3D  /  Depth! "), "3d-depth");
    EXPECT_EQ(KebabName("View"), "view");
    EXPECT_EQ(KebabName("--"), "");
    EXPECT_EQ(KebabName(""), "");
}

TEST(Names, FoldedText) {
    EXPECT_EQ(FoldedText("Six Spike  Horizontal"), "six spike horizontal");
    EXPECT_EQ(FoldedText("six-spike_horizontal "), "six spike horizontal");
    EXPECT_EQ(FoldedText("4:1 (moderate)"), "4:1 (moderate)");
}

TEST(Names, NearestFindsSlipsOfTheKeyboard) {
    const std::vector<std::string> names{"glow-radius", "glow-falloff", "falloff", "threshold"};
    EXPECT_EQ(Nearest("glow-radus", names), "glow-radius");
    EXPECT_EQ(Nearest("glwo-radius", names), "glow-radius");
    EXPECT_EQ(Nearest("GlowRadius", names), "glow-radius");
    EXPECT_EQ(Nearest("treshold", names), "threshold");
    EXPECT_EQ(Nearest("fallof", names), "falloff");
    EXPECT_EQ(Nearest("radius", names), "glow-radius");
}

TEST(Names, NearestIsSilentAboutStrangers) {
    const std::vector<std::string> names{"glow-radius", "threshold"};
    EXPECT_EQ(Nearest("sharpen", names), "");
    EXPECT_EQ(Nearest("x", names), "");
    EXPECT_EQ(Nearest("anything", {}), "");
}

TEST(Names, Suggestion) {
    EXPECT_EQ(Suggestion("treshold", {"threshold"}, "--"), " (did you mean --threshold?)");
    EXPECT_EQ(Suggestion("sharpen", {"threshold"}), "");
}

}  // namespace
}  // namespace vireon::tool
