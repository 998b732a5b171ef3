#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Host;
using headless::Slot;
using headless::UiUpdate;

constexpr std::int32_t kDisabled = 32;
const std::pair<std::string, std::int32_t> kParamUtils{"PF Param Utils Suite", 2};

/// The controls that decide what is enabled.
struct Choice {
    std::int32_t shape = 1;
    std::int32_t transferMode = 5;
    bool preventOverbrights = true;
    bool enableMask = false;
    bool maskLayer = false;
};

std::vector<Choice> AllChoices() {
    std::vector<Choice> choices;
    for (std::int32_t shape = 1; shape <= kShapeCustom; ++shape) {
        for (std::int32_t mode = 1; mode <= 23; ++mode) {
            for (const int bits : {0, 1, 2, 3, 4, 5, 6, 7}) {
                choices.push_back({shape, mode, (bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0});
            }
        }
    }
    return choices;
}

/// Control and appearance, in the order of the updates.
std::vector<std::pair<std::int32_t, std::int32_t>> ExpectedUpdates(const Choice& choice) {
    const bool mask = choice.enableMask && !choice.maskLayer;
    const auto flags = [](bool enabled) { return enabled ? 0 : kDisabled; };
    return {{kSourceOpacity, flags(choice.transferMode != 1)},
            {kOverbrightClamp, flags(choice.preventOverbrights)},
            {kMaskLayer, flags(mask)},
            {kMaskRadius, flags(mask)},
            {kMaskFalloff, flags(mask)},
            {kWidthAspect, flags(mask)},
            {kMaskCenter, flags(mask)},
            {kHeightAspect, flags(mask)},
            {kShapeLayer, flags(choice.shape == kShapeCustom)}};
}

std::vector<std::pair<std::int32_t, std::int32_t>> Seen(const CommandResult& result) {
    std::vector<std::pair<std::int32_t, std::int32_t>> updates;
    for (const UiUpdate& update : result.uiUpdates) {
        updates.emplace_back(update.index, update.uiFlags);
    }
    return updates;
}

void Set(Host& host, const Choice& choice, const std::shared_ptr<headless::World>& layer) {
    host.setPopup(kShape, choice.shape);
    host.setPopup(kTransferMode, choice.transferMode);
    host.setCheckbox(kPreventOverbrights, choice.preventOverbrights);
    host.setCheckbox(kEnableMask, choice.enableMask);
    host.setLayer(kMaskLayer, choice.maskLayer ? layer : nullptr);
}

class ParameterUi : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(ParameterUi, FollowsEveryCombinationOfTheControls) {
    headless::HostSettings settings;
    settings.applicationId = GetParam();
    const auto host = ReadyHost(settings);
    const auto layer = MakeWorld(AlphaPicture(4, 4), headless::Depth::k8);
    for (const Choice& choice : AllChoices()) {
        SCOPED_TRACE("shape " + std::to_string(choice.shape) + ", mode " +
                     std::to_string(choice.transferMode) +
                     (choice.preventOverbrights ? ", overbrights" : "") +
                     (choice.enableMask ? ", mask" : "") +
                     (choice.maskLayer ? ", mask layer" : ""));
        Set(*host, choice, layer);
        const CommandResult result = host->updateParamsUi();
        EXPECT_EQ(result.error, 0);
        EXPECT_TRUE(result.clean()) << result.report();
        EXPECT_EQ(Seen(result), ExpectedUpdates(choice));
        EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_REFRESH_UI);
        EXPECT_EQ(result.message(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Hosts, ParameterUi,
                         ::testing::Values(sdk::kHostAfterEffects, sdk::kHostPremierePro,
                                           sdk::kHostFinalCutPro, sdk::kHostMotion));

TEST(ParameterUiLayer, AMaskLayerWithoutPixelsCountsAsNone) {
    headless::HostSettings settings;
    settings.layersInUpdateUi = headless::LayerAnswer::kZeroed;
    const auto host = ReadyHost(settings);
    Set(*host, {1, 5, true, true, true}, MakeWorld(AlphaPicture(4, 4), headless::Depth::k8));
    EXPECT_EQ(Seen(host->updateParamsUi()), ExpectedUpdates({1, 5, true, true, false}));
}

TEST(ParameterUiRecord, CarriesTheWholeControlWithItsUiFlagsReplaced) {
    const auto host = ReadyHost();
    std::vector<sdk::PF_ParamDef> records(static_cast<std::size_t>(kParameterCount));
    std::vector<sdk::PF_ParamDef*> array;
    for (std::int32_t index = 0; index < kParameterCount; ++index) {
        sdk::PF_ParamDef& record = records[static_cast<std::size_t>(index)];
        record = host->parameter(index).current;
        record.ui_flags = sdk::PF_PUI_DISABLED | sdk::PF_PUI_ECW_SEPARATOR;
        array.push_back(&record);
    }
    array.push_back(nullptr);
    const CommandResult result =
        host->send(sdk::PF_Cmd_UPDATE_PARAMS_UI, {array.data(), nullptr, nullptr});
    EXPECT_EQ(Seen(result), ExpectedUpdates({}));
    for (const UiUpdate& update : result.uiUpdates) {
        EXPECT_EQ(update.name, host->parameter(update.index).name());
    }
}

TEST(ParameterUiRecord, RestoresTheNameOfTheShapeLayerWhereTheHostLosesIt) {
    for (const std::int32_t application : {sdk::kHostPremierePro, sdk::kHostAfterEffects}) {
        headless::HostSettings settings;
        settings.applicationId = application;
        const auto host = ReadyHost(settings);
        std::vector<sdk::PF_ParamDef> records(static_cast<std::size_t>(kParameterCount));
        std::vector<sdk::PF_ParamDef*> array;
        for (std::int32_t index = 0; index < kParameterCount; ++index) {
            sdk::PF_ParamDef& record = records[static_cast<std::size_t>(index)];
            record = host->parameter(index).current;
            record.name[0] = 'X';
            array.push_back(&record);
        }
        array.push_back(nullptr);
        const CommandResult result =
            host->send(sdk::PF_Cmd_UPDATE_PARAMS_UI, {array.data(), nullptr, nullptr});
        EXPECT_EQ(result.error, 0);
        ASSERT_EQ(result.uiUpdates.size(), 9u);
        const bool premiere = application == sdk::kHostPremierePro;
        EXPECT_EQ(result.uiUpdates.back().name, premiere ? "Shape Layer" : "Xhape Layer");
        EXPECT_EQ(result.uiUpdates.front().name, "Xource Opacity");
    }
}

TEST(ParameterUiFailure, WithoutTheSuiteNothingChangesAndAMessageIsShown) {
    headless::HostSettings settings;
    settings.withheldSuites.insert(kParamUtils);
    const auto host = ReadyHost(settings);
    const CommandResult result = host->updateParamsUi();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.uiUpdates.empty());
    EXPECT_EQ(result.message(), "Failed to acquire suite.");
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    EXPECT_TRUE(result.leaks.empty()) << result.leaks;
}

TEST(ParameterUiFailure, WithoutAnySuitesTheFailedReleaseIsReportedToo) {
    headless::HostSettings settings;
    settings.basicSuite = false;
    settings.versionMajor = 12;
    settings.versionMinor = 4;
    const auto host = ReadyHost(settings);
    const CommandResult result = host->updateParamsUi();
    EXPECT_EQ(result.error, 0);
    EXPECT_TRUE(result.uiUpdates.empty());
    EXPECT_EQ(result.message(), "Failed to release suite.");
    EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE);
    EXPECT_TRUE(result.clean()) << result.report();
}

TEST(ParameterUiFailure, AControlThatCannotBeUpdatedDoesNotStopTheOthers) {
    const auto host = ReadyHost();
    for (std::uint64_t nth = 1; nth <= 9; ++nth) {
        host->resetCalls();
        host->faults().fail(Slot::kUpdateParamUi, nth, 515);
        const CommandResult result = host->updateParamsUi();
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(host->calls()[Slot::kUpdateParamUi], 9u);
        EXPECT_EQ(result.out.out_flags, sdk::PF_OutFlag_REFRESH_UI);
        EXPECT_TRUE(result.clean()) << result.report();
    }
}

TEST(ParameterUiRecord, LeavesTheHostsRecordsAlone) {
    for (const std::int32_t application : {sdk::kHostPremierePro, sdk::kHostAfterEffects}) {
        headless::HostSettings settings;
        settings.applicationId = application;
        const auto host = ReadyHost(settings);
        EXPECT_TRUE(host->updateParamsUi().clean()) << host->updateParamsUi().report();
    }
}

}  // namespace
}  // namespace vireon::conformance
