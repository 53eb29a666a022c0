#include "host/recording/video_codec.h"

#include <algorithm>
#include <cstring>

namespace {

class Uncompressed final : public VideoCodec {
public:
    std::optional<encoded_frame> encode(std::span<const uint8_t> picture) override {
        return encoded_frame{picture, true};
    }
};

constexpr uint32_t RUN_LENGTHS_8_BITS = 1; ///< `compression` of the bitmap header
constexpr uint8_t ESCAPE = 0;
constexpr uint8_t END_OF_ROW = 0;
constexpr uint8_t END_OF_PICTURE = 1;
constexpr uint8_t MOVE = 2;
constexpr size_t FEWEST_LITERALS = 3; ///< after an escape; smaller numbers are the codes above
constexpr size_t LONGEST = 255;
constexpr size_t RUN_WORTH_IT = 4;  ///< that ends a row of literals
constexpr size_t MOVE_WORTH_IT = 6; ///< unchanged pixels that cost no more than the move over them

class RunLengths final : public VideoCodec {
public:
    std::optional<encoded_frame> encode(std::span<const uint8_t> picture) override {
        const bool first = previous_.empty();
        encode_whole(picture);
        bool key_frame = true;
        if (!first && ++since_key_ < KEY_FRAME_INTERVAL) {
            encode_changes(picture);
            key_frame = changes_.size() >= whole_.size();
        }
        if (key_frame) since_key_ = 0;
        previous_.assign(picture.begin(), picture.end());
        return encoded_frame{key_frame ? whole_ : changes_, key_frame};
    }

private:
    size_t width() const { return size_t(format.header.width); }
    size_t height() const { return size_t(format.header.height); }

    static void add(std::vector<uint8_t>& code, size_t first, size_t second) {
        code.push_back(uint8_t(first));
        code.push_back(uint8_t(second));
    }

    static size_t run_at(std::span<const uint8_t> pixels) {
        size_t length = 1;
        while (length < pixels.size() && length < LONGEST && pixels[length] == pixels[0]) ++length;
        return length;
    }

    static void add_literals(std::vector<uint8_t>& code, std::span<const uint8_t> pixels) {
        if (pixels.size() < FEWEST_LITERALS) {
            for (const uint8_t pixel : pixels) add(code, 1, pixel);
            return;
        }
        add(code, ESCAPE, pixels.size());
        code.insert(code.end(), pixels.begin(), pixels.end());
        if (pixels.size() & 1) code.push_back(0);
    }

    static void add_pixels(std::vector<uint8_t>& code, std::span<const uint8_t> pixels) {
        size_t literals = 0;
        while (literals < pixels.size()) {
            const size_t run = run_at(pixels.subspan(literals));
            const bool runs = run >= (literals ? RUN_WORTH_IT : 2);
            if (!runs) literals += literals ? run : 1;
            if (literals && (runs || literals >= LONGEST)) {
                const size_t count = std::min(literals, LONGEST);
                add_literals(code, pixels.first(count));
                pixels = pixels.subspan(count);
                literals -= count;
            } else if (runs) {
                add(code, run, pixels[0]);
                pixels = pixels.subspan(run);
            }
        }
        add_literals(code, pixels);
    }

    /// Ends the data. Players would take data of exactly the size of the picture for an
    /// uncompressed one, so its length is made different.
    void finish(std::vector<uint8_t>& code) {
        add(code, ESCAPE, END_OF_PICTURE);
        if (code.size() == width() * height()) add(code, ESCAPE, END_OF_PICTURE);
    }

    void encode_whole(std::span<const uint8_t> picture) {
        whole_.clear();
        for (size_t row = 0; row < height(); ++row) {
            if (row) add(whole_, ESCAPE, END_OF_ROW);
            add_pixels(whole_, picture.subspan(row * width(), width()));
        }
        finish(whole_);
    }

    void move_to(size_t row, size_t column) {
        if (row > at_row_) {
            add(changes_, ESCAPE, END_OF_ROW);
            ++at_row_;
            at_column_ = 0;
        }
        while (at_row_ < row || at_column_ < column) {
            const size_t right = std::min(column - at_column_, LONGEST);
            const size_t up = std::min(row - at_row_, LONGEST);
            add(changes_, ESCAPE, MOVE);
            add(changes_, right, up);
            at_column_ += right;
            at_row_ += up;
        }
    }

    void encode_row_changes(size_t row, std::span<const uint8_t> now,
                            std::span<const uint8_t> before) {
        size_t at = 0;
        while (true) {
            while (at < now.size() && now[at] == before[at]) ++at;
            if (at == now.size()) return;
            size_t end = at + 1; // of the changed pixels and the short gaps between them
            for (size_t n = end; n < now.size() && n - end < MOVE_WORTH_IT; ++n) {
                if (now[n] != before[n]) end = n + 1;
            }
            move_to(row, at);
            add_pixels(changes_, now.subspan(at, end - at));
            at_column_ = at = end;
        }
    }

    void encode_changes(std::span<const uint8_t> picture) {
        changes_.clear();
        at_row_ = at_column_ = 0;
        for (size_t row = 0; row < height(); ++row) {
            const auto now = picture.subspan(row * width(), width());
            const auto before = std::span<const uint8_t>(previous_).subspan(row * width(), width());
            if (std::memcmp(now.data(), before.data(), width()) == 0) continue;
            encode_row_changes(row, now, before);
        }
        finish(changes_);
    }

    std::vector<uint8_t> previous_, whole_, changes_;
    int since_key_ = 0;
    size_t at_row_ = 0, at_column_ = 0; ///< of the decoder, in the changes
};

bool can_do_all(const bitmap_header&) { return true; }
bool has_8_bits(const bitmap_header& header) { return header.bits == 8; }

std::unique_ptr<VideoCodec> start_uncompressed(const avi_video_format& format) {
    auto codec = std::make_unique<Uncompressed>();
    codec->format = format;
    return codec;
}

std::unique_ptr<VideoCodec> start_run_lengths(const avi_video_format& format) {
    auto codec = std::make_unique<RunLengths>();
    codec->format = format;
    codec->format.handler = four_characters("mrle");
    codec->format.header.compression = RUN_LENGTHS_8_BITS;
    codec->format.header.image_size = uint32_t(format.header.width * format.header.height);
    return codec;
}

} // namespace

std::vector<video_codec_kind> video_codecs() {
    std::vector<video_codec_kind> kinds = {
        {"uncompressed", "Uncompressed", start_uncompressed, can_do_all},
        {"rle", "Run lengths (RLE), lossless", start_run_lengths, has_8_bits},
    };
    for (const video_codec_kind& kind : libav_codecs()) kinds.push_back(kind);
    return kinds;
}
