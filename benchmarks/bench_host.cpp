#include "benchmarks/bench_host.h"

#include <cstdlib>

namespace vireon::bench {

std::shared_ptr<headless::World> MakeLayer(const scenes::Canvas& canvas, headless::Depth depth) {
    auto world = std::make_shared<headless::World>(canvas.width(), canvas.height(), depth);
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const scenes::Colour colour = canvas.at(x, y);
            world->setColor(x, y, {1.0f, colour.red, colour.green, colour.blue});
        }
    }
    return world;
}

const headless::EffectLibrary& Plugin() {
    static const headless::EffectLibrary library = [] {
        const char* path = std::getenv("VIREON_PLUGIN");
        return headless::EffectLibrary(path != nullptr ? path : VIREON_BENCH_PLUGIN);
    }();
    return library;
}

}  // namespace vireon::bench
