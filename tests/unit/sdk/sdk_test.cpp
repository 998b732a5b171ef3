#include "sdk/sdk.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>

namespace vireon::sdk {
namespace {

TEST(SdkCodes, HostCodesPutTheFirstCharacterOnTop) {
    EXPECT_EQ(HostCode("FXTC"), 0x46585443);
    EXPECT_EQ(kHostAfterEffects, 1180193859);
    EXPECT_EQ(kHostPremierePro, 0x50724D72);
    EXPECT_EQ(kHostFinalCutPro, 0x4B657947);
    EXPECT_EQ(kHostMotion, 0x4D4F544E);
    EXPECT_EQ(kHostCbst, 0x43627374);
}

TEST(SdkCodes, PixelFormatCodesReadForwardsInMemory) {
    EXPECT_EQ(PF_PixelFormat_ARGB32, 0x62677261);
    EXPECT_EQ(PF_PixelFormat_ARGB64, 0x36316561);
    EXPECT_EQ(PF_PixelFormat_ARGB128, 0x32336561);
    EXPECT_EQ(PF_PixelFormat_BGRA32, 0x61726762);
    EXPECT_EQ(std::memcmp(&PF_PixelFormat_ARGB128, "ae32", 4), 0);
}

TEST(SdkCodes, CodesAboveSevenBitsDoNotSpill) {
    EXPECT_EQ(HostCode("\xFF\x01\x02\x03"), static_cast<std::int32_t>(0xFF010203u));
    EXPECT_EQ(PixelFormatCode("\x01\x02\x03\xFF"), static_cast<std::int32_t>(0xFF030201u));
}

TEST(SdkConstants, FlagWordsCombine) {
    EXPECT_EQ(PF_OutFlag_KEEP_RESOURCE_OPEN | PF_OutFlag_I_DO_DIALOG | PF_OutFlag_CUSTOM_UI |
                  PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_SEND_UPDATE_PARAMS_UI,
              0x06008021);
    EXPECT_EQ(PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG | PF_OutFlag2_SUPPORTS_SMART_RENDER |
                  PF_OutFlag2_FLOAT_COLOR_AWARE,
              0x1408);
    EXPECT_LT(PF_OutFlag_AUDIO_EFFECT_ONLY, 0);
}

TEST(SdkConstants, EffectVersionUnpacks) {
    constexpr std::int32_t version = 0x00089600;
    EXPECT_EQ(version >> PF_Vers_VERS_SHIFT & PF_Vers_VERS_BITS, 1);
    EXPECT_EQ(version >> PF_Vers_SUBVERS_SHIFT & PF_Vers_SUBVERS_BITS, 1);
    EXPECT_EQ(version >> PF_Vers_BUGFIX_SHIFT & PF_Vers_BUGFIX_BITS, 2);
    EXPECT_EQ(version >> PF_Vers_STAGE_SHIFT & PF_Vers_STAGE_BITS, PF_Stage_RELEASE);
    EXPECT_EQ(version >> PF_Vers_BUILD_SHIFT & PF_Vers_BUILD_BITS, 0);
}

TEST(SdkRecords, AreCopiedAsPlainBytes) {
    EXPECT_TRUE(std::is_trivially_copyable_v<PF_InData>);
    EXPECT_TRUE(std::is_trivially_copyable_v<PF_OutData>);
    EXPECT_TRUE(std::is_trivially_copyable_v<PF_ParamDef>);
    EXPECT_TRUE(std::is_trivially_copyable_v<PF_EffectWorld>);
    EXPECT_TRUE(std::is_trivially_copyable_v<PF_SmartRenderExtra>);
    EXPECT_TRUE(std::is_standard_layout_v<PF_UtilCallbacks>);
}

TEST(SdkRecords, IdentityAndChangeWordOfAParameterAreOneWord) {
    PF_ParamDef def{};
    def.uu.id = 1039;
    EXPECT_EQ(def.uu.change_flags, 1039);
    EXPECT_EQ(static_cast<void*>(&def.u.ld), static_cast<void*>(&def.u.fs_d.value));
}

[[gnu::format(printf, 2, 3)]] std::int32_t PrintInto(char* out, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int count = std::vsprintf(out, format, arguments);
    va_end(arguments);
    return count;
}

PF_Err DescribeWorld(PF_ProgPtr effectRef, std::int32_t width, std::int32_t height,
                     PF_Boolean clear, std::int32_t pixelFormat, PF_EffectWorld* outWorld) {
    outWorld->reserved0 = effectRef;
    outWorld->width = width;
    outWorld->height = height;
    outWorld->world_flags = clear;
    outWorld->reserved_long1 = pixelFormat;
    return PF_Interrupt_CANCEL;
}

TEST(SdkSlots, CallsReachTheFunctionWithEveryArgumentInPlace) {
    PF_WorldSuite2 suite{};
    suite.PF_NewWorld = DescribeWorld;
    PF_EffectWorld world{};
    int owner = 0;
    EXPECT_EQ(suite.PF_NewWorld(&owner, 640, 360, 1, PF_PixelFormat_ARGB128, &world),
              PF_Interrupt_CANCEL);
    EXPECT_EQ(world.reserved0, &owner);
    EXPECT_EQ(world.width, 640);
    EXPECT_EQ(world.height, 360);
    EXPECT_EQ(world.world_flags, 1);
    EXPECT_EQ(world.reserved_long1, PF_PixelFormat_ARGB128);
}

TEST(SdkSlots, VariadicPrintTakesTextIntegersAndDoubles) {
    PF_UtilCallbacks utils{};
    utils.ansi.sprintf = PrintInto;
    PF_InData inData{};
    inData.utils = &utils;
    char text[64] = {};
    EXPECT_EQ(inData.utils->ansi.sprintf(text, "%s v%d.%d %.2f", "name", 1, 2, 0.5), 14);
    EXPECT_STREQ(text, "name v1.2 0.50");
}

}  // namespace
}  // namespace vireon::sdk
