#include "platform/win32/win32_dialogs.h"

#include "platform/win32/win32_file_dialog.h"
#include "platform/win32/win32_form.h"
#include "platform/win32/win32_modal.h"

#include <shellapi.h>

namespace {

constexpr int PROGRAM_ICON = 107;
constexpr int ICON_SIZE = 32;   ///< points
constexpr int ABOUT_SIZE = 64;  ///< points
constexpr int TEXT_LINES = 24;  ///< longer ones scroll
constexpr int LINE_LENGTH = 80; ///< characters
constexpr int TEXT = 1;         ///< id
constexpr int FIRST_ANSWER = 2; ///< id of a button

UINT icon_of(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::none: return 0;
    case MessageIcon::information: return MB_ICONINFORMATION;
    case MessageIcon::warning: return MB_ICONWARNING;
    case MessageIcon::error: return MB_ICONERROR;
    }
    return 0;
}

/// Lines may end with CR.
std::string with_line_feeds(const std::string& text) {
    std::string result;
    for (size_t n = 0; n < text.size(); ++n) {
        const bool pair = text[n] == '\r' && n + 1 < text.size() && text[n + 1] == '\n';
        if (!pair) result += text[n] == '\r' ? '\n' : text[n];
    }
    return result;
}

/// Windows' own box would go beyond the screen.
bool is_long(const std::string& text) {
    int lines = 1, length = 0;
    for (const char c : text) {
        const bool ends = c == '\n' || ++length > LINE_LENGTH;
        if (ends) length = 0;
        lines += ends;
    }
    return lines > TEXT_LINES;
}

HICON program_icon(const Win32Context& context, int points) {
    return static_cast<HICON>(LoadImageW(context.instance, MAKEINTRESOURCEW(PROGRAM_ICON),
                                         IMAGE_ICON, context.pixels(points), context.pixels(points),
                                         LR_DEFAULTCOLOR));
}

/// Windows' own.
HICON system_icon(LPCWSTR name, const Win32Context& context) {
    return static_cast<HICON>(LoadImageW(nullptr, name, IMAGE_ICON, context.pixels(ICON_SIZE),
                                         context.pixels(ICON_SIZE), LR_SHARED));
}

LPCWSTR large_icon_of(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::warning: return IDI_WARNING;
    case MessageIcon::error: return IDI_ERROR;
    default: return IDI_INFORMATION;
    }
}

/// A text and a button for each answer. Gives the place of the one that was pressed.
int ask(Win32Context& context, const std::string& title, const std::string& text,
        const std::vector<std::string>& answers, HICON icon) {
    FormControl buttons = {.kind = ControlKind::buttons};
    for (size_t n = 0; n < answers.size(); ++n) {
        const ControlKind kind = n ? ControlKind::button : ControlKind::default_button;
        buttons.children.push_back({.kind = kind, .id = FIRST_ANSWER + int(n), .text = answers[n]});
    }
    int answer = NO_ANSWER;
    const auto pressed = [&answer](Form& form, const FormEvent& event) {
        if (event.kind != FormEvent::Kind::pressed) return;
        answer = event.control - FIRST_ANSWER;
        form.close();
    };
    const ControlKind kind = is_long(text) ? ControlKind::text_view : ControlKind::note;
    const FormDescription description = {title,
                                         {{.kind = kind, .id = TEXT, .text = text}, buttons}};
    Win32Form form(context, nullptr, description, pressed, {.icon = icon, .icon_size = ICON_SIZE});
    form.set_value(TEXT, 0); // one that scrolls begins with its first line
    form.run([](int) {});
    return answer;
}

} // namespace

void Win32Dialogs::message(const std::string& title, const std::string& text, MessageIcon icon,
                           std::function<void()> done) {
    const std::string shown = with_line_feeds(text);
    if (is_long(shown)) {
        ask(context_, title, shown, {"OK"}, system_icon(large_icon_of(icon), context_));
    } else {
        const Win32ModalScope scope(context_);
        MessageBoxW(context_.front(), wide(shown).c_str(), wide(title).c_str(),
                    MB_OK | icon_of(icon));
    }
    done();
}

void Win32Dialogs::choose(const std::string& title, const std::string& text,
                          const std::vector<std::string>& answers, std::function<void(int)> done) {
    done(ask(context_, title, with_line_feeds(text), answers, system_icon(IDI_QUESTION, context_)));
}

void Win32Dialogs::choose_file(const FileDialog& dialog,
                               std::function<void(std::optional<FileChoice>)> done) {
    std::optional<FileChoice> choice;
    {
        const Win32ModalScope scope(context_);
        choice = ask_win32_for_file(context_, dialog, folder_);
    }
    done(choice);
}

void Win32Dialogs::about(const std::string& title, const std::vector<std::string>& lines,
                         const std::string& link, const std::string& target,
                         std::function<void()> done) {
    FormDescription description = {title, {}};
    for (const std::string& line : lines) {
        const bool first = description.controls.empty();
        description.controls.push_back(
            {.kind = first ? ControlKind::heading : ControlKind::label, .text = line});
    }
    description.controls.push_back(
        {.kind = ControlKind::buttons,
         .children = {{.kind = ControlKind::default_button, .id = FIRST_ANSWER, .text = "OK"}}});
    {
        const HICON icon = program_icon(context_, ABOUT_SIZE);
        Win32Form form(context_, nullptr, description, [](Form&, const FormEvent&) {},
                       {.icon = icon, .icon_size = ABOUT_SIZE, .link = link, .target = target});
        form.run([](int) {});
        if (icon) DestroyIcon(icon);
    }
    done();
}

bool Win32Dialogs::open_page(const std::string& url) {
    constexpr INT_PTR HIGHEST_ERROR = 32;
    const HINSTANCE answer =
        ShellExecuteW(context_.window, L"open", wide(url).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(answer) > HIGHEST_ERROR;
}
