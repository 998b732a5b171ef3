#include "tests/pictures/picture_report.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/pictures/reference_file.h"
#include "tools/vireon/samples.h"

namespace vireon::pictures {
namespace {

using headless::Picture;

/// Width in screen pixels at which a small picture is shown, by whole factors.
constexpr int kShownWidth = 480;

constexpr const char* kStyle = R"(
body { background: #222; color: #ddd; font: 15px/1.45 sans-serif; margin: 2em; }
h2 { margin: 2em 0 0.2em; }
a { color: #9cf; }
.problem { color: #fb8; }
.row { display: flex; flex-wrap: wrap; gap: 12px; margin: 0.8em 0; }
figure { margin: 0; }
figcaption { font-size: 13px; margin-top: 4px; }
img { image-rendering: pixelated; display: block;
      background: repeating-conic-gradient(#555 0% 25%, #777 0% 50%) 0 0 / 16px 16px; }
.none { width: 240px; height: 135px; border: 1px dashed #777; display: flex;
        align-items: center; justify-content: center; color: #999; }
pre { background: #111; padding: 0.7em; overflow-x: auto; font-size: 13px; }
)";

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&': escaped += "&amp;"; break;
            case '<': escaped += "&lt;"; break;
            case '>': escaped += "&gt;"; break;
            case '"': escaped += "&quot;"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

/// A picture as a screen shows it: 8 bits, light above white clipped.
Picture ForScreen(const Picture& picture) {
    Picture shown(picture.width, picture.height, 8);
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            tool::SetPixel(shown, x, y, tool::PixelAt(picture, x, y));
        }
    }
    return shown;
}

std::string Figure(const std::string& file, const Picture& picture, const std::string& caption) {
    const int zoom = std::max(1, kShownWidth / picture.width);
    std::ostringstream html;
    html << "<figure><img src=\"" << Escaped(file) << "\" width=\"" << picture.width * zoom
         << "\" height=\"" << picture.height * zoom << "\" alt=\"\"><figcaption>" << caption
         << "</figcaption></figure>\n";
    return html.str();
}

std::string NoFigure(const std::string& text) {
    return "<figure><div class=\"none\">" + Escaped(text) + "</div></figure>\n";
}

double LargestInWhites(const Picture& now, const Picture& reference) {
    double largest = 0.0;
    const double white = WhiteOf(now.bits);
    for (std::int32_t y = 0; y < now.height; ++y) {
        for (std::int32_t x = 0; x < now.width; ++x) {
            for (int c = 0; c < 4; ++c) {
                const double difference =
                    std::fabs(SampleAt(now, x, y, c) - SampleAt(reference, x, y, c)) / white;
                if (std::isfinite(difference)) largest = std::max(largest, difference);
            }
        }
    }
    return largest;
}

bool CanBeLaidOver(const Picture& a, const Picture& b) {
    return a.width == b.width && a.height == b.height && a.bits == b.bits;
}

}  // namespace

int AmplificationFor(double largestDifference) {
    constexpr int kMost = 1 << 23;
    if (!(largestDifference > 0.0) || !std::isfinite(largestDifference)) return 1;
    int factor = 1;
    while (factor < kMost && largestDifference * factor * 2.0 <= 1.0) factor *= 2;
    return factor;
}

Picture DifferencePicture(const Picture& now, const Picture& reference, int factor) {
    Picture shown(now.width, now.height, 8);
    const double white = WhiteOf(now.bits);
    const auto difference = [&](std::int32_t x, std::int32_t y, int channel) -> std::uint8_t {
        const double a = SampleAt(now, x, y, channel);
        const double b = SampleAt(reference, x, y, channel);
        if (!std::isfinite(a) || !std::isfinite(b)) return 255;
        if (a == b) return 0;
        const double amplified = std::fabs(a - b) / white * factor * 255.0 + 0.5;
        return static_cast<std::uint8_t>(std::clamp(amplified, 1.0, 255.0));
    };
    for (std::int32_t y = 0; y < now.height; ++y) {
        std::uint8_t* const row = shown.row<std::uint8_t>(y);
        for (std::int32_t x = 0; x < now.width; ++x) {
            const std::uint8_t alpha = difference(x, y, 0);
            row[x * 4] = 255;
            for (int c = 1; c < 4; ++c) row[x * 4 + c] = std::max(alpha, difference(x, y, c));
        }
    }
    return shown;
}

PictureReport::PictureReport(std::filesystem::path folder, std::string title)
    : folder_(std::move(folder)), title_(std::move(title)) {}

std::string PictureReport::section(const ReportEntry& entry) const {
    std::string html = "<h2 id=\"" + Escaped(entry.name) + "\">" + Escaped(entry.name) +
                       "</h2>\n<p>" + Escaped(entry.shows) + "<br>\n<span class=\"problem\">" +
                       Escaped(entry.problem) + "</span></p>\n<div class=\"row\">\n";
    const auto picture = [&](const std::optional<Picture>& shown, const std::string& part,
                             const std::string& title) {
        if (!shown) {
            html += NoFigure("no " + title);
            return;
        }
        const std::string file = ReferenceName(entry.name + "-" + part, shown->bits);
        WriteReference(folder_ / file, *shown);
        std::string image = file;
        if (shown->bits != 8) {
            image = entry.name + "-" + part + "-screen.png";
            WriteReference(folder_ / image, ForScreen(*shown));
        }
        html += Figure(image, *shown, title + ", <a href=\"" + Escaped(file) + "\">all bits</a>");
    };
    picture(entry.now, "new", "new picture");
    picture(entry.reference, "reference", "reference");
    if (entry.now && entry.reference && CanBeLaidOver(*entry.now, *entry.reference)) {
        const int factor = AmplificationFor(LargestInWhites(*entry.now, *entry.reference));
        const std::string file = entry.name + "-difference.png";
        WriteReference(folder_ / file, DifferencePicture(*entry.now, *entry.reference, factor));
        html += Figure(file, *entry.now,
                       "difference x " + std::to_string(factor) +
                           ", alpha's in all channels, white where not finite");
    }
    html += "</div>\n";
    if (entry.comparison && entry.comparison->x >= 0) {
        const Comparison& found = *entry.comparison;
        std::ostringstream text;
        text.precision(9);
        text << "<p>Largest difference: " << found.channel << " at " << found.x << "," << found.y
             << " is " << found.now << ", was " << found.reference << "; " << found.differing
             << " samples differ.</p>\n";
        html += text.str();
    }
    if (!entry.repeat.empty()) {
        html += "<p>Render it again:</p>\n<pre>";
        for (const std::string& line : entry.repeat) html += Escaped(line) + "\n";
        html += "</pre>\n";
    }
    if (!entry.accept.empty()) {
        html += "<p>If the new picture is right, make it the reference:</p>\n<pre>" +
                Escaped(entry.accept) + "\n</pre>\n";
    }
    return html;
}

std::filesystem::path PictureReport::write() const {
    std::filesystem::create_directories(folder_);
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<title>" +
        Escaped(title_) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n<h1>" +
        Escaped(title_) + "</h1>\n<ul>\n";
    for (const ReportEntry& entry : entries_) {
        html += "<li><a href=\"#" + Escaped(entry.name) + "\">" + Escaped(entry.name) +
                "</a>: " + Escaped(entry.problem) + "</li>\n";
    }
    html += "</ul>\n";
    for (const ReportEntry& entry : entries_) html += section(entry);
    html += "</body>\n</html>\n";
    const std::filesystem::path page = folder_ / "index.html";
    std::ofstream stream(page, std::ios::binary);
    stream << html;
    if (!stream.flush()) throw std::runtime_error("cannot write " + page.string());
    return page;
}

}  // namespace vireon::pictures
