#include "host/recording/avi_writer.h"

#include "files/system_file.h"

#include <algorithm>

namespace {

constexpr uint32_t SAMPLE_RATE = 48000;
constexpr uint32_t SAMPLE_BYTES = 2;
constexpr uint32_t SOUND_BUFFER = SAMPLE_RATE * SAMPLE_BYTES;
constexpr uint16_t EXTRA_FORMAT = 256; ///< announced after the sound format; nothing follows
constexpr uint32_t SAVE_INTERVAL = 50; ///< frames between two writings of the sizes
constexpr size_t MOST_SEGMENTS = 256;
constexpr size_t HEADER_MULTIPLE = 2048; ///< the data list starts at a multiple of this
constexpr size_t INFORMATION_ROOM = 64;

constexpr uint64_t CHUNK_HEADER = 8;
constexpr uint64_t LIST_HEADER = 12;
constexpr uint64_t SEGMENT_HEADER = 2 * LIST_HEADER;
constexpr uint64_t OLD_INDEX_ENTRY = 16;
constexpr uint64_t INDEX_ENTRY = 8;
constexpr uint64_t INDEX_HEADER = 32;

constexpr uint32_t FILE_HAS_INDEX = 0x10;
constexpr uint32_t FILE_IS_INTERLEAVED = 0x100;
constexpr uint32_t FILE_TRUST_CHUNKS = 0x800; ///< the index tells which frames are key frames
constexpr uint32_t OLD_INDEX_KEY_FRAME = 0x10;
constexpr uint32_t INDEX_NO_KEY_FRAME = 0x80000000;
constexpr uint8_t INDEX_OF_INDEXES = 0;
constexpr uint8_t INDEX_OF_CHUNKS = 1;
constexpr uint16_t PCM = 1;

constexpr uint64_t even(uint64_t bytes) { return bytes + (bytes & 1); }

} // namespace

/// Little-endian data in the making.
struct AviWriter::Bytes : std::vector<uint8_t> {
    void number(uint64_t value, size_t bytes) {
        for (; bytes; --bytes, value >>= 8) push_back(uint8_t(value));
    }
    void put16(uint32_t value) { number(value, 2); }
    void put32(uint64_t value) { number(value, 4); }
    void put64(uint64_t value) { number(value, 8); }
    void name(const char (&text)[5]) { put32(four_characters(text)); }
    void text(const std::string& words) { insert(end(), words.begin(), words.end()); }
    /// Starts a chunk or list; returns where its size goes.
    size_t start(const char (&text)[5]) {
        name(text);
        put32(0);
        return size();
    }
    void finish(size_t content) {
        const uint64_t bytes = size() - content;
        for (size_t n = 0; n < 4; ++n) at(content - 4 + n) = uint8_t(bytes >> (8 * n));
        resize(even(size()));
    }
    /// Fills up to `length` with a JUNK chunk, which players skip.
    void fill(size_t length) {
        const size_t content = start("JUNK");
        resize(length);
        finish(content);
    }
};

bool AviWriter::put_at(uint64_t offset, std::span<const uint8_t> bytes) {
    return write_at(file_.get(), offset, bytes) == bytes.size();
}

/// Cuts the file at `end`: a full disk may have taken a part of what was written last.
bool AviWriter::cut(uint64_t end) {
    end_ = end;
    return set_length(file_.get(), end);
}

bool AviWriter::put(const Bytes& bytes) {
    if (!put_at(end_, bytes)) return false;
    end_ += bytes.size();
    return true;
}

std::vector<uint8_t> AviWriter::picture_format(const avi_video_format& format) {
    Bytes bytes;
    const bitmap_header& picture = format.header;
    bytes.put32(picture.size);
    bytes.put32(uint32_t(picture.width));
    bytes.put32(uint32_t(picture.height));
    bytes.put16(picture.planes);
    bytes.put16(picture.bits);
    bytes.put32(picture.compression);
    bytes.put32(picture.image_size);
    bytes.put64(0); // pixels per metre
    bytes.put32(picture.colours_used);
    bytes.put32(picture.colours_important);
    bytes.insert(bytes.end(), format.extra.begin(), format.extra.end());
    return bytes;
}

