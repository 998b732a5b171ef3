#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sdk/sdk.h"

namespace vireon::headless {

/// An effect that can be called: a loaded library, or a function of this process.
class EffectLibrary {
  public:
    /// Loads the library and finds its exported `EntryPointFunc`. `file` is a path in UTF-8. Throws
    /// HeadlessError with the system's own explanation when either fails.
    explicit EffectLibrary(const std::string& file);

    /// Wraps a function of this process, for tests. `name` is only what `path()` answers.
    explicit EffectLibrary(sdk::EntryPoint function, std::string name = "in-process");

    ~EffectLibrary();
    EffectLibrary(EffectLibrary&&) noexcept;
    EffectLibrary& operator=(EffectLibrary&&) noexcept;

    sdk::EntryPoint entryPoint() const { return entryPoint_; }
    const std::string& path() const { return path_; }

    /// Bytes of the resource of type "PIPL", id 16000; nothing when the library has none or the
    /// system knows no resources.
    std::optional<std::vector<std::uint8_t>> pipl() const;

    /// The system's handle of the library; null for a function of this process.
    void* moduleHandle() const;

  private:
    struct Module;

    std::unique_ptr<Module> module_;
    sdk::EntryPoint entryPoint_ = nullptr;
    std::string path_;
};

}  // namespace vireon::headless
