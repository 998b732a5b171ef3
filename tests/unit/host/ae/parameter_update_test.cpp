#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "host/application_codes.h"

namespace vireon::test {
namespace {

using headless::CommandResult;
using headless::Slot;

/// Runs a body with an update object inside USER_CHANGED_PARAM, where values may be changed.
CommandResult InUpdate(const Scene& scene,
                       const std::function<void(Command&, PluginUpdate_API&)>& body) {
    return RunCleanIn(sdk::PF_Cmd_USER_CHANGED_PARAM, scene, [&](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto update = host.parameterUpdate();
        ASSERT_NE(update, nullptr);
        body(command, *update);
    });
}

CommandResult InUpdate(const std::function<void(Command&, PluginUpdate_API&)>& body) {
    return InUpdate(Scene{}, body);
}

void ExpectMarked(Command& command, std::int32_t marked) {
    for (std::int32_t i = 0; i < kParameterCount; ++i) {
        EXPECT_EQ(command.params[i]->uu.change_flags,
                  i == marked ? sdk::PF_ChangeFlag_CHANGED_VALUE : 0)
            << i;
    }
}

TEST(ParameterUpdate, AcquiresItsSuiteAndReleasesItOnce) {
    const CommandResult result = RunCleanIn(sdk::PF_Cmd_UPDATE_PARAMS_UI, {}, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const std::size_t before = command.spy.acquired.size();
        {
            const auto update = host.parameterUpdate();
            EXPECT_TRUE(update->isReady());
            ASSERT_EQ(command.spy.acquired.size(), before + 1);
            EXPECT_EQ(command.spy.acquired.back(), Spy::Suite("PF Param Utils Suite", 2));
            EXPECT_TRUE(command.spy.released.empty());
        }
        EXPECT_EQ(command.spy.released, (std::vector<Spy::Suite>{{"PF Param Utils Suite", 2}}));
    });
    EXPECT_EQ(result.message(), "");
}

TEST(ParameterUpdate, WithoutTheSuiteStillSetsValues) {
    Scene scene;
    scene.settings.withheldSuites = {{"PF Param Utils Suite", 2}};
    const CommandResult result = InUpdate(scene, [](Command& command, PluginUpdate_API& update) {
        EXPECT_FALSE(update.isReady());
        update.setFixed(kFixedSlider, 0, 2.0);
        EXPECT_EQ(command.params[kFixedSlider]->u.fd.value, 131072);
        EXPECT_NE(update.enable(kFixedSlider, false), 0);
        EXPECT_NE(update.collapse(kFixedSlider, false), 0);
        EXPECT_NE(update.rename(kFixedSlider, "x"), 0);
        EXPECT_NE(update.renameAndEnable(kFixedSlider, "x", true), 0);
    });
    EXPECT_EQ(result.message(), "Failed to acquire suite.");
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    EXPECT_TRUE(result.uiUpdates.empty());
}

TEST(ParameterUpdate, FixedValuesRoundAwayFromZeroAtTheHalf) {
    struct Case {
        double value;
        std::int32_t stored;
    };
    for (const Case& one : {Case{-1.25, -81920},
                            {0.00001, 1},
                            {-0.00001, -1},
                            {0.0, 0},
                            {-0.0, 0},
                            {1.0, 65536},
                            {0.5 / 65536.0, 1},
                            {-0.5 / 65536.0, -1},
                            {0.49 / 65536.0, 0},
                            {-0.49 / 65536.0, 0},
                            {1.5 / 65536.0, 2},
                            {-1.5 / 65536.0, -2},
                            {32767.0, 32767 * 65536}}) {
        InUpdate([&](Command& command, PluginUpdate_API& update) {
            update.setFixed(kFixedSlider, 1, one.value);
            EXPECT_EQ(command.params[kFixedSlider]->u.fd.value, one.stored) << one.value;
            ExpectMarked(command, kFixedSlider);
        });
    }
}

TEST(ParameterUpdate, SlidersFollowTheirKind) {
    for (const std::int32_t kind : {0, -1}) {
        InUpdate([&](Command& command, PluginUpdate_API& update) {
            update.setSlider(kFixedSlider, kind, -1.25);
            EXPECT_EQ(command.params[kFixedSlider]->u.fd.value, -81920) << kind;
            ExpectMarked(command, kFixedSlider);
        });
    }
    for (const std::int32_t kind : {1, 2}) {
        InUpdate([&](Command& command, PluginUpdate_API& update) {
            update.setSlider(kFloatSlider, kind, 0.1);
            EXPECT_EQ(command.params[kFloatSlider]->u.fs_d.value, 0.1) << kind;
            ExpectMarked(command, kFloatSlider);
        });
    }
}

TEST(ParameterUpdate, SlidersAreFixedPointInFinalCutPro) {
    for (const std::int32_t application : {kFinalCutPro, kPremierePro, kMotion}) {
        InUpdate(SceneIn(application, 13, 27), [&](Command& command, PluginUpdate_API& update) {
            update.setSlider(kFixedSlider, 1, -1.25);
            const std::int32_t value = command.params[kFixedSlider]->u.fd.value;
            EXPECT_EQ(value == -81920, application == kFinalCutPro) << application;
        });
    }
}

TEST(ParameterUpdate, PopupsCheckboxesAndIntegersAreStoredAsTheyAre) {
    InUpdate([](Command& command, PluginUpdate_API& update) {
        update.setPopup(kPopup, 0, 3);
        EXPECT_EQ(command.params[kPopup]->u.pd.value, 3);
        ExpectMarked(command, kPopup);
    });
    for (const bool on : {true, false}) {
        InUpdate([&](Command& command, PluginUpdate_API& update) {
            command.params[kCheckbox]->u.bd.value = 17;
            update.setCheckbox(kCheckbox, 0, on);
            EXPECT_EQ(command.params[kCheckbox]->u.bd.value, on ? 1 : 0);
            ExpectMarked(command, kCheckbox);
        });
    }
    InUpdate([](Command& command, PluginUpdate_API& update) {
        update.setInteger(kIntegerSlider, 0, -123456789);
        EXPECT_EQ(command.params[kIntegerSlider]->u.sd.value, -123456789);
        ExpectMarked(command, kIntegerSlider);
    });
}

TEST(ParameterUpdate, PointsRoundLikeFixedValues) {
    InUpdate([](Command& command, PluginUpdate_API& update) {
        update.setPoint(kPoint, 0, -1.25, 0.00001);
        EXPECT_EQ(command.params[kPoint]->u.td.x_value, -81920);
        EXPECT_EQ(command.params[kPoint]->u.td.y_value, 1);
        ExpectMarked(command, kPoint);
    });
}

TEST(ParameterUpdate, ColoursAreLimitedToTheirBytesAndKeepTheirAlpha) {
    InUpdate([](Command& command, PluginUpdate_API& update) {
        sdk::PF_Pixel& stored = command.params[kColour]->u.cd.value;
        stored = {77, 1, 2, 3};
        update.setColour(kColour, 0, 1.0, 1.5, -0.2);
        EXPECT_EQ(stored.red, 255);
        EXPECT_EQ(stored.green, 255);
        EXPECT_EQ(stored.blue, 0);
        EXPECT_EQ(stored.alpha, 77);
        ExpectMarked(command, kColour);
        // 0.5 is 128 by truncate(127.5 + 0.5); 0.1 is 26 and 0.25 is 64.
        update.setColour(kColour, 0, 0.5, 0.1, 0.25);
        EXPECT_EQ(stored.red, 128);
        EXPECT_EQ(stored.green, 26);
        EXPECT_EQ(stored.blue, 64);
        update.setColour(kColour, 0, 1e300, -1e300, 0.0);
        EXPECT_EQ(stored.red, 255);
        EXPECT_EQ(stored.green, 0);
        EXPECT_EQ(stored.alpha, 77);
    });
}

TEST(ParameterUpdate, SettersThatSayItDoNothingWithoutParameters) {
    RunCleanIn(sdk::PF_Cmd_USER_CHANGED_PARAM, {}, [](Command& command) {
        command.params = nullptr;
        PluginHost_AE_Impl host = command.makeHost();
        const auto update = host.parameterUpdate();
        EXPECT_TRUE(update->isReady());
        update->setSlider(kFloatSlider, 1, 5.0);
        update->setInteger(kIntegerSlider, 0, 5);
        update->setPoint(kPoint, 0, 1.0, 1.0);
        update->setColour(kColour, 0, 1.0, 1.0, 1.0);
        EXPECT_NE(update->enable(kFloatSlider, true), 0);
        EXPECT_EQ(command.calls(Slot::kUpdateParamUi), 0u);
    });
}

// A suite that notes the record of every update.
struct Update {
    std::int32_t index;
    const sdk::PF_ParamDef* address;
    sdk::PF_ParamDef def;
};
thread_local std::vector<Update> updates;

sdk::PF_Err NoteUpdate(sdk::PF_ProgPtr, std::int32_t index, const sdk::PF_ParamDef* def) {
    updates.push_back({index, def, *def});
    return 0;
}

/// A body with controls whose records have other marks too; afterwards the records must be as they
/// were.
CommandResult InLook(const std::function<void(Command&, PluginUpdate_API&)>& body) {
    static const sdk::PF_ParamUtilsSuite1 suite = [] {
        sdk::PF_ParamUtilsSuite1 table{};
        table.PF_UpdateParamUI = NoteUpdate;
        return table;
    }();
    updates.clear();
    Scene scene;
    scene.prepare = [](headless::Host& host) {
        host.offerSuite("PF Param Utils Suite", 2, &suite);
    };
    return RunCleanIn(sdk::PF_Cmd_UPDATE_PARAMS_UI, scene, [&](Command& command) {
        // The array of the command is the host's: the marks go on a record of the test's own.
        sdk::PF_ParamDef marked = *command.params[kFloatSlider];
        marked.ui_flags = sdk::PF_PUI_ECW_SEPARATOR | sdk::PF_PUI_DISABLED;
        marked.flags = sdk::PF_ParamFlag_SUPERVISE | sdk::PF_ParamFlag_CANNOT_TIME_VARY;
        sdk::PF_ParamDef* const given = std::exchange(command.params[kFloatSlider], &marked);
        {
            PluginHost_AE_Impl host = command.makeHost();
            const auto update = host.parameterUpdate();
            body(command, *update);
        }
        EXPECT_EQ(marked.ui_flags, sdk::PF_PUI_ECW_SEPARATOR | sdk::PF_PUI_DISABLED);
        EXPECT_EQ(marked.flags, sdk::PF_ParamFlag_SUPERVISE | sdk::PF_ParamFlag_CANNOT_TIME_VARY);
        EXPECT_STREQ(marked.name, "Amount");
        EXPECT_EQ(marked.uu.change_flags, 0);
        command.params[kFloatSlider] = given;
    });
}

TEST(ParameterUpdate, EnablingReplacesAllUiFlagsInACopy) {
    InLook([](Command& command, PluginUpdate_API& update) {
        for (const bool enabled : {false, true}) {
            updates.clear();
            EXPECT_EQ(update.enable(kFloatSlider, enabled), 0);
            ASSERT_EQ(updates.size(), 1u);
            EXPECT_EQ(updates[0].index, kFloatSlider);
            EXPECT_NE(updates[0].address, command.params[kFloatSlider]);
            EXPECT_EQ(updates[0].def.ui_flags, enabled ? 0 : sdk::PF_PUI_DISABLED);
            EXPECT_EQ(updates[0].def.flags, command.params[kFloatSlider]->flags);
            EXPECT_EQ(updates[0].def.u.fs_d.value, 2.5);
            EXPECT_EQ(updates[0].def.param_type, sdk::PF_Param_FLOAT_SLIDER);
            EXPECT_STREQ(updates[0].def.name, "Amount");
        }
    });
}

TEST(ParameterUpdate, CollapsingChangesOneFlag) {
    InLook([](Command& command, PluginUpdate_API& update) {
        const std::int32_t flags = command.params[kFloatSlider]->flags;
        EXPECT_EQ(update.collapse(kFloatSlider, true), 0);
        ASSERT_EQ(updates.size(), 1u);
        EXPECT_EQ(updates[0].index, kFloatSlider);
        EXPECT_EQ(updates[0].def.flags, flags | sdk::PF_ParamFlag_COLLAPSE_TWIRLY);
        EXPECT_EQ(updates[0].def.ui_flags, command.params[kFloatSlider]->ui_flags);
        command.params[kFloatSlider]->flags |= sdk::PF_ParamFlag_COLLAPSE_TWIRLY;
        EXPECT_EQ(update.collapse(kFloatSlider, false), 0);
        ASSERT_EQ(updates.size(), 2u);
        EXPECT_EQ(updates[1].def.flags, flags);
        command.params[kFloatSlider]->flags = flags;
    });
}

TEST(ParameterUpdate, RenamingWritesTheNameByTheHostsOwnFunction) {
    InLook([](Command& command, PluginUpdate_API& update) {
        command.host.resetCalls();
        EXPECT_EQ(update.rename(kFloatSlider, "50% more"), 0);
        EXPECT_EQ(command.calls(Slot::kAnsiSprintf), 1u);
        ASSERT_EQ(updates.size(), 1u);
        EXPECT_STREQ(updates[0].def.name, "50% more");
        EXPECT_EQ(updates[0].def.ui_flags, command.params[kFloatSlider]->ui_flags);
        EXPECT_EQ(updates[0].def.flags, command.params[kFloatSlider]->flags);
    });
}

TEST(ParameterUpdate, RenamingStaysWithinTheName) {
    InLook([](Command&, PluginUpdate_API& update) {
        const std::string name(200, 'n');
        EXPECT_EQ(update.rename(kFloatSlider, name.c_str()), 0);
        EXPECT_EQ(update.renameAndEnable(kFloatSlider, name.c_str(), true), 0);
        ASSERT_EQ(updates.size(), 2u);
        for (const Update& one : updates) {
            EXPECT_EQ(std::string(one.def.name, sizeof one.def.name),
                      name.substr(0, 31) + std::string(1, '\0'));
            EXPECT_EQ(one.def.u.fs_d.value, 2.5);
        }
    });
}

TEST(ParameterUpdate, RenamingAndEnablingIsOneUpdate) {
    InLook([](Command&, PluginUpdate_API& update) {
        for (const bool enabled : {false, true}) {
            updates.clear();
            EXPECT_EQ(update.renameAndEnable(kFloatSlider, "New name", enabled), 0);
            ASSERT_EQ(updates.size(), 1u);
            EXPECT_STREQ(updates[0].def.name, "New name");
            EXPECT_EQ(updates[0].def.ui_flags, enabled ? 0 : sdk::PF_PUI_DISABLED);
        }
    });
}

TEST(ParameterUpdate, CodesOfTheSuiteComeThrough) {
    RunCleanIn(sdk::PF_Cmd_UPDATE_PARAMS_UI, {}, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto update = host.parameterUpdate();
        command.host.faults().fail(Slot::kUpdateParamUi, 1, Command::kInjected, true);
        EXPECT_EQ(update->enable(kFloatSlider, false), Command::kInjected);
        EXPECT_EQ(update->collapse(kFloatSlider, true), Command::kInjected);
        EXPECT_EQ(update->rename(kFloatSlider, "x"), Command::kInjected);
        EXPECT_EQ(update->renameAndEnable(kFloatSlider, "x", true), Command::kInjected);
        command.host.faults().clear();
    });
}

TEST(ParameterUpdate, TheHostTakesWhatWasSet) {
    const CommandResult result = RunCleanIn(sdk::PF_Cmd_UPDATE_PARAMS_UI, {}, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const auto update = host.parameterUpdate();
        EXPECT_EQ(update->renameAndEnable(kPopup, "Kind", false), 0);
        EXPECT_EQ(command.host.parameter(kPopup).current.ui_flags, sdk::PF_PUI_DISABLED);
    });
    ASSERT_EQ(result.uiUpdates.size(), 1u);
    EXPECT_EQ(result.uiUpdates[0].index, kPopup);
    EXPECT_EQ(result.uiUpdates[0].uiFlags, sdk::PF_PUI_DISABLED);
    EXPECT_EQ(result.uiUpdates[0].name, "Kind");
}

}  // namespace
}  // namespace vireon::test
