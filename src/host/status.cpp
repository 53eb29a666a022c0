#include "platform/host_services.h"
#include "platform/platform.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

constexpr const char* PRODUCT_NAME = "Tarvelin";
constexpr int PART_LAMPS = 1;
constexpr int PART_MESSAGES = 3;

std::string format_text(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length > 0 ? size_t(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

void StatusBarText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    platform().window().set_status_text(PART_MESSAGES, format_text(format, arguments));
    va_end(arguments);
}

void StatusBarPartText(int part, const char* format, ...) {
    if (part == PART_LAMPS) return;
    va_list arguments;
    va_start(arguments, format);
    platform().window().set_status_text(part, format_text(format, arguments));
    va_end(arguments);
}

void ui_set_window_title(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    platform().window().set_title(std::string(PRODUCT_NAME) + " - " + text);
}

void host_warning(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    std::fprintf(stderr, "tarvelin: %s\n", text.c_str());
    StatusBarText("%s", text.c_str());
}

void led_update(int drive) { platform().window().set_lamp(drive); }
