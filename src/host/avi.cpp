#include "host/avi.h"

#include "cgenie/palette.h"
#include "core/pacing/pacing.h"
#include "host/dialogs/compression_dialog.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/shell.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <utility>

uint32_t s_dwVideoFrame = 0;
uint32_t s_dwSoundFrame = 0;

namespace {

constexpr uint32_t MESSAGE_INTERVAL = 100; ///< frames
constexpr int PALETTE_BITS = 8;            ///< per pixel
constexpr const char* SUBJECT = "Vesk's emulators";

AviWriter pfOutput;
std::string avi_path; ///< of the open file
std::unique_ptr<VideoCodec> s_psCodec;
const uint16_t* AVISoundBuffer = nullptr; ///< none when no sound is recorded

bitmap_header AVIBitmapHeader;
std::vector<uint8_t> AVIPalette;
std::vector<uint8_t> AVIFrameBuffer; ///< bottom row first
bool film_has_dimmed_colours = false;
bool canvas_fits = true; ///< at the last picture

/// Opens a file for writing without touching what is in it: the user may still cancel. Nothing for
/// what cannot be written anywhere but at its end.
FileHandle open_for_rewriting(const std::string& path) {
    FileHandle file = open_file(path, "r+b");
    if (!file) file = open_file(path, "wb");
    if (file && std::fseek(file.get(), 0, SEEK_END) != 0) file.reset();
    return file;
}

/// A film keeps the palette it began with. When lines have been dimmed since then, their colours
/// are missing in it, and they stay bright.
void brighten_dimmed_lines() {
    if (AVIBitmapHeader.bits != PALETTE_BITS) return;
    if (film_has_dimmed_colours || !palette_dims_lines()) return;
    for (uint8_t& index : AVIFrameBuffer) {
        if (index >= PALETTE_ENTRIES) index = uint8_t(index - PALETTE_ENTRIES);
    }
}

/// Removes the file of a capture that failed before anything was written.
void remove_when_empty(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error) &&
        std::filesystem::file_size(path, error) == 0) {
        std::filesystem::remove(path, error);
    }
}

/// The format of uncompressed pictures: bottom row first (a positive height), with the palette in
/// use.
avi_video_format raw_format() {
    avi_video_format format{0, AVIBitmapHeader, AVIPalette};
    format.header.height = -format.header.height;
    format.extra.resize(format.header.colours_used * PALETTE_ENTRY_BYTES);
    return format;
}

bool create_streams(FileHandle file, const std::optional<video_codec_kind>& kind, bool with_sound,
                    std::string& problem) {
    if (!kind) {
        problem = video_compression_problem(AVIBitmapHeader);
        return false;
    }
    s_psCodec = kind->start(raw_format());
    if (!s_psCodec) problem = std::string("the codec \"") + kind->name + "\" cannot be started";
    return s_psCodec && pfOutput.open(std::move(file), s_psCodec->format, with_sound);
}

int begin_capture(const std::string& path, FileHandle file,
                  const std::optional<video_codec_kind>& kind, const uint16_t* sound_buffer) {
    if (std::string problem;
        !create_streams(std::move(file), kind, sound_buffer != nullptr, problem)) {
        s_psCodec.reset();
        remove_when_empty(path);
        report({.text = "Could not create video stream!",
                .file = path,
                .reason = problem,
                .title = "Error"});
        return 0;
    }
    AVISoundBuffer = sound_buffer;
    if (AVISoundBuffer) sound_start_film();
    avi_path = path;
    canvas_fits = true;
    s_dwVideoFrame = s_dwSoundFrame = 0;
    StatusBarText("Streaming video to file: %s...", path.c_str());
    return 1;
}

void end_capture(const char* reason) {
    const std::string text = avi_path + ": " + reason + "; the video ends after " +
                             std::to_string(s_dwVideoFrame) + " frames.";
    Video_CloseOutput();
    g_bRecordingVideo = 0;
    check_menu_item(COMMAND_SAVE_VIDEO, false);
    report({.text = text});
}

bool canvas_has_shape_of_capture() {
    return canvas.header.width == AVIBitmapHeader.width &&
           canvas.header.height == AVIBitmapHeader.height &&
           canvas.header.bits == AVIBitmapHeader.bits &&
           canvas.pixels.size() == AVIFrameBuffer.size();
}

