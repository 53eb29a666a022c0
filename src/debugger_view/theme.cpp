#include "debugger_view/theme.h"

namespace {

constexpr Colour DARK = 0x16191F, DARK_BAR = 0x2A2F3A;
constexpr ViewTheme dark_theme = {
    .text = {0xDDE1EA, DARK},
    .quiet = {0x8F98AB, DARK},
    .changed = {0xFF8A65, DARK},
    .name = {0x7FD1AE, DARK},
    .title = {0x9AA3B5, DARK_BAR},
    .front = {0xF0F2F7, 0x444C5E},
    .focus = {0xFFFFFF, 0x2F6FC4},
    .cursor = {0xFFFFFF, 0x2F6FC4},
    .rest = {0xDDE1EA, 0x333A48},
    .counter = {0x101010, 0xE8C14A},
    .breakpoint = {0xFFFFFF, 0xC0392B},
    .off = {0xE9A79F, 0x4A2B2B},
    .button = {0xF0F2F7, 0x444C5E},
    .no_button = {0x737C8E, DARK_BAR},
    .bar = {0xC3C9D6, DARK_BAR},
    .past = {0x101010, 0x62B6E8},
    .trouble = {0x101010, 0xF0B429},
    .cross = 0xFFE14A,
};

constexpr Colour LIGHT = 0xFCFCFD, LIGHT_BAR = 0xE2E5EB;
constexpr ViewTheme light_theme = {
    .text = {0x1C2230, LIGHT},
    .quiet = {0x646C7C, LIGHT},
    .changed = {0xB93A0E, LIGHT},
    .name = {0x0B6E49, LIGHT},
    .title = {0x535B6B, LIGHT_BAR},
    .front = {0x10141E, 0xC3C9D5},
    .focus = {0xFFFFFF, 0x1F5FB5},
    .cursor = {0xFFFFFF, 0x1F5FB5},
    .rest = {0x1C2230, 0xDCE3EF},
    .counter = {0x101010, 0xF4D35E},
    .breakpoint = {0xFFFFFF, 0xB3261E},
    .off = {0x8C2F27, 0xF3D3D0},
    .button = {0x10141E, 0xC3C9D5},
    .no_button = {0x8A92A1, LIGHT_BAR},
    .bar = {0x2C3342, LIGHT_BAR},
    .past = {0x06263A, 0x8ED0F5},
    .trouble = {0x101010, 0xF5B83D},
    .cross = 0xD81B60,
};

/// Green counts most for the eye, blue least.
bool is_bright(Colour colour) {
    const Colour red = colour >> 16 & 0xFF, green = colour >> 8 & 0xFF, blue = colour & 0xFF;
    return 2 * red + 5 * green + blue > 8 * 0x80;
}

} // namespace

const ViewTheme& theme_for(Colour window) { return is_bright(window) ? light_theme : dark_theme; }
