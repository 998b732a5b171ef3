#pragma once

#include "sdk/sdk.h"

namespace vireon {

/// The host's records of one command, for the parts of the effect that speak its contract.
struct SdkRecords {
    sdk::PF_InData* inData = nullptr;
    sdk::PF_OutData* outData = nullptr;
};

}  // namespace vireon
