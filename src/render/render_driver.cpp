#include "render/render_driver.h"

#include <memory>
#include <utility>

#include "glow/fused_frame.h"
#include "glow/glow_pipeline.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"
#include "render/custom_shape.h"
#include "render/glow_params.h"
#include "render/glow_settings.h"
#include "render/parameter_ids.h"
#include "render/raster_ops.h"
#include "simd/level.h"

namespace vireon {
namespace {

// A layer parameter from its check-out to its check-in.
class CheckedOutLayer {
  public:
    CheckedOutLayer() = default;
    CheckedOutLayer(const CheckedOutLayer&) = delete;
    CheckedOutLayer& operator=(const CheckedOutLayer&) = delete;
    ~CheckedOutLayer() {
        if (host_ == nullptr) return;
        raster_.reset();
        host_->checkinLayer(index_);
    }

    void checkOut(PluginHost_API& host, std::int32_t index, std::int32_t identifier) {
        raster_ = host.checkoutLayer(index, identifier);
        host_ = &host;
        index_ = index;
    }
    /// Null when the layer is absent.
    PluginRaster_API* raster() const { return raster_.get(); }

  private:
    PluginHost_API* host_ = nullptr;
    std::int32_t index_ = 0;
    std::unique_ptr<PluginRaster_API> raster_;
};

// A raster and, where it is not float, the float copy that the pipeline works on instead.
class WorkRaster {
  public:
    /// Keeps `original` without owning it. A copy that cannot be made leaves the original in place
    /// and the reason in `error`.
    void use(PluginHost_API& host, PluginRaster_API* original, std::int32_t& error) {
        current_ = original;
        if (original == nullptr || IsFloatRaster(host, *original)) return;
        std::int32_t copyError = 0;
        copy_ = ConvertToFloat(host, *original, copyError);
        if (copy_) {
            current_ = copy_.get();
        } else if (error == 0) {
            error = copyError != 0 ? copyError : kRenderFailed;
        }
    }
    PluginRaster_API* get() const { return current_; }
    PluginRaster_API& operator*() const { return *current_; }
    bool isCopy() const { return static_cast<bool>(copy_); }

  private:
    PluginRaster_API* current_ = nullptr;
    ScopedRaster copy_;
};

// Shows the custom shape to the host object for as long as the kernel lives.
class ScopedCustomShape {
  public:
    explicit ScopedCustomShape(PluginHost_API& host) : host_(host) {
        host_.setCustomShape(nullptr);
    }
    ScopedCustomShape(const ScopedCustomShape&) = delete;
    ScopedCustomShape& operator=(const ScopedCustomShape&) = delete;
    ~ScopedCustomShape() { host_.setCustomShape(nullptr); }

    void set(GlowKernel kernel) {
        kernel_ = std::move(kernel);
        host_.setCustomShape(&kernel_);
    }

  private:
    PluginHost_API& host_;
    GlowKernel kernel_;
};

// Everything that a render takes and makes. Members are declared in the reverse of the order in
// which they have to be given back: the working raster and the views go first, then the layers,
// each before the float copy that was made of it.
struct Frame {
    explicit Frame(PluginHost_API& host) : customShape(host) {}

