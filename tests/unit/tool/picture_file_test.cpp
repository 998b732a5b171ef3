// Reading and writing picture files, together: what goes in must come out.

#include "tools/vireon/picture_file.h"

#include <cmath>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/unit/tool/expect_error.h"
#include "tests/unit/tool/scratch_folder.h"
#include "tools/vireon/picture_writer.h"
#include "tools/vireon/samples.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace vireon::tool {
namespace {

using headless::Picture;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

constexpr char kStraight[] = "oiio:UnassociatedAlpha";

/// Writes samples as they stand. Straight alpha is said so where `straight` is set.
template <typename Sample>
void WriteRaw(const std::filesystem::path& path, int width, int channels, TypeDesc type,
              const std::vector<Sample>& samples, bool straight = false) {
    ImageSpec spec(width, static_cast<int>(samples.size()) / channels / width, channels, type);
    if (straight) {
        spec.attribute(kStraight, 1);
    }
    spec.attribute("PixelAspectRatio", 10.0f / 11.0f);
    spec.attribute("Artist", "A. Painter");
    spec.attribute("ImageDescription", "a night");
    const auto output = OIIO::ImageOutput::create(path.string());
    ASSERT_TRUE(output->open(path.string(), spec));
    ASSERT_TRUE(output->write_image(OIIO::BaseTypeFromC<Sample>::value, samples.data()));
    ASSERT_TRUE(output->close());
}

template <typename Sample>
std::vector<Sample> ReadRaw(const std::filesystem::path& path, ImageSpec* specOut = nullptr) {
    ImageSpec wishes;
    wishes.attribute(kStraight, 1);
    const auto input = OIIO::ImageInput::open(path.string(), &wishes);
    if (input == nullptr) {
        ADD_FAILURE() << OIIO::geterror();
        return {};
    }
    const ImageSpec spec = input->spec();
    std::vector<Sample> samples(static_cast<std::size_t>(spec.width) *
                                static_cast<std::size_t>(spec.height) *
                                static_cast<std::size_t>(spec.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::BaseTypeFromC<Sample>::value,
                                  samples.data()));
    if (specOut != nullptr) {
        *specOut = spec;
    }
    return samples;
}

/// Reads `in`, takes it through a host's picture and writes it to `out`.
std::vector<std::string> PassThrough(const std::filesystem::path& in,
                                     const std::filesystem::path& out, std::int32_t bits = 0) {
    const PictureFile file = ReadPictureFile(in);
    std::vector<std::string> notes;
    WritePictureFile(out, ToHostPicture(file, bits != 0 ? bits : file.naturalBits()), file, notes);
    return notes;
}

template <typename Sample>
std::vector<Sample> Ramp(std::size_t count, std::uint32_t factor, std::uint32_t white) {
    std::vector<Sample> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = static_cast<Sample>(i * factor % (white + 1));
    }
    return samples;
}

class PictureFiles : public testing::Test {
  protected:
    ScratchFolder folder_;
    std::filesystem::path in(const std::string& extension) const {
        return folder_ / ("in." + extension);
    }
    std::filesystem::path out(const std::string& extension) const {
        return folder_ / ("out." + extension);
    }
};

TEST_F(PictureFiles, Png8WithAlphaIsBitExact) {
    // Colours under transparency included: the file is straight.
    const auto samples = Ramp<std::uint8_t>(16 * 16 * 4, 37, 255);
    WriteRaw(in("png"), 16, 4, TypeDesc::UINT8, samples, true);
    for (const std::int32_t bits : {8, 16, 32}) {
        PassThrough(in("png"), out("png"), bits);
        ImageSpec spec;
        EXPECT_EQ(ReadRaw<std::uint8_t>(out("png"), &spec), samples) << bits;
        EXPECT_EQ(spec.format, TypeDesc::UINT8);
        EXPECT_EQ(spec.nchannels, 4);
    }
}

TEST_F(PictureFiles, Png8GivesTheHostTheSameBytes) {
    WriteRaw<std::uint8_t>(in("png"), 2, 4, TypeDesc::UINT8, {10, 20, 30, 40, 1, 2, 3, 0}, true);
    const Picture picture = ToHostPicture(ReadPictureFile(in("png")), 8);
    EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{40, 10, 20, 30, 0, 1, 2, 3}));
}

