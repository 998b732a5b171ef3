#include "tools/vireon/picture_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <memory>
#include <set>
#include <string_view>

#include <OpenImageIO/filesystem.h>
#include <sys/mman.h>
#include <unistd.h>

#include "tools/vireon/output_file.h"
#include "tools/vireon/quiet_errors.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

using headless::Picture;
using Bytes = std::vector<std::uint8_t>;

constexpr char kStraightAttribute[] = "oiio:UnassociatedAlpha";
constexpr double kLargestHalf = 65504.0;

[[noreturn]] void CannotWrite(const std::filesystem::path& path, std::string reason) {
    reason = reason.substr(0, reason.find('\n'));
    throw ToolError(kOutputFailed, "cannot write " + path.string() + ": " +
                                       (reason.empty() ? "the format's writer failed" : reason));
}

std::unique_ptr<OIIO::ImageOutput> MakeWriter(const std::filesystem::path& path) {
    auto writer = OIIO::ImageOutput::create(path.filename().string());
    if (writer == nullptr) {
        OIIO::geterror();
        const std::string extension = path.extension().string();
        CannotWrite(path,
                    extension.empty()
                        ? "its name has no extension that tells the format, such as .png"
                        : "no picture format that can be written has the extension " + extension);
    }
    return writer;
}

/// Formats whose files hold straight colour, given to their writers as it is.
bool KeepsStraight(const std::string& fileFormat, const PictureFile& source) {
    static const std::set<std::string> formats{"png", "targa", "bmp", "ico", "heif", "webp"};
    return formats.contains(fileFormat) || (fileFormat == "tiff" && source.fileFormat == "tiff" &&
                                            source.hasAlpha && !source.isAssociated);
}

bool HasPrefix(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Metadata that describes how the source was stored, not what it shows.
bool DescribesStorage(const std::string& name, bool sameFormat) {
    static const std::set<std::string> storage{"oiio:BitsPerSample",
                                               kStraightAttribute,
                                               "oiio:subimages",
                                               "oiio:subimagename",
                                               "openexr:chunkCount",
                                               "openexr:lineOrder",
                                               "openexr:version",
                                               "openexr:levelmode",
                                               "openexr:roundingmode",
                                               "tiff:PhotometricInterpretation",
                                               "tiff:PlanarConfiguration",
                                               "tiff:RowsPerStrip",
                                               "planarconfig",
                                               "tiff:ColorSpace"};
    static const std::set<std::string> formats{
        "tiff:", "openexr:", "png:",  "jpeg:", "dpx:", "bmp:", "targa:",    "ico:", "gif:",
        "webp:", "hdr:",     "heif:", "pnm:",  "sgi:", "psd:", "jpeg2000:", "iff:"};
    if (storage.contains(name)) {
        return true;
    }
    return !sameFormat && (name == "compression" || std::any_of(formats.begin(), formats.end(),
                                                                [&name](const std::string& prefix) {
                                                                    return HasPrefix(name, prefix);
                                                                }));
}

/// What of a picture needs to be stored.
struct Content {
    bool isOpaque = true;
    bool isGrey = true;
};

Content ContentOf(const Picture& picture) {
    Content content;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            const Color color = PixelAt(picture, x, y);
            content.isOpaque &= color.alpha == 1.0;
            content.isGrey &= color.red == color.green && color.green == color.blue;
        }
    }
    return content;
}

/// How the colours of the host's picture go into the file.
enum class AlphaUse { kDropped, kOverBlack, kStraight, kAssociated };

struct Layout {
    bool grey = false;
    AlphaUse alpha = AlphaUse::kDropped;
    int channels() const { return (grey ? 1 : 3) + (storesAlpha() ? 1 : 0); }
    bool storesAlpha() const {
        return alpha == AlphaUse::kStraight || alpha == AlphaUse::kAssociated;
    }
};

