#pragma once
/// The WAV files of the cassette recorder (media/tape_audio.h).
///
/// A played one is RIFF/WAVE with PCM samples, 8 or 16 bits, mono or stereo, 1000 to 768000 Hz.
/// Chunks may stand in any order with others around them. A recording that was never closed (data
/// size 0 or FFFFFFFF) or that was cut short is read to the end of the file.
///
/// The header of a recording follows each block of its samples, so that whatever ends the program
/// leaves a file that can be played.

#include "files/file_handle.h"
#include "media/wav_samples.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// Puts in a recording to be played, for the one that is in. 1 on success; a file that cannot be
/// played is refused with a warning.
int tape_open_wav(const std::string& path);
/// Puts in a cassette image as the sound of its tape; `path` is that of its file. 1 on success.
int tape_play_cassette(const std::string& path, std::span<const uint8_t> tape);
/// A new recording at `rate` samples per second, for the one that is in; 1 on success.
int tape_create_wav(const std::string& path, int rate);

/// Which file plays, and the hash of what it held when it was put in.
struct played_wav {
    std::string path;
    uint64_t hash = 0;
};
/// Without a path when none plays.
played_wav tape_sound_played();
/// For another state of the machine, in which `wav` plays, or none. A recording is complete as it
/// is. Returns why the file cannot be played, in words for the user, or nothing.
std::string tape_sound_follow(const played_wav& wav);
/// Writes the samples that the recorder has not put out yet, as it will do itself later.
void tape_sound_flush();

/// Opens a file and finds its samples; those of a cassette image are made. Returns why that failed,
/// in words for the user, or nothing.
std::string wav_file_open(const std::string& path, FileHandle& file, wav_format& wav);
/// Bytes of the file that plays; 0 at its end, after an error and without one.
size_t tape_sound_read(uint64_t offset, uint8_t* to, size_t bytes);
/// Writes recorded samples from `position` on. When that fails, the status bar tells it once, and
/// the result is 0.
int tape_sound_write(uint64_t position, const uint8_t* samples, size_t count);
/// Completes a recording, and closes what is open.
void tape_sound_end();
