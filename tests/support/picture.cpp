#include "support/picture.h"

#include <gif_lib.h>

#include <algorithm>

namespace {

constexpr size_t COLOURS = 256;
constexpr uint8_t MARK = 255; ///< no colour of the machine

bool same_pixel(const Picture& a, const Picture& b, size_t at) {
    const uint8_t index = a.pixels[at];
    return index == b.pixels[at] &&
           std::equal(&a.colours[index * 3U], &a.colours[index * 3U] + 3, &b.colours[index * 3U]);
}

bool same_size(const Picture& a, const Picture& b) {
    return a.width == b.width && a.height == b.height && a.pixels.size() == b.pixels.size();
}

} // namespace

Picture read_gif(const std::filesystem::path& path) {
    Picture picture;
    int error = 0;
    GifFileType* gif = DGifOpenFileName(path.c_str(), &error);
    if (!gif) return picture;
    if (DGifSlurp(gif) == GIF_OK && gif->ImageCount == 1 && gif->SColorMap &&
        gif->SColorMap->ColorCount == int(COLOURS)) {
        const SavedImage& image = gif->SavedImages[0];
        picture.width = image.ImageDesc.Width;
        picture.height = image.ImageDesc.Height;
        const size_t size = size_t(picture.width) * size_t(picture.height);
        picture.pixels.assign(image.RasterBits, image.RasterBits + size);
        for (size_t i = 0; i < COLOURS; ++i) {
            const GifColorType& colour = gif->SColorMap->Colors[i];
            picture.colours[i * 3] = colour.Red;
            picture.colours[i * 3 + 1] = colour.Green;
            picture.colours[i * 3 + 2] = colour.Blue;
        }
    }
    DGifCloseFile(gif, &error);
    return picture;
}

Picture difference(const Picture& expected, const Picture& actual) {
    Picture picture = expected;
    if (!same_size(expected, actual)) return picture;
    for (uint8_t& component : picture.colours) component /= 4;
    picture.colours[MARK * 3] = 255;
    picture.colours[MARK * 3 + 1] = picture.colours[MARK * 3 + 2] = 0;
    for (size_t at = 0; at < picture.pixels.size(); ++at) {
        if (!same_pixel(expected, actual, at)) picture.pixels[at] = MARK;
    }
    return picture;
}

size_t count_differences(const Picture& expected, const Picture& actual) {
    if (!same_size(expected, actual)) return std::max(expected.pixels.size(), size_t(1));
    size_t count = 0;
    for (size_t at = 0; at < expected.pixels.size(); ++at) {
        count += !same_pixel(expected, actual, at);
    }
    return count;
}
