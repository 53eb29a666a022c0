#pragma once
/// Pixel work on pictures of 32 bits per pixel.

#include "platform/geometry.h"

#include <QColor>
#include <QImage>

#include <utility>

/// Copies the picture 1:1, its top left corner at (x, y), cut off at the target's edges.
void copy_bitmap_to(QImage& target, const BitmapView& picture, int x, int y);
void fill_area(QImage& target, const Rectangle& area, Colour colour);
/// Is the part of the area that lies in the picture all of this colour?
bool area_has_colour(const QImage& picture, const Rectangle& area, Colour colour);
/// A picture of one colour.
QImage plain_picture(QSize size, const QColor& colour);
/// The first row that differs in pictures of one size, and the one behind the last; the same where
/// none does.
std::pair<int, int> rows_that_differ(const QImage& one, const QImage& other);
