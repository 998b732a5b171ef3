#include "platform/critical_section.h"

#include <windows.h>

namespace vireon::platform {
namespace {

class WindowsSection final : public CriticalSection {
  public:
    WindowsSection() { InitializeCriticalSection(&section_); }
    void enter() override { EnterCriticalSection(&section_); }
    void leave() override { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION section_;
};

// Made before any thread of the host can call into the library, and kept for one that may still do
// so while the process ends.
WindowsSection& section = *new WindowsSection;  // NOLINT(*-avoid-non-const-global-variables)

}  // namespace

CriticalSection& RenderSection() {
    return section;
}

}  // namespace vireon::platform
