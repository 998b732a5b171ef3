#include "headless/results.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace vireon::headless {

std::string Parameter::name() const {
    const auto* const end = std::find(std::begin(current.name), std::end(current.name), '\0');
    return {std::begin(current.name), end};
}

std::string CommandName(std::int32_t command) {
    static const char* const kNames[] = {"ABOUT",
                                         "GLOBAL_SETUP",
                                         "UNUSED_0",
                                         "GLOBAL_SETDOWN",
                                         "PARAMS_SETUP",
                                         "SEQUENCE_SETUP",
                                         "SEQUENCE_RESETUP",
                                         "SEQUENCE_FLATTEN",
                                         "SEQUENCE_SETDOWN",
                                         "DO_DIALOG",
                                         "FRAME_SETUP",
                                         "RENDER",
                                         "FRAME_SETDOWN",
                                         "USER_CHANGED_PARAM",
                                         "UPDATE_PARAMS_UI",
                                         "EVENT",
                                         "GET_EXTERNAL_DEPENDENCIES",
                                         "COMPLETELY_GENERAL",
                                         "QUERY_DYNAMIC_FLAGS",
                                         "AUDIO_RENDER",
                                         "AUDIO_SETUP",
                                         "AUDIO_SETDOWN",
                                         "ARBITRARY_CALLBACK",
                                         "SMART_PRE_RENDER",
                                         "SMART_RENDER"};
    if (command >= 0 && command < static_cast<std::int32_t>(std::size(kNames))) {
        return kNames[command];
    }
    return "command " + std::to_string(command);
}

std::string CommandResult::message() const {
    const auto* const end = std::find(std::begin(out.return_msg), std::end(out.return_msg), '\0');
    return {std::begin(out.return_msg), end};
}

std::string CommandResult::report() const {
    std::string text = CommandName(command) + ": " + std::to_string(error);
    if (!message().empty()) {
        text += "\n  message: " + message();
    }
    if (!leaks.empty()) {
        text += "\n  left over: ";
        for (const char character : leaks) {
            text += character == '\n' ? std::string(", ") : std::string(1, character);
        }
    }
    for (const std::string& violation : violations) {
        text += "\n  violation: " + violation;
    }
    return text;
}

PreRender::~PreRender() {
    releaseData();
}

PreRender::PreRender(PreRender&& other) noexcept
    : result(std::move(other.result)),
      request(other.request),
      output(std::exchange(other.output, {})),
      layers(std::move(other.layers)) {}

PreRender& PreRender::operator=(PreRender&& other) noexcept {
    if (this != &other) {
        releaseData();
        result = std::move(other.result);
        request = other.request;
        output = std::exchange(other.output, {});
        layers = std::move(other.layers);
    }
    return *this;
}

void PreRender::releaseData() {
    if (output.pre_render_data == nullptr) {
        return;
    }
    if (output.delete_pre_render_data_func != nullptr) {
        output.delete_pre_render_data_func(output.pre_render_data);
    } else {
        std::free(output.pre_render_data);
    }
    output.pre_render_data = nullptr;
}

sdk::PF_Err RenderOutcome::error() const {
    for (const CommandResult& result : commands) {
        if (result.error != 0) {
            return result.error;
        }
    }
    return 0;
}

bool RenderOutcome::clean() const {
    return std::all_of(commands.begin(), commands.end(),
                       [](const CommandResult& result) { return result.clean(); });
}

std::string RenderOutcome::report() const {
    std::string text;
    for (const CommandResult& result : commands) {
        text += (text.empty() ? "" : "\n") + result.report();
    }
    return text;
}

}  // namespace vireon::headless
