#pragma once
/// Pictures that the program has written, read back by another decoder.

#include <array>
#include <cstdint>
#include <filesystem>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels; ///< palette indices, top row first
    std::array<uint8_t, 768> colours = {};
};

/// An empty picture when the file is no GIF of one image with 256 colours.
Picture read_gif(const std::filesystem::path& path);
/// Where two pictures of the same size differ in a pixel's index or colour: those bright red, the
/// others as a dark copy of the first.
Picture difference(const Picture& expected, const Picture& actual);
/// Number of pixels that differ; all of them when the sizes do.
size_t count_differences(const Picture& expected, const Picture& actual);
