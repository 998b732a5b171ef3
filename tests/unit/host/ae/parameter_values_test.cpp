#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "command.h"

namespace vireon::test {
namespace {

using headless::LayerTime;
using headless::Slot;

constexpr HostTime kTime{.time = 17, .step = -3, .scale = 24};

/// A scene whose parameters have their values at `kTime` only.
Scene SceneWithValues() {
    Scene scene;
    scene.settings.onCheckout = [](std::int32_t index, const LayerTime& time,
                                   sdk::PF_ParamDef& def) {
        if (time.value != 17 || time.step != -3 || time.scale != 24) return;
        switch (index) {
            case kFloatSlider: def.u.fs_d.value = 0.1; break;
            case kFixedSlider: def.u.fd.value = -98304; break;
            case kPopup: def.u.pd.value = 3; break;
            case kPoint:
                def.u.td.x_value = 65537;
                def.u.td.y_value = -32768;
                break;
            case kIntegerSlider: def.u.sd.value = -123456789; break;
            case kSpacePoint:
                def.u.point3d_d.x_value = 0.1;
                def.u.point3d_d.y_value = -2.5;
                def.u.point3d_d.z_value = 1e9;
                break;
            default: break;
        }
    };
    return scene;
}

/// Checks what the last operation checked out, and that it gave it back.
void ExpectCheckedOutOnce(Command& command, std::int32_t index) {
    ASSERT_EQ(command.spy.checkOuts.size(), 1u);
    EXPECT_EQ(command.spy.checkOuts[0].index, index);
    EXPECT_EQ(command.spy.checkOuts[0].time, kTime.time);
    EXPECT_EQ(command.spy.checkOuts[0].step, kTime.step);
    EXPECT_EQ(command.spy.checkOuts[0].scale, kTime.scale);
    EXPECT_EQ(command.calls(Slot::kCheckinParam), 1u);
    command.spy.checkOuts.clear();
    command.host.resetCalls();
}

TEST(ValuesAtATime, FloatSlidersAreDoubles) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        double value = 9.0;
        EXPECT_EQ(host.floatSliderAt(kFloatSlider, kTime, value), 0);
        EXPECT_EQ(value, 0.1);
        ExpectCheckedOutOnce(command, kFloatSlider);
    });
}

TEST(ValuesAtATime, SlidersFollowTheirKind) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const std::int32_t kind : {-1, -100}) {
            double value = 9.0;
            EXPECT_EQ(host.sliderAt(kFloatSlider, kind, kTime, value), 0);
            EXPECT_EQ(value, 0.1) << kind;
            ExpectCheckedOutOnce(command, kFloatSlider);
        }
        for (const std::int32_t kind : {0, 1, 100}) {
            double value = 9.0;
            EXPECT_EQ(host.sliderAt(kFixedSlider, kind, kTime, value), 0);
            EXPECT_EQ(value, -1.5) << kind;
            ExpectCheckedOutOnce(command, kFixedSlider);
        }
    });
}

TEST(ValuesAtATime, FixedValuesAreFixedPointWhateverTheKind) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        for (const std::int32_t kind : {-1, 0, 1}) {
            double value = 9.0;
            EXPECT_EQ(host.fixedAt(kFixedSlider, kind, kTime, value), 0);
            EXPECT_EQ(value, -1.5);
            ExpectCheckedOutOnce(command, kFixedSlider);
        }
    });
}

TEST(ValuesAtATime, IntegersAreAsTheyAre) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t value = 9;
        EXPECT_EQ(host.integerAt(kIntegerSlider, 0, kTime, value), 0);
        EXPECT_EQ(value, -123456789);
        ExpectCheckedOutOnce(command, kIntegerSlider);
    });
}

TEST(ValuesAtATime, PopupsCountFromZero) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        std::int32_t choice = 9;
        EXPECT_EQ(host.popupAt(kPopup, 0, kTime, choice), 0);
        EXPECT_EQ(choice, 2);
        ExpectCheckedOutOnce(command, kPopup);
    });
}

TEST(ValuesAtATime, PointsAreFixedPointPixels) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        double x = 9.0;
        double y = 9.0;
        EXPECT_EQ(host.pointAt(kPoint, kTime, x, y), 0);
        EXPECT_EQ(x, 65537.0 / 65536.0);
        EXPECT_EQ(y, -0.5);
        ExpectCheckedOutOnce(command, kPoint);
    });
}

TEST(ValuesAtATime, PointsInSpaceAreDoubles) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        double x = 9.0;
        double y = 9.0;
        double z = 9.0;
        EXPECT_EQ(host.spacePointAt(kSpacePoint, kTime, x, y, z), 0);
        EXPECT_EQ(x, 0.1);
        EXPECT_EQ(y, -2.5);
        EXPECT_EQ(z, 1e9);
        ExpectCheckedOutOnce(command, kSpacePoint);
    });
}

/// Every operation of the family once; the values come to a sum.
std::vector<std::int32_t> AskEverything(PluginHost_API& host, double& sum) {
    double a = 9.0;
    double b = 9.0;
    double c = 9.0;
    std::int32_t i = 9;
    std::vector<std::int32_t> codes;
    sum = 0.0;
    codes.push_back(host.floatSliderAt(kFloatSlider, kTime, a));
    sum += std::abs(a);
    codes.push_back(host.sliderAt(kFixedSlider, 0, kTime, a));
    sum += std::abs(a);
    codes.push_back(host.fixedAt(kFixedSlider, 0, kTime, a));
    sum += std::abs(a);
    codes.push_back(host.integerAt(kIntegerSlider, 0, kTime, i));
    sum += std::abs(i);
    codes.push_back(host.pointAt(kPoint, kTime, a, b));
    sum += std::abs(a) + std::abs(b);
    codes.push_back(host.spacePointAt(kSpacePoint, kTime, a, b, c));
    sum += std::abs(a) + std::abs(b) + std::abs(c);
    codes.push_back(host.popupAt(kPopup, 0, kTime, i));
    return codes;
}

