#pragma once
/// The main window's size and how the picture lies in it. The window is either fixed to the size of
/// the canvas, or the user sizes it and the picture is stretched; then its size is remembered.

#include "platform/geometry.h"
#include "platform/pane.h"

#include <cstdint>

/// How far the picture is stretched; the values of the setting "WindowScale".
enum class WindowScale : uint8_t {
    fill,  ///< as large as its 4:3 allow
    whole, ///< to a whole multiple
};

/// The option to have a fixed window, and how the picture is stretched.
bool window_is_sizable();
Scaling picture_scaling();
void choose_window_scale(WindowScale scale);
/// After the option was switched.
void fixed_window_switched();
/// Size of the picture's area that the user has chosen; zero: none.
Size chosen_picture_size();
bool remembers_maximized();
void open_maximized(bool on); ///< once the window gets its first size

/// Height of all that lies below the picture in a client area of that width.
int docked_height(int client_width);
/// What is docked has another height: the picture keeps its size, if the window can follow.
void docked_height_changed();
/// Sets the limits of the size that the user can give the window.
void limit_window_size();
/// Gives the window the size for the canvas, its top left corner where that of `place` is. A window
/// that the user has sized or maximized keeps its size.
void fit_window(const Rectangle& place);
/// Has the canvas or the kind of window changed since the window got its size?
bool window_needs_fit();
/// The window has got another size, by the user or not.
void window_was_resized();
