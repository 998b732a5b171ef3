#include "headless/host_state.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"
#include "headless/error.h"

namespace vireon::headless {
namespace {

constexpr std::size_t kHandleGuard = 16;
constexpr std::uint8_t kHandlePattern = 0x9D;
/// A broken effect may do the same wrong for every row; the first cases tell enough.
constexpr std::size_t kMostViolations = 50;

void SetGuards(std::uint8_t* base, std::uint64_t size) {
    std::memset(base, kHandlePattern, kHandleGuard);
    std::memset(base + kHandleGuard + size, kHandlePattern, kHandleGuard);
}

std::uint8_t* BaseOf(void* data) {
    return static_cast<std::uint8_t*>(data) - kHandleGuard;
}

/// False when the size with its guards does not fit into a size_t.
bool Fits(std::uint64_t size) {
    return size <= std::numeric_limits<std::size_t>::max() / 2 - 2 * kHandleGuard;
}

}  // namespace

std::unique_ptr<HandleBlock> HandleBlock::make(std::uint64_t size) {
    if (!Fits(size)) {
        return nullptr;
    }
    auto block = std::make_unique<HandleBlock>();
    // The bytes stay untouched: blocks of gigabytes are asked for and hardly used.
    auto* const base =
        static_cast<std::uint8_t*>(std::malloc(static_cast<std::size_t>(size) + 2 * kHandleGuard));
    if (base == nullptr) {
        return nullptr;
    }
    SetGuards(base, size);
    block->data = base + kHandleGuard;
    block->size = size;
    return block;
}

HandleBlock::~HandleBlock() {
    release();
}

void HandleBlock::release() {
    if (data != nullptr) {
        std::free(BaseOf(data));
        data = nullptr;
    }
}

bool HandleBlock::resize(std::uint64_t newSize) {
    if (!Fits(newSize)) {
        return false;
    }
    auto* const base = static_cast<std::uint8_t*>(
        std::realloc(BaseOf(data), static_cast<std::size_t>(newSize) + 2 * kHandleGuard));
    if (base == nullptr) {
        return false;
    }
    SetGuards(base, newSize);
    data = base + kHandleGuard;
    size = newSize;
    return true;
}

bool HandleBlock::intact() const {
    const std::uint8_t* const base = BaseOf(data);
    for (std::size_t i = 0; i < kHandleGuard; ++i) {
        if (base[i] != kHandlePattern || base[kHandleGuard + size + i] != kHandlePattern) {
            return false;
        }
    }
    return true;
}

HostState::HostState(const EffectLibrary& effect, HostSettings hostSettings)
    : library(effect), settings(std::move(hostSettings)) {
    Parameter input;
    input.registered.param_type = sdk::PF_Param_LAYER;
    input.registered.u.ld.dephault = sdk::PF_LayerDefault_MYSELF;
    input.current = input.registered;
    parameters.push_back(std::move(input));
}

HostState::~HostState() {
    for (const auto& [block, made] : blocks) {
        std::free(block);
    }
}

void HostState::violate(std::string text) {
    if (context == nullptr) {
        return;
    }
    std::vector<std::string>& violations = context->violations;
    if (violations.size() < kMostViolations &&
        std::find(violations.begin(), violations.end(), text) == violations.end()) {
        violations.push_back(std::move(text));
    }
}

void HostState::addBytes(std::size_t count) {
    bytes += count;
    peakBytes = std::max(peakBytes, bytes);
}

Balance HostState::balance() const {
    Balance out;
    for (const auto& [suite, count] : suites) {
        if (count != 0) {
            out.suites.emplace(suite, count);
        }
    }
    out.parameters = static_cast<std::int64_t>(parameterRecords.size());
    for (const auto& [name, made] : worlds) {
        out.worlds += made.reported ? 0 : 1;
    }
    for (const auto& [handle, block] : handles) {
        if (!block->reported) {
            out.handles += block->kept ? 0 : 1;
            out.locks += std::max<std::int64_t>(0, block->locks);
        }
    }
    for (const auto& [id, count] : pathsOut) {
        out.paths += count;
    }
    for (const auto& [block, made] : blocks) {
        out.blocks += made.reported ? 0 : 1;
    }
    if (context != nullptr) {
        out.layerPixels = static_cast<std::int64_t>(context->outLayers.size());
    }
    out.bytes = bytes;
    return out;
}

void HostState::writeOff() {
    suites.clear();
    parameterRecords.clear();
    pathsOut.clear();
    for (auto& [name, made] : worlds) {
        made.reported = true;
    }
    for (auto& [handle, block] : handles) {
        block->reported = block->reported || !block->kept || block->locks > 0;
    }
    for (auto& [block, made] : blocks) {
        made.reported = true;
    }
}

std::shared_ptr<World> HostState::layerFor(CommandContext& running, std::int32_t index,
                                           const LayerTime& time) const {
    std::shared_ptr<World> world = parameters[static_cast<std::size_t>(index)].layer;
    if (settings.layerAt) {
        world = settings.layerAt(index, time, std::move(world));
    }
    if (world == nullptr || !running.depth || world->depth() == *running.depth) {
        return world;
    }
    std::shared_ptr<World>& converted = running.converted[world.get()];
    if (converted == nullptr) {
        converted = world->convertedTo(*running.depth);
        // Keeps the original, whose address is the key, alive as long as the conversion.
        running.lent[world.get()] = {world, settings.checkInputs ? world->checksum() : 0};
    }
    return converted;
}

sdk::PF_EffectWorld HostState::lend(CommandContext& running,
                                    const std::shared_ptr<World>& world) const {
    if (!running.lent.contains(world.get())) {
        running.lent[world.get()] = {world, settings.checkInputs ? world->checksum() : 0};
    }
    sdk::PF_EffectWorld record = world->record();
    record.world_flags &= ~sdk::PF_WorldFlag_WRITEABLE;
    return record;
}

LayerTime HostState::presentTime() const {
    return {settings.time.current, settings.time.step, settings.time.scale};
}

std::unique_ptr<World> HostState::makeWorld(std::int32_t width, std::int32_t height, Depth depth,
                                            bool cleared) const {
    WorldOptions options;
    options.width = width;
    options.height = height;
    options.depth = depth;
    options.extraRowBytes = settings.extraRowBytes;
    options.negativeRowBytes = settings.negativeRowBytes;
    options.pixelAspect = settings.pixelAspect;
    options.firstPixels = cleared             ? FirstPixels::kZero
                          : settings.scribble ? FirstPixels::kScribble
                                              : FirstPixels::kUndefined;
    return std::make_unique<World>(options);
}

double HostState::factor(const sdk::PF_RationalScale& scale) {
    return scale.den == 0 || scale.num <= 0 ? 1.0 : static_cast<double>(scale.num) / scale.den;
}

std::int32_t HostState::fullWidth() const {
    const auto& input = parameters.front().layer;
    if (settings.fullWidth != 0 || input == nullptr) {
        return settings.fullWidth;
    }
    return static_cast<std::int32_t>(std::lround(input->width() / factor(settings.downsampleX)));
}

std::int32_t HostState::fullHeight() const {
    const auto& input = parameters.front().layer;
    if (settings.fullHeight != 0 || input == nullptr) {
        return settings.fullHeight;
    }
    return static_cast<std::int32_t>(std::lround(input->height() / factor(settings.downsampleY)));
}

std::int32_t HostState::presentWidth() const {
    return static_cast<std::int32_t>(fullWidth() * factor(settings.downsampleX));
}

std::int32_t HostState::presentHeight() const {
    return static_cast<std::int32_t>(fullHeight() * factor(settings.downsampleY));
}

sdk::PF_ParamDef HostState::currentRecord(std::int32_t index) const {
    const Parameter& parameter = parameters[static_cast<std::size_t>(index)];
    sdk::PF_ParamDef record = parameter.current;
    if (parameter.kind() == sdk::PF_Param_POINT) {
        const auto fixed = [](double pixels) {
            return static_cast<sdk::PF_Fixed>(std::lround(pixels * sdk::kFixedOne));
        };
        sdk::PF_PointDef& point = record.u.td;
        if (parameter.point) {
            point.x_value = fixed(parameter.point->first);
            point.y_value = fixed(parameter.point->second);
        } else {
            const double percent = 1.0 / (100.0 * sdk::kFixedOne);
            point.x_value = fixed(point.x_dephault * percent * presentWidth());
            point.y_value = fixed(point.y_dephault * percent * presentHeight());
        }
    }
    return record;
}

void HostState::fillInData() {
    const sdk::PF_InData before = inData;
    inData = {};
    inData.inter = InteractTable();
    inData.utils = UtilTable();
    inData.effect_ref = reference();
    inData.quality = settings.quality;
    inData.version = {settings.versionMajor, settings.versionMinor};
    inData.appl_id = settings.applicationId;
    inData.num_params = static_cast<std::int32_t>(parameters.size());
    inData.current_time = settings.time.current;
    inData.time_step = settings.time.step;
    inData.total_time = settings.time.total;
    inData.local_time_step = settings.time.localStep;
    inData.time_scale = settings.time.scale;
    inData.field = settings.field;
    inData.width = fullWidth();
    inData.height = fullHeight();
    if (const auto& input = parameters.front().layer) {
        inData.extent_hint = input->bounds();
    }
    inData.downsample_x = settings.downsampleX;
    inData.downsample_y = settings.downsampleY;
    inData.pixel_aspect_ratio = settings.pixelAspect;
    inData.global_data = before.global_data;
    inData.sequence_data = before.sequence_data;
    inData.frame_data = before.frame_data;
    inData.pica_basicP = settings.basicSuite ? BasicSuiteTable() : nullptr;
    if (settings.adjustInData) {
        settings.adjustInData(inData);
    }
}

void HostState::freeKept(sdk::PF_Handle& handle) {
    const auto it = handles.find(handle);
    if (it != handles.end()) {
        removeBytes(static_cast<std::size_t>(it->second->size));
        handles.erase(it);
    }
    handle = nullptr;
}

void HostState::adoptKeptData(std::int32_t command) {
    const auto adopt = [this](sdk::PF_Handle& own, sdk::PF_Handle left, const char* what) {
        if (left == nullptr || left == own) {
            return;
        }
        const auto it = handles.find(left);
        if (it == handles.end()) {
            violate(std::string(what) + " is no handle of the host's");
            return;
        }
        it->second->kept = true;
        it->second->locks = std::max<std::int64_t>(0, it->second->locks);
        own = left;
    };
    switch (command) {
        case sdk::PF_Cmd_GLOBAL_SETUP:
            adopt(inData.global_data, outData.global_data, "global data");
            break;
        case sdk::PF_Cmd_SEQUENCE_SETUP:
        case sdk::PF_Cmd_SEQUENCE_RESETUP:
        case sdk::PF_Cmd_SEQUENCE_FLATTEN:
            adopt(inData.sequence_data, outData.sequence_data, "sequence data");
            break;
        case sdk::PF_Cmd_FRAME_SETUP:
            adopt(inData.frame_data, outData.frame_data, "frame data");
            break;
        case sdk::PF_Cmd_GLOBAL_SETDOWN: freeKept(inData.global_data); break;
        case sdk::PF_Cmd_SEQUENCE_SETDOWN: freeKept(inData.sequence_data); break;
        case sdk::PF_Cmd_FRAME_SETDOWN: freeKept(inData.frame_data); break;
        default: break;
    }
}

void HostState::checkPixels(const CommandContext& finished) {
    for (const auto& [address, lent] : finished.lent) {
        if (settings.checkInputs && lent.world->checksum() != lent.checksum) {
            violate("the effect wrote pixels that it may only read");
        }
        const std::string damage = lent.world->damage();
        if (!damage.empty()) {
            violate("world of a layer: " + damage);
        }
    }
    if (finished.output != nullptr) {
        const std::string damage = finished.output->damage();
        if (!damage.empty()) {
            violate("output world: " + damage);
        }
    }
    for (const auto& [name, made] : worlds) {
        const std::string damage = made.reported ? std::string() : made.world->damage();
        if (!damage.empty()) {
            violate("world of the effect: " + damage);
        }
    }
}

void HostState::inspect(const CommandContext& finished, sdk::PF_Err error) {
    checkPixels(finished);
    for (const auto& [handle, block] : handles) {
        if (!block->reported && !block->intact()) {
            violate("the effect wrote beside the bytes of a handle");
        }
    }
    if (finished.cancelCode != 0 && error != finished.cancelCode) {
        violate("the effect was told to stop with " + std::to_string(finished.cancelCode) +
                " and answered " + std::to_string(error));
    }
    if (finished.command == sdk::PF_Cmd_PARAMS_SETUP && error == 0 &&
        outData.num_params != static_cast<std::int32_t>(parameters.size())) {
        violate("num_params is " + std::to_string(outData.num_params) + " after " +
                std::to_string(parameters.size() - 1) + " add_param calls");
    }
    if (std::memchr(outData.return_msg, '\0', sizeof outData.return_msg) == nullptr) {
        violate("the return message is not ended by a zero");
        outData.return_msg[sizeof outData.return_msg - 1] = '\0';
    }
}

CommandResult HostState::run(CommandContext& running, const RawArguments& arguments) {
    if (context != nullptr) {
        throw HeadlessError("a command is running in this host already");
    }
    if (running.command == sdk::PF_Cmd_PARAMS_SETUP) {
        parameters.erase(parameters.begin() + 1, parameters.end());
    }
    fillInData();
    outData = {};
    // Byte for byte, padding included, because the comparison below is.
    sdk::PF_InData given;
    std::memcpy(&given, &inData, sizeof given);

    struct ContextScope {
        HostState& host;
        ~ContextScope() { host.context = nullptr; }
    } leave{*this};
    context = &running;

    sdk::PF_Err error = 0;
    {
        const CurrentHostScope current(*this);
        try {
            error = library.entryPoint()(running.command, &inData, &outData, arguments.params,
                                         arguments.output, arguments.extra);
        } catch (...) {
            violate("an exception left the entry point");
            error = sdk::PF_Err_INTERNAL_STRUCT_DAMAGED;
        }
    }
    if (std::memcmp(&given, &inData, sizeof given) != 0) {
        violate("the effect wrote into the in-data");
        inData = given;
    }
    adoptKeptData(running.command);
    inspect(running, error);

    CommandResult result;
    result.command = running.command;
    result.error = error;
    result.out = outData;
    result.leaks = balance().text();
    writeOff();
    if (running.hookFailure) {
        std::rethrow_exception(running.hookFailure);
    }
    result.uiUpdates = std::move(running.uiUpdates);
    result.violations = running.violations;
    return result;
}

CommandResult HostState::run(std::int32_t command, const RawArguments& arguments) {
    CommandContext running;
    running.command = command;
    return run(running, arguments);
}

std::string RectText(const sdk::PF_LRect& rect) {
    return "(" + std::to_string(rect.left) + ", " + std::to_string(rect.top) + ", " +
           std::to_string(rect.right) + ", " + std::to_string(rect.bottom) + ")";
}

}  // namespace vireon::headless
