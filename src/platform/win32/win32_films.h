#pragma once
/// Films by the AVI file library of Video for Windows, which is loaded when the first film is
/// recorded, with the compressions that are installed and its dialog for them.

#include "platform/films.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_library.h"

#include <optional>

#include <vfw.h>

class Win32Films final : public Films {
public:
    explicit Win32Films(Win32Context& context) : context_(context) {}
    Win32Films(const Win32Films&) = delete;
    Win32Films& operator=(const Win32Films&) = delete;
    ~Win32Films() override;

    bool available() override;
    std::string error() override;
    bool start() override;
    /// The dialog belongs to the main window; `done` is called before this returns.
    void choose_compression(const FilmPictures& pictures, std::function<void(bool)> done) override;
    bool open(const std::string& path) override;
    bool create_pictures(const FilmPictures& pictures) override;
    bool create_sound(const FilmSound& sound) override;
    bool write_picture(uint32_t number, std::span<const uint8_t> picture) override;
    /// Wine's library refuses sound at numbered places, so it is always put at the end.
    bool write_sound(std::span<const uint8_t> sound) override;
    void close(std::span<const uint8_t> information) override;

private:
    struct Functions {
        decltype(&AVIFileInit) init;
        decltype(&AVIFileExit) exit;
        decltype(&AVIFileOpenW) open;
        decltype(&AVIFileWriteData) write_data;
        decltype(&AVIFileRelease) release;
        decltype(&AVIFileCreateStreamW) create_stream;
        decltype(&AVISaveOptions) save_options;
        decltype(&AVISaveOptionsFree) free_options;
        decltype(&AVIMakeCompressedStream) make_compressed;
        decltype(&AVIStreamSetFormat) set_format;
        decltype(&AVIStreamInfoW) info;
        decltype(&AVIStreamWrite) write;
        decltype(&AVIStreamRelease) release_stream;
    };

    bool worked(HRESULT result);
    bool create_raw_stream(IAVIFile* file, const FilmPictures& pictures);
    bool set_format(IAVIStream* stream, std::span<const uint8_t> format);
    bool write(IAVIStream* stream, LONG place, LONG samples, std::span<const uint8_t> data);
    void release(IAVIStream*& stream);

    Win32Context& context_;
    std::optional<Win32Library> library_;
    Functions avi_{};
    HRESULT result_ = AVIERR_OK; ///< of the latest step
    bool started_ = false;
    AVICOMPRESSOPTIONS options_{}; ///< the latest choice
    IAVIFile* file_ = nullptr;
    IAVIStream* raw_ = nullptr;
    IAVIStream* compressed_ = nullptr;
    IAVIStream* sound_ = nullptr;
    DWORD sample_bytes_ = 0; ///< of the sound; 0: the library counts chunks
};
