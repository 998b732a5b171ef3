#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::headless {

/// Memory for pixels. Blocks that are given back are kept on a short list for the whole process, so
/// that rendering frame after frame does not pay for fresh pages each time. Under AddressSanitizer
/// nothing is kept, so that use after release is seen.
class PixelBlock {
  public:
    PixelBlock() = default;
    /// At least `bytes` bytes, aligned to 64, contents undefined. Throws std::bad_alloc.
    explicit PixelBlock(std::size_t bytes);
    ~PixelBlock();
    PixelBlock(PixelBlock&& other) noexcept;
    PixelBlock& operator=(PixelBlock&& other) noexcept;

    std::uint8_t* data() const { return data_; }

    /// Gives the kept blocks back to the system.
    static void trim();

  private:
    void release();

    std::uint8_t* data_ = nullptr;
    std::size_t capacity_ = 0;
};

}  // namespace vireon::headless
