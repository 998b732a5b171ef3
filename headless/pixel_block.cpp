#include "headless/pixel_block.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace vireon::headless {
namespace {

constexpr std::align_val_t kAlignment{64};
constexpr std::size_t kKeptBlocks = 12;

struct Kept {
    std::uint8_t* data;
    std::size_t capacity;
};

struct Pool {
    std::mutex mutex;
    std::vector<Kept> blocks;
};

/// Never destroyed: worlds with static lifetime may outlive every other static object.
Pool& ThePool() {
    static Pool* const pool = new Pool;
    return *pool;
}

constexpr bool KeepsBlocks() {
#if defined(__SANITIZE_ADDRESS__)
    return false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return false;
#else
    return true;
#endif
#else
    return true;
#endif
}

void Free(std::uint8_t* data) {
    ::operator delete(data, kAlignment);
}

}  // namespace

PixelBlock::PixelBlock(std::size_t bytes) {
    if (KeepsBlocks()) {
        Pool& pool = ThePool();
        const std::lock_guard lock(pool.mutex);
        // The smallest block that fits, but none that would waste more than it serves.
        auto best = pool.blocks.end();
        for (auto it = pool.blocks.begin(); it != pool.blocks.end(); ++it) {
            const bool fits = it->capacity >= bytes && it->capacity / 2 <= bytes;
            if (fits && (best == pool.blocks.end() || it->capacity < best->capacity)) {
                best = it;
            }
        }
        if (best != pool.blocks.end()) {
            data_ = best->data;
            capacity_ = best->capacity;
            pool.blocks.erase(best);
            return;
        }
    }
    data_ = static_cast<std::uint8_t*>(::operator new(bytes, kAlignment));
    capacity_ = bytes;
}

PixelBlock::~PixelBlock() {
    release();
}

PixelBlock::PixelBlock(PixelBlock&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), capacity_(std::exchange(other.capacity_, 0)) {}

PixelBlock& PixelBlock::operator=(PixelBlock&& other) noexcept {
    if (this != &other) {
        release();
        data_ = std::exchange(other.data_, nullptr);
        capacity_ = std::exchange(other.capacity_, 0);
    }
    return *this;
}

void PixelBlock::release() {
    if (data_ == nullptr) {
        return;
    }
    std::uint8_t* unwanted = data_;
    if (KeepsBlocks()) {
        Pool& pool = ThePool();
        const std::lock_guard lock(pool.mutex);
        try {
            pool.blocks.push_back({data_, capacity_});
            unwanted = nullptr;
            if (pool.blocks.size() > kKeptBlocks) {
                unwanted = pool.blocks.front().data;
                pool.blocks.erase(pool.blocks.begin());
            }
        } catch (const std::bad_alloc&) {
            // No room to remember the block: it goes back to the system.
        }
    }
    if (unwanted != nullptr) {
        Free(unwanted);
    }
    data_ = nullptr;
    capacity_ = 0;
}

void PixelBlock::trim() {
    Pool& pool = ThePool();
    const std::lock_guard lock(pool.mutex);
    for (const Kept& block : pool.blocks) {
        Free(block.data);
    }
    pool.blocks.clear();
}

}  // namespace vireon::headless
