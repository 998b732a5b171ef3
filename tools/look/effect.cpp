#include "tools/look/effect.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>

namespace vireon::look {

namespace {

headless::HostSettings QuietSettings() {
    headless::HostSettings settings;
    // The host's own checks would count into the cost of a frame.
    settings.checkInputs = false;
    settings.scribble = false;
    return settings;
}

// All entries of a popup with its separators, which count as entries.
std::vector<std::string> AllEntries(const std::string& text) {
    std::vector<std::string> entries;
    std::size_t begin = 0;
    while (true) {
        const std::size_t end = std::min(text.find('|', begin), text.size());
        entries.push_back(text.substr(begin, end - begin));
        if (end == text.size()) return entries;
        begin = end + 1;
    }
}

constexpr const char* kSeparator = "(-";

}  // namespace

Effect::Effect(const headless::EffectLibrary& library, double scale)
    : host_(library, QuietSettings()), scale_(scale) {
    for (const headless::CommandResult& result : host_.setUp()) {
        if (result.error != 0) throw std::runtime_error("the effect refused: " + result.report());
    }
    reset();
}

void Effect::reset() {
    host_.resetParameters();
    host_.settings().downsampleX = {1, 1};
    host_.settings().downsampleY = {1, 1};
    host_.settings().fullWidth = 0;
    host_.settings().fullHeight = 0;
    const std::int32_t radius = find("Glow Radius");
    host_.setNumber(radius, host_.number(radius) * scale_);
    const std::int32_t intensity = find("Glow Intensity");
    host_.setNumber(intensity, host_.number(intensity) / (scale_ * scale_));
}

void Effect::showGlowAlone() {
    choose("Transfer Mode", "None");
    host_.setCheckbox(find("Prevent Overbrights"), false);
}

void Effect::choose(const std::string& parameter, const std::string& entry) {
    const std::int32_t index = find(parameter);
    const std::vector<std::string> all = AllEntries(host_.parameter(index).text);
    const auto found = std::find(all.begin(), all.end(), entry);
    if (found == all.end()) {
        throw std::runtime_error("the effect's " + parameter + " has no entry '" + entry + "'");
    }
    host_.setPopup(index, static_cast<std::int32_t>(found - all.begin()) + 1);
}

std::vector<std::string> Effect::entries(const std::string& parameter) const {
    std::vector<std::string> all = AllEntries(host_.parameter(find(parameter)).text);
    std::erase(all, kSeparator);
    return all;
}

void Effect::preview(int factor) {
    const sdk::PF_RationalScale scale{1, static_cast<std::uint32_t>(factor)};
    host_.settings().downsampleX = scale;
    host_.settings().downsampleY = scale;
}

std::shared_ptr<headless::World> Effect::render(const std::shared_ptr<headless::World>& layer) {
    host_.setInput(layer);
    headless::RenderOutcome outcome = host_.renderSmart(host_.fullRequest(layer->depth()));
    if (outcome.error() != 0 || outcome.output == nullptr) {
        throw std::runtime_error("a frame failed: " + outcome.report());
    }
    return std::move(outcome.output);
}

std::int32_t Effect::find(const std::string& parameter) const {
    const auto index = host_.findParameter(parameter);
    if (!index) throw std::runtime_error("the effect has no parameter '" + parameter + "'");
    return *index;
}

}  // namespace vireon::look
