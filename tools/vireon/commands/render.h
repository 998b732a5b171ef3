#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "headless/remote/worker_client.h"
#include "tools/vireon/parameter_options.h"
#include "tools/vireon/picture_file.h"
#include "tools/vireon/plugin.h"
#include "tools/vireon/preset.h"

namespace vireon::tool {

/// `vireon render`. The options that stand for the effect's parameters are made from what the
/// effect registered, so the effect is loaded before the command line is read.
class RenderCommand {
  public:
    explicit RenderCommand(CLI::App& app);

    bool wasChosen() const { return command_->parsed(); }
    /// Loads the effect that the arguments name and adds its options. Throws ToolError.
    void addParameters(const std::vector<std::string>& arguments);
    /// After the command line was read. Throws ToolError.
    void run();

  private:
    struct GivenOption {
        ParameterOption parameter;
        std::string text;
        CLI::Option* handle = nullptr;
    };

    void addStaticOptions();
    void rejectUnknown() const;
    std::vector<std::string> optionNames() const;
    void checkSettings();
    void fillValues(headless::RenderJob& job, const FrameSize& frame) const;
    void fillLayers(headless::RenderJob& job);
    headless::RenderJob makeJob(const PictureFile& source);
    headless::RenderResult render(const headless::RenderJob& job);
    std::vector<ParameterOption> parameterOptions() const;
    void checkStages() const;
    void writeStages(const headless::RenderJob& job, const headless::Picture& output,
                     const PictureFile& source);
    void note(const std::string& text) const;

    CLI::App* command_ = nullptr;
    PluginOptions plugin_;
    std::string input_;
    std::string output_;
    std::int32_t bits_ = 0;
    std::int32_t downsample_ = 1;
    bool half_ = false;
    bool draft_ = false;
    bool quiet_ = false;
    bool time_ = false;
    std::vector<std::string> layers_;
    std::string presetText_;
    std::optional<Preset> preset_;
    std::string stageFolder_;  ///< empty: no stages
    std::optional<headless::WorkerClient> worker_;
    headless::Description description_;
    std::deque<GivenOption> parameters_;  // options point into it
};

}  // namespace vireon::tool
