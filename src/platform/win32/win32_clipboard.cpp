#include "platform/win32/win32_clipboard.h"

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

/// The clipboard while it is the program's.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND window) : open_(OpenClipboard(window)) {}
    ~OpenedClipboard() {
        if (open_) CloseClipboard();
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    explicit operator bool() const { return open_; }

private:
    const bool open_;
};

struct GlobalFreer {
    void operator()(HGLOBAL memory) const { GlobalFree(memory); }
};

/// In ISO 8859-1, with "\r\n" behind every line.
std::string in_machine_bytes(std::wstring_view text) {
    std::string bytes;
    for (size_t n = 0; n < text.size(); ++n) {
        const wchar_t code = text[n];
        if (code == L'\n' && n > 0 && text[n - 1] == L'\r') continue;
        if (IS_LOW_SURROGATE(code)) continue; // the other half has given the "?"
        if (code == L'\r' || code == L'\n') {
            bytes += "\r\n";
        } else {
            bytes += code < 0x100 ? char(code) : '?';
        }
    }
    return bytes;
}

} // namespace

std::optional<std::string> Win32Clipboard::text() {
    if (!IsClipboardFormatAvailable(CF_UNICODETEXT)) return std::nullopt;
    const OpenedClipboard clipboard(context_.window);
    if (!clipboard) return std::nullopt;
    const HANDLE data = GetClipboardData(CF_UNICODETEXT);
    const auto* text = data ? static_cast<const wchar_t*>(GlobalLock(data)) : nullptr;
    if (!text) return std::nullopt;
    const size_t room = GlobalSize(data) / sizeof(wchar_t);
    const std::string bytes = in_machine_bytes({text, wcsnlen(text, room)});
    GlobalUnlock(data);
    return bytes;
}

bool Win32Clipboard::set_text(const std::string& text) {
    std::wstring wide_text;
    for (const char byte : text) wide_text += wchar_t(uint8_t(byte));
    const size_t bytes = (wide_text.size() + 1) * sizeof(wchar_t);
    std::unique_ptr<std::remove_pointer_t<HGLOBAL>, GlobalFreer> memory(
        GlobalAlloc(GMEM_MOVEABLE, bytes));
    void* const place = memory ? GlobalLock(memory.get()) : nullptr;
    if (!place) return false;
    std::memcpy(place, wide_text.c_str(), bytes);
    GlobalUnlock(memory.get());
    const OpenedClipboard clipboard(context_.window);
    if (!clipboard || !EmptyClipboard()) return false;
    if (!SetClipboardData(CF_UNICODETEXT, memory.get())) return false;
    (void)memory.release(); // it is the clipboard's now
    return true;
}
