#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "headless/host.h"
#include "headless/remote/messages.h"

namespace vireon::worker {

/// A request that cannot be answered; becomes a failure message.
class SessionError : public std::runtime_error {
  public:
    SessionError(headless::Failure::Kind kind, std::int32_t code, const std::string& text)
        : std::runtime_error(text), failure_{kind, code, text} {}
    const headless::Failure& failure() const { return failure_; }

  private:
    headless::Failure failure_;
};

/// One effect and its host, driven by messages.
class Session {
  public:
    Session() = default;
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Loads the library; a library loaded before is set down and unloaded.
    void load(const std::string& path);
    headless::Description describe(const headless::HostIdentity& identity);
    /// `onProgress` is called like HostSettings::onProgress. A job that makes no sense throws
    /// SessionError or headless::HeadlessError.
    headless::RenderResult render(
        const headless::RenderJob& job,
        const std::function<sdk::PF_Err(std::int32_t current, std::int32_t total)>& onProgress);

  private:
    /// The host as which the effect is set up, made anew when it is another one.
    headless::Host& hostFor(const headless::HostIdentity& identity);
    void setDown();

    std::optional<headless::EffectLibrary> library_;
    std::unique_ptr<headless::Host> host_;
    headless::HostIdentity identity_;
    std::uint32_t packedVersion_ = 0;
    std::uint32_t outFlags_ = 0;
    std::uint32_t outFlags2_ = 0;
};

}  // namespace vireon::worker
