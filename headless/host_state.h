#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "headless/books.h"
#include "headless/effect_library.h"
#include "headless/parameters.h"
#include "headless/results.h"
#include "headless/settings.h"
#include "headless/slots.h"
#include "headless/world.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// A block of host memory. The effect's handle is the address of `data`.
struct HandleBlock {
    void* data = nullptr;
    std::uint64_t size = 0;
    std::int64_t locks = 0;
    /// Set for data that the effect left in the out-data for later commands.
    bool kept = false;
    bool reported = false;

    static std::unique_ptr<HandleBlock> make(std::uint64_t size);
    ~HandleBlock();
    HandleBlock() = default;
    HandleBlock(const HandleBlock&) = delete;
    HandleBlock& operator=(const HandleBlock&) = delete;

    /// False, and nothing changed, when memory is short.
    bool resize(std::uint64_t newSize);
    /// Frees the bytes early; the handle's address stays taken.
    void release();
    /// Whether the guards beside the bytes are as they were.
    bool intact() const;
    sdk::PF_Handle handle() { return &data; }
};

struct MadeWorld {
    std::unique_ptr<World> world;
    bool reported = false;
};

struct MadeBlock {
    std::size_t size = 0;
    bool reported = false;
};

/// A world whose pixels the effect may only read during this command.
struct LentWorld {
    std::shared_ptr<World> world;
    std::uint64_t checksum = 0;
};

/// What belongs to the command that is running.
struct CommandContext {
    std::int32_t command = 0;
    /// Depth of the frame; nothing in commands without one.
    std::optional<Depth> depth;
    /// Records handed out for the announced layers of a smart render, by check-out id.
    std::map<std::int32_t, sdk::PF_EffectWorld> layerRecords;
    std::set<std::int32_t> askedLayers;
    std::set<std::int32_t> outLayers;
    /// The announcements being made (pre-render) or made before (render).
    std::vector<LayerAnnouncement>* announcements = nullptr;
    World* output = nullptr;

    std::map<World*, LentWorld> lent;
    std::map<const World*, std::shared_ptr<World>> converted;
    std::vector<UiUpdate> uiUpdates;
    std::vector<std::string> violations;
    /// The code that progress or abort answered and that the command must end with.
    sdk::PF_Err cancelCode = 0;
    /// Thrown by a hook of the host's user; thrown on when the command is over.
    std::exception_ptr hookFailure;
};

struct HostState {
    HostState(const EffectLibrary& effect, HostSettings hostSettings);
    ~HostState();

    const EffectLibrary& library;
    HostSettings settings;
    std::vector<Parameter> parameters;
    std::vector<MaskPath> paths;
    std::map<std::pair<std::string, std::int32_t>, const void*> extraSuites;

    sdk::PF_InData inData{};
    sdk::PF_OutData outData{};
    /// Its address is the effect reference; the content is only there to be recognised in a
    /// debugger.
    std::uint64_t effectRef = 0x46454C45534E4F43;

    CallCounts calls;
    FaultPlan faults;
    /// Progress and abort calls until cancellation begins.
    std::optional<std::uint64_t> cancelCountdown;

    // Books.
    std::map<std::pair<std::string, std::int32_t>, std::int64_t> suites;
    std::multiset<const sdk::PF_ParamDef*> parameterRecords;
    std::unordered_map<void*, MadeWorld> worlds;  ///< by reserved0 of their record
    std::unordered_map<sdk::PF_Handle, std::unique_ptr<HandleBlock>> handles;
    /// Disposed handles whose address stays taken for a while, so that a second disposal shows.
    std::deque<std::unique_ptr<HandleBlock>> disposedHandles;
    std::map<void*, MadeBlock> blocks;
    std::map<std::uint32_t, std::int64_t> pathsOut;  ///< by path id
    std::size_t bytes = 0;
    std::size_t peakBytes = 0;

    /// The running command; null between commands.
    CommandContext* context = nullptr;

    sdk::PF_ProgPtr reference() { return &effectRef; }
    void violate(std::string text);
    void addBytes(std::size_t count);
    void removeBytes(std::size_t count) { bytes -= count; }
    /// What is out and was not reported before.
    Balance balance() const;
    /// Forgets, or marks as reported, everything that is out.
    void writeOff();

    /// The picture of a layer at a time, at the depth of the command's frame; null for none.
    std::shared_ptr<World> layerFor(CommandContext& running, std::int32_t index,
                                    const LayerTime& time) const;
    /// Notes that the effect may read but not write the world until the command ends, and answers
    /// the read-only record for it.
    sdk::PF_EffectWorld lend(CommandContext& running, const std::shared_ptr<World>& world) const;
    LayerTime presentTime() const;

    /// A world as the settings want it; unless cleared, its pixels hold nothing of use.
    std::unique_ptr<World> makeWorld(std::int32_t width, std::int32_t height, Depth depth,
                                     bool cleared) const;

    /// Present resolution over full resolution; 1 where the denominator is 0.
    static double factor(const sdk::PF_RationalScale& scale);
    std::int32_t fullWidth() const;
    std::int32_t fullHeight() const;
    std::int32_t presentWidth() const;
    std::int32_t presentHeight() const;
    /// Fills the values that depend on the present resolution.
    sdk::PF_ParamDef currentRecord(std::int32_t index) const;

    /// Sends one command: fills the in-data, calls the effect, closes the books.
    CommandResult run(CommandContext& running, const RawArguments& arguments);
    CommandResult run(std::int32_t command, const RawArguments& arguments = {});

  private:
    void fillInData();
    void adoptKeptData(std::int32_t command);
    void freeKept(sdk::PF_Handle& handle);
    void inspect(const CommandContext& finished, sdk::PF_Err error);
    void checkPixels(const CommandContext& finished);
};

/// Whether a rectangle holds no pixel.
inline bool IsEmpty(const sdk::PF_LRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

inline sdk::PF_LRect Intersection(const sdk::PF_LRect& a, const sdk::PF_LRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

std::string RectText(const sdk::PF_LRect& rect);

}  // namespace vireon::headless
