#include "platform/win32/win32_films.h"

#include "platform/win32/win32_modal.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr LONG AT_THE_END = -1;
constexpr UINT DIALOG_PARTS = ICMF_CHOOSE_KEYFRAME | ICMF_CHOOSE_DATARATE;

constexpr std::pair<HRESULT, const char*> RESULTS[] = {
    {AVIERR_BADFORMAT, "the format is not supported"},
    {AVIERR_BADSIZE, "the pictures do not have the right size"},
    {AVIERR_CANTCOMPRESS, "the pictures cannot be compressed"},
    {AVIERR_COMPRESSOR, "the compressor has failed"},
    {AVIERR_FILEOPEN, "the file cannot be opened"},
    {AVIERR_FILEWRITE, "the file cannot be written"},
    {AVIERR_MEMORY, "there is not enough memory"},
    {AVIERR_NOCOMPRESSOR, "the compressor cannot be found"},
    {AVIERR_UNSUPPORTED, "the library cannot do this"},
    {AVIERR_USERABORT, "no compression was chosen"},
};

/// The name of a file for the time of the question; empty when there is no place for one.
std::wstring scratch_path() {
    wchar_t folder[MAX_PATH + 1] = {};
    wchar_t path[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    if (length == 0 || length > MAX_PATH) return {};
    return GetTempFileNameW(folder, L"tar", 0, path) ? path : std::wstring();
}

} // namespace

Win32Films::~Win32Films() {
    close({});
    LPAVICOMPRESSOPTIONS options = &options_;
    if (avi_.free_options) avi_.free_options(1, &options);
}

bool Win32Films::worked(HRESULT result) {
    result_ = result;
    return SUCCEEDED(result);
}

std::string Win32Films::error() {
    if (SUCCEEDED(result_)) return {};
    for (const auto& [result, text] : RESULTS) {
        if (result == result_) return text;
    }
    char text[32];
    std::snprintf(text, sizeof text, "AVI error %08lX", static_cast<unsigned long>(result_));
    return text;
}

bool Win32Films::available() {
    result_ = AVIERR_OK;
    if (!library_) library_.emplace(L"avifil32.dll");
    return library_->find("AVIFileInit", avi_.init) && library_->find("AVIFileExit", avi_.exit) &&
           library_->find("AVIFileOpenW", avi_.open) &&
           library_->find("AVIFileWriteData", avi_.write_data) &&
           library_->find("AVIFileRelease", avi_.release) &&
           library_->find("AVIFileCreateStreamW", avi_.create_stream) &&
           library_->find("AVISaveOptions", avi_.save_options) &&
           library_->find("AVISaveOptionsFree", avi_.free_options) &&
           library_->find("AVIMakeCompressedStream", avi_.make_compressed) &&
           library_->find("AVIStreamSetFormat", avi_.set_format) &&
           library_->find("AVIStreamInfoW", avi_.info) &&
           library_->find("AVIStreamWrite", avi_.write) &&
           library_->find("AVIStreamRelease", avi_.release_stream);
}

bool Win32Films::start() {
    if (!started_) avi_.init();
    return started_ = true;
}

bool Win32Films::create_raw_stream(IAVIFile* file, const FilmPictures& pictures) {
    AVISTREAMINFOW info{};
    info.fccType = streamtypeVIDEO;
    info.dwScale = 1;
    info.dwRate = pictures.rate;
    info.rcFrame = {0, 0, pictures.width, pictures.height};
    return worked(avi_.create_stream(file, &raw_, &info));
}

/// The library asks about a stream, and a stream needs a file. The film's own is not made before
/// the answer: what it held stays when the user cancels.
void Win32Films::choose_compression(const FilmPictures& pictures, std::function<void(bool)> done) {
    const std::wstring path = scratch_path();
    IAVIFile* file = nullptr;
    bool chosen = false;
    if (worked(avi_.open(&file, path.c_str(), OF_CREATE | OF_WRITE, nullptr))) {
        if (create_raw_stream(file, pictures)) {
            const Win32ModalScope scope(context_);
            LPAVICOMPRESSOPTIONS options = &options_;
            chosen = avi_.save_options(context_.front(), DIALOG_PARTS, 1, &raw_, &options) != FALSE;
            if (!chosen) result_ = AVIERR_USERABORT;
        }
        release(raw_);
        avi_.release(file);
    }
    DeleteFileW(path.c_str());
    done(chosen);
}

bool Win32Films::open(const std::string& path) {
    return worked(avi_.open(&file_, wide(path).c_str(), OF_CREATE | OF_WRITE, nullptr));
}

bool Win32Films::set_format(IAVIStream* stream, std::span<const uint8_t> format) {
    std::vector<uint8_t> copy(format.begin(), format.end());
    return worked(avi_.set_format(stream, 0, copy.data(), LONG(copy.size())));
}

bool Win32Films::create_pictures(const FilmPictures& pictures) {
    return create_raw_stream(file_, pictures) &&
           worked(avi_.make_compressed(&compressed_, raw_, &options_, nullptr)) &&
           set_format(compressed_, pictures.format);
}

bool Win32Films::create_sound(const FilmSound& sound) {
    AVISTREAMINFOW info{};
    info.fccType = streamtypeAUDIO;
    info.dwScale = 1;
    info.dwRate = sound.rate;
    info.dwSuggestedBufferSize = sound.buffer;
    if (worked(avi_.create_stream(file_, &sound_, &info)) && set_format(sound_, sound.format) &&
        worked(avi_.info(sound_, &info, sizeof info))) {
        sample_bytes_ = info.dwSampleSize;
        return true;
    }
    release(sound_);
    return false;
}

bool Win32Films::write(IAVIStream* stream, LONG place, LONG samples,
                       std::span<const uint8_t> data) {
    if (!stream) return false;
    std::vector<uint8_t> copy(data.begin(), data.end());
    return worked(avi_.write(stream, place, samples, copy.data(), LONG(copy.size()), AVIIF_KEYFRAME,
                             nullptr, nullptr));
}

bool Win32Films::write_picture(uint32_t number, std::span<const uint8_t> picture) {
    return write(compressed_, LONG(number), 1, picture);
}

/// Whether the library counts a sound's chunks or samples is its own decision.
bool Win32Films::write_sound(std::span<const uint8_t> sound) {
    const LONG samples = sample_bytes_ ? LONG(sound.size() / sample_bytes_) : 1;
    return write(sound_, AT_THE_END, samples, sound);
}

void Win32Films::release(IAVIStream*& stream) {
    if (stream) avi_.release_stream(std::exchange(stream, nullptr));
}

void Win32Films::close(std::span<const uint8_t> information) {
    release(raw_);
    release(compressed_);
    release(sound_);
    if (file_) {
        std::vector<uint8_t> copy(information.begin(), information.end());
        if (!copy.empty()) {
            avi_.write_data(file_, mmioFOURCC('L', 'I', 'S', 'T'), copy.data(), LONG(copy.size()));
        }
        avi_.release(std::exchange(file_, nullptr));
    }
    if (std::exchange(started_, false)) avi_.exit();
}
