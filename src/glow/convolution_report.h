#pragma once

#include "image/float_image.h"

namespace vireon {

/// How the stamps of one channel are added up.
enum class ConvolutionForm {
    kNone,      ///< not at all: the channel is off or has no light that makes a stamp
    kPlain,     ///< `SplatRow`
    kCache,     ///< every size's stamp is evaluated once; the bits of the plain form
    kRunCache,  ///< and short runs of equal stamps that recur are summed once: other bits
    kDirect,    ///< each run of equal stamps is evaluated anew; the bits of the plain form
    kRuns,      ///< by the corners of areas of equal light, exact but for the last rounding
    kRanges,    ///< by size, where many stamps of nearly one size share a quadratic
};

/// "none", "plain", "stamp cache", "run cache", "direct", "runs" or "ranges".
const char* FormName(ConvolutionForm form);

/// What a convolution did, channel by channel.
struct ConvolutionReport {
    struct Channel {
        ConvolutionForm form = ConvolutionForm::kNone;
        double stamps = 0.0;  ///< pixels that make a stamp; not counted by the plain form
        double texels = 0.0;  ///< of these stamps, with those beyond the image
    };
    Channel channels[kChannels];
};

}  // namespace vireon
