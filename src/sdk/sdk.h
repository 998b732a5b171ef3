/// @file
/// The binary contract between an After-Effects-type host and an effect: records, callbacks, suites
/// and constants. Nothing here depends on the effect or on a host implementation.
#pragma once

#include "sdk/callbacks.h"
#include "sdk/constants.h"
#include "sdk/effect_records.h"
#include "sdk/layout.h"
#include "sdk/parameters.h"
#include "sdk/suite_list.h"
#include "sdk/suites.h"
#include "sdk/types.h"
#include "sdk/worlds.h"
