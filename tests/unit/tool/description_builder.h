#pragma once

#include <string>

#include "headless/remote/messages.h"

namespace vireon::tool {

/// What an effect might register, parameter by parameter.
class DescriptionBuilder {
  public:
    DescriptionBuilder() { add(sdk::PF_Param_LAYER, ""); }

    headless::ParameterDescription& add(std::int32_t kind, const std::string& name) {
        headless::ParameterDescription parameter;
        parameter.index = static_cast<std::int32_t>(description_.parameters.size());
        parameter.kind = kind;
        parameter.name = name;
        return description_.parameters.emplace_back(parameter);
    }
    void slider(const std::string& name, double min, double max, double dephault) {
        headless::ParameterDescription& parameter = add(sdk::PF_Param_FLOAT_SLIDER, name);
        parameter.validMin = min;
        parameter.validMax = max;
        parameter.defaultValue = dephault;
    }
    const headless::Description& get() const { return description_; }

  private:
    headless::Description description_;
};

}  // namespace vireon::tool