TEST_F(PictureFiles, Png16GoesToTheHostsRangeWithRounding) {
    const std::vector<std::uint16_t> samples{0, 1, 2, 65535, 32767, 32768, 65535, 32769};
    WriteRaw(in("png"), 2, 4, TypeDesc::UINT16, samples, true);
    const PictureFile file = ReadPictureFile(in("png"));
    EXPECT_EQ(file.naturalBits(), 16);
    const Picture picture = ToHostPicture(file, 16);
    const std::uint16_t* const row = picture.row<std::uint16_t>(0);
    // v x 32768 / 65535, rounded.
    EXPECT_EQ(row[0], 32768);
    EXPECT_EQ(row[1], 0);
    EXPECT_EQ(row[2], 1);
    EXPECT_EQ(row[3], 1);
    EXPECT_EQ(row[5], 16384);
    EXPECT_EQ(row[6], 16384);
    EXPECT_EQ(row[7], 32768);
    EXPECT_EQ(row[4], 16385);  // 16384.75
}

TEST_F(PictureFiles, EveryHostValueOf16BitsSurvivesAFile) {
    constexpr int kWidth = 257;
    Picture picture(kWidth, 128, 16);
    std::uint16_t value = 0;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < kWidth; ++x) {
            std::uint16_t* const pixel = picture.row<std::uint16_t>(y) + x * 4;
            pixel[0] = 32768;
            pixel[1] = pixel[2] = pixel[3] = std::min<std::uint16_t>(value++, 32768);
        }
    }
    ASSERT_GT(value, 32768);
    WriteRaw<std::uint16_t>(in("png"), 1, 4, TypeDesc::UINT16, {1, 2, 3, 65535}, true);
    std::vector<std::string> notes;
    WritePictureFile(out("png"), picture, ReadPictureFile(in("png")), notes);
    EXPECT_EQ(ToHostPicture(ReadPictureFile(out("png")), 16), picture);
}

TEST_F(PictureFiles, Png16RoundTripIsWithinHalfAStepOfTheHost) {
    const auto samples = Ramp<std::uint16_t>(64 * 64 * 3, 257 * 5 + 1, 65535);
    WriteRaw(in("png"), 64, 3, TypeDesc::UINT16, samples);
    PassThrough(in("png"), out("png"));
    ImageSpec spec;
    const auto result = ReadRaw<std::uint16_t>(out("png"), &spec);
    EXPECT_EQ(spec.format, TypeDesc::UINT16);
    ASSERT_EQ(result.size(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        EXPECT_NEAR(result[i], samples[i], 1) << i;
    }
}

TEST_F(PictureFiles, ExrIsUnassociatedAndAssociatedAgain) {
    WriteRaw<float>(in("exr"), 2, 4, TypeDesc::FLOAT, {0.25f, 0.5f, 2.0f, 0.5f, 8, -1, 0, 1});
    const PictureFile file = ReadPictureFile(in("exr"));
    EXPECT_TRUE(file.isAssociated);
    const Picture picture = ToHostPicture(file, 32);
    EXPECT_EQ(PixelAt(picture, 0, 0), (Color{0.5, 1.0, 4.0, 0.5}));
    EXPECT_EQ(PixelAt(picture, 1, 0), (Color{8, -1, 0, 1}));
    PassThrough(in("exr"), out("exr"));
    EXPECT_EQ(ReadRaw<float>(out("exr")), ReadRaw<float>(in("exr")));
}

TEST_F(PictureFiles, ExrHalfStaysHalfAndFloatStaysFloat) {
    std::vector<float> samples;
    for (int i = 0; i < 32 * 32; ++i) {
        const float alpha = static_cast<float>(i % 17) / 16.0f;
        samples.insert(samples.end(), {alpha * 0.375f, alpha * 3.0f, alpha * 0.0625f, alpha});
    }
    for (const TypeDesc::BASETYPE type : {TypeDesc::HALF, TypeDesc::FLOAT}) {
        WriteRaw(in("exr"), 32, 4, TypeDesc(type), samples);
        PassThrough(in("exr"), out("exr"));
        ImageSpec spec;
        EXPECT_EQ(ReadRaw<float>(out("exr"), &spec), ReadRaw<float>(in("exr")));
        EXPECT_EQ(spec.format.basetype, type);
    }
}

TEST_F(PictureFiles, HalfFilesKeepVeryBrightLightFinite) {
    WriteRaw<float>(in("exr"), 1, 3, TypeDesc::HALF, {1, 2, 3});
    const PictureFile file = ReadPictureFile(in("exr"));
    Picture picture = ToHostPicture(file, 32);
    SetPixel(picture, 0, 0, {1e6, -1e6, 1, 1});
    std::vector<std::string> notes;
    WritePictureFile(out("exr"), picture, file, notes);
    EXPECT_EQ(ReadRaw<float>(out("exr")), (std::vector<float>{65504, -65504, 1}));
}

TEST_F(PictureFiles, TiffKeepsItsKindOfAlpha) {
    std::vector<std::uint8_t> associated;
    for (int i = 0; i < 256; ++i) {
        const auto alpha = static_cast<std::uint8_t>(i);
        associated.insert(associated.end(), {static_cast<std::uint8_t>(alpha / 2),
                                             static_cast<std::uint8_t>(alpha / 3), alpha, alpha});
    }
    WriteRaw(in("tif"), 16, 4, TypeDesc::UINT8, associated);
    EXPECT_TRUE(ReadPictureFile(in("tif")).isAssociated);
    PassThrough(in("tif"), out("tif"));
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("tif")), associated);

    const auto straight = Ramp<std::uint8_t>(16 * 16 * 4, 91, 255);
    WriteRaw(in("tif"), 16, 4, TypeDesc::UINT8, straight, true);
    EXPECT_FALSE(ReadPictureFile(in("tif")).isAssociated);
    PassThrough(in("tif"), out("tif"));
    ImageSpec spec;
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("tif"), &spec), straight);
    EXPECT_EQ(spec.get_int_attribute(kStraight, 0), 1);
}

