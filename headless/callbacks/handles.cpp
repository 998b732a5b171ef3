#include <memory>
#include <utility>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

constexpr std::size_t kRememberedDisposals = 64;

/// The block of a live handle; null and a violation for any other pointer.
HandleBlock* Find(HostState& host, sdk::PF_Handle handle, const char* what) {
    const auto it = host.handles.find(handle);
    if (it == host.handles.end()) {
        host.violate(std::string(what) + " of a handle that is not out");
        return nullptr;
    }
    return it->second.get();
}

template <Slot slot>
sdk::PF_Handle NewHandle(std::uint64_t size) {
    sdk::PF_Handle handle = nullptr;
    ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        auto block = HandleBlock::make(size);
        if (block == nullptr) {
            return sdk::PF_Err_OUT_OF_MEMORY;
        }
        const sdk::PF_Handle made = block->handle();
        host.handles.emplace(made, std::move(block));
        host.addBytes(static_cast<std::size_t>(size));
        handle = made;
        return 0;
    });
    return handle;
}

template <Slot slot>
void* LockHandle(sdk::PF_Handle handle) {
    void* data = nullptr;
    ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        if (HandleBlock* const block = Find(host, handle, "lock")) {
            ++block->locks;
            data = block->data;
        }
        return 0;
    });
    return data;
}

template <Slot slot>
void UnlockHandle(sdk::PF_Handle handle) {
    ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        if (HandleBlock* const block = Find(host, handle, "unlock")) {
            // One unlock more than locks is customary after making a handle that is left in the
            // out-data.
            if (--block->locks < -1) {
                host.violate("a handle is unlocked more often than locked");
            }
        }
        return 0;
    });
}

template <Slot slot>
void DisposeHandle(sdk::PF_Handle handle) {
    ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        HandleBlock* const block = Find(host, handle, "disposal");
        if (block == nullptr) {
            return 0;
        }
        if (block->locks > 0) {
            host.violate("a handle is disposed of while it is locked");
        }
        if (!block->intact()) {
            host.violate("the effect wrote beside the bytes of a handle");
        }
        host.removeBytes(static_cast<std::size_t>(block->size));
        auto node = host.handles.extract(handle);
        node.mapped()->release();
        host.disposedHandles.push_back(std::move(node.mapped()));
        if (host.disposedHandles.size() > kRememberedDisposals) {
            host.disposedHandles.pop_front();
        }
        return 0;
    });
}

template <Slot slot>
std::uint64_t GetHandleSize(sdk::PF_Handle handle) {
    std::uint64_t size = 0;
    ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        if (const HandleBlock* const block = Find(host, handle, "size query")) {
            size = block->size;
        }
        return 0;
    });
    return size;
}

template <Slot slot>
sdk::PF_Err ResizeHandle(std::uint64_t newSize, sdk::PF_Handle* handleAddress) {
    return ServeAnyone(slot, [&](HostState& host) -> sdk::PF_Err {
        HandleBlock* const block =
            handleAddress == nullptr ? nullptr : Find(host, *handleAddress, "resizing");
        if (block == nullptr) {
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (block->locks > 0) {
            host.violate("a handle is resized while it is locked");
        }
        if (!block->intact()) {
            host.violate("the effect wrote beside the bytes of a handle");
        }
        const std::uint64_t oldSize = block->size;
        if (!block->resize(newSize)) {
            return sdk::PF_Err_OUT_OF_MEMORY;
        }
        host.removeBytes(static_cast<std::size_t>(oldSize));
        host.addBytes(static_cast<std::size_t>(newSize));
        return 0;
    });
}

}  // namespace

void FillHandles(sdk::PF_UtilCallbacks& table) {
    table.host_new_handle = NewHandle<Slot::kNewHandle>;
    table.host_lock_handle = LockHandle<Slot::kLockHandle>;
    table.host_unlock_handle = UnlockHandle<Slot::kUnlockHandle>;
    table.host_dispose_handle = DisposeHandle<Slot::kDisposeHandle>;
    table.host_get_handle_size = GetHandleSize<Slot::kGetHandleSize>;
    table.host_resize_handle = ResizeHandle<Slot::kResizeHandle>;
}

const sdk::PF_HandleSuite1* HandleSuiteTable() {
    static const sdk::PF_HandleSuite1 table = {
        NewHandle<Slot::kSuiteNewHandle>,         LockHandle<Slot::kSuiteLockHandle>,
        UnlockHandle<Slot::kSuiteUnlockHandle>,   DisposeHandle<Slot::kSuiteDisposeHandle>,
        GetHandleSize<Slot::kSuiteGetHandleSize>, ResizeHandle<Slot::kSuiteResizeHandle>};
    return &table;
}

}  // namespace vireon::headless
