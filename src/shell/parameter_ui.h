#pragma once

#include "sdk/sdk.h"

namespace vireon {

/// Enables and disables the controls that depend on others, through the host's suite for parameter
/// looks. Without the suite they stay as they are and the user is told.
/// \return 0 in every case
sdk::PF_Err UpdateParameterUi(sdk::PF_InData& in, sdk::PF_OutData& out, sdk::PF_ParamDef** params);

}  // namespace vireon
