#pragma once

#include "headless/remote/messages.h"

namespace vireon::tool {

/// The ratio of small whole numbers that a pixel aspect ratio stands for: 10/11 for 0.90909. The
/// best one with a denominator up to 1000; 1/1 for what is no aspect ratio.
headless::Ratio PixelAspectRatio(double aspect);

}  // namespace vireon::tool
