#include "headless/remote/wire.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace vireon::headless {
namespace {

TEST(Wire, GivesBackWhatWasWritten) {
    Bytes bytes;
    PayloadWriter writer(bytes);
    writer.u8(200);
    writer.u16(60000);
    writer.u32(4000000000u);
    writer.u64(1ull << 63);
    writer.i16(-2);
    writer.i32(-3);
    writer.f64(-0.0);
    writer.f64(std::numeric_limits<double>::denorm_min());
    writer.boolean(true);
    writer.boolean(false);
    writer.text("glow");
    writer.block(Bytes{1, 2, 3});

    PayloadReader reader(bytes);
    EXPECT_EQ(reader.u8(), 200);
    EXPECT_EQ(reader.u16(), 60000);
    EXPECT_EQ(reader.u32(), 4000000000u);
    EXPECT_EQ(reader.u64(), 1ull << 63);
    EXPECT_EQ(reader.i16(), -2);
    EXPECT_EQ(reader.i32(), -3);
    EXPECT_TRUE(std::signbit(reader.f64()));
    EXPECT_EQ(reader.f64(), std::numeric_limits<double>::denorm_min());
    EXPECT_TRUE(reader.boolean());
    EXPECT_FALSE(reader.boolean());
    EXPECT_EQ(reader.text(), "glow");
    EXPECT_EQ(reader.block(), (Bytes{1, 2, 3}));
    EXPECT_NO_THROW(reader.end());
}

TEST(Wire, IsLittleEndian) {
    Bytes bytes;
    PayloadWriter(bytes).u32(0x01020304);
    EXPECT_EQ(bytes, (Bytes{4, 3, 2, 1}));
}

TEST(Wire, ReadingPastTheEndIsAnError) {
    const Bytes bytes{1, 2, 3};
    EXPECT_THROW(PayloadReader(bytes).u32(), ProtocolError);
    PayloadReader reader(bytes);
    EXPECT_EQ(reader.u16(), 0x0201);
    EXPECT_THROW(reader.u16(), ProtocolError);
}

TEST(Wire, LengthsBeyondTheMessageAreErrors) {
    Bytes text;
    PayloadWriter(text).u32(5);
    text.push_back('x');
    EXPECT_THROW(PayloadReader(text).text(), ProtocolError);

    Bytes block;
    PayloadWriter(block).u64(std::numeric_limits<std::uint64_t>::max());
    EXPECT_THROW(PayloadReader(block).block(), ProtocolError);

    Bytes list;
    PayloadWriter(list).u32(std::numeric_limits<std::uint32_t>::max());
    EXPECT_THROW(PayloadReader(list).count(8), ProtocolError);
}

TEST(Wire, OversizedTextIsRefusedOnBothSides) {
    Bytes bytes;
    EXPECT_THROW(PayloadWriter(bytes).text(std::string(kMaxText + 1, 'x')), ProtocolError);
    Bytes announced;
    PayloadWriter(announced).u32(kMaxText + 1);
    announced.resize(announced.size() + kMaxText + 1);
    EXPECT_THROW(PayloadReader(announced).text(), ProtocolError);
}

TEST(Wire, TruthValuesAreZeroOrOne) {
    const Bytes bytes{2};
    EXPECT_THROW(PayloadReader(bytes).boolean(), ProtocolError);
}

TEST(Wire, LeftoverBytesAreAnError) {
    const Bytes bytes{1, 2};
    PayloadReader reader(bytes);
    reader.u8();
    EXPECT_THROW(reader.end(), ProtocolError);
}

}  // namespace
}  // namespace vireon::headless