void take_canvas() {
    const auto rows = std::ptrdiff_t(canvas.height);
    const auto row_bytes = std::ptrdiff_t(AVIFrameBuffer.size()) / rows;
    for (std::ptrdiff_t row = 0; row < rows; ++row) {
        std::copy_n(canvas.pixels.end() - (row + 1) * row_bytes, row_bytes,
                    AVIFrameBuffer.begin() + row * row_bytes);
    }
}

void tell_that_picture_stands() {
    report(
        {.text = "The video repeats its last picture, since the screen has another size or depth.",
         .file = avi_path,
         .remedy = "It goes on when Giant screen and TV blur are as they were at its start.",
         .severity = Severity::warning});
}

} // namespace

int Video_CreateBitmap() {
    if (!host_has_canvas()) return 0;
    AVIBitmapHeader = bitmap_header();
    AVIBitmapHeader.width = canvas.header.width;
    AVIBitmapHeader.height = canvas.header.height;
    AVIBitmapHeader.planes = canvas.header.planes;
    AVIBitmapHeader.bits = canvas.header.bits;
    AVIBitmapHeader.colours_used = canvas.header.bits <= 8 ? 1U << canvas.header.bits : 1;
    film_has_dimmed_colours = palette_dims_lines();
    try {
        AVIPalette = canvas.palette;
        AVIFrameBuffer.assign(canvas.pixels.size(), 0);
    } catch (const std::exception&) {
        Video_DestroyBitmap();
        return 0;
    }
    return 1;
}

void Video_DestroyBitmap() {
    AVIPalette = {};
    AVIFrameBuffer = {};
}

void Video_OpenOutput(const std::string& path, const uint16_t* sound_buffer,
                      const std::function<void(int)>& done) {
    if (pfOutput.is_open()) Video_CloseOutput();
    const auto file = std::make_shared<FileHandle>(open_for_rewriting(path));
    if (!*file) {
        report({.text = "Could not open file stream!",
                .file = path,
                .reason = std::strerror(errno),
                .title = path});
        return done(0);
    }
    ui_choose_video_compression(AVIBitmapHeader, [=](const std::optional<video_codec_kind>& kind) {
        done(begin_capture(path, std::move(*file), kind, sound_buffer));
    });
}

void Video_CloseOutput() {
    pfOutput.close(SUBJECT);
    s_psCodec.reset();
    Video_DestroyBitmap();
    AVISoundBuffer = nullptr;
    sound_end_film();
    StatusBarText("Video stream closed. %u frames written.", s_dwVideoFrame);
}

void Video_SaveFrame(const uint8_t* frame, uint32_t frame_bytes, const uint8_t* sound,
                     uint32_t sound_bytes) {
    if (!pfOutput.is_open()) return;
    const auto encoded = s_psCodec->encode({frame, frame_bytes});
    if (!encoded) return end_capture("the picture cannot be compressed");
    if (!pfOutput.write(encoded->data, encoded->key_frame, {sound, sound_bytes})) {
        return end_capture("cannot be written");
    }
    ++s_dwVideoFrame;
    if (AVISoundBuffer) ++s_dwSoundFrame;
    if (s_dwVideoFrame % MESSAGE_INTERVAL != 0) return;
    StatusBarText("Streaming video... %u frames written so far. Alt+I to stop.", s_dwVideoFrame);
}

void Video_ConvertBitmap() {
    if (!pfOutput.is_open()) return;
    const bool fitted = std::exchange(canvas_fits, canvas_has_shape_of_capture());
    if (canvas_fits) {
        take_canvas();
        brighten_dimmed_lines();
    } else if (fitted) {
        tell_that_picture_stands();
    }
    const uint16_t* sound = AVISoundBuffer ? sound_take_film_fragment() : sound_get_buffer_ptr();
    Video_SaveFrame(AVIFrameBuffer.data(), uint32_t(AVIFrameBuffer.size()),
                    reinterpret_cast<const uint8_t*>(sound), FRAGMENT_BYTES);
}

void host_capture_frame() { Video_ConvertBitmap(); }
