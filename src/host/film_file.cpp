#include "host/film_file.h"

#include "files/system_file.h"
#include "host/dialogs/compression_dialog.h"
#include "host/dialogs/hold.h"
#include "platform/platform.h"
#include "sound/sound_core.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr const char* SUBJECT = "Vesk's emulators";

using Begun = std::function<void(std::unique_ptr<FilmFile>)>;

/// Opens a file for writing without touching what is in it: the user may still cancel. Nothing for
/// what cannot be written anywhere but at its end.
FileHandle open_for_rewriting(const std::string& path) {
    FileHandle file = open_file(path, "r+b");
    if (!file) file = open_file(path, "wb");
    if (file && std::fseek(file.get(), 0, SEEK_END) != 0) file.reset();
    return file;
}

/// Removes the file of a film that failed before anything was written.
void remove_when_empty(const std::string& path) {
    if (is_plain_file(path) && size_of_file(path) == 0U) remove_file(path);
}

void tell_no_file(const std::string& path, const std::string& reason) {
    report({.text = "Could not open file stream!", .file = path, .reason = reason, .title = path});
}

void tell_no_stream(const char* text, const std::string& path, const std::string& reason) {
    report({.text = text, .file = path, .reason = reason, .title = "Error"});
}

void tell_no_pictures(const std::string& path, const std::string& reason) {
    tell_no_stream("Could not create video stream!", path, reason);
}

// ---- the program's own writer ------------------------------------------------------------------

class OwnFilm final : public FilmFile {
public:
    bool begin(FileHandle file, const std::optional<video_codec_kind>& kind,
               const avi_video_format& raw, bool with_sound, std::string& problem) {
        if (!kind) {
            problem = video_compression_problem(raw.header);
            return false;
        }
        codec_ = kind->start(raw);
        if (!codec_) problem = std::string("the codec \"") + kind->name + "\" cannot be started";
        with_sound_ = with_sound;
        return codec_ && writer_.open(std::move(file), codec_->format, with_sound);
    }
    bool has_sound() const override { return with_sound_; }
    std::string write(std::span<const uint8_t> picture, std::span<const uint8_t> sound) override {
        const auto encoded = codec_->encode(picture);
        if (!encoded) return "the picture cannot be compressed";
        return writer_.write(encoded->data, encoded->key_frame, sound) ? "" : "cannot be written";
    }
    void close() override { writer_.close(SUBJECT); }

private:
    AviWriter writer_;
    std::unique_ptr<VideoCodec> codec_;
    bool with_sound_ = false;
};

void begin_own_film(const std::string& path, const avi_video_format& raw, bool with_sound,
                    const Begun& done) {
    const auto file = std::make_shared<FileHandle>(open_for_rewriting(path));
    if (!*file) {
        tell_no_file(path, std::strerror(errno));
        return done(nullptr);
    }
    const auto chosen = [=](const std::optional<video_codec_kind>& kind) {
        auto film = std::make_unique<OwnFilm>();
        std::string problem;
        if (film->begin(std::move(*file), kind, raw, with_sound, problem)) {
            return done(std::move(film));
        }
        film.reset();
        remove_when_empty(path);
        tell_no_pictures(path, problem);
        done(nullptr);
    };
    ui_choose_video_compression(raw.header, chosen);
}

// ---- the host's library ------------------------------------------------------------------------

class LibraryFilm final : public FilmFile {
public:
    explicit LibraryFilm(Films& library) : library_(library) {}
    LibraryFilm(const LibraryFilm&) = delete;
    LibraryFilm& operator=(const LibraryFilm&) = delete;
    ~LibraryFilm() override { library_.close({}); }

    void add_sound(const std::string& path) {
        const std::vector<uint8_t> format = AviWriter::sound_format();
        has_sound_ = library_.create_sound({format, SOUND_RATE, SOUND_RATE * sizeof(int16_t)});
        if (has_sound_) return;
        tell_no_stream("Could not create sound stream!", path, library_.error());
    }
    bool has_sound() const override { return has_sound_; }
    std::string write(std::span<const uint8_t> picture, std::span<const uint8_t> sound) override {
        const bool written = library_.write_picture(++pictures_, picture) &&
                             (!has_sound_ || library_.write_sound(sound));
        return written ? "" : library_.error();
    }
    void close() override { library_.close(AviWriter::information(SUBJECT)); }

private:
    Films& library_;
    bool has_sound_ = false;
    uint32_t pictures_ = 0;
};

/// The pictures of a film for the library, with their format.
struct Pictures {
    explicit Pictures(const avi_video_format& raw)
        : width(raw.header.width), height(raw.header.height),
          format(AviWriter::picture_format(raw)) {}
    FilmPictures view() const { return {format, width, height, AVI_FRAME_RATE}; }

    int width, height;
    std::vector<uint8_t> format;
};

/// Null after a failure that the user has been told of. Ends what the library has begun then.
std::unique_ptr<FilmFile> create_library_film(Films& library, const std::string& path,
                                              const FilmPictures& pictures, bool with_sound) {
    auto film = std::make_unique<LibraryFilm>(library);
    const bool opened = library.open(path);
    if (opened && library.create_pictures(pictures)) {
        if (with_sound) film->add_sound(path);
        return film;
    }
    const std::string problem = library.error();
    film.reset();
    if (opened && is_plain_file(path)) remove_file(path); // has headers and nothing to see
    remove_when_empty(path);
    if (!opened) tell_no_file(path, problem);
    if (opened) tell_no_pictures(path, problem);
    return nullptr;
}

void begin_library_film(Films& library, const std::string& path, const avi_video_format& raw,
                        bool with_sound, const Begun& done) {
    if (!library.start()) {
        tell_no_stream("Could not init AVI subsystem!", path, library.error());
        return done(nullptr);
    }
    if (!open_for_rewriting(path)) {
        tell_no_file(path, std::strerror(errno));
        library.close({});
        return done(nullptr);
    }
    const Pictures pictures(raw);
    const std::function<void(bool)> answered = [=, &library](bool chosen) {
        if (chosen) return done(create_library_film(library, path, pictures.view(), with_sound));
        library.close({});
        remove_when_empty(path);
        tell_no_pictures(path, library.error());
        done(nullptr);
    };
    library.choose_compression(pictures.view(), held_until(answered));
}

} // namespace

void begin_film(const std::string& path, const avi_video_format& raw, bool with_sound,
                const std::function<void(std::unique_ptr<FilmFile>)>& done) {
    Films* const library = platform().films();
    if (!library || video_compression_is_answered() || !library->available()) {
        return begin_own_film(path, raw, with_sound, done);
    }
    begin_library_film(*library, path, raw, with_sound, done);
}
