#pragma once

#include <memory>
#include <string>
#include <vector>

#include "headless/host.h"

namespace vireon::look {

/// One instance of the effect in a host of this process, ready to render one layer after another.
class Effect {
  public:
    /// \param library  must outlive the effect
    /// \param scale  what the pictures' height is to that for which radii are meant, 0.32 or more:
    ///        Glow Radius is multiplied by it and Glow Intensity divided by its square, since the
    ///        light of a stamp goes with its area; the look is then that of the full size
    /// Throws std::runtime_error when the effect refuses a command.
    Effect(const headless::EffectLibrary& library, double scale);

    /// Back to the registered parameters, radius and intensity scaled, at full resolution.
    void reset();

    /// The glow alone, without the layer and without a limit to its light.
    void showGlowAlone();

    /// Chooses an entry of a popup by its text. Throws std::runtime_error when there is none.
    void choose(const std::string& parameter, const std::string& entry);

    /// The entries of a popup without separators, in order.
    std::vector<std::string> entries(const std::string& parameter) const;

    /// The layer as a host hands it over for a preview at 1/factor of its size; the layer that is
    /// rendered then is the reduced one.
    void preview(int factor);

    /// Renders a layer at its depth. Throws std::runtime_error when the effect fails.
    std::shared_ptr<headless::World> render(const std::shared_ptr<headless::World>& layer);

  private:
    std::int32_t find(const std::string& parameter) const;

    headless::Host host_;
    double scale_;
};

}  // namespace vireon::look
