#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/host_time.h"
#include "host/owned_layout.h"
#include "host/plugin_path_api.h"
#include "host/plugin_raster_api.h"
#include "host/plugin_update_api.h"
#include "host/short_rect.h"

namespace vireon {

struct GlowKernel;
struct SdkRecords;

/// Everything that the effect asks of the application that runs it. One object serves one command
/// on one thread. The order of the operations is part of the interface; the number before each is
/// its place.
///
/// Results named `error` and results of type `std::int32_t` without another meaning are the host's
/// codes: 0 is success, everything else goes back up to the host unchanged. Rasters are owned by
/// whoever receives them; the pixels of a host world stay the host's, those of `newWorld` go back
/// by `disposeWorld`. Operations with a default are those that a host may do without.
class PluginHost_API {
  public:
    PluginHost_API() = default;
    PluginHost_API(const PluginHost_API&) = delete;
    PluginHost_API& operator=(const PluginHost_API&) = delete;

    // Size and place of the output.

    /// 0: width of the output in pixels: without an output the override (-1 when none is set); with
    /// one the override, or for an override of -1 or -2 the output's own.
    virtual std::int32_t width() const = 0;
    /// 1: height of the output in pixels, by the rule of `width`.
    virtual std::int32_t height() const = 0;
    /// 2: column of the layer's coordinates at which the output begins; 0 but in 'FXTC'.
    virtual std::int32_t outputOriginX() const = 0;
    /// 3: row of the layer's coordinates at which the output begins; 0 but in 'FXTC'.
    virtual std::int32_t outputOriginY() const = 0;

    // Clearing and copying.

    /// 4: makes the whole output transparent black.
    virtual std::int32_t clearOutput() = 0;
    /// 5: zeroes the columns `left` to `right` (exclusive) of the rows `top` to `bottom`
    /// (inclusive: the asymmetry is deliberate). Without a rectangle the whole raster is cleared.
    /// The rectangle must lie within the raster. Returns 0.
    virtual std::int32_t clearRectangle(PluginRaster_API& raster, const ShortRect* rectangle) = 0;
    /// 6: makes a raster transparent black.
    virtual std::int32_t clearRaster(PluginRaster_API& raster) = 0;
    /// 7: copies the input layer to the output, both whole.
    virtual std::int32_t copyInputToOutput() = 0;
    /// 8: copies one rectangle of a host-world raster to a rectangle of another; bottom and right
    /// are exclusive.
    virtual std::int32_t copyRectangle(PluginRaster_API& source, PluginRaster_API& destination,
                                       const ShortRect& sourceRectangle,
                                       const ShortRect& destinationRectangle) = 0;
    /// 9: copies a host-world raster to another, both whole.
    virtual std::int32_t copyRaster(PluginRaster_API& source, PluginRaster_API& destination) = 0;

    // Rasters.

    /// 10: view of the layer of parameter `index`; 0 is the input. Null without such a record.
    virtual std::unique_ptr<PluginRaster_API> parameterRaster(std::int32_t index) = 0;
    /// 11: view of the output, or null when there is none.
    virtual std::unique_ptr<PluginRaster_API> outputRaster() = 0;
    /// 12: a new 8-bit host world of a layout's size in the place of the layout's own memory, which
    /// is given back. Only layouts whose format code is of class 0 (see `LayoutClass`) are taken:
    /// for others the result is null and the layout is left alone. Null, too, when the host has no
    /// memory; the layout is gone then.
    virtual std::unique_ptr<PluginRaster_API> worldFromLayout(std::unique_ptr<OwnedLayout>&) {
        return nullptr;
    }
    /// 13: a new host world. \param depth a depth code; \param clear asks for transparent black.
    /// Null for a depth that the host cannot make (`error` is 0) and when the effect has no memory
    /// (4); after an error of the host the raster has no world.
    virtual std::unique_ptr<PluginRaster_API> newWorld(std::int32_t width, std::int32_t height,
                                                       std::int32_t depth, std::int32_t& error,
                                                       bool clear) = 0;
    /// 14: gives the world of a raster of `newWorld` back; the raster object stays the caller's. A
    /// raster without a world gives 0.
    virtual std::int32_t disposeWorld(PluginRaster_API& raster) = 0;

    // The render's circumstances.

    /// 15: true for final quality, false for drafts.
    virtual bool isHighQuality() const = 0;
    /// 16: horizontal resolution of the render as a fraction of the full one, e.g. 0.5.
    virtual double downsampleX() const = 0;
    /// 17: vertical resolution of the render as a fraction of the full one.
    virtual double downsampleY() const = 0;
    /// 18: width of one of the layer's pixels over its height.
    virtual double pixelAspectRatio() const = 0;
    /// 19: the host's own records, for the parts of the effect that speak its contract; null in a
    /// host that has none.
    virtual const SdkRecords* sdkRecords() const = 0;