TEST_F(PictureFiles, TiffHoldsEveryNumberFormat) {
    const std::vector<float> samples{0.25f, 0.5f, 0.75f, 1.0f, 0.125f, 4.0f};
    WriteRaw(in("tif"), 2, 3, TypeDesc::FLOAT, samples);
    PassThrough(in("tif"), out("tif"));
    ImageSpec spec;
    EXPECT_EQ(ReadRaw<float>(out("tif"), &spec), samples);
    EXPECT_EQ(spec.format, TypeDesc::FLOAT);
    WriteRaw<std::uint16_t>(in("tif"), 1, 3, TypeDesc::UINT16, {0, 65535, 65535});
    PassThrough(in("tif"), out("tif"));
    EXPECT_EQ(ReadRaw<std::uint16_t>(out("tif"), &spec),
              (std::vector<std::uint16_t>{0, 65535, 65535}));
    EXPECT_EQ(spec.format, TypeDesc::UINT16);
}

TEST_F(PictureFiles, StraightFormatsSurvive) {
    std::vector<std::uint8_t> samples;
    for (int i = 0; i < 64; ++i) {
        const auto value = static_cast<std::uint8_t>(i * 3);
        samples.insert(samples.end(), {200, value, 7, static_cast<std::uint8_t>(i * 4)});
    }
    for (const char* const extension : {"png", "tga", "bmp"}) {
        WriteRaw(in(extension), 8, 4, TypeDesc::UINT8, samples, true);
        PassThrough(in(extension), out(extension));
        EXPECT_EQ(ReadRaw<std::uint8_t>(out(extension)), samples) << extension;
    }
}

TEST_F(PictureFiles, PngToExrAndBackMeansTheSame) {
    std::vector<std::uint8_t> samples;
    for (int i = 0; i < 255; ++i) {
        samples.insert(samples.end(),
                       {static_cast<std::uint8_t>(i), 128, 255, static_cast<std::uint8_t>(i + 1)});
    }
    WriteRaw(in("png"), 15, 4, TypeDesc::UINT8, samples, true);
    PassThrough(in("png"), out("exr"));
    const auto exr = ReadRaw<float>(out("exr"));
    EXPECT_NEAR(exr[4 * 99], 99 / 255.0 * 100 / 255.0, 1e-3);
    const PictureFile file = ReadPictureFile(out("exr"));
    EXPECT_EQ(file.format, SampleFormat::kHalf);
    PictureFile asPng = file;
    asPng.format = SampleFormat::k8;
    std::vector<std::string> notes;
    WritePictureFile(out("png"), ToHostPicture(file, 32), asPng, notes);
    const auto back = ReadRaw<std::uint8_t>(out("png"));
    ASSERT_EQ(back.size(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        EXPECT_NEAR(back[i], samples[i], 1) << i;
    }
}

TEST_F(PictureFiles, NumberFormatsThatAreMissingGiveWayToWiderOnes) {
    WriteRaw<std::uint16_t>(in("png"), 1, 3, TypeDesc::UINT16, {1, 40000, 65535});
    PassThrough(in("png"), out("exr"));
    ImageSpec spec;
    ReadRaw<float>(out("exr"), &spec);
    EXPECT_EQ(spec.format, TypeDesc::FLOAT);
    PassThrough(out("exr"), folder_ / "b.png");
    ReadRaw<std::uint16_t>(folder_ / "b.png", &spec);
    EXPECT_EQ(spec.format, TypeDesc::UINT16);
}

TEST_F(PictureFiles, GreyStaysGreyAsLongAsItIs) {
    WriteRaw<std::uint8_t>(in("png"), 2, 1, TypeDesc::UINT8, {10, 200});
    const PictureFile file = ReadPictureFile(in("png"));
    EXPECT_TRUE(file.isGrey);
    Picture picture = ToHostPicture(file, 8);
    EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{255, 10, 10, 10, 255, 200, 200, 200}));
    std::vector<std::string> notes;
    ImageSpec spec;
    WritePictureFile(out("png"), picture, file, notes);
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png"), &spec), (std::vector<std::uint8_t>{10, 200}));
    SetPixel(picture, 0, 0, {1, 0, 0, 1});
    WritePictureFile(out("png"), picture, file, notes);
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png"), &spec),
              (std::vector<std::uint8_t>{255, 0, 0, 200, 200, 200}));
}

