#pragma once
/// The question what a video is compressed with.

#include "host/recording/video_codec.h"

#include <functional>
#include <optional>
#include <string>

/// Answers the question below in advance, for the rest of the run, with the name of a codec.
void answer_video_compression(const std::string& name);
/// Why that codec cannot be had for such pictures; empty when it can, and without an answer.
std::string video_compression_problem(const bitmap_header& header);
/// Lets the user choose a codec for such pictures; the choice is offered again the next time.
/// `done` gets nothing when cancelled, or when an answer in advance names no such codec.
void ui_choose_video_compression(const bitmap_header& header,
                                 std::function<void(std::optional<video_codec_kind>)> done);