    /// 20 to 28: without a use so far.
    virtual void reserved20() {}
    virtual void reserved21() {}
    virtual void reserved22() {}
    virtual void reserved23() {}
    virtual void reserved24() {}
    virtual void reserved25() {}
    virtual void reserved26() {}
    virtual void reserved27() {}
    virtual void reserved28() {}

    // Layouts.

    /// 29: layout of the layer of parameter `index`, 16-bit values to be doubled. Returns 0, or 513
    /// when there is no such record.
    virtual std::int32_t parameterLayout(std::int32_t index, RasterLayout& layout) = 0;
    /// 30: layout of the output, 16-bit values to be doubled. Returns 0, or 516 without an output.
    virtual std::int32_t outputLayout(RasterLayout& layout) = 0;
    /// 31: layout of any raster: its own record when it has one, else that of its world, 16-bit
    /// values to be halved.
    virtual std::int32_t rasterLayout(PluginRaster_API& raster, RasterLayout& layout) = 0;

    // The host's mathematics, each in single and in double precision: the former widens its
    // arguments and narrows the result. Angles are radians. Systems round these differently; what
    // reaches a pixel uses image/exact_math.h instead.

    /// 32, 33
    virtual float mathSqrt(float x);
    virtual double mathSqrt(double x);
    /// 34, 35
    virtual float mathFloor(float x);
    virtual double mathFloor(double x);
    /// 36, 37
    virtual float mathCeil(float x);
    virtual double mathCeil(double x);
    /// 38, 39
    virtual float mathAbs(float x);
    virtual double mathAbs(double x);
    /// 40, 41
    virtual float mathSin(float x);
    virtual double mathSin(double x);
    /// 42, 43
    virtual float mathCos(float x);
    virtual double mathCos(double x);
    /// 44, 45
    virtual float mathTan(float x);
    virtual double mathTan(double x);
    /// 46, 47
    virtual float mathAtan(float x);
    virtual double mathAtan(double x);
    /// 48, 49
    virtual float mathExp(float x);
    virtual double mathExp(double x);
    /// 50, 51: natural logarithm.
    virtual float mathLog(float x);
    virtual double mathLog(double x);
    /// 52, 53
    virtual float mathPow(float base, float exponent);
    virtual double mathPow(double base, double exponent);

    /// 54: whether a host-world raster is marked as 16 bits; known in 'Cbst' only, else false.
    virtual bool isRasterDeep(PluginRaster_API&) const { return false; }

    // Memory that the host accounts for.

    /// 55: a block of `bytes` bytes (a negative count is taken as its absolute value), contents
    /// undefined; null when memory is short. Locked for use, unlocked and disposed of afterwards.
    virtual void** newHandle(std::int64_t bytes) = 0;
    /// 56: the block's bytes, valid until it is unlocked.
    virtual void* lockHandle(void** handle) = 0;
    /// 57: ends one lock.
    virtual void unlockHandle(void** handle) = 0;
    /// 58: gives the block back.
    virtual void disposeHandle(void** handle) = 0;

    /// 59: shows `message` to the user as an error when the command ends.
    virtual void reportError(const char* message) = 0;

    /// 60: asks for a larger output, at frame set-up: unless the output world is that large already
    /// it takes the size, and the layer's place in it becomes (half of the command's width - a,
    /// half of its height - b), computed in 16 bits.
    virtual void growOutput(std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*a*/,
                            std::int32_t /*b*/) {}

    /// 61: whether the effect has left both global and sequence data with the host.
    virtual bool hasGlobalAndSequenceData() const { return false; }

    // Another library, and the suite for memory blocks.

    /// 62: loads a library by its path or name. Returns the system's module handle, which is never
    /// unloaded; on failure the user is told and it is null.
    virtual void* loadLibrary(const char* /*name*/) { return nullptr; }
    /// 63: bytes of a block; 0 when the host lacks the suite for it.
    virtual std::uint64_t handleSize(void** /*handle*/) { return 0; }
    /// 64: changes the size of a block, perhaps its place. Returns the host's code, or 516 when it
    /// lacks the suite for it; the block is then unchanged.
    virtual std::int32_t resizeHandle(void**& handle, std::uint64_t bytes);

    /// 65: reports `current` of `total` steps and asks whether to go on; anything but 0 is the
    /// answer that must end the command.
    virtual std::int32_t progress(std::int32_t current, std::int32_t total) = 0;

