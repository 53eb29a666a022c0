#include "platform/win32/win32_file_dialog.h"

#include "platform/win32/win32_form_scale.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <commdlg.h>
#include <dlgs.h>

namespace {

constexpr size_t LONGEST_PATH = 32768; ///< characters
constexpr int FIRST_FIELD = 1001;      ///< ids of the panel's controls
constexpr int PREVIEW = 1101;

constexpr UINT ARRANGE = WM_APP;

// Dialog units.
constexpr short DIALOG_WIDTH = 270; ///< of Windows' own controls, at least
constexpr short DIALOG_HEIGHT = 160;
constexpr short PREVIEW_UNITS = 150;
constexpr short FIELDS_UNITS = 26;

/// A dialog with the place for Windows' own controls in it, and nothing else. The rest of its area
/// is for the panel.
#pragma pack(push, 2)
struct PanelTemplate {
    DLGTEMPLATE head{};
    WORD menu = 0;
    WORD window_class = 0;
    WORD title = 0;
    WORD points = 8;
    wchar_t font[13] = L"MS Shell Dlg";
    DLGITEMTEMPLATE place{};
    WORD place_class[2] = {0xFFFF, 0x0082}; // static
    WORD place_title = 0;
    WORD place_data = 0;
};
#pragma pack(pop)
static_assert(offsetof(PanelTemplate, place) % sizeof(DWORD) == 0);

/// In memory that a handle can stand for, as the dialog wants it.
using PanelMemory = std::unique_ptr<void, decltype(&GlobalFree)>;

PanelMemory panel_template(const FileDialog& dialog) {
    PanelTemplate panel;
    panel.head.style =
        DWORD(DS_3DLOOK | DS_CONTROL | DS_SETFONT | WS_CHILD | WS_CLIPSIBLINGS | WS_VISIBLE);
    panel.head.dwExtendedStyle = WS_EX_CONTROLPARENT;
    panel.head.cdit = 1;
    panel.head.cx = short(DIALOG_WIDTH + (dialog.preview ? PREVIEW_UNITS : 0));
    panel.head.cy = short(DIALOG_HEIGHT + (dialog.fields.empty() ? 0 : FIELDS_UNITS));
    panel.place.style = WS_CHILD | WS_VISIBLE;
    panel.place.cx = DIALOG_WIDTH;
    panel.place.cy = DIALOG_HEIGHT;
    panel.place.id = stc32;
    PanelMemory memory(GlobalAlloc(GMEM_FIXED, sizeof panel), GlobalFree);
    if (memory) std::memcpy(memory.get(), &panel, sizeof panel);
    return memory;
}

/// The panel beside and below Windows' own controls.
class FilePanel {
public:
    explicit FilePanel(const FileDialog& dialog, double ratio) : dialog_(dialog), scale_(ratio) {}
    static UINT_PTR CALLBACK hook(HWND child, UINT message, WPARAM wparam, LPARAM lparam);
    std::vector<std::string> field_texts() const { return texts_; }

private:
    UINT_PTR obey(UINT message, LPARAM lparam);
    void open();
    void arrange();
    void focus_name();
    void show_preview();
    HWND add(const wchar_t* window_class, const std::string& text, DWORD style, DWORD extended,
             int id);
    HWND dialog() const { return GetParent(child_); }
    /// Of the list of files, in the panel; empty when the dialog lacks it.
    RECT list_place() const;
    void keep_texts();

    const FileDialog& dialog_;
    Win32FormScale scale_;
    FontHandle fixed_;
    HWND child_ = nullptr;
    HWND preview_ = nullptr;
    std::vector<HWND> labels_, fields_;
    std::vector<std::string> texts_;
};

UINT_PTR CALLBACK FilePanel::hook(HWND child, UINT message, WPARAM /*wparam*/, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        const auto* asked = reinterpret_cast<const OPENFILENAMEW*>(lparam);
        SetWindowLongPtrW(child, DWLP_USER, LONG_PTR(asked->lCustData));
        reinterpret_cast<FilePanel*>(asked->lCustData)->child_ = child;
    }
    auto* panel = reinterpret_cast<FilePanel*>(GetWindowLongPtrW(child, DWLP_USER));
    return panel ? panel->obey(message, lparam) : 0;
}

UINT_PTR FilePanel::obey(UINT message, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG: open(); return 0;
    case WM_SIZE: PostMessageW(child_, ARRANGE, 0, 0); return 0; // behind Windows' own controls
    case ARRANGE: arrange(); return 0;
    case WM_DESTROY: keep_texts(); return 0;
    case WM_NOTIFY:
        switch (reinterpret_cast<const NMHDR*>(lparam)->code) {
        case CDN_INITDONE:
            arrange();
            show_preview();
            focus_name();
            return 0;
        case CDN_FOLDERCHANGE: PostMessageW(child_, ARRANGE, 0, 0); [[fallthrough]];
        case CDN_SELCHANGE: show_preview(); return 0;
        default: return 0;
        }
    default: return 0;
    }
}