TEST(ValuesAtATime, ReturnTheCodeOfTheCheckIn) {
    InRender(SceneWithValues(), [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        command.host.faults().fail(Slot::kCheckinParam, 1, Command::kInjected, true);
        double sum = 0.0;
        for (const std::int32_t code : AskEverything(host, sum)) {
            EXPECT_EQ(code, Command::kInjected);
        }
        EXPECT_GT(sum, 1e8) << "the values are read before";
        command.host.faults().clear();
    });
}

thread_local int checkIns;

TEST(ValuesAtATime, DoNotLookAtTheCodeOfTheCheckOut) {
    InRender(SceneWithValues(), [](Command& command) {
        // A host that refuses the one and takes the other.
        command.in.inter.checkout_param = [](sdk::PF_ProgPtr, std::int32_t, std::int32_t,
                                             std::int32_t, std::uint32_t,
                                             sdk::PF_ParamDef*) -> sdk::PF_Err { return 778; };
        command.in.inter.checkin_param = [](sdk::PF_ProgPtr, sdk::PF_ParamDef*) -> sdk::PF_Err {
            ++checkIns;
            return 0;
        };
        checkIns = 0;
        PluginHost_AE_Impl host = command.makeHost();
        double sum = 9.0;
        const std::vector<std::int32_t> codes = AskEverything(host, sum);
        for (const std::int32_t code : codes) EXPECT_EQ(code, 0);
        EXPECT_EQ(sum, 0.0);
        EXPECT_EQ(checkIns, static_cast<int>(codes.size()));
    });
}

TEST(CheckboxValue, IsTheCommandsOrFalse) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        sdk::PF_ParamDef changed = *command.params[kCheckbox];
        sdk::PF_ParamDef* const given = command.params[kCheckbox];
        command.params[kCheckbox] = &changed;
        for (const std::int32_t value : {0, 1, 5, -1}) {
            changed.u.bd.value = value;
            EXPECT_EQ(host.checkboxValue(kCheckbox), value != 0) << value;
        }
        command.params[kCheckbox] = given;
        sdk::PF_ParamDef** const params = command.params;
        command.params = nullptr;
        EXPECT_FALSE(command.makeHost().checkboxValue(kCheckbox));
        command.params = params;
        EXPECT_TRUE(command.spy.checkOuts.empty());
    });
}

TEST(ValuesOfTheCommand, ComeFromItsRecords) {
    Scene scene;
    scene.prepare = [](headless::Host& host) {
        host.setFloatSlider(kFloatSlider, 0.1);
        host.setFixedSlider(kFixedSlider, 12.5);
        host.setPopup(kPopup, 2);
        host.setPoint(kPoint, 3.25, -1.5);
    };
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        double value = 9.0;
        EXPECT_EQ(host.sliderValue(kFloatSlider, -1, value), 0);
        EXPECT_EQ(value, 0.1);
        EXPECT_EQ(host.sliderValue(kFixedSlider, 0, value), 0);
        EXPECT_EQ(value, 12.5);
        std::int32_t choice = 9;
        EXPECT_EQ(host.popupValue(kPopup, choice), 0);
        EXPECT_EQ(choice, 1);
        double y = 9.0;
        EXPECT_EQ(host.pointValue(kPoint, value, y), 0);
        EXPECT_EQ(value, 3.25);
        EXPECT_EQ(y, -1.5);
        EXPECT_TRUE(command.spy.checkOuts.empty());
    });
}

TEST(ValuesOfTheCommand, AreZeroWithAnErrorWhereThereIsNoRecord) {
    InRender([](Command& command) {
        command.params = nullptr;
        PluginHost_AE_Impl host = command.makeHost();
        double x = 9.0;
        double y = 9.0;
        std::int32_t choice = 9;
        EXPECT_EQ(host.sliderValue(kFloatSlider, -1, x), sdk::PF_Err_INVALID_INDEX);
        EXPECT_EQ(x, 0.0);
        EXPECT_EQ(host.popupValue(kPopup, choice), sdk::PF_Err_INVALID_INDEX);
        EXPECT_EQ(choice, 0);
        EXPECT_EQ(host.pointValue(kPoint, x, y), sdk::PF_Err_INVALID_INDEX);
        EXPECT_EQ(y, 0.0);
        EXPECT_EQ(host.parameterRaster(kInput), nullptr);
    });
}

TEST(ValuesOfTheCommand, SlidersThatAreNotFiniteAreZero) {
    for (const double strange :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        Scene scene;
        scene.prepare = [&](headless::Host& host) { host.setFloatSlider(kFloatSlider, strange); };
        InRender(scene, [](Command& command) {
            double value = 9.0;
            EXPECT_EQ(command.makeHost().sliderValue(kFloatSlider, -1, value), 0);
            EXPECT_EQ(value, 0.0);
        });
    }
}

}  // namespace
}  // namespace vireon::test