    ScopedCustomShape customShape;
    WorkRaster shape;
    CheckedOutLayer shapeLayer;
    WorkRaster mask;
    CheckedOutLayer maskLayer;
    WorkRaster source;
    WorkRaster output;
    WorkRaster input;
    CheckedOutLayer glowLayer;
    std::unique_ptr<PluginRaster_API> hostInput;
    std::unique_ptr<PluginRaster_API> hostOutput;
    ScopedRaster working;
};

// A memory raster takes the channel order of the host's frames, whose pixels it will hold; never
// their depth, for which it may be too small.
void AdoptFormat(PluginRaster_API& working, const RasterLayout& output) {
    RasterLayout* record = working.layoutRecord();
    if (record == nullptr || DepthOfFormat(output.formatCode) != working.depth()) return;
    record->formatCode = output.formatCode;
}

// The raster that the glow is grown from when the frame goes through full-size stages. Without it
// the output is cleared and the result says why.
std::int32_t MakeWorkingRaster(PluginHost_API& host, Frame& frame, const RasterLayout& input,
                               const RasterLayout& output) {
    std::int32_t error = 0;
    frame.working = CreateWorkingRaster(host, input.width, input.height,
                                        DepthOfFormat(input.formatCode), /*clear=*/true, error);
    if (!frame.working) {
        ClearRaster(host, *frame.hostOutput);
        return error != 0 ? error : kRenderFailed;
    }
    AdoptFormat(*frame.working, output);
    return kSuccess;
}

std::int32_t RenderInStages(PluginHost_API& host, Frame& frame, GlowSettings& settings) {
    PluginRaster_API& hostInput = *frame.hostInput;
    PluginRaster_API& hostOutput = *frame.hostOutput;
    PluginRaster_API* const glowLayer = frame.glowLayer.raster();

    std::int32_t error =
        CopyRaster(host, *frame.working, glowLayer != nullptr ? *glowLayer : hostInput);
    if (error != 0) {
        ClearRaster(host, hostOutput);
        return error;
    }
    frame.input.use(host, &hostInput, error);
    frame.output.use(host, &hostOutput, error);
    frame.source.use(host, frame.working.get(), error);
    frame.mask.use(host, frame.maskLayer.raster(), error);
    if (error != 0) {
        ClearRaster(host, hostOutput);
        return error;
    }
    const std::int32_t result =
        RenderGlow(host, settings, {*frame.source, *frame.input, *frame.output, frame.mask.get()});
    if (!frame.output.isCopy()) return result;
    const std::int32_t written = ConvertFromFloat(host, hostOutput, *frame.output);
    return result != kSuccess ? result : written;
}

std::int32_t RenderFrame(PluginHost_API& host, Frame& frame) {
    PluginRaster_API& hostOutput = *frame.hostOutput;

    std::int32_t error = 0;
    FrameLayouts layouts;
    layouts.input = DescribeRaster(host, *frame.hostInput, error);
    if (error == 0) error = host.outputLayout(layouts.output);
    if (error != 0) {
        ClearRaster(host, hostOutput);
        return error;
    }

    const GlowParams params = ReadGlowParams(host, layouts.input.width, layouts.input.height);
    GlowSettings settings;
    settings.fill(params);
    const simd::KernelTable* kernels =
        CanFuseStages(host, settings) ? simd::ActiveKernels() : nullptr;
    if (kernels == nullptr) {
        error = MakeWorkingRaster(host, frame, layouts.input, layouts.output);
        if (error != 0) return error;
    }

    if (params.shape == kCustomGlowShape) {
        frame.shapeLayer.checkOut(host, kParamShapeLayer, kShapeLayerId);
        if (frame.shapeLayer.raster() == nullptr) {
            // A glow of no shape: the frame is transparent.
            ClearRaster(host, hostOutput);
            return kSuccess;
        }
    }
    if (params.maskRadius != 0.0) {
        frame.maskLayer.checkOut(host, kParamMaskLayer, kMaskLayerId);
    }
    frame.glowLayer.checkOut(host, kParamGlowLayer, kGlowLayerId);

    frame.shape.use(host, frame.shapeLayer.raster(), error);
    layouts.source = layouts.input;
    if (error == 0 && frame.glowLayer.raster() != nullptr) {
        layouts.source = DescribeRaster(host, *frame.glowLayer.raster(), error);
    }
    if (error != 0) {
        ClearRaster(host, hostOutput);
        return error;
    }
    if (frame.shape.get() != nullptr) {
        frame.customShape.set(MakeCustomShape(ViewRaster(host, *frame.shape)));
    }

    if (kernels != nullptr) {
        const GlowKernel* shape = FindShape(host, settings);
        if (shape != nullptr && shape->hasTexels() && CanFusePixels(layouts)) {
            return RenderFusedFrame(host, *kernels, settings, layouts, *shape, hostOutput);
        }
        error = MakeWorkingRaster(host, frame, layouts.input, layouts.output);
        if (error != 0) return error;
    }
    return RenderInStages(host, frame, settings);
}

}  // namespace

std::int32_t DriveRender(PluginHost_API& host) {
    Frame frame(host);
    frame.hostInput = host.parameterRaster(kParamInput);
    frame.hostOutput = host.outputRaster();
    if (!frame.hostInput || !frame.hostOutput) return kRenderFailed;
    return RenderFrame(host, frame);
}

}  // namespace vireon