std::vector<uint8_t> AviWriter::sound_format() {
    Bytes bytes;
    bytes.put16(PCM);
    bytes.put16(1); // channels
    bytes.put32(SAMPLE_RATE);
    bytes.put32(SOUND_BUFFER);
    bytes.put16(SAMPLE_BYTES);
    bytes.put16(8 * SAMPLE_BYTES);
    bytes.put16(EXTRA_FORMAT);
    return bytes;
}

std::vector<uint8_t> AviWriter::information(const std::string& subject) {
    Bytes bytes;
    bytes.name("INFO");
    bytes.name("ISBJ");
    bytes.put32(subject.size() + 1);
    bytes.text(subject);
    bytes.push_back(0);
    return bytes;
}

void AviWriter::add_stream(Bytes& header, const Stream& stream) const {
    const bool sound = &stream != streams_.data();
    const size_t list = header.start("LIST");
    header.name("strl");
    size_t content = header.start("strh");
    header.put32(sound ? four_characters("auds") : four_characters("vids"));
    header.put32(sound ? 0 : format_.handler);
    header.put32(0); // flags
    header.put32(0); // priority, language
    header.put32(0); // initial frames
    header.put32(1);
    header.put32(sound ? SAMPLE_RATE : AVI_FRAME_RATE);
    header.put32(0); // start
    header.put32(stream.ticks);
    header.put32(sound ? SOUND_BUFFER : stream.largest);
    header.put32(~0U); // quality: the default
    header.put32(0);   // sample size
    header.put32(0);   // left, top
    header.put16(sound ? 0 : uint32_t(format_.header.width));
    header.put16(sound ? 0 : uint32_t(format_.header.height));
    header.finish(content);
    content = header.start("strf");
    const std::vector<uint8_t> format = sound ? sound_format() : picture_format(format_);
    header.insert(header.end(), format.begin(), format.end());
    header.finish(content);
    // An empty table would hide the data from programs that believe it.
    content = stream.segments.empty() ? header.start("JUNK") : header.start("indx");
    const size_t table_end = header.size() + 24 + MOST_SEGMENTS * 16;
    header.put16(4); // double words per entry
    header.number(0, 1);
    header.number(INDEX_OF_INDEXES, 1);
    header.put32(stream.segments.size());
    header.put32(stream.chunk);
    header.number(0, 12);
    for (const IndexChunk& segment : stream.segments) {
        header.put64(segment.offset);
        header.put32(segment.bytes);
        header.put32(segment.ticks);
    }
    header.resize(table_end);
    header.finish(content);
    header.finish(list);
}

