#include "headless/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "fake_effect.h"

namespace vireon::headless {
namespace {

using testing::AddSampleParameters;
using testing::Call;
using testing::FakeEffect;
using testing::HasViolation;

/// Answers PARAMS_SETUP with the sample parameters and everything else with `rest`.
testing::Behaviour WithParameters(testing::Behaviour rest) {
    return [rest = std::move(rest)](const Call& call) {
        return call.command == sdk::PF_Cmd_PARAMS_SETUP ? AddSampleParameters(call) : rest(call);
    };
}

TEST(Host, EverySlotCanBeCalled) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        // The records hold pointers only, but for the tails that the sizes leave out.
        const auto noneIsNull = [](const void* record, std::size_t slots) {
            std::vector<const void*> pointers(slots);
            std::memcpy(pointers.data(), record, slots * sizeof(void*));
            for (const void* pointer : pointers) {
                if (pointer == nullptr) {
                    return false;
                }
            }
            return true;
        };
        EXPECT_TRUE(noneIsNull(&call.in.inter, 9));
        EXPECT_TRUE(noneIsNull(&call.utils(), 26));
        EXPECT_TRUE(noneIsNull(&call.utils().ansi, 19));
        EXPECT_TRUE(noneIsNull(&call.utils().colorCB, 8));
        EXPECT_TRUE(noneIsNull(&call.utils().get_platform_data, 14));
        EXPECT_TRUE(noneIsNull(call.in.pica_basicP, 7));
        const auto suiteIsFull = [&](const sdk::SuiteId& id, std::size_t bytes) {
            const auto* table = call.acquire<void>(id);
            EXPECT_NE(table, nullptr) << id.name;
            EXPECT_TRUE(noneIsNull(table, bytes / sizeof(void*))) << id.name;
            call.in.pica_basicP->ReleaseSuite(id.name, id.version);
        };
        suiteIsFull(sdk::kWorldSuite1, sizeof(sdk::PF_WorldSuite1));
        suiteIsFull(sdk::kWorldSuite2, sizeof(sdk::PF_WorldSuite2));
        suiteIsFull(sdk::kColorParamSuite1, sizeof(sdk::PF_ColorParamSuite1));
        suiteIsFull(sdk::kParamUtilsSuite2, sizeof(sdk::PF_ParamUtilsSuite1));
        suiteIsFull(sdk::kParamUtilsSuite3, sizeof(sdk::PF_ParamUtilsSuite3));
        suiteIsFull(sdk::kHandleSuite2, sizeof(sdk::PF_HandleSuite1));
        suiteIsFull(sdk::kAppSuite6, sizeof(sdk::PFAppSuite4));
        suiteIsFull(sdk::kPathQuerySuite1, sizeof(sdk::PF_PathQuerySuite1));
        suiteIsFull(sdk::kPathDataSuite1, sizeof(sdk::PF_PathDataSuite1));
        EXPECT_EQ(call.utils().app(call.in.effect_ref, 7, 1.0), sdk::PF_Err_INVALID_CALLBACK);
        EXPECT_EQ(call.utils().blend(call.in.effect_ref, nullptr, nullptr, 0, nullptr),
                  sdk::PF_Err_INVALID_CALLBACK);
        return 0;
    });
    Host host(effect.library());
    const CommandResult result = host.about();
    EXPECT_TRUE(result.clean()) << result.report();
    EXPECT_EQ(host.calls()[Slot::kApp], 1u);
    EXPECT_EQ(host.calls()[Slot::kBlend], 1u);
    EXPECT_EQ(host.calls()[Slot::kAcquireSuite], 9u);
    EXPECT_EQ(host.calls().called().size(), 4u);
}

