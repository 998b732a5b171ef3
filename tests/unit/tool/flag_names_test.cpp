#include "tools/vireon/flag_names.h"

#include <gtest/gtest.h>

#include "sdk/constants.h"

namespace vireon::tool {
namespace {

using Names = std::vector<std::string>;

TEST(FlagNames, NameEveryBitOnce) {
    EXPECT_EQ(OutFlagNames(0), Names{});
    EXPECT_EQ(OutFlagNames(0x06008021), (Names{"KEEP_RESOURCE_OPEN", "I_DO_DIALOG", "CUSTOM_UI",
                                               "DEEP_COLOR_AWARE", "SEND_UPDATE_PARAMS_UI"}));
    EXPECT_EQ(OutFlag2Names(0x1408), (Names{"PARAM_GROUP_START_COLLAPSED_FLAG",
                                            "SUPPORTS_SMART_RENDER", "FLOAT_COLOR_AWARE"}));
    EXPECT_EQ(OutFlagNames(~0u).size(), 32u);
    EXPECT_EQ(OutFlag2Names(~0u).size(), 32u);
    EXPECT_EQ(OutFlag2Names(0x200), Names{"bit 512"});
}

TEST(FlagNames, NameKindsStagesAndErrors) {
    EXPECT_EQ(KindName(sdk::PF_Param_FLOAT_SLIDER), "float slider");
    EXPECT_EQ(KindName(77), "kind 77");
    EXPECT_EQ(StageName(sdk::PF_Stage_BETA), "beta");
    EXPECT_EQ(ErrorName(4), "out of memory");
    EXPECT_EQ(ErrorName(123456), "");
}

}  // namespace
}  // namespace vireon::tool
