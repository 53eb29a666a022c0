#include "host/avi.h"

#include "cgenie/palette.h"
#include "core/pacing/pacing.h"
#include "host/display.h"
#include "host/downloads.h"
#include "host/film_file.h"
#include "host/menu.h"
#include "host/shell.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <exception>
#include <utility>

uint32_t s_dwVideoFrame = 0;
uint32_t s_dwSoundFrame = 0;

namespace {

constexpr uint32_t MESSAGE_INTERVAL = 100; ///< frames
constexpr int PALETTE_BITS = 8;            ///< per pixel
constexpr int COLOUR_BITS = 32;

std::unique_ptr<FilmFile> pfOutput;       ///< none while no capture runs
std::string avi_path;                     ///< of the open file
const uint16_t* AVISoundBuffer = nullptr; ///< none when no sound is recorded

bitmap_header AVIBitmapHeader;
std::vector<uint8_t> AVIPalette;
std::vector<uint8_t> AVIFrameBuffer; ///< bottom row first
bool film_has_dimmed_colours = false;
bool canvas_fits = true; ///< at the last picture

/// A film keeps the palette it began with. When lines have been dimmed since then, their colours
/// are missing in it, and they stay bright.
void brighten_dimmed_lines() {
    if (AVIBitmapHeader.bits != PALETTE_BITS) return;
    if (film_has_dimmed_colours || !palette_dims_lines()) return;
    for (uint8_t& index : AVIFrameBuffer) {
        if (index >= PALETTE_ENTRIES) index = uint8_t(index - PALETTE_ENTRIES);
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

int begin_capture(const std::string& path, std::unique_ptr<FilmFile> film,
                  const uint16_t* sound_buffer) {
    pfOutput = std::move(film);
    if (!pfOutput) return 0;
    AVISoundBuffer = pfOutput->has_sound() ? sound_buffer : nullptr;
    if (AVISoundBuffer) sound_start_film();
    avi_path = path;
    canvas_fits = true;
    s_dwVideoFrame = s_dwSoundFrame = 0;
    StatusBarText("Streaming video to file: %s...", path.c_str());
    return 1;
}

void end_capture(const std::string& reason) {
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
    if (AVIBitmapHeader.bits != COLOUR_BITS) return;
    // Players take the fourth byte of a pixel as its opacity; the canvas leaves it at 0.
    for (size_t n = 3; n < AVIFrameBuffer.size(); n += 4) AVIFrameBuffer[n] = 0xFF;
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
    if (pfOutput) Video_CloseOutput();
    begin_film(path, raw_format(), sound_buffer != nullptr, [=](std::unique_ptr<FilmFile> film) {
        done(begin_capture(path, std::move(film), sound_buffer));
    });
}

void Video_CloseOutput() {
    const bool ran = pfOutput != nullptr;
    if (ran) pfOutput->close();
    pfOutput.reset();
    if (ran) file_is_complete(avi_path);
    Video_DestroyBitmap();
    AVISoundBuffer = nullptr;
    sound_end_film();
    StatusBarText("Video stream closed. %u frames written.", s_dwVideoFrame);
}

void Video_SaveFrame(const uint8_t* frame, uint32_t frame_bytes, const uint8_t* sound,
                     uint32_t sound_bytes) {
    if (!pfOutput) return;
    const std::string problem = pfOutput->write({frame, frame_bytes}, {sound, sound_bytes});
    if (!problem.empty()) return end_capture(problem);
    ++s_dwVideoFrame;
    if (AVISoundBuffer) ++s_dwSoundFrame;
    if (s_dwVideoFrame % MESSAGE_INTERVAL != 0) return;
    StatusBarText("Streaming video... %u frames written so far. Alt+I to stop.", s_dwVideoFrame);
}

void Video_ConvertBitmap() {
    if (!pfOutput) return;
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