TEST(Host, InDataFollowsTheSettings) {
    HostSettings settings;
    settings.applicationId = sdk::kHostPremierePro;
    settings.versionMinor = 4;
    settings.downsampleX = {1, 2};
    settings.downsampleY = {1, 0};
    settings.time.current = -3;
    settings.basicSuite = false;
    settings.adjustInData = [](sdk::PF_InData& in) { in.shutter_angle = 99; };
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        EXPECT_EQ(call.in.appl_id, sdk::kHostPremierePro);
        EXPECT_EQ(call.in.version.major, 13);
        EXPECT_EQ(call.in.version.minor, 4);
        EXPECT_EQ(call.in.downsample_y.den, 0u);
        EXPECT_EQ(call.in.current_time, -3);
        EXPECT_EQ(call.in.width, 20);
        EXPECT_EQ(call.in.height, 6);
        EXPECT_EQ(call.in.pica_basicP, nullptr);
        EXPECT_EQ(call.in.shutter_angle, 99);
        EXPECT_EQ(call.in.num_params, 1);
        return 0;
    });
    Host host(effect.library(), settings);
    host.setInput(std::make_shared<World>(10, 6, Depth::k8));
    EXPECT_TRUE(host.globalSetup().clean());
}

TEST(Host, ReportsTheMessageAndTheFlags) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        call.utils().ansi.sprintf(call.out.return_msg, "%s %d", "about", 7);
        call.out.out_flags |= sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE;
        return 3;
    });
    Host host(effect.library());
    const CommandResult result = host.about();
    EXPECT_EQ(result.error, 3);
    EXPECT_EQ(result.message(), "about 7");
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    EXPECT_NE(result.report().find("ABOUT: 3"), std::string::npos);
}

TEST(Host, AnOverlongMessageIsCutAndReported) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        const std::string text(300, 'x');
        if (call.command == sdk::PF_Cmd_ABOUT) {
            call.utils().ansi.sprintf(call.out.return_msg, "%s", text.c_str());
        } else {
            call.utils().ansi.strcpy(call.out.return_msg, text.c_str());
        }
        return 0;
    });
    Host host(effect.library());
    EXPECT_TRUE(HasViolation(host.about(), "sprintf writes past"));
    const CommandResult result = host.globalSetup();
    EXPECT_TRUE(HasViolation(result, "strcpy writes past"));
    EXPECT_EQ(result.message().size(), 255u);
}

TEST(Host, LeaksAreReportedOnceWithTheirCommand) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command != sdk::PF_Cmd_DO_DIALOG) {
            return 0;
        }
        static sdk::PF_ParamDef param;
        static sdk::PF_EffectWorld world;
        call.acquire<void>(sdk::kHandleSuite2);
        call.acquire<void>(sdk::kHandleSuite2);
        call.in.inter.checkout_param(call.in.effect_ref, 1, 0, 1, 30, &param);
        call.utils().new_world(call.in.effect_ref, 4, 4, 0, &world);
        call.utils().host_lock_handle(call.utils().host_new_handle(100));
        return 0;
    }));
    Host host(effect.library());
    for (const CommandResult& result : host.setUp()) {
        EXPECT_TRUE(result.clean()) << result.report();
    }
    const CommandResult result = host.doDialog();
    EXPECT_NE(result.leaks.find("2 acquisition(s) of \"PF Handle Suite\" version 2"),
              std::string::npos);
    EXPECT_NE(result.leaks.find("1 parameter check-out(s)"), std::string::npos);
    EXPECT_NE(result.leaks.find("1 world(s)"), std::string::npos);
    EXPECT_NE(result.leaks.find("1 handle(s)"), std::string::npos);
    EXPECT_NE(result.leaks.find("1 handle lock(s)"), std::string::npos);
    EXPECT_FALSE(result.clean());
    EXPECT_TRUE(host.about().clean());
    EXPECT_TRUE(host.balance().empty());
}

TEST(Host, DataKeptInTheOutDataIsNoLeak) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_GLOBAL_SETUP) {
            call.out.global_data = call.utils().host_new_handle(4);
            call.utils().host_unlock_handle(call.out.global_data);
        } else {
            EXPECT_NE(call.in.global_data, nullptr);
            EXPECT_EQ(call.utils().host_get_handle_size(call.in.global_data), 4u);
        }
        return 0;
    });
    Host host(effect.library());
    EXPECT_TRUE(host.globalSetup().clean());
    EXPECT_TRUE(host.about().clean());
    EXPECT_TRUE(host.globalSetdown().clean());
    EXPECT_EQ(host.balance().bytes, 0u);
    EXPECT_EQ(host.peakBytes(), 4u);
}