TEST_F(PictureFiles, GreyWithAlphaWorks) {
    const std::vector<std::uint8_t> samples{10, 128, 200, 0};
    WriteRaw(in("png"), 2, 2, TypeDesc::UINT8, samples, true);
    const PictureFile file = ReadPictureFile(in("png"));
    EXPECT_TRUE(file.isGrey);
    EXPECT_TRUE(file.hasAlpha);
    PassThrough(in("png"), out("png"));
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png")), samples);
}

TEST_F(PictureFiles, AlphaAppearsOnlyWhenItIsNeeded) {
    WriteRaw<std::uint8_t>(in("png"), 1, 3, TypeDesc::UINT8, {1, 2, 3});
    const PictureFile file = ReadPictureFile(in("png"));
    Picture picture = ToHostPicture(file, 8);
    std::vector<std::string> notes;
    WritePictureFile(out("png"), picture, file, notes);
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png")), (std::vector<std::uint8_t>{1, 2, 3}));
    picture.pixels[0] = 100;
    WritePictureFile(out("png"), picture, file, notes);
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png")), (std::vector<std::uint8_t>{1, 2, 3, 100}));
    // A file with alpha keeps it, opaque or not.
    WriteRaw<std::uint8_t>(in("png"), 1, 4, TypeDesc::UINT8, {1, 2, 3, 255}, true);
    PassThrough(in("png"), out("png"));
    EXPECT_EQ(ReadRaw<std::uint8_t>(out("png")), (std::vector<std::uint8_t>{1, 2, 3, 255}));
    EXPECT_TRUE(notes.empty());
}

TEST_F(PictureFiles, FormatsWithoutAlphaGetThePictureOverBlack) {
    std::vector<std::uint8_t> samples;
    for (int i = 0; i < 64; ++i) {
        samples.insert(samples.end(), {200, 200, 200, 128});
    }
    WriteRaw(in("png"), 8, 4, TypeDesc::UINT8, samples, true);
    const std::vector<std::string> notes = PassThrough(in("png"), out("jpg"));
    ASSERT_EQ(notes.size(), 1u);
    EXPECT_NE(notes[0].find("over black"), std::string::npos);
    ImageSpec spec;
    EXPECT_NEAR(ReadRaw<std::uint8_t>(out("jpg"), &spec)[0], 100, 2);
    EXPECT_EQ(spec.nchannels, 3);
    // Nothing to say about a picture that is opaque.
    WriteRaw<std::uint8_t>(in("png"), 1, 4, TypeDesc::UINT8, {9, 9, 9, 255}, true);
    EXPECT_TRUE(PassThrough(in("png"), out("jpg")).empty());
}

TEST_F(PictureFiles, MetadataAndPixelAspectAreKept) {
    for (const char* const extension : {"exr", "tif"}) {
        WriteRaw<float>(in(extension), 1, 3, TypeDesc::FLOAT, {1, 2, 3});
        EXPECT_NEAR(ReadPictureFile(in(extension)).pixelAspect, 10.0 / 11.0, 1e-6);
        PassThrough(in(extension), out(extension));
        ImageSpec spec;
        ReadRaw<float>(out(extension), &spec);
        EXPECT_EQ(spec.get_string_attribute("Artist"), "A. Painter") << extension;
        EXPECT_EQ(spec.get_string_attribute("ImageDescription"), "a night") << extension;
        EXPECT_NEAR(spec.get_float_attribute("PixelAspectRatio"), 10.0f / 11.0f, 1e-3f)
            << extension;
    }
}

