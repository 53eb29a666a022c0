#include "host/avi.h"

#include "cgenie/palette.h"
#include "core/pacing/pacing.h"
#include "host/commands.h"
#include "host/dialogs/compression_dialog.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/status.h"
#include "sound/beeper.h"
#include "sound/scripted_driver.h"
#include "sound/sound_core.h"
#include "support/full_disk.h"
#include "support/host_files.h"
#include "support/posix.h"
#include "support/riff.h"
#include "wall/machine_host.h"

#include <cstdlib>
#include <map>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

std::string output_of(const std::string& command) {
    std::string text;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    for (int byte; (byte = std::fgetc(pipe)) != EOF;) text += char(byte);
    EXPECT_EQ(pclose(pipe), 0) << command << text;
    return text;
}

std::string probe(const std::string& options, const std::string& path) {
    return output_of("ffprobe -v error -of csv=p=0 " + options + " " + path);
}

/// Codec, width, height, rate and the number of frames that decode.
std::string played(const std::string& path) {
    return probe("-count_frames -select_streams v -show_entries "
                 "stream=codec_name,width,height,r_frame_rate,nb_read_frames",
                 path);
}

/// Where the last packet of the stream ends.
double seconds(const std::string& path, const std::string& stream) {
    const std::string text =
        probe("-show_entries packet=pts_time,duration_time -select_streams " + stream,
              path + " | tail -n 1");
    double start = 0, length = 0;
    std::sscanf(text.c_str(), "%lf,%lf", &start, &length);
    return start + length;
}

class AviTest : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        CreateStatusBar();
        create_menu();
        answer_video_compression("uncompressed");
        set_canvas(384, 288, 8);
    }
    void TearDown() override {
        Video_CloseOutput();
        g_bRecordingVideo = 0;
        answer_video_compression("");
        dib_destroy(canvas);
        HostFilesTest::TearDown();
    }
    static void set_canvas(int width, int height, int bits) {
        dib_create(canvas, width, height, bits);
        for (size_t n = 0; n < canvas.palette.size(); ++n) {
            canvas.palette[n] = n % 4 == 3 ? 0 : uint8_t(n / 4 * 37 + n % 4 * 91);
        }
        random.seed(5);
    }
    /// Pictures with runs, patterns and noise; most of one stands still in the next.
    static void draw(int frame) {
        const size_t size = canvas.pixels.size();
        for (int n = 0; n < (frame % 7 == 3 ? 0 : 30); ++n) {
            const size_t start = random() % size, length = random() % 700, step = random() % 3;
            for (size_t at = start; at < std::min(size, start + length); ++at) {
                canvas.pixels[at] = uint8_t(n % 5 ? (at % 5 < step ? n * 9 : frame) : random());
            }
        }
        if (frame == 60) {
            for (uint8_t& pixel : canvas.pixels) pixel = uint8_t(random());
        }
    }
    /// Blue, green, red of what the canvas shows.
    static void see(Bytes& colours) {
        const unsigned bits = canvas.header.bits;
        for (size_t n = 0; n < size_t(canvas.width * canvas.height); ++n) {
            const uint8_t* shown = &canvas.pixels[bits == 32 ? n * 4 : n * bits / 8];
            if (bits <= 8) {
                const unsigned index = bits == 8 ? *shown : *shown >> (7 - n % 8) & 1;
                shown = &canvas.palette[index * 4];
            }
            colours.insert(colours.end(), shown, shown + 3);
        }
    }
    static int open(const std::string& path, bool sound = true) {
        int runs = 0;
        if (!Video_CreateBitmap()) return 0;
        Video_OpenOutput(path, sound ? sound_get_buffer_ptr() : nullptr,
                         [&runs](int result) { runs = result; });
        return runs;
    }
    static void record(int frames) {
        for (int n = 0; n < frames; ++n) {
            draw(n);
            host_capture_frame();
        }
    }
    std::string message(size_t number) {
        const auto& messages = host->dialogs().messages;
        if (number >= messages.size()) return "none";
        EXPECT_EQ(messages[number].icon, MessageIcon::warning);
        return messages[number].title + ": " + messages[number].text;
    }
    std::string status() { return host->status_text(3); }

    static inline std::mt19937 random;
};

