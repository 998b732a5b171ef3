#include <windows.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>

#include <fcntl.h>
#include <io.h>

#include "headless/remote/worker_exit.h"
#include "tools/worker/platform.h"

namespace vireon::worker {
namespace {

HANDLE AsHandle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

std::intptr_t DuplicateStandard(DWORD which) {
    HANDLE copy = nullptr;
    if (!DuplicateHandle(GetCurrentProcess(), GetStdHandle(which), GetCurrentProcess(), &copy, 0,
                         FALSE, DUPLICATE_SAME_ACCESS)) {
        EndProcess(headless::kWorkerUsage);
    }
    return reinterpret_cast<std::intptr_t>(copy);
}

/// One call moves at most this many bytes; some pipes refuse larger ones.
constexpr std::size_t kMaxTransfer = 1u << 20;

/// Writes a line and ends the process. Called when nothing in the process can be relied on.
[[noreturn]] void Crash(const char* text) {
    DWORD written = 0;
    const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
    WriteFile(errors, headless::kWorkerLogPrefix, sizeof headless::kWorkerLogPrefix - 1, &written,
              nullptr);
    WriteFile(errors, text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
    WriteFile(errors, "\n", 1, &written, nullptr);
    EndProcess(headless::kWorkerCrashed);
}

const char* NameOf(DWORD code) {
    switch (code) {
        case EXCEPTION_ACCESS_VIOLATION: return "access violation";
        case EXCEPTION_STACK_OVERFLOW: return "stack overflow";
        case EXCEPTION_INT_DIVIDE_BY_ZERO: return "integer division by zero";
        case EXCEPTION_ILLEGAL_INSTRUCTION: return "illegal instruction";
        default: return "unhandled exception";
    }
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    static char text[64];
    std::snprintf(text, sizeof text, "%s, 0x%08lX", NameOf(code), code);
    Crash(text);
}

void OnAbort(int /*signal*/) {
    Crash("abort");
}

void OnTerminate() {
    Crash("unhandled C++ exception");
}

}  // namespace

PrivatePipes::PrivatePipes()
    : input_(DuplicateStandard(STD_INPUT_HANDLE)), output_(DuplicateStandard(STD_OUTPUT_HANDLE)) {
    // Both the run-time library's descriptors and the system's handles lead away from the pipes.
    const int nothing = _open("NUL", _O_RDONLY);
    if (nothing >= 0) {
        _dup2(nothing, 0);
        _close(nothing);
    }
    _dup2(2, 1);
    SetStdHandle(STD_INPUT_HANDLE, reinterpret_cast<HANDLE>(_get_osfhandle(0)));
    SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE));
}

std::size_t PrivatePipes::read(std::span<std::uint8_t> room) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(room.size(), kMaxTransfer));
    return ReadFile(AsHandle(input_), room.data(), wanted, &count, nullptr) ? count : 0;
}

bool PrivatePipes::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMaxTransfer));
        if (!WriteFile(AsHandle(output_), bytes.data(), wanted, &count, nullptr)) {
            return false;
        }
        bytes = bytes.subspan(count);
    }
    return true;
}

const char* SystemName() {
    return "windows";
}

void InstallCrashExit() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(OnUnhandledException);
    std::signal(SIGABRT, OnAbort);
    std::set_terminate(OnTerminate);
}

void EndProcess(int code) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    for (;;) {
        Sleep(INFINITE);
    }
}

}  // namespace vireon::worker
