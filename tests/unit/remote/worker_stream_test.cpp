// The worker program itself, with whatever comes down its pipe.

#include <algorithm>
#include <array>
#include <random>

#include <gtest/gtest.h>
#include <poll.h>

#include "headless/remote/child_process.h"
#include "headless/remote/messages.h"
#include "headless/remote/worker_exit.h"

namespace vireon::headless {
namespace {

struct Conversation {
    ExitStatus status;
    std::vector<Message> messages;
};

enum class Afterwards { kWait, kHangUp };

/// Starts a worker, sends it bytes, waits or closes the pipe, and collects what it says until it
/// ends.
Conversation Talk(const Bytes& bytes, Afterwards afterwards = Afterwards::kWait) {
    ChildProcess worker({VIREON_TEST_WORKER, {}, {}});
    std::size_t sent = 0;
    MessageAssembler assembler;
    Conversation conversation;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end) {
        const std::optional<ExitStatus> status = worker.exited();
        while (worker.output.isOpen()) {
            const auto count = ReadSome(worker.output, assembler.room());
            if (count.value_or(0) == 0) {
                break;
            }
            assembler.filled(*count);
            if (auto message = assembler.take()) {
                conversation.messages.push_back(std::move(*message));
            }
        }
        if (status) {
            conversation.status = *status;
            EXPECT_FALSE(assembler.midMessage());
            return conversation;
        }
        if (worker.input.isOpen()) {
            const auto count = WriteSome(worker.input, std::span(bytes).subspan(sent));
            sent += count.value_or(0);
            if (!count || (sent == bytes.size() && afterwards == Afterwards::kHangUp)) {
                worker.input.close();
            }
        }
        pollfd event{worker.output.get(), POLLIN, 0};
        poll(&event, 1, 5);
    }
    ADD_FAILURE() << "the worker does not end";
    return conversation;
}

TEST(WorkerStream, QuitEndsInPeace) {
    const Conversation conversation = Talk(EncodeQuit());
    EXPECT_FALSE(conversation.status.bySignal);
    EXPECT_EQ(conversation.status.code, kWorkerDone);
    ASSERT_EQ(conversation.messages.size(), 1u);
    const Hello hello = DecodeHello(conversation.messages[0].payload);
    EXPECT_EQ(hello.system, "linux");
    EXPECT_FALSE(hello.simd.empty());
}

TEST(WorkerStream, AnAbandonedWorkerEnds) {
    const Conversation conversation = Talk({}, Afterwards::kHangUp);
    EXPECT_FALSE(conversation.status.bySignal);
    EXPECT_EQ(conversation.status.code, kWorkerOrphaned);
}

TEST(WorkerStream, ACutMessageEndsTheWorker) {
    Bytes message = EncodeLoad({"/nonexistent"});
    message.pop_back();
    const Conversation conversation = Talk(message, Afterwards::kHangUp);
    EXPECT_FALSE(conversation.status.bySignal);
    EXPECT_EQ(conversation.status.code, kWorkerProtocol);
}

/// The last message must be a protocol failure with a text.
void ExpectComplaint(const Conversation& conversation) {
    EXPECT_FALSE(conversation.status.bySignal) << conversation.status.text();
    EXPECT_EQ(conversation.status.code, kWorkerProtocol);
    ASSERT_GE(conversation.messages.size(), 2u);
    ASSERT_EQ(conversation.messages.back().type, MessageType::kFailure);
    const Failure failure = DecodeFailure(conversation.messages.back().payload);
    EXPECT_EQ(failure.kind, Failure::Kind::kProtocol);
    EXPECT_FALSE(failure.text.empty());
}

TEST(WorkerStream, GarbageIsComplainedAbout) {
    std::mt19937 random(11);
    for (int round = 0; round < 8; ++round) {
        Bytes bytes(16 + random() % 3000);
        std::generate(bytes.begin(), bytes.end(),
                      [&random] { return static_cast<std::uint8_t>(random()); });
        ExpectComplaint(Talk(bytes));
    }
}

TEST(WorkerStream, MessagesWithWrongInsidesAreComplainedAbout) {
    Bytes load =
        EncodeMessage(MessageType::kLoad, [](Bytes& message) { PayloadWriter(message).u32(1000); });
    ExpectComplaint(Talk(load));
    ExpectComplaint(Talk(EncodeMessage(MessageType::kAbort, [](Bytes&) {})));
    ExpectComplaint(Talk(EncodeMessage(MessageType::kRender,
                                       [](Bytes& message) { PayloadWriter(message).u64(1); })));
    // The worker's own kinds of message are not for it.
    ExpectComplaint(Talk(EncodeLoaded()));
    Bytes oversized(kHeaderSize);
    const auto header = EncodeHeader({MessageType::kLoad, 1ull << 60});
    std::copy(header.begin(), header.end(), oversized.begin());
    ExpectComplaint(Talk(oversized));
}

TEST(WorkerStream, RequestsBeforeALoadAreRefused) {
    Bytes bytes = EncodeDescribe({});
    const Bytes quit = EncodeQuit();
    bytes.insert(bytes.end(), quit.begin(), quit.end());
    const Conversation conversation = Talk(bytes);
    EXPECT_EQ(conversation.status.code, kWorkerDone);
    ASSERT_EQ(conversation.messages.size(), 2u);
    EXPECT_EQ(DecodeFailure(conversation.messages[1].payload).kind, Failure::Kind::kRequest);
}

}  // namespace
}  // namespace vireon::headless
