#include "nba/nba.h"

#include <cstring>
#include <cwchar>

char* v0_mb_strncpy(char* destination, const char* source, std::size_t n) {
    if (n == 0) {
        return destination;
    }
    const std::size_t length = std::strlen(source);
    std::mbstate_t state{};
    std::size_t copied = 0;
    while (copied < length) {
        std::size_t width = std::mbrlen(source + copied, length - copied, &state);
        if (width == 0 ||
            width > length - copied) { // not a character of the locale: a byte by itself
            width = 1;
            state = std::mbstate_t{};
        }
        if (copied + width > n - 1) {
            break;
        }
        copied += width;
    }
    std::memcpy(destination, source, copied);
    destination[copied] = '\0';
    return destination;
}

int nb_sprintf(char* output, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = std::vsprintf(output, format, arguments);
    va_end(arguments);
    return result;
}

int nb_printf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = std::vprintf(format, arguments);
    va_end(arguments);
    return result;
}

int nb_fprintf(std::FILE* file, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = std::vfprintf(file, format, arguments);
    va_end(arguments);
    return result;
}
