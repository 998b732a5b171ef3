#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "headless/pixel_block.h"
#include "sdk/sdk.h"

namespace vireon::headless {

/// Storage of one channel: 0..255, 0..32768 or float with white at 1.
enum class Depth { k8, k16, kFloat };

/// 8, 16 or 32.
std::int32_t BitsPerChannel(Depth depth);
/// 4, 8 or 16.
std::int32_t BytesPerPixel(Depth depth);
/// Format code of the alpha-first layout of a depth.
std::int32_t PixelFormatOf(Depth depth);
/// From 8, 16 or 32; throws HeadlessError for any other number.
Depth DepthFromBits(std::int32_t bits);

/// What the pixels of a new world are.
enum class FirstPixels {
    kZero,
    kScribble,   ///< a byte pattern, see World::scribble
    kUndefined,  ///< whatever the memory held
};

struct WorldOptions {
    std::int32_t width = 0;   ///< pixels, 1 to 30000
    std::int32_t height = 0;  ///< rows, 1 to 30000
    Depth depth = Depth::kFloat;
    std::int32_t originX = 0;  ///< layer column of the first pixel
    std::int32_t originY = 0;  ///< layer row of the first pixel
    std::int32_t extraRowBytes =
        20;                         ///< padding after each row, rounded up to a whole channel unit
    bool negativeRowBytes = false;  ///< rows go down in memory
    bool writable = true;           ///< sets PF_WorldFlag_WRITEABLE
    std::int32_t pixelFormat = 0;   ///< 0: alpha first; PF_PixelFormat_BGRA32 at 8 bits
    sdk::PF_RationalScale pixelAspect{1, 1};
    FirstPixels firstPixels = FirstPixels::kZero;
};

/// A picture owned by the host: straight colour, rows with padding, guard areas around.
///
/// The first pixel of the top row lies at an address that is 4 modulo 16 (8 for 16 bits), so that
/// an effect cannot rely on alignment. Padding and guards hold a
/// pattern that `damage()` compares. The record's `reserved0` names the world, so that a copy of
/// the record still leads back to it.
class World {
  public:
    /// Throws HeadlessError for sizes out of range, std::bad_alloc when memory is short.
    explicit World(const WorldOptions& options);
    World(std::int32_t width, std::int32_t height, Depth depth);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    std::int32_t width() const { return record_.width; }
    std::int32_t height() const { return record_.height; }
    Depth depth() const { return options_.depth; }
    std::int32_t pixelFormat() const { return options_.pixelFormat; }
    const WorldOptions& options() const { return options_; }
    /// Place in layer coordinates: origin and size.
    sdk::PF_LRect bounds() const;
    /// Moves the world in layer coordinates.
    void setOrigin(std::int32_t x, std::int32_t y);

    /// The record to hand to an effect. Stays valid as long as the world.
    sdk::PF_EffectWorld& record() { return record_; }
    const sdk::PF_EffectWorld& record() const { return record_; }

    /// First pixel of a row as stored; throws HeadlessError when the pixel type has another size
    /// than the world's pixels or the row does not exist.
    template <typename Pixel>
    Pixel* row(std::int32_t y) {
        return static_cast<Pixel*>(rowAddress(y, sizeof(Pixel)));
    }
    template <typename Pixel>
    const Pixel* row(std::int32_t y) const {
        return static_cast<const Pixel*>(rowAddress(y, sizeof(Pixel)));
    }

    /// One pixel with white at 1, whatever the depth and channel order.
    sdk::PF_PixelFloat color(std::int32_t x, std::int32_t y) const;
    /// Stores a colour; integer depths clamp to their range and round to nearest, NaN gives 0.
    void setColor(std::int32_t x, std::int32_t y, const sdk::PF_PixelFloat& color);
    void fill(const sdk::PF_PixelFloat& color);
    /// Zeroes every pixel, not the padding.
    void clear();
    /// Fills every pixel with a byte pattern that no effect can take for a picture.
    void scribble();

    /// A copy at another depth, alpha first, at the same place.
    std::unique_ptr<World> convertedTo(Depth depth) const;

    /// Depends on every pixel and on nothing else.
    std::uint64_t checksum() const;
    /// Which guard area or row padding was written; empty when all are intact.
    std::string damage() const;
    /// Bytes of all rows, padding included.
    std::size_t bytes() const { return rowStride_ * static_cast<std::size_t>(height()); }

  private:
    std::uint8_t* pixelAddress(std::int32_t x, std::int32_t y) const;
    void* rowAddress(std::int32_t y, std::size_t pixelSize) const;
    std::size_t usedRowBytes() const;

    WorldOptions options_;
    std::size_t rowStride_ = 0;
    PixelBlock block_;
    std::uint8_t* lowestRow_ = nullptr;
    sdk::PF_EffectWorld record_{};
};

/// What the process knows about the world that a record, or a copy of one, names.
struct WorldIdentity {
    std::uint64_t id = 0;
    std::int32_t pixelFormat = 0;
    Depth depth = Depth::k8;
    /// Memory of the rows, padding included.
    const std::uint8_t* begin = nullptr;
    const std::uint8_t* end = nullptr;
};

/// The live world behind a record; nothing when the record names none.
std::optional<WorldIdentity> IdentifyWorld(const sdk::PF_EffectWorld& record);

}  // namespace vireon::headless
