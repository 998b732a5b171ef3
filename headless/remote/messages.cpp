#include "headless/remote/messages.h"

#include <concepts>
#include <cstdlib>
#include <string_view>
#include <type_traits>

namespace vireon::headless {
namespace {

// Each record is walked by one function for both directions, so that writing and reading cannot
// disagree: an Archive has the same members whether it writes or reads.

class Writing {
  public:
    explicit Writing(Bytes& message) : writer_(message) {}

    void number(std::int16_t value) { writer_.i16(value); }
    void number(std::int32_t value) { writer_.i32(value); }
    void number(std::uint32_t value) { writer_.u32(value); }
    void number(std::uint64_t value) { writer_.u64(value); }
    void number(double value) { writer_.f64(value); }
    void flag(bool value) { writer_.boolean(value); }
    void text(const std::string& value) { writer_.text(value); }
    void pixels(const Bytes& value) { writer_.block(value); }
    void kind(Failure::Kind value) { writer_.u8(static_cast<std::uint8_t>(value)); }

    template <typename Item, typename Walk>
    void list(const std::vector<Item>& items, std::size_t /*itemSize*/, Walk walk) {
        writer_.u32(static_cast<std::uint32_t>(items.size()));
        for (const Item& item : items) {
            walk(*this, item);
        }
    }
    template <typename Item, typename Walk>
    void map(const std::map<std::int32_t, Item>& items, std::size_t /*itemSize*/, Walk walk) {
        writer_.u32(static_cast<std::uint32_t>(items.size()));
        for (const auto& [key, item] : items) {
            writer_.i32(key);
            walk(*this, item);
        }
    }
    static void check(const Picture& /*picture*/) {}

  private:
    PayloadWriter writer_;
};

class Reading {
  public:
    explicit Reading(const Bytes& payload) : reader_(payload) {}

    void number(std::int16_t& value) { value = reader_.i16(); }
    void number(std::int32_t& value) { value = reader_.i32(); }
    void number(std::uint32_t& value) { value = reader_.u32(); }
    void number(std::uint64_t& value) { value = reader_.u64(); }
    void number(double& value) { value = reader_.f64(); }
    void flag(bool& value) { value = reader_.boolean(); }
    void text(std::string& value) { value = reader_.text(); }
    void pixels(Bytes& value) { value = reader_.block(); }
    void kind(Failure::Kind& value) {
        const std::uint8_t code = reader_.u8();
        if (code > static_cast<std::uint8_t>(Failure::Kind::kProtocol)) {
            throw ProtocolError("failure of unknown kind " + std::to_string(code));
        }
        value = static_cast<Failure::Kind>(code);
    }

    template <typename Item, typename Walk>
    void list(std::vector<Item>& items, std::size_t itemSize, Walk walk) {
        items.resize(reader_.count(itemSize));
        for (Item& item : items) {
            walk(*this, item);
        }
    }
    template <typename Item, typename Walk>
    void map(std::map<std::int32_t, Item>& items, std::size_t itemSize, Walk walk) {
        const std::uint32_t count = reader_.count(itemSize + sizeof(std::int32_t));
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::int32_t key = reader_.i32();
            if (items.contains(key)) {
                throw ProtocolError("index " + std::to_string(key) + " twice in a message");
            }
            walk(*this, items[key]);
        }
    }
    static void check(const Picture& picture) {
        constexpr std::int32_t kLargest = 30000;
        constexpr std::int32_t kFarthest = 1'000'000;
        if (picture.pixels.empty() && picture.width == 0 && picture.height == 0) {
            return;
        }
        if (picture.width < 1 || picture.width > kLargest || picture.height < 1 ||
            picture.height > kLargest ||
            (picture.bits != 8 && picture.bits != 16 && picture.bits != 32)) {
            throw ProtocolError("picture of " + std::to_string(picture.width) + " x " +
                                std::to_string(picture.height) + " pixels with " +
                                std::to_string(picture.bits) + " bits in a message");
        }
        if (std::abs(std::int64_t{picture.originX}) > kFarthest ||
            std::abs(std::int64_t{picture.originY}) > kFarthest) {
            throw ProtocolError("picture at " + std::to_string(picture.originX) + ", " +
                                std::to_string(picture.originY) + " in a message");
        }
        if (picture.pixels.size() != picture.rowBytes() * picture.rows()) {
            throw ProtocolError("picture with " + std::to_string(picture.pixels.size()) +
                                " bytes of pixels instead of " +
                                std::to_string(picture.rowBytes() * picture.rows()));
        }
    }
    void end() const { reader_.end(); }

