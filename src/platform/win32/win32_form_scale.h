#pragma once
/// The fonts of forms at a scale, and the room that texts need in them. Sizes are in pixels.

#include "platform/geometry.h"
#include "platform/win32/win32_windows.h"

#include <memory>
#include <string>
#include <type_traits>

struct DeleteGdiObject {
    void operator()(void* object) const { DeleteObject(object); }
};
using FontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, DeleteGdiObject>;

enum class FormFont : uint8_t { usual, strong, heading, link };

class Win32FormScale {
public:
    explicit Win32FormScale(double ratio); ///< pixels in a point

    double ratio() const { return ratio_; }
    int pixels(int points) const;
    HFONT font(FormFont use = FormFont::usual) const { return fonts_[size_t(use)].get(); }
    int line() const { return line_; }   ///< height of a line of the usual font
    int digit() const { return digit_; } ///< width of one

    /// Of text that may have an access key, in one line.
    Size label_size(const std::string& text) const;
    /// Of text as it is, in as many lines as it takes when it may be so wide; 0 = as it wants.
    Size text_size(const std::string& text, int width = 0, FormFont use = FormFont::usual) const;

private:
    Size measure(const std::string& text, int width, FormFont use, UINT format) const;
    double ratio_;
    FontHandle fonts_[4];
    int line_ = 0;
    int digit_ = 0;
};