    // Time, in units of 1 / `timeScale` second.

    /// 66: units a second.
    virtual std::uint32_t timeScale() const { return 1; }
    /// 67: the layer's time of the command.
    virtual std::int32_t currentTime() const { return 0; }
    /// 68: units of one frame; doubled when fields are rendered and each counts as a frame.
    virtual std::int32_t timeStep() const { return 0; }
    /// 69: the layer's length.
    virtual std::int32_t totalTime() const { return 0; }
    /// 70: units of one frame of the layer itself, by the rule of `timeStep`.
    virtual std::int32_t localTimeStep() const { return 0; }

    /// 71: whether the application has this four-character code (first character in the highest
    /// byte).
    virtual bool isApplication(std::int32_t code) const = 0;

    // Words that the effect may leave with the object; 0 at first.

    /// 72, 73
    virtual std::int64_t userWord() const { return 0; }
    virtual void setUserWord(std::int64_t) {}
    /// 74, 75
    virtual void userWords(std::int32_t& first, std::int32_t& second) const;
    virtual void setUserWords(std::int32_t /*first*/, std::int32_t /*second*/) {}

    // Suites.

    /// 76: acquires a suite of the host by its exact name and version. A failure is shown to the
    /// user as `message` (null: a general one), leaves null in `suite` and gives 516.
    virtual std::int32_t acquireSuite(const char* name, std::int32_t version, const char* message,
                                      const void** suite) = 0;
    /// 77: gives a suite back; fails as `acquireSuite` does when the host has no suites.
    virtual std::int32_t releaseSuite(const char* name, std::int32_t version,
                                      const char* message) = 0;

    // The camera's shutter, in degrees.

    /// 78: phase.
    virtual float shutterPhase() const { return 0.0f; }
    /// 79: angle.
    virtual float shutterAngle() const { return 0.0f; }

    // Values of parameters at a time. Each checks the parameter out, reads it and checks it in; the
    // result is the check-in's code, whatever became of the check-out (the value is then 0).