  private:
    PayloadReader reader_;
};

/// The record itself when reading, a constant one when writing.
template <typename Type, typename Record>
concept MaybeConst = std::same_as<std::remove_const_t<Type>, Record>;

template <typename Archive, MaybeConst<Hello> Record>
void Walk(Archive& archive, Record& hello) {
    archive.text(hello.system);
    archive.text(hello.simd);
}

template <typename Archive, MaybeConst<LoadRequest> Record>
void Walk(Archive& archive, Record& request) {
    archive.text(request.path);
}

template <typename Archive, MaybeConst<HostIdentity> Record>
void Walk(Archive& archive, Record& host) {
    archive.number(host.applicationId);
    archive.number(host.versionMajor);
    archive.number(host.versionMinor);
}

template <typename Archive, MaybeConst<ParameterDescription> Record>
void Walk(Archive& archive, Record& parameter) {
    archive.number(parameter.index);
    archive.number(parameter.id);
    archive.number(parameter.kind);
    archive.text(parameter.name);
    archive.number(parameter.flags);
    archive.number(parameter.uiFlags);
    archive.number(parameter.validMin);
    archive.number(parameter.validMax);
    archive.number(parameter.sliderMin);
    archive.number(parameter.sliderMax);
    archive.number(parameter.defaultValue);
    archive.number(parameter.defaultY);
    archive.number(parameter.precision);
    archive.number(parameter.displayFlags);
    archive.text(parameter.text);
}

/// Bytes of a parameter description whose texts are empty.
constexpr std::size_t kLeastParameter = 7 * 4 + 6 * 8 + 2 * 4;

template <typename Archive, MaybeConst<Description> Record>
void Walk(Archive& archive, Record& description) {
    archive.text(description.about);
    archive.number(description.packedVersion);
    archive.number(description.outFlags);
    archive.number(description.outFlags2);
    archive.list(description.parameters, kLeastParameter,
                 [](auto& inner, auto& parameter) { Walk(inner, parameter); });
}

template <typename Archive, MaybeConst<Ratio> Record>
void Walk(Archive& archive, Record& ratio) {
    archive.number(ratio.numerator);
    archive.number(ratio.denominator);
}

template <typename Archive, MaybeConst<ParameterValue> Record>
void Walk(Archive& archive, Record& value) {
    archive.number(value.x);
    archive.number(value.y);
}

template <typename Archive, MaybeConst<Picture> Record>
void Walk(Archive& archive, Record& picture) {
    archive.number(picture.width);
    archive.number(picture.height);
    archive.number(picture.bits);
    archive.number(picture.originX);
    archive.number(picture.originY);
    archive.pixels(picture.pixels);
    archive.check(picture);
}

constexpr std::size_t kLeastPicture = 5 * 4 + 8;

template <typename Archive, MaybeConst<RenderJob> Record>
void Walk(Archive& archive, Record& job) {
    Walk(archive, job.host);
    archive.flag(job.smart);
    archive.number(job.bits);
    archive.number(job.quality);
    Walk(archive, job.downsampleX);
    Walk(archive, job.downsampleY);
    Walk(archive, job.pixelAspect);
    archive.number(job.fullWidth);
    archive.number(job.fullHeight);
    archive.number(job.currentTime);
    archive.number(job.timeStep);
    archive.number(job.timeScale);
    archive.number(job.extraRowBytes);
    archive.flag(job.negativeRowBytes);
    archive.map(job.values, 16, [](auto& inner, auto& value) { Walk(inner, value); });
    Walk(archive, job.input);
    archive.map(job.layers, kLeastPicture,
                [](auto& inner, auto& picture) { Walk(inner, picture); });
}

template <typename Archive, MaybeConst<RenderResult> Record>
void Walk(Archive& archive, Record& result) {
    archive.number(result.error);
    archive.text(result.message);
    archive.flag(result.displayError);
    archive.text(result.violations);
    Walk(archive, result.output);
    archive.number(result.peakBytes);
    archive.number(result.seconds);
}

template <typename Archive, MaybeConst<Progress> Record>
void Walk(Archive& archive, Record& progress) {
    archive.number(progress.current);
    archive.number(progress.total);
}

template <typename Archive, MaybeConst<Failure> Record>
void Walk(Archive& archive, Record& failure) {
    archive.kind(failure.kind);
    archive.number(failure.code);
    archive.text(failure.text);
}

template <typename Record>
Bytes Encode(MessageType type, const Record& record) {
    return EncodeMessage(type, [&record](Bytes& message) {
        Writing archive(message);
        Walk(archive, record);
    });
}

template <typename Record>
Bytes EncodeTagged(MessageType type, RenderId id, const Record& record, std::size_t pixelBytes) {
    return EncodeMessage(type, [&](Bytes& message) {
        message.reserve(pixelBytes + 64 * 1024);
        Writing archive(message);
        archive.number(id);
        Walk(archive, record);
    });
}

template <typename Record>
Record Decode(const Bytes& payload) {
    Record record;
    Reading archive(payload);
    Walk(archive, record);
    archive.end();
    return record;
}

template <typename Record>
Tagged<Record> DecodeTagged(const Bytes& payload) {
    Tagged<Record> tagged;
    Reading archive(payload);
    archive.number(tagged.id);
    Walk(archive, tagged.content);
    archive.end();
    return tagged;
}

}  // namespace

