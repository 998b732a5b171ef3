#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/host.h"
#include "host/ae/plugin_host_ae_impl.h"
#include "sdk/sdk.h"

namespace vireon::test {

/// What the host was asked, in order, each kind in a list of its own. Everything is passed on.
struct Spy {
    struct Copy {
        const sdk::PF_EffectWorld* source;
        const sdk::PF_EffectWorld* destination;
        std::optional<sdk::PF_LRect> from;
        std::optional<sdk::PF_LRect> to;
    };
    struct Fill {
        const sdk::PF_Pixel* colour;
        const sdk::PF_LRect* rectangle;
        const sdk::PF_EffectWorld* world;
    };
    struct NewWorld {
        std::int32_t width;
        std::int32_t height;
        std::int32_t flags;
    };
    struct CheckOut {
        std::int32_t index;
        std::int32_t time;
        std::int32_t step;
        std::uint32_t scale;
    };
    using Suite = std::pair<std::string, std::int32_t>;

    std::vector<Copy> copies;
    std::vector<Fill> fills;
    std::vector<NewWorld> newWorlds;
    std::vector<CheckOut> checkOuts;
    std::vector<Suite> acquired;
    std::vector<Suite> released;
};

/// One command as the effect under test sees it. The records are copies, so that a test can change
/// them before it builds its host object; the host's own stay as they are.
struct Command {
    headless::Host& host;
    sdk::PF_InData in;
    sdk::PF_UtilCallbacks utils;
    sdk::SPBasicSuite basic;
    sdk::PF_OutData& out;
    sdk::PF_ParamDef** params;
    sdk::PF_EffectWorld* output;
    Spy spy;
    /// What the command ends with.
    sdk::PF_Err result = 0;

    /// The host object under test over these records.
    PluginHost_AE_Impl makeHost() { return PluginHost_AE_Impl(&in, &out, params, output); }

    std::uint64_t calls(headless::Slot slot) const { return host.calls()[slot]; }
    /// The next call of a function ends with a code of no other meaning.
    void failNext(headless::Slot slot) { host.faults().fail(slot, 1, kInjected); }
    static constexpr sdk::PF_Err kInjected = 777;
};

using Body = std::function<void(Command&)>;

/// Numbers of the parameters that every scene has, one of each kind.
enum ParameterIndex : std::int32_t {
    kInput = 0,
    kFloatSlider = 1,
    kFixedSlider = 2,
    kCheckbox = 3,
    kPopup = 4,
    kPoint = 5,
    kLayer = 6,
    kIntegerSlider = 7,
    kColour = 8,
    kSpacePoint = 9,
    kParameterCount = 10,
};

/// The circumstances of a command.
struct Scene {
    headless::HostSettings settings{};
    headless::Depth depth = headless::Depth::k8;
    /// Null: a layer of 6 x 4 pixels, all different.
    std::shared_ptr<headless::World> input{};
    /// Called before the command.
    std::function<void(headless::Host&)> prepare{};
};

/// A scene in an application and version.
Scene SceneIn(std::int32_t application, std::int16_t major, std::int16_t minor);

/// A layer whose pixels are all different, at a depth.
std::shared_ptr<headless::World> MakeLayer(headless::Depth depth, std::int32_t width = 6,
                                           std::int32_t height = 4, std::int32_t pixelFormat = 0);

/// Runs a body inside a command: FRAME_SETUP, RENDER, USER_CHANGED_PARAM, UPDATE_PARAMS_UI or one
/// without records of its own. Fails the test when the body never ran. What the command did wrong
/// or left behind is in the result.
headless::CommandResult RunIn(std::int32_t command, const Scene& scene, const Body& body);

/// As RunIn, for a command that must leave the host's books in order.
headless::CommandResult RunCleanIn(std::int32_t command, const Scene& scene, const Body& body);

/// A clean RENDER.
headless::CommandResult InRender(const Scene& scene, const Body& body);
inline headless::CommandResult InRender(const Body& body) {
    return InRender(Scene{}, body);
}

}  // namespace vireon::test
