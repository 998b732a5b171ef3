#include "headless/remote/envelope.h"

#include <algorithm>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

namespace vireon::headless {
namespace {

using HeaderBytes = std::array<std::uint8_t, kHeaderSize>;

/// Feeds bytes in pieces of up to `step` and collects the complete messages.
std::vector<Message> Assemble(MessageAssembler& assembler, std::span<const std::uint8_t> bytes,
                              std::size_t step) {
    std::vector<Message> messages;
    while (!bytes.empty()) {
        const std::span<std::uint8_t> room = assembler.room();
        const std::size_t count = std::min({room.size(), bytes.size(), step});
        std::copy_n(bytes.begin(), count, room.begin());
        assembler.filled(count);
        bytes = bytes.subspan(count);
        if (auto message = assembler.take()) {
            messages.push_back(std::move(*message));
        }
    }
    return messages;
}

Bytes TextMessage(MessageType type, std::string_view text) {
    return EncodeMessage(type, [text](Bytes& message) { PayloadWriter(message).text(text); });
}

TEST(Envelope, HeaderGivesBackTypeAndSize) {
    const Header header =
        DecodeHeader(EncodeHeader({MessageType::kResult, 123456789012ull % 1000}));
    EXPECT_EQ(header.type, MessageType::kResult);
    EXPECT_EQ(header.payloadSize, 123456789012ull % 1000);
}

TEST(Envelope, WrongMagicNumberIsAnError) {
    HeaderBytes bytes = EncodeHeader({MessageType::kQuit, 0});
    bytes[0] ^= 1;
    EXPECT_THROW(DecodeHeader(bytes), ProtocolError);
}

TEST(Envelope, AnotherVersionIsNamed) {
    HeaderBytes bytes = EncodeHeader({MessageType::kQuit, 0});
    bytes[4] = 77;
    try {
        DecodeHeader(bytes);
        FAIL() << "no error";
    } catch (const ProtocolError& error) {
        EXPECT_NE(std::string_view(error.what()).find("version 77"), std::string_view::npos);
    }
}

TEST(Envelope, UnknownTypesAreErrors) {
    for (const std::uint16_t type : std::initializer_list<std::uint16_t>{0, 6, 99, 106, 65535}) {
        HeaderBytes bytes = EncodeHeader({MessageType::kQuit, 0});
        std::memcpy(bytes.data() + 6, &type, sizeof type);
        EXPECT_THROW(DecodeHeader(bytes), ProtocolError) << type;
    }
}

TEST(Envelope, OversizedPayloadsAreErrors) {
    for (const MessageType type : {MessageType::kLoad, MessageType::kRender, MessageType::kQuit,
                                   MessageType::kProgress, MessageType::kResult}) {
        EXPECT_NO_THROW(DecodeHeader(EncodeHeader({type, MaxPayload(type)})));
        EXPECT_THROW(DecodeHeader(EncodeHeader({type, MaxPayload(type) + 1})), ProtocolError);
        EXPECT_THROW(DecodeHeader(EncodeHeader({type, ~0ull})), ProtocolError);
    }
}

TEST(Envelope, PayloadTooLongToSendIsAnError) {
    EXPECT_THROW(TextMessage(MessageType::kProgress, std::string(100, 'x')), ProtocolError);
}

TEST(Envelope, AssemblesMessagesFromPiecesOfAnySize) {
    Bytes stream = TextMessage(MessageType::kLoad, "first");
    const Bytes second = EncodeMessage(MessageType::kQuit, [](Bytes&) {});
    const Bytes third = TextMessage(MessageType::kLoad, std::string(5000, 'z'));
    stream.insert(stream.end(), second.begin(), second.end());
    stream.insert(stream.end(), third.begin(), third.end());
    for (const std::size_t step : {1u, 2u, 7u, 16u, 17u, 100000u}) {
        MessageAssembler assembler;
        const std::vector<Message> messages = Assemble(assembler, stream, step);
        ASSERT_EQ(messages.size(), 3u) << step;
        EXPECT_EQ(PayloadReader(messages[0].payload).text(), "first");
        EXPECT_EQ(messages[1].type, MessageType::kQuit);
        EXPECT_EQ(PayloadReader(messages[2].payload).text(), std::string(5000, 'z'));
        EXPECT_FALSE(assembler.midMessage());
    }
}

TEST(Envelope, KnowsThatAMessageIsIncomplete) {
    const Bytes message = TextMessage(MessageType::kLoad, "text");
    for (std::size_t size = 1; size < message.size(); ++size) {
        MessageAssembler assembler;
        EXPECT_TRUE(Assemble(assembler, std::span(message).first(size), 1000).empty());
        EXPECT_TRUE(assembler.midMessage());
    }
}

TEST(Envelope, AnnouncedSizeAloneTakesLittleMemory) {
    MessageAssembler assembler;
    const HeaderBytes header =
        EncodeHeader({MessageType::kRender, MaxPayload(MessageType::kRender)});
    Assemble(assembler, header, header.size());
    EXPECT_LE(assembler.room().size(), 16u << 20);
}

TEST(Envelope, RandomBytesNeverDoMoreThanThrow) {
    std::mt19937 random(7);
    int errors = 0;
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes(1 + random() % 200);
        std::generate(bytes.begin(), bytes.end(),
                      [&random] { return static_cast<std::uint8_t>(random()); });
        MessageAssembler assembler;
        try {
            Assemble(assembler, bytes, 1 + random() % 50);
            EXPECT_LT(bytes.size(), kHeaderSize);
        } catch (const ProtocolError&) {
            ++errors;
        }
    }
    EXPECT_GT(errors, 1500);
}

}  // namespace
}  // namespace vireon::headless
