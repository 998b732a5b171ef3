#include <gtest/gtest.h>

#include <vector>

#include "command.h"
#include "host/application_codes.h"

namespace vireon::test {
namespace {

TEST(Quality, IsHighForFinalQualityOnly) {
    for (const std::int32_t quality : {-1, 0, 1, 2}) {
        Scene scene;
        scene.settings.quality = quality;
        InRender(scene, [&](Command& command) {
            EXPECT_EQ(command.makeHost().isHighQuality(), quality == 1) << quality;
        });
    }
}

TEST(Downsample, IsAFractionInEitherDirection) {
    InRender([](Command& command) {
        command.in.downsample_x = {1, 3};
        command.in.downsample_y = {2, 5};
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.downsampleX(), 1.0 / 3.0);
        EXPECT_EQ(host.downsampleY(), 2.0 / 5.0);
    });
}

TEST(Downsample, WithoutADenominatorIsOne) {
    InRender([](Command& command) {
        command.in.downsample_x = {0, 0};
        command.in.downsample_y = {3, 0};
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.downsampleX(), 1.0);
        EXPECT_EQ(host.downsampleY(), 1.0);
    });
}

TEST(PixelAspectRatio, IsTheCommandsOrOne) {
    InRender([](Command& command) {
        command.in.pixel_aspect_ratio = {10, 11};
        EXPECT_EQ(command.makeHost().pixelAspectRatio(), 10.0 / 11.0);
        command.in.pixel_aspect_ratio = {10, 0};
        EXPECT_EQ(command.makeHost().pixelAspectRatio(), 1.0);
    });
}

TEST(SdkRecords, AreThoseOfTheCommand) {
    InRender([](Command& command) {
        const PluginHost_AE_Impl host = command.makeHost();
        const SdkRecords* records = host.sdkRecords();
        ASSERT_NE(records, nullptr);
        EXPECT_EQ(records->inData, &command.in);
        EXPECT_EQ(records->outData, &command.out);
        EXPECT_EQ(host.params(), command.params);
    });
}

TEST(GlobalAndSequenceData, CountOnlyTogether) {
    RunCleanIn(sdk::PF_Cmd_ABOUT, {}, [](Command& command) {
        void* bytes = nullptr;
        for (const bool global : {false, true}) {
            for (const bool sequence : {false, true}) {
                command.in.global_data = global ? &bytes : nullptr;
                command.in.sequence_data = sequence ? &bytes : nullptr;
                EXPECT_EQ(command.makeHost().hasGlobalAndSequenceData(), global && sequence);
            }
        }
    });
}

TEST(Progress, AsksTheHostAndGivesItsAnswer) {
    Scene scene;
    std::vector<std::pair<std::int32_t, std::int32_t>> asked;
    scene.settings.onProgress = [&](std::int32_t current, std::int32_t total) -> sdk::PF_Err {
        asked.emplace_back(current, total);
        return current == 9 ? sdk::PF_Interrupt_CANCEL : 0;
    };
    const auto result = InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.progress(3, 10), 0);
        command.result = host.progress(9, 10);
        EXPECT_EQ(command.result, sdk::PF_Interrupt_CANCEL);
    });
    EXPECT_EQ(result.error, sdk::PF_Interrupt_CANCEL);
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.front(), std::pair(3, 10));
    EXPECT_EQ(asked.back(), std::pair(9, 10));
}

TEST(Time, IsTheCommands) {
    Scene scene;
    scene.settings.time = {.current = -40, .step = 3, .localStep = -5, .total = 100, .scale = 2997};
    InRender(scene, [](Command& command) {
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.timeScale(), 2997u);
        EXPECT_EQ(host.currentTime(), -40);
        EXPECT_EQ(host.timeStep(), 3);
        EXPECT_EQ(host.totalTime(), 100);
        EXPECT_EQ(host.localTimeStep(), -5);
    });
}

TEST(Time, StepsDoubleForFieldsThatCountAsFrames) {
    for (const std::int32_t field :
         {sdk::PF_Field_FRAME, sdk::PF_Field_UPPER, sdk::PF_Field_LOWER}) {
        Scene scene;
        scene.settings.field = field;
        scene.settings.time.step = 7;
        scene.settings.time.localStep = -11;
        InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            EXPECT_EQ(host.timeStep(), 7);
            EXPECT_EQ(host.localTimeStep(), -11);
            host.setFieldsCountAsFrames(true);
            EXPECT_EQ(host.timeStep(), field != 0 ? 14 : 7);
            EXPECT_EQ(host.localTimeStep(), field != 0 ? -22 : -11);
            host.setFieldsCountAsFrames(false);
            EXPECT_EQ(host.timeStep(), 7);
        });
    }
}

TEST(FieldCount, IsTwoWhileFieldsAreRendered) {
    for (const std::int32_t field :
         {sdk::PF_Field_FRAME, sdk::PF_Field_UPPER, sdk::PF_Field_LOWER}) {
        Scene scene;
        scene.settings.field = field;
        InRender(scene, [&](Command& command) {
            EXPECT_EQ(command.makeHost().fieldCount(), field == 0 ? 1 : 2);
        });
    }
}

TEST(FrameRate, IsTheScaleOverTheLayersOwnStep) {
    Scene scene;
    scene.settings.time = {.step = 77, .localStep = 1001, .scale = 30000};
    InRender(scene, [](Command& command) {
        float rate = 0.0f;
        EXPECT_TRUE(command.makeHost().frameRate(rate));
        EXPECT_EQ(rate, static_cast<float>(30000.0 / 1001.0));
    });
}