TEST_F(PictureFiles, JpegKeepsThePixelAspectBothWays) {
    std::filesystem::path from = in("exr");
    WriteRaw<float>(from, 16, 3, TypeDesc::HALF, std::vector<float>(16 * 16 * 3, 0.5f));
    for (const char* const name : {"first.jpg", "second.jpg", "last.exr"}) {
        PassThrough(from, folder_ / name, 8);
        from = folder_ / name;
        EXPECT_NEAR(ReadPictureFile(from).pixelAspect, 10.0 / 11.0, 0.01) << name;
    }
}

TEST_F(PictureFiles, WindowsOfExrAreKept) {
    ImageSpec spec(4, 3, 3, TypeDesc::HALF);
    spec.x = 10;
    spec.y = -5;
    spec.full_x = 0;
    spec.full_y = 0;
    spec.full_width = 40;
    spec.full_height = 30;
    const auto output = OIIO::ImageOutput::create(in("exr").string());
    ASSERT_TRUE(output->open(in("exr").string(), spec));
    const std::vector<float> samples(4 * 3 * 3, 0.5f);
    ASSERT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()));
    output->close();
    PassThrough(in("exr"), out("exr"));
    ImageSpec result;
    ReadRaw<float>(out("exr"), &result);
    EXPECT_EQ(result.x, 10);
    EXPECT_EQ(result.y, -5);
    EXPECT_EQ(result.full_width, 40);
    EXPECT_EQ(result.full_height, 30);
}

TEST_F(PictureFiles, InputMayBeTheOutput) {
    const auto samples = Ramp<std::uint8_t>(4 * 4 * 3, 17, 255);
    WriteRaw(in("png"), 4, 3, TypeDesc::UINT8, samples);
    PassThrough(in("png"), in("png"));
    EXPECT_EQ(ReadRaw<std::uint8_t>(in("png")), samples);
    EXPECT_EQ(folder_.count(), 1);
}

TEST_F(PictureFiles, TruncatedFilesAreRefused) {
#if defined(__SANITIZE_ADDRESS__)
    // OpenImageIO leaks a text when a PNG is truncated.
    const __lsan::ScopedDisabler notOurs;
#endif
    std::vector<std::uint8_t> samples(64 * 64 * 3);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::uint8_t>(i * i * 7919 >> 3);
    }
    for (const char* const extension : {"png", "jpg", "tif", "exr", "bmp", "tga"}) {
        WriteRaw(in(extension), 64, 3, TypeDesc::UINT8, samples);
        ASSERT_NO_THROW(ReadPictureFile(in(extension))) << extension;
        const auto size = std::filesystem::file_size(in(extension));
        for (const double part : {0.9, 0.5, 0.1}) {
            std::filesystem::resize_file(
                in(extension), static_cast<std::uintmax_t>(static_cast<double>(size) * part));
            const std::string text =
                ExpectError(kInputUnreadable, [&] { ReadPictureFile(in(extension)); });
            EXPECT_NE(text.find("in." + std::string(extension)), std::string::npos);
        }
    }
}

TEST_F(PictureFiles, WhatIsNoPictureIsRefused) {
    ExpectError(kInputUnreadable, [&] { ReadPictureFile(in("png")); });
    ExpectError(kInputUnreadable, [&] { ReadPictureFile(folder_.path()); });
    std::ofstream(in("png")).close();
    ExpectError(kInputUnreadable, [&] { ReadPictureFile(in("png")); });
    std::ofstream(in("png")) << "this is text, not a picture";
    ExpectError(kInputUnreadable, [&] { ReadPictureFile(in("png")); });
    std::ofstream(in("txt")) << "this is text, not a picture";
    ExpectError(kInputUnreadable, [&] { ReadPictureFile(in("txt")); });
}

TEST_F(PictureFiles, FormatsThatCannotBeWrittenAreRefused) {
    EXPECT_NO_THROW(CheckOutputFormat("a/b.PNG"));
    ExpectError(kOutputFailed, [] { CheckOutputFormat("picture.xyz"); });
    ExpectError(kOutputFailed, [] { CheckOutputFormat("picture"); });
}

}  // namespace
}  // namespace vireon::tool
