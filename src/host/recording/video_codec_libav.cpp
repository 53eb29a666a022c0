#include "host/recording/video_codec.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <string>

namespace {

/// The libraries' functions. Loading the libraries takes longer than the rest of the program's
/// start, so it waits for a film.
struct Libav {
    decltype(&avcodec_find_encoder) find_encoder = nullptr;
    decltype(&avcodec_alloc_context3) alloc_context = nullptr;
    decltype(&avcodec_free_context) free_context = nullptr;
    decltype(&avcodec_open2) open = nullptr;
    decltype(&avcodec_send_frame) send_frame = nullptr;
    decltype(&avcodec_receive_packet) receive_packet = nullptr;
    decltype(&av_packet_alloc) packet_alloc = nullptr;
    decltype(&av_packet_free) packet_free = nullptr;
    decltype(&av_packet_unref) packet_unref = nullptr;
    decltype(&av_frame_alloc) frame_alloc = nullptr;
    decltype(&av_frame_free) frame_free = nullptr;
    decltype(&av_frame_get_buffer) frame_get_buffer = nullptr;
    decltype(&av_frame_make_writable) frame_make_writable = nullptr;
    decltype(&av_log_set_level) log_set_level = nullptr;
    decltype(&sws_getContext) get_scaler = nullptr;
    decltype(&sws_freeContext) free_scaler = nullptr;
    decltype(&sws_scale) scale = nullptr;
};

/// A shared library of the version that the headers describe; it stays loaded.
class SharedLibrary {
public:
    SharedLibrary(const char* name, int version)
        : handle_(dlopen(("lib" + std::string(name) + ".so." + std::to_string(version)).c_str(),
                         RTLD_NOW | RTLD_LOCAL)) {}

