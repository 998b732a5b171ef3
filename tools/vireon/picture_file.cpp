#include "tools/vireon/picture_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <set>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "tools/vireon/quiet_errors.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

/// Largest width and height of a host's world.
constexpr int kLargest = 30000;

constexpr char kStraightAttribute[] = "oiio:UnassociatedAlpha";

[[noreturn]] void Unreadable(const std::filesystem::path& path, std::string reason) {
    reason = reason.substr(0, reason.find('\n'));
    throw ToolError(kInputUnreadable, "cannot read " + path.string() + ": " + reason);
}

void CheckFile(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) {
        Unreadable(path, std::generic_category().message(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        Unreadable(path, "it is a folder");
    }
    // The readers go back and forth in the file, which a pipe does not allow.
    if (!S_ISREG(status.st_mode)) {
        Unreadable(path, "it is a pipe or a device; save the picture in a file first");
    }
    if (status.st_size == 0) {
        Unreadable(path, "the file is empty");
    }
}

SampleFormat FormatOf(const OIIO::TypeDesc& type) {
    switch (type.basetype) {
        case OIIO::TypeDesc::UINT8: return SampleFormat::k8;
        case OIIO::TypeDesc::UINT16: return SampleFormat::k16;
        case OIIO::TypeDesc::HALF: return SampleFormat::kHalf;
        default: return SampleFormat::kFloat;
    }
}

/// Which channels of a file are red, green, blue and alpha; alpha is -1 when there is none, and so
/// are the colours of a file with nothing but depth.
struct ChannelChoice {
    std::array<int, 3> color{};
    int alpha = -1;
    bool isGrey = false;
    int left = 0;  ///< channels that are not used
};

ChannelChoice ChooseChannels(const OIIO::ImageSpec& spec) {
    ChannelChoice choice;
    choice.alpha = spec.alpha_channel;
    std::vector<int> colors;
    for (int c = 0; c < spec.nchannels; ++c) {
        if (c != spec.alpha_channel && c != spec.z_channel) {
            colors.push_back(c);
        }
    }
    const int red = spec.channelindex("R");
    const int green = spec.channelindex("G");
    const int blue = spec.channelindex("B");
    if (red >= 0 && green >= 0 && blue >= 0) {
        choice.color = {red, green, blue};
    } else if (colors.size() >= 3) {
        choice.color = {colors[0], colors[1], colors[2]};
    } else {
        choice.isGrey = true;
        const int grey = colors.empty() ? choice.alpha : colors[0];
        choice.color = {grey, grey, grey};
    }
    choice.left = spec.nchannels - (choice.isGrey ? 1 : 3) - (choice.alpha >= 0 ? 1 : 0);
    return choice;
}

/// Spreads the channels of every pixel over red, green, blue and alpha.
template <typename Sample>
std::vector<Sample> Spread(const Sample* samples, std::size_t count, int channels,
                           const ChannelChoice& choice, Sample opaque) {
    std::vector<Sample> spread(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        const Sample* const from = samples + i * static_cast<std::size_t>(channels);
        Sample* const to = &spread[i * 4];
        for (std::size_t c = 0; c < 3; ++c) {
            to[c] = from[choice.color[c]];
        }
        to[3] = choice.alpha >= 0 ? from[choice.alpha] : opaque;
    }
    return spread;
}

template <typename Sample>
std::vector<Sample> ReadSamples(OIIO::ImageInput& input, const std::filesystem::path& path,
                                const ChannelChoice& choice, Sample opaque) {
    const OIIO::ImageSpec& spec = input.spec();
    const std::size_t count =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height);
    // Not cleared first: a short file that claims to be huge then takes what it holds, not what it
    // claims.
    const auto samples =
        std::make_unique_for_overwrite<Sample[]>(count * static_cast<std::size_t>(spec.nchannels));
    const bool complete = input.read_image(0, 0, 0, spec.nchannels,
                                           OIIO::BaseTypeFromC<Sample>::value, samples.get());
    // Some readers fill in what is missing and only leave a message.
    const std::string error = input.geterror();
    if (!complete || !error.empty()) {
        Unreadable(path, error.empty() ? "the file is truncated or damaged" : error);
    }
    return Spread(samples.get(), count, spec.nchannels, choice, opaque);
}

/// Formats whose files hold straight colour and whose readers hand it on without saying so.
bool IsStraightByCustom(const std::string& fileFormat) {
    static const std::set<std::string> formats{"bmp", "ico"};
    return formats.contains(fileFormat);
}

