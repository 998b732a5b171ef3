#include "tools/vireon/exit_codes.h"

#include <string_view>

#include <gtest/gtest.h>

namespace vireon::tool {
namespace {

TEST(ExitCodes, AreDistinctAndExplained) {
    int last = -1;
    for (const ExitCodeMeaning& entry : ExitCodes()) {
        EXPECT_GT(entry.code, last);
        EXPECT_LE(entry.code, 255);
        EXPECT_FALSE(std::string_view(entry.meaning).empty());
        last = entry.code;
    }
    EXPECT_EQ(ExitCodes().front().code, kSuccess);
    EXPECT_EQ(ExitCodes().size(), 20u);
}

}  // namespace
}  // namespace vireon::tool
