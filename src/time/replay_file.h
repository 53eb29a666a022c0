#pragma once
/// Replay files (.tvr): a state of the machine and all that happened to it from then on.
///
/// A mark, the version of the format, the version of the program, and chunks: kind, length,
/// contents and the CRC-32 of all three. Each is in the file as soon as it is complete, so a
/// recording that was cut off plays up to its last second.
///
/// | kind | contents |
/// |---|---|
/// | S | a state file (time/state_file.h): the machine goes on as this one; stands at the start |
/// | T | path and hash of the WAV tape that plays from the next chunk on, before S as well |
/// | E | events of up to a second (time/event_code.h), deflated, and what the machine must be then
/// | | Z | the number of frames: the end |
///
/// ROM images that the machine read from files of the user's are not in it: in their place stand
/// length and hash.

#include "core/machine_events.h"
#include "files/file_handle.h"
#include "time/byte_stream.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a replay must come to behind some events.
struct replay_check {
    enum class Of : uint8_t {
        nothing,
        bytes, ///< in the middle of a frame
        all
    };
    int64_t frame = 0; ///< frames since the start
    Of of = Of::nothing;
    uint32_t picture = 0; ///< CRC-32 of the 384 x 288 palette indices
    uint32_t bytes = 0;   ///< CRC-32 of the machine's 64 KB
};
/// Of the live machine. The line engine draws its frame for it.
replay_check replay_check_now(int64_t frame);
/// In what the machine differs from it; an empty text when it does not.
std::string replay_difference(const replay_check& wanted);

struct replay_tape {
    std::string path;
    uint64_t hash = 0; ///< of the file's contents
};

/// A ROM image that stands in the file by these alone.
struct replay_rom {
    uint32_t size = 0;
    uint64_t hash = 0; ///< content_hash
    bool operator==(const replay_rom&) const = default;
};
replay_rom rom_reference(std::span<const uint8_t> image);

/// Writes a file, chunk by chunk. After a failure, such as a full disk, everything fails.
class ReplayWriter {
public:
    /// Makes the file; its chunks follow.
    bool open(const std::string& path, std::string_view program_version);
    /// Begins in the memory instead, at the end of `bytes`, which must outlive the writer.
    void begin(std::vector<uint8_t>& bytes, std::string_view program_version);
    bool state(std::span<const uint8_t> state_file);
    bool tape(const replay_tape& tape);
    bool events(std::span<const machine_event> events, const replay_check& behind);
    bool end(int64_t frames);
    uint64_t size() const { return size_; } ///< bytes so far

private:
    bool put(std::span<const uint8_t> bytes);
    bool chunk(char kind, std::span<const uint8_t> contents);
    bool head(std::string_view program_version);
    FileHandle file_;
    std::vector<uint8_t>* memory_ = nullptr; ///< in place of the file
    uint64_t size_ = 0;
};

struct replay_chunk {
    enum class Kind : uint8_t { state, tape, events, end, cut, damaged };
    Kind kind = Kind::cut;
    std::span<const uint8_t> state_file;
    replay_tape tape;
    std::vector<machine_event> events;
    replay_check check; ///< behind the events
    int64_t frames = 0; ///< at the end
    std::string damage;
};

/// Reads the bytes of a file, chunk by chunk. A file that just stops gives the kind `cut`, also in
/// the middle of its last chunk; behind `end`, `cut` and `damaged` nothing comes.
class ReplayReader {
public:
    /// An empty text, or why this is not a replay that can be played. The bytes must outlive the
    /// reader.
    std::string open(std::span<const uint8_t> bytes);
    const std::string& program_version() const { return program_version_; }
    /// ROM images come as their references, see ROM_BY_REFERENCE.
    replay_chunk next();

private:
    ByteReader rest_{{}};
    std::string program_version_;
};
/// How many frames a file has that ends with these bytes; nothing when it was cut off.
std::optional<int64_t> replay_frames(std::span<const uint8_t> end_of_file);
/// The reference that the event has in the place of its ROM image; nothing when it has an image.
std::optional<replay_rom> rom_reference_of(const machine_event& event);
