#pragma once
/// Pictures of forms, drawn by GDI+.

#include "platform/forms.h"
#include "platform/win32/win32_windows.h"

#include <memory>

/// GDI+ can be used as long as one lives.
class GdiPlus {
public:
    GdiPlus();
    GdiPlus(const GdiPlus&) = delete;
    GdiPlus& operator=(const GdiPlus&) = delete;
    ~GdiPlus();

private:
    ULONG_PTR token_ = 0;
};

class Win32Picture {
public:
    Win32Picture();
    ~Win32Picture();
    /// Reads the picture's file, or copies its pixels.
    void set(const FormPicture& picture);
    bool is_empty() const;
    /// Stretched to fill the place.
    void draw(HDC canvas, const RECT& place);

private:
    struct Images;
    std::unique_ptr<Images> images_;
};
