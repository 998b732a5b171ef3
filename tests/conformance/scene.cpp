#include "tests/conformance/scene.h"

#include <cmath>

namespace vireon::conformance {
namespace {

std::shared_ptr<headless::World> LayerWorld(const std::optional<Picture>& picture,
                                            headless::Depth depth) {
    return picture ? MakeWorld(*picture, depth) : nullptr;
}

float Wave(double phase) {
    return static_cast<float>(0.5 + 0.5 * std::sin(phase));
}

}  // namespace

void Apply(const Scene& scene, headless::Host& host, headless::Depth depth) {
    headless::HostSettings& settings = host.settings();
    settings.downsampleX = scene.downsampleX;
    settings.downsampleY = scene.downsampleY;
    settings.pixelAspect = scene.pixelAspect;
    settings.quality = scene.highQuality ? sdk::PF_Quality_HI : sdk::PF_Quality_LO;

    host.resetParameters();
    host.setInput(MakeWorld(scene.input, depth));
    host.setLayer(kShapeLayer, LayerWorld(scene.shapeLayer, depth));
    host.setLayer(kGlowLayer, LayerWorld(scene.glowLayer, depth));
    host.setLayer(kMaskLayer, LayerWorld(scene.maskLayer, depth));

    const Controls& controls = scene.controls;
    host.setPopup(kShape, controls.shape);
    host.setNumber(kGlowRadius, controls.glowRadius);
    host.setNumber(kGlowIntensity, controls.glowIntensity);
    host.setNumber(kGlowFalloff, controls.glowFalloff);
    host.setNumber(kThreshold, controls.threshold);
    host.setNumber(kBlurInput, controls.blurInput);
    host.setPopup(kQuality, controls.quality);
    host.setPopup(kInputChannels, controls.inputChannels);
    host.setCheckbox(kEnableMask, controls.enableMask);
    if (controls.maskCenter) {
        host.setPoint(kMaskCenter, controls.maskCenter->first, controls.maskCenter->second);
    }
    host.setNumber(kMaskRadius, controls.maskRadius);
    host.setNumber(kMaskFalloff, controls.maskFalloff);
    host.setNumber(kWidthAspect, controls.widthAspect);
    host.setNumber(kHeightAspect, controls.heightAspect);
    host.setPopup(kView, controls.view);
    host.setCheckbox(kPreventOverbrights, controls.preventOverbrights);
    host.setNumber(kOverbrightClamp, controls.overbrightClamp);
    host.setPopup(kChannels, controls.channels);
    host.setFixedSlider(kSourceOpacity, controls.sourceOpacity);
    host.setFixedSlider(kGlowOpacity, controls.glowOpacity);
    host.setPopup(kTransferMode, controls.transferMode);
}

Picture OpaquePicture(int width, int height) {
    return MakePicture(width, height, [](int x, int y) {
        const double h = x;
        const double v = y;
        return PixelValues{1.0f, Wave(0.31 * h + 0.17 * v) * 1.1f,
                           Wave(1.3 + 0.11 * h - 0.23 * v) * Wave(0.9 * h),
                           Wave(2.6 - 0.19 * h + 0.41 * v) * 0.8f};
    });
}

Picture TransparentPicture(int width, int height) {
    Picture picture = OpaquePicture(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double alpha = 0.55 + 0.6 * std::sin(0.23 * x + 0.29 * y);
            picture.at(x, y)[kAlpha] = static_cast<float>(alpha < 0   ? 0.0
                                                          : alpha > 1 ? 1.0
                                                                      : alpha);
        }
    }
    return picture;
}

Picture AlphaPicture(int width, int height) {
    return MakePicture(width, height, [](int x, int y) {
        return PixelValues{Wave(0.37 * x + 0.53 * y + 0.4), 0.5f, 0.5f, 0.5f};
    });
}

Scene PlainScene() {
    Scene scene;
    scene.input = OpaquePicture(48, 32);
    scene.controls.glowRadius = 9;
    scene.controls.glowIntensity = 3;
    scene.controls.threshold = 20;
    scene.controls.glowFalloff = 1.3;
    scene.controls.quality = 1;
    return scene;
}

}  // namespace vireon::conformance
