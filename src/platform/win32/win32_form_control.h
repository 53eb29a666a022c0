#pragma once
/// The controls of a form, each one window of Windows' own.

#include "platform/forms.h"
#include "platform/win32/win32_form_scale.h"
#include "platform/win32/win32_windows.h"

#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class Win32Control;

/// What a control tells its form.
struct Win32ControlHost {
    virtual ~Win32ControlHost() = default;
    /// The user has done something. Nothing, while the program sets the control.
    virtual void raise(Win32Control& control, FormEvent::Kind kind) = 0;
    virtual void has_focus(Win32Control& control) = 0;
    virtual void press_default() = 0;
    /// An arrow key in a picture: to the next one in that direction.
    virtual void move_among_pictures(Win32Control& from, int right, int down) = 0;
    virtual void set_tip(HWND window, const std::string& text) = 0;
    virtual const Win32FormScale& scale() const = 0;
};

class Win32Control {
public:
    Win32Control(const FormControl& described, Win32ControlHost& host)
        : id_(described.id), kind_(described.kind), text_(described.text), host_(host) {}
    Win32Control(const Win32Control&) = delete;
    Win32Control& operator=(const Win32Control&) = delete;
    virtual ~Win32Control();

    int id() const { return id_; }
    ControlKind kind() const { return kind_; }
    HWND window() const { return window_; }

    // As Form has them.
    virtual int value() { return 0; }
    virtual void set_value(int) {}
    virtual std::string text() { return text_; }
    virtual void set_text(const std::string&) {}
    virtual void set_items(const std::vector<std::string>&) {}
    virtual void set_picture(const FormPicture&) {}

    /// The size that it wants, in pixels; the height is that for the width it gets.
    virtual int wanted_width() const = 0;
    virtual int wanted_height(int width) const = 0;
    virtual bool takes_width() const { return false; }  ///< as much as there is
    virtual bool takes_height() const { return false; } ///< of the row or column it is in
    virtual bool is_focusable() const { return true; }
    virtual void take_font();
    virtual void move(const RECT& place);

    /// Codes of WM_COMMAND, WM_NOTIFY, and positions of WM_HSCROLL, from its own window.
    virtual void commanded(WORD) {}
    virtual void notified(const NMHDR&) {}
    virtual void scrolled() {}
    virtual void draw(const DRAWITEMSTRUCT&) {} ///< of an owner-drawn one

protected:
    /// Makes the window, of a class of Windows'.
    void create(HWND parent, const wchar_t* window_class, const std::string& text, DWORD style,
                DWORD extended = 0);
    /// A message to the window, before its class has it. Nothing for one that the class handles.
    virtual std::optional<LRESULT> handle(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
        return SendMessageW(window_, message, wparam, lparam);
    }
    std::string window_text() const;
    void set_window_text(const std::string& text);
    const Win32FormScale& scale() const { return host_.scale(); }
    int pixels(int points) const { return scale().pixels(points); }

    int id_;
    ControlKind kind_;
    std::string text_;
    Win32ControlHost& host_;
    HWND window_ = nullptr;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR id, DWORD_PTR self);
};

/// `first_of_group`: arrow keys stop before it.
std::unique_ptr<Win32Control> make_win32_control(const FormControl& described, HWND parent,
                                                 Win32ControlHost& host, bool first_of_group);
/// A table or a list box.
std::unique_ptr<Win32Control> make_win32_table(const FormControl& described, HWND parent,
                                               Win32ControlHost& host);
/// A picture that can be chosen or pressed; of `percent` of its size.
std::unique_ptr<Win32Control> make_win32_picture(const FormControl& described, HWND parent,
                                                 Win32ControlHost& host);
void set_picture_percent(Win32Control& picture, int percent);
/// A picture of the program's icon, and a line of text that opens a page.
std::unique_ptr<Win32Control> make_win32_icon(HICON icon, int points, HWND parent,
                                              Win32ControlHost& host);
std::unique_ptr<Win32Control> make_win32_link(const std::string& text, const std::string& target,
                                              HWND parent, Win32ControlHost& host);

/// With "&" doubled, where it would mark an access key.
std::string without_access_key(const std::string& text);
/// Without the marks of access keys.
std::string spoken_text(const std::string& text);

/// Of the controls of this kind, one is chosen.
bool excludes_others(ControlKind kind);
void set_window_style(HWND window, DWORD style, bool on);
