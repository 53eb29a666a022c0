#pragma once
/// A form: its controls, their arrangement and its window.

#include "platform/win32/win32_form_layout.h"
#include "platform/win32/win32_form_window.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Win32Keyboard;

constexpr UINT_PTR FORM_TICK = 1; ///< its timer

/// What the program's own boxes have beside the controls.
struct Win32FormExtras {
    HICON icon = nullptr; ///< left of the controls
    int icon_size = 32;   ///< points
    std::string link = {};
    std::string target = {}; ///< that the link opens
};

class Win32Form final : public Form, private Win32ControlHost {
public:
    /// Without a keyboard no key can be awaited.
    Win32Form(Win32Context& context, Win32Keyboard* keyboard, const FormDescription& description,
              FormHandler handler, const Win32FormExtras& extras = {});
    ~Win32Form() override;

    int value(int id) override;
    void set_value(int id, int value) override;
    std::string text(int id) override;
    void set_text(int id, const std::string& text) override;
    void set_items(int id, const std::vector<std::string>& items) override;
    void set_picture(int id, const FormPicture& picture) override;
    bool is_enabled(int id) override;
    void set_enabled(int id, bool enabled) override;
    void await_key() override;
    void run(std::function<void(int)> done) override;
    void show() override;
    void close() override { end(FORM_CLOSED); }
    bool is_open() override { return window_.is_open(); }
    Size size() override;
    void move(int left, int top) override;

private:
    /// Texts that stand before a control and may serve as its name.
    struct Naming {
        Win32Control* label = nullptr; ///< the last label, until its control comes
        std::string name = {};
    };

    void raise(Win32Control& control, FormEvent::Kind kind) override;
    void has_focus(Win32Control& control) override;
    void press_default() override;
    void move_among_pictures(Win32Control& from, int right, int down) override;
    void set_tip(HWND window, const std::string& text) override;
    const Win32FormScale& scale() const override { return *scale_; }

    void add_all(const std::vector<FormControl>& controls, FormNode& node, HWND parent,
                 Naming& naming);
    FormNode make(const FormControl& described, HWND parent, Naming& naming);
    Win32Control& enter(std::unique_ptr<Win32Control> control);
    void give_name(const FormControl& described, HWND parent, Naming& naming);
    void add_extras(const Win32FormExtras& extras);

    Win32Control* control(int id) const;
    Win32Control* control_of(HWND window) const;
    void choose(Win32Control& chosen);
    int title_width() const;
    void fit();
    void fit_height(const Win32FormLayout& layout, int& width, int& height, int room);
    void fit_again(const Win32Control& changed);
    void take_scale(double ratio);
    void place();
    void focus_first();
    void end(int closing_id);
    void cancel();
    bool obey(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    bool obey_command(WPARAM wparam, LPARAM lparam);
    bool obey_key(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    void end_waiting(uint8_t key);

    Win32Context& context_;
    Win32Keyboard* keyboard_;
    FormHandler handler_;
    std::string title_;
    int tick_;
    std::unique_ptr<Win32FormScale> scale_;
    Win32FormWindow window_;
    Win32Panel area_; ///< all but the buttons at the end
    std::unique_ptr<Win32Panel> scroll_;
    HWND tips_ = nullptr;
    FormNode contents_{.kind = ControlKind::scroll};
    FormNode buttons_{.kind = ControlKind::buttons};
    FormNode* scroll_node_ = nullptr;
    std::vector<std::unique_ptr<Win32Control>> controls_;
    std::map<int, Win32Control*> by_id_;
    std::map<HWND, Win32Control*> by_window_;
    const Win32Control* link_ = nullptr;
    Size least_;             ///< of the inside while it is open
    bool is_placed_ = false; ///< where the program wants it
    bool is_sizable_;
    int silent_ = 0; ///< above 0 while the program sets something
    int closing_id_ = FORM_CLOSED;
    enum class Waiting : uint8_t { no, for_key, for_release };
    Waiting waiting_ = Waiting::no;
    HWND focus_before_ = nullptr; ///< it waited for a key
};
