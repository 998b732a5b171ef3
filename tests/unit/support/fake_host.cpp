#include "tests/unit/support/fake_host.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "image/pixel_format.h"

namespace vireon::test {

FakeWorld::FakeWorld(FakeHost& host, std::int32_t width, std::int32_t height, std::int32_t depth,
                     std::int32_t paddingBytes)
    : host_(&host), depth_(depth) {
    layout_.formatCode = depth == kDepth16      ? kFormatWorld16
                         : depth == kDepthFloat ? kFormatFloat
                                                : kFormat8;
    layout_.width = width;
    layout_.height = height;
    layout_.bytesPerPixel = BytesPerPixel(depth);
    layout_.rowBytes = width * layout_.bytesPerPixel + paddingBytes;
    bytes_.assign(static_cast<std::size_t>(layout_.rowBytes) * static_cast<std::size_t>(height),
                  std::byte{0xFF});
    layout_.pixels = bytes_.data();
}

FakeWorld::~FakeWorld() {
    if (host_->worlds_.erase(this) != 0) ++host_->worldsLost;
}

void FakeWorld::fill(std::byte value) {
    std::fill(bytes_.begin(), bytes_.end(), value);
}

void FakeWorld::freePixels() {
    bytes_ = {};
    layout_.pixels = nullptr;
    layout_.width = 0;
    layout_.height = 0;
}

FakeHost::~FakeHost() = default;

int FakeHost::count(std::string_view operation) const {
    const auto found = calls.find(operation);
    return found == calls.end() ? 0 : found->second;
}

int FakeHost::enter(std::string_view operation) const {
    const int call = calls[std::string(operation)]++;
    if (onCall) onCall(operation);
    return call;
}

std::unique_ptr<FakeWorld> FakeHost::makeLayer(std::int32_t width, std::int32_t height,
                                               std::int32_t depth, std::int32_t paddingBytes) {
    return std::make_unique<FakeWorld>(*this, width, height, depth, paddingBytes);
}

std::int32_t FakeHost::clearOutput() {
    enter("clearOutput");
    return 0;
}

std::int32_t FakeHost::clearRectangle(PluginRaster_API&, const ShortRect*) {
    enter("clearRectangle");
    return 0;
}

std::int32_t FakeHost::clearRaster(PluginRaster_API& raster) {
    enter("clearRaster");
    auto* const world = dynamic_cast<FakeWorld*>(&raster);
    if (world == nullptr || world->layout().pixels == nullptr) {
        ++misuses;
        return 512;
    }
    world->fill(std::byte{0});
    return 0;
}

std::int32_t FakeHost::copyInputToOutput() {
    enter("copyInputToOutput");
    return 0;
}

std::int32_t FakeHost::copyRectangle(PluginRaster_API& source, PluginRaster_API& destination,
                                     const ShortRect& sourceRectangle,
                                     const ShortRect& destinationRectangle) {
    enter("copyRectangle");
    const auto* const from = dynamic_cast<FakeWorld*>(&source);
    const auto* const to = dynamic_cast<FakeWorld*>(&destination);
    if (from == nullptr || to == nullptr || from->depth() != to->depth() ||
        from->layout().pixels == nullptr || to->layout().pixels == nullptr) {
        ++misuses;
        return 512;
    }
    const RasterLayout& a = from->layout();
    const RasterLayout& b = to->layout();
    const int columns =
        std::min({sourceRectangle.right - sourceRectangle.left,
                  destinationRectangle.right - destinationRectangle.left,
                  a.width - sourceRectangle.left, b.width - destinationRectangle.left});
    const int rows =
        std::min({sourceRectangle.bottom - sourceRectangle.top,
                  destinationRectangle.bottom - destinationRectangle.top,
                  a.height - sourceRectangle.top, b.height - destinationRectangle.top});
    for (int y = 0; y < rows && columns > 0; ++y) {
        const auto* const read = static_cast<const std::byte*>(a.pixels) +
                                 (sourceRectangle.top + y) * a.rowBytes +
                                 sourceRectangle.left * a.bytesPerPixel;
        auto* const write = static_cast<std::byte*>(b.pixels) +
                            (destinationRectangle.top + y) * b.rowBytes +
                            destinationRectangle.left * b.bytesPerPixel;
        std::memcpy(write, read, static_cast<std::size_t>(columns * a.bytesPerPixel));
    }
    return 0;
}

std::int32_t FakeHost::copyRaster(PluginRaster_API& source, PluginRaster_API& destination) {
    enter("copyRaster");
    const auto whole = [](PluginRaster_API& raster) {
        return ShortRect{0, 0, static_cast<std::int16_t>(raster.height()),
                         static_cast<std::int16_t>(raster.width())};
    };
    const std::int32_t result =
        copyRectangle(source, destination, whole(source), whole(destination));
    --calls["copyRectangle"];
    return result;
}

std::unique_ptr<PluginRaster_API> FakeHost::parameterRaster(std::int32_t) {
    enter("parameterRaster");
    return nullptr;
}

std::unique_ptr<PluginRaster_API> FakeHost::outputRaster() {
    enter("outputRaster");
    return nullptr;
}

std::unique_ptr<PluginRaster_API> FakeHost::newWorld(std::int32_t width, std::int32_t height,
                                                     std::int32_t depth, std::int32_t& error,
                                                     bool clear) {
    const int call = enter("newWorld");
    error = 0;
    if (call >= newWorldFailsFrom) {
        error = newWorldError;
        if (error == 0) return nullptr;
        auto empty = std::make_unique<FakeWorld>(*this, 0, 0, depth, 0);
        empty->freePixels();
        return empty;
    }
    auto world =
        std::make_unique<FakeWorld>(*this, width, height, madeDepth.value_or(depth), worldPadding);
    if (clear) world->fill(std::byte{0});
    worlds_.insert(world.get());
    ++worldsMade;
    return world;
}

std::int32_t FakeHost::disposeWorld(PluginRaster_API& raster) {
    enter("disposeWorld");
    auto* const world = dynamic_cast<FakeWorld*>(&raster);
    if (world == nullptr) {
        ++misuses;
        return 512;
    }
    if (world->layout().pixels == nullptr) return 0;
    if (worlds_.erase(world) == 0) ++misuses;
    world->freePixels();
    return 0;
}

bool FakeHost::isHighQuality() const {
    enter("isHighQuality");
    return highQuality;
}

std::int32_t FakeHost::parameterLayout(std::int32_t, RasterLayout&) {
    enter("parameterLayout");
    return 513;
}

std::int32_t FakeHost::outputLayout(RasterLayout&) {
    enter("outputLayout");
    return 516;
}

std::int32_t FakeHost::rasterLayout(PluginRaster_API& raster, RasterLayout& layout) {
    enter("rasterLayout");
    if (const RasterLayout* const own = raster.layoutRecord()) {
        layout = *own;
        return 0;
    }
    const auto* const world = dynamic_cast<FakeWorld*>(&raster);
    if (world == nullptr || world->layout().pixels == nullptr) return 516;
    layout = world->layout();
    layout.pixelAspectRatio = static_cast<float>(aspectRatio);
    return 0;
}

void** FakeHost::newHandle(std::int64_t bytes) {
    const int call = enter("newHandle");
    handleSizes.push_back(bytes);
    if (call >= newHandleFailsFrom) return nullptr;
    const auto size = static_cast<std::size_t>(std::llabs(bytes));
    Block block;
    block.bytes = std::make_unique<std::byte[]>(size);
    std::fill_n(block.bytes.get(), size, std::byte{0xFF});
    block.slot = std::make_unique<void*>(block.bytes.get());
    void** const handle = block.slot.get();
    handles_.emplace(handle, std::move(block));
    return handle;
}

void* FakeHost::lockHandle(void** handle) {
    const int call = enter("lockHandle");
    const auto found = handles_.find(handle);
    if (found == handles_.end()) {
        ++misuses;
        return nullptr;
    }
    if (call >= lockFailsFrom) return nullptr;
    ++found->second.locks;
    return found->second.bytes.get();
}

void FakeHost::unlockHandle(void** handle) {
    enter("unlockHandle");
    const auto found = handles_.find(handle);
    if (found == handles_.end() || found->second.locks == 0) {
        ++misuses;
        return;
    }
    --found->second.locks;
}

void FakeHost::disposeHandle(void** handle) {
    enter("disposeHandle");
    const auto found = handles_.find(handle);
    if (found == handles_.end()) {
        ++misuses;
        return;
    }
    if (found->second.locks != 0) ++misuses;
    handles_.erase(found);
}

void FakeHost::reportError(const char*) {
    enter("reportError");
}

std::int32_t FakeHost::progress(std::int32_t current, std::int32_t total) {
    const int call = enter("progress");
    progressReports.emplace_back(current, total);
    return progressAnswer ? progressAnswer(call) : 0;
}

std::int32_t FakeHost::acquireSuite(const char*, std::int32_t, const char*, const void** suite) {
    enter("acquireSuite");
    *suite = nullptr;
    return 516;
}

std::int32_t FakeHost::releaseSuite(const char*, std::int32_t, const char*) {
    enter("releaseSuite");
    return 516;
}

std::int32_t FakeHost::sliderValue(std::int32_t index, std::int32_t kind, double& value) {
    enter("sliderValue");
    sliderKinds[index] = kind;
    const auto found = sliders.find(index);
    value = found == sliders.end() ? 0.0 : found->second;
    return found == sliders.end() ? 513 : 0;
}

std::int32_t FakeHost::popupValue(std::int32_t index, std::int32_t& value) {
    enter("popupValue");
    const auto found = popups.find(index);
    value = found == popups.end() ? 0 : found->second;
    return found == popups.end() ? 513 : 0;
}

bool FakeHost::checkboxValue(std::int32_t index) const {
    enter("checkboxValue");
    const auto found = checkboxes.find(index);
    return found != checkboxes.end() && found->second;
}

std::int32_t FakeHost::pointValue(std::int32_t index, double& x, double& y) {
    enter("pointValue");
    const auto found = points.find(index);
    const bool known = found != points.end();
    x = known ? found->second.first : 0.0;
    y = known ? found->second.second : 0.0;
    return known ? 0 : 513;
}

std::unique_ptr<PluginRaster_API> FakeHost::checkoutLayer(std::int32_t, std::int32_t) {
    enter("checkoutLayer");
    return nullptr;
}

void FakeHost::checkinLayer(std::int32_t) {
    enter("checkinLayer");
}

std::int32_t FakeHost::transfer(std::int32_t mode, float glowOpacity, float sourceOpacity,
                                PluginRaster_API& glow, PluginRaster_API& source,
                                bool forceOpaque) {
    enter("transfer");
    transfers.push_back({mode, glowOpacity, sourceOpacity, &glow, &source, forceOpaque});
    return transferAnswer;
}

testing::AssertionResult EverythingReturned(const FakeHost& host) {
    if (host.liveHandles() == 0 && host.liveWorlds() == 0 && host.worldsLost == 0 &&
        host.misuses == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << host.liveHandles() << " blocks and " << host.liveWorlds() << " worlds kept, "
           << host.worldsLost << " worlds lost, " << host.misuses << " misuses";
}

}  // namespace vireon::test
