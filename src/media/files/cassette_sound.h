#pragma once
/// Cassette images as the sound that the machine records and plays, for a firmware that the
/// cassette traps do not fit.

#include "files/file_handle.h"
#include "media/wav_samples.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Makes a file without a name that holds the tape as 8-bit samples, 19200 a second: 1200 bits a
/// second, each of which begins with a change of level; a one changes a second time in its middle.
/// Six seconds of leader come first, as time to start the program that reads it; the text at the
/// start of a CGT file is left out. Returns why that failed, or nothing.
std::string cassette_sound_open(std::span<const uint8_t> tape, FileHandle& file, wav_format& wav);
/// Where the byte of the tape begins in that sound, in milliseconds.
uint32_t cassette_sound_place(std::span<const uint8_t> tape, size_t byte);
/// The tape of a file that is a cassette image or tokenized BASIC by its extension; empty for any
/// other file, and for one that cannot be read.
std::vector<uint8_t> tape_of_file(const std::string& path);
