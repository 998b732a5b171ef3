#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "headless/world.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// A time in 1 / scale seconds with the step that the caller named.
struct LayerTime {
    std::int32_t value = 0;
    std::int32_t step = 1;
    std::uint32_t scale = 30;
};

/// The time fields of the in-data.
struct TimeSettings {
    std::int32_t current = 0;
    std::int32_t step = 1;
    std::int32_t localStep = 1;
    std::int32_t total = 300;
    std::uint32_t scale = 30;
};

/// How a layer that is set shows itself where hosts differ.
enum class LayerAnswer {
    kPixels,  ///< as a world with pixels
    kZeroed,  ///< success with a zeroed record
    kError,   ///< error 515; where no error can be given, as kZeroed
};

/// Everything that a host may do one way or another. May be changed between commands.
struct HostSettings {
    std::int32_t applicationId = sdk::kHostAfterEffects;
    std::int16_t versionMajor = 13;
    std::int16_t versionMinor = 27;
    std::int32_t quality = sdk::PF_Quality_HI;
    TimeSettings time;
    std::int32_t field = sdk::PF_Field_FRAME;

    /// Size of the source layer at full resolution. 0: the input layer's size divided by the
    /// downsample factor.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    /// Present resolution; a denominator of 0 is handed on as it is.
    sdk::PF_RationalScale downsampleX{1, 1};
    sdk::PF_RationalScale downsampleY{1, 1};
    sdk::PF_RationalScale pixelAspect{1, 1};

    /// false: the in-data holds no basic suite at all.
    bool basicSuite = true;
    /// Suites, by name and version, that cannot be acquired.
    std::set<std::pair<std::string, std::int32_t>> withheldSuites;

    /// Row padding and direction of all worlds that the host makes.
    std::int32_t extraRowBytes = 20;
    bool negativeRowBytes = false;
    /// Output worlds, and new worlds that are not asked to be cleared, begin with a byte pattern.
    bool scribble = true;
    /// Compares the pixels of every world handed out for reading before and after the command.
    bool checkInputs = true;

    /// What the layer entries of the parameter array hold in UPDATE_PARAMS_UI.
    LayerAnswer layersInUpdateUi = LayerAnswer::kPixels;
    /// What a check-out of a layer parameter gives inside SMART_RENDER.
    LayerAnswer layersInSmartRender = LayerAnswer::kPixels;
    /// Smart check-outs answer the part of the layer inside the request instead of the whole layer.
    bool cropCheckouts = false;
    /// Input pixels come as null, with success.
    bool nullInput = false;
    /// The output comes as null, with success.
    bool nullOutput = false;
    /// The answer to "is this a render engine".
    bool renderEngine = false;

    /// Path of the plug-in file that get_platform_data answers, UTF-8, separators as they stand.
    /// Empty: the path of the library.
    std::string pluginPath;

    /// Called for every progress and abort call (abort: total 0); a non-zero answer is given to the
    /// effect, which must end its command with it.
    std::function<sdk::PF_Err(std::int32_t current, std::int32_t total)> onProgress;
    /// Called with every parameter record that is checked out, for values that depend on the time.
    std::function<void(std::int32_t index, const LayerTime& time, sdk::PF_ParamDef& def)>
        onCheckout;
    /// Chooses the picture of a layer at a time; gets the one that is set.
    std::function<std::shared_ptr<World>(std::int32_t index, const LayerTime& time,
                                         std::shared_ptr<World> chosen)>
        layerAt;
    /// Last word on the in-data of every command.
    std::function<void(sdk::PF_InData& inData)> adjustInData;
};

}  // namespace vireon::headless
