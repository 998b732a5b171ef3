#pragma once

#include <cstdint>

#include "render/parameter_ids.h"

namespace vireon {

enum class ParameterKind {
    kLayer,
    kFloatSlider,
    kFixedSlider,
    kCheckbox,
    kPopup,
    kPoint,
    kGroupStart,
    kGroupEnd,
};

/// How a control behaves beyond its kind.
struct ParameterTraits {
    bool supervised = false;      ///< the host tells the effect when the user moves it
    bool constant = false;        ///< may not change over time
    bool startCollapsed = false;  ///< a group that begins closed
    bool disabled = false;        ///< begins greyed out
};

/// One parameter as it is registered with the host. The table of them is the one place where names,
/// ids, ranges and defaults stand; saved projects depend on every id and on the order.
struct ParameterSpec {
    ParameterIndex index;
    std::int32_t id;
    const char* name;
    ParameterKind kind;
    ParameterTraits traits{};
    /// Range that the value can take, and that its slider shows.
    double validMin = 0.0;
    double validMax = 0.0;
    double sliderMin = 0.0;
    double sliderMax = 0.0;
    /// A slider's value, a checkbox's 0 or 1, a popup's choice from 1, a point's per cent.
    double initial = 0.0;
    /// A popup's entries with vertical bars between them; "(-" is a separator line that counts.
    const char* choices = nullptr;
};

/// The parameters 1 to 30 in the order of their index; 0, the input layer, is the host's own.
inline constexpr std::int32_t kRegisteredParameters = kParamCount - 1;
const ParameterSpec (&ParameterTable())[kRegisteredParameters];

/// Entries of a popup's text, separator lines counted.
std::int32_t CountChoices(const char* choices);

}  // namespace vireon
