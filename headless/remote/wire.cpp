#include "headless/remote/wire.h"

#include <cstring>

namespace vireon::headless {

void PayloadWriter::raw(const void* value, std::size_t size) {
    const auto* const bytes = static_cast<const std::uint8_t*>(value);
    target_.insert(target_.end(), bytes, bytes + size);
}

void PayloadWriter::text(std::string_view value) {
    if (value.size() > kMaxText) {
        throw ProtocolError("a text of " + std::to_string(value.size()) +
                            " bytes does not fit into a message");
    }
    u32(static_cast<std::uint32_t>(value.size()));
    raw(value.data(), value.size());
}

void PayloadWriter::block(std::span<const std::uint8_t> value) {
    u64(value.size());
    raw(value.data(), value.size());
}

std::span<const std::uint8_t> PayloadReader::take(std::uint64_t size) {
    if (size > rest_.size()) {
        throw ProtocolError("message ends early: " + std::to_string(size) + " bytes expected, " +
                            std::to_string(rest_.size()) + " left");
    }
    const std::span<const std::uint8_t> taken = rest_.first(static_cast<std::size_t>(size));
    rest_ = rest_.subspan(static_cast<std::size_t>(size));
    return taken;
}

void PayloadReader::raw(void* value, std::size_t size) {
    std::memcpy(value, take(size).data(), size);
}

bool PayloadReader::boolean() {
    const std::uint8_t value = u8();
    if (value > 1) {
        throw ProtocolError("truth value " + std::to_string(value) + " in a message");
    }
    return value == 1;
}

std::string PayloadReader::text() {
    const std::uint32_t size = u32();
    if (size > kMaxText) {
        throw ProtocolError("text of " + std::to_string(size) + " bytes in a message");
    }
    const std::span<const std::uint8_t> bytes = take(size);
    return {bytes.begin(), bytes.end()};
}

Bytes PayloadReader::block() {
    const std::span<const std::uint8_t> bytes = take(u64());
    return {bytes.begin(), bytes.end()};
}

std::uint32_t PayloadReader::count(std::size_t itemSize) {
    const std::uint32_t items = u32();
    if (items > rest_.size() / itemSize) {
        throw ProtocolError("message ends early: " + std::to_string(items) + " items expected in " +
                            std::to_string(rest_.size()) + " bytes");
    }
    return items;
}

void PayloadReader::end() const {
    if (!rest_.empty()) {
        throw ProtocolError(std::to_string(rest_.size()) + " bytes left over in a message");
    }
}

}  // namespace vireon::headless
