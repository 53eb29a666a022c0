#include "support/fake_host.h"

#include "platform/host_services.h"

#include <cstdarg>
#include <cstdio>

FakeHost fake_host;

namespace {
std::string format_text(const char* format, va_list arguments) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}
} // namespace

void StatusBarText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    fake_host.status[3] = format_text(format, arguments);
    va_end(arguments);
}

void StatusBarPartText(int part, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    fake_host.status[part & 3] = format_text(format, arguments);
    va_end(arguments);
}

void ui_set_window_title(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    fake_host.title = format_text(format, arguments);
    va_end(arguments);
}

void report(const Report& told) {
    fake_host.status[3] = told.text;
    fake_host.reports.push_back(told);
}

void led_update(int drive) { fake_host.lamp = drive; }

void update_screen(int flag) { fake_host.screen_updates += flag != 0; }

void host_save_screenshot() { ++fake_host.screenshots; }

void host_capture_frame() { ++fake_host.captured_frames; }

int host_has_canvas() { return fake_host.canvas ? 1 : 0; }

int get_ui_save_tape_filename(std::string* path) {
    ++fake_host.save_questions;
    *path = fake_host.save_path;
    return path->empty() ? 0 : 1;
}

int host_breakpoint_reached() {
    ++fake_host.breakpoints;
    return fake_host.stands_still ? 1 : 0;
}
