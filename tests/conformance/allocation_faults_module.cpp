// The global operators of the effect's test build: they count, and fail on demand.

#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/conformance/allocation_faults.h"

#ifdef _WIN32
#define VIREON_TEST_EXPORT __declspec(dllexport)
#else
#define VIREON_TEST_EXPORT __attribute__((visibility("default")))
#endif

namespace {

vireon::conformance::AllocationFaults faults;

bool NextFails() {
    ++faults.asked;
    if (faults.failAfter == 0) return false;
    --faults.failAfter;
    if (faults.failAfter != 0) return false;
    if (faults.fromThenOn) faults.failAfter = 1;
    ++faults.failed;
    return true;
}

}  // namespace

extern "C" VIREON_TEST_EXPORT vireon::conformance::AllocationFaults* VireonTestAllocationFaults() {
    return &faults;
}

void* operator new(std::size_t size) {
    void* const block = NextFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    ++faults.live;
    return block;
}

void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    --faults.live;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
