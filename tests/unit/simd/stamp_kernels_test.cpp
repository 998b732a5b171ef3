// The kernels by which a convolution looks at its source and writes its planes, at every level that
// the machine has.

#include "simd/stamp_kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/support/levels.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kCanary = -77.25f;
constexpr std::ptrdiff_t kMostPixels = 70;

class StampKernelsOfLevel : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::StampKernels& kernels() const { return simd::KernelsOf(GetParam())->stamps; }
};

TEST_P(StampKernelsOfLevel, WritesPixelsWhereverTheyLieAndLeavesThePlanesZero) {
    Random random(31);
    for (const bool streams : {false, true}) {
        for (std::ptrdiff_t count = 0; count <= kMostPixels; ++count) {
            for (std::ptrdiff_t offset = 0; offset < 4; ++offset) {
                const auto none = random.whole(0, 4);
                std::vector<float> planes[kChannels];
                float* places[kChannels];
                for (std::int32_t c = 0; c < kChannels; ++c) {
                    planes[c].resize(static_cast<std::size_t>(count) + 1, kCanary);
                    std::generate_n(planes[c].begin(), count,
                                    [&] { return random.real(-1.0f, 9.0f); });
                    places[c] = c == none ? nullptr : planes[c].data();
                }
                std::vector<float> want(static_cast<std::size_t>(4 * count), 0.0f);
                for (std::ptrdiff_t i = 0; i < 4 * count; ++i) {
                    if (i % 4 != none) {
                        want[static_cast<std::size_t>(i)] =
                            planes[i % 4][static_cast<std::size_t>(i / 4)];
                    }
                }
                std::vector<float> got(static_cast<std::size_t>(4 * count + 8), kCanary);
                kernels().writePixels(places, got.data() + offset, count, streams);
                kernels().endStreams();
                EXPECT_TRUE(std::equal(want.begin(), want.end(), got.begin() + offset));
                EXPECT_EQ(std::count(got.begin(), got.end(), kCanary), 8);
                for (std::int32_t c = 0; c < kChannels; ++c) {
                    EXPECT_EQ(planes[c].back(), kCanary);
                    if (c == none) continue;
                    EXPECT_EQ(std::count(planes[c].begin(), planes[c].end(), 0.0f), count);
                }
            }
        }
    }
}

TEST_P(StampKernelsOfLevel, ClearsPixelsWhereverTheyLie) {
    for (const bool streams : {false, true}) {
        for (std::ptrdiff_t count = 0; count <= kMostPixels; ++count) {
            for (std::ptrdiff_t offset = 0; offset < 4; ++offset) {
                std::vector<float> got(static_cast<std::size_t>(4 * count + 8), kCanary);
                kernels().clearPixels(got.data() + offset, count, streams);
                kernels().endStreams();
                EXPECT_EQ(std::count(got.begin() + offset, got.begin() + offset + 4 * count, 0.0f),
                          4 * count);
                EXPECT_EQ(std::count(got.begin(), got.end(), kCanary), 8);
            }
        }
    }
}

TEST_P(StampKernelsOfLevel, FlagsTheChannelsOfEveryBlockThatMakeAStamp) {
    constexpr float kRadius = 4.0f;
    Random random(32);
    for (std::ptrdiff_t pixels = 0; pixels <= kMostPixels; ++pixels) {
        for (std::int32_t chosen = 0; chosen < 16; ++chosen) {
            std::int32_t masks[kChannels];
            for (std::int32_t c = 0; c < kChannels; ++c) masks[c] = (chosen >> c & 1) != 0 ? -1 : 0;
            std::vector<float> row(static_cast<std::size_t>(4 * pixels));
            std::vector<std::uint8_t> want(static_cast<std::size_t>(pixels / simd::kLightBlock + 1),
                                           0);
            for (std::ptrdiff_t i = 0; i < 4 * pixels; ++i) {
                const bool lit = random.bits() % 41 == 0;
                row[static_cast<std::size_t>(i)] =
                    lit ? random.real(0.25f, 2.0f) : random.real(-2.0f, 0.249f);
                if (!lit || masks[i % 4] == 0) continue;
                auto& flags = want[static_cast<std::size_t>(i / 4 / simd::kLightBlock)];
                flags = static_cast<std::uint8_t>(flags | 1 << i % 4);
            }
            std::vector<std::uint8_t> got(want.size() + 1, 0xEE);
            kernels().flagLights(row.data(), pixels, kRadius, masks, got.data());
            EXPECT_EQ(got.back(), 0xEE);
            got.pop_back();
            EXPECT_EQ(got, want) << pixels << " pixels, channels " << chosen;
        }
    }
}

