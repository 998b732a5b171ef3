// The table of `./bench`: what a frame costs by the plain definitions of the stages and by their
// fast forms, both measured in the same run.

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "benchmarks/speed_frames.h"
#include "benchmarks/speed_stages.h"
#include "benchmarks/speed_table.h"
#if !defined(_WIN32)
#include "benchmarks/speed_yardstick.h"
#endif

namespace {

using namespace vireon;

constexpr const char* kUsage =
    "usage: vireon-speed [--quick] [--frames] [--json FILE] [--plugin FILE] [--work FOLDER]"
    " [--ffmpeg PROGRAM]\n"
    "  --quick           fewer repeats\n"
    "  --frames          whole frames only\n"
    "  --json FILE       writes the figures as JSON as well\n"
    "  --plugin FILE     library to measure (default: the one built with this program)\n"
    "  --work FOLDER     for copies of the library (default: beside this program)\n"
    "  --ffmpeg PROGRAM  times ffmpeg's filters on the same frame as well\n"
    "VIREON_GLOW_SIMD names the level to measure; without it, the highest that the machine has.\n";

#if defined(_WIN32)
constexpr const char* kSystem = "windows";
// Threads are timed there in steps of 10 or 16 ms, which have to be small beside a sample.
constexpr bench::Repeats kThorough{7, 1.0};
constexpr bench::Repeats kQuick{2, 0.5};
#else
constexpr const char* kSystem = "linux";
constexpr bench::Repeats kThorough{7, 0.4};
constexpr bench::Repeats kQuick{2, 0.15};
#endif

struct Arguments {
    bool help = false;
    bool quick = false;
    bool framesOnly = false;
    std::string json;
    std::string plugin = VIREON_BENCH_PLUGIN;
    std::string work = VIREON_BENCH_WORK;
    std::string ffmpeg;
};

Arguments Parse(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const auto value = [&] {
            if (++i >= argc) throw std::invalid_argument(option + " needs a value");
            return std::string(argv[i]);
        };
        if (option == "--help" || option == "-h") {
            arguments.help = true;
        } else if (option == "--quick") {
            arguments.quick = true;
        } else if (option == "--frames") {
            arguments.framesOnly = true;
        } else if (option == "--json") {
            arguments.json = value();
        } else if (option == "--plugin") {
            arguments.plugin = value();
        } else if (option == "--work") {
            arguments.work = value();
        } else if (option == "--ffmpeg") {
            arguments.ffmpeg = value();
        } else {
            throw std::invalid_argument("there is no option " + option);
        }
    }
    return arguments;
}

std::string ClockText(const bench::Repeats& repeats) {
    return "processor time of the thread, the least of " + std::to_string(repeats.rounds) +
           " alternating samples, first frames left out";
}

void Run(const Arguments& arguments) {
    const bench::Repeats repeats = arguments.quick ? kQuick : kThorough;
    // Asked first: the copies of the library are steered through the same variable.
    const simd::Level level = simd::ActiveLevel();
    bench::SpeedReport report;
    report.system = kSystem;
    report.clock = ClockText(repeats);
    const auto onRow = [](const bench::SpeedRow& row) {
        std::fprintf(stderr, "  measured %s\n", row.name.c_str());
    };
    report.rows = bench::MeasureFrames({arguments.plugin, arguments.work, level, repeats, onRow},
                                       report.remarks);
    // The plain definitions are no faster than themselves.
    if (!arguments.framesOnly && level != simd::Level::kPlain) {
        const auto stages = bench::MeasureStages({level, repeats, onRow}, report.remarks);
        report.rows.insert(report.rows.end(), stages.begin(), stages.end());
    }
#if !defined(_WIN32)
    if (!arguments.ffmpeg.empty()) {
        report.yardstick =
            bench::MeasureFilterChain(arguments.ffmpeg, arguments.work, repeats.rounds);
        report.yardstick->oursMs = report.rows.front().oursMs;
    }
#endif
    std::fputs(bench::TableText(report).c_str(), stdout);
    if (!arguments.json.empty()) {
        std::ofstream out(arguments.json);
        out << bench::JsonText(report);
        if (!out.flush()) throw std::runtime_error("cannot write " + arguments.json);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Arguments arguments = Parse(argc, argv);
        if (arguments.help) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        Run(arguments);
        return 0;
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "vireon-speed: %s\n%s", error.what(), kUsage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vireon-speed: %s\n", error.what());
        return 1;
    }
}