OIIO::TypeDesc TypeOf(SampleFormat format) {
    switch (format) {
        case SampleFormat::k8: return OIIO::TypeDesc::UINT8;
        case SampleFormat::k16: return OIIO::TypeDesc::UINT16;
        case SampleFormat::kHalf: return OIIO::TypeDesc::HALF;
        case SampleFormat::kFloat: return OIIO::TypeDesc::FLOAT;
    }
    return OIIO::TypeDesc::FLOAT;
}

/// The number format to ask for: the source's, or the next that loses nothing where the format is
/// known to lack it.
OIIO::TypeDesc WantedType(const std::string& fileFormat, const PictureFile& source) {
    if (fileFormat == "openexr") {
        return source.format == SampleFormat::k8 || source.format == SampleFormat::kHalf
                   ? OIIO::TypeDesc::HALF
                   : OIIO::TypeDesc::FLOAT;
    }
    // PNG's writer would fall back to 8 bits for float sources.
    if (fileFormat == "png" && source.format != SampleFormat::k8) {
        return OIIO::TypeDesc::UINT16;
    }
    return TypeOf(source.format);
}

OIIO::ImageSpec SpecFor(const std::string& fileFormat, const Picture& picture,
                        const PictureFile& source, const Layout& layout) {
    OIIO::ImageSpec spec(picture.width, picture.height, layout.channels(),
                         WantedType(fileFormat, source));
    const OIIO::ImageSpec& original = source.metadata;
    if (picture.width == source.width && picture.height == source.height) {
        spec.x = original.x;
        spec.y = original.y;
        spec.full_x = original.full_x;
        spec.full_y = original.full_y;
        spec.full_width = original.full_width;
        spec.full_height = original.full_height;
    }
    const bool sameFormat = fileFormat == source.fileFormat;
    for (const OIIO::ParamValue& attribute : original.extra_attribs) {
        if (!DescribesStorage(attribute.name().string(), sameFormat)) {
            spec.extra_attribs.push_back(attribute);
        }
    }
    if (fileFormat == "jpeg" && source.pixelAspect != 1.0) {
        // The file holds two densities and nothing else; what the writer makes of a ratio depends
        // on the version of the library, and below 1 it is the inverse.
        constexpr float kUsual = 72.0f;
        const float across = spec.get_float_attribute("XResolution", 0.0f);
        const float density = across > 0.0f ? across : kUsual;
        spec.attribute("XResolution", density);
        spec.attribute("YResolution", density * static_cast<float>(source.pixelAspect));
        spec.erase_attribute("PixelAspectRatio");
    }
    spec.channelnames =
        layout.grey ? std::vector<std::string>{"Y"} : std::vector<std::string>{"R", "G", "B"};
    spec.alpha_channel = -1;
    if (layout.storesAlpha()) {
        spec.channelnames.emplace_back("A");
        spec.alpha_channel = layout.channels() - 1;
    }
    if (layout.alpha == AlphaUse::kStraight) {
        spec.attribute(kStraightAttribute, 1);
    }
    return spec;
}

Color Stored(const Color& color, AlphaUse alpha) {
    return alpha == AlphaUse::kAssociated || alpha == AlphaUse::kOverBlack ? Associated(color)
                                                                           : color;
}

template <typename Sample, typename Convert>
std::vector<Sample> Samples(const Picture& picture, const Layout& layout, Convert convert) {
    std::vector<Sample> samples;
    samples.reserve(static_cast<std::size_t>(picture.width) *
                    static_cast<std::size_t>(picture.height) *
                    static_cast<std::size_t>(layout.channels()));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            const Color color = Stored(PixelAt(picture, x, y), layout.alpha);
            samples.push_back(convert(color.red));
            if (!layout.grey) {
                samples.push_back(convert(color.green));
                samples.push_back(convert(color.blue));
            }
            if (layout.storesAlpha()) {
                samples.push_back(convert(color.alpha));
            }
        }
    }
    return samples;
}

