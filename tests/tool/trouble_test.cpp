// What goes wrong costs one frame: one clear line, a code of its own, and the output as it was.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <OpenImageIO/imageio.h>
#include <sys/stat.h>

#include "tests/tool/program.h"

namespace vireon::tool {
namespace {

TEST(Trouble, AnEffectThatCrashes) {
    const Workplace place;
    for (const char* const behaviour : {"crash", "abort process", "exit"}) {
        place.expectFailure(place.render({"--behaviour", behaviour}), 13, "the worker");
    }
}

TEST(Trouble, AnEffectThatHangs) {
    const Workplace place;
    place.expectFailure(place.render({"--behaviour", "hang", "--timeout", "0.3"}), 14,
                        "nothing was heard from the worker for 0.3 s");
}

TEST(Trouble, AnEffectThatWritesPastItsFrame) {
    const Workplace place;
    place.expectFailure(place.render({"--behaviour", "write past"}), 15, "padding");
}

TEST(Trouble, AnEffectThatLeaks) {
    const Workplace place;
    place.expectFailure(place.render({"--behaviour", "leak"}), 15, "left behind: 1 handle");
}

TEST(Trouble, AnEffectThatFails) {
    const Workplace place;
    place.expectFailure(place.render({"--behaviour", "fail"}), 12,
                        "error 512 (internal failure): No glow today.");
    place.expectFailure(place.render({"--behaviour", "throw"}), 12, "exception");
}

TEST(Trouble, UnknownOptionsAndChoices) {
    const Workplace place;
    place.expectFailure(place.render({"--glow-radus", "7"}), 3, "did you mean --glow-radius?");
    place.expectFailure(place.render({"--glow-radus=7"}), 3, "did you mean --glow-radius?");
    place.expectFailure(place.render({"--haf"}), 3, "did you mean --half?");
    place.expectFailure(place.render({"---"}), 3, "there is no option ---");
    place.expectFailure(place.render({"--behaviour", "cpoy"}), 3, "did you mean Copy?");
    place.expectFailure(place.render({"--behaviour", "(-"}), 3, "there is no choice");
    place.expectFailure(place.render({"--layer", "msk=" + place.input()}), 3, "did you mean mask?");
    place.expectFailure(place.render({"--layer", "sky=" + place.input()}), 3, "it has mask");
}

TEST(Trouble, BadValues) {
    const Workplace place;
    place.expectFailure(place.render({"--glow-radius", "5001"}), 4, "0 to 5000 is possible");
    place.expectFailure(place.render({"--glow-radius", "much"}), 4, "is not a number");
    place.expectFailure(place.render({"--enable", "maybe"}), 4, "on or off");
    place.expectFailure(place.render({"--center", "middle"}), 4, "X,Y");
    place.expectFailure(place.render({"--depth", "12"}), 4, "8, 16 or 32");
    place.expectFailure(place.render({"--downsample", "0"}), 4, "1 to 64");
}

TEST(Trouble, BadCommandLines) {
    const Workplace place;
    place.expectFailure(place.render({"third.png"}), 2, "unexpected argument \"third.png\"");
    place.expectFailure(place.render({"--glow-radius"}), 2, "--glow-radius");
    place.expectFailure(place.render({"--layer", place.input()}), 2, "NAME=FILE");
    place.expectFailure(place.render({"--half", "--downsample", "3"}), 2, "contradict");
    place.expectFailure(Vireon({"render", place.input(), "--plugin", VIREON_TEST_EFFECT}), 2,
                        "two files are wanted");
    place.expectFailure(Vireon({"rendr"}), 2, "did you mean render?");
    place.expectFailure(Vireon({}), 2, "--help");
}

TEST(Trouble, PicturesThatCannotBeRead) {
    const Workplace place;
    // OpenImageIO leaks a text when a PNG is truncated; that is not what is looked for here.
    const auto render = [&place](const std::string& input) {
        return Vireon({"render", input, place.output(), "--plugin", VIREON_TEST_EFFECT},
                      {{"ASAN_OPTIONS", "detect_leaks=0"}});
    };
    place.expectFailure(render(place.file("none.png")), 5, "No such file");
    place.expectFailure(place.render({"--layer", "mask=" + place.file("none.png")}), 5, "none.png");
    std::filesystem::resize_file(place.input(), std::filesystem::file_size(place.input()) - 40);
    place.expectFailure(render(place.input()), 5, "in.png");
    std::ofstream(place.file("text.png")) << "no picture";
    place.expectFailure(render(place.file("text.png")), 5, "text.png");
    ASSERT_EQ(mkfifo(place.file("pipe.png").c_str(), 0600), 0);
    place.expectFailure(render(place.file("pipe.png")), 5, "it is a pipe");
}

TEST(Trouble, APictureOfDepthAlone) {
    const Workplace place;
    const std::string file = place.file("depth.exr");
    OIIO::ImageSpec spec(4, 4, 1, OIIO::TypeDesc::FLOAT);
    spec.channelnames = {"Z"};
    const std::vector<float> depths(16, 1.0f);
    const auto writer = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(writer != nullptr && writer->open(file, spec) &&
                writer->write_image(OIIO::TypeDesc::FLOAT, depths.data()) && writer->close());
    place.expectFailure(Vireon({"render", file, place.output(), "--plugin", VIREON_TEST_EFFECT}), 5,
                        "no colour");
}

TEST(Trouble, OutputsThatCannotBeWritten) {
    const Workplace place;
    const auto render = [&place](const std::string& output) {
        return Vireon({"render", place.input(), output, "--plugin", VIREON_TEST_EFFECT});
    };
    place.expectFailure(render(place.file("none/out.png")), 6, "does not exist");
    place.expectFailure(render(place.file("out.xyz")), 7, "extension .xyz");
    std::filesystem::create_directory(place.file("folder.png"));
    place.expectFailure(render(place.file("folder.png")), 7, "it is a folder");
    std::filesystem::create_symlink("/dev/full", place.file("full.png"));
    place.expectFailure(render(place.file("full.png")), 8, "the disk is full");
}

TEST(Trouble, AWriteThatStopsHalfWay) {
    // Files of this process may not grow beyond 512 bytes; the picture's takes some thousands.
    const Workplace place;
    std::vector<std::uint8_t> noise(64 * 64 * 3);
    for (std::size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<std::uint8_t>(i * i * 7919 >> 3);
    }
    WritePng8(place.input(), 64, 3, noise);
    ASSERT_GT(std::filesystem::file_size(place.input()), 2000u);
    const std::string command = std::string("ulimit -f 1; trap '' XFSZ; exec '") +
                                VIREON_TEST_STAGE + "/vireon' render '" + place.input() + "' '" +
                                place.output() + "' --plugin '" + VIREON_TEST_EFFECT + "'";
    place.expectFailure(RunProgram("/bin/sh", {"-c", command}), 7, "File too large");
}

TEST(Trouble, LibrariesThatAreNoEffects) {
    const Workplace place;
    const auto render = [&place](const std::string& plugin) {
        return Vireon({"render", place.input(), place.output(), "--plugin", plugin});
    };
    place.expectFailure(render(place.file("none.so")), 11, "there is no plug-in");
    place.expectFailure(render(place.input()), 11, "cannot load");
    place.expectFailure(Vireon({"describe", "--plugin", place.input()}), 11, "--plugin");
}

TEST(Trouble, WorkersThatAreMissing) {
    const Workplace place;
    place.expectFailure(place.render({}, {{"VIREON_WORKER", "/nonexistent/worker"}}), 9,
                        "/nonexistent/worker");
    std::ofstream(place.file("Effect.aex")) << "not a library";
    const std::vector<std::string> windows{"render", place.input(), place.output(), "--plugin",
                                           place.file("Effect.aex")};
    place.expectFailure(Vireon(windows, {{"VIREON_WORKER_EXE", "/nonexistent/worker.exe"}}), 9,
                        "/nonexistent/worker.exe");
}

TEST(Trouble, WineThatIsMissing) {
    const Workplace place;
    std::ofstream(place.file("Effect.aex")) << "not a library";
    std::ofstream(place.file("worker.exe")) << "not a program";
    const Outcome outcome = Vireon(
        {"render", place.input(), place.output(), "--plugin", place.file("Effect.aex")},
        {{"VIREON_WORKER_EXE", place.file("worker.exe")}, {"VIREON_WINE", "/nonexistent/wine"}});
    place.expectFailure(outcome, 10, "install the package wine64");
}

TEST(Trouble, AWorkerThatTalksNonsense) {
    const Workplace place;
    const std::string script = place.file("worker");
    std::ofstream(script) << "#!/bin/sh\necho this is not the protocol\nexec sleep 60\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    place.expectFailure(place.render({}, {{"VIREON_WORKER", script}}), 16, "protocol");
}

}  // namespace
}  // namespace vireon::tool
