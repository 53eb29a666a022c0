#pragma once
#include "platform/pane.h"

#include <string>

/// The failure of a host that would need this library, and has none.
inline constexpr const char* NO_DIRECT_DRAW = "Missing DDRAW.DLL";

/// An off-screen picture that the pane of the picture shows stretched into a rectangle of the
/// screen, black around it, until something else is drawn there.
struct Surface {
    virtual ~Surface() = default;
    /// Gets ready for pictures of this size. Returns an empty text, or what failed.
    virtual std::string create(Size size) = 0;
    virtual bool exists() = 0;
    virtual void release() = 0;
    /// Stretches the picture into `target`, in screen coordinates. `clear` first blackens the
    /// whole screen.
    virtual void present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                         bool clear) = 0;
};
