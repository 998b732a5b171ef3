#pragma once

#include <memory>

#include "headless/parameters.h"
#include "headless/remote/messages.h"
#include "headless/world.h"

namespace vireon::worker {

/// A world with a picture's pixels, laid out as the job wants it. Throws headless::HeadlessError
/// for a picture without pixels.
std::shared_ptr<headless::World> WorldFromPicture(const headless::Picture& picture,
                                                  const headless::RenderJob& job);

headless::Picture PictureFromWorld(const headless::World& world);

headless::ParameterDescription DescribeParameter(std::int32_t index,
                                                 const headless::Parameter& parameter);

}  // namespace vireon::worker
