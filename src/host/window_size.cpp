#include "host/window_size.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int TITLE_BAR = 40; ///< about as high as that of any desktop

/// The fewest coordinates that window systems round to so many pixels of the screen.
int in_coordinates(int pixels, double ratio) {
    const int below = int(std::floor(pixels / ratio));
    return std::lround(below * ratio) < pixels ? below + 1 : below;
}

Size in_coordinates(Size pixels, double ratio) {
    return {in_coordinates(pixels.width, ratio), in_coordinates(pixels.height, ratio)};
}

/// Multiples of the size that an area has room for.
int multiples(Size size, Size area, double ratio) {
    const double across = std::max(area.width, 0) * ratio / size.width;
    const double down = std::max(area.height, 0) * ratio / size.height;
    return int(std::min(across, down));
}

Size largest_picture(const WindowRoom& room) {
    return {room.available.width - room.around.width,
            room.available.height - room.around.height - TITLE_BAR};
}

int usual_multiple(Size picture, const WindowRoom& room) {
    const Size area = {room.screen.width, 2 * room.screen.height / 3};
    const int fits = multiples(picture, area, room.ratio);
    const int least = int(std::ceil(LEAST_PICTURE.width * room.ratio / picture.width));
    return std::max(fits, least);
}

Size multiplied(Size size, int factor) { return {size.width * factor, size.height * factor}; }

int moved_in(int place, int size, int first, int end) {
    return std::max(std::min(place, end - size), first);
}

} // namespace

Size usual_picture_size(Size picture, const WindowRoom& room) {
    return in_coordinates(multiplied(picture, usual_multiple(picture, room)), room.ratio);
}

Size giant_picture_size(Size picture, Size unit, const WindowRoom& room) {
    const int wanted = 2 * usual_multiple(picture, room) * picture.width / unit.width;
    const int fits = std::max(multiples(unit, largest_picture(room), room.ratio), 1);
    return in_coordinates(multiplied(unit, std::min(wanted, fits)), room.ratio);
}

Size possible_picture_size(Size chosen, const WindowRoom& room) {
    const Size largest = largest_picture(room);
    return {std::max(std::min(chosen.width, largest.width), LEAST_PICTURE.width),
            std::max(std::min(chosen.height, largest.height), LEAST_PICTURE.height)};
}

Rectangle pulled_into(const Rectangle& area, const Rectangle& window) {
    const int left = moved_in(window.left, window.width(), area.left, area.right);
    const int top = moved_in(window.top, window.height(), area.top, area.bottom);
    return {left, top, left + window.width(), top + window.height()};
}