    template <typename Function>
    bool find(const char* name, Function*& function) const {
        function = handle_ ? reinterpret_cast<Function*>(dlsym(handle_, name)) : nullptr;
        return function != nullptr;
    }

private:
    void* handle_;
};

bool load(Libav& found) {
    const SharedLibrary util("avutil", LIBAVUTIL_VERSION_MAJOR);
    const SharedLibrary codec("avcodec", LIBAVCODEC_VERSION_MAJOR);
    const SharedLibrary scaling("swscale", LIBSWSCALE_VERSION_MAJOR);
    return codec.find("avcodec_find_encoder", found.find_encoder) &&
           codec.find("avcodec_alloc_context3", found.alloc_context) &&
           codec.find("avcodec_free_context", found.free_context) &&
           codec.find("avcodec_open2", found.open) &&
           codec.find("avcodec_send_frame", found.send_frame) &&
           codec.find("avcodec_receive_packet", found.receive_packet) &&
           codec.find("av_packet_alloc", found.packet_alloc) &&
           codec.find("av_packet_free", found.packet_free) &&
           codec.find("av_packet_unref", found.packet_unref) &&
           util.find("av_frame_alloc", found.frame_alloc) &&
           util.find("av_frame_free", found.frame_free) &&
           util.find("av_frame_get_buffer", found.frame_get_buffer) &&
           util.find("av_frame_make_writable", found.frame_make_writable) &&
           util.find("av_log_set_level", found.log_set_level) &&
           scaling.find("sws_getContext", found.get_scaler) &&
           scaling.find("sws_freeContext", found.free_scaler) &&
           scaling.find("sws_scale", found.scale);
}

Libav libav; ///< complete before any of it is called

constexpr int SLICES = 4;        ///< that FFV1 works on at the same time
constexpr int LOSSY_QUALITY = 3; ///< quantiser, 1 is best
constexpr int ZLIB_LEVEL = 6;
constexpr uint16_t STREAM_BITS = 24; ///< per pixel, what a decoder is expected to give

/// How a codec is driven.
struct Setup {
    AVCodecID id;
    uint32_t four_characters;
    AVPixelFormat colours; ///< what pictures are handed over as
    bool palette;          ///< as indices into one; else every pixel has its colour
};

struct Releaser {
    void operator()(AVCodecContext* context) const { libav.free_context(&context); }
    void operator()(AVFrame* frame) const { libav.frame_free(&frame); }
    void operator()(AVPacket* packet) const { libav.packet_free(&packet); }
    void operator()(SwsContext* scaler) const { libav.free_scaler(scaler); }
};
using Context = std::unique_ptr<AVCodecContext, Releaser>;
using Frame = std::unique_ptr<AVFrame, Releaser>;
using Packet = std::unique_ptr<AVPacket, Releaser>;
using Scaler = std::unique_ptr<SwsContext, Releaser>;

Frame make_frame(const bitmap_header& header, AVPixelFormat colours) {
    Frame frame(libav.frame_alloc());
    if (!frame) return {};
    frame->format = colours;
    frame->width = header.width;
    frame->height = header.height;
    if (libav.frame_get_buffer(frame.get(), 0) < 0) return {};
    return frame;
}

class LibavCodec final : public VideoCodec {
public:
    bool start(const Setup& setup, const avi_video_format& raw) {
        picture_ = raw;
        format.header = raw.header;
        format.header.bits = STREAM_BITS;
        format.header.colours_used = 0;
        format.header.compression = format.handler = setup.four_characters;
        format.header.image_size = uint32_t(raw.header.width * raw.header.height * 3);
        const bool paletted = setup.palette && raw.header.bits <= 8;
        const AVPixelFormat source = paletted ? AV_PIX_FMT_PAL8 : AV_PIX_FMT_BGR0;
        const AVPixelFormat target = paletted ? source : setup.colours;
        canvas_frame_ = make_frame(raw.header, source);
        packet_.reset(libav.packet_alloc());
        if (!canvas_frame_ || !packet_ || !open_codec(setup, target)) return false;
        if (paletted) {
            set_palette(reinterpret_cast<uint32_t*>(canvas_frame_->data[1]));
        } else {
            set_palette(palette_.data());
        }
        if (target == source) return true;
        coded_frame_ = make_frame(raw.header, target);
        scaler_.reset(libav.get_scaler(raw.header.width, raw.header.height, source,
                                       raw.header.width, raw.header.height, target,
                                       SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
        return coded_frame_ && scaler_;
    }

    std::optional<encoded_frame> encode(std::span<const uint8_t> picture) override {
        if (libav.frame_make_writable(canvas_frame_.get()) < 0) return {};
        const size_t rows = size_t(picture_.header.height);
        const size_t row_bytes = picture.size() / rows;
        for (size_t row = 0; row < rows; ++row) {
            uint8_t* target = canvas_frame_->data[0] +
                              std::ptrdiff_t(rows - 1 - row) * canvas_frame_->linesize[0];
            convert_row(picture.subspan(row * row_bytes, row_bytes), target);
        }
        AVFrame* frame = canvas_frame_.get();
        if (coded_frame_) {
            frame = coded_frame_.get();
            if (libav.frame_make_writable(frame) < 0) return {};
            libav.scale(scaler_.get(), canvas_frame_->data, canvas_frame_->linesize, 0, int(rows),
                        frame->data, frame->linesize);
        }
        frame->pts = frames_++;
        libav.packet_unref(packet_.get());
        if (libav.send_frame(context_.get(), frame) < 0) return {};
        // None of these codecs holds frames back.
        if (libav.receive_packet(context_.get(), packet_.get()) < 0) return {};
        return encoded_frame{{packet_->data, size_t(packet_->size)},
                             (packet_->flags & AV_PKT_FLAG_KEY) != 0};
    }

private:
    bool open_codec(const Setup& setup, AVPixelFormat colours) {
        const AVCodec* codec = libav.find_encoder(setup.id);
        context_.reset(codec ? libav.alloc_context(codec) : nullptr);
        if (!context_) return false;
        context_->width = picture_.header.width;
        context_->height = picture_.header.height;
        context_->pix_fmt = colours;
        context_->time_base = {1, AVI_FRAME_RATE};
        context_->framerate = {AVI_FRAME_RATE, 1};
        context_->codec_tag = setup.four_characters;
        context_->gop_size = context_->keyint_min = KEY_FRAME_INTERVAL;
        context_->flags |= AV_CODEC_FLAG_QSCALE;
        context_->global_quality = LOSSY_QUALITY * FF_QP2LAMBDA;
        if (setup.id == AV_CODEC_ID_ZMBV) context_->compression_level = ZLIB_LEVEL;
        if (setup.id == AV_CODEC_ID_FFV1) {
            context_->gop_size = 1;
            context_->level = 3; // the version with slices
            context_->slices = context_->thread_count = SLICES;
            context_->thread_type = FF_THREAD_SLICE;
        }
        if (libav.open(context_.get(), codec, nullptr) < 0) return false;
        format.extra.assign(context_->extradata, context_->extradata + context_->extradata_size);
        return true;
    }

    void set_palette(uint32_t* colours) const {
        for (size_t n = 0; n < picture_.extra.size() / 4 && picture_.header.bits <= 8; ++n) {
            const uint8_t* entry = &picture_.extra[n * 4];
            colours[n] = 0xFF000000 | uint32_t(entry[2]) << 16 | uint32_t(entry[1]) << 8 | entry[0];
        }
    }

    void convert_row(std::span<const uint8_t> row, uint8_t* target) const {
        const unsigned bits = picture_.header.bits;
        const bool paletted = canvas_frame_->format == AV_PIX_FMT_PAL8;
        if (bits == 32 || (bits == 8 && paletted)) {
            std::copy(row.begin(), row.end(), target);
            return;
        }
        const unsigned mask = (1U << bits) - 1;
        for (const uint8_t byte : row) {
            for (unsigned shift = 8; shift != 0;) {
                shift -= bits;
                const unsigned index = byte >> shift & mask;
                if (paletted) {
                    *target++ = uint8_t(index);
                } else {
                    std::memcpy(target, &palette_[index], 4);
                    target += 4;
                }
            }
        }
    }

    avi_video_format picture_;
    std::array<uint32_t, 256> palette_ = {};
    Context context_;
    Frame canvas_frame_, coded_frame_; ///< the second only where colours are converted
    Packet packet_;
    Scaler scaler_;
    int64_t frames_ = 0;
};

std::unique_ptr<VideoCodec> start(const Setup& setup, const avi_video_format& format) {
    libav.log_set_level(AV_LOG_ERROR);
    auto codec = std::make_unique<LibavCodec>();
    if (!codec->start(setup, format)) return {};
    return codec;
}

constexpr Setup ZMBV = {AV_CODEC_ID_ZMBV, four_characters("ZMBV"), AV_PIX_FMT_PAL8, true};
constexpr Setup FFV1 = {AV_CODEC_ID_FFV1, four_characters("FFV1"), AV_PIX_FMT_BGR0, false};
constexpr Setup MPEG4 = {AV_CODEC_ID_MPEG4, four_characters("FMP4"), AV_PIX_FMT_YUV420P, false};
constexpr Setup MJPEG = {AV_CODEC_ID_MJPEG, four_characters("MJPG"), AV_PIX_FMT_YUVJ444P, false};

bool can_do_all(const bitmap_header&) { return true; }
/// ZMBV takes seconds for a few true-colour pictures with blur in them.
bool has_palette(const bitmap_header& header) { return header.bits <= 8; }

template <const Setup& setup>
std::unique_ptr<VideoCodec> start_with(const avi_video_format& format) {
    return start(setup, format);
}

} // namespace

std::vector<video_codec_kind> libav_codecs() {
    const struct {
        AVCodecID id;
        video_codec_kind kind;
    } codecs[] = {
        {ZMBV.id, {"zmbv", "Screen video (ZMBV), lossless", start_with<ZMBV>, has_palette}},
        {FFV1.id, {"ffv1", "FFV1, lossless", start_with<FFV1>, can_do_all}},
        {MPEG4.id, {"mpeg4", "MPEG-4, small, lossy", start_with<MPEG4>, can_do_all}},
        {MJPEG.id, {"mjpeg", "Motion JPEG, lossy", start_with<MJPEG>, can_do_all}},
    };
    static const bool loaded = load(libav);
    if (!loaded) return {};
    std::vector<video_codec_kind> kinds;
    for (const auto& [id, kind] : codecs) {
        if (libav.find_encoder(id)) kinds.push_back(kind);
    }
    return kinds;
}
