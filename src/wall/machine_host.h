#pragma once
/// The only way in which the machine reaches the program around it: a record of callbacks, by which
/// it tells and asks. Each has a default that does nothing, so the machine also runs in a program
/// that sets none of them.

#include "wall/report.h"

#include <cstddef>
#include <cstdint>

struct machine_input;

/// Parts of the status bar.
enum StatusPart : int { PART_CONFIGURATION, PART_LAMPS, PART_CASSETTE, PART_MESSAGES };

/// Where bytes leave the machine.
enum output_stream : int { STREAM_PRINTER, STREAM_TAPE, STREAM_TAPE_SOUND };
/// The program's standard streams, for lines that let a person follow what the machine does.
enum text_stream : int { TEXT_OUTPUT, TEXT_ERROR };
/// A ROM whose contents come from a file that the configuration names.
enum rom_file : int { ROM_BASIC, ROM_EXPANSION, ROM_CHARACTERS };
constexpr int ROM_NOT_NAMED = -1;
/// Whether a cassette image has been made for what the firmware is about to save.
enum save_answer : int {
    SAVE_REFUSED, ///< none is wanted: the cassette stays as it is
    SAVE_READY,
    SAVE_NOT_YET, ///< the machine waits, and asks again when it is run again
    SAVE_FAILED   ///< none could be made: the cassette is taken out
};

struct machine_host_calls {
    // ---- told ----
    /// A message for the status bar.
    void (*status_text)(const char* text);
    /// The text of a StatusPart.
    void (*part_text)(int part, const char* text);
    void (*report)(const Report& told);
    /// One or more lines for a standard stream.
    void (*print)(text_stream to, const char* lines);
    /// The drive whose lamp is lit, 0 to 3; any other value lights none.
    void (*lamp)(int drive);
    /// The machine has written a sector to the disk in the drive.
    void (*disk_written)(int drive);
    /// A frame is ready to be shown. A `flag` of 0 shows nothing.
    void (*frame)(int flag);
    /// A finished sound fragment of FRAGMENT_SAMPLES samples.
    void (*fragment)(const uint16_t* samples);
    /// The sound starts from nothing: the next fragment is the first one.
    void (*sound_begins)();
    /// The sound has been reset.
    void (*sound_was_reset)();
    /// No more bytes come to the stream. STREAM_TAPE ends when the cassette image is taken out,
    /// STREAM_TAPE_SOUND when the WAV file is, whether it was recorded or played.
    void (*stream_ends)(output_stream stream);
    /// The reset key has been pressed.
    void (*was_reset)();
    /// Another state has been loaded: everything shown of the machine is stale.
    void (*stale)();

    // ---- asked; every answer is an input of the machine ----
    /// How many fragments the next completed one becomes: 0, 1 or 2. `completed` of them, 0 or 1,
    /// are finished at this moment. Default 1.
    int (*fragment_decision)(int completed);
    /// Bytes of a stream from `position` on. 0 when they cannot be taken. Default 1.
    int (*write)(output_stream stream, uint64_t position, const uint8_t* bytes, size_t count);
    /// Copies up to `size` bytes of the file to `to`. Returns how many there were: 0 also when the
    /// file cannot be read, ROM_NOT_NAMED (the default) when there is no file.
    int (*read_rom)(rom_file which, uint8_t* to, size_t size);
    /// Bytes at `offset` of the WAV file that plays. Returns how many there were. Default 0.
    size_t (*read_tape)(uint64_t offset, uint8_t* to, size_t bytes);
    /// What keyboard, joysticks and keypads hold at this moment. By default it stays as it was.
    void (*read_input)(machine_input& input);
    /// The cassette image for a save of the firmware. Default SAVE_REFUSED.
    save_answer (*save_question)();
    /// The program counter has come to the armed breakpoint: 1 when the machine is to stand there,
    /// 0 when it is to go on. Default 0.
    int (*breakpoint_reached)();
    /// The processor has hit what `z80_watch` looks out for: 1 when the machine is to stand there,
    /// 0 when it is to go on. Default 0.
    int (*watch_hit)();
};

/// The callbacks in use. A null pointer is not allowed.
extern machine_host_calls machine_host;
/// The record of defaults.
machine_host_calls machine_without_host();

/// Shows a message in the status bar (printf rules).
[[gnu::format(printf, 1, 2)]] void StatusBarText(const char* format, ...);
/// Shows a text in a StatusPart; nothing for the lamps.
[[gnu::format(printf, 2, 3)]] void StatusBarPartText(int part, const char* format, ...);
/// Prints lines on a standard stream.
[[gnu::format(printf, 2, 3)]] void machine_print(text_stream to, const char* format, ...);
/// Lights the lamp of `drive` (0 to 3); any other value lights none.
void led_update(int drive);
/// Shows the frame; 0 does nothing.
void update_screen(int flag);
