#include "tools/worker/session.h"

#include <chrono>
#include <utility>

#include "tools/worker/records.h"

namespace vireon::worker {

using headless::CommandResult;
using headless::Failure;
using headless::HeadlessError;

namespace {

/// Texts longer than this are cut; nobody reads on.
constexpr std::size_t kMaxReport = 16 * 1024;

std::string ReportOf(const headless::RenderOutcome& outcome) {
    std::string report;
    for (const CommandResult& command : outcome.commands) {
        const std::string name = headless::CommandName(command.command);
        for (const std::string& violation : command.violations) {
            report += name + ": " + violation + "\n";
        }
        if (!command.leaks.empty()) {
            report += name + " left behind: " + command.leaks + "\n";
        }
    }
    while (!report.empty() && report.back() == '\n') {
        report.pop_back();
    }
    report.resize(std::min(report.size(), kMaxReport));
    return report;
}

void ApplySettings(const headless::RenderJob& job, headless::HostSettings& settings) {
    settings.quality = job.quality;
    settings.downsampleX = {job.downsampleX.numerator, job.downsampleX.denominator};
    settings.downsampleY = {job.downsampleY.numerator, job.downsampleY.denominator};
    settings.pixelAspect = {job.pixelAspect.numerator, job.pixelAspect.denominator};
    settings.fullWidth = job.fullWidth;
    settings.fullHeight = job.fullHeight;
    settings.time.current = job.currentTime;
    settings.time.step = job.timeStep;
    settings.time.scale = job.timeScale;
    settings.extraRowBytes = job.extraRowBytes;
    settings.negativeRowBytes = job.negativeRowBytes;
}

void ApplyParameters(const headless::RenderJob& job, headless::Host& host) {
    host.resetParameters();
    host.setInput(WorldFromPicture(job.input, job));
    for (const auto& [index, value] : job.values) {
        if (host.parameter(index).kind() == sdk::PF_Param_POINT) {
            host.setPoint(index, value.x, value.y);
        } else {
            host.setNumber(index, value.x);
        }
    }
    for (const auto& [index, picture] : job.layers) {
        host.setLayer(index, WorldFromPicture(picture, job));
    }
}

/// A request for the input as it is: a size that was rounded up at a reduced resolution is larger
/// than the full size times the downsample factor.
headless::RenderRequest WholeInput(const headless::RenderJob& job, headless::Depth depth) {
    headless::RenderRequest request;
    request.rect = {job.input.originX, job.input.originY, job.input.originX + job.input.width,
                    job.input.originY + job.input.height};
    request.depth = depth;
    return request;
}

}  // namespace

Session::~Session() {
    setDown();
}

void Session::setDown() {
    if (host_ != nullptr) {
        host_->sequenceSetdown();
        host_->globalSetdown();
        host_.reset();
    }
}

void Session::load(const std::string& path) {
    setDown();
    library_.reset();
    try {
        library_.emplace(path);
    } catch (const HeadlessError& error) {
        throw SessionError(Failure::Kind::kNotAnEffect, 0, error.what());
    }
}

headless::Host& Session::hostFor(const headless::HostIdentity& identity) {
    if (!library_) {
        throw SessionError(Failure::Kind::kRequest, 0, "no effect is loaded");
    }
    if (host_ != nullptr && identity == identity_) {
        return *host_;
    }
    setDown();
    headless::HostSettings settings;
    settings.applicationId = identity.applicationId;
    settings.versionMajor = identity.versionMajor;
    settings.versionMinor = identity.versionMinor;
    auto host = std::make_unique<headless::Host>(*library_, std::move(settings));
    for (const CommandResult& result : host->setUp()) {
        const std::string name = headless::CommandName(result.command);
        if (result.error != 0) {
            std::string text =
                "the effect failed in " + name + " with error " + std::to_string(result.error);
            if (!result.message().empty()) {
                text += ": " + result.message();
            }
            throw SessionError(Failure::Kind::kEffect, result.error, text);
        }
        if (!result.clean()) {
            throw SessionError(Failure::Kind::kEffect, 0,
                               "the effect broke the rules of its interface in " + result.report());
        }
        if (result.command == sdk::PF_Cmd_GLOBAL_SETUP) {
            packedVersion_ = result.out.my_version;
            outFlags_ = static_cast<std::uint32_t>(result.out.out_flags);
            outFlags2_ = static_cast<std::uint32_t>(result.out.out_flags2);
        }
    }
    host_ = std::move(host);
    identity_ = identity;
    return *host_;
}

headless::Description Session::describe(const headless::HostIdentity& identity) {
    headless::Host& host = hostFor(identity);
    headless::Description description;
    description.about = host.about().message();
    description.packedVersion = packedVersion_;
    description.outFlags = outFlags_;
    description.outFlags2 = outFlags2_;
    for (std::int32_t index = 0; index < host.parameterCount(); ++index) {
        description.parameters.push_back(DescribeParameter(index, host.parameter(index)));
    }
    return description;
}

headless::RenderResult Session::render(
    const headless::RenderJob& job,
    const std::function<sdk::PF_Err(std::int32_t current, std::int32_t total)>& onProgress) {
    const headless::Depth depth = headless::DepthFromBits(job.bits);
    headless::Host& host = hostFor(job.host);
    ApplySettings(job, host.settings());
    ApplyParameters(job, host);
    host.settings().onProgress = onProgress;
    host.resetPeak();

    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const headless::RenderOutcome outcome =
        job.smart ? host.renderSmart(WholeInput(job, depth)) : host.renderPlain(depth);
    headless::RenderResult result;
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    host.settings().onProgress = nullptr;

    result.error = outcome.error();
    result.peakBytes = host.peakBytes();
    for (const CommandResult& command : outcome.commands) {
        if (!command.message().empty()) {
            result.message = command.message();
        }
        result.displayError |= (command.out.out_flags & sdk::PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0;
    }
    result.violations = ReportOf(outcome);
    if (result.error == 0 && outcome.output != nullptr) {
        result.output = PictureFromWorld(*outcome.output);
    }
    // The pictures of this frame are not needed any more.
    host.resetParameters();
    host.setInput(nullptr);
    return result;
}

}  // namespace vireon::worker
