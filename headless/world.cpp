#include "headless/world.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "headless/error.h"

namespace vireon::headless {
namespace {

constexpr std::size_t kGuardBytes = 64;
constexpr std::uint8_t kGuardPattern = 0xA5;
constexpr std::uint8_t kPaddingPattern = 0xB7;
/// Negative and large as a float, above white at 16 bits.
constexpr std::uint8_t kScribblePattern = 0xCB;

/// Worlds by the number in `reserved0` of their record. Numbers are never used again, so a record
/// of a world that is gone is recognised as such.
class Registry {
  public:
    std::uint64_t add(const WorldIdentity& identity) {
        const std::unique_lock lock(mutex_);
        const std::uint64_t id = next_;
        // A step of 16 with an odd part keeps the numbers from looking like addresses.
        next_ += 16;
        worlds_[id] = identity;
        worlds_[id].id = id;
        return id;
    }

    void remove(std::uint64_t id) {
        const std::unique_lock lock(mutex_);
        worlds_.erase(id);
    }

    std::optional<WorldIdentity> find(std::uint64_t id) const {
        const std::shared_lock lock(mutex_);
        const auto it = worlds_.find(id);
        return it == worlds_.end() ? std::nullopt : std::optional(it->second);
    }

  private:
    mutable std::shared_mutex mutex_;
    std::uint64_t next_ = 0x10007;
    std::unordered_map<std::uint64_t, WorldIdentity> worlds_;
};

/// Never destroyed, for the same reason as the pool of pixel blocks.
Registry& TheRegistry() {
    static Registry* const registry = new Registry;
    return *registry;
}

std::size_t RoundUp(std::size_t value, std::size_t unit) {
    return (value + unit - 1) / unit * unit;
}

WorldOptions Checked(WorldOptions options) {
    if (options.width < 1 || options.width > sdk::PF_MAX_WORLD_WIDTH || options.height < 1 ||
        options.height > sdk::PF_MAX_WORLD_HEIGHT) {
        throw HeadlessError("a world of " + std::to_string(options.width) + " x " +
                            std::to_string(options.height) + " pixels cannot be made");
    }
    if (options.extraRowBytes < 0) {
        throw HeadlessError("row padding cannot be negative");
    }
    const std::int32_t usual = PixelFormatOf(options.depth);
    if (options.pixelFormat == 0) {
        options.pixelFormat = usual;
    }
    const bool blueFirst =
        options.pixelFormat == sdk::PF_PixelFormat_BGRA32 && options.depth == Depth::k8;
    if (options.pixelFormat != usual && !blueFirst) {
        throw HeadlessError("pixel format and depth of a world contradict each other");
    }
    return options;
}

/// Places of alpha, red, green and blue within a pixel.
struct ChannelPlaces {
    std::size_t alpha, red, green, blue;
};

constexpr ChannelPlaces kAlphaFirst{0, 1, 2, 3};
constexpr ChannelPlaces kBlueFirst{3, 2, 1, 0};

ChannelPlaces PlacesOf(std::int32_t pixelFormat) {
    return pixelFormat == sdk::PF_PixelFormat_BGRA32 ? kBlueFirst : kAlphaFirst;
}

constexpr float kWhite8 = static_cast<float>(sdk::PF_MAX_CHAN8);
constexpr float kWhite16 = static_cast<float>(sdk::PF_MAX_CHAN16);

template <typename Channel>
sdk::PF_PixelFloat LoadInteger(const std::uint8_t* bytes, const ChannelPlaces& places,
                               float white) {
    std::array<Channel, 4> channels;
    std::memcpy(channels.data(), bytes, sizeof channels);
    const auto channel = [&](std::size_t place) {
        return static_cast<float>(channels[place]) / white;
    };
    return {channel(places.alpha), channel(places.red), channel(places.green),
            channel(places.blue)};
}

template <typename Channel>
void StoreInteger(std::uint8_t* bytes, const ChannelPlaces& places, float white,
                  const sdk::PF_PixelFloat& color) {
    const auto channel = [&](float value) {
        const float scaled = value * white + 0.5f;
        // The comparison is false for NaN, which thus becomes 0.
        return scaled >= 0.0f ? static_cast<Channel>(std::min(scaled, white)) : Channel{0};
    };
    std::array<Channel, 4> channels;
    channels[places.alpha] = channel(color.alpha);
    channels[places.red] = channel(color.red);
    channels[places.green] = channel(color.green);
    channels[places.blue] = channel(color.blue);
    std::memcpy(bytes, channels.data(), sizeof channels);
}

/// One pixel of a depth and channel order, at its address.
sdk::PF_PixelFloat Load(const std::uint8_t* bytes, Depth depth, const ChannelPlaces& places) {
    switch (depth) {
        case Depth::k8: return LoadInteger<std::uint8_t>(bytes, places, kWhite8);
        case Depth::k16: return LoadInteger<std::uint16_t>(bytes, places, kWhite16);
        case Depth::kFloat: break;
    }
    sdk::PF_PixelFloat color;
    std::memcpy(&color, bytes, sizeof color);
    return color;
}

void Store(std::uint8_t* bytes, Depth depth, const ChannelPlaces& places,
           const sdk::PF_PixelFloat& color) {
    switch (depth) {
        case Depth::k8: StoreInteger<std::uint8_t>(bytes, places, kWhite8, color); return;
        case Depth::k16: StoreInteger<std::uint16_t>(bytes, places, kWhite16, color); return;
        case Depth::kFloat: break;
    }
    std::memcpy(bytes, &color, sizeof color);
}

std::size_t FirstDifference(const std::uint8_t* bytes, std::size_t count, std::uint8_t pattern) {
    const auto* end = bytes + count;
    return static_cast<std::size_t>(
        std::find_if(bytes, end, [&](std::uint8_t byte) { return byte != pattern; }) - bytes);
}

}  // namespace

std::int32_t BitsPerChannel(Depth depth) {
    switch (depth) {
        case Depth::k8: return 8;
        case Depth::k16: return 16;
        case Depth::kFloat: break;
    }
    return 32;
}

std::int32_t BytesPerPixel(Depth depth) {
    return BitsPerChannel(depth) / 2;
}

std::int32_t PixelFormatOf(Depth depth) {
    switch (depth) {
        case Depth::k8: return sdk::PF_PixelFormat_ARGB32;
        case Depth::k16: return sdk::PF_PixelFormat_ARGB64;
        case Depth::kFloat: break;
    }
    return sdk::PF_PixelFormat_ARGB128;
}

Depth DepthFromBits(std::int32_t bits) {
    switch (bits) {
        case 8: return Depth::k8;
        case 16: return Depth::k16;
        case 32: return Depth::kFloat;
        default: throw HeadlessError("a depth of " + std::to_string(bits) + " bits does not exist");
    }
}

World::World(const WorldOptions& options) : options_(Checked(options)) {
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(options_.depth));
    const auto height = static_cast<std::size_t>(options_.height);
    const std::size_t unit = options_.depth == Depth::k16 ? 8 : 4;
    const std::size_t used = static_cast<std::size_t>(options_.width) * pixelBytes;
    rowStride_ = used + RoundUp(static_cast<std::size_t>(options_.extraRowBytes), unit);

