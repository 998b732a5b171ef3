#include "headless/effect_library.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "headless/host.h"

namespace vireon::headless {
namespace {

TEST(EffectLibrary, LoadsAndCallsALibrary) {
    EffectLibrary library(TINY_EFFECT);
    EXPECT_EQ(library.path(), TINY_EFFECT);
    EXPECT_NE(library.moduleHandle(), nullptr);
    const EffectLibrary moved = std::move(library);
    Host host(moved);
    const CommandResult result = host.send(sdk::PF_Cmd_EVENT);
    EXPECT_EQ(result.error, sdk::PF_Cmd_EVENT);
    EXPECT_EQ(result.message(), "tiny");
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(EffectLibrary, ReadsTheResourceWhereThereAreResources) {
    const EffectLibrary library(TINY_EFFECT);
#if defined(_WIN32)
    const std::vector<std::uint8_t> expected{1, 0, 2, 0, 0, 0, 't', 'i', 'n', 'y'};
    ASSERT_TRUE(library.pipl().has_value());
    EXPECT_EQ(*library.pipl(), expected);
#else
    EXPECT_FALSE(library.pipl().has_value());
#endif
}

TEST(EffectLibrary, ExplainsWhyALibraryDoesNotLoad) {
    try {
        const EffectLibrary library("no-such-library.aex");
        FAIL() << "a missing library was loaded";
    } catch (const HeadlessError& error) {
        EXPECT_NE(std::string(error.what()).find("no-such-library.aex"), std::string::npos);
    }
    EXPECT_THROW(EffectLibrary(sdk::EntryPoint{nullptr}), HeadlessError);
}

}  // namespace
}  // namespace vireon::headless
