#include "host/plugin_host_api.h"

#include <cmath>

#include "host/result_codes.h"

namespace vireon {

// A host without mathematics of its own does with the C library's.
float PluginHost_API::mathSqrt(float x) {
    return static_cast<float>(mathSqrt(double{x}));
}
double PluginHost_API::mathSqrt(double x) {
    return std::sqrt(x);
}
float PluginHost_API::mathFloor(float x) {
    return static_cast<float>(mathFloor(double{x}));
}
double PluginHost_API::mathFloor(double x) {
    return std::floor(x);
}
float PluginHost_API::mathCeil(float x) {
    return static_cast<float>(mathCeil(double{x}));
}
double PluginHost_API::mathCeil(double x) {
    return std::ceil(x);
}
float PluginHost_API::mathAbs(float x) {
    return static_cast<float>(mathAbs(double{x}));
}
double PluginHost_API::mathAbs(double x) {
    return std::fabs(x);
}
float PluginHost_API::mathSin(float x) {
    return static_cast<float>(mathSin(double{x}));
}
double PluginHost_API::mathSin(double x) {
    return std::sin(x);
}
float PluginHost_API::mathCos(float x) {
    return static_cast<float>(mathCos(double{x}));
}
double PluginHost_API::mathCos(double x) {
    return std::cos(x);
}
float PluginHost_API::mathTan(float x) {
    return static_cast<float>(mathTan(double{x}));
}
double PluginHost_API::mathTan(double x) {
    return std::tan(x);
}
float PluginHost_API::mathAtan(float x) {
    return static_cast<float>(mathAtan(double{x}));
}
double PluginHost_API::mathAtan(double x) {
    return std::atan(x);
}
float PluginHost_API::mathExp(float x) {
    return static_cast<float>(mathExp(double{x}));
}
double PluginHost_API::mathExp(double x) {
    return std::exp(x);
}
float PluginHost_API::mathLog(float x) {
    return static_cast<float>(mathLog(double{x}));
}
double PluginHost_API::mathLog(double x) {
    return std::log(x);
}
float PluginHost_API::mathPow(float base, float exponent) {
    return static_cast<float>(mathPow(double{base}, double{exponent}));
}
double PluginHost_API::mathPow(double base, double exponent) {
    return std::pow(base, exponent);
}

std::int32_t PluginHost_API::resizeHandle(void**&, std::uint64_t) {
    return kBadCallbackParameter;
}

void PluginHost_API::userWords(std::int32_t& first, std::int32_t& second) const {
    first = 0;
    second = 0;
}

// A host whose parameters do not change over time answers with the command's.
std::int32_t PluginHost_API::sliderAt(std::int32_t index, std::int32_t kind, const HostTime&,
                                      double& value) {
    return sliderValue(index, kind, value);
}

std::int32_t PluginHost_API::fixedAt(std::int32_t index, std::int32_t, const HostTime&,
                                     double& value) {
    return sliderValue(index, 0, value);
}

std::int32_t PluginHost_API::integerAt(std::int32_t index, std::int32_t, const HostTime&,
                                       std::int32_t& value) {
    const std::int32_t error = popupValue(index, value);
    if (error == kSuccess) ++value;
    return error;
}

std::int32_t PluginHost_API::popupAt(std::int32_t index, std::int32_t, const HostTime&,
                                     std::int32_t& choice) {
    return popupValue(index, choice);
}

std::int32_t PluginHost_API::pointAt(std::int32_t index, const HostTime&, double& x, double& y) {
    return pointValue(index, x, y);
}

std::int32_t PluginHost_API::spacePointAt(std::int32_t index, const HostTime&, double& x, double& y,
                                          double& z) {
    z = 0.0;
    return pointValue(index, x, y);
}

void PluginHost_API::defaultLayerRequest(std::int32_t index, std::int32_t& first,
                                         std::int32_t& count, std::int32_t& offset) const {
    first = index;
    count = 1;
    offset = 0;
}

std::int32_t PluginHost_API::backgroundColour(std::uint16_t& red, std::uint16_t& green,
                                              std::uint16_t& blue) {
    red = green = blue = 0;
    return kBadCallbackParameter;
}

std::int32_t PluginHost_API::isRenderEngine(bool& answer) {
    answer = false;
    return kBadCallbackParameter;
}

std::int32_t PluginHost_API::interfaceColour(std::int32_t, std::uint16_t& red, std::uint16_t& green,
                                             std::uint16_t& blue) {
    red = green = blue = 0;
    return kBadCallbackParameter;
}

void PluginHost_API::hostVersionParts(std::int32_t& major, std::int32_t& minor) const {
    major = 0;
    minor = 0;
}

bool PluginHost_API::frameRate(float& rate) const {
    rate = 0.0f;
    return true;
}

void PluginHost_API::sizeLimit(std::int32_t& width, std::int32_t& height) const {
    width = -1;
    height = -1;
}

}  // namespace vireon