    const std::size_t room = 16;  // for moving the first pixel to its odd place
    block_ = PixelBlock(rowStride_ * height + 2 * kGuardBytes + room);

    const std::uintptr_t wanted = options_.depth == Depth::k16 ? 8 : 4;
    const std::size_t topRow = options_.negativeRowBytes ? rowStride_ * (height - 1) : 0;
    const auto top = std::bit_cast<std::uintptr_t>(block_.data() + kGuardBytes + topRow);
    lowestRow_ = block_.data() + kGuardBytes + (wanted + 16 - top % 16) % 16;

    std::memset(lowestRow_ - kGuardBytes, kGuardPattern, kGuardBytes);
    std::memset(lowestRow_ + rowStride_ * height, kGuardPattern, kGuardBytes);
    for (std::size_t row = 0; row < height; ++row) {
        std::uint8_t* bytes = lowestRow_ + row * rowStride_;
        std::memset(bytes + used, kPaddingPattern, rowStride_ - used);
    }

    record_.data = lowestRow_ + topRow;
    record_.rowbytes = static_cast<std::int32_t>(rowStride_);
    if (options_.negativeRowBytes) {
        record_.rowbytes = -record_.rowbytes;
    }
    record_.width = options_.width;
    record_.height = options_.height;
    record_.extent_hint = {0, 0, options_.width, options_.height};
    record_.world_flags = (options_.depth == Depth::k16 ? sdk::PF_WorldFlag_DEEP : 0) |
                          (options_.writable ? sdk::PF_WorldFlag_WRITEABLE : 0);
    record_.pix_aspect_ratio = options_.pixelAspect;
    record_.origin_x = options_.originX;
    record_.origin_y = options_.originY;
    if (options_.firstPixels == FirstPixels::kZero) {
        clear();
    } else if (options_.firstPixels == FirstPixels::kScribble) {
        scribble();
    }