TEST_P(StampKernelsOfLevel, FlagsTheFloatsThatDifferFromThePixelBefore) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    Random random(34);
    for (std::int32_t pixels = 1; pixels <= kMostPixels; ++pixels) {
        std::vector<float> row(static_cast<std::size_t>(4 * pixels));
        for (float& value : row) {
            const float values[] = {0.0f, -0.0f, 1.0f, 2.5f, kNaN};
            value = values[random.whole(0, 4)];
        }
        std::vector<std::int32_t> places;
        for (std::int32_t place = 0; place * simd::kLightBlock < pixels; ++place) {
            if (place == 0 || random.whole(0, 3) != 0) places.push_back(place);
        }
        std::vector<std::uint64_t> got(places.size() + 1, 0xEE);
        kernels().flagChanges(row.data(), pixels, places.data(),
                              static_cast<std::ptrdiff_t>(places.size()), got.data());
        EXPECT_EQ(got.back(), 0xEEu);
        for (std::size_t block = 0; block < places.size(); ++block) {
            std::uint64_t want = 0;
            for (std::int32_t i = 0; i < 4 * simd::kLightBlock; ++i) {
                const std::int32_t at = 4 * simd::kLightBlock * places[block] + i;
                if (at >= 4 * pixels) break;
                const auto here = static_cast<std::size_t>(at);
                const bool differs = at < 4 || row[here] != row[here - 4];
                want |= std::uint64_t{differs} << i;
            }
            EXPECT_EQ(got[block], want) << pixels << " pixels, block " << places[block];
        }
    }
}

TEST_P(StampKernelsOfLevel, AddsRowsRoundAndRound) {
    Random random(35);
    constexpr std::int32_t kRows = 8;
    constexpr std::int32_t kWidth = 45;
    constexpr std::ptrdiff_t kStride = 3 * simd::kPlaneBlock;
    for (std::int32_t trial = 0; trial < 400; ++trial) {
        const std::int32_t columns = random.whole(1, 60);
        const std::int32_t rows = random.whole(1, kRows);
        const std::int32_t first = random.whole(0, kRows - 1);
        const std::int32_t left = random.whole(-20, kWidth - 1);
        const std::int32_t copies = random.whole(1, simd::kMostCopies);
        const std::ptrdiff_t texelStride = columns + simd::kStampMargin;
        std::vector<float> texels(static_cast<std::size_t>(simd::kStampMargin + rows * texelStride),
                                  0.0f);
        std::vector<float> plane(static_cast<std::size_t>(kRows * kStride));
        for (float& value : plane) value = random.real(0.0f, 1.0f);
        std::vector<float> want = plane;
        for (std::int32_t y = 0; y < rows; ++y) {
            float* const row = texels.data() + simd::kStampMargin + y * texelStride;
            std::generate_n(row, columns, [&] { return random.real(0.0f, 1.0f); });
            float* const to = want.data() + (first + y) % kRows * kStride;
            for (std::int32_t copy = 0; copy < copies; ++copy) {
                for (std::int32_t i = 0; i < columns; ++i) {
                    const std::int32_t x = left + copy + i;
                    if (x >= 0 && x < kWidth) to[x] += row[i];
                }
            }
        }
        simd::StampSpan span{};
        span.plane = plane.data() + first * kStride;
        span.planeStride = kStride;
        span.texels = texels.data() + simd::kStampMargin;
        span.texelStride = texelStride;
        span.rows = rows;
        span.wrappedRows = std::max(first + rows - kRows, 0);
        span.wrap = kRows * kStride;
        span.left = left;
        span.columns = columns;
        span.width = kWidth;
        kernels().addCopies(span, copies);
        for (std::int32_t y = 0; y < kRows; ++y) {
            EXPECT_TRUE(std::equal(plane.data() + y * kStride, plane.data() + y * kStride + kWidth,
                                   want.data() + y * kStride))
                << "trial " << trial << ", row " << y;
        }
    }
}

TEST_P(StampKernelsOfLevel, SumsCopiesInDoublePrecisionAndRoundsOnce) {
    Random random(33);
    for (std::int32_t copies = 1; copies <= simd::kMostCopies; ++copies) {
        for (std::ptrdiff_t texels = 1; texels <= 40; ++texels) {
            const std::ptrdiff_t columns = texels + copies - 1;
            std::vector<float> row(
                static_cast<std::size_t>(simd::kStampMargin + texels + simd::kStampMargin), 0.0f);
            float* const first = row.data() + simd::kStampMargin;
            std::generate_n(first, texels, [&] { return random.real(-0.1f, 1.0f); });
            std::vector<float> got(static_cast<std::size_t>(columns) + 8, kCanary);
            kernels().sumCopies(first, copies, got.data(), columns);
            EXPECT_EQ(got.back(), kCanary);
            for (std::ptrdiff_t i = 0; i < columns; ++i) {
                double sum = 0.0;
                for (std::int32_t copy = 0; copy < copies; ++copy) {
                    sum += static_cast<double>(first[i - copy]);
                }
                EXPECT_EQ(got[static_cast<std::size_t>(i)], static_cast<float>(sum))
                    << copies << " copies of " << texels << ", column " << i;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, StampKernelsOfLevel, testing::ValuesIn(KernelLevels()),
                         LevelOfTest);

}  // namespace
}  // namespace vireon::test
