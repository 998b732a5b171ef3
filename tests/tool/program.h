#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "headless/remote/child_process.h"

namespace vireon::tool {

/// What a program printed and how it ended.
struct Outcome {
    headless::ExitStatus status;
    std::string output;
    std::string errors;

    /// Exit code; -1 when a signal ended it.
    int code() const { return status.bySignal ? -1 : status.code; }
    /// Number of lines on standard error.
    int errorLines() const;
};

using Environment = std::map<std::string, std::optional<std::string>>;

/// Runs a program to its end. `watch` is called again and again with its process number and what it
/// printed on standard error so far. A program that does not end within `limit` is a failure.
Outcome RunProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const Environment& environment = {},
                   const std::function<void(pid_t, const std::string&)>& watch = {},
                   std::chrono::seconds limit = std::chrono::seconds(120));

/// Runs `vireon` from the stage.
Outcome Vireon(const std::vector<std::string>& arguments, const Environment& environment = {},
               const std::function<void(pid_t, const std::string&)>& watch = {});

/// A folder with a picture to render on and an older output, for one test.
class Workplace {
  public:
    Workplace();
    ~Workplace();
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    std::string input() const { return (folder_ / "in.png").string(); }
    std::string output() const { return (folder_ / "out.png").string(); }
    std::string file(const std::string& name) const { return (folder_ / name).string(); }

    /// `vireon render in.png out.png --plugin <the effect that misbehaves>` and more arguments.
    Outcome render(const std::vector<std::string>& more, const Environment& environment = {},
                   const std::function<void(pid_t, const std::string&)>& watch = {}) const;

    /// Expects that the older output is as it was and nothing else came into the folder.
    void expectUntouched() const;
    /// Expects one clear line, an exit code and an untouched output.
    void expectFailure(const Outcome& outcome, int code, const std::string& words) const;

  private:
    std::filesystem::path folder_;
};

/// Red, green, blue and alpha of every pixel, as the file has them.
std::vector<std::uint8_t> Pixels8(const std::string& file, int* width = nullptr,
                                  int* channels = nullptr);
void WritePng8(const std::string& file, int width, int channels,
               const std::vector<std::uint8_t>& samples);

}  // namespace vireon::tool
