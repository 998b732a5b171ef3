#include "headless/parameter_array.h"

#include <cstring>

namespace vireon::headless {
namespace {

std::string WrittenText(std::size_t index) {
    return "the record of parameter " + std::to_string(index) + " in the array was written";
}

}  // namespace

ParameterArray::ParameterArray(const HostState& host) {
    const std::size_t count = host.parameters.size();
    for (std::size_t i = 0; i < count; ++i) {
        records_.push_back(host.currentRecord(static_cast<std::int32_t>(i)));
    }
    for (sdk::PF_ParamDef& record : records_) {
        pointers_.push_back(&record);
    }
    pointers_.push_back(nullptr);
    given_ = records_;
}

void ParameterArray::setInput(const sdk::PF_EffectWorld& record) {
    records_.front().u.ld = record;
    given_.front() = records_.front();
}

void ParameterArray::fillLayers(const HostState& host, CommandContext& running) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (host.parameters[i].kind() != sdk::PF_Param_LAYER) {
            continue;
        }
        const auto world = host.layerFor(running, static_cast<std::int32_t>(i), host.presentTime());
        if (world != nullptr) {
            records_[i].u.ld = host.lend(running, world);
            given_[i] = records_[i];
        }
    }
}

bool ParameterArray::changed(std::size_t index) const {
    return std::memcmp(&records_[index], &given_[index], sizeof records_[index]) != 0;
}

void ParameterArray::reportChanges(CommandResult& result) const {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (changed(i)) {
            result.violations.push_back(WrittenText(i));
        }
    }
}

void ParameterArray::adoptChanges(HostState& host, CommandResult& result) const {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        const sdk::PF_ParamDef& record = records_[i];
        Parameter& parameter = host.parameters[i];
        if ((record.uu.change_flags & sdk::PF_ChangeFlag_CHANGED_VALUE) == 0) {
            if (changed(i)) {
                result.violations.push_back(WrittenText(i));
            }
        } else if (parameter.kind() == sdk::PF_Param_LAYER) {
            result.violations.push_back("layer parameter " + std::to_string(i) +
                                        " is marked as changed");
        } else {
            parameter.current.u = record.u;
            if (parameter.kind() == sdk::PF_Param_POINT) {
                parameter.point = {static_cast<double>(record.u.td.x_value) / sdk::kFixedOne,
                                   static_cast<double>(record.u.td.y_value) / sdk::kFixedOne};
            }
        }
    }
}

}  // namespace vireon::headless
