#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "command.h"
#include "host/application_codes.h"

namespace vireon::test {
namespace {

using Suites = std::vector<Spy::Suite>;

const Suites kBoth = {{"PF World Suite", 2}, {"PF ColorParamSuite", 1}};
const Suites kWorldOnly = {{"PF World Suite", 2}};

Suites Sorted(Suites suites) {
    std::sort(suites.begin(), suites.end());
    return suites;
}

TEST(Construction, AcquiresByVersionAndApplicationAndReleasesOnce) {
    struct Case {
        std::int32_t application;
        std::int16_t major;
        std::int16_t minor;
        Suites suites;
    };
    const Case cases[] = {
        {kAfterEffects, 12, 11, {}},       {kAfterEffects, 11, 99, {}},
        {kAfterEffects, 12, 12, kBoth},    {kAfterEffects, 13, 0, kBoth},
        {kAfterEffects, 13, 27, kBoth},    {kPremierePro, 12, 11, {}},
        {kPremierePro, 13, 4, kWorldOnly}, {kPremierePro, 13, 27, kWorldOnly},
        {kFinalCutPro, 13, 27, kBoth},     {kMotion, 13, 27, kBoth},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::Message() << one.application << " " << one.major << "." << one.minor);
        const auto result =
            InRender(SceneIn(one.application, one.major, one.minor), [&](Command& command) {
                {
                    const PluginHost_AE_Impl host = command.makeHost();
                    EXPECT_EQ(command.spy.acquired, one.suites);
                    EXPECT_TRUE(command.spy.released.empty());
                }
                EXPECT_EQ(Sorted(command.spy.released), Sorted(one.suites));
            });
        EXPECT_EQ(result.message(), "");
        EXPECT_EQ(result.out.out_flags, 0);
    }
}

TEST(Construction, ReportsTheSuiteThatIsMissingAndDoesWithoutIt) {
    struct Case {
        Suites missing;
        const char* message;
        Suites released;
    };
    const Case cases[] = {
        {{{"PF World Suite", 2}}, "Couldn't load kPFWorldSuite.", {{"PF ColorParamSuite", 1}}},
        {{{"PF ColorParamSuite", 1}}, "Couldn't load kPFColorParamSuite.", kWorldOnly},
        {kBoth, "Couldn't load kPFColorParamSuite.", {}},
    };
    for (const Case& one : cases) {
        Scene scene;
        scene.settings.withheldSuites = {one.missing.begin(), one.missing.end()};
        const auto result = InRender(scene, [&](Command& command) {
            { const PluginHost_AE_Impl host = command.makeHost(); }
            EXPECT_EQ(command.spy.acquired, kBoth);
            EXPECT_EQ(command.spy.released, one.released);
        });
        EXPECT_EQ(result.message(), one.message);
        EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    }
}

TEST(Construction, InPremiereReportsTheWorldSuiteOnly) {
    Scene scene = SceneIn(kPremierePro, 13, 4);
    scene.settings.withheldSuites = {kBoth.begin(), kBoth.end()};
    const auto result = InRender(scene, [](Command& command) { command.makeHost(); });
    EXPECT_EQ(result.message(), "Couldn't load kPFWorldSuite.");
}

TEST(Construction, WithoutABasicSuiteReportsWhatItWouldHaveAcquired) {
    Scene scene;
    scene.settings.basicSuite = false;
    const auto result = InRender(scene, [](Command& command) {
        const PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.width(), 6);
    });
    EXPECT_EQ(result.message(), "Couldn't load kPFColorParamSuite.");
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);

    scene = SceneIn(kAfterEffects, 12, 11);
    scene.settings.basicSuite = false;
    const auto old = InRender(scene, [](Command& command) { command.makeHost(); });
    EXPECT_EQ(old.message(), "");
    EXPECT_EQ(old.out.out_flags, 0);
}

TEST(Construction, AsksNothingButSuites) {
    InRender([](Command& command) {
        { const PluginHost_AE_Impl host = command.makeHost(); }
        EXPECT_EQ(command.host.calls().called(),
                  (std::vector<headless::Slot>{headless::Slot::kAcquireSuite,
                                               headless::Slot::kReleaseSuite}));
    });
}

}  // namespace
}  // namespace vireon::test