    /// 80: a float slider.
    virtual std::int32_t floatSliderAt(std::int32_t index, const HostTime& time, double& value) {
        return sliderAt(index, -1, time, value);
    }
    /// 81: a slider. \param kind  0 or more: 16.16 fixed point, negative: floating point.
    virtual std::int32_t sliderAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                                  double& value);
    /// 82: a 16.16 fixed-point value.
    virtual std::int32_t fixedAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                                 double& value);
    /// 83: an integer as it is.
    virtual std::int32_t integerAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                                   std::int32_t& value);
    /// 84: a popup's choice from 0, separators counted.
    virtual std::int32_t popupAt(std::int32_t index, std::int32_t kind, const HostTime& time,
                                 std::int32_t& choice);
    /// 85: a checkbox at the command's time; false when there is no such record.
    virtual bool checkboxValue(std::int32_t index) const = 0;
    /// 86: a point in pixels of the input.
    virtual std::int32_t pointAt(std::int32_t index, const HostTime& time, double& x, double& y);
    /// 87: a point in space.
    virtual std::int32_t spacePointAt(std::int32_t index, const HostTime& time, double& x,
                                      double& y, double& z);

    /// 88: without a use so far.
    virtual void reserved88() {}

    /// 89, 90: the host object's view of the layer's mask outlines; may be replaced by another.
    virtual PluginPath_API* path() const { return nullptr; }
    virtual void setPath(PluginPath_API*) {}

    // Layers and the custom shape of a render.

    /// 91: checks a layer parameter out at the command's time. Null when the layer is absent: the
    /// check-out failed, nothing is chosen, or it has no pixels. `identifier` is the parameter's
    /// stable id. One check-out an index at a time.
    virtual std::unique_ptr<PluginRaster_API> checkoutLayer(std::int32_t index,
                                                            std::int32_t identifier) = 0;
    /// 92: gives back what `checkoutLayer` took, an absent layer included; nothing when it failed.
    virtual void checkinLayer(std::int32_t index) = 0;
    /// 93, 94: kernel of the custom glow shape for the render in progress; null when there is none.
    /// Not owned.
    virtual const GlowKernel* customShape() const = 0;
    virtual void setCustomShape(const GlowKernel* kernel) = 0;

    /// 95: without a use so far.
    virtual void reserved95() {}

    /// 96: the request of a layer at the command's own time: the index, a count of 1, and 0.
    virtual void defaultLayerRequest(std::int32_t index, std::int32_t& first, std::int32_t& count,
                                     std::int32_t& offset) const;

    // How pixels arrive, and what the host does with them afterwards.

    /// 97, 98: whether input and second layer arrive with an undefined alpha that counts as opaque,
    /// for two kinds of pixel state.
    virtual bool alphaIsUndefined() const = 0;
    virtual bool alphaIsIgnored() const = 0;
    /// 99: whether colours arrive premultiplied.
    virtual bool isPremultiplied() const = 0;
    /// 100: whether the host lays the modes Behind and Normal over the layer itself.
    virtual bool compositesItself() const = 0;

    // What the application says of itself; 516 when it lacks the suite for it.

    /// 101: colour of the interface's background, 0 to 65535 a channel.
    virtual std::int32_t backgroundColour(std::uint16_t& red, std::uint16_t& green,
                                          std::uint16_t& blue);
    /// 102: whether controls can be redrawn at once; where they cannot, a redraw is asked for.
    virtual bool canRefreshUi() { return false; }
    /// 103: whether it renders without an interface.
    virtual std::int32_t isRenderEngine(bool& answer);
    /// 104: colour of an element of the interface by the host's number, 0 to 65535 a channel.
    virtual std::int32_t interfaceColour(std::int32_t element, std::uint16_t& red,
                                         std::uint16_t& green, std::uint16_t& blue);
    /// 105: version of the host's interface.
    virtual void hostVersionParts(std::int32_t& major, std::int32_t& minor) const;

    /// 106: makes a host-world raster's world the output from here on.
    virtual void adoptOutput(PluginRaster_API&) {}

    /// 107: whether separator lines of a popup keep their numbers.
    virtual bool keepsSeparators() const = 0;
    /// 108: composites `glow` over `source` into `glow` by the host's own transfer mode; opacities
    /// are fractions. Only where `offersTransfer` says so.
    virtual std::int32_t transfer(std::int32_t mode, float glowOpacity, float sourceOpacity,
                                  PluginRaster_API& glow, PluginRaster_API& source,
                                  bool forceOpaque) = 0;
    /// 109: whether `transfer` may be called.
    virtual bool offersTransfer() const = 0;

    /// 110: without a use so far.
    virtual void reserved110() {}

    /// 111: shows two lines to the user when the command ends.
    virtual void setReturnMessage(const char* /*first*/, const char* /*second*/) {}

    /// 112: without a use so far.
    virtual void reserved112() {}

    /// 113: 1.0.
    virtual double one() const { return 1.0; }

    /// 114: path of the effect's own file in the host's narrow encoding, empty when the host cannot
    /// tell.
    virtual std::string resourceFilePath() = 0;

    /// 115: 1.
    virtual std::int32_t unit() const { return 1; }

    /// 116: sets the overrides of `width` and `height`. Returns 0.
    virtual std::int32_t setSizeOverride(std::int32_t, std::int32_t) { return 0; }

    /// 117: fields of a frame: 2 when fields are rendered, else 1.
    virtual std::int32_t fieldCount() const { return 1; }
    /// 118: frames a second of the layer. Returns true.
    virtual bool frameRate(float& rate) const;

    /// 119: asks the host to redraw the controls.
    virtual void requestUiRefresh() {}

    // Values of the command's parameters, as they came with it.

    /// 120: a slider's value. \param kind  0 or more: 16.16 fixed point, negative: floating point.
    /// Returns 0, or 513 when there is no such record. The value is 0 then, and when the host's is
    /// not finite.
    virtual std::int32_t sliderValue(std::int32_t index, std::int32_t kind, double& value) = 0;
    /// 121: a popup's choice from 0, separators counted.
    virtual std::int32_t popupValue(std::int32_t index, std::int32_t& value) = 0;
    /// 122: a point in pixels of the input at the render's resolution.
    virtual std::int32_t pointValue(std::int32_t index, double& x, double& y) = 0;

    /// 123: the largest output: no limit, -1 and -1.
    virtual void sizeLimit(std::int32_t& width, std::int32_t& height) const;

    /// 124, 125: without a use so far.
    virtual void reserved124() {}
    virtual void reserved125() {}

    /// 126: an object that changes parameters and their controls; it must not outlive this one.
    virtual std::unique_ptr<PluginUpdate_API> parameterUpdate() { return nullptr; }

    /// 127: a copy of the input layer at a time, limited to the layer's length. Null when it cannot
    /// be checked out or copied. The world goes back by `disposeWorld`.
    virtual std::unique_ptr<PluginRaster_API> inputLayerAt(std::int32_t /*time*/) {
        return nullptr;
    }

    virtual ~PluginHost_API() = default;
};

}  // namespace vireon