AviWriter::Bytes AviWriter::make_header() const {
    const Stream& video = streams_[0];
    Bytes header;
    header.name("RIFF");
    header.put32(first_end_ - CHUNK_HEADER);
    header.name("AVI ");
    const size_t list = header.start("LIST");
    header.name("hdrl");
    size_t content = header.start("avih");
    header.put32(1'000'000 / AVI_FRAME_RATE);
    header.put32(std::min<uint64_t>(uint64_t(video.largest) * AVI_FRAME_RATE + SOUND_BUFFER, ~0U));
    header.put32(0); // padding
    header.put32(FILE_IS_INTERLEAVED | FILE_TRUST_CHUNKS | (has_old_index_ ? FILE_HAS_INDEX : 0));
    header.put32(first_frames_);
    header.put32(0); // initial frames
    header.put32(with_sound_ ? 2 : 1);
    header.put32(video.largest);
    header.put32(uint32_t(format_.header.width));
    header.put32(uint32_t(format_.header.height));
    header.number(0, 16);
    header.finish(content);
    add_stream(header, video);
    if (with_sound_) add_stream(header, streams_[1]);
    const size_t extended = header.start("LIST");
    header.name("odml");
    content = header.start("dmlh");
    header.put32(video.ticks);
    header.number(0, 244);
    header.finish(content);
    header.finish(extended);
    header.finish(list);
    const size_t length = (header.size() + INFORMATION_ROOM + LIST_HEADER + HEADER_MULTIPLE) /
                          HEADER_MULTIPLE * HEADER_MULTIPLE;
    if (!subject_.empty()) {
        const size_t list_of_texts = header.start("LIST");
        const std::vector<uint8_t> texts = information(subject_);
        header.insert(header.end(), texts.begin(), texts.end());
        header.finish(list_of_texts);
    }
    header.fill(length - LIST_HEADER);
    header.name("LIST");
    header.put32(first_list_end_ - (length - LIST_HEADER) - CHUNK_HEADER);
    header.name("movi");
    return header;
}

bool AviWriter::open(FileHandle file, const avi_video_format& format, bool with_sound,
                     uint64_t segment_bytes) {
    *this = AviWriter();
    file_ = std::move(file);
    format_ = format;
    with_sound_ = with_sound;
    segment_bytes_ = segment_bytes;
    streams_[0].chunk =
        format.header.compression ? four_characters("00dc") : four_characters("00db");
    streams_[0].index = four_characters("ix00");
    streams_[1].chunk = four_characters("01wb");
    streams_[1].index = four_characters("ix01");
    end_ = make_header().size();
    list_start_ = end_ - LIST_HEADER;
    if (set_length(file_.get(), 0) && write_sizes()) return true;
    file_.reset();
    return false;
}

bool AviWriter::write_sizes() {
    unsaved_frames_ = 0;
    list_end_ = std::max(list_end_, list_start_);
    if (in_first_) {
        first_list_end_ = has_old_index_ ? list_end_ : end_;
        first_end_ = end_;
        first_frames_ = uint32_t(streams_[0].ticks);
    } else if (!put_at(segment_start_, make_segment_header(end_ - segment_start_))) {
        return false;
    }
    return put_at(0, make_header());
}

AviWriter::Bytes AviWriter::make_segment_header(uint64_t bytes) const {
    Bytes header;
    header.name("RIFF");
    header.put32(bytes - CHUNK_HEADER);
    header.name("AVIX");
    header.name("LIST");
    header.put32(bytes - LIST_HEADER - CHUNK_HEADER);
    header.name("movi");
    return header;
}

bool AviWriter::start_segment() {
    const uint64_t start = end_;
    if (streams_[0].segments.size() >= MOST_SEGMENTS) return false;
    if (!put(make_segment_header(SEGMENT_HEADER))) return cut(start), false;
    in_first_ = false;
    segment_start_ = start;
    list_start_ = start + LIST_HEADER;
    return true;
}

uint64_t AviWriter::room_for_indexes(uint64_t frames) const {
    const uint64_t count = with_sound_ ? 2 : 1;
    const uint64_t entry = INDEX_ENTRY + (in_first_ ? OLD_INDEX_ENTRY : 0);
    return count * (INDEX_HEADER + frames * entry) + CHUNK_HEADER;
}

bool AviWriter::put_index_chunk(Stream& stream) {
    Bytes index;
    index.put32(stream.index);
    index.put32(INDEX_HEADER - CHUNK_HEADER + INDEX_ENTRY * stream.entries.size());
    index.put16(2); // double words per entry
    index.number(0, 1);
    index.number(INDEX_OF_CHUNKS, 1);
    index.put32(stream.entries.size());
    index.put32(stream.chunk);
    index.put64(list_start_);
    index.put32(0);
    for (const IndexEntry& entry : stream.entries) {
        index.put32(entry.offset + CHUNK_HEADER - list_start_);
        index.put32(entry.bytes | (entry.key_frame ? 0 : INDEX_NO_KEY_FRAME));
    }
    stream.segments.push_back({end_, uint32_t(index.size()), stream.segment_ticks});
    return put(index);
}

