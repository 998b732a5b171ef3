#include "tests/tool/program.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <span>

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <poll.h>

namespace vireon::tool {
namespace {

constexpr char kOldOutput[] = "an older file that must not be lost";

std::string ContentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void Drain(headless::Descriptor& descriptor, std::string& text) {
    std::array<std::uint8_t, 4096> bytes;
    while (descriptor.isOpen()) {
        const auto count = headless::ReadSome(descriptor, bytes);
        if (!count) {
            descriptor.close();
        }
        if (count.value_or(0) == 0) {
            return;
        }
        text.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*count));
    }
}

}  // namespace

int Outcome::errorLines() const {
    return static_cast<int>(std::count(errors.begin(), errors.end(), '\n'));
}

Outcome RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const Environment& environment,
                   const std::function<void(pid_t, const std::string&)>& watch,
                   std::chrono::seconds limit) {
    using Clock = std::chrono::steady_clock;
    headless::ChildProcess child({program, arguments, environment});
    child.input.close();
    Outcome outcome;
    const Clock::time_point end = Clock::now() + limit;
    for (;;) {
        const std::optional<headless::ExitStatus> status = child.exited();
        Drain(child.output, outcome.output);
        Drain(child.errors, outcome.errors);
        if (status) {
            outcome.status = *status;
            return outcome;
        }
        if (Clock::now() > end) {
            ADD_FAILURE() << program << " does not end";
            return outcome;
        }
        if (watch) {
            watch(child.pid(), outcome.errors);
        }
        std::array<pollfd, 2> events{pollfd{child.output.get(), POLLIN, 0},
                                     pollfd{child.errors.get(), POLLIN, 0}};
        poll(events.data(), events.size(), 5);
    }
}

Outcome Vireon(const std::vector<std::string>& arguments, const Environment& environment,
               const std::function<void(pid_t, const std::string&)>& watch) {
    return RunProgram(std::filesystem::path(VIREON_TEST_STAGE) / "vireon", arguments, environment,
                      watch);
}

Workplace::Workplace() {
    std::string name = (std::filesystem::path(testing::TempDir()) / "vireon tool XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    std::vector<std::uint8_t> samples;
    for (int i = 0; i < 20 * 10; ++i) {
        samples.insert(samples.end(),
                       {static_cast<std::uint8_t>(i), 100, 7, static_cast<std::uint8_t>(255 - i)});
    }
    WritePng8(input(), 20, 4, samples);
    std::ofstream(output()) << kOldOutput;
}

Workplace::~Workplace() {
    std::filesystem::remove_all(folder_);
}

Outcome Workplace::render(const std::vector<std::string>& more, const Environment& environment,
                          const std::function<void(pid_t, const std::string&)>& watch) const {
    std::vector<std::string> arguments{"render", input(), output(), "--plugin", VIREON_TEST_EFFECT};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Vireon(arguments, environment, watch);
}

void Workplace::expectUntouched() const {
    EXPECT_EQ(ContentOf(output()), kOldOutput);
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        EXPECT_FALSE(entry.path().filename().string().starts_with(".vireon"))
            << "left behind: " << entry.path();
    }
}

void Workplace::expectFailure(const Outcome& outcome, int code, const std::string& words) const {
    EXPECT_EQ(outcome.code(), code) << outcome.errors << outcome.status.text();
    EXPECT_EQ(outcome.errorLines(), 1) << outcome.errors;
    EXPECT_TRUE(outcome.errors.starts_with("vireon: ")) << outcome.errors;
    EXPECT_NE(outcome.errors.find(words), std::string::npos)
        << "no \"" << words << "\" in: " << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    expectUntouched();
}

std::vector<std::uint8_t> Pixels8(const std::string& file, int* width, int* channels) {
    OIIO::ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file, &wishes);
    if (input == nullptr) {
        ADD_FAILURE() << OIIO::geterror();
        return {};
    }
    const OIIO::ImageSpec& spec = input->spec();
    std::vector<std::uint8_t> samples(static_cast<std::size_t>(spec.width) *
                                      static_cast<std::size_t>(spec.height) *
                                      static_cast<std::size_t>(spec.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::UINT8, samples.data()));
    if (width != nullptr) {
        *width = spec.width;
    }
    if (channels != nullptr) {
        *channels = spec.nchannels;
    }
    return samples;
}

void WritePng8(const std::string& file, int width, int channels,
               const std::vector<std::uint8_t>& samples) {
    OIIO::ImageSpec spec(width, static_cast<int>(samples.size()) / channels / width, channels,
                         OIIO::TypeDesc::UINT8);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    const auto output = OIIO::ImageOutput::create(file);
    EXPECT_TRUE(output->open(file, spec));
    EXPECT_TRUE(output->write_image(OIIO::TypeDesc::UINT8, samples.data()));
    EXPECT_TRUE(output->close());
}

}  // namespace vireon::tool
