#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "headless/parameters.h"
#include "headless/settings.h"
#include "headless/world.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// Pointers for a command sent by hand; null where the command carries none.
struct RawArguments {
    sdk::PF_ParamDef** params = nullptr;
    sdk::PF_EffectWorld* output = nullptr;
    void* extra = nullptr;
};

/// What one command came to.
struct CommandResult {
    std::int32_t command = 0;
    /// What the entry point returned.
    sdk::PF_Err error = 0;
    /// The out-data as the effect left it.
    sdk::PF_OutData out{};
    /// Appearance changes, in order.
    std::vector<UiUpdate> uiUpdates;
    /// What the command left checked out, acquired or allocated; empty when nothing.
    std::string leaks;
    /// What the effect did against the rules of the interface.
    std::vector<std::string> violations;

    /// out.return_msg as text.
    std::string message() const;
    /// No leaks and no violations, whatever the error.
    bool clean() const { return leaks.empty() && violations.empty(); }
    /// Command, error, message, leaks and violations for a log.
    std::string report() const;
};

/// A layer that the effect announced in a pre-render.
struct LayerAnnouncement {
    std::int32_t index = 0;
    std::int32_t id = 0;
    sdk::PF_RenderRequest request{};
    LayerTime time;
    sdk::PF_LRect resultRect{};
    sdk::PF_LRect maxResultRect{};
    /// The layer at the depth of the request; null for none.
    std::shared_ptr<World> world;
};

/// What to render: a rectangle in layer coordinates at the present resolution.
struct RenderRequest {
    sdk::PF_LRect rect{};
    Depth depth = Depth::kFloat;
    std::int32_t field = sdk::PF_Field_FRAME;
    std::int32_t channelMask = sdk::PF_ChannelMask_ARGB;
    bool preserveRgbOfZeroAlpha = false;
};

/// Outcome of a pre-render, good for any number of later renders. Owns the effect's private data.
class PreRender {
  public:
    PreRender() = default;
    ~PreRender();
    PreRender(PreRender&& other) noexcept;
    PreRender& operator=(PreRender&& other) noexcept;

    CommandResult result;
    RenderRequest request;
    /// As the effect left it.
    sdk::PF_PreRenderOutput output{};
    std::vector<LayerAnnouncement> layers;

  private:
    void releaseData();
};

/// A rendered frame.
struct RenderOutcome {
    /// The commands that were sent for it, in order.
    std::vector<CommandResult> commands;
    /// The picture, at its place in layer coordinates; null when nothing was to be rendered.
    std::shared_ptr<World> output;

    /// The first error of the commands, 0 when all succeeded.
    sdk::PF_Err error() const;
    bool clean() const;
    std::string report() const;
};

/// Name of a command, e.g. "SMART_RENDER".
std::string CommandName(std::int32_t command);

}  // namespace vireon::headless
