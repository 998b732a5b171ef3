#pragma once

namespace vireon::tool {

/// Some libraries for picture formats print their own complaints on standard error. While an object
/// of this class lives they go nowhere; the errors are reported anyway, once and in one place.
class QuietErrors {
  public:
    QuietErrors();
    ~QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    int saved_ = -1;
};

}  // namespace vireon::tool
