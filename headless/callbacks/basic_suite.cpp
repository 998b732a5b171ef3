#include <cstdlib>
#include <cstring>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

std::string SuiteText(const std::string& name, std::int32_t version) {
    return "\"" + name + "\" version " + std::to_string(version);
}

std::int32_t AcquireSuite(const char* name, std::int32_t version, const void** outSuite) {
    const sdk::PF_Err error = ServeAnyone(Slot::kAcquireSuite, [&](HostState& host) -> sdk::PF_Err {
        if (name == nullptr || outSuite == nullptr) {
            host.violate("a suite is acquired without a name or a place for the result");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const auto key = std::pair(std::string(name), version);
        const auto extra = host.extraSuites.find(key);
        const void* const table =
            extra != host.extraSuites.end() ? extra->second : FindSuite(key.first, version);
        if (table == nullptr || host.settings.withheldSuites.contains(key)) {
            return sdk::A_Err_MISSING_SUITE;
        }
        ++host.suites[key];
        *outSuite = table;
        return 0;
    });
    if (error != 0 && outSuite != nullptr) {
        *outSuite = nullptr;
    }
    return error;
}

std::int32_t ReleaseSuite(const char* name, std::int32_t version) {
    return ServeAnyone(Slot::kReleaseSuite, [&](HostState& host) -> sdk::PF_Err {
        const std::string text = name == nullptr ? "" : name;
        const auto it = host.suites.find({text, version});
        if (it == host.suites.end() || it->second == 0) {
            host.violate("release of " + SuiteText(text, version) + ", which is not acquired");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        --it->second;
        return 0;
    });
}

std::int32_t IsEqual(const char* text1, const char* text2) {
    ServeAnyone(Slot::kIsEqual, [](HostState&) -> sdk::PF_Err { return 0; });
    return std::strcmp(text1, text2) == 0 ? 1 : 0;
}

std::int32_t AllocateBlock(std::size_t size, void** outBlock) {
    return ServeAnyone(Slot::kAllocateBlock, [&](HostState& host) -> sdk::PF_Err {
        void* const block = std::malloc(size == 0 ? 1 : size);
        if (block == nullptr) {
            return sdk::PF_Err_OUT_OF_MEMORY;
        }
        host.blocks[block] = {size, false};
        host.addBytes(size);
        *outBlock = block;
        return 0;
    });
}

std::int32_t FreeBlock(void* block) {
    return ServeAnyone(Slot::kFreeBlock, [&](HostState& host) -> sdk::PF_Err {
        const auto it = host.blocks.find(block);
        if (it == host.blocks.end()) {
            host.violate("a block of the basic suite is freed that is not out");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        host.removeBytes(it->second.size);
        host.blocks.erase(it);
        std::free(block);
        return 0;
    });
}

std::int32_t ReallocateBlock(void* block, std::size_t newSize, void** outBlock) {
    return ServeAnyone(Slot::kReallocateBlock, [&](HostState& host) -> sdk::PF_Err {
        const auto it = host.blocks.find(block);
        if (it == host.blocks.end()) {
            host.violate("a block of the basic suite is resized that is not out");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        void* const moved = std::realloc(block, newSize == 0 ? 1 : newSize);
        if (moved == nullptr) {
            return sdk::PF_Err_OUT_OF_MEMORY;
        }
        host.removeBytes(it->second.size);
        host.blocks.erase(it);
        host.blocks[moved] = {newSize, false};
        host.addBytes(newSize);
        *outBlock = moved;
        return 0;
    });
}

std::int32_t Undefined() {
    return Refuse(Slot::kUndefined);
}

}  // namespace

sdk::SPBasicSuite* BasicSuiteTable() {
    static sdk::SPBasicSuite table = {AcquireSuite, ReleaseSuite,    IsEqual,  AllocateBlock,
                                      FreeBlock,    ReallocateBlock, Undefined};
    return &table;
}

}  // namespace vireon::headless