double PixelAspect(const OIIO::ImageSpec& spec, const std::string& fileFormat) {
    float aspect = spec.get_float_attribute("PixelAspectRatio", 1.0f);
    // The JPEG reader of some versions of the library gives height over width.
    const float across = spec.get_float_attribute("XResolution", 0.0f);
    const float down = spec.get_float_attribute("YResolution", 0.0f);
    if (fileFormat == "jpeg" && across > 0.0f && down > 0.0f) {
        aspect = down / across;
    }
    return aspect > 0.0f ? static_cast<double>(aspect) : 1.0;
}

}  // namespace

std::int32_t PictureFile::naturalBits() const {
    switch (format) {
        case SampleFormat::k8: return 8;
        case SampleFormat::k16: return 16;
        default: return 32;
    }
}

Color FileColor(const PictureFile& file, std::size_t pixel) {
    const std::size_t at = pixel * 4;
    const auto color = [at](const auto& samples, double white) {
        return Color{static_cast<double>(samples[at]) / white,
                     static_cast<double>(samples[at + 1]) / white,
                     static_cast<double>(samples[at + 2]) / white,
                     static_cast<double>(samples[at + 3]) / white};
    };
    switch (file.format) {
        case SampleFormat::k8: return color(file.samples8, 255.0);
        case SampleFormat::k16: return color(file.samples16, 65535.0);
        default: return color(file.samplesFloat, 1.0);
    }
}

PictureFile ReadPictureFile(const std::filesystem::path& path, std::int64_t mostPixels) {
    CheckFile(path);
    const QuietErrors quiet;
    OIIO::ImageSpec wishes;
    wishes.attribute(kStraightAttribute, 1);
    const auto input = OIIO::ImageInput::open(path.string(), &wishes);
    if (input == nullptr) {
        const std::string error = OIIO::geterror();
        Unreadable(path, error.empty() ? "it is no picture" : error);
    }
    const OIIO::ImageSpec& spec = input->spec();
    if (spec.deep || spec.depth > 1) {
        Unreadable(path, "deep pictures and volumes are not supported");
    }
    if (spec.width < 1 || spec.height < 1 || spec.width > kLargest || spec.height > kLargest) {
        Unreadable(path, "its size of " + std::to_string(spec.width) + " x " +
                             std::to_string(spec.height) + " is not between 1 and " +
                             std::to_string(kLargest));
    }
    if (std::int64_t{spec.width} * spec.height > mostPixels) {
        Unreadable(path, "its size of " + std::to_string(spec.width) + " x " +
                             std::to_string(spec.height) + " is beyond the " +
                             std::to_string(mostPixels / 1000000) +
                             " million pixels that are taken here; make it smaller");
    }
    if (spec.nchannels < 1) {
        Unreadable(path, "it has no channels");
    }

    PictureFile file;
    file.width = spec.width;
    file.height = spec.height;
    file.format = FormatOf(spec.format);
    file.fileFormat = input->format_name();
    file.metadata = spec;
    file.pixelAspect = PixelAspect(spec, file.fileFormat);
    if (static_cast<double>(spec.get_float_attribute("PixelAspectRatio", 1.0f)) !=
        file.pixelAspect) {
        file.metadata.attribute("PixelAspectRatio", static_cast<float>(file.pixelAspect));
    }
    const ChannelChoice choice = ChooseChannels(spec);
    if (choice.color[0] < 0) {
        Unreadable(path, "it has depth but no colour");
    }
    file.isGrey = choice.isGrey;
    file.hasAlpha = choice.alpha >= 0;
    file.isAssociated = file.hasAlpha && spec.get_int_attribute(kStraightAttribute, 0) == 0 &&
                        !IsStraightByCustom(file.fileFormat);
    if (choice.left > 0) {
        file.notes.push_back(path.string() + ": " + std::to_string(choice.left) +
                             " channels beside colour and alpha are left out");
    }

    switch (file.format) {
        case SampleFormat::k8:
            file.samples8 = ReadSamples<std::uint8_t>(*input, path, choice, 255);
            break;
        case SampleFormat::k16:
            file.samples16 = ReadSamples<std::uint16_t>(*input, path, choice, 65535);
            break;
        default: file.samplesFloat = ReadSamples<float>(*input, path, choice, 1.0f);
    }
    if (input->seek_subimage(1, 0)) {
        file.notes.push_back(path.string() + ": only the first of its pictures is used");
    }
    input->close();
    return file;
}

headless::Picture ToHostPicture(const PictureFile& file, std::int32_t bits) {
    headless::Picture picture(file.width, file.height, bits);
    std::size_t pixel = 0;
    for (std::int32_t y = 0; y < file.height; ++y) {
        for (std::int32_t x = 0; x < file.width; ++x, ++pixel) {
            const Color color = FileColor(file, pixel);
            SetPixel(picture, x, y, file.isAssociated ? Straight(color) : color);
        }
    }
    return picture;
}

}  // namespace vireon::tool
