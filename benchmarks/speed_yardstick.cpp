#include "benchmarks/speed_yardstick.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "samples/scenes.h"

namespace vireon::bench {
namespace {

constexpr int kFrames = 100;

void WritePicture(const std::filesystem::path& file) {
    const scenes::Canvas night = scenes::DrawNightCity(1920, 1080, scenes::LightRange::kDisplay);
    std::vector<char> bytes;
    for (int y = 0; y < night.height(); ++y) {
        for (int x = 0; x < night.width(); ++x) {
            const scenes::Colour colour = night.at(x, y);
            for (const float value : {colour.red, colour.green, colour.blue}) {
                bytes.push_back(
                    static_cast<char>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f)));
            }
        }
    }
    std::ofstream out(file, std::ios::binary);
    out << "P6\n" << night.width() << " " << night.height() << "\n255\n";
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string OutputOf(const std::string& command) {
    const auto close = [](std::FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<std::FILE, decltype(close)> pipe(popen(command.c_str(), "r"), close);
    if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
    std::string output;
    char part[4096];
    while (const std::size_t count = std::fread(part, 1, sizeof part, pipe.get())) {
        output.append(part, count);
    }
    return output;
}

/// A number of seconds behind a name in ffmpeg's report about itself.
double SecondsAfter(const std::string& report, const std::string& name) {
    const std::size_t at = report.rfind(name);
    if (at == std::string::npos) throw std::runtime_error("ffmpeg gave no times: " + report);
    return std::strtod(report.c_str() + at + name.size(), nullptr);
}

}  // namespace

Yardstick MeasureFilterChain(const std::string& program, const std::filesystem::path& work,
                             int rounds) {
    std::filesystem::create_directories(work);
    const std::filesystem::path picture = work / "night.ppm";
    WritePicture(picture);
    const std::string chain =
        "format=gbrp,loop=loop=" + std::to_string(kFrames - 1) +
        ":size=1,split[a][b];[b]colorlevels=rimin=0.5:gimin=0.5:bimin=0.5,gblur=sigma=25[glow];"
        "[a][glow]blend=all_mode=screen";
    const std::string command =
        Quoted(program) +
        " -nostdin -hide_banner -loglevel info -benchmark -threads 1 -filter_threads 1"
        " -filter_complex_threads 1 -i " +
        Quoted(picture.string()) + " -filter_complex " + Quoted(chain) + " -f null - 2>&1";
    double least = std::numeric_limits<double>::infinity();
    for (int round = 0; round < rounds; ++round) {
        const std::string report = OutputOf(command);
        const double seconds = SecondsAfter(report, "utime=") + SecondsAfter(report, "stime=");
        const double frames = SecondsAfter(report, "frame=");
        if (frames != kFrames) throw std::runtime_error("ffmpeg lost frames: " + report);
        least = std::min(least, seconds * 1000.0 / frames);
    }
    return {"ffmpeg colorlevels, gblur sigma 25 and blend, 8 bits, one thread", least, 0.0};
}

}  // namespace vireon::bench
