/// Tables and list boxes of a form: rows of cells, one of which is chosen.

#include "platform/win32/win32_context.h"
#include "platform/win32/win32_form_control.h"

#include <algorithm>

namespace {

constexpr Size LIST_BOX = {30, 10}; ///< characters across, items that are seen
constexpr int COLUMN_SPACING = 16;  ///< points behind the widest cell
constexpr int LIST_BOX_COLUMNS = 2;

bool is_number(const std::wstring& cell) {
    return !cell.empty() &&
           std::ranges::all_of(cell, [](wchar_t c) { return c >= '0' && c <= '9'; });
}

std::vector<std::wstring> cells_of(const std::string& row, size_t columns) {
    std::vector<std::wstring> cells;
    for (size_t start = 0; cells.size() < columns;) {
        const size_t end = std::min(row.find('\t', start), row.size());
        cells.push_back(wide(std::string_view(row).substr(start, end - start)));
        start = std::min(end + 1, row.size());
    }
    return cells;
}

class Table final : public Win32Control {
public:
    Table(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host), is_table_(kind_ == ControlKind::table),
          area_(is_table_ ? described.table_area : LIST_BOX), headings_(described.headings) {
        headings_.resize(is_table_ ? headings_.size() : LIST_BOX_COLUMNS);
        const DWORD header = is_table_ ? LVS_NOSORTHEADER : LVS_NOCOLUMNHEADER;
        create(parent, WC_LISTVIEWW, "",
               LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | header | WS_TABSTOP | WS_GROUP,
               WS_EX_CLIENTEDGE);
        const DWORD looks = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
        send(LVM_SETEXTENDEDLISTVIEWSTYLE, looks, LPARAM(looks));
        for (size_t n = 0; n < headings_.size(); ++n) {
            std::wstring heading = wide(headings_[n]);
            LVCOLUMNW column{};
            column.mask = LVCF_TEXT;
            column.pszText = heading.data();
            send(LVM_INSERTCOLUMNW, n, reinterpret_cast<LPARAM>(&column));
        }
        set_items(described.items);
    }

    int value() override { return chosen_; }
    void set_value(int row) override {
        chosen_ = row >= 0 && size_t(row) < rows_.size() ? row : -1;
        mark_chosen();
        if (chosen_ >= 0) send(LVM_ENSUREVISIBLE, WPARAM(chosen_), FALSE);
    }
    std::string text() override { return chosen_ >= 0 ? rows_[size_t(chosen_)] : ""; }
    void set_items(const std::vector<std::string>& rows) override {
        const int before = is_table_ ? std::max(chosen_, 0) : 0;
        send(WM_SETREDRAW, FALSE);
        for (size_t n = rows.size(); n < rows_.size(); ++n) send(LVM_DELETEITEM, rows.size());
        for (size_t n = 0; n < rows.size(); ++n) {
            const bool is_new = n >= rows_.size();
            if (is_new || rows[n] != rows_[n]) set_row(int(n), rows[n], is_new);
        }
        rows_ = rows;
        fit_columns();
        chosen_ = std::min(before, int(rows.size()) - 1);
        mark_chosen();
        send(WM_SETREDRAW, TRUE);
        InvalidateRect(window_, nullptr, TRUE);
    }
    bool takes_width() const override { return true; }
    bool takes_height() const override { return true; }
    int wanted_width() const override {
        return scale().digit() * area_.width + GetSystemMetrics(SM_CXVSCROLL) +
               2 * GetSystemMetrics(SM_CXEDGE);
    }
    int wanted_height(int /*width*/) const override {
        return header_height() + area_.height * row_height() + 2 * GetSystemMetrics(SM_CYEDGE);
    }
    void move(const RECT& place) override {
        Win32Control::move(place);
        fit_columns();
        if (chosen_ >= 0) send(LVM_ENSUREVISIBLE, WPARAM(chosen_), FALSE);
    }

