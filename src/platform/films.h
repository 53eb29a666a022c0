#pragma once
#include <cstdint>
#include <functional>
#include <span>
#include <string>

/// The pictures of a film, uncompressed.
struct FilmPictures {
    std::span<const uint8_t> format; ///< device-independent bitmap header and palette
    int width = 0;
    int height = 0;
    uint32_t rate = 0; ///< per second
};

/// A stream of uncompressed sound.
struct FilmSound {
    std::span<const uint8_t> format; ///< as it stands in the file
    uint32_t rate = 0;               ///< samples per second
    uint32_t buffer = 0;             ///< bytes that a player should read ahead
};

/// A library of the host that compresses and writes films, one at a time. It comes up in steps,
/// each of which can fail on its own; `close` ends whatever has been begun.
struct Films {
    virtual ~Films() = default;
    virtual bool available() = 0; ///< is there such a library?
    /// Why the latest step has failed, in the library's words; empty when it does not say.
    virtual std::string error() = 0;
    virtual bool start() = 0;
    /// Asks the user for the compression of such pictures; `done` gets false when that was
    /// cancelled. The answer holds for the film begun next, and is offered again the next time.
    virtual void choose_compression(const FilmPictures& pictures,
                                    std::function<void(bool chosen)> done) = 0;
    /// Creates the file in place of what it held.
    virtual bool open(const std::string& path) = 0;
    virtual bool create_pictures(const FilmPictures& pictures) = 0;
    virtual bool create_sound(const FilmSound& sound) = 0; ///< without it, the film is silent
    /// Appends a picture, bottom row first, to the one before; the first has number 1.
    virtual bool write_picture(uint32_t number, std::span<const uint8_t> picture) = 0;
    virtual bool write_sound(std::span<const uint8_t> sound) = 0; ///< appends
    /// Completes the file, with `information` as the contents of a list chunk.
    virtual void close(std::span<const uint8_t> information) = 0;
};