HWND FilePanel::add(const wchar_t* window_class, const std::string& text, DWORD style,
                    DWORD extended, int id) {
    const HWND window = CreateWindowExW(
        extended, window_class, wide(text).c_str(), style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
        child_, reinterpret_cast<HMENU>(INT_PTR(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(scale_.font()), FALSE);
    return window;
}

void FilePanel::open() {
    for (const FileDialogField& field : dialog_.fields) {
        labels_.push_back(add(L"STATIC", field.label, SS_LEFT, 0, 0));
        fields_.push_back(add(L"EDIT", field.text, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE,
                              FIRST_FIELD + int(fields_.size())));
        SendMessageW(fields_.back(), EM_LIMITTEXT, WPARAM(field.limit), 0);
    }
    if (!dialog_.preview) return;
    preview_ =
        add(L"EDIT", "", ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL | WS_TABSTOP,
            WS_EX_CLIENTEDGE, PREVIEW);
    LOGFONTW font{};
    GetObjectW(scale_.font(), sizeof font, &font);
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    lstrcpynW(font.lfFaceName, L"Courier New", LF_FACESIZE);
    fixed_.reset(CreateFontIndirectW(&font));
    SendMessageW(preview_, WM_SETFONT, reinterpret_cast<WPARAM>(fixed_.get()), FALSE);
}

/// The field for the name, which Windows may have passed over for the panel.
void FilePanel::focus_name() {
    for (const int id : {int(cmb13), int(edt1)}) {
        const HWND name = GetDlgItem(dialog(), id);
        if (!name) continue;
        SendMessageW(dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(name), TRUE);
        return;
    }
}

RECT FilePanel::list_place() const {
    HWND list = FindWindowExW(dialog(), nullptr, L"SHELLDLL_DefView", nullptr);
    if (!list) list = GetDlgItem(dialog(), lst1); // stands in for it at first
    RECT place{};
    if (!list || !GetWindowRect(list, &place)) return {};
    MapWindowPoints(nullptr, child_, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void FilePanel::arrange() {
    RECT all{}, own{};
    GetClientRect(child_, &all);
    GetWindowRect(GetDlgItem(child_, stc32), &own);
    MapWindowPoints(nullptr, child_, reinterpret_cast<POINT*>(&own), 2);
    const int gap = scale_.pixels(7);
    if (preview_) {
        const RECT list = list_place();
        const RECT beside = list.bottom > list.top ? list : own;
        const int left = int(beside.right) + gap;
        MoveWindow(preview_, left, int(beside.top), int(all.right) - gap - left,
                   int(beside.bottom - beside.top), TRUE);
    }
    int left = gap;
    const int height = scale_.line() + scale_.pixels(8);
    const int top = int(all.bottom) - 2 * gap - height;
    for (size_t n = 0; n < fields_.size(); ++n) {
        const int label = scale_.label_size(dialog_.fields[n].label).width;
        const int field = scale_.digit() * (dialog_.fields[n].limit + 3);
        MoveWindow(labels_[n], left, top + (height - scale_.line()) / 2, label, scale_.line(),
                   TRUE);
        left += label + gap;
        MoveWindow(fields_[n], left, top, field, height, TRUE);
        left += field + 2 * gap;
    }
}

void FilePanel::show_preview() {
    if (!preview_) return;
    std::wstring path(LONGEST_PATH, L'\0');
    const LRESULT length =
        SendMessageW(dialog(), CDM_GETFILEPATH, path.size(), reinterpret_cast<LPARAM>(path.data()));
    path.resize(length > 0 ? size_t(length) - 1 : 0); // with the zero at its end
    const DWORD kind = GetFileAttributesW(path.c_str());
    std::string text = "What is in the file\r\nthat is marked";
    if (kind != INVALID_FILE_ATTRIBUTES && !(kind & FILE_ATTRIBUTE_DIRECTORY)) {
        text.clear();
        for (const std::string& line : dialog_.preview(narrow(path))) text += line + "\r\n";
    }
    SetWindowTextW(preview_, wide(text).c_str());
}

void FilePanel::keep_texts() {
    texts_.clear();
    for (const HWND field : fields_) {
        wchar_t text[256];
        const int length = GetWindowTextW(field, text, int(std::size(text)));
        texts_.push_back(narrow({text, size_t(length)}));
    }
}

/// Texts and patterns, each with a zero behind it, and one more.
std::wstring filter_list(const std::vector<FileFilter>& filters) {
    std::wstring list;
    for (const FileFilter& filter : filters) {
        list += wide(filter.text) + L'\0' + wide(filter.pattern) + L'\0';
    }
    return list + L'\0';
}

} // namespace

std::optional<FileChoice> ask_win32_for_file(Win32Context& context, const FileDialog& dialog,
                                             std::wstring& folder) {
    const std::wstring filters = filter_list(dialog.filters), title = wide(dialog.title);
    std::wstring path(LONGEST_PATH, L'\0'); // no name at first
    FilePanel panel(dialog, context.ratio);
    const PanelMemory description = panel_template(dialog);
    OPENFILENAMEW asked{};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = context.front();
    asked.lpstrFilter = filters.c_str();
    asked.nFilterIndex = DWORD(dialog.filter_index + 1);
    asked.lpstrFile = path.data();
    asked.nMaxFile = DWORD(path.size());
    asked.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    asked.lpstrTitle = title.c_str();
    asked.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                  (dialog.save ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    if (!dialog.fields.empty() || dialog.preview) {
        asked.Flags |= OFN_ENABLEHOOK | OFN_ENABLETEMPLATEHANDLE;
        asked.hInstance = static_cast<HINSTANCE>(description.get());
        asked.lpfnHook = FilePanel::hook;
        asked.lCustData = reinterpret_cast<LPARAM>(&panel);
    }
    const BOOL chosen = dialog.save ? GetSaveFileNameW(&asked) : GetOpenFileNameW(&asked);
    if (!chosen) return std::nullopt;
    path.resize(std::min(path.find(L'\0'), path.size()));
    folder = path.substr(0, std::min(size_t(asked.nFileOffset), path.size()));
    return FileChoice{narrow(path), int(asked.nFilterIndex) - 1, panel.field_texts()};
}
