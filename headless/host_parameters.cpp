#include <cmath>
#include <utility>

#include "headless/error.h"
#include "headless/host.h"
#include "headless/host_state.h"

namespace vireon::headless {
namespace {

Parameter& At(HostState& host, std::int32_t index) {
    if (index < 0 || index >= static_cast<std::int32_t>(host.parameters.size())) {
        throw HeadlessError("there is no parameter " + std::to_string(index));
    }
    return host.parameters[static_cast<std::size_t>(index)];
}

Parameter& At(HostState& host, std::int32_t index, std::int32_t kind) {
    Parameter& parameter = At(host, index);
    if (parameter.kind() != kind) {
        throw HeadlessError("parameter " + std::to_string(index) + " \"" + parameter.name() +
                            "\" is of another kind");
    }
    return parameter;
}

sdk::PF_Fixed Fixed(double value) {
    const double scaled = std::trunc(value * sdk::kFixedOne);
    if (!(scaled >= -2147483648.0 && scaled <= 2147483647.0)) {
        throw HeadlessError("a value does not fit into fixed point");
    }
    return static_cast<sdk::PF_Fixed>(scaled);
}

}  // namespace

std::int32_t Host::parameterCount() const {
    return static_cast<std::int32_t>(state_->parameters.size());
}

const Parameter& Host::parameter(std::int32_t index) const {
    return At(*state_, index);
}

std::optional<std::int32_t> Host::findParameter(const std::string& name) const {
    for (std::size_t i = 0; i < state_->parameters.size(); ++i) {
        if (state_->parameters[i].name() == name) {
            return static_cast<std::int32_t>(i);
        }
    }
    return std::nullopt;
}

void Host::setNumber(std::int32_t index, double value) {
    sdk::PF_ParamDefUnion& own = At(*state_, index).current.u;
    switch (At(*state_, index).kind()) {
        case sdk::PF_Param_FLOAT_SLIDER: own.fs_d.value = value; break;
        case sdk::PF_Param_FIX_SLIDER: own.fd.value = Fixed(value); break;
        case sdk::PF_Param_ANGLE: own.ad.value = Fixed(value); break;
        case sdk::PF_Param_SLIDER: own.sd.value = static_cast<std::int32_t>(value); break;
        case sdk::PF_Param_CHECKBOX: own.bd.value = value != 0.0 ? 1 : 0; break;
        case sdk::PF_Param_POPUP: own.pd.value = static_cast<std::int32_t>(value); break;
        default:
            throw HeadlessError("parameter " + std::to_string(index) + " \"" +
                                At(*state_, index).name() + "\" takes no number");
    }
}

double Host::number(std::int32_t index) const {
    const sdk::PF_ParamDefUnion& own = At(*state_, index).current.u;
    switch (At(*state_, index).kind()) {
        case sdk::PF_Param_FLOAT_SLIDER: return own.fs_d.value;
        case sdk::PF_Param_FIX_SLIDER: return static_cast<double>(own.fd.value) / sdk::kFixedOne;
        case sdk::PF_Param_ANGLE: return static_cast<double>(own.ad.value) / sdk::kFixedOne;
        case sdk::PF_Param_SLIDER: return own.sd.value;
        case sdk::PF_Param_CHECKBOX: return own.bd.value;
        case sdk::PF_Param_POPUP: return own.pd.value;
        default:
            throw HeadlessError("parameter " + std::to_string(index) + " \"" +
                                At(*state_, index).name() + "\" has no number");
    }
}

void Host::setFloatSlider(std::int32_t index, double value) {
    At(*state_, index, sdk::PF_Param_FLOAT_SLIDER).current.u.fs_d.value = value;
}

void Host::setFixedSlider(std::int32_t index, double value) {
    At(*state_, index, sdk::PF_Param_FIX_SLIDER).current.u.fd.value = Fixed(value);
}

void Host::setCheckbox(std::int32_t index, bool value) {
    At(*state_, index, sdk::PF_Param_CHECKBOX).current.u.bd.value = value ? 1 : 0;
}

void Host::setPopup(std::int32_t index, std::int32_t value) {
    At(*state_, index, sdk::PF_Param_POPUP).current.u.pd.value = value;
}

void Host::setPoint(std::int32_t index, double x, double y) {
    At(*state_, index, sdk::PF_Param_POINT).point = {x, y};
}

void Host::setLayer(std::int32_t index, std::shared_ptr<World> world) {
    At(*state_, index, sdk::PF_Param_LAYER).layer = std::move(world);
}

void Host::resetParameters() {
    for (std::size_t i = 1; i < state_->parameters.size(); ++i) {
        Parameter& parameter = state_->parameters[i];
        parameter.current = parameter.registered;
        parameter.current.uu.change_flags = 0;
        parameter.layer.reset();
        parameter.point.reset();
    }
}

void Host::setPaths(std::vector<MaskPath> paths) {
    if (state_->context != nullptr) {
        throw HeadlessError("paths cannot be changed while a command runs");
    }
    state_->paths = std::move(paths);
}

}  // namespace vireon::headless
