#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "host/plugin_raster_api.h"
#include "image/raster_layout.h"

namespace vireon::test {

class FakeHost;

/// A host world over plain memory. Rows are padded; only the host that made it knows its layout.
class FakeWorld final : public PluginRaster_API {
  public:
    FakeWorld(FakeHost& host, std::int32_t width, std::int32_t height, std::int32_t depth,
              std::int32_t paddingBytes);
    ~FakeWorld() override;

    std::int32_t width() const override { return layout_.width; }
    std::int32_t height() const override { return layout_.height; }
    std::int32_t depth() const override { return depth_; }
    std::int32_t rowBytes() const override { return layout_.rowBytes; }
    PluginRaster_AE_Impl* asHostWorld() override { return nullptr; }
    void attach(PluginHost_API*) override {}

    /// The layout as the host tells it; without pixels once the world is gone.
    const RasterLayout& layout() const { return layout_; }
    void fill(std::byte value);
    void freePixels();

  private:
    FakeHost* host_;
    RasterLayout layout_;
    std::int32_t depth_;
    std::vector<std::byte> bytes_;
};

/// The host interface over plain memory: everything is counted, every answer can be set, and what
/// was taken and not given back is known. Memory is handed out filled with 0xFF, which is NaN in
/// floats, so that nothing can rely on its contents.
class FakeHost final : public PluginHost_API {
  public:
    ~FakeHost() override;

    // Answers.
    std::int32_t application = 0;
    std::int32_t outputWidth = -1;
    std::int32_t outputHeight = -1;
    bool highQuality = true;
    double factorX = 1.0;
    double factorY = 1.0;
    double aspectRatio = 1.0;
    bool undefinedAlpha = false;
    bool ignoredAlpha = false;
    bool premultiplied = false;
    bool selfCompositing = false;
    bool separators = true;
    bool transferService = false;
    std::int32_t transferAnswer = 0;
    const GlowKernel* shape = nullptr;
    std::string resourceFile;
    std::map<std::int32_t, double> sliders;
    std::map<std::int32_t, std::int32_t> popups;
    std::map<std::int32_t, bool> checkboxes;
    std::map<std::int32_t, std::pair<double, double>> points;

    // Failures. Calls count from 0.
    static constexpr int kNever = std::numeric_limits<int>::max();
    int newHandleFailsFrom = kNever;
    int lockFailsFrom = kNever;
    int newWorldFailsFrom = kNever;
    /// What a failing newWorld reports; 0 gives null without an error.
    std::int32_t newWorldError = 4;
    /// Depth of the worlds that are really made, whatever was asked for.
    std::optional<std::int32_t> madeDepth;
    /// Extra bytes after every row of a new world.
    std::int32_t worldPadding = 16;
    std::function<std::int32_t(int call)> progressAnswer;
    /// Called at the start of every operation with its name; may throw.
    std::function<void(std::string_view operation)> onCall;

    // What happened.
    mutable std::map<std::string, int, std::less<>> calls;
    int count(std::string_view operation) const;
    std::vector<std::pair<std::int32_t, std::int32_t>> progressReports;
    std::vector<std::int64_t> handleSizes;
    std::map<std::int32_t, std::int32_t> sliderKinds;
    struct TransferCall {
        std::int32_t mode;
        float glowOpacity;
        float sourceOpacity;
        PluginRaster_API* glow;
        PluginRaster_API* source;
        bool forceOpaque;
    };
    std::vector<TransferCall> transfers;
    std::size_t liveHandles() const { return handles_.size(); }
    std::size_t liveWorlds() const { return worlds_.size(); }
    int worldsMade = 0;
    /// Worlds whose raster was deleted before it was given back.
    int worldsLost = 0;
    /// Unlocks of unlocked blocks, disposals of locked ones, and the like.
    int misuses = 0;

    /// A world of the host's that the test owns, e.g. a layer; it is not counted.
    std::unique_ptr<FakeWorld> makeLayer(std::int32_t width, std::int32_t height,
                                         std::int32_t depth, std::int32_t paddingBytes = 16);

