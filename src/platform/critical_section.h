#pragma once

namespace vireon::platform {

/// A lock that the thread which holds it may enter again: a host may render another instance of
/// the effect while this one waits for a layer.
class CriticalSection {
  public:
    virtual void enter() = 0;
    virtual void leave() = 0;

  protected:
    ~CriticalSection() = default;
};

/// The process's render lock. Made when the library is loaded, never destroyed.
CriticalSection& RenderSection();

}  // namespace vireon::platform