TEST(Host, WrongReleasesAreViolations) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command != sdk::PF_Cmd_DO_DIALOG) {
            return 0;
        }
        sdk::PF_EffectWorld world{};
        sdk::PF_ParamDef param{};
        const sdk::PF_ProgPtr ref = call.in.effect_ref;
        call.acquire<void>(sdk::kParamUtilsSuite2);
        call.in.pica_basicP->ReleaseSuite("PF Param Utils Suite", 3);
        call.in.pica_basicP->ReleaseSuite("PF Param Utils Suite", 2);
        call.utils().new_world(ref, 4, 4, 0, &world);
        EXPECT_EQ(call.utils().dispose_world(ref, &world), 0);
        EXPECT_NE(call.utils().dispose_world(ref, &world), 0);
        EXPECT_NE(call.in.inter.checkin_param(ref, &param), 0);
        EXPECT_EQ(call.in.inter.abort(&world), sdk::PF_Err_BAD_CALLBACK_PARAM);
        const sdk::PF_Handle handle = call.utils().host_new_handle(8);
        call.utils().host_dispose_handle(handle);
        call.utils().host_dispose_handle(handle);
        return 0;
    }));
    Host host(effect.library());
    host.setUp();
    const CommandResult result = host.doDialog();
    EXPECT_TRUE(HasViolation(result, "release of \"PF Param Utils Suite\" version 3"));
    EXPECT_TRUE(HasViolation(result, "disposed of twice"));
    EXPECT_TRUE(HasViolation(result, "check-in of a parameter record"));
    EXPECT_TRUE(HasViolation(result, "wrong effect reference"));
    EXPECT_TRUE(HasViolation(result, "disposal of a handle that is not out"));
    EXPECT_EQ(result.violations.size(), 5u) << result.report();
    EXPECT_EQ(result.leaks, "");
}

TEST(Host, ExceptionsOfTheEffectAreViolationsAndThoseOfHooksComeThrough) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_ABOUT) {
            throw std::runtime_error("lost");
        }
        sdk::PF_ParamDef param{};
        return call.in.inter.checkout_param(call.in.effect_ref, 1, 0, 1, 30, &param);
    }));
    Host host(effect.library());
    host.paramsSetup();
    EXPECT_TRUE(HasViolation(host.about(), "exception left the entry point"));
    host.settings().onCheckout = [](std::int32_t, const LayerTime&, sdk::PF_ParamDef&) {
        throw std::logic_error("hook");
    };
    EXPECT_THROW(host.doDialog(), std::logic_error);
    host.settings().onCheckout = nullptr;
    EXPECT_EQ(host.doDialog().error, 0);
}

TEST(Host, WritingHandedOutRecordsIsAViolation) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_UPDATE_PARAMS_UI) {
            call.params[1]->u.fs_d.value = 3.0;
        } else if (call.command == sdk::PF_Cmd_ABOUT) {
            call.in.width = 5;
        }
        return 0;
    }));
    Host host(effect.library());
    host.setUp();
    EXPECT_TRUE(HasViolation(host.updateParamsUi(), "parameter 1 in the array was written"));
    EXPECT_TRUE(HasViolation(host.about(), "wrote into the in-data"));
}

