#include "headless/effect_library.h"

#include <cstring>
#include <utility>

#include "headless/error.h"
#include "headless/platform.h"

namespace vireon::headless {

struct EffectLibrary::Module {
    explicit Module(const std::string& path) : handle(platform::OpenLibrary(path)) {}
    ~Module() { platform::CloseLibrary(handle); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    void* handle;
};

EffectLibrary::EffectLibrary(const std::string& file)
    : module_(std::make_unique<Module>(file)), path_(file) {
    void* const symbol = platform::FindSymbol(module_->handle, "EntryPointFunc");
    if (symbol == nullptr) {
        throw HeadlessError(file + " does not export EntryPointFunc");
    }
    static_assert(sizeof symbol == sizeof entryPoint_);
    std::memcpy(&entryPoint_, &symbol, sizeof entryPoint_);
}

EffectLibrary::EffectLibrary(sdk::EntryPoint function, std::string name)
    : entryPoint_(function), path_(std::move(name)) {
    if (entryPoint_ == nullptr) {
        throw HeadlessError("an effect needs an entry point");
    }
}

EffectLibrary::~EffectLibrary() = default;
EffectLibrary::EffectLibrary(EffectLibrary&&) noexcept = default;
EffectLibrary& EffectLibrary::operator=(EffectLibrary&&) noexcept = default;

std::optional<std::vector<std::uint8_t>> EffectLibrary::pipl() const {
    return module_ == nullptr ? std::nullopt
                              : platform::ReadResource(module_->handle, "PIPL", 16000);
}

void* EffectLibrary::moduleHandle() const {
    return module_ == nullptr ? nullptr : module_->handle;
}

}  // namespace vireon::headless
