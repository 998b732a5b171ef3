#pragma once

#include <cstdint>
#include <memory>

#include "headless/host.h"
#include "tests/conformance/picture.h"
#include "tests/conformance/scene.h"

namespace vireon::conformance {

/// The effect under test: the library that the environment variable VIREON_PLUGIN names, loaded
/// once for the process. Throws HeadlessError when it names none.
const headless::EffectLibrary& Effect();

/// A host whose effect has answered global, parameter and sequence set-up without complaint.
/// Throws HeadlessError otherwise.
std::unique_ptr<headless::Host> ReadyHost(headless::HostSettings settings = {});

/// How a frame is asked for.
enum class Path { kSmart, kPlain };

/// Renders the whole layer as the host stands.
headless::RenderOutcome Render(headless::Host& host, headless::Depth depth,
                               Path path = Path::kSmart);

/// A scene in a host of its own; the stored numbers of the output. Throws HeadlessError when the
/// effect fails or breaks a rule.
Picture RenderScene(const Scene& scene, headless::Depth depth = headless::Depth::kFloat,
                    Path path = Path::kSmart, headless::HostSettings settings = {});

/// Whether the environment variable VIREON_FULL_CHECK asks for every case where a test otherwise
/// takes a sample of them.
bool FullCheck();

/// Picks every n-th of a long series of cases, all of them in a full check, and counts both.
class CaseSampler {
  public:
    explicit CaseSampler(std::uint64_t every) : every_(FullCheck() ? 1 : every) {}

    /// Whether the next case of the series is to be run.
    bool take();
    std::uint64_t seen() const { return seen_; }
    std::uint64_t taken() const { return taken_; }

  private:
    std::uint64_t every_;
    std::uint64_t seen_ = 0;
    std::uint64_t taken_ = 0;
};

}  // namespace vireon::conformance
