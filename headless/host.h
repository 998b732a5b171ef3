#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "headless/books.h"
#include "headless/effect_library.h"
#include "headless/error.h"
#include "headless/parameters.h"
#include "headless/results.h"
#include "headless/settings.h"
#include "headless/slots.h"
#include "headless/world.h"
#include "sdk/sdk.h"

namespace vireon::headless {

struct HostState;

/// A host in miniature with one instance of one effect. It calls the effect the way an
/// After-Effects-type host does, keeps books on everything it hands out, and can misbehave on
/// demand.
///
/// One host object belongs to one thread at a time; several objects may run on several threads.
/// What the effect does wrong ends up in CommandResult::violations and CommandResult::leaks. Things
/// left over by a command are reported once, with that command, and freed with the host.
class Host {
  public:
    /// The library must outlive the host.
    explicit Host(const EffectLibrary& library, HostSettings settings = {});
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    HostSettings& settings();
    const HostSettings& settings() const;

    // Commands. None throws for what the effect does; all throw HeadlessError when they make no
    // sense, such as a render without an input layer.

    CommandResult about();
    CommandResult globalSetup();
    CommandResult paramsSetup();
    CommandResult sequenceSetup();
    CommandResult sequenceResetup();
    CommandResult sequenceFlatten();
    CommandResult sequenceSetdown();
    CommandResult globalSetdown();
    CommandResult updateParamsUi();
    /// Changed values are taken over from the array when the effect marks them as changed.
    CommandResult userChangedParam(std::int32_t index);
    CommandResult doDialog();
    /// globalSetup, paramsSetup and sequenceSetup, stopping at the first error. Answers the
    /// results.
    std::vector<CommandResult> setUp();
    /// Sends any command with any pointers and books it like the others.
    CommandResult send(std::int32_t command, const RawArguments& arguments = {});

    // Frames.

    /// FRAME_SETUP, RENDER and FRAME_SETDOWN at a depth. The output has the size that the effect
    /// asked for, else the size and place of the input layer.
    RenderOutcome renderPlain(Depth depth);
    /// One pre-render.
    PreRender smartPreRender(const RenderRequest& request);
    /// One render for a pre-render. An empty result rectangle gives a null output to the effect.
    RenderOutcome smartRender(PreRender& preRender);
    /// Pre-render and, when it succeeds and its result rectangle is not empty, render.
    RenderOutcome renderSmart(const RenderRequest& request);
    /// A request for the whole layer: (0, 0) to the full size at the present resolution.
    RenderRequest fullRequest(Depth depth) const;

    // Parameters. Index 0 is the input layer; the rest exists after paramsSetup.

    std::int32_t parameterCount() const;
    const Parameter& parameter(std::int32_t index) const;
    std::optional<std::int32_t> findParameter(const std::string& name) const;
    /// Value of a float, fixed or integer slider, angle (degrees), checkbox or popup by its kind.
    void setNumber(std::int32_t index, double value);
    double number(std::int32_t index) const;
    // The typed setters throw HeadlessError when the parameter is of another kind.
    void setFloatSlider(std::int32_t index, double value);
    /// 16.16, truncated.
    void setFixedSlider(std::int32_t index, double value);
    void setCheckbox(std::int32_t index, bool value);
    /// 1-based.
    void setPopup(std::int32_t index, std::int32_t value);
    /// In pixels of the present resolution.
    void setPoint(std::int32_t index, double x, double y);
    /// Null for none. Pictures of another depth than the frame are converted when handed out.
    void setLayer(std::int32_t index, std::shared_ptr<World> world);
    /// The effect's own layer, index 0; its origin places it in layer coordinates.
    void setInput(std::shared_ptr<World> world) { setLayer(0, std::move(world)); }
    /// Back to the registered defaults, no layers but the input.
    void resetParameters();
    void setPaths(std::vector<MaskPath> paths);

    // Observation.

    /// Calls since the start or since resetCalls.
    const CallCounts& calls() const;
    void resetCalls();
    FaultPlan& faults();
    /// Makes progress and abort answer PF_Interrupt_CANCEL from the n-th call on (1 is the next);
    /// 0 ends that.
    void cancelFrom(std::uint64_t nth);
    /// What is out now, except data kept for the effect and what was already reported.
    Balance balance() const;
    /// Largest number of bytes in worlds, handles and blocks at once since resetPeak.
    std::size_t peakBytes() const;
    void resetPeak();

    /// Offers one more suite, or replaces one. `table` must outlive the host.
    void offerSuite(const std::string& name, std::int32_t version, const void* table);

  private:
    std::unique_ptr<HostState> state_;
};

}  // namespace vireon::headless
