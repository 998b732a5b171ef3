#include "tools/worker/records.h"

#include <cstring>

namespace vireon::worker {

using headless::Depth;
using headless::Picture;
using headless::World;

namespace {

/// Calls `copy(picture row, world row)` for every row with pointers to bytes.
template <typename WorldType, typename PictureType, typename Copy>
void ForEachRow(WorldType& world, PictureType& picture, Copy copy) {
    for (std::int32_t y = 0; y < world.height(); ++y) {
        auto* const row = picture.template row<std::uint8_t>(y);
        switch (world.depth()) {
            case Depth::k8: copy(row, world.template row<sdk::PF_Pixel8>(y)); break;
            case Depth::k16: copy(row, world.template row<sdk::PF_Pixel16>(y)); break;
            case Depth::kFloat: copy(row, world.template row<sdk::PF_PixelFloat>(y)); break;
        }
    }
}

double FromFixed(sdk::PF_Fixed value) {
    return value / 65536.0;
}

}  // namespace

std::shared_ptr<World> WorldFromPicture(const Picture& picture, const headless::RenderJob& job) {
    headless::WorldOptions options;
    options.width = picture.width;
    options.height = picture.height;
    options.depth = headless::DepthFromBits(picture.bits);
    options.originX = picture.originX;
    options.originY = picture.originY;
    options.extraRowBytes = job.extraRowBytes;
    options.negativeRowBytes = job.negativeRowBytes;
    options.pixelAspect = {job.pixelAspect.numerator, job.pixelAspect.denominator};
    auto world = std::make_shared<World>(options);
    ForEachRow(*world, picture, [&picture](const std::uint8_t* from, void* to) {
        std::memcpy(to, from, picture.rowBytes());
    });
    return world;
}

Picture PictureFromWorld(const World& world) {
    Picture picture(world.width(), world.height(), headless::BitsPerChannel(world.depth()));
    picture.originX = world.bounds().left;
    picture.originY = world.bounds().top;
    ForEachRow(world, picture, [&picture](std::uint8_t* to, const void* from) {
        std::memcpy(to, from, picture.rowBytes());
    });
    return picture;
}

headless::ParameterDescription DescribeParameter(std::int32_t index,
                                                 const headless::Parameter& parameter) {
    const sdk::PF_ParamDef& def = parameter.registered;
    headless::ParameterDescription result;
    result.index = index;
    result.id = parameter.id();
    result.kind = parameter.kind();
    result.name = parameter.name();
    result.flags = def.flags;
    result.uiFlags = def.ui_flags;
    result.text = parameter.text;
    const auto range = [&result](double validMin, double validMax, double sliderMin,
                                 double sliderMax, double dephault) {
        result.validMin = validMin;
        result.validMax = validMax;
        result.sliderMin = sliderMin;
        result.sliderMax = sliderMax;
        result.defaultValue = dephault;
    };
    switch (parameter.kind()) {
        case sdk::PF_Param_SLIDER:
            range(def.u.sd.valid_min, def.u.sd.valid_max, def.u.sd.slider_min, def.u.sd.slider_max,
                  def.u.sd.dephault);
            break;
        case sdk::PF_Param_FIX_SLIDER:
            range(FromFixed(def.u.fd.valid_min), FromFixed(def.u.fd.valid_max),
                  FromFixed(def.u.fd.slider_min), FromFixed(def.u.fd.slider_max),
                  FromFixed(def.u.fd.dephault));
            result.precision = def.u.fd.precision;
            result.displayFlags = def.u.fd.display_flags;
            break;
        case sdk::PF_Param_FLOAT_SLIDER:
            range(static_cast<double>(def.u.fs_d.valid_min),
                  static_cast<double>(def.u.fs_d.valid_max),
                  static_cast<double>(def.u.fs_d.slider_min),
                  static_cast<double>(def.u.fs_d.slider_max),
                  static_cast<double>(def.u.fs_d.dephault));
            result.precision = def.u.fs_d.precision;
            result.displayFlags = def.u.fs_d.display_flags;
            break;
        case sdk::PF_Param_ANGLE:
            range(FromFixed(def.u.ad.valid_min), FromFixed(def.u.ad.valid_max), 0, 0,
                  FromFixed(def.u.ad.dephault));
            break;
        case sdk::PF_Param_CHECKBOX: range(0, 1, 0, 1, def.u.bd.dephault); break;
        case sdk::PF_Param_POPUP:
            range(1, def.u.pd.num_choices, 1, def.u.pd.num_choices, def.u.pd.dephault);
            break;
        case sdk::PF_Param_POINT:
            result.defaultValue = FromFixed(def.u.td.x_dephault);
            result.defaultY = FromFixed(def.u.td.y_dephault);
            break;
        default: break;
    }
    return result;
}

}  // namespace vireon::worker