    std::int32_t width() const override { return outputWidth; }
    std::int32_t height() const override { return outputHeight; }
    std::int32_t outputOriginX() const override { return 0; }
    std::int32_t outputOriginY() const override { return 0; }
    std::int32_t clearOutput() override;
    std::int32_t clearRectangle(PluginRaster_API& raster, const ShortRect* rectangle) override;
    std::int32_t clearRaster(PluginRaster_API& raster) override;
    std::int32_t copyInputToOutput() override;
    std::int32_t copyRectangle(PluginRaster_API& source, PluginRaster_API& destination,
                               const ShortRect& sourceRectangle,
                               const ShortRect& destinationRectangle) override;
    std::int32_t copyRaster(PluginRaster_API& source, PluginRaster_API& destination) override;
    std::unique_ptr<PluginRaster_API> parameterRaster(std::int32_t index) override;
    std::unique_ptr<PluginRaster_API> outputRaster() override;
    std::unique_ptr<PluginRaster_API> newWorld(std::int32_t width, std::int32_t height,
                                               std::int32_t depth, std::int32_t& error,
                                               bool clear) override;
    std::int32_t disposeWorld(PluginRaster_API& raster) override;
    bool isHighQuality() const override;
    double downsampleX() const override { return factorX; }
    double downsampleY() const override { return factorY; }
    double pixelAspectRatio() const override { return aspectRatio; }
    const SdkRecords* sdkRecords() const override { return nullptr; }
    std::int32_t parameterLayout(std::int32_t index, RasterLayout& layout) override;
    std::int32_t outputLayout(RasterLayout& layout) override;
    std::int32_t rasterLayout(PluginRaster_API& raster, RasterLayout& layout) override;
    void** newHandle(std::int64_t bytes) override;
    void* lockHandle(void** handle) override;
    void unlockHandle(void** handle) override;
    void disposeHandle(void** handle) override;
    void reportError(const char* message) override;
    std::int32_t progress(std::int32_t current, std::int32_t total) override;
    bool isApplication(std::int32_t code) const override { return code == application; }
    std::int32_t acquireSuite(const char* name, std::int32_t version, const char* message,
                              const void** suite) override;
    std::int32_t releaseSuite(const char* name, std::int32_t version, const char* message) override;
    std::int32_t sliderValue(std::int32_t index, std::int32_t kind, double& value) override;
    std::int32_t popupValue(std::int32_t index, std::int32_t& value) override;
    bool checkboxValue(std::int32_t index) const override;
    std::int32_t pointValue(std::int32_t index, double& x, double& y) override;
    std::unique_ptr<PluginRaster_API> checkoutLayer(std::int32_t index,
                                                    std::int32_t identifier) override;
    void checkinLayer(std::int32_t index) override;
    const GlowKernel* customShape() const override { return shape; }
    void setCustomShape(const GlowKernel* kernel) override { shape = kernel; }
    bool alphaIsUndefined() const override { return undefinedAlpha; }
    bool alphaIsIgnored() const override { return ignoredAlpha; }
    bool isPremultiplied() const override { return premultiplied; }
    bool compositesItself() const override { return selfCompositing; }
    bool keepsSeparators() const override { return separators; }
    bool offersTransfer() const override { return transferService; }
    std::int32_t transfer(std::int32_t mode, float glowOpacity, float sourceOpacity,
                          PluginRaster_API& glow, PluginRaster_API& source,
                          bool forceOpaque) override;
    std::string resourceFilePath() override { return resourceFile; }

  private:
    friend class FakeWorld;

    struct Block {
        std::unique_ptr<std::byte[]> bytes;
        std::unique_ptr<void*> slot;
        int locks = 0;
    };

    int enter(std::string_view operation) const;

    std::map<void**, Block> handles_;
    std::set<FakeWorld*> worlds_;
};

/// Whether every block and world that the host handed out has come back, in good order.
testing::AssertionResult EverythingReturned(const FakeHost& host);

}  // namespace vireon::test
