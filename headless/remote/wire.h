#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vireon::headless {

/// The other side sent something that is no message of this protocol: truncated, oversized, of
/// another version or not meant for us at all. Nothing more can be read from that side.
class ProtocolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

static_assert(std::endian::native == std::endian::little,
              "numbers and pixels travel in little-endian order and are copied as they lie");

using Bytes = std::vector<std::uint8_t>;

/// Builds a payload: fixed-width little-endian numbers, texts with a 32-bit length in front, blocks
/// of bytes with a 64-bit length in front.
class PayloadWriter {
  public:
    /// Appends to `target`, which must outlive the writer.
    explicit PayloadWriter(Bytes& target) : target_(target) {}

    void u8(std::uint8_t value) { raw(&value, sizeof value); }
    void u16(std::uint16_t value) { raw(&value, sizeof value); }
    void u32(std::uint32_t value) { raw(&value, sizeof value); }
    void u64(std::uint64_t value) { raw(&value, sizeof value); }
    void i16(std::int16_t value) { raw(&value, sizeof value); }
    void i32(std::int32_t value) { raw(&value, sizeof value); }
    void f64(double value) { raw(&value, sizeof value); }
    void boolean(bool value) { u8(value ? 1 : 0); }
    /// Throws ProtocolError for a text longer than kMaxText.
    void text(std::string_view value);
    void block(std::span<const std::uint8_t> value);

  private:
    void raw(const void* value, std::size_t size);

    Bytes& target_;
};

/// Longest text in bytes that a message may carry.
inline constexpr std::uint32_t kMaxText = 1u << 20;

/// Takes a payload apart in the order in which it was built. Every member throws ProtocolError
/// instead of reading past the end.
class PayloadReader {
  public:
    /// `payload` must outlive the reader.
    explicit PayloadReader(std::span<const std::uint8_t> payload) : rest_(payload) {}

    std::uint8_t u8() { return number<std::uint8_t>(); }
    std::uint16_t u16() { return number<std::uint16_t>(); }
    std::uint32_t u32() { return number<std::uint32_t>(); }
    std::uint64_t u64() { return number<std::uint64_t>(); }
    std::int16_t i16() { return number<std::int16_t>(); }
    std::int32_t i32() { return number<std::int32_t>(); }
    double f64() { return number<double>(); }
    /// Throws for any byte but 0 and 1.
    bool boolean();
    std::string text();
    Bytes block();
    /// A count of items of at least `itemSize` bytes each; throws when the rest cannot hold them.
    std::uint32_t count(std::size_t itemSize);
    /// Throws when bytes are left over.
    void end() const;

  private:
    template <typename Number>
    Number number() {
        Number value{};
        raw(&value, sizeof value);
        return value;
    }
    void raw(void* value, std::size_t size);
    std::span<const std::uint8_t> take(std::uint64_t size);

    std::span<const std::uint8_t> rest_;
};

}  // namespace vireon::headless