bool AviWriter::put_old_index() {
    Bytes index;
    const size_t content = index.start("idx1");
    for (size_t n = 0; n < streams_[0].entries.size(); ++n) {
        for (const Stream& stream : streams()) {
            const IndexEntry& entry = stream.entries[n];
            index.put32(stream.chunk);
            index.put32(entry.key_frame ? OLD_INDEX_KEY_FRAME : 0);
            index.put32(entry.offset - list_start_ - CHUNK_HEADER);
            index.put32(entry.bytes);
        }
    }
    index.finish(content);
    has_old_index_ = put(index);
    return has_old_index_;
}

/// When there is no room for the indexes, the segment stays without, and plays in the order of its
/// data.
bool AviWriter::end_segment() {
    if (streams_[0].entries.empty()) return write_sizes();
    const uint64_t data_end = end_;
    bool done = true;
    for (Stream& stream : streams()) done = done && put_index_chunk(stream);
    list_end_ = end_;
    if (in_first_) done = done && put_old_index();
    if (!done) {
        cut(data_end);
        for (Stream& stream : streams()) {
            while (!stream.segments.empty() && stream.segments.back().offset >= end_) {
                stream.segments.pop_back();
            }
        }
    }
    for (Stream& stream : streams()) {
        stream.entries.clear();
        stream.segment_ticks = 0;
    }
    return write_sizes() && done;
}

void AviWriter::note(Stream& stream, uint64_t offset, size_t bytes, uint32_t ticks,
                     bool key_frame) {
    stream.entries.push_back({offset, uint32_t(bytes), key_frame});
    stream.largest = std::max(stream.largest, uint32_t(bytes));
    stream.ticks += ticks;
    stream.segment_ticks += ticks;
}

bool AviWriter::put_chunks(std::span<const uint8_t> picture, std::span<const uint8_t> sound) {
    Bytes before, after;
    before.put32(streams_[0].chunk);
    before.put32(picture.size());
    if (picture.size() & 1) after.push_back(0);
    if (with_sound_) {
        after.put32(streams_[1].chunk);
        after.put32(sound.size());
        after.insert(after.end(), sound.begin(), sound.end());
        if (sound.size() & 1) after.push_back(0);
    }
    const uint64_t start = end_;
    if (put(before) && put_at(end_, picture)) {
        end_ += picture.size();
        if (put(after)) return true;
    }
    return cut(start), false;
}

bool AviWriter::write(std::span<const uint8_t> picture, bool key_frame,
                      std::span<const uint8_t> sound) {
    const size_t frames = streams_[0].entries.size();
    const uint64_t bytes =
        CHUNK_HEADER + even(picture.size()) + (with_sound_ ? CHUNK_HEADER + even(sound.size()) : 0);
    const uint64_t filled = end_ - segment_start_ + bytes + room_for_indexes(frames + 1);
    if (frames != 0 && filled > segment_bytes_ && !(end_segment() && start_segment())) return false;
    const uint64_t offset = end_;
    if (!put_chunks(picture, sound)) return false;
    note(streams_[0], offset, picture.size(), 1, key_frame);
    if (with_sound_) {
        const uint64_t sound_offset = offset + CHUNK_HEADER + even(picture.size());
        note(streams_[1], sound_offset, sound.size(), uint32_t(sound.size() / SAMPLE_BYTES), true);
    }
    return ++unsaved_frames_ < SAVE_INTERVAL || write_sizes();
}

void AviWriter::close(const std::string& subject) {
    if (!file_) return;
    subject_ = subject.substr(0, INFORMATION_ROOM / 2);
    end_segment();
    *this = AviWriter();
}
