#include "board/output.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace varn {

void unbuffer_output() { std::setvbuf(stdout, nullptr, _IONBF, 0); }

void say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    if (length > 0) {
        std::string text(static_cast<std::size_t>(length), '\0');
        std::vsnprintf(text.data(), text.size() + 1, format, again);
        say_text(text);
    }
    va_end(again);
}

void say_text(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

}  // namespace varn
