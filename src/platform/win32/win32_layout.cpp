#include "platform/win32/win32_layout.h"

#include "platform/events.h"
#include "platform/win32/win32_context.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr int NO_KEY = -1; ///< answer of VkKeyScanExW
constexpr uint8_t BOTH_FOR_ALT_GR = MODIFIER_CONTROL | MODIFIER_ALT;
constexpr UINT KEEP_STATE =
    4; ///< of ToUnicodeEx: a dead key that waits for a letter goes on waiting

/// Keys that are told by Windows' code for them, which is that of HostKey, and not by their place.
constexpr bool is_told_by_code(WPARAM key) {
    return (key >= KEY_PAGE_UP && key <= KEY_DOWN) || key == KEY_INSERT || key == KEY_DELETE ||
           key == KEY_MENU || key == KEY_SHIFT || key == KEY_CONTROL || key == KEY_ALT ||
           key == KEY_PAUSE;
}

// Scan codes of the keys that only some keyboards have.
constexpr KeyPlace FURTHER_PLACES[] = {
    {0x73, KEY_RIGHT_OF_SLASH}, {0x7D, KEY_RIGHT_OF_PLUS}, {0x7E, KEY_RIGHT_OF_PLUS}};

constexpr KeyPlaces US_KEYBOARD = us_keyboard(0, FURTHER_PLACES);

/// The accents of dead keys that stand for a character of ASCII.
char plain_accent(wchar_t accent) {
    if (accent == L'\u00B4') return '\'';
    if (accent == L'\u00A8') return '"';
    return accent < 0x7F ? char(accent) : '\0';
}

} // namespace

void Win32Layout::refresh() {
    layout_ = GetKeyboardLayout(0);
    KeyPlaces letters{};
    for (UINT scan = 0; scan < letters.size(); ++scan) {
        const UINT key = MapVirtualKeyExW(scan, MAPVK_VSC_TO_VK, layout_);
        const std::wstring text =
            types_a_character(US_KEYBOARD[scan]) ? character_of(scan, false) : L"";
        // A key of a layout without Latin letters has its Latin one as Windows' code.
        const bool latin = text.empty() || text[0] < 0x80;
        if (latin ? text.size() == 1 && iswalpha(text[0]) : is_capital_letter(key))
            letters[scan] = latin ? uint8_t(towupper(text[0])) : uint8_t(key);
    }
    keys_ = places_with_letters(US_KEYBOARD, letters);
    has_alt_gr_ = false;
    for (wchar_t character = L' '; character < 0x100; ++character) {
        const SHORT found = VkKeyScanExW(character, layout_);
        has_alt_gr_ |= found != NO_KEY && (HIBYTE(found) & BOTH_FOR_ALT_GR) == BOTH_FOR_ALT_GR;
    }
}

uint8_t Win32Layout::host_key(WPARAM virtual_key, LPARAM detail) const {
    const bool extended = HIWORD(detail) & KF_EXTENDED;
    const UINT scan = HIWORD(detail) & 0x7F;
    if (virtual_key == VK_CANCEL) return KEY_PAUSE; // with Control
    if (virtual_key == VK_RETURN) return KEY_RETURN;
    if (scan == 0) { // the message was not made by a key
        const UINT place = MapVirtualKeyExW(UINT(virtual_key), MAPVK_VK_TO_VSC, layout_);
        if (!is_told_by_code(virtual_key))
            return place < keys_.size() ? keys_[place] : uint8_t(KEY_NONE);
    }
    // The number block has the same scan codes as the cursor keys, which are the extended ones.
    const bool number_block = keys_[scan] >= KEY_NUMPAD0 && keys_[scan] <= KEY_NUMPAD0 + 9;
    if (is_told_by_code(virtual_key) && (extended || !number_block)) return uint8_t(virtual_key);
    return extended ? uint8_t(KEY_NONE) : key_at(scan, virtual_key);
}

uint8_t Win32Layout::key_at(UINT scan, WPARAM virtual_key) const {
    const uint8_t key = scan < keys_.size() ? keys_[scan] : uint8_t(KEY_NONE);
    const bool types = virtual_key <= UINT8_MAX && types_a_character(uint8_t(virtual_key));
    return key == KEY_NONE && types ? uint8_t(virtual_key) : key;
}

std::wstring Win32Layout::character_of(UINT scan, bool shift) const {
    BYTE state[256] = {};
    if (shift) state[VK_SHIFT] = state[VK_LSHIFT] = 0x80;
    wchar_t text[8] = {};
    const UINT key = MapVirtualKeyExW(scan, MAPVK_VSC_TO_VK, layout_);
    const int count =
        ToUnicodeEx(key, scan, state, text, int(std::size(text)), KEEP_STATE, layout_);
    if (count < 0) return std::wstring(text, 1);
    return std::wstring(text, size_t(count));
}

std::optional<KeyForCharacter> Win32Layout::key_for(char character) const {
    const SHORT found = VkKeyScanExW(wchar_t(character), layout_);
    if (found == NO_KEY) return dead_key_for(character);
    const UINT scan = MapVirtualKeyExW(LOBYTE(found), MAPVK_VK_TO_VSC, layout_);
    const uint8_t modifiers = HIBYTE(found);
    const bool usual = modifiers <= (MODIFIER_SHIFT | BOTH_FOR_ALT_GR);
    const uint8_t key = key_at(scan, LOBYTE(found));
    if (!usual || key == KEY_NONE) return std::nullopt;
    return KeyForCharacter{key, modifiers};
}

std::optional<KeyForCharacter> Win32Layout::dead_key_for(char character) const {
    for (const bool shift : {false, true}) {
        for (UINT scan = 0; scan < keys_.size(); ++scan) {
            if (!types_a_character(keys_[scan])) continue;
            const std::wstring text = character_of(scan, shift);
            if (text.size() == 1 && plain_accent(text[0]) == character)
                return KeyForCharacter{keys_[scan], uint8_t(shift ? MODIFIER_SHIFT : 0)};
        }
    }
    return std::nullopt;
}

std::string Win32Layout::label(uint8_t key) const {
    if (!types_a_character(key) || is_on_some_keyboards(key)) return {};
    const auto place = std::ranges::find(keys_, key);
    if (place == keys_.end()) return {};
    std::wstring text = character_of(UINT(place - keys_.begin()), false);
    if (text.size() == 1) {
        const char accent = plain_accent(text[0]);
        if (accent) text[0] = wchar_t(accent);
        CharUpperBuffW(text.data(), 1);
    }
    return narrow(text);
}