TEST_F(AviTest, PlayersShowWhatTheCanvasShowed) {
    const std::map<std::string, std::string> players_names = {
        {"uncompressed", "rawvideo"}, {"rle", "msrle"},  {"zmbv", "zmbv"}, {"ffv1", "ffv1"},
        {"mpeg4", "mpeg4"},           {"mjpeg", "mjpeg"}};
    const struct {
        int width, height, bits;
    } canvases[] = {{96, 72, 8}, {768, 576, 8}, {96, 72, 32}, {768, 576, 32}, {384, 288, 1}};
    ASSERT_GE(video_codecs().size(), 2U);
    for (const auto& [width, height, bits] : canvases) {
        for (const video_codec_kind& kind : video_codecs()) {
            const std::string name = kind.name;
            const int frames = width == 96 ? 64 : 2;
            SCOPED_TRACE(name + " " + std::to_string(width) + " " + std::to_string(bits));
            answer_video_compression(name);
            set_canvas(width, height, bits);
            const bool fits = name == "rle" ? bits == 8 : name != "zmbv" || bits <= 8;
            ASSERT_EQ(open("film.avi"), fits);
            if (!fits) continue;
            Bytes expected;
            for (int n = 0; n < frames; ++n) {
                draw(n);
                see(expected);
                host_capture_frame();
            }
            Video_CloseOutput();
            EXPECT_EQ(played("film.avi"), players_names.at(name) + "," + std::to_string(width) +
                                              "," + std::to_string(height) + ",50/1," +
                                              std::to_string(frames) + "\n");
            output_of("ffmpeg -v error -y -i film.avi -f rawvideo -pix_fmt bgr24 -fps_mode "
                      "passthrough film.raw");
            const Bytes seen = read_file("film.raw");
            ASSERT_EQ(seen.size(), expected.size());
            if (bits == 32 && name == "uncompressed") {
                const Riff riff(read_file("film.avi"));
                EXPECT_EQ(riff.number(riff.all("AVI /movi/00db").at(0).start, 4) >> 24, 0xFFU);
            }
            if (name == "mpeg4" || name == "mjpeg") {
                double error = 0;
                for (size_t n = 0; n < seen.size(); ++n) error += std::abs(seen[n] - expected[n]);
                EXPECT_LT(error / double(seen.size()), name == "mjpeg" ? 8 : 40);
            } else {
                EXPECT_TRUE(seen == expected);
            }
            EXPECT_NEAR(seconds("film.avi", "v"), frames / 50.0, 0.001);
            EXPECT_NEAR(seconds("film.avi", "a"), frames / 50.0, 0.001);
            if (name != "rle") continue;
            const Riff riff(read_file("film.avi"));
            const auto index = riff.all("AVI /idx1").at(0);
            for (int n = 0; n < frames; ++n) { // frame 60 is noise, dearer as a change than whole
                EXPECT_EQ(riff.number(index.start + size_t(n) * 32 + 4), n % 50 && n != 60 ? 0 : 16)
                    << n;
            }
        }
    }
}

