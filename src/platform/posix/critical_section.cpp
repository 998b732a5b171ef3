#include "platform/critical_section.h"

#include <mutex>

namespace vireon::platform {
namespace {

class PosixSection final : public CriticalSection {
  public:
    void enter() override { mutex_.lock(); }
    void leave() override { mutex_.unlock(); }

  private:
    std::recursive_mutex mutex_;
};

// Made before any thread of the host can call into the library, and kept for one that may still do
// so while the process ends.
PosixSection& section = *new PosixSection;  // NOLINT(*-avoid-non-const-global-variables)

}  // namespace

CriticalSection& RenderSection() {
    return section;
}

}  // namespace vireon::platform
