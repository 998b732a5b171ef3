#include "samples/neon_parts.h"
#include "samples/paint.h"
#include "samples/scenes.h"

namespace vireon::scenes {

Canvas DrawNeonSign(int width, int height, LightRange range) {
    Canvas canvas(width, height);
    const Stage stage(canvas, range);
    const NeonSign sign = MakeNeonSign(stage.width());
    PaintNeonWall(stage, sign);
    FinishWithGrain(stage, 1.2, 0x6E656F6Eu);
    PaintNeonSign(stage, sign);
    return canvas;
}

}  // namespace vireon::scenes