TEST(HostParameters, AreKeptAsRegisteredAndSetByKind) {
    const FakeEffect effect(WithParameters([](const Call&) -> sdk::PF_Err { return 0; }));
    Host host(effect.library());
    EXPECT_TRUE(host.setUp().back().clean());
    ASSERT_EQ(host.parameterCount(), 7);
    EXPECT_EQ(host.parameter(4).text, "One|Two|Three");
    EXPECT_EQ(host.parameter(4).id(), 14);
    EXPECT_EQ(host.findParameter("Opacity"), 2);
    EXPECT_EQ(host.findParameter("Nothing"), std::nullopt);
    EXPECT_EQ(host.number(1), 2.5);
    EXPECT_EQ(host.number(2), 100.0);
    host.setFloatSlider(1, 7.25);
    host.setFixedSlider(2, 0.1);
    host.setCheckbox(3, true);
    host.setPopup(4, 3);
    EXPECT_EQ(host.number(1), 7.25);
    EXPECT_EQ(host.parameter(2).current.u.fd.value, 6553);
    EXPECT_EQ(host.number(3), 1.0);
    EXPECT_EQ(host.number(4), 3.0);
    host.setNumber(1, 1.0);
    host.setNumber(2, 50.0);
    EXPECT_EQ(host.number(2), 50.0);
    EXPECT_THROW(host.setFloatSlider(2, 1.0), HeadlessError);
    EXPECT_THROW(host.setNumber(5, 1.0), HeadlessError);
    EXPECT_THROW(host.setLayer(1, nullptr), HeadlessError);
    EXPECT_THROW(host.parameter(7), HeadlessError);
    host.resetParameters();
    EXPECT_EQ(host.number(1), 2.5);
}

TEST(HostParameters, PointsFollowTheResolutionUntilTheyAreSet) {
    std::vector<double> seen;
    const FakeEffect effect(WithParameters([&](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_DO_DIALOG) {
            const sdk::PF_PointDef& point = call.params[5]->u.td;
            seen.push_back(point.x_value / 65536.0);
            seen.push_back(point.y_value / 65536.0);
        }
        return 0;
    }));
    Host host(effect.library());
    host.setUp();
    host.settings().fullWidth = 640;
    host.settings().fullHeight = 480;
    host.doDialog();
    host.settings().downsampleX = {1, 2};
    host.doDialog();
    host.setPoint(5, 12.5, -3.0);
    host.doDialog();
    EXPECT_EQ(seen, (std::vector<double>{320, 240, 160, 240, 12.5, -3}));
}

TEST(HostParameters, CheckOutsGiveValuesAtATime) {
    double value = 0.0;
    const FakeEffect effect(WithParameters([&](const Call& call) -> sdk::PF_Err {
        if (call.command != sdk::PF_Cmd_DO_DIALOG) {
            return 0;
        }
        sdk::PF_ParamDef param{};
        EXPECT_EQ(call.in.inter.checkout_param(call.in.effect_ref, 99, 0, 1, 30, &param),
                  sdk::PF_Err_INVALID_INDEX);
        EXPECT_EQ(call.in.inter.checkout_param(call.in.effect_ref, 1, 60, 1, 30, &param), 0);
        value = param.u.fs_d.value;
        return call.in.inter.checkin_param(call.in.effect_ref, &param);
    }));
    Host host(effect.library());
    host.setUp();
    EXPECT_TRUE(host.doDialog().clean());
    EXPECT_EQ(value, 2.5);
    host.settings().onCheckout = [](std::int32_t index, const LayerTime& time,
                                    sdk::PF_ParamDef& def) {
        if (index == 1) {
            def.u.fs_d.value = static_cast<double>(time.value) / time.scale;
        }
    };
    EXPECT_TRUE(host.doDialog().clean());
    EXPECT_EQ(value, 2.0);
}

TEST(HostParameters, AppearanceChangesThroughTheSuite) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command != sdk::PF_Cmd_UPDATE_PARAMS_UI) {
            return 0;
        }
        const auto* suite = call.acquire<sdk::PF_ParamUtilsSuite1>(sdk::kParamUtilsSuite2);
        sdk::PF_ParamDef copy = *call.params[1];
        copy.ui_flags = sdk::PF_PUI_DISABLED;
        copy.u.fs_d.value = 77.0;
        EXPECT_EQ(suite->PF_UpdateParamUI(call.in.effect_ref, 1, &copy), 0);
        call.in.pica_basicP->ReleaseSuite(sdk::kParamUtilsSuite2.name, 2);
        return 0;
    }));
    Host host(effect.library());
    host.setUp();
    const CommandResult result = host.updateParamsUi();
    EXPECT_TRUE(result.clean()) << result.report();
    ASSERT_EQ(result.uiUpdates.size(), 1u);
    EXPECT_EQ(result.uiUpdates[0].index, 1);
    EXPECT_EQ(result.uiUpdates[0].uiFlags, sdk::PF_PUI_DISABLED);
    EXPECT_EQ(host.parameter(1).current.ui_flags, sdk::PF_PUI_DISABLED);
    EXPECT_EQ(host.number(1), 2.5);
}

