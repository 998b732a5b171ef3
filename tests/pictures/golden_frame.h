#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "headless/remote/messages.h"
#include "tests/pictures/golden_cases.h"

namespace vireon::pictures {

/// The programs that make a golden picture.
struct GoldenPrograms {
    std::filesystem::path scenes;  ///< vireon-scenes
    std::filesystem::path vireon;
    std::filesystem::path plugin;  ///< empty: the library beside `vireon`
    std::string level;             ///< held to this level of instructions; empty: the machine's
};

/// Draws the scenes that cases ask for into a folder, each once: the same files that vireon-scenes
/// writes, without a start of the program for each.
class SceneFolder {
  public:
    /// Makes the folder when it does not exist. Scenes that lie in it already are drawn again.
    explicit SceneFolder(std::filesystem::path folder);

    const std::filesystem::path& path() const { return folder_; }

    /// The picture file of a scene for a frame of a depth. Throws std::exception, naming the scene,
    /// when there is no such scene, frame or size or the file cannot be written.
    std::filesystem::path fileOf(const SceneInput& input, std::int32_t bits);

  private:
    std::filesystem::path folder_;
    std::set<std::string> drawn_;
};

/// What `vireon render` would send to a worker for a case. Throws tool::ToolError for a parameter
/// or layer that does not exist or a value that is none, and what SceneFolder throws.
headless::RenderJob MakeJob(const GoldenCase& golden, const headless::Description& description,
                            SceneFolder& scenes);

/// Name, without folder, of the file of a scene: PNG for 8 and 16 bits, EXR for float.
std::string SceneFileName(const SceneInput& input, std::int32_t bits);

/// Arguments for vireon-scenes that draw a scene for a depth, into its file in the working folder.
std::vector<std::string> SceneArguments(const SceneInput& input, std::int32_t bits);

/// Arguments for vireon that render a case from scene files in the working folder into `output`.
std::vector<std::string> RenderArguments(const GoldenCase& golden, const std::string& output);

/// Lines for a shell that draw the scenes of a case in `folder` and render it there, into
/// "<name>-again.png" or ".exr".
std::vector<std::string> CommandsFor(const GoldenCase& golden, const GoldenPrograms& programs,
                                     const std::filesystem::path& folder);

/// A word as a POSIX shell takes it, in quotes where it needs them.
std::string ShellWord(const std::string& word);

/// Runs a program to its end. Throws std::runtime_error with what it said on standard error when it
/// fails or takes more than two minutes.
void RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments);

}  // namespace vireon::pictures
