#include "headless/remote/messages.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace vireon::headless {
namespace {

Bytes PayloadOf(const Bytes& message) {
    return {message.begin() + static_cast<std::ptrdiff_t>(kHeaderSize), message.end()};
}

Picture SamplePicture(std::int32_t bits) {
    Picture picture(5, 3, bits);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        picture.pixels[i] = static_cast<std::uint8_t>(i * 37 + 11);
    }
    picture.originX = -4;
    picture.originY = 9;
    return picture;
}

RenderJob SampleJob() {
    RenderJob job;
    job.host = {sdk::kHostPremierePro, 13, 4};
    job.smart = false;
    job.bits = 32;
    job.quality = sdk::PF_Quality_LO;
    job.downsampleX = {1, 2};
    job.downsampleY = {1, 3};
    job.pixelAspect = {10, 11};
    job.fullWidth = 10;
    job.fullHeight = 9;
    job.currentTime = -30;
    job.timeStep = 7;
    job.timeScale = 60000;
    job.extraRowBytes = 4;
    job.negativeRowBytes = true;
    job.values[3] = {12.5, 0};
    job.values[16] = {-1.25, 1e300};
    job.input = SamplePicture(32);
    job.layers[8] = SamplePicture(8);
    job.layers[15] = SamplePicture(16);
    return job;
}

Description SampleDescription() {
    Description description;
    description.about = "An effect.";
    description.packedVersion = 0x00089600;
    description.outFlags = 0x06008021;
    description.outFlags2 = 0x80001408;
    ParameterDescription parameter;
    parameter.index = 1;
    parameter.id = 1039;
    parameter.kind = sdk::PF_Param_POPUP;
    parameter.name = "Shape";
    parameter.flags = 66;
    parameter.uiFlags = 32;
    parameter.validMin = 1;
    parameter.validMax = 4;
    parameter.sliderMin = -1;
    parameter.sliderMax = 0.5;
    parameter.defaultValue = 2;
    parameter.defaultY = 3;
    parameter.precision = 2;
    parameter.displayFlags = 1;
    parameter.text = "A|B|(-|C";
    description.parameters = {parameter, ParameterDescription{}};
    return description;
}

RenderResult SampleResult() {
    RenderResult result;
    result.error = 517;
    result.message = "stopped";
    result.displayError = true;
    result.violations = "a\nb";
    result.output = SamplePicture(16);
    result.peakBytes = 1ull << 40;
    result.seconds = 0.125;
    return result;
}

TEST(Messages, GiveBackWhatWasEncoded) {
    const Hello hello{"windows", "avx2"};
    EXPECT_EQ(DecodeHello(PayloadOf(EncodeHello(hello))), hello);
    EXPECT_EQ(DecodeLoad(PayloadOf(EncodeLoad({"Z:\\a b\\c.aex"}))), LoadRequest{"Z:\\a b\\c.aex"});
    const HostIdentity host{sdk::kHostFinalCutPro, 12, 11};
    EXPECT_EQ(DecodeDescribe(PayloadOf(EncodeDescribe(host))), host);
    EXPECT_EQ(DecodeDescription(PayloadOf(EncodeDescription(SampleDescription()))),
              SampleDescription());
    const auto render = DecodeRender(PayloadOf(EncodeRender(42, SampleJob())));
    EXPECT_EQ(render.id, 42u);
    EXPECT_EQ(render.content, SampleJob());
    EXPECT_EQ(DecodeAbort(PayloadOf(EncodeAbort(43))), 43u);
    const auto progress = DecodeProgress(PayloadOf(EncodeProgress(44, {3, 10})));
    EXPECT_EQ(progress.id, 44u);
    EXPECT_EQ(progress.content, (Progress{3, 10}));
    const auto result = DecodeResult(PayloadOf(EncodeResult(45, SampleResult())));
    EXPECT_EQ(result.id, 45u);
    EXPECT_EQ(result.content, SampleResult());
    const Failure failure{Failure::Kind::kEffect, 512, "why"};
    EXPECT_EQ(DecodeFailure(PayloadOf(EncodeFailure(failure))), failure);
    EXPECT_TRUE(PayloadOf(EncodeQuit()).empty());
    EXPECT_TRUE(PayloadOf(EncodeLoaded()).empty());
}

TEST(Messages, FloatPixelsKeepEveryBit) {
    RenderResult result;
    result.output = Picture(4, 1, 32);
    auto* const row = result.output.row<std::uint32_t>(0);
    for (std::uint32_t i = 0; i < 16; ++i) {
        row[i] = 0x7F800001u + i * 0x00123457u;  // NaNs with payloads, infinities, anything
    }
    EXPECT_EQ(DecodeResult(PayloadOf(EncodeResult(1, result))).content.output.pixels,
              result.output.pixels);
}

struct Codec {
    const char* name;
    Bytes payload;
    std::function<void(const Bytes&)> decode;
};

