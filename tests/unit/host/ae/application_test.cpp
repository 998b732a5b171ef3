#include <gtest/gtest.h>

#include "command.h"
#include "host/application_codes.h"

namespace vireon::test {
namespace {

using headless::Slot;

thread_local std::int16_t askedElement;

/// A suite whose colours differ by channel and by question.
const sdk::PFAppSuite4& ColourfulSuite() {
    static const sdk::PFAppSuite4 suite = [] {
        sdk::PFAppSuite4 table{};
        table.PF_AppGetBgColor = [](sdk::PF_App_Color* colour) -> sdk::PF_Err {
            *colour = {1, 2, 65535};
            return 0;
        };
        table.PF_AppGetColor = [](std::int16_t element, sdk::PF_App_Color* colour) -> sdk::PF_Err {
            askedElement = element;
            *colour = {40000, 5, 6};
            return 0;
        };
        return table;
    }();
    return suite;
}

TEST(Application, ColoursComeFromItsSuite) {
    Scene scene;
    scene.prepare = [](headless::Host& host) {
        host.offerSuite("PF AE App Suite", 6, &ColourfulSuite());
    };
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::uint16_t red = 0;
        std::uint16_t green = 0;
        std::uint16_t blue = 0;
        EXPECT_EQ(host.backgroundColour(red, green, blue), 0);
        EXPECT_EQ(red, 1);
        EXPECT_EQ(green, 2);
        EXPECT_EQ(blue, 65535);
        EXPECT_EQ(host.interfaceColour(17, red, green, blue), 0);
        EXPECT_EQ(askedElement, 17);
        EXPECT_EQ(red, 40000);
        EXPECT_EQ(green, 5);
        EXPECT_EQ(blue, 6);
        EXPECT_EQ(command.spy.acquired.back(), Spy::Suite("PF AE App Suite", 6));
    });
}

TEST(Application, TellsWhetherItIsARenderEngine) {
    for (const bool engine : {false, true}) {
        Scene scene;
        scene.settings.renderEngine = engine;
        InRender(scene, [&](Command& command) {
            bool answer = !engine;
            EXPECT_EQ(command.makeHost().isRenderEngine(answer), 0);
            EXPECT_EQ(answer, engine);
            EXPECT_EQ(command.calls(Slot::kIsRenderEngine), 1u);
        });
    }
}

TEST(Application, CodesOfTheSuiteComeThrough) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::uint16_t red = 0;
        std::uint16_t green = 0;
        std::uint16_t blue = 0;
        bool answer = false;
        command.failNext(Slot::kAppGetBgColor);
        EXPECT_EQ(host.backgroundColour(red, green, blue), Command::kInjected);
        command.failNext(Slot::kAppGetColor);
        EXPECT_EQ(host.interfaceColour(1, red, green, blue), Command::kInjected);
        command.failNext(Slot::kIsRenderEngine);
        EXPECT_EQ(host.isRenderEngine(answer), Command::kInjected);
    });
}

TEST(Application, AMissingSuiteIsReportedByEachQuestion) {
    Scene scene;
    scene.settings.withheldSuites = {{"PF AE App Suite", 6}};
    for (int question = 0; question < 3; ++question) {
        const auto result = InRender(scene, [&](Command& command) {
            PluginHost_AE_Impl host = command.makeHost();
            std::uint16_t red = 0;
            std::uint16_t green = 0;
            std::uint16_t blue = 0;
            bool answer = false;
            const std::int32_t code = question == 0   ? host.backgroundColour(red, green, blue)
                                      : question == 1 ? host.isRenderEngine(answer)
                                                      : host.interfaceColour(1, red, green, blue);
            EXPECT_EQ(code, sdk::PF_Err_BAD_CALLBACK_PARAM);
        });
        EXPECT_EQ(result.message(), "Failed to acquire PFAppSuite4.");
        EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    }
}

}  // namespace
}  // namespace vireon::test