/// Hands the pixels over in the number format that the writer settled on.
bool WritePixels(OIIO::ImageOutput& writer, const Picture& picture, const Layout& layout) {
    switch (writer.spec().format.basetype) {
        case OIIO::TypeDesc::UINT8: {
            const auto samples = Samples<std::uint8_t>(picture, layout, [](double value) {
                return static_cast<std::uint8_t>(Quantised(value, 255));
            });
            return writer.write_image(OIIO::TypeDesc::UINT8, samples.data());
        }
        case OIIO::TypeDesc::UINT16: {
            const auto samples = Samples<std::uint16_t>(picture, layout, [](double value) {
                return static_cast<std::uint16_t>(Quantised(value, 65535));
            });
            return writer.write_image(OIIO::TypeDesc::UINT16, samples.data());
        }
        case OIIO::TypeDesc::HALF: {
            // Very bright light stays finite.
            const auto samples = Samples<float>(picture, layout, [](double value) {
                return std::abs(value) <= std::numeric_limits<double>::max()
                           ? static_cast<float>(std::clamp(value, -kLargestHalf, kLargestHalf))
                           : static_cast<float>(value);
            });
            return writer.write_image(OIIO::TypeDesc::FLOAT, samples.data());
        }
        default: {
            const auto samples = Samples<float>(
                picture, layout, [](double value) { return static_cast<float>(value); });
            return writer.write_image(OIIO::TypeDesc::FLOAT, samples.data());
        }
    }
}

/// A file in memory with a path, for writers that insist on one.
class MemoryFile {
  public:
    MemoryFile() : descriptor_(memfd_create("vireon-picture", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    Bytes bytes() const {
        Bytes content(
            static_cast<std::size_t>(std::max<off_t>(lseek(descriptor_, 0, SEEK_END), 0)));
        std::size_t done = 0;
        while (done < content.size()) {
            const ssize_t count = pread(descriptor_, content.data() + done, content.size() - done,
                                        static_cast<off_t>(done));
            if (count <= 0) {
                return {};
            }
            done += static_cast<std::size_t>(count);
        }
        return content;
    }

  private:
    int descriptor_;
};

/// The file's content, made in memory: the writers of some formats do not notice a full disk.
Bytes Encode(const std::filesystem::path& path, OIIO::ImageOutput& writer,
             const OIIO::ImageSpec& spec, const Picture& picture, const Layout& layout) {
    const QuietErrors quiet;
    const MemoryFile file;
    OIIO::Filesystem::IOVecOutput buffer;
    // TIFF reads back what it wrote, which the buffer does not offer.
    const bool useBuffer = writer.supports("ioproxy") &&
                           std::string_view(writer.format_name()) != "tiff" &&
                           writer.set_ioproxy(&buffer);
    const std::string name = useBuffer ? path.filename().string() : file.path();
    const bool written =
        writer.open(name, spec) && WritePixels(writer, picture, layout) && writer.close();
    Bytes bytes = useBuffer ? buffer.buffer() : file.bytes();
    if (!written || bytes.empty()) {
        CannotWrite(path, writer.geterror());
    }
    return bytes;
}

}  // namespace

void CheckOutputFormat(const std::filesystem::path& path) {
    MakeWriter(path);
}

void WritePictureFile(const std::filesystem::path& path, const Picture& picture,
                      const PictureFile& source, std::vector<std::string>& notes) {
    const auto writer = MakeWriter(path);
    const std::string fileFormat = writer->format_name();
    const Content content = ContentOf(picture);

    Layout layout;
    layout.grey = source.isGrey && content.isGrey;
    if (source.hasAlpha || !content.isOpaque) {
        layout.alpha =
            KeepsStraight(fileFormat, source) ? AlphaUse::kStraight : AlphaUse::kAssociated;
        if (writer->supports("alpha") == 0) {
            layout.alpha = AlphaUse::kOverBlack;
            if (!content.isOpaque) {
                notes.push_back(path.string() + ": " + fileFormat +
                                " has no alpha; the picture was put over black");
            }
        }
    }
    const OIIO::ImageSpec spec = SpecFor(fileFormat, picture, source, layout);
    WriteFileWhole(path, Encode(path, *writer, spec, picture, layout));
}

}  // namespace vireon::tool
