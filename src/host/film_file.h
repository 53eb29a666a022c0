#pragma once
/// A film in the making: the file, and what compresses its pictures. The program writes it itself,
/// or the host has a library for films.

#include "host/recording/avi_writer.h"

#include <functional>
#include <memory>
#include <span>
#include <string>

struct FilmFile {
    virtual ~FilmFile() = default;
    virtual bool has_sound() const = 0;
    /// Appends a picture, bottom row first, with its sound, which is not read when the film has
    /// none. Empty when both are in the film, else why it ends before them.
    virtual std::string write(std::span<const uint8_t> picture, std::span<const uint8_t> sound) = 0;
    virtual void close() = 0; ///< completes the file
};

/// Asks for the compression of pictures with the format, creates the file, and hands the film to
/// `done`; null after a failure that the user has been told of.
void begin_film(const std::string& path, const avi_video_format& raw, bool with_sound,
                const std::function<void(std::unique_ptr<FilmFile>)>& done);