TEST(IsApplication, ComparesTheWholeCode) {
    for (const std::int32_t application :
         {kAfterEffects, kPremierePro, kFinalCutPro, kMotion, kCbst}) {
        InRender(SceneIn(application, 13, 27), [&](Command& command) {
            const PluginHost_AE_Impl host = command.makeHost();
            for (const std::int32_t other :
                 {kAfterEffects, kPremierePro, kFinalCutPro, kMotion, kCbst}) {
                EXPECT_EQ(host.isApplication(other), other == application);
            }
        });
    }
    EXPECT_EQ(kPremierePro, 0x50724D72);
    EXPECT_EQ(kFinalCutPro, 0x4B657947);
    EXPECT_EQ(kMotion, 0x4D4F544E);
}

TEST(UserWords, AreZeroUntilTheyAreSet) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.userWord(), 0);
        std::int32_t first = 5;
        std::int32_t second = 5;
        host.userWords(first, second);
        EXPECT_EQ(first, 0);
        EXPECT_EQ(second, 0);
        host.setUserWord(-0x123456789ABCDEF);
        EXPECT_EQ(host.userWord(), -0x123456789ABCDEF);
        host.setUserWords(-7, 0x7FFFFFFF);
        host.userWords(first, second);
        EXPECT_EQ(first, -7);
        EXPECT_EQ(second, 0x7FFFFFFF);
        EXPECT_EQ(host.userWord(), -0x123456789ABCDEF);
    });
}

TEST(Shutter, IsFixedPointInDegrees) {
    InRender([](Command& command) {
        command.in.shutter_phase = -45 * sdk::kFixedOne - sdk::kFixedOne / 2;
        command.in.shutter_angle = 180 * sdk::kFixedOne + 1;
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.shutterPhase(), -45.5f);
        EXPECT_EQ(host.shutterAngle(), static_cast<float>((180 * 65536 + 1) * 1.52587890625e-5));
    });
}

TEST(DefaultLayerRequest, IsTheLayerOnce) {
    InRender([](Command& command) {
        std::int32_t words[3] = {9, 9, 9};
        command.makeHost().defaultLayerRequest(15, words[0], words[1], words[2]);
        EXPECT_EQ(words[0], 15);
        EXPECT_EQ(words[1], 1);
        EXPECT_EQ(words[2], 0);
    });
}

TEST(PixelState, IsAllFalse) {
    InRender([](Command& command) {
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_FALSE(host.alphaIsUndefined());
        EXPECT_FALSE(host.alphaIsIgnored());
        EXPECT_FALSE(host.isPremultiplied());
        EXPECT_FALSE(host.compositesItself());
    });
}

TEST(Separators, KeepTheirNumbers) {
    InRender([](Command& command) { EXPECT_TRUE(command.makeHost().keepsSeparators()); });
}

TEST(Transfer, IsNotOffered) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_FALSE(host.offersTransfer());
        const auto glow = host.outputRaster();
        const auto source = host.parameterRaster(kInput);
        EXPECT_NE(host.transfer(2, 1.0f, 1.0f, *glow, *source, false), 0);
        EXPECT_EQ(command.calls(headless::Slot::kTransferRect), 0u);
    });
}

TEST(HostVersion, HasTwoParts) {
    InRender(SceneIn(kAfterEffects, 13, 27), [](Command& command) {
        std::int32_t major = 0;
        std::int32_t minor = 0;
        command.makeHost().hostVersionParts(major, minor);
        EXPECT_EQ(major, 13);
        EXPECT_EQ(minor, 27);
    });
}

TEST(CanRefreshUi, FromVersionTwelveTwelveOnAndElseAsksForIt) {
    struct Case {
        std::int16_t major;
        std::int16_t minor;
        bool can;
    };
    for (const Case& one : {Case{11, 99, false}, {12, 11, false}, {12, 12, true}, {13, 0, true}}) {
        const auto result =
            InRender(SceneIn(kAfterEffects, one.major, one.minor), [&](Command& command) {
                EXPECT_EQ(command.makeHost().canRefreshUi(), one.can) << one.major << one.minor;
            });
        EXPECT_EQ(result.out.out_flags, one.can ? 0 : sdk::PF_OutFlag_REFRESH_UI);
    }
}

TEST(RequestUiRefresh, AddsItsFlag) {
    const auto result = InRender([](Command& command) {
        command.out.out_flags = sdk::PF_OutFlag_FORCE_RERENDER;
        command.makeHost().requestUiRefresh();
    });
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_FORCE_RERENDER | sdk::PF_OutFlag_REFRESH_UI);
}

TEST(Constants, AreOne) {
    InRender([](Command& command) {
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.one(), 1.0);
        EXPECT_EQ(host.unit(), 1);
    });
}

TEST(Reserved, OperationsAskTheHostNothing) {
    const auto result = InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        command.host.resetCalls();
        host.reserved20();
        host.reserved21();
        host.reserved22();
        host.reserved23();
        host.reserved24();
        host.reserved25();
        host.reserved26();
        host.reserved27();
        host.reserved28();
        host.reserved88();
        host.reserved95();
        host.reserved110();
        host.reserved112();
        host.reserved124();
        host.reserved125();
        host.pathReserved7();
        host.pathReserved8();
        EXPECT_EQ(command.host.calls().total(), 0u);
    });
    EXPECT_EQ(result.out.out_flags, 0);
    EXPECT_EQ(result.message(), "");
}

}  // namespace
}  // namespace vireon::test
