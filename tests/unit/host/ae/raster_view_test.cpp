#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "command.h"
#include "host/application_codes.h"
#include "image/pixel_format.h"

namespace vireon::test {
namespace {

using headless::Depth;

/// A raster that supplies only what it must.
class PlainRaster final : public PluginRaster_API {
  public:
    explicit PlainRaster(int& destroyed) : destroyed_(destroyed) {}
    ~PlainRaster() override { ++destroyed_; }
    std::int32_t width() const override { return 12; }
    std::int32_t height() const override { return 7; }
    std::int32_t depth() const override { return kDepth16; }
    std::int32_t rowBytes() const override { return 96; }
    PluginRaster_AE_Impl* asHostWorld() override { return nullptr; }
    void attach(PluginHost_API*) override {}

  private:
    int& destroyed_;
};

TEST(RasterDefaults, ExtentIsTheLastRowAndColumn) {
    int destroyed = 0;
    {
        const std::unique_ptr<PluginRaster_API> raster = std::make_unique<PlainRaster>(destroyed);
        EXPECT_EQ(raster->extentTop(), 0);
        EXPECT_EQ(raster->extentLeft(), 0);
        EXPECT_EQ(raster->extentBottom(), 6);
        EXPECT_EQ(raster->extentRight(), 11);
        EXPECT_EQ(raster->layoutRecord(), nullptr);
        raster->hook6();
        raster->hook7();
        raster->hook8();
        raster->hook9();
        raster->hook10();
        raster->hook11();
        raster->hook12();
        raster->hook13();
        raster->hook14();
        EXPECT_EQ(raster->extentBottom(), 6);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1) << "through the interface";
}

TEST(RasterView, ReadsTheWorldsRecord) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        sdk::PF_EffectWorld world = *command.output;
        world.extent_hint = {1, 2, 5, 3};
        PluginRaster_AE_Impl raster(&world, &host);
        EXPECT_EQ(raster.width(), 6);
        EXPECT_EQ(raster.height(), 4);
        EXPECT_EQ(raster.rowBytes(), command.output->rowbytes);
        EXPECT_NE(raster.rowBytes(), 24) << "the rows are padded";
        EXPECT_EQ(raster.asHostWorld(), &raster);
        EXPECT_EQ(raster.world(), &world);
        EXPECT_EQ(raster.extentTop(), 2);
        EXPECT_EQ(raster.extentLeft(), 1);
        EXPECT_EQ(raster.extentBottom(), 3) << "exclusive, as the host gives it";
        EXPECT_EQ(raster.extentRight(), 5);
        EXPECT_EQ(raster.layoutRecord(), nullptr);
        world.width = 3;
        world.height = 2;
        world.rowbytes = -64;
        EXPECT_EQ(raster.width(), 3);
        EXPECT_EQ(raster.height(), 2);
        EXPECT_EQ(raster.rowBytes(), -64);
    });
}

TEST(RasterView, HooksChangeNothing) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        PluginRaster_AE_Impl raster(command.output, &host);
        const sdk::PF_EffectWorld before = *command.output;
        command.host.resetCalls();
        raster.hook6();
        raster.hook7();
        raster.hook8();
        raster.hook9();
        raster.hook10();
        raster.hook11();
        raster.hook12();
        raster.hook13();
        raster.hook14();
        EXPECT_EQ(command.host.calls().total(), 0u);
        EXPECT_EQ(std::memcmp(&before, command.output, sizeof before), 0);
    });
}

TEST(RasterView, DepthIsAskedOfTheHostThatItIsAttachedTo) {
    Scene scene = SceneIn(kAfterEffects, 13, 27);
    scene.depth = Depth::kFloat;
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        Command old{command.host, command.in,     command.utils,  command.basic,
                    command.out,  command.params, command.output, {}};
        old.in.version = {12, 11};
        PluginHost_AE_Impl oldHost = old.makeHost();
        PluginRaster_AE_Impl raster(command.output, nullptr);
        raster.attach(&oldHost);
        EXPECT_EQ(raster.depth(), kDepth8) << "by the world's flag alone";
        PluginRaster_AE_Impl again(command.output, nullptr);
        again.attach(&host);
        EXPECT_EQ(again.depth(), kDepthFloat);
    });
}

TEST(RasterView, WithoutAWorldIsEmpty) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        PluginRaster_AE_Impl raster(nullptr, &host);
        EXPECT_EQ(raster.width(), 0);
        EXPECT_EQ(raster.height(), 0);
        EXPECT_EQ(raster.rowBytes(), 0);
        EXPECT_EQ(raster.extentBottom(), 0);
        EXPECT_EQ(raster.world(), nullptr);
        EXPECT_EQ(raster.depth(), kDepth8);
    });
}

TEST(RasterView, LeavesTheWorldAloneWhenItEnds) {
    InRender([](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const sdk::PF_EffectWorld before = *command.output;
        command.host.resetCalls();
        { const PluginRaster_AE_Impl raster(command.output, &host); }
        EXPECT_EQ(std::memcmp(&before, command.output, sizeof before), 0);
        EXPECT_EQ(command.host.calls().total(), 0u);
    });
}

TEST(RasterView, AsksForTheFormatUntilItIsAnsweredOnce) {
    Scene scene;
    scene.depth = Depth::kFloat;
    InRender(scene, [](Command& command) {
        PluginHost_AE_Impl host = command.makeHost();
        const PluginRaster_AE_Impl raster(command.output, &host);
        std::int32_t error = 0;
        command.failNext(headless::Slot::kGetPixelFormat);
        EXPECT_EQ(raster.format(error), kFormat8) << "the shallowest";
        EXPECT_EQ(error, Command::kInjected);
        EXPECT_EQ(raster.format(error), kFormatFloat);
        EXPECT_EQ(error, 0);
        command.failNext(headless::Slot::kGetPixelFormat);
        EXPECT_EQ(raster.format(error), kFormatFloat);
        EXPECT_EQ(error, 0) << "answered before";
        EXPECT_EQ(command.calls(headless::Slot::kGetPixelFormat), 2u);
        command.host.faults().clear();
    });
}

}  // namespace
}  // namespace vireon::test