TEST(HostParameters, ValuesChangeOnlyWhenMarkedInUserChangedParam) {
    bool mark = false;
    const FakeEffect effect(WithParameters([&](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_USER_CHANGED_PARAM) {
            EXPECT_EQ(static_cast<sdk::PF_UserChangedParamExtra*>(call.extra)->param_index, 3);
            call.params[1]->u.fs_d.value = 9.0;
            call.params[1]->uu.change_flags = mark ? sdk::PF_ChangeFlag_CHANGED_VALUE : 0;
        }
        return 0;
    }));
    Host host(effect.library());
    host.setUp();
    EXPECT_FALSE(host.userChangedParam(3).clean());
    EXPECT_EQ(host.number(1), 2.5);
    mark = true;
    EXPECT_TRUE(host.userChangedParam(3).clean());
    EXPECT_EQ(host.number(1), 9.0);
}

TEST(HostFaults, TheNthCallFails) {
    std::vector<sdk::PF_Err> errors;
    const FakeEffect effect([&](const Call& call) -> sdk::PF_Err {
        sdk::PF_EffectWorld world{};
        for (int i = 0; i < 4; ++i) {
            const sdk::PF_Err error = call.utils().new_world(call.in.effect_ref, 2, 2, 0, &world);
            errors.push_back(error);
            if (error == 0) {
                call.utils().dispose_world(call.in.effect_ref, &world);
            } else {
                EXPECT_EQ(world.data, nullptr);
            }
        }
        return 0;
    });
    Host host(effect.library());
    host.faults().fail(Slot::kNewWorld, 2);
    EXPECT_TRUE(host.about().clean());
    EXPECT_EQ(errors, (std::vector<sdk::PF_Err>{0, 4, 0, 0}));
    EXPECT_EQ(host.faults().injected(), 1u);
    errors.clear();
    host.faults().clear();
    host.faults().fail(Slot::kNewWorld, 3, 77, true);
    EXPECT_TRUE(host.about().clean());
    EXPECT_EQ(errors, (std::vector<sdk::PF_Err>{0, 0, 77, 77}));
    EXPECT_EQ(host.calls()[Slot::kNewWorld], 8u);
}

TEST(HostFaults, GivingBackHappensEvenWhenItFails) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        sdk::PF_EffectWorld world{};
        call.utils().new_world(call.in.effect_ref, 2, 2, 0, &world);
        return call.utils().dispose_world(call.in.effect_ref, &world);
    });
    Host host(effect.library());
    host.faults().fail(Slot::kDisposeWorld, 1, 99);
    const CommandResult result = host.about();
    EXPECT_EQ(result.error, 99);
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(HostFaults, SuitesAndHandlesFailAsNull) {
    const FakeEffect effect([](const Call& call) -> sdk::PF_Err {
        EXPECT_EQ(call.utils().host_new_handle(10), nullptr);
        EXPECT_EQ(call.acquire<void>(sdk::kWorldSuite2), nullptr);
        EXPECT_EQ(call.acquire<void>(sdk::kAppSuite6), nullptr);
        EXPECT_EQ(call.acquire<void>({"PF World Suite", 99}), nullptr);
        return 0;
    });
    Host host(effect.library());
    host.settings().withheldSuites.insert({"PF AE App Suite", 6});
    host.faults().fail(Slot::kNewHandle);
    host.faults().fail(Slot::kAcquireSuite);
    EXPECT_TRUE(host.about().clean());
}

TEST(HostFaults, RefusesPlansThatCannotWork) {
    FaultPlan plan;
    EXPECT_THROW(plan.fail(Slot::kUnlockHandle), HeadlessError);
    EXPECT_THROW(plan.fail(Slot::kCopy, 0), HeadlessError);
    EXPECT_THROW(plan.fail(Slot::kCopy, 1, 0), HeadlessError);
    for (const Slot slot : AllSlots()) {
        EXPECT_STRNE(SlotName(slot), "");
    }
}

