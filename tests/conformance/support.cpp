#include "tests/conformance/support.h"

#include <cstdlib>
#include <utility>

namespace vireon::conformance {

using headless::CommandResult;
using headless::HeadlessError;
using headless::Host;
using headless::RenderOutcome;

const headless::EffectLibrary& Effect() {
    // Stays loaded to the end of the process, as effects do in their hosts.
    static const headless::EffectLibrary* const library = [] {
        const char* path = std::getenv("VIREON_PLUGIN");
        if (path == nullptr || *path == '\0') {
            throw HeadlessError("VIREON_PLUGIN does not name the effect to test");
        }
        return new headless::EffectLibrary(path);
    }();
    return *library;
}

std::unique_ptr<Host> ReadyHost(headless::HostSettings settings) {
    auto host = std::make_unique<Host>(Effect(), std::move(settings));
    for (const CommandResult& result : host->setUp()) {
        if (result.error != 0 || !result.clean()) {
            throw HeadlessError("set-up failed: " + result.report());
        }
    }
    return host;
}

RenderOutcome Render(Host& host, headless::Depth depth, Path path) {
    return path == Path::kPlain ? host.renderPlain(depth)
                                : host.renderSmart(host.fullRequest(depth));
}

Picture RenderScene(const Scene& scene, headless::Depth depth, Path path,
                    headless::HostSettings settings) {
    const std::unique_ptr<Host> host = ReadyHost(std::move(settings));
    Apply(scene, *host, depth);
    const RenderOutcome outcome = Render(*host, depth, path);
    if (outcome.error() != 0 || !outcome.clean() || outcome.output == nullptr) {
        throw HeadlessError("the render failed: " + outcome.report());
    }
    return ReadRaw(*outcome.output);
}

bool FullCheck() {
    const char* const value = std::getenv("VIREON_FULL_CHECK");
    return value != nullptr && *value != '\0';
}

bool CaseSampler::take() {
    const bool chosen = seen_ % every_ == 0;
    ++seen_;
    taken_ += chosen ? 1 : 0;
    return chosen;
}

}  // namespace vireon::conformance