    WorldIdentity identity;
    identity.pixelFormat = options_.pixelFormat;
    identity.depth = options_.depth;
    identity.begin = lowestRow_;
    identity.end = lowestRow_ + bytes();
    record_.reserved0 =
        reinterpret_cast<void*>(static_cast<std::uintptr_t>(TheRegistry().add(identity)));
}

World::World(std::int32_t width, std::int32_t height, Depth depth)
    : World(WorldOptions{.width = width, .height = height, .depth = depth}) {}

World::~World() {
    TheRegistry().remove(reinterpret_cast<std::uintptr_t>(record_.reserved0));
}

sdk::PF_LRect World::bounds() const {
    return {record_.origin_x, record_.origin_y, record_.origin_x + record_.width,
            record_.origin_y + record_.height};
}

void World::setOrigin(std::int32_t x, std::int32_t y) {
    options_.originX = record_.origin_x = x;
    options_.originY = record_.origin_y = y;
}

std::size_t World::usedRowBytes() const {
    return static_cast<std::size_t>(options_.width) *
           static_cast<std::size_t>(BytesPerPixel(options_.depth));
}

void* World::rowAddress(std::int32_t y, std::size_t pixelSize) const {
    if (pixelSize != static_cast<std::size_t>(BytesPerPixel(options_.depth))) {
        throw HeadlessError("the world's pixels have another size");
    }
    if (y < 0 || y >= options_.height) {
        throw HeadlessError("the world has no row " + std::to_string(y));
    }
    const std::int32_t row = options_.negativeRowBytes ? options_.height - 1 - y : y;
    return lowestRow_ + static_cast<std::size_t>(row) * rowStride_;
}

std::uint8_t* World::pixelAddress(std::int32_t x, std::int32_t y) const {
    if (x < 0 || x >= options_.width) {
        throw HeadlessError("the world has no column " + std::to_string(x));
    }
    const auto pixelSize = static_cast<std::size_t>(BytesPerPixel(options_.depth));
    return static_cast<std::uint8_t*>(rowAddress(y, pixelSize)) +
           static_cast<std::size_t>(x) * pixelSize;
}

sdk::PF_PixelFloat World::color(std::int32_t x, std::int32_t y) const {
    return Load(pixelAddress(x, y), options_.depth, PlacesOf(options_.pixelFormat));
}

void World::setColor(std::int32_t x, std::int32_t y, const sdk::PF_PixelFloat& color) {
    Store(pixelAddress(x, y), options_.depth, PlacesOf(options_.pixelFormat), color);
}

void World::fill(const sdk::PF_PixelFloat& color) {
    for (std::int32_t x = 0; x < options_.width; ++x) {
        setColor(x, 0, color);
    }
    const auto pixelSize = static_cast<std::size_t>(BytesPerPixel(options_.depth));
    for (std::int32_t y = 1; y < options_.height; ++y) {
        std::memcpy(rowAddress(y, pixelSize), rowAddress(0, pixelSize), usedRowBytes());
    }
}