TEST(HostAbort, TheEffectMustEndWithTheAnswer) {
    bool obey = true;
    int rows = 0;
    const FakeEffect effect([&](const Call& call) -> sdk::PF_Err {
        rows = 0;
        for (int row = 0; row < 10; ++row) {
            const sdk::PF_Err answer = call.in.inter.progress(call.in.effect_ref, row, 10);
            if (answer != 0) {
                return obey ? answer : 0;
            }
            ++rows;
        }
        return 0;
    });
    Host host(effect.library());
    host.cancelFrom(4);
    CommandResult result = host.about();
    EXPECT_EQ(result.error, sdk::PF_Interrupt_CANCEL);
    EXPECT_TRUE(result.clean());
    EXPECT_EQ(rows, 3);
    EXPECT_EQ(host.calls()[Slot::kProgress], 4u);
    obey = false;
    result = host.about();
    EXPECT_TRUE(HasViolation(result, "was told to stop with 517 and answered 0"));
    host.cancelFrom(0);
    std::vector<std::int32_t> seen;
    host.settings().onProgress = [&](std::int32_t current, std::int32_t total) -> sdk::PF_Err {
        seen.push_back(current * 100 + total);
        return current == 1 ? 600 : 0;
    };
    obey = true;
    EXPECT_EQ(host.about().error, 600);
    EXPECT_EQ(seen, (std::vector<std::int32_t>{10, 110}));
}

TEST(HostThreads, HostsOnSeveralThreadsDoNotMeet) {
    std::vector<std::thread> threads;
    std::vector<int> clean(4, 0);
    for (std::size_t i = 0; i < clean.size(); ++i) {
        threads.emplace_back([&clean, i] {
            const FakeEffect effect([i](const Call& call) -> sdk::PF_Err {
                sdk::PF_EffectWorld world{};
                const auto width = static_cast<std::int32_t>(i) + 1;
                call.utils().new_world(call.in.effect_ref, width, 3, 0, &world);
                const sdk::PF_Handle handle = call.utils().host_new_handle(i + 1);
                const bool right = call.utils().host_get_handle_size(handle) == i + 1;
                call.utils().host_dispose_handle(handle);
                return right ? call.utils().dispose_world(call.in.effect_ref, &world) : 1;
            });
            Host host(effect.library());
            for (int round = 0; round < 200; ++round) {
                const CommandResult result = host.about();
                clean[i] += result.clean() && result.error == 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(clean, (std::vector<int>{200, 200, 200, 200}));
}

TEST(HostNesting, AHookMayDriveAnotherHost) {
    const FakeEffect effect(WithParameters([](const Call& call) -> sdk::PF_Err {
        if (call.command != sdk::PF_Cmd_DO_DIALOG) {
            return 0;
        }
        sdk::PF_ParamDef param{};
        call.in.inter.checkout_param(call.in.effect_ref, 1, 0, 1, 30, &param);
        const sdk::PF_Handle handle = call.utils().host_new_handle(3);
        call.utils().host_dispose_handle(handle);
        return call.in.inter.checkin_param(call.in.effect_ref, &param);
    }));
    Host outer(effect.library());
    Host inner(effect.library());
    outer.setUp();
    inner.setUp();
    outer.settings().onCheckout = [&](std::int32_t, const LayerTime&, sdk::PF_ParamDef&) {
        EXPECT_TRUE(inner.doDialog().clean());
    };
    EXPECT_TRUE(outer.doDialog().clean());
    EXPECT_EQ(outer.calls()[Slot::kNewHandle], 1u);
    EXPECT_EQ(inner.calls()[Slot::kNewHandle], 1u);
    outer.settings().onCheckout = [&](std::int32_t, const LayerTime&, sdk::PF_ParamDef&) {
        outer.about();
    };
    EXPECT_THROW(outer.doDialog(), HeadlessError);
}

}  // namespace
}  // namespace vireon::headless
