#pragma once
/// What a video can be compressed with: nothing, run lengths, and the codecs of libavcodec where it
/// is installed.

#include "host/recording/avi_writer.h"

#include <memory>
#include <optional>

struct encoded_frame {
    std::span<const uint8_t> data; ///< stands until the next frame is encoded
    bool key_frame = true;         ///< can be decoded without the frames before
};

/// A codec at work on the pictures of one video.
struct VideoCodec {
    virtual ~VideoCodec() = default;
    /// `picture`: the bottom row first, rows of width x bits / 8 bytes. Nothing when the codec
    /// fails.
    virtual std::optional<encoded_frame> encode(std::span<const uint8_t> picture) = 0;

    avi_video_format format; ///< of the stream
};

struct video_codec_kind {
    const char* name;  ///< in settings
    const char* title; ///< for the user
    /// Starts the codec for pictures of the format, which is that of uncompressed ones; nothing
    /// when it cannot do them.
    std::unique_ptr<VideoCodec> (*start)(const avi_video_format& format);
    bool (*can_do)(const bitmap_header& header);
};

constexpr int KEY_FRAME_INTERVAL = 50; ///< frames from one key frame to the next, at most

/// All codecs; uncompressed comes first.
std::vector<video_codec_kind> video_codecs();
/// Those of libavcodec, which the first call loads; none where it is not installed, and in a
/// program that was built without it.
std::vector<video_codec_kind> libav_codecs();