std::vector<Codec> Codecs() {
    return {
        {"hello", PayloadOf(EncodeHello({"linux", "sse2"})),
         [](const Bytes& b) { DecodeHello(b); }},
        {"load", PayloadOf(EncodeLoad({"/x"})), [](const Bytes& b) { DecodeLoad(b); }},
        {"describe", PayloadOf(EncodeDescribe({})), [](const Bytes& b) { DecodeDescribe(b); }},
        {"description", PayloadOf(EncodeDescription(SampleDescription())),
         [](const Bytes& b) { DecodeDescription(b); }},
        {"render", PayloadOf(EncodeRender(1, SampleJob())),
         [](const Bytes& b) { DecodeRender(b); }},
        {"abort", PayloadOf(EncodeAbort(1)), [](const Bytes& b) { DecodeAbort(b); }},
        {"progress", PayloadOf(EncodeProgress(1, {})), [](const Bytes& b) { DecodeProgress(b); }},
        {"result", PayloadOf(EncodeResult(1, SampleResult())),
         [](const Bytes& b) { DecodeResult(b); }},
        {"failure", PayloadOf(EncodeFailure({})), [](const Bytes& b) { DecodeFailure(b); }},
    };
}

TEST(Messages, EveryTruncationIsAnError) {
    for (const Codec& codec : Codecs()) {
        for (std::size_t size = 0; size < codec.payload.size(); ++size) {
            const Bytes cut(codec.payload.begin(),
                            codec.payload.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_THROW(codec.decode(cut), ProtocolError) << codec.name << " at " << size;
        }
    }
}

TEST(Messages, EveryExtensionIsAnError) {
    for (const Codec& codec : Codecs()) {
        Bytes longer = codec.payload;
        longer.push_back(0);
        EXPECT_THROW(codec.decode(longer), ProtocolError) << codec.name;
    }
}

TEST(Messages, DamagedBytesNeverDoMoreThanThrow) {
    std::mt19937 random(3);
    for (const Codec& codec : Codecs()) {
        int decoded = 0;
        for (int round = 0; round < 3000; ++round) {
            Bytes damaged = codec.payload;
            for (std::uint32_t i = 0; i <= random() % 4; ++i) {
                damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            }
            try {
                codec.decode(damaged);
                ++decoded;
            } catch (const ProtocolError&) {
            }
        }
        // Some damage only changes a number, so it is not all errors.
        EXPECT_GT(decoded, 0) << codec.name;
    }
}

TEST(Messages, RandomBytesNeverDoMoreThanThrow) {
    std::mt19937 random(5);
    for (const Codec& codec : Codecs()) {
        for (int round = 0; round < 1000; ++round) {
            Bytes bytes(random() % 300);
            std::generate(bytes.begin(), bytes.end(),
                          [&random] { return static_cast<std::uint8_t>(random()); });
            try {
                codec.decode(bytes);
            } catch (const ProtocolError&) {
            }
        }
    }
}

TEST(Messages, PicturesMustFitTheirPixels) {
    const auto decode = [](const Picture& picture) {
        RenderResult result;
        result.output = picture;
        DecodeResult(PayloadOf(EncodeResult(1, result)));
    };
    EXPECT_NO_THROW(decode(SamplePicture(8)));
    EXPECT_NO_THROW(decode(Picture{}));
    Picture wrong = SamplePicture(8);
    wrong.width = 6;
    EXPECT_THROW(decode(wrong), ProtocolError);
    wrong = SamplePicture(8);
    wrong.bits = 12;
    EXPECT_THROW(decode(wrong), ProtocolError);
    wrong = SamplePicture(8);
    wrong.width = -5;
    wrong.height = -3;
    EXPECT_THROW(decode(wrong), ProtocolError);
    wrong = SamplePicture(8);
    wrong.width = std::numeric_limits<std::int32_t>::max();
    EXPECT_THROW(decode(wrong), ProtocolError);
    wrong = SamplePicture(8);
    wrong.originX = std::numeric_limits<std::int32_t>::min();
    EXPECT_THROW(decode(wrong), ProtocolError);
    wrong = SamplePicture(8);
    wrong.pixels.clear();
    EXPECT_THROW(decode(wrong), ProtocolError);
}

TEST(Messages, UnpackTheVersion) {
    EXPECT_EQ(UnpackVersion(0x00089600), (EffectVersion{1, 1, 2, sdk::PF_Stage_RELEASE, 0}));
    // Majors above 7 continue in bits 26 to 29.
    EXPECT_EQ(UnpackVersion(1u << 26 | 2u << 19 | 5u), (EffectVersion{10, 0, 0, 0, 5}));
}

TEST(Messages, SplitChoices) {
    ParameterDescription parameter;
    EXPECT_TRUE(parameter.choices().empty());
    parameter.text = "One";
    EXPECT_EQ(parameter.choices(), std::vector<std::string>{"One"});
    parameter.text = "One|(-|Two Words";
    EXPECT_EQ(parameter.choices(), (std::vector<std::string>{"One", "(-", "Two Words"}));
}

}  // namespace
}  // namespace vireon::headless
