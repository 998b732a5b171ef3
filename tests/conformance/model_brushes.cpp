#include "tests/conformance/model_brushes.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/conformance/reference_model.h"

namespace vireon::conformance {
namespace {

class ModelBrushes : public ::testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::make_unique<BrushFolder>();
        folder_->write("gaussian.brush", ModelBrush(1));
        folder_->write("hoop.brush", ModelBrush(2));
        folder_->select();
    }
    void TearDown() override { folder_.reset(); }

  private:
    std::unique_ptr<BrushFolder> folder_;
};

[[maybe_unused]] ::testing::Environment* const kModelBrushes =
    ::testing::AddGlobalTestEnvironment(new ModelBrushes);

}  // namespace

const Kernel& ModelBrush(std::int32_t shape) {
    static const Kernel round = RoundBrush();
    static const Kernel lopsided = LopsidedBrush();
    return shape == 2 ? lopsided : round;
}

Picture ModelRender(const Scene& scene) {
    return ReferenceRender(scene, ModelBrush(scene.controls.shape));
}

}  // namespace vireon::conformance