TEST_F(AviTest, StreamsSegmentsAndIndexes) {
    const struct {
        int bits;
        bool sound;
        uint64_t limit;
        size_t segments;
    } cases[] = {
        {8, true, AVI_SEGMENT_BYTES, 1}, {32, false, AVI_SEGMENT_BYTES, 1}, {8, true, 30'000, 8}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.limit);
        constexpr uint32_t FRAMES = 53, WIDTH = 64, HEIGHT = 31;
        const size_t picture_bytes = size_t(WIDTH) * HEIGHT * size_t(c.bits) / 8;
        avi_video_format format;
        format.header.width = WIDTH;
        format.header.height = HEIGHT;
        format.header.bits = uint16_t(c.bits);
        format.header.colours_used = c.bits == 8 ? 256 : 1;
        format.extra.resize(format.header.colours_used * 4, 7);
        AviWriter writer;
        ASSERT_TRUE(writer.open(open_file("film.avi", "w+b"), format, c.sound, c.limit));
        Bytes sound(1920);
        for (uint32_t n = 0; n < FRAMES; ++n) {
            // Odd lengths, as of compressed frames.
            const Bytes picture(picture_bytes - (c.limit < 40'000 ? n % 2 : 0), uint8_t(n));
            sound[0] = uint8_t(n);
            ASSERT_TRUE(writer.write(picture, n % 5 == 0, sound));
        }
        std::filesystem::copy_file("film.avi", "crash.avi",
                                   std::filesystem::copy_options::overwrite_existing);
        writer.close("Vesk's emulators");
        const Riff riff(read_file("film.avi"));
        const size_t avih = riff.all("AVI /hdrl/avih").at(0).start;
        const auto strh = riff.all("AVI /hdrl/strl/strh");
        const auto tables = riff.all("AVI /hdrl/strl/indx");
        const auto frames_at = riff.all("AVI /movi/00db");
        const size_t later = riff.all("AVIX/movi/00db").size();
        ASSERT_EQ(strh.size(), c.sound ? 2U : 1U);
        ASSERT_EQ(tables.size(), strh.size());
        EXPECT_EQ(frames_at.size() + later, FRAMES);
        EXPECT_EQ(riff.number(avih), 20000U);
        EXPECT_EQ(riff.number(avih + 12), 0x910U);
        EXPECT_EQ(riff.number(avih + 16), frames_at.size());
        EXPECT_EQ(riff.number(riff.all("AVI /hdrl/odml/dmlh").at(0).start), FRAMES);
        const Riff::Chunk info = riff.all("AVI /LIST").at(0);
        EXPECT_EQ(riff.text(info.start, info.size),
                  std::string("INFOISBJ\x11\0\0\0Vesk's emulators\0", 29));
        // Type, handler, flags, priority, frames ahead, scale, rate, start, length.
        const uint64_t video[] = {four_characters("vids"), 0, 0, 0, 0, 1, 50, 0, FRAMES};
        const uint64_t audio[] = {four_characters("auds"), 0, 0, 0, 0, 1, 48000, 0, FRAMES * 960};
        for (size_t n = 0; n < 9; ++n) {
            EXPECT_EQ(riff.number(strh[0].start + n * 4), video[n]) << n;
            EXPECT_EQ(riff.number(strh.back().start + n * 4), c.sound ? audio[n] : video[n]) << n;
        }
        // Every frame is where the tables say, in its order; segments keep their limit.
        for (size_t stream = 0; stream < tables.size(); ++stream) {
            const size_t table = tables[stream].start;
            EXPECT_EQ(riff.number(table + 4), c.segments);
            uint32_t frame = 0;
            for (size_t segment = 0; segment < riff.number(table + 4); ++segment) {
                const size_t index = riff.number(table + 24 + segment * 16, 8);
                EXPECT_EQ(riff.text(index), stream ? "ix01" : "ix00");
                EXPECT_EQ(riff.number(index + 4) + 8, riff.number(table + 32 + segment * 16));
                const uint64_t count = riff.number(index + 12), base = riff.number(index + 20, 8);
                EXPECT_EQ(riff.number(table + 36 + segment * 16), count * (stream ? 960 : 1));
                for (uint64_t n = 0; n < count; ++n, ++frame) {
                    const size_t at = base + riff.number(index + 32 + n * 8);
                    const uint64_t size = riff.number(index + 36 + n * 8);
                    EXPECT_EQ(riff.text(at - 8), stream ? "01wb" : "00db");
                    EXPECT_EQ(riff.number(at - 4), size & 0x7FFFFFFF);
                    EXPECT_EQ(size >> 31, !stream && frame % 5 ? 1U : 0U);
                    EXPECT_EQ(riff.data[at], frame);
                }
            }
            EXPECT_EQ(frame, FRAMES);
        }
        const Riff::Chunk old = riff.all("AVI /idx1").at(0);
        EXPECT_EQ(old.size, frames_at.size() * strh.size() * 16);
        for (size_t n = 0; n < frames_at.size(); ++n) {
            const size_t entry = old.start + n * strh.size() * 16;
            EXPECT_EQ(frames_at[0].start - 4 + riff.number(entry + 8), frames_at[n].start);
            EXPECT_EQ(riff.number(entry + 12), frames_at[n].size);
        }
        for (size_t at = 0; at < riff.data.size(); at += riff.number(at + 4) + 8) {
            EXPECT_LE(riff.number(at + 4) + 8, c.limit);
        }
        if (c.segments == 1) { // the header of a film that was cut off tells the last second
            const Riff crash(read_file("crash.avi"));
            EXPECT_EQ(crash.number(crash.all("AVI /hdrl/avih").at(0).start + 16), 50U);
        }
        for (const char* file : {"film.avi", "crash.avi"}) {
            EXPECT_EQ(probe("-count_packets -select_streams v -show_entries stream=nb_read_packets",
                            file),
                      "53\n");
        }
    }
}

TEST_F(AviTest, LinesDimmedMeanwhileStayBright) {
    ASSERT_TRUE(open("film.avi"));
    display_params.interlaced_line = 20;
    canvas.pixels[0] = 17 + 3;
    host_capture_frame();
    palette_get_default_config(&display_params);
    Video_CloseOutput();
    const Riff riff(read_file("film.avi"));
    EXPECT_EQ(riff.number(riff.all("AVI /movi/00db").at(0).start + size_t{384} * 287, 1), 3U);
}

TEST_F(AviTest, EachPictureHasTheNextFragmentOfTheDriver) {
    beeper_init();
    start_scripted_core();
    open("film.avi");
    for (uint8_t frame = 0; frame < 50; ++frame) {
        beeper_set_level(frame & 1);
        advance(966);
        record(1);
    }
    Video_CloseOutput();
    sound_null_driver_init();
    const Riff riff(read_file("film.avi"));
    size_t n = 0;
    for (const Riff::Chunk& chunk : riff.all("AVI /movi/01wb")) {
        const auto* written = reinterpret_cast<const char*>(scripted.fragments.at(n++).data());
        ASSERT_EQ(riff.text(chunk.start, chunk.size), std::string(written, 1920)) << n;
    }
    EXPECT_EQ(n, 50U);
}

TEST_F(AviTest, TheCommandStartsAndStops) {
    answer_video_compression("");
    constexpr auto cancel = [](HeadlessForm& form) { form.press_escape(); };
    constexpr auto run_lengths = [](HeadlessForm& form) { form.choose(3, 1), form.press_enter(); };
    const UserCommand asked_for_by_the_user;
    constexpr auto same = [](HeadlessForm& form) {
        EXPECT_EQ(form.value(3), 1) << "the choice of the last time";
        form.press_enter();
    };
    std::string name = "film.avi";
    std::ofstream("old.avi") << "kept";
    for (const std::string path : {"film.avi", "old.avi"}) {
        name = path;
        host->forms().acts.emplace_back(cancel);
        video_save_to_avi(false, name);
        EXPECT_EQ(message(0), "Error: Could not create video stream!\n\n" + name);
        EXPECT_EQ(g_bRecordingVideo, 0);
        EXPECT_FALSE(is_menu_item_checked(COMMAND_SAVE_VIDEO));
        host->dialogs().messages.clear();
    }
    EXPECT_FALSE(std::filesystem::exists("film.avi"));
    EXPECT_EQ(read_file("old.avi").size(), 4U) << "a cancelled recording replaces nothing";
    for (const char* bad : {"no/film.avi", ".", "/dev/full"}) {
        name = bad;
        if (name == "/dev/full") host->forms().acts.emplace_back(run_lengths);
        video_save_to_avi(false, name);
        EXPECT_TRUE(message(0).starts_with(name == "/dev/full"
                                               ? "Error: Could not create video stream!"
                                               : name + ": Could not open file stream!"));
        EXPECT_EQ(g_bRecordingVideo, 0);
        host->dialogs().messages.clear();
    }
    name = "film.avi";
    host->forms().acts.emplace_back(same);
    video_save_to_avi(false, name);
    EXPECT_EQ(g_bRecordingVideo, 2);
    EXPECT_TRUE(is_menu_item_checked(COMMAND_SAVE_VIDEO));
    EXPECT_EQ(status(), "Streaming video to file: film.avi...");
    for (int n = 1; n <= 250; ++n) {
        if (n == 240) set_canvas(768, 576, 32); // is not followed
        record(1);
        if (n % 100) continue;
        EXPECT_EQ(status(), "Streaming video... " + std::to_string(n) +
                                " frames written so far. Alt+I to stop.");
        StatusBarText("between");
    }
    EXPECT_TRUE(status().starts_with("The video repeats its last picture")) << status();
    video_save_to_avi(true, name);
    EXPECT_EQ(status(), "Video stream closed. 250 frames written.");
    EXPECT_FALSE(is_menu_item_checked(COMMAND_SAVE_VIDEO));
    EXPECT_EQ(played("film.avi"), "msrle,384,288,50/1,250\n");

    dib_destroy(canvas);
    video_save_to_avi(false, name);
    EXPECT_EQ(status(), "AVI: an error occured.");
    EXPECT_EQ(message(0), "Tarvelin: AVI: an error occured.");
}

/// A library for films that notes what it is asked for, and fails at one step.
struct ScriptedFilms final : Films {
    std::string log, fails;
    bool step(const std::string& name) {
        log += name + ' ';
        return name != fails;
    }
    bool available() override { return fails != "available"; }
    std::string error() override { return "why"; }
    bool start() override { return step("start"); }
    void choose_compression(const FilmPictures&, std::function<void(bool)> done) override {
        done(step("choose"));
    }
    bool open(const std::string&) override { return step("open"); }
    bool create_pictures(const FilmPictures& pictures) override {
        return step("pictures" + std::to_string(pictures.format.size()));
    }
    bool create_sound(const FilmSound& sound) override {
        return step("sound" + std::to_string(sound.format.size()));
    }
    bool write_picture(uint32_t number, std::span<const uint8_t>) override {
        return step(std::to_string(number));
    }
    bool write_sound(std::span<const uint8_t>) override { return step("heard"); }
    void close(std::span<const uint8_t> text) override {
        step("end" + std::to_string(text.size()));
    }
};

TEST_F(AviTest, TheHostsLibraryIsUsedStepByStep) {
    ScriptedFilms library;
    host->film_library = &library;
    const UserCommand asked_for_by_the_user;
    const std::string none = "Error: Could not create video stream!";
    const std::string begun = "start choose open pictures1064 sound18 ";
    const struct {
        std::string fails, message, log;
    } cases[] = {
        {"", "none", begun + "1 heard 2 heard end29 end0 "},
        {"start", "Error: Could not init AVI subsystem!", "start "},
        {"choose", none, "start choose end0 "},
        {"open", "film.avi: Could not open file stream!", "start choose open end0 "},
        {"pictures1064", none, "start choose open pictures1064 end0 "},
        {"sound18", "Error: Could not create sound stream!", begun + "1 2 end29 end0 "},
        {"2", "Tarvelin: film.avi: why; the video ends after 1 frames.",
         begun + "1 heard 2 end29 end0 "},
        {"available", none, ""}, // asks for a compression of the program's own
    };
    for (const auto& c : cases) {
        answer_video_compression("");
        library.fails = c.fails;
        host->forms().acts.assign(1, [](HeadlessForm& form) { form.press_escape(); });
        video_save_to_avi(false, "film.avi");
        const bool runs = g_bRecordingVideo != 0;
        record(2);
        if (g_bRecordingVideo) video_save_to_avi(false, "film.avi");
        EXPECT_EQ(library.log, c.log) << c.fails;
        EXPECT_TRUE(message(0).starts_with(c.message)) << message(0);
        EXPECT_EQ(std::filesystem::remove("film.avi"), runs) << "no empty file is left";
        host->dialogs().messages.clear();
        library.log.clear();
    }
    answer_video_compression("rle");
    EXPECT_TRUE(open("film.avi"));
    EXPECT_EQ(library.log, "") << "a codec answered in advance is the program's own";
}

TEST_F(AviTest, AFullDiskEndsTheRecordingAndKeepsTheFile) {
    std::string name = "film.avi";
    constexpr uint64_t HEADER = 10'240, FRAME = 110'592 + 1936;
    // After 30 frames, half a frame fits: more than the indexes need; or less than they need.
    for (const uint64_t rest : {FRAME / 2, uint64_t(1500)}) {
        const uint64_t frames = 30, room = HEADER + frames * FRAME + rest;
        video_save_to_avi(false, "film.avi");
        ASSERT_EQ(g_bRecordingVideo, 2);
        {
            const FullDisk full(room);
            record(100);
        }
        const std::string text = "film.avi: cannot be written; the video ends after " +
                                 std::to_string(frames) + " frames.";
        EXPECT_EQ(status(), text);
        EXPECT_EQ(message(0), "none") << "no box comes up in the middle of a game";
        EXPECT_EQ(g_bRecordingVideo, 0);
        EXPECT_FALSE(is_menu_item_checked(COMMAND_SAVE_VIDEO));
        EXPECT_EQ(played("film.avi"), "rawvideo,384,288,50/1," + std::to_string(frames) + "\n");
        const Riff riff(read_file("film.avi"));
        EXPECT_EQ(riff.all("AVI /movi/01wb").size(), frames);
        EXPECT_EQ(riff.all("AVI /idx1").size(), rest == FRAME / 2 ? 1U : 0U);
    }
}

} // namespace
