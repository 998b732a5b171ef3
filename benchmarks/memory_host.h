#pragma once

#include <cstdlib>

#include "host/plugin_host_api.h"

namespace vireon::bench {

/// As much of a host as a stage needs that is measured by itself: memory, full resolution, final
/// quality, and leave to go on. It has no rasters, layers or parameters of its own.
class MemoryHost final : public PluginHost_API {
  public:
    std::int32_t width() const override { return -1; }
    std::int32_t height() const override { return -1; }
    std::int32_t outputOriginX() const override { return 0; }
    std::int32_t outputOriginY() const override { return 0; }
    std::int32_t clearOutput() override { return kNothing; }
    std::int32_t clearRectangle(PluginRaster_API&, const ShortRect*) override { return kNothing; }
    std::int32_t clearRaster(PluginRaster_API&) override { return kNothing; }
    std::int32_t copyInputToOutput() override { return kNothing; }
    std::int32_t copyRectangle(PluginRaster_API&, PluginRaster_API&, const ShortRect&,
                               const ShortRect&) override {
        return kNothing;
    }
    std::int32_t copyRaster(PluginRaster_API&, PluginRaster_API&) override { return kNothing; }
    std::unique_ptr<PluginRaster_API> parameterRaster(std::int32_t) override { return nullptr; }
    std::unique_ptr<PluginRaster_API> outputRaster() override { return nullptr; }
    std::unique_ptr<PluginRaster_API> newWorld(std::int32_t, std::int32_t, std::int32_t,
                                               std::int32_t& error, bool) override {
        error = 0;
        return nullptr;
    }
    std::int32_t disposeWorld(PluginRaster_API&) override { return 0; }

    bool isHighQuality() const override { return true; }
    double downsampleX() const override { return 1.0; }
    double downsampleY() const override { return 1.0; }
    double pixelAspectRatio() const override { return 1.0; }
    const SdkRecords* sdkRecords() const override { return nullptr; }
    std::int32_t parameterLayout(std::int32_t, RasterLayout&) override { return kNothing; }
    std::int32_t outputLayout(RasterLayout&) override { return kNothing; }
    std::int32_t rasterLayout(PluginRaster_API& raster, RasterLayout& layout) override {
        const RasterLayout* const own = raster.layoutRecord();
        if (own == nullptr) return kNothing;
        layout = *own;
        return 0;
    }

    // A handle is a block that holds the address of its bytes.
    void** newHandle(std::int64_t bytes) override {
        const auto size = static_cast<std::size_t>(bytes < 0 ? -bytes : bytes);
        auto* const handle = static_cast<void**>(std::malloc(sizeof(void*)));
        if (handle == nullptr) return nullptr;
        *handle = std::malloc(size);
        if (*handle != nullptr) return handle;
        std::free(handle);
        return nullptr;
    }
    void* lockHandle(void** handle) override { return *handle; }
    void unlockHandle(void**) override {}
    void disposeHandle(void** handle) override {
        std::free(*handle);
        std::free(handle);
    }
    void reportError(const char*) override {}
    std::int32_t progress(std::int32_t, std::int32_t) override { return 0; }

    bool isApplication(std::int32_t) const override { return false; }
    std::int32_t acquireSuite(const char*, std::int32_t, const char*, const void** suite) override {
        *suite = nullptr;
        return kNothing;
    }
    std::int32_t releaseSuite(const char*, std::int32_t, const char*) override { return kNothing; }
    bool checkboxValue(std::int32_t) const override { return false; }
    std::unique_ptr<PluginRaster_API> checkoutLayer(std::int32_t, std::int32_t) override {
        return nullptr;
    }
    void checkinLayer(std::int32_t) override {}
    const GlowKernel* customShape() const override { return nullptr; }
    void setCustomShape(const GlowKernel*) override {}
    bool alphaIsUndefined() const override { return false; }
    bool alphaIsIgnored() const override { return false; }
    bool isPremultiplied() const override { return false; }
    bool compositesItself() const override { return false; }
    bool keepsSeparators() const override { return true; }
    std::int32_t transfer(std::int32_t, float, float, PluginRaster_API&, PluginRaster_API&,
                          bool) override {
        return kNothing;
    }
    bool offersTransfer() const override { return false; }
    std::string resourceFilePath() override { return {}; }
    std::int32_t sliderValue(std::int32_t, std::int32_t, double& value) override {
        value = 0.0;
        return kNothing;
    }
    std::int32_t popupValue(std::int32_t, std::int32_t& value) override {
        value = 0;
        return kNothing;
    }
    std::int32_t pointValue(std::int32_t, double& x, double& y) override {
        x = y = 0.0;
        return kNothing;
    }

  private:
    /// What a host answers that has no such record.
    static constexpr std::int32_t kNothing = 513;
};

}  // namespace vireon::bench