std::vector<std::string> ParameterDescription::choices() const {
    std::vector<std::string> choices;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t bar = rest.find('|');
        choices.emplace_back(rest.substr(0, bar));
        rest = bar == std::string_view::npos ? std::string_view() : rest.substr(bar + 1);
    }
    return choices;
}

EffectVersion UnpackVersion(std::uint32_t packed) {
    const auto field = [packed](std::int32_t shift, std::int32_t bits) {
        return packed >> shift & static_cast<std::uint32_t>(bits);
    };
    return {field(sdk::PF_Vers_VERS_SHIFT, sdk::PF_Vers_VERS_BITS) |
                field(sdk::PF_Vers_VERS_HIGH_SHIFT, sdk::PF_Vers_VERS_HIGH_BITS)
                    << sdk::PF_Vers_VERS_LOW_SHIFT,
            field(sdk::PF_Vers_SUBVERS_SHIFT, sdk::PF_Vers_SUBVERS_BITS),
            field(sdk::PF_Vers_BUGFIX_SHIFT, sdk::PF_Vers_BUGFIX_BITS),
            field(sdk::PF_Vers_STAGE_SHIFT, sdk::PF_Vers_STAGE_BITS),
            field(sdk::PF_Vers_BUILD_SHIFT, sdk::PF_Vers_BUILD_BITS)};
}

Bytes EncodeHello(const Hello& hello) {
    return Encode(MessageType::kHello, hello);
}
Bytes EncodeLoad(const LoadRequest& request) {
    return Encode(MessageType::kLoad, request);
}
Bytes EncodeLoaded() {
    return EncodeMessage(MessageType::kLoaded, [](Bytes&) {});
}
Bytes EncodeDescribe(const HostIdentity& host) {
    return Encode(MessageType::kDescribe, host);
}
Bytes EncodeDescription(const Description& description) {
    return Encode(MessageType::kDescription, description);
}
Bytes EncodeRender(RenderId id, const RenderJob& job) {
    std::size_t pixelBytes = job.input.pixels.size();
    for (const auto& [index, layer] : job.layers) {
        pixelBytes += layer.pixels.size();
    }
    return EncodeTagged(MessageType::kRender, id, job, pixelBytes);
}
Bytes EncodeAbort(RenderId id) {
    return EncodeMessage(MessageType::kAbort,
                         [id](Bytes& message) { PayloadWriter(message).u64(id); });
}
Bytes EncodeProgress(RenderId id, const Progress& progress) {
    return EncodeTagged(MessageType::kProgress, id, progress, 0);
}
Bytes EncodeResult(RenderId id, const RenderResult& result) {
    return EncodeTagged(MessageType::kResult, id, result, result.output.pixels.size());
}
Bytes EncodeFailure(const Failure& failure) {
    return Encode(MessageType::kFailure, failure);
}
Bytes EncodeQuit() {
    return EncodeMessage(MessageType::kQuit, [](Bytes&) {});
}

Hello DecodeHello(const Bytes& payload) {
    return Decode<Hello>(payload);
}
LoadRequest DecodeLoad(const Bytes& payload) {
    return Decode<LoadRequest>(payload);
}
HostIdentity DecodeDescribe(const Bytes& payload) {
    return Decode<HostIdentity>(payload);
}
Description DecodeDescription(const Bytes& payload) {
    return Decode<Description>(payload);
}
Tagged<RenderJob> DecodeRender(const Bytes& payload) {
    return DecodeTagged<RenderJob>(payload);
}
RenderId DecodeAbort(const Bytes& payload) {
    PayloadReader reader(payload);
    const RenderId id = reader.u64();
    reader.end();
    return id;
}
Tagged<Progress> DecodeProgress(const Bytes& payload) {
    return DecodeTagged<Progress>(payload);
}
Tagged<RenderResult> DecodeResult(const Bytes& payload) {
    return DecodeTagged<RenderResult>(payload);
}
Failure DecodeFailure(const Bytes& payload) {
    return Decode<Failure>(payload);
}

}  // namespace vireon::headless
