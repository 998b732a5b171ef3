#include <windows.h>

#include <cstring>

#include "headless/error.h"
#include "headless/platform.h"

namespace vireon::headless::platform {
namespace {

std::wstring Widen(const std::string& utf8) {
    const int length =
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(),
                        length);
    return wide;
}

std::string Narrow(const std::wstring& wide, UINT codePage) {
    const int length = WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()),
                                           nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), narrow.data(),
                        length, nullptr, nullptr);
    return narrow;
}

std::string LastErrorText() {
    const DWORD error = GetLastError();
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::string message = text == nullptr ? std::string() : Narrow({text, length}, CP_UTF8);
    LocalFree(text);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
        message.pop_back();
    }
    return message + " (system error " + std::to_string(error) + ")";
}

}  // namespace

void* OpenLibrary(const std::string& path) {
    const HMODULE library = LoadLibraryW(Widen(path).c_str());
    if (library == nullptr) {
        throw HeadlessError("cannot load " + path + ": " + LastErrorText());
    }
    return library;
}

void* FindSymbol(void* library, const char* name) {
    // By way of memcpy: a function pointer does not convert to an object pointer.
    const FARPROC function = GetProcAddress(static_cast<HMODULE>(library), name);
    void* address = nullptr;
    static_assert(sizeof address == sizeof function);
    std::memcpy(&address, &function, sizeof address);
    return address;
}

void CloseLibrary(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

std::optional<std::vector<std::uint8_t>> ReadResource(void* library, const char* type,
                                                      std::int32_t id) {
    const auto module = static_cast<HMODULE>(library);
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), Widen(type).c_str());
    if (found == nullptr) {
        return std::nullopt;
    }
    const HGLOBAL loaded = LoadResource(module, found);
    const auto* const bytes =
        loaded == nullptr ? nullptr : static_cast<const std::uint8_t*>(LockResource(loaded));
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return std::vector<std::uint8_t>(bytes, bytes + SizeofResource(module, found));
}

std::string NarrowPath(const std::string& utf8) {
    return Narrow(Widen(utf8), CP_ACP);
}

}  // namespace vireon::headless::platform
