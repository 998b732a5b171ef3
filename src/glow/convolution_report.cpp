#include "glow/convolution_report.h"

namespace vireon {

const char* FormName(ConvolutionForm form) {
    switch (form) {
        case ConvolutionForm::kNone: return "none";
        case ConvolutionForm::kPlain: return "plain";
        case ConvolutionForm::kCache: return "stamp cache";
        case ConvolutionForm::kRunCache: return "run cache";
        case ConvolutionForm::kDirect: return "direct";
        case ConvolutionForm::kRuns: return "runs";
        case ConvolutionForm::kRanges: return "ranges";
    }
    return "";
}

}  // namespace vireon
