#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "headless/remote/wire.h"

namespace vireon::headless {

/// Version of the messages. Both sides must speak the same one.
inline constexpr std::uint16_t kProtocolVersion = 2;

/// Kinds of message, the first group from the client to the worker, the second the other way.
enum class MessageType : std::uint16_t {
    kLoad = 1,      ///< load a library; answered by kLoaded or kFailure
    kDescribe = 2,  ///< answered by kDescription or kFailure
    kRender = 3,    ///< answered by any number of kProgress, then kResult or kFailure
    kAbort = 4,     ///< end the render that runs; never answered itself
    kQuit = 5,      ///< the worker ends

    kHello = 100,  ///< first message of a worker
    kLoaded = 101,
    kDescription = 102,
    kProgress = 103,
    kResult = 104,
    kFailure = 105,
};

/// Longest payload of a kind of message in bytes.
std::uint64_t MaxPayload(MessageType type);

/// Bytes in front of every payload: magic number, version, type, length of the payload.
inline constexpr std::size_t kHeaderSize = 16;

struct Header {
    MessageType type = MessageType::kQuit;
    std::uint64_t payloadSize = 0;
};

std::array<std::uint8_t, kHeaderSize> EncodeHeader(const Header& header);
/// Throws ProtocolError for another magic number, version or type and for an oversized payload.
Header DecodeHeader(std::span<const std::uint8_t, kHeaderSize> bytes);

struct Message {
    MessageType type = MessageType::kQuit;
    Bytes payload;
};

/// Header and payload in one piece; `fill` appends the payload to the bytes that it gets.
template <typename Fill>
Bytes EncodeMessage(MessageType type, Fill fill);

/// Puts messages together from bytes as they arrive. Memory grows with what arrived, not with what
/// a header announces.
class MessageAssembler {
  public:
    /// Where the next bytes go; never empty.
    std::span<std::uint8_t> room();
    /// Takes note that the first `count` bytes of room() were filled. Throws ProtocolError when
    /// they complete a header that is none.
    void filled(std::size_t count);
    /// The message, once it is complete. Nothing may be filled in before it is taken.
    std::optional<Message> take();
    /// Refuses messages of more than this many bytes from the next header on, whatever their kind
    /// may have.
    void limitPayload(std::uint64_t bytes) { payloadLimit_ = bytes; }
    /// Whether a message has begun and is not complete.
    bool midMessage() const { return headerFill_ > 0; }

  private:
    std::array<std::uint8_t, kHeaderSize> headerBytes_{};
    std::size_t headerFill_ = 0;
    Header header_;
    Bytes payload_;
    std::size_t payloadFill_ = 0;
    std::uint64_t payloadLimit_ = std::numeric_limits<std::uint64_t>::max();
};

/// Completes the header at the front of a message whose payload was appended after it. Throws
/// ProtocolError when the payload is longer than its kind allows.
void SealMessage(MessageType type, Bytes& message);

template <typename Fill>
Bytes EncodeMessage(MessageType type, Fill fill) {
    Bytes message(kHeaderSize);
    fill(message);
    SealMessage(type, message);
    return message;
}

}  // namespace vireon::headless
