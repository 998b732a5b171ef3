#pragma once

#include "sdk/sdk.h"

namespace vireon {

/// Tells the host which rectangle a render will fill: the layer's whole area at the render's
/// resolution, joined with what the input has, within the request.
/// \return the host's code of the input's check-out; the rectangles are set in any case
sdk::PF_Err SmartPreRender(sdk::PF_InData& in, sdk::PF_PreRenderExtra& extra);

/// Renders one frame of a pre-render: checks parameters and pixels out, brings the input to the
/// output's size and renders.
/// \return 0; the first host code that stopped it; the render's result. Never throws.
sdk::PF_Err SmartRender(sdk::PF_InData& in, sdk::PF_OutData& out, sdk::PF_SmartRenderExtra& extra);

}  // namespace vireon