    void notified(const NMHDR& what) override {
        switch (what.code) {
        case LVN_ITEMCHANGED: {
            const auto& change = reinterpret_cast<const NMLISTVIEW&>(what);
            const bool is_chosen = change.uNewState & ~change.uOldState & LVIS_SELECTED;
            if (marking_ || !is_chosen || change.iItem == chosen_) return;
            chosen_ = change.iItem;
            return host_.raise(*this, FormEvent::Kind::changed);
        }
        case NM_CLICK:
        case NM_RCLICK: return mark_chosen(); // a click beside the rows leaves it
        case NM_DBLCLK:
        case NM_RETURN: return activate();
        default: return;
        }
    }

protected:
    /// Enter activates a row of a table.
    std::optional<LRESULT> handle(UINT message, WPARAM /*wparam*/, LPARAM lparam) override {
        if (message != WM_GETDLGCODE || !is_table_ || chosen_ < 0) return std::nullopt;
        const auto* key = reinterpret_cast<const MSG*>(lparam);
        if (!key || key->message != WM_KEYDOWN || key->wParam != VK_RETURN) return std::nullopt;
        return DLGC_WANTMESSAGE;
    }

private:
    void activate() {
        if (!is_table_) return host_.press_default();
        if (chosen_ >= 0) host_.raise(*this, FormEvent::Kind::activated);
    }
    int header_height() const {
        if (!is_table_) return 0;
        RECT all = {0, 0, 10000, 10000};
        WINDOWPOS place{};
        HDLAYOUT layout = {&all, &place};
        const auto header = reinterpret_cast<HWND>(send(LVM_GETHEADER));
        SendMessageW(header, HDM_LAYOUT, 0, reinterpret_cast<LPARAM>(&layout));
        return place.cy;
    }
    /// Only a row that is there has one.
    int row_height() const {
        wchar_t text[] = L"0";
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.pszText = text;
        if (rows_.empty()) send(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        RECT row{};
        row.left = LVIR_BOUNDS;
        send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
        if (rows_.empty()) send(LVM_DELETEITEM, 0);
        return int(row.bottom - row.top);
    }
    void mark_chosen() {
        marking_ = true;
        constexpr UINT marks = LVIS_SELECTED | LVIS_FOCUSED;
        LVITEMW item{};
        item.stateMask = marks;
        if (chosen_ >= 0) item.state = marks;
        // -1 means all rows
        send(LVM_SETITEMSTATE, WPARAM(chosen_), reinterpret_cast<LPARAM>(&item));
        marking_ = false;
    }
    void set_row(int row, const std::string& text, bool is_new) {
        std::vector<std::wstring> cells = cells_of(text, headings_.size());
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        for (size_t n = 0; n < cells.size(); ++n) {
            item.iSubItem = int(n);
            item.pszText = cells[n].data();
            const UINT how = is_new && n == 0 ? LVM_INSERTITEMW : LVM_SETITEMW;
            send(how, 0, reinterpret_cast<LPARAM>(&item));
            if (n > 0 && is_table_ && is_number(cells[n])) {
                LVCOLUMNW column{};
                column.mask = LVCF_FMT;
                column.fmt = LVCFMT_RIGHT;
                send(LVM_SETCOLUMNW, n, reinterpret_cast<LPARAM>(&column));
            }
        }
    }
    int text_width(size_t column) const {
        int widest = scale().text_size(headings_[column]).width;
        for (const std::string& row : rows_) {
            const std::vector<std::wstring> cells = cells_of(row, headings_.size());
            widest = std::max(widest, scale().text_size(narrow(cells[column])).width);
        }
        return widest;
    }
    /// The last one has the rest.
    void fit_columns() {
        RECT area{};
        GetClientRect(window_, &area);
        int rest = int(area.right);
        for (size_t n = 0; n < headings_.size(); ++n) {
            int width = text_width(n) + pixels(COLUMN_SPACING);
            if (!is_table_) width = std::max(width, scale().digit() * area_.width / 2);
            if (n + 1 == headings_.size()) width = std::max(width, rest);
            send(LVM_SETCOLUMNWIDTH, n, MAKELPARAM(width, 0));
            rest -= width;
        }
    }

    bool is_table_;
    Size area_;
    std::vector<std::string> headings_;
    std::vector<std::string> rows_;
    int chosen_ = -1;
    bool marking_ = false;
};

} // namespace

std::unique_ptr<Win32Control> make_win32_table(const FormControl& described, HWND parent,
                                               Win32ControlHost& host) {
    return std::make_unique<Table>(described, parent, host);
}
