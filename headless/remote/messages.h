#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "headless/remote/envelope.h"
#include "headless/remote/picture.h"
#include "headless/remote/wire.h"
#include "sdk/constants.h"

namespace vireon::headless {

// What the messages carry. Encode... gives the whole message, header included; Decode... takes a
// payload and throws ProtocolError when it is not exactly one.

/// First words of a worker.
struct Hello {
    std::string system;  ///< "linux" or "windows"
    /// Name of the instruction set that the glow takes in the worker's process, e.g. "avx2".
    std::string simd;
    bool operator==(const Hello&) const = default;
};

struct LoadRequest {
    std::string path;  ///< as the worker's system writes it, UTF-8
    bool operator==(const LoadRequest&) const = default;
};

/// As which host the effect is set up.
struct HostIdentity {
    std::int32_t applicationId = sdk::kHostAfterEffects;
    std::int16_t versionMajor = 13;
    std::int16_t versionMinor = 27;
    bool operator==(const HostIdentity&) const = default;
};

/// What the effect registered for one parameter. Numbers are in the parameter's own unit whatever
/// its kind stores; fields that the kind lacks are 0.
struct ParameterDescription {
    std::int32_t index = 0;
    std::int32_t id = 0;
    std::int32_t kind = 0;  ///< sdk::PF_Param_*
    std::string name;
    std::int32_t flags = 0;    ///< sdk::PF_ParamFlag bits
    std::int32_t uiFlags = 0;  ///< sdk::PF_PUI bits
    double validMin = 0;
    double validMax = 0;
    double sliderMin = 0;
    double sliderMax = 0;
    /// Default of a slider or angle, 0 or 1 of a checkbox, 1-based choice of a popup, percentage of
    /// the layer's width of a point.
    double defaultValue = 0;
    double defaultY = 0;  ///< percentage of the layer's height of a point
    std::int32_t precision = 0;
    std::int32_t displayFlags = 0;
    /// Choices of a popup joined by vertical bars, label of a checkbox.
    std::string text;
    bool operator==(const ParameterDescription&) const = default;

    /// The popup's choices in order; separators ("(-") count.
    std::vector<std::string> choices() const;
};

/// A packed effect version taken apart.
struct EffectVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t bugFix = 0;
    std::uint32_t stage = 0;  ///< sdk::PF_Stage_*
    std::uint32_t build = 0;
    bool operator==(const EffectVersion&) const = default;
};
EffectVersion UnpackVersion(std::uint32_t packed);

/// An effect as it presented itself to a host.
struct Description {
    std::string about;
    std::uint32_t packedVersion = 0;
    std::uint32_t outFlags = 0;   ///< sdk::PF_OutFlag bits
    std::uint32_t outFlags2 = 0;  ///< sdk::PF_OutFlag2 bits
    /// In the order of the host's array, the input layer (index 0) included.
    std::vector<ParameterDescription> parameters;
    bool operator==(const Description&) const = default;

    EffectVersion version() const { return UnpackVersion(packedVersion); }
};

struct Ratio {
    std::int32_t numerator = 1;
    std::uint32_t denominator = 1;
    bool operator==(const Ratio&) const = default;
};

struct ParameterValue {
    /// Value of a slider, angle (degrees), checkbox or popup; column of a point in pixels of the
    /// present resolution.
    double x = 0;
    double y = 0;  ///< row of a point
    bool operator==(const ParameterValue&) const = default;
};

/// One frame to render.
struct RenderJob {
    HostIdentity host;
    bool smart = true;      ///< the smart pair, else the plain commands
    std::int32_t bits = 8;  ///< depth of the frame: 8, 16 or 32
    std::int32_t quality = sdk::PF_Quality_HI;
    Ratio downsampleX;
    Ratio downsampleY;
    Ratio pixelAspect;
    /// Size of the layer at full resolution; 0: the input's size over the downsample factor.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    std::int32_t currentTime = 0;
    std::int32_t timeStep = 1;
    std::uint32_t timeScale = 30;
    /// How the host lays out its worlds.
    std::int32_t extraRowBytes = 20;
    bool negativeRowBytes = false;
    /// By index; parameters without a value have their registered default.
    std::map<std::int32_t, ParameterValue> values;
    Picture input;
    /// By index of the layer parameter; others are none.
    std::map<std::int32_t, Picture> layers;
    bool operator==(const RenderJob&) const = default;
};

/// What became of a frame.
struct RenderResult {
    std::int32_t error = 0;  ///< what the effect's command returned
    std::string message;     ///< the effect's return message
    bool displayError = false;
    /// What the effect wrote where it must not, left behind or did against the interface's rules.
    std::string violations;
    /// Without pixels when the frame failed or nothing was to be rendered.
    Picture output;
    std::uint64_t peakBytes = 0;  ///< most host memory in use at once
    double seconds = 0;           ///< spent in the commands of the frame
    bool operator==(const RenderResult&) const = default;

    bool ok() const { return error == 0 && violations.empty(); }
};

struct Progress {
    std::int32_t current = 0;
    std::int32_t total = 0;
    bool operator==(const Progress&) const = default;
};

/// Why a worker could not answer.
struct Failure {
    enum class Kind : std::uint8_t {
        kNotAnEffect,  ///< the library cannot be loaded or exports no entry point
        kEffect,       ///< the effect failed while being set up, with `code`
        kRequest,      ///< the request made no sense to the host
        kProtocol,     ///< the worker received something that is no message; it ends
    };
    Kind kind = Kind::kRequest;
    std::int32_t code = 0;
    std::string text;
    bool operator==(const Failure&) const = default;
};

/// Which render a message belongs to, so that a late abort cannot hit the next one.
using RenderId = std::uint64_t;

Bytes EncodeHello(const Hello& hello);
Bytes EncodeLoad(const LoadRequest& request);
Bytes EncodeLoaded();
Bytes EncodeDescribe(const HostIdentity& host);
Bytes EncodeDescription(const Description& description);
Bytes EncodeRender(RenderId id, const RenderJob& job);
Bytes EncodeAbort(RenderId id);
Bytes EncodeProgress(RenderId id, const Progress& progress);
Bytes EncodeResult(RenderId id, const RenderResult& result);
Bytes EncodeFailure(const Failure& failure);
Bytes EncodeQuit();

template <typename Content>
struct Tagged {
    RenderId id = 0;
    Content content;
};

Hello DecodeHello(const Bytes& payload);
LoadRequest DecodeLoad(const Bytes& payload);
HostIdentity DecodeDescribe(const Bytes& payload);
Description DecodeDescription(const Bytes& payload);
Tagged<RenderJob> DecodeRender(const Bytes& payload);
RenderId DecodeAbort(const Bytes& payload);
Tagged<Progress> DecodeProgress(const Bytes& payload);
Tagged<RenderResult> DecodeResult(const Bytes& payload);
Failure DecodeFailure(const Bytes& payload);

}  // namespace vireon::headless
