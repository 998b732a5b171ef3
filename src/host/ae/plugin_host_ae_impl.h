#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/ae/plugin_raster_ae_impl.h"
#include "host/ae/sdk_records.h"
#include "host/ae/suite_set.h"
#include "host/plugin_host_api.h"
#include "sdk/sdk.h"

namespace vireon {

/// The host object over the records of one command of an After-Effects-type host. It owns none of
/// them, lives for the one command and stays on its thread.
class PluginHost_AE_Impl final : public PluginHost_API, public PluginPath_API {
  public:
    /// Acquires the suites that every command uses, in hosts that have them; what cannot be had is
    /// shown to the user and done without.
    /// \param params  the command's parameter array, or null
    /// \param output  the world to fill, or null
    PluginHost_AE_Impl(sdk::PF_InData* inData, sdk::PF_OutData* outData, sdk::PF_ParamDef** params,
                       sdk::PF_EffectWorld* output);
    ~PluginHost_AE_Impl() override;

    // PluginHost_API, in the order of its operations.
    std::int32_t width() const override;
    std::int32_t height() const override;
    std::int32_t outputOriginX() const override;
    std::int32_t outputOriginY() const override;
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
    std::unique_ptr<PluginRaster_API> worldFromLayout(
        std::unique_ptr<OwnedLayout>& record) override;
    std::unique_ptr<PluginRaster_API> newWorld(std::int32_t width, std::int32_t height,
                                               std::int32_t depth, std::int32_t& error,
                                               bool clear) override;
    std::int32_t disposeWorld(PluginRaster_API& raster) override;
    bool isHighQuality() const override;
    double downsampleX() const override;
    double downsampleY() const override;
    double pixelAspectRatio() const override;
    const SdkRecords* sdkRecords() const override { return &records_; }
    std::int32_t parameterLayout(std::int32_t index, RasterLayout& layout) override;
    std::int32_t outputLayout(RasterLayout& layout) override;
    std::int32_t rasterLayout(PluginRaster_API& raster, RasterLayout& layout) override;
    using PluginHost_API::mathAbs;
    using PluginHost_API::mathAtan;
    using PluginHost_API::mathCeil;
    using PluginHost_API::mathCos;
    using PluginHost_API::mathExp;
    using PluginHost_API::mathFloor;
    using PluginHost_API::mathLog;
    using PluginHost_API::mathPow;
    using PluginHost_API::mathSin;
    using PluginHost_API::mathSqrt;
    using PluginHost_API::mathTan;
    double mathSqrt(double x) override;
    double mathFloor(double x) override;
    double mathCeil(double x) override;
    double mathAbs(double x) override;
    double mathSin(double x) override;
    double mathCos(double x) override;
    double mathTan(double x) override;
    double mathAtan(double x) override;
    double mathExp(double x) override;
    double mathLog(double x) override;
    double mathPow(double base, double exponent) override;
    bool isRasterDeep(PluginRaster_API& raster) const override;
    void** newHandle(std::int64_t bytes) override;
    void* lockHandle(void** handle) override;
    void unlockHandle(void** handle) override;
    void disposeHandle(void** handle) override;
    void reportError(const char* message) override;
    void growOutput(std::int32_t width, std::int32_t height, std::int32_t a,
                    std::int32_t b) override;
    bool hasGlobalAndSequenceData() const override;
    void* loadLibrary(const char* name) override;
    std::uint64_t handleSize(void** handle) override;
    std::int32_t resizeHandle(void**& handle, std::uint64_t bytes) override;
    std::int32_t progress(std::int32_t current, std::int32_t total) override;
    std::uint32_t timeScale() const override;
    std::int32_t currentTime() const override;
    std::int32_t timeStep() const override;
    std::int32_t totalTime() const override;
    std::int32_t localTimeStep() const override;
    bool isApplication(std::int32_t code) const override;
    std::int64_t userWord() const override { return userWord_; }
    void setUserWord(std::int64_t word) override { userWord_ = word; }
    void userWords(std::int32_t& first, std::int32_t& second) const override;
    void setUserWords(std::int32_t first, std::int32_t second) override;
    std::int32_t acquireSuite(const char* name, std::int32_t version, const char* message,
                              const void** suite) override;
    std::int32_t releaseSuite(const char* name, std::int32_t version, const char* message) override;
    float shutterPhase() const override;
    float shutterAngle() const override;
    std::int32_t sliderAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                          double& value) override;
    std::int32_t fixedAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                         double& value) override;
    std::int32_t integerAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                           std::int32_t& value) override;
    std::int32_t popupAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                         std::int32_t& choice) override;
    bool checkboxValue(std::int32_t index) const override;
    std::int32_t pointAt(std::int32_t index, const HostTime& time, double& x, double& y) override;
    std::int32_t spacePointAt(std::int32_t index, const HostTime& time, double& x, double& y,
                              double& z) override;
    PluginPath_API* path() const override { return path_; }
    void setPath(PluginPath_API* path) override { path_ = path; }
    std::unique_ptr<PluginRaster_API> checkoutLayer(std::int32_t index,
                                                    std::int32_t identifier) override;
    void checkinLayer(std::int32_t index) override;
    const GlowKernel* customShape() const override { return customShape_; }
    void setCustomShape(const GlowKernel* kernel) override { customShape_ = kernel; }
    bool alphaIsUndefined() const override { return false; }
    bool alphaIsIgnored() const override { return false; }
    bool isPremultiplied() const override { return false; }
    bool compositesItself() const override { return false; }
    std::int32_t backgroundColour(std::uint16_t& red, std::uint16_t& green,
                                  std::uint16_t& blue) override;
    bool canRefreshUi() override;
    std::int32_t isRenderEngine(bool& answer) override;
    std::int32_t interfaceColour(std::int32_t element, std::uint16_t& red, std::uint16_t& green,
                                 std::uint16_t& blue) override;
    void hostVersionParts(std::int32_t& major, std::int32_t& minor) const override;
    void adoptOutput(PluginRaster_API& raster) override;
    bool keepsSeparators() const override { return true; }
    std::int32_t transfer(std::int32_t mode, float glowOpacity, float sourceOpacity,
                          PluginRaster_API& glow, PluginRaster_API& source,
                          bool forceOpaque) override;
    bool offersTransfer() const override { return false; }
    void setReturnMessage(const char* first, const char* second) override;
    std::string resourceFilePath() override;
    std::int32_t setSizeOverride(std::int32_t width, std::int32_t height) override;
    std::int32_t fieldCount() const override;
    bool frameRate(float& rate) const override;
    void requestUiRefresh() override;
    std::int32_t sliderValue(std::int32_t index, std::int32_t kind, double& value) override;
    std::int32_t popupValue(std::int32_t index, std::int32_t& value) override;
    std::int32_t pointValue(std::int32_t index, double& x, double& y) override;
    std::unique_ptr<PluginUpdate_API> parameterUpdate() override;
    std::unique_ptr<PluginRaster_API> inputLayerAt(std::int32_t time) override;

    // PluginPath_API, in the order of its operations.
    std::int32_t pathVertex(const void* dataSuite, void* path, std::int32_t index,
                            PathVertex& vertex) override;
    std::int32_t pathIsOpen(const void* dataSuite, void* path, bool& open) override;
    std::int32_t pathSegments(const void* dataSuite, void* path, std::int32_t& count) override;
    std::int32_t pathCount(const void* querySuite, std::int32_t& count) override;
    std::int32_t checkoutPath(const void* querySuite, std::uint32_t id, const HostTime& time,
                              void*& path) override;
    std::int32_t checkinPath(const void* querySuite, std::uint32_t id, bool changed,
                             void* path) override;
    std::int32_t pathId(const void* querySuite, std::int32_t index, std::uint32_t& id) override;

    /// The parameter array of the command, or null.
    sdk::PF_ParamDef** params() const { return params_; }

    /// The host's suites beyond those that every command acquires.
    SuiteSet& suites() { return suites_; }

    /// Whether each field of a frame counts as a frame of its own: doubles the time steps while
    /// fields are rendered. Off at first.
    void setFieldsCountAsFrames(bool on) { fieldsCountAsFrames_ = on; }

    /// Format code of a world: by the World Suite where the host has it, else by the world's flag,
    /// which tells 16 bits only.
    /// \param error  0 or the host's code; the format is then the shallowest
    std::int32_t worldFormat(const sdk::PF_EffectWorld& world, std::int32_t& error) const;

  private:
    // A layer parameter between check-out and check-in.
    struct CheckedOut {
        std::int32_t index;
        std::unique_ptr<sdk::PF_ParamDef> record;
    };

    // From interface 12.12 on hosts have the World Suite, and with it float worlds.
    static constexpr std::int32_t kWorldSuiteVersion = 1212;

    std::int32_t hostVersion() const;
    bool hasWorldSuite() const;
    std::int32_t worldLayout(const PluginRaster_AE_Impl& raster, float deepValueScale,
                             RasterLayout& layout) const;
    std::int32_t worldPixels(sdk::PF_EffectWorld& world, std::int32_t formatCode,
                             void*& pixels) const;
    std::unique_ptr<PluginRaster_AE_Impl> makeWorld(std::int32_t width, std::int32_t height,
                                                    std::int32_t depth, bool clear,
                                                    std::int32_t& error);
    std::unique_ptr<PluginRaster_API> copyOfLayer(sdk::PF_EffectWorld& layer);
    std::int32_t stepOf(std::int32_t step) const;
    // Both are defined where they are used.
    template <typename Question>
    std::int32_t askApplication(Question&& question);
    template <typename Read>
    std::int32_t readAt(std::int32_t index, const HostTime& time, Read&& read);
    const sdk::PF_ParamDef* parameter(std::int32_t index) const;
    std::int32_t fill(sdk::PF_EffectWorld* world) const;

    SdkRecords records_;
    sdk::PF_InData* in_;
    sdk::PF_OutData* out_;
    sdk::PF_ParamDef** params_;
    sdk::PF_EffectWorld* output_;
    std::int64_t userWord_ = 0;
    std::int32_t userWords_[2] = {0, 0};
    std::int32_t widthOverride_ = -1;
    std::int32_t heightOverride_ = -1;
    PluginPath_API* path_;
    const sdk::PF_WorldSuite2* worldSuite_ = nullptr;
    const sdk::PF_ColorParamSuite1* colorParamSuite_ = nullptr;
    bool fieldsCountAsFrames_ = false;
    SuiteSet suites_;
    const GlowKernel* customShape_ = nullptr;
    std::vector<CheckedOut> checkedOut_;
};

}  // namespace vireon
