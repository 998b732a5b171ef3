#include "headless/host.h"

#include <utility>

#include "headless/host_state.h"
#include "headless/parameter_array.h"

namespace vireon::headless {

Host::Host(const EffectLibrary& library, HostSettings settings)
    : state_(std::make_unique<HostState>(library, std::move(settings))) {}

Host::~Host() = default;

HostSettings& Host::settings() {
    return state_->settings;
}

const HostSettings& Host::settings() const {
    return state_->settings;
}

CommandResult Host::about() {
    return state_->run(sdk::PF_Cmd_ABOUT);
}

CommandResult Host::globalSetup() {
    return state_->run(sdk::PF_Cmd_GLOBAL_SETUP);
}

CommandResult Host::paramsSetup() {
    return state_->run(sdk::PF_Cmd_PARAMS_SETUP);
}

CommandResult Host::sequenceSetup() {
    return state_->run(sdk::PF_Cmd_SEQUENCE_SETUP);
}

CommandResult Host::sequenceResetup() {
    return state_->run(sdk::PF_Cmd_SEQUENCE_RESETUP);
}

CommandResult Host::sequenceFlatten() {
    return state_->run(sdk::PF_Cmd_SEQUENCE_FLATTEN);
}

CommandResult Host::sequenceSetdown() {
    return state_->run(sdk::PF_Cmd_SEQUENCE_SETDOWN);
}

CommandResult Host::globalSetdown() {
    return state_->run(sdk::PF_Cmd_GLOBAL_SETDOWN);
}

CommandResult Host::updateParamsUi() {
    CommandContext running;
    running.command = sdk::PF_Cmd_UPDATE_PARAMS_UI;
    ParameterArray array(*state_);
    if (state_->settings.layersInUpdateUi == LayerAnswer::kPixels) {
        array.fillLayers(*state_, running);
    }
    CommandResult result = state_->run(running, {.params = array.pointers()});
    array.reportChanges(result);
    return result;
}

CommandResult Host::userChangedParam(std::int32_t index) {
    ParameterArray array(*state_);
    sdk::PF_UserChangedParamExtra extra{index};
    CommandResult result =
        state_->run(sdk::PF_Cmd_USER_CHANGED_PARAM, {.params = array.pointers(), .extra = &extra});
    array.adoptChanges(*state_, result);
    return result;
}

CommandResult Host::doDialog() {
    ParameterArray array(*state_);
    CommandResult result = state_->run(sdk::PF_Cmd_DO_DIALOG, {.params = array.pointers()});
    array.reportChanges(result);
    return result;
}

std::vector<CommandResult> Host::setUp() {
    std::vector<CommandResult> results;
    results.push_back(globalSetup());
    if (results.back().error == 0) {
        results.push_back(paramsSetup());
    }
    if (results.back().error == 0) {
        results.push_back(sequenceSetup());
    }
    return results;
}

CommandResult Host::send(std::int32_t command, const RawArguments& arguments) {
    return state_->run(command, arguments);
}

const CallCounts& Host::calls() const {
    return state_->calls;
}

void Host::resetCalls() {
    state_->calls = {};
}

FaultPlan& Host::faults() {
    return state_->faults;
}

void Host::cancelFrom(std::uint64_t nth) {
    if (nth == 0) {
        state_->cancelCountdown.reset();
    } else {
        state_->cancelCountdown = nth;
    }
}

Balance Host::balance() const {
    return state_->balance();
}

std::size_t Host::peakBytes() const {
    return state_->peakBytes;
}

void Host::resetPeak() {
    state_->peakBytes = state_->bytes;
}

void Host::offerSuite(const std::string& name, std::int32_t version, const void* table) {
    state_->extraSuites[{name, version}] = table;
}

}  // namespace vireon::headless
