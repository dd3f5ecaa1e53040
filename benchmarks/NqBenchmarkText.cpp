#include "NqBenchmarkText.h"

#include <cstdarg>
#include <cstdio>

std::string NqBenchmarkText::formatted(const char* format, ...) {
    va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    std::string result(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
    std::vsnprintf(result.data(), result.size() + 1, format, again);
    va_end(again);
    va_end(arguments);
    return result;
}

std::string NqBenchmarkText::number(double value) {
    return formatted("%.*f", value < 10.0 ? 2 : value < 100.0 ? 1 : 0, value);
}

std::string NqBenchmarkText::quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += static_cast<unsigned char>(character) < 0x20 ? ' ' : character;
    }
    return result + "\"";
}
