#pragma once

#include "platform/critical_section.h"

namespace vireon {

/// Holds the process's render lock for the length of a scope, so that at most one frame is rendered
/// at a time whatever the host's threads do. The thread that holds it may take it again.
class Glow_CSLock {
  public:
    explicit Glow_CSLock(platform::CriticalSection& section) : section_(&section) {
        section_->enter();
    }
    Glow_CSLock(const Glow_CSLock&) = delete;
    Glow_CSLock& operator=(const Glow_CSLock&) = delete;
    virtual ~Glow_CSLock() { section_->leave(); }

  private:
    platform::CriticalSection* section_;
};

}  // namespace vireon
