#pragma once
/// Sizes of a window that the user can size. All of them are those of the picture's area, in
/// coordinates of the window system, of which one may have several pixels of the screen. The
/// functions ask no host.

#include "platform/geometry.h"

struct WindowRoom {
    Size screen;
    Size available;   ///< of it for windows
    Size around;      ///< what the window has beside the picture's area, without its frame
    double ratio = 1; ///< pixels of the screen in a coordinate
};

/// The smallest one that the user can choose.
constexpr Size LEAST_PICTURE{320, 240};

/// The largest whole multiple of the picture, in pixels of the screen, that is no higher than two
/// thirds of the screen, but not less than LEAST_PICTURE.
Size usual_picture_size(Size picture, const WindowRoom& room);
/// Twice the usual multiple, or as much more as the screen has room for. `unit` is what it is a
/// multiple of, the picture or a part of it.
Size giant_picture_size(Size picture, Size unit, const WindowRoom& room);
/// A size that was chosen earlier, perhaps on a larger screen.
Size possible_picture_size(Size chosen, const WindowRoom& room);
/// The window's place, so that all of it is in the area if it has room there.
Rectangle pulled_into(const Rectangle& area, const Rectangle& window);