void World::clear() {
    for (std::int32_t y = 0; y < options_.height; ++y) {
        std::memset(lowestRow_ + static_cast<std::size_t>(y) * rowStride_, 0, usedRowBytes());
    }
}

void World::scribble() {
    for (std::int32_t y = 0; y < options_.height; ++y) {
        std::memset(lowestRow_ + static_cast<std::size_t>(y) * rowStride_, kScribblePattern,
                    usedRowBytes());
    }
}

std::unique_ptr<World> World::convertedTo(Depth depth) const {
    WorldOptions options = options_;
    options.depth = depth;
    options.pixelFormat = 0;
    options.firstPixels = FirstPixels::kUndefined;
    auto world = std::make_unique<World>(options);
    const ChannelPlaces places = PlacesOf(options_.pixelFormat);
    const std::ptrdiff_t sourceStep = BytesPerPixel(options_.depth);
    const std::ptrdiff_t targetStep = BytesPerPixel(depth);
    for (std::int32_t y = 0; y < options.height; ++y) {
        const std::uint8_t* source = pixelAddress(0, y);
        std::uint8_t* target = world->pixelAddress(0, y);
        for (std::int32_t x = 0; x < options.width; ++x) {
            Store(target, depth, kAlphaFirst, Load(source, options_.depth, places));
            source += sourceStep;
            target += targetStep;
        }
    }
    return world;
}

std::uint64_t World::checksum() const {
    // Four independent multiply-and-add lanes over 64-bit words; speed matters, secrecy does not.
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    std::uint64_t lanes[4] = {1, 2, 3, 4};
    const std::size_t used = usedRowBytes();
    for (std::int32_t y = 0; y < options_.height; ++y) {
        const auto* bytes = static_cast<const std::uint8_t*>(
            rowAddress(y, static_cast<std::size_t>(BytesPerPixel(options_.depth))));
        std::size_t at = 0;
        for (; at + 32 <= used; at += 32) {
            std::uint64_t words[4];
            std::memcpy(words, bytes + at, sizeof words);
            for (int lane = 0; lane < 4; ++lane) {
                lanes[lane] = std::rotl((lanes[lane] ^ words[lane]) * kFactor, 29);
            }
        }
        for (; at < used; at += 4) {
            std::uint32_t word = 0;
            std::memcpy(&word, bytes + at, sizeof word);
            lanes[0] = std::rotl((lanes[0] ^ word) * kFactor, 29);
        }
    }
    std::uint64_t sum = static_cast<std::uint64_t>(options_.width);
    for (const std::uint64_t lane : lanes) {
        sum = std::rotl((sum ^ lane) * kFactor, 31);
    }
    return sum;
}

std::string World::damage() const {
    const std::size_t size = bytes();
    const std::size_t before =
        FirstDifference(lowestRow_ - kGuardBytes, kGuardBytes, kGuardPattern);
    if (before != kGuardBytes) {
        return "written " + std::to_string(kGuardBytes - before) + " bytes before the first row";
    }
    const std::size_t after = FirstDifference(lowestRow_ + size, kGuardBytes, kGuardPattern);
    if (after != kGuardBytes) {
        return "written " + std::to_string(after) + " bytes behind the last row";
    }
    const std::size_t used = usedRowBytes();
    const std::size_t padding = rowStride_ - used;
    for (std::int32_t y = 0; y < options_.height; ++y) {
        const auto* row = static_cast<const std::uint8_t*>(
            rowAddress(y, static_cast<std::size_t>(BytesPerPixel(options_.depth))));
        const std::size_t at = FirstDifference(row + used, padding, kPaddingPattern);
        if (at != padding) {
            return "written into the padding of row " + std::to_string(y) + ", byte " +
                   std::to_string(at);
        }
    }
    return {};
}

std::optional<WorldIdentity> IdentifyWorld(const sdk::PF_EffectWorld& record) {
    return TheRegistry().find(reinterpret_cast<std::uintptr_t>(record.reserved0));
}

}  // namespace vireon::headless
