#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/world.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// One parameter of the effect: what it registered and what it is set to now.
struct Parameter {
    /// Exactly what the effect gave, with text pointers set to null.
    sdk::PF_ParamDef registered{};
    /// The record that commands hand out: present value and appearance, change word 0.
    sdk::PF_ParamDef current{};
    /// Choices of a popup or label of a checkbox.
    std::string text;
    /// The picture of a layer parameter; null for none.
    std::shared_ptr<World> layer;
    /// Value of a point, set in pixels; not set: the registered percentage of the layer.
    std::optional<std::pair<double, double>> point;

    std::int32_t id() const { return registered.uu.id; }
    std::int32_t kind() const { return registered.param_type; }
    std::string name() const;
};

/// One change of appearance that the effect asked for.
struct UiUpdate {
    std::int32_t index = 0;
    std::int32_t uiFlags = 0;
    std::string name;
};

/// A mask path of the layer, for the path suites. Segment j joins the vertices j and j + 1; the
/// last segment of a closed path returns to the first vertex.
struct MaskPath {
    std::uint32_t id = 1;
    std::vector<sdk::PF_PathVertex> vertices;
    bool open = false;
    bool inverted = false;
    std::int32_t mode = sdk::PF_MaskMode_ADD;
    std::string name;
};

}  // namespace vireon::headless
