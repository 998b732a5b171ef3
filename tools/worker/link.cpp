#include "tools/worker/link.h"

#include <utility>

#include "headless/remote/worker_exit.h"

namespace vireon::worker {

using headless::Message;
using headless::MessageType;

Link::Link(PrivatePipes& pipes, const headless::Bytes& greeting) : pipes_(pipes) {
    send(greeting);
    thread_ = std::thread([this] { receive(); });
}

Link::~Link() {
    thread_.join();
}

void Link::send(const headless::Bytes& message) {
    const std::lock_guard lock(sending_);
    if (!pipes_.write(message)) {
        EndProcess(headless::kWorkerOrphaned);
    }
}

Message Link::next() {
    std::unique_lock lock(guard_);
    arrived_.wait(lock, [this] { return !queue_.empty(); });
    Message message = std::move(queue_.front());
    queue_.pop_front();
    return message;
}

void Link::endOnGarbage(const std::string& text) {
    send(headless::EncodeFailure(
        {headless::Failure::Kind::kProtocol, 0, "the worker received garbage: " + text}));
    EndProcess(headless::kWorkerProtocol);
}

void Link::receive() {
    headless::MessageAssembler assembler;
    try {
        for (;;) {
            const std::size_t count = pipes_.read(assembler.room());
            if (count == 0) {
                EndProcess(assembler.midMessage() ? headless::kWorkerProtocol
                                                  : headless::kWorkerOrphaned);
            }
            assembler.filled(count);
            std::optional<Message> message = assembler.take();
            if (!message) {
                continue;
            }
            if (message->type == MessageType::kAbort) {
                lastAborted_ = headless::DecodeAbort(message->payload);
                continue;
            }
            const bool last = message->type == MessageType::kQuit;
            {
                const std::lock_guard lock(guard_);
                queue_.push_back(std::move(*message));
            }
            arrived_.notify_one();
            if (last) {
                return;
            }
        }
    } catch (const headless::ProtocolError& error) {
        endOnGarbage(error.what());
    } catch (const std::bad_alloc&) {
        endOnGarbage("a message that does not fit into memory");
    }
}

}  // namespace vireon::worker
