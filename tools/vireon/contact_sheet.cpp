#include "tools/vireon/contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include "tools/vireon/quiet_errors.h"
#include "tools/vireon/samples.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {

using headless::Picture;

namespace {

constexpr int kCellWidth = 480;
constexpr int kMaxCellHeight = 960;
constexpr int kTitleHeight = 30;
constexpr int kTextSize = 18;
constexpr int kGap = 6;
constexpr int kColumns = 3;
constexpr float kGround[3] = {0.13f, 0.13f, 0.13f};

/// Fonts that systems usually have; the library's own search fails where its favourite is missing.
std::string FindFont() {
    static constexpr const char* kFonts[] = {
        "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
        "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
        "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf",
        "/usr/share/fonts/truetype/freefont/FreeSans.ttf",
        "/usr/share/fonts/truetype/noto/NotoSans-Regular.ttf",
        "/usr/share/fonts/TTF/DejaVuSans.ttf",
        "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    };
    for (const char* const font : kFonts) {
        std::error_code error;
        if (std::filesystem::is_regular_file(font, error)) {
            return font;
        }
    }
    return {};
}

Color ShownColor(const StagePicture& stage, std::int32_t x, std::int32_t y) {
    const Color straight = PixelAt(stage.picture, x, y);
    return stage.showsAlpha ? Associated(straight) : straight;
}

float LargestColour(const StagePicture& stage) {
    double largest = 0;
    for (std::int32_t y = 0; y < stage.picture.height; ++y) {
        for (std::int32_t x = 0; x < stage.picture.width; ++x) {
            const Color color = ShownColor(stage, x, y);
            for (const double value : {color.red, color.green, color.blue}) {
                if (std::isfinite(value)) largest = std::max(largest, value);
            }
        }
    }
    return static_cast<float>(largest);
}

/// The stage as it is shown, at full size: red, green and blue, 0 to 1.
OIIO::ImageBuf Shown(const StagePicture& stage, float divisor) {
    const Picture& picture = stage.picture;
    OIIO::ImageBuf shown(OIIO::ImageSpec(picture.width, picture.height, 3, OIIO::TypeDesc::FLOAT));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            const Color color = ShownColor(stage, x, y);
            const auto value = [divisor](double channel) {
                const double scaled = channel / divisor;
                return scaled > 0 ? static_cast<float>(std::min(scaled, 1.0)) : 0.0f;
            };
            const float pixel[3] = {value(color.red), value(color.green), value(color.blue)};
            shown.setpixel(x, y, pixel);
        }
    }
    return shown;
}

std::string TitleOf(const StagePicture& stage, float divisor) {
    std::string title = stage.file.substr(0, 2) + "  " + stage.title;
    if (divisor > 1) {
        char text[40];
        std::snprintf(text, sizeof text, "  (shown at 1/%.3g)", static_cast<double>(divisor));
        title += text;
    }
    return title;
}

std::vector<std::uint8_t> Encoded(const OIIO::ImageBuf& sheet) {
    const auto writer = OIIO::ImageOutput::create("sheet.png");
    OIIO::Filesystem::IOVecOutput buffer;
    OIIO::ImageSpec spec(sheet.spec().width, sheet.spec().height, 3, OIIO::TypeDesc::UINT8);
    std::vector<float> values(static_cast<std::size_t>(spec.width) *
                              static_cast<std::size_t>(spec.height) * 3);
    if (writer == nullptr || !sheet.get_pixels(sheet.roi(), OIIO::TypeDesc::FLOAT, values.data()) ||
        !writer->set_ioproxy(&buffer) || !writer->open("sheet.png", spec) ||
        !writer->write_image(OIIO::TypeDesc::FLOAT, values.data()) || !writer->close()) {
        throw ToolError(kOutputFailed, "cannot make the contact sheet");
    }
    return buffer.buffer();
}

}  // namespace

std::vector<std::uint8_t> ContactSheet(const std::vector<StagePicture>& stages,
                                       std::vector<std::string>& notes) {
    const Picture& first = stages.front().picture;
    const double scale = std::min({1.0, static_cast<double>(kCellWidth) / first.width,
                                   static_cast<double>(kMaxCellHeight) / first.height});
    const int width = std::max(1, static_cast<int>(first.width * scale));
    const int height = std::max(1, static_cast<int>(first.height * scale));
    // Small pictures get room for their titles all the same.
    const int cellWidth = std::max(width, kCellWidth) + kGap;
    const int cellHeight = kTitleHeight + height + kGap;
    const int rows = (static_cast<int>(stages.size()) + kColumns - 1) / kColumns;

    OIIO::ImageBuf sheet(OIIO::ImageSpec(kColumns * cellWidth + kGap, rows * cellHeight + kGap, 3,
                                         OIIO::TypeDesc::FLOAT));
    OIIO::ImageBufAlgo::fill(sheet, kGround);
    const std::string font = FindFont();
    bool titled = !font.empty();
    for (std::size_t i = 0; i < stages.size(); ++i) {
        const int left = kGap + static_cast<int>(i) % kColumns * cellWidth;
        const int top = kGap + static_cast<int>(i) / kColumns * cellHeight;
        const float divisor = std::max(1.0f, LargestColour(stages[i]));
        OIIO::ImageBuf shown = Shown(stages[i], divisor);
        if (scale < 1.0) {
            shown = OIIO::ImageBufAlgo::resize(shown, "box", 0.0f,
                                               OIIO::ROI(0, width, 0, height, 0, 1, 0, 3), 1);
        }
        if (!OIIO::ImageBufAlgo::paste(sheet, left, top + kTitleHeight, 0, 0, shown)) {
            throw ToolError(kOutputFailed, "cannot make the contact sheet");
        }
        if (titled) {
            const QuietErrors quiet;
            titled = OIIO::ImageBufAlgo::render_text(sheet, left, top + kTitleHeight - 9,
                                                     TitleOf(stages[i], divisor), kTextSize, font);
        }
    }
    if (!titled) {
        notes.emplace_back("the contact sheet has no titles: no font was found");
    }
    return Encoded(sheet);
}

}  // namespace vireon::tool
