#pragma once
/// AVI files: pictures at AVI_FRAME_RATE and, beside them, 16-bit mono sound at 48000 Hz.
///
/// A file is a row of RIFF segments of at most a gigabyte each. The first is complete in itself,
/// with the old index at its end, for programs that know no others. Every segment ends with an
/// index chunk per stream, which the tables in the header list. The header's sizes and counts are
/// written anew every second: whatever ends the program, the file plays up to there.

#include "files/file_handle.h"
#include "host/recording/picture.h"

#include <array>
#include <span>
#include <string>

struct avi_video_format {
    uint32_t handler = 0;       ///< four characters, the first in the lowest byte; 0 = none
    bitmap_header header;       ///< height positive: the bottom row comes first
    std::vector<uint8_t> extra; ///< follows the header: the palette, or the codec's own data
};

constexpr uint32_t four_characters(const char (&text)[5]) {
    uint32_t code = 0;
    for (int n = 3; n >= 0; --n) code = code << 8 | uint8_t(text[n]);
    return code;
}

constexpr uint32_t AVI_FRAME_RATE = 50; ///< frames per second
constexpr uint64_t AVI_SEGMENT_BYTES = 1'000'000'000;

class AviWriter {
public:
    /// Starts the file, replacing what it held. False when that fails. `segment_bytes` is the size
    /// that no segment exceeds, unless a single frame does.
    bool open(FileHandle file, const avi_video_format& format, bool with_sound,
              uint64_t segment_bytes = AVI_SEGMENT_BYTES);
    /// Appends a picture with its sound, which is not read when the file has none. False when the
    /// disk is full; the file then ends with the frame before.
    bool write(std::span<const uint8_t> picture, bool key_frame, std::span<const uint8_t> sound);
    /// Completes the file, with `subject` as its description. When the disk is full, indexes are
    /// left out.
    void close(const std::string& subject);

    /// As they stand in the file: the format of a stream of pictures, that of the sound, and the
    /// contents of the list chunk with the description.
    static std::vector<uint8_t> picture_format(const avi_video_format& format);
    static std::vector<uint8_t> sound_format();
    static std::vector<uint8_t> information(const std::string& subject);

private:
    struct IndexEntry {
        uint64_t offset = 0; ///< of the chunk's header in the file
        uint32_t bytes = 0;
        bool key_frame = true;
    };
    /// Where the index chunk of a segment lies.
    struct IndexChunk {
        uint64_t offset = 0;
        uint32_t bytes = 0;
        uint32_t ticks = 0;
    };
    struct Stream {
        uint32_t chunk = 0; ///< name of its data chunks
        uint32_t index = 0; ///< and of its index chunks
        uint64_t ticks = 0; ///< of its time: frames or samples
        uint32_t segment_ticks = 0;
        uint32_t largest = 0;            ///< bytes of the largest chunk
        std::vector<IndexEntry> entries; ///< of this segment
        std::vector<IndexChunk> segments;
    };
    struct Bytes;

    std::span<Stream> streams() { return {streams_.data(), with_sound_ ? 2U : 1U}; }
    bool put(const Bytes& bytes); ///< at the end
    bool put_at(uint64_t offset, std::span<const uint8_t> bytes);
    bool cut(uint64_t end);
    bool put_chunks(std::span<const uint8_t> picture, std::span<const uint8_t> sound);
    uint64_t room_for_indexes(uint64_t frames) const;
    bool start_segment();
    bool end_segment();
    bool put_index_chunk(Stream& stream);
    bool put_old_index();
    bool write_sizes();
    void add_stream(Bytes& header, const Stream& stream) const;
    Bytes make_header() const;
    Bytes make_segment_header(uint64_t bytes) const;
    void note(Stream& stream, uint64_t offset, size_t bytes, uint32_t ticks, bool key_frame);

    FileHandle file_;
    avi_video_format format_;
    std::string subject_;
    bool with_sound_ = false;
    uint64_t segment_bytes_ = 0;
    uint64_t end_ = 0; ///< of what is written in full

    std::array<Stream, 2> streams_;
    bool in_first_ = true;
    bool has_old_index_ = false;
    uint64_t segment_start_ = 0; ///< of the present segment
    uint64_t list_start_ = 0;    ///< of its data list
    uint64_t list_end_ = 0;
    uint64_t first_list_end_ = 0; ///< the same of the first segment
    uint64_t first_end_ = 0;
    uint32_t first_frames_ = 0;
    uint32_t unsaved_frames_ = 0; ///< since the sizes were written
};
