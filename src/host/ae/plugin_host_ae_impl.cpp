#include "host/ae/plugin_host_ae_impl.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "host/ae/host_helpers.h"
#include "host/ae/plugin_update_ae_impl.h"
#include "host/ae/ratio.h"
#include "host/ae/suite_access.h"
#include "host/application_codes.h"
#include "host/result_codes.h"
#include "image/copy_pixels.h"
#include "platform/libraries.h"

namespace vireon {

using namespace sdk;

namespace {

// From interface 12.12 on the host redraws controls when they are updated.
constexpr std::int32_t kUiRefreshVersion = 1212;

PF_LRect Widened(const ShortRect& r) {
    return {r.left, r.top, r.right, r.bottom};
}

}  // namespace

PluginHost_AE_Impl::PluginHost_AE_Impl(PF_InData* inData, PF_OutData* outData, PF_ParamDef** params,
                                       PF_EffectWorld* output)
    : records_{inData, outData},
      in_(inData),
      out_(outData),
      params_(params),
      output_(output),
      path_(this),
      suites_(inData->pica_basicP) {
    if (hostVersion() < kWorldSuiteVersion) return;
    const void* suite = nullptr;
    acquireSuite(kWorldSuite2.name, kWorldSuite2.version, "Couldn't load kPFWorldSuite.", &suite);
    worldSuite_ = static_cast<const PF_WorldSuite2*>(suite);
    if (isApplication(kPremierePro)) return;
    acquireSuite(kColorParamSuite1.name, kColorParamSuite1.version,
                 "Couldn't load kPFColorParamSuite.", &suite);
    colorParamSuite_ = static_cast<const PF_ColorParamSuite1*>(suite);
}

PluginHost_AE_Impl::~PluginHost_AE_Impl() {
    if (colorParamSuite_ != nullptr) {
        releaseSuite(kColorParamSuite1.name, kColorParamSuite1.version, nullptr);
    }
    if (worldSuite_ != nullptr) releaseSuite(kWorldSuite2.name, kWorldSuite2.version, nullptr);
}

std::int32_t PluginHost_AE_Impl::setSizeOverride(std::int32_t width, std::int32_t height) {
    widthOverride_ = width;
    heightOverride_ = height;
    return kSuccess;
}

std::int32_t PluginHost_AE_Impl::hostVersion() const {
    return in_->version.major * 100 + in_->version.minor;
}

bool PluginHost_AE_Impl::hasWorldSuite() const {
    return hostVersion() >= kWorldSuiteVersion && worldSuite_ != nullptr;
}

std::int32_t PluginHost_AE_Impl::width() const {
    if (output_ == nullptr) return widthOverride_;
    return widthOverride_ == -1 || widthOverride_ == -2 ? output_->width : widthOverride_;
}

std::int32_t PluginHost_AE_Impl::height() const {
    if (output_ == nullptr) return heightOverride_;
    return heightOverride_ == -1 || heightOverride_ == -2 ? output_->height : heightOverride_;
}

std::int32_t PluginHost_AE_Impl::outputOriginX() const {
    return isApplication(kAfterEffects) && output_ != nullptr ? output_->origin_x : 0;
}

std::int32_t PluginHost_AE_Impl::outputOriginY() const {
    return isApplication(kAfterEffects) && output_ != nullptr ? output_->origin_y : 0;
}

std::int32_t PluginHost_AE_Impl::fill(PF_EffectWorld* world) const {
    if (world == nullptr) return kBadCallbackParameter;
    return in_->utils->fill(in_->effect_ref, nullptr, nullptr, world);
}

std::int32_t PluginHost_AE_Impl::clearOutput() {
    return fill(output_);
}

std::int32_t PluginHost_AE_Impl::clearRectangle(PluginRaster_API& raster,
                                                const ShortRect* rectangle) {
    if (rectangle == nullptr) return clearRaster(raster);
    RasterLayout layout;
    const std::int32_t error = rasterLayout(raster, layout);
    if (error != 0) return error;
    if (layout.pixels == nullptr) return kSuccess;
    const std::int32_t columns = rectangle->right - rectangle->left;
    if (columns <= 0) return kSuccess;
    const auto bytes =
        static_cast<std::size_t>(columns) * static_cast<std::size_t>(layout.bytesPerPixel);
    for (std::int32_t y = rectangle->top; y <= rectangle->bottom; ++y) {
        std::memset(
            layout.row(y) + static_cast<std::ptrdiff_t>(rectangle->left) * layout.bytesPerPixel, 0,
            bytes);
    }
    return kSuccess;
}

std::int32_t PluginHost_AE_Impl::clearRaster(PluginRaster_API& raster) {
    if (const RasterLayout* own = raster.layoutRecord()) {
        ClearPixels(*own);
        return kSuccess;
    }
    return fill(WorldOf(raster));
}

std::int32_t PluginHost_AE_Impl::copyInputToOutput() {
    if (params_ == nullptr || params_[0] == nullptr || output_ == nullptr) {
        return kBadCallbackParameter;
    }
    return in_->utils->copy(in_->effect_ref, &params_[0]->u.ld, output_, nullptr, nullptr);
}

std::int32_t PluginHost_AE_Impl::copyRectangle(PluginRaster_API& source,
                                               PluginRaster_API& destination,
                                               const ShortRect& sourceRectangle,
                                               const ShortRect& destinationRectangle) {
    PF_EffectWorld* from = WorldOf(source);
    PF_EffectWorld* to = WorldOf(destination);
    if (from == nullptr || to == nullptr) return kBadCallbackParameter;
    PF_LRect sourceRect = Widened(sourceRectangle);
    PF_LRect destinationRect = Widened(destinationRectangle);
    return in_->utils->copy(in_->effect_ref, from, to, &sourceRect, &destinationRect);
}

std::int32_t PluginHost_AE_Impl::copyRaster(PluginRaster_API& source,
                                            PluginRaster_API& destination) {
    PF_EffectWorld* from = WorldOf(source);
    PF_EffectWorld* to = WorldOf(destination);
    if (from == nullptr || to == nullptr) return kBadCallbackParameter;
    return in_->utils->copy(in_->effect_ref, from, to, nullptr, nullptr);
}

bool PluginHost_AE_Impl::isHighQuality() const {
    return in_->quality == PF_Quality_HI;
}
double PluginHost_AE_Impl::downsampleX() const {
    return RatioOr1(in_->downsample_x);
}
double PluginHost_AE_Impl::downsampleY() const {
    return RatioOr1(in_->downsample_y);
}
double PluginHost_AE_Impl::pixelAspectRatio() const {
    return RatioOr1(in_->pixel_aspect_ratio);
}

void** PluginHost_AE_Impl::newHandle(std::int64_t bytes) {
    const auto magnitude =
        bytes < 0 ? 0 - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
    return in_->utils->host_new_handle(magnitude);
}

void* PluginHost_AE_Impl::lockHandle(void** handle) {
    return in_->utils->host_lock_handle(handle);
}

void PluginHost_AE_Impl::unlockHandle(void** handle) {
    in_->utils->host_unlock_handle(handle);
}

void PluginHost_AE_Impl::disposeHandle(void** handle) {
    in_->utils->host_dispose_handle(handle);
}

void PluginHost_AE_Impl::reportError(const char* message) {
    ReportError(records_, message);
}

std::int32_t PluginHost_AE_Impl::progress(std::int32_t current, std::int32_t total) {
    return in_->inter.progress(in_->effect_ref, current, total);
}

bool PluginHost_AE_Impl::isApplication(std::int32_t code) const {
    return in_->appl_id == code;
}

std::int32_t PluginHost_AE_Impl::acquireSuite(const char* name, std::int32_t version,
                                              const char* message, const void** suite) {
    return AcquireSuite(records_, {name, version}, message, suite);
}

std::int32_t PluginHost_AE_Impl::releaseSuite(const char* name, std::int32_t version,
                                              const char* message) {
    return ReleaseSuite(records_, {name, version}, message);
}

void PluginHost_AE_Impl::growOutput(std::int32_t width, std::int32_t height, std::int32_t a,
                                    std::int32_t b) {
    if (output_ == nullptr) return;
    if (output_->width >= width && output_->height >= height) return;
    output_->width = width;
    output_->height = height;
    // Half of what is left, in the 16 bits that the oldest hosts had for it; the sign is kept.
    const auto half = [](std::int32_t size, std::int32_t taken) {
        const auto rest = static_cast<std::int16_t>(static_cast<std::uint32_t>(size) -
                                                    static_cast<std::uint32_t>(taken));
        return static_cast<std::int16_t>(rest / 2);
    };
    out_->origin.h = half(out_->width, a);
    out_->origin.v = half(out_->height, b);
}

bool PluginHost_AE_Impl::hasGlobalAndSequenceData() const {
    return in_->global_data != nullptr && in_->sequence_data != nullptr;
}

void* PluginHost_AE_Impl::loadLibrary(const char* name) {
    void* const module = platform::LoadLibraryByName(name);
    if (module == nullptr) {
        out_->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
        in_->utils->ansi.sprintf(out_->return_msg, "Cannot load DLL %.239s", name);
    }
    return module;
}

std::uint64_t PluginHost_AE_Impl::handleSize(void** handle) {
    const auto* suite = suites_.get<PF_HandleSuite1>(kHandleSuite2);
    return suite != nullptr ? suite->host_get_handle_size(handle) : 0;
}

std::int32_t PluginHost_AE_Impl::resizeHandle(void**& handle, std::uint64_t bytes) {
    const auto* suite = suites_.get<PF_HandleSuite1>(kHandleSuite2);
    return suite != nullptr ? suite->host_resize_handle(bytes, &handle) : kBadCallbackParameter;
}

std::uint32_t PluginHost_AE_Impl::timeScale() const {
    return in_->time_scale;
}

std::int32_t PluginHost_AE_Impl::currentTime() const {
    return in_->current_time;
}

std::int32_t PluginHost_AE_Impl::stepOf(std::int32_t step) const {
    return fieldsCountAsFrames_ && in_->field != PF_Field_FRAME ? 2 * step : step;
}

std::int32_t PluginHost_AE_Impl::timeStep() const {
    return stepOf(in_->time_step);
}

std::int32_t PluginHost_AE_Impl::totalTime() const {
    return in_->total_time;
}

std::int32_t PluginHost_AE_Impl::localTimeStep() const {
    return stepOf(in_->local_time_step);
}

void PluginHost_AE_Impl::userWords(std::int32_t& first, std::int32_t& second) const {
    first = userWords_[0];
    second = userWords_[1];
}

void PluginHost_AE_Impl::setUserWords(std::int32_t first, std::int32_t second) {
    userWords_[0] = first;
    userWords_[1] = second;
}

float PluginHost_AE_Impl::shutterPhase() const {
    return static_cast<float>(FromFixed(in_->shutter_phase));
}

float PluginHost_AE_Impl::shutterAngle() const {
    return static_cast<float>(FromFixed(in_->shutter_angle));
}

template <typename Question>
std::int32_t PluginHost_AE_Impl::askApplication(Question&& question) {
    const void* table = nullptr;
    const std::int32_t error =
        acquireSuite(kAppSuite6.name, kAppSuite6.version, "Failed to acquire PFAppSuite4.", &table);
    if (error != kSuccess) return error;
    const std::int32_t answer = question(*static_cast<const PFAppSuite4*>(table));
    releaseSuite(kAppSuite6.name, kAppSuite6.version, nullptr);
    return answer;
}

std::int32_t PluginHost_AE_Impl::backgroundColour(std::uint16_t& red, std::uint16_t& green,
                                                  std::uint16_t& blue) {
    PF_App_Color colour{};
    const std::int32_t error = askApplication(
        [&colour](const PFAppSuite4& suite) { return suite.PF_AppGetBgColor(&colour); });
    red = colour.red;
    green = colour.green;
    blue = colour.blue;
    return error;
}

bool PluginHost_AE_Impl::canRefreshUi() {
    if (hostVersion() >= kUiRefreshVersion) return true;
    requestUiRefresh();
    return false;
}

std::int32_t PluginHost_AE_Impl::isRenderEngine(bool& answer) {
    PF_Boolean flag = 0;
    const std::int32_t error = askApplication(
        [&flag](const PFAppSuite4& suite) { return suite.PF_IsRenderEngine(&flag); });
    answer = flag != 0;
    return error;
}

std::int32_t PluginHost_AE_Impl::interfaceColour(std::int32_t element, std::uint16_t& red,
                                                 std::uint16_t& green, std::uint16_t& blue) {
    PF_App_Color colour{};
    const std::int32_t error = askApplication([&colour, element](const PFAppSuite4& suite) {
        return suite.PF_AppGetColor(static_cast<std::int16_t>(element), &colour);
    });
    red = colour.red;
    green = colour.green;
    blue = colour.blue;
    return error;
}

void PluginHost_AE_Impl::hostVersionParts(std::int32_t& major, std::int32_t& minor) const {
    major = in_->version.major;
    minor = in_->version.minor;
}

std::int32_t PluginHost_AE_Impl::transfer(std::int32_t, float, float, PluginRaster_API&,
                                          PluginRaster_API&, bool) {
    // Never offered; see offersTransfer.
    return kBadCallbackParameter;
}

std::string PluginHost_AE_Impl::resourceFilePath() {
    char path[kPlatformPathLength] = {};
    if (in_->utils->get_platform_data(in_->effect_ref, PF_PlatData_RES_FILE_PATH_DEPRECATED,
                                      path) != 0) {
        return {};
    }
    path[kPlatformPathLength - 1] = '\0';
    return path;
}

void PluginHost_AE_Impl::setReturnMessage(const char* first, const char* second) {
    // The host's buffer is unbounded for its sprintf; the text is cut to what it holds.
    constexpr std::size_t kRoom = PF_MAX_EFFECT_MSG_LEN - 1;
    const auto firstLength = static_cast<int>(std::min(std::strlen(first), kRoom));
    const int secondLength = static_cast<int>(kRoom) - firstLength;
    in_->utils->ansi.sprintf(out_->return_msg, "%.*s\n%.*s", firstLength, first, secondLength,
                             second);
}

std::int32_t PluginHost_AE_Impl::fieldCount() const {
    return in_->field != PF_Field_FRAME ? 2 : 1;
}

bool PluginHost_AE_Impl::frameRate(float& rate) const {
    rate = static_cast<float>(in_->time_scale) / static_cast<float>(in_->local_time_step);
    return true;
}

void PluginHost_AE_Impl::requestUiRefresh() {
    out_->out_flags |= PF_OutFlag_REFRESH_UI;
}

std::unique_ptr<PluginUpdate_API> PluginHost_AE_Impl::parameterUpdate() {
    return std::make_unique<PluginUpdate_AE_Impl>(*this);
}

// The host's own mathematics.
double PluginHost_AE_Impl::mathSqrt(double x) {
    return in_->utils->ansi.sqrt(x);
}
double PluginHost_AE_Impl::mathFloor(double x) {
    return in_->utils->ansi.floor(x);
}
double PluginHost_AE_Impl::mathCeil(double x) {
    return in_->utils->ansi.ceil(x);
}
double PluginHost_AE_Impl::mathAbs(double x) {
    return in_->utils->ansi.fabs(x);
}
double PluginHost_AE_Impl::mathSin(double x) {
    return in_->utils->ansi.sin(x);
}
double PluginHost_AE_Impl::mathCos(double x) {
    return in_->utils->ansi.cos(x);
}
double PluginHost_AE_Impl::mathTan(double x) {
    return in_->utils->ansi.tan(x);
}
double PluginHost_AE_Impl::mathAtan(double x) {
    return in_->utils->ansi.atan(x);
}
double PluginHost_AE_Impl::mathExp(double x) {
    return in_->utils->ansi.exp(x);
}
double PluginHost_AE_Impl::mathLog(double x) {
    return in_->utils->ansi.log(x);
}
double PluginHost_AE_Impl::mathPow(double base, double exponent) {
    return in_->utils->ansi.pow(base, exponent);
}

}  // namespace vireon
