#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

/// Room for the text behind `out`: known for the return message of the running command only.
std::size_t RoomAt(const HostState* host, const char* out) {
    if (host == nullptr) {
        return 0;
    }
    const char* const begin = host->outData.return_msg;
    const char* const end = begin + sizeof host->outData.return_msg;
    return out >= begin && out < end ? static_cast<std::size_t>(end - out) : 0;
}

[[gnu::format(printf, 2, 3)]] std::int32_t Sprintf(char* out, const char* format, ...) {
    HostState* const host = CurrentHost();
    if (host != nullptr) {
        host->calls.add(Slot::kAnsiSprintf);
    }
    std::va_list arguments;
    va_start(arguments, format);
    const std::size_t room = RoomAt(host, out);
    const int count = room == 0 ? std::vsprintf(out, format, arguments)
                                : std::vsnprintf(out, room, format, arguments);
    va_end(arguments);
    if (room != 0 && count >= 0 && static_cast<std::size_t>(count) >= room) {
        host->violate("sprintf writes past the end of the return message");
    }
    return count;
}

char* Strcpy(char* out, const char* text) {
    HostState* const host = CurrentHost();
    if (host != nullptr) {
        host->calls.add(Slot::kAnsiStrcpy);
    }
    const std::size_t room = RoomAt(host, out);
    const std::size_t length = std::strlen(text);
    if (room != 0 && length >= room) {
        host->violate("strcpy writes past the end of the return message");
        std::memcpy(out, text, room - 1);
        out[room - 1] = '\0';
        return out;
    }
    std::memmove(out, text, length + 1);
    return out;
}

}  // namespace

void FillAnsi(sdk::PF_ANSICallbacks& table) {
    table.atan = [](double x) { return std::atan(x); };
    table.atan2 = [](double y, double x) { return std::atan2(y, x); };
    table.ceil = [](double x) { return std::ceil(x); };
    table.cos = [](double x) { return std::cos(x); };
    table.exp = [](double x) { return std::exp(x); };
    table.fabs = [](double x) { return std::fabs(x); };
    table.floor = [](double x) { return std::floor(x); };
    table.fmod = [](double x, double y) { return std::fmod(x, y); };
    table.hypot = [](double x, double y) { return std::hypot(x, y); };
    table.log = [](double x) { return std::log(x); };
    table.log10 = [](double x) { return std::log10(x); };
    table.pow = [](double x, double y) { return std::pow(x, y); };
    table.sin = [](double x) { return std::sin(x); };
    table.sqrt = [](double x) { return std::sqrt(x); };
    table.tan = [](double x) { return std::tan(x); };
    table.sprintf = Sprintf;
    table.strcpy = Strcpy;
    table.asin = [](double x) { return std::asin(x); };
    table.acos = [](double x) { return std::acos(x); };
}

}  // namespace vireon::headless
