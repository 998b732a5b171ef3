#include "headless/remote/envelope.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace vireon::headless {
namespace {

constexpr std::uint32_t kMagic = 0x4B575256;  // "VRWK" in memory

constexpr std::uint64_t kKibi = 1024;
constexpr std::uint64_t kMebi = 1024 * kKibi;
constexpr std::uint64_t kGibi = 1024 * kMebi;

/// First piece of memory for a payload; doubled whenever it is full.
constexpr std::uint64_t kFirstPiece = 4 * kMebi;

bool IsKnown(std::uint16_t type) {
    const auto between = [type](MessageType first, MessageType last) {
        return type >= static_cast<std::uint16_t>(first) &&
               type <= static_cast<std::uint16_t>(last);
    };
    return between(MessageType::kLoad, MessageType::kQuit) ||
           between(MessageType::kHello, MessageType::kFailure);
}

template <typename Number>
Number NumberAt(std::span<const std::uint8_t, kHeaderSize> bytes, std::size_t offset) {
    Number value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

}  // namespace

std::uint64_t MaxPayload(MessageType type) {
    switch (type) {
        case MessageType::kRender: return 64 * kGibi;  // four float pictures of the largest size
        case MessageType::kResult: return 16 * kGibi;
        case MessageType::kDescription: return 16 * kMebi;
        case MessageType::kFailure:
        case MessageType::kLoad: return 2 * kMebi;
        case MessageType::kHello: return 4 * kKibi;
        case MessageType::kDescribe:
        case MessageType::kAbort:
        case MessageType::kProgress: return 64;
        case MessageType::kQuit:
        case MessageType::kLoaded: return 0;
    }
    return 0;
}

std::array<std::uint8_t, kHeaderSize> EncodeHeader(const Header& header) {
    std::array<std::uint8_t, kHeaderSize> bytes{};
    const auto type = static_cast<std::uint16_t>(header.type);
    std::memcpy(bytes.data(), &kMagic, 4);
    std::memcpy(bytes.data() + 4, &kProtocolVersion, 2);
    std::memcpy(bytes.data() + 6, &type, 2);
    std::memcpy(bytes.data() + 8, &header.payloadSize, 8);
    return bytes;
}

Header DecodeHeader(std::span<const std::uint8_t, kHeaderSize> bytes) {
    if (NumberAt<std::uint32_t>(bytes, 0) != kMagic) {
        throw ProtocolError("the other side does not speak the worker protocol");
    }
    const auto version = NumberAt<std::uint16_t>(bytes, 4);
    if (version != kProtocolVersion) {
        throw ProtocolError("the other side speaks version " + std::to_string(version) +
                            " of the worker protocol, this side version " +
                            std::to_string(kProtocolVersion) +
                            ": the tool and the worker come from different installations");
    }
    const auto type = NumberAt<std::uint16_t>(bytes, 6);
    if (!IsKnown(type)) {
        throw ProtocolError("message of unknown type " + std::to_string(type));
    }
    const Header header{static_cast<MessageType>(type), NumberAt<std::uint64_t>(bytes, 8)};
    if (header.payloadSize > MaxPayload(header.type)) {
        throw ProtocolError("message of type " + std::to_string(type) + " announces " +
                            std::to_string(header.payloadSize) + " bytes, more than the " +
                            std::to_string(MaxPayload(header.type)) + " that it may have");
    }
    return header;
}

void SealMessage(MessageType type, Bytes& message) {
    const Header header{type, message.size() - kHeaderSize};
    if (header.payloadSize > MaxPayload(type)) {
        throw ProtocolError("a message of type " +
                            std::to_string(static_cast<std::uint16_t>(type)) + " with " +
                            std::to_string(header.payloadSize) + " bytes is too long to be sent");
    }
    const auto bytes = EncodeHeader(header);
    std::copy(bytes.begin(), bytes.end(), message.begin());
}

std::span<std::uint8_t> MessageAssembler::room() {
    if (headerFill_ < kHeaderSize) {
        return std::span(headerBytes_).subspan(headerFill_);
    }
    if (payloadFill_ == payload_.size()) {
        const std::uint64_t grown = std::max<std::uint64_t>(2 * payload_.size(), kFirstPiece);
        payload_.resize(static_cast<std::size_t>(std::min(header_.payloadSize, grown)));
    }
    return std::span(payload_).subspan(payloadFill_);
}

void MessageAssembler::filled(std::size_t count) {
    if (headerFill_ < kHeaderSize) {
        headerFill_ += count;
        if (headerFill_ == kHeaderSize) {
            header_ = DecodeHeader(headerBytes_);
            if (header_.payloadSize > payloadLimit_) {
                throw ProtocolError("a message announces " + std::to_string(header_.payloadSize) +
                                    " bytes, more than the " + std::to_string(payloadLimit_) +
                                    " that the answer may have");
            }
        }
        return;
    }
    payloadFill_ += count;
}

std::optional<Message> MessageAssembler::take() {
    if (headerFill_ < kHeaderSize || payloadFill_ < header_.payloadSize) {
        return std::nullopt;
    }
    Message message{header_.type, std::move(payload_)};
    const std::uint64_t limit = payloadLimit_;
    *this = MessageAssembler();
    payloadLimit_ = limit;
    return message;
}

}  // namespace vireon::headless
