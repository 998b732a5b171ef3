#pragma once

#include <optional>

#include "host/plugin_raster_api.h"
#include "sdk/sdk.h"

namespace vireon {

class PluginHost_AE_Impl;

/// View of a host world. Neither the world's record nor its pixels are owned: destroying the raster
/// leaves both alone.
class PluginRaster_AE_Impl final : public PluginRaster_API {
  public:
    /// \param world  may be null: a raster without a world is empty
    PluginRaster_AE_Impl(sdk::PF_EffectWorld* world, PluginHost_AE_Impl* host)
        : world_(world), host_(host) {}

    std::int32_t width() const override { return world_ ? world_->width : 0; }
    std::int32_t height() const override { return world_ ? world_->height : 0; }
    std::int32_t depth() const override;
    std::int32_t rowBytes() const override { return world_ ? world_->rowbytes : 0; }
    PluginRaster_AE_Impl* asHostWorld() override { return this; }
    void attach(PluginHost_API* host) override;

    /// The hint as the host gives it: bottom and right are exclusive.
    std::int32_t extentTop() const override { return world_ ? world_->extent_hint.top : 0; }
    std::int32_t extentLeft() const override { return world_ ? world_->extent_hint.left : 0; }
    std::int32_t extentBottom() const override { return world_ ? world_->extent_hint.bottom : 0; }
    std::int32_t extentRight() const override { return world_ ? world_->extent_hint.right : 0; }

    sdk::PF_EffectWorld* world() const { return world_; }
    /// Format code of the world, asked of the host until it answers once: it does not change, and a
    /// query that fails later must not make another raster of this one.
    /// \param error  0 or the host's code; the format is then the shallowest
    std::int32_t format(std::int32_t& error) const;

    /// Whether the world was made, and has to be given back, through the World Suite.
    bool madeBySuite() const { return madeBySuite_; }
    void setMadeBySuite() { madeBySuite_ = true; }
    /// Takes the world away, when it has been given back to the host.
    void forgetWorld() { world_ = nullptr; }

  private:
    sdk::PF_EffectWorld* world_;
    PluginHost_AE_Impl* host_;
    mutable std::optional<std::int32_t> format_;
    bool madeBySuite_ = false;
};

}  // namespace vireon
