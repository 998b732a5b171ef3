#include "tools/vireon/format_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace vireon::tool {

std::string FormatText(const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, values);
    va_end(values);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace vireon::tool
