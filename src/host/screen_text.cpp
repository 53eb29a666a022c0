#include "host/screen_text.h"

#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "host/shell.h"
#include "monitor/monitor.h"
#include "platform/platform.h"

namespace {

/// A screen code as a character: codes 0 to 31 stand for the characters 64 codes higher, the
/// graphics (128 and above) for those 32 codes lower.
uint8_t screen_character(uint8_t code) {
    constexpr uint8_t LAST_CONTROL_CODE = 31;
    constexpr uint8_t FIRST_GRAPHICS_CODE = 128;
    if (code <= LAST_CONTROL_CODE) return uint8_t(code + 64);
    if (code >= FIRST_GRAPHICS_CODE) return uint8_t(code - 32);
    return code;
}

/// Where the cursor stands in the text with one byte behind each row; NO_CURSOR outside the screen.
int cursor_in_text() {
    const auto columns = uint32_t(video_get_columns());
    const uint32_t place = video_get_cursor();
    if (place >= columns * uint32_t(video_get_rows())) return ReadableText::NO_CURSOR;
    return int(place + place / columns);
}

} // namespace

std::string screen_text(const std::string& row_end) {
    const uint8_t* code = video_get_screen_ram();
    std::string text;
    for (int row = 0; row < video_get_rows(); ++row) {
        for (int column = 0; column < video_get_columns(); ++column) {
            text += char(convert_typed_character(screen_character(*code++)));
        }
        text += row_end;
    }
    return text;
}

ReadableText shown_text() {
    if (!g_bDebug) return {screen_text("\n"), cursor_in_text()};
    ReadableText page;
    for (const std::string& row : monitor_page_rows(monitor_get_rows(), monitor_get_cols())) {
        page.text += row + "\n";
    }
    return page;
}

void ui_copy_to_clipboard() { platform().clipboard().set_text(screen_text("\r\n")); }
