#pragma once
/// The question which codec compresses a video.

#include "host/recording/video_codec.h"

#include <functional>
#include <optional>
#include <string>

/// Answers the question below in advance, for the rest of the run, with the name of a codec. An
/// empty name takes the answer back.
void answer_video_compression(const std::string& name);
bool video_compression_is_answered(); ///< in advance
/// Why the codec answered in advance cannot be used for such pictures; empty when it can, and when
/// there is no answer in advance.
std::string video_compression_problem(const bitmap_header& header);
/// Lets the user choose a codec for such pictures; the choice is offered again the next time.
/// `done` gets nothing when cancelled, or when an answer in advance names no such codec.
void ui_choose_video_compression(const bitmap_header& header,
                                 std::function<void(std::optional<video_codec_kind>)> done);
