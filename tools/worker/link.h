#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "headless/remote/messages.h"
#include "tools/worker/platform.h"

namespace vireon::worker {

/// The worker's side of the pipes. A thread of its own receives, so that an abort comes through
/// while a frame is being rendered. When the other side goes away or sends something that is no
/// message, the process ends at once, whatever it is doing: nobody is left to do it for.
class Link {
  public:
    /// Sends `greeting` before anything can come in.
    Link(PrivatePipes& pipes, const headless::Bytes& greeting);
    /// Waits for the receiving thread; call it only after a quit message was taken.
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    /// Sends a whole message; may be called from any thread.
    void send(const headless::Bytes& message);
    /// Waits for the next message that is no abort.
    headless::Message next();
    /// Whether an abort came in for a render.
    bool isAborted(headless::RenderId id) const { return lastAborted_ >= id; }
    /// Reports something that is no message and ends the process.
    [[noreturn]] void endOnGarbage(const std::string& text);

  private:
    void receive();

    PrivatePipes& pipes_;
    std::mutex sending_;
    std::mutex guard_;
    std::condition_variable arrived_;
    std::deque<headless::Message> queue_;
    std::atomic<headless::RenderId> lastAborted_{0};
    std::thread thread_;
};

}  // namespace vireon::worker
