#include "core/machine_events.h"
#include "files/file_names.h"
#include "host/commands.h"
#include "host/dialogs/ask.h"
#include "host/media_panels.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/previews.h"
#include "media/files/cassette_files.h"
#include "media/files/cassette_sound.h"
#include "media/files/sound_decoder.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

enum TapePanelControl : int {
    TAPE_CLOSE = 2,
    TAPE_NAME,
    TAPE_POSITION,
    TAPE_SLIDER,
    TAPE_PROGRAMS,
    TAPE_GO_TO,
    TAPE_REWIND,
    TAPE_PLAY
};

constexpr Size TABLE = {64, 9};
constexpr size_t LONGEST_NAME = 60; ///< of the cassette's file
constexpr int SLIDER_STEPS = 1000;
constexpr uint64_t BITS_PER_SECOND = 1200;
constexpr uint64_t MS_PER_SECOND = 1000;
constexpr uint32_t BLOCK = 256; ///< bytes

struct TapePanel {
    std::unique_ptr<Form> form;            ///< made once, then hidden and shown
    std::vector<std::string> rows;         ///< as they are shown
    shared_bytes image;                    ///< that the programs are on
    std::string sound;                     ///< or the path of the recording, which is
    std::unique_ptr<SoundDecoder> decoder; ///< listened to, unless it is a cassette image's
    uint64_t heard = 0;                    ///< bytes
    std::vector<uint32_t> places;          ///< of the rows, as tape_seek takes them
};
TapePanel panel;

FormDescription tape_form() {
    using enum ControlKind;
    return {"Cassette",
            {{.kind = note, .id = TAPE_NAME},
             {.kind = row,
              .children = {{.kind = label, .text = "P&osition:"},
                           {.kind = slider, .id = TAPE_SLIDER, .highest = SLIDER_STEPS, .page = 50},
                           {.kind = label, .id = TAPE_POSITION}}},
             {.kind = table,
              .id = TAPE_PROGRAMS,
              .name = "Programs",
              .headings = {"Name", "Bytes", "Counter", "Kind", "Addresses"},
              .table_area = TABLE},
             {.kind = buttons,
              .children = {{.kind = button, .id = TAPE_GO_TO, .text = "&Go to"},
                           {.kind = button, .id = TAPE_REWIND, .text = "&Rewind"},
                           {.kind = button, .id = TAPE_PLAY, .text = "&Play"},
                           {.kind = cancel_button, .id = TAPE_CLOSE, .text = "Close"}}}}};
}

/// What the recorder's counter has there: seconds.
uint32_t counter_at(uint32_t place) {
    if (tape_wav_is_open()) return uint32_t(place / MS_PER_SECOND);
    return uint32_t(uint64_t(place) * 8 / BITS_PER_SECOND);
}

std::string four_digits(uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "%04u", number);
    return text;
}

std::string name_text() {
    const auto file = [](const std::string& path) {
        return ending_of(file_name_of(path), LONGEST_NAME);
    };
    if (tape_audio.recording) return "A recording is being made.";
    if (tape_wav_is_open()) return file(tape_sound_played().path) + ", as sound";
    if (!tape_cas_is_attached()) return "There is no cassette in the recorder.";
    return file(tape_get_cas_name()) + (cassette.saving ? ", being saved" : "");
}

std::string position_text() {
    const uint32_t place = tape_place(), length = tape_length();
    std::string text =
        four_digits(counter_at(place)) + " of " + four_digits(counter_at(length)) + " s";
    if (tape_wav_is_open() || length == 0) return text;
    const uint32_t blocks = (length + BLOCK - 1) / BLOCK;
    return text + ", block " + std::to_string(std::min(place / BLOCK + 1, blocks)) + " of " +
           std::to_string(blocks);
}

void list_programs(std::span<const uint8_t> image,
                   const std::function<uint32_t(size_t byte)>& place_of) {
    panel.rows.clear();
    panel.places.clear();
    for (const TapeProgram& program : tape_programs(image)) {
        const uint32_t place = place_of(program.start);
        panel.places.push_back(place);
        panel.rows.push_back(readable(program.name) + "\t" + std::to_string(program.bytes) + "\t" +
                             four_digits(counter_at(place)) + "\t" + kind_text(program) + "\t" +
                             addresses_text(program));
    }
    panel.form->set_items(TAPE_PROGRAMS, panel.rows);
}

/// Listens to a part of the recording that takes some milliseconds.
void listen_on() {
    constexpr size_t PART = 1 << 20; ///< bytes
    const wav_format& wav = tape_audio.wav;
    const uint64_t sample_bytes = wav_sample_bytes(wav);
    const uint64_t left = wav.samples * sample_bytes - panel.heard;
    std::vector<uint8_t> samples(std::min<uint64_t>(left, PART / sample_bytes * sample_bytes));
    const size_t count =
        tape_sound_read(wav.data_start + panel.heard, samples.data(), samples.size());
    if (count == 0) return;
    panel.heard += count;
    SoundDecoder& decoder = *panel.decoder;
    const size_t before = decoder.image().size();
    decoder.take(std::span(samples).first(count));
    if (decoder.image().size() == before) return;
    list_programs(decoder.image(), [&decoder](size_t byte) { return decoder.place(byte); });
}

void find_programs() {
    const std::string sound = tape_audio.playing ? tape_sound_played().path : std::string();
    if (sound == panel.sound && panel.image == cas) {
        if (panel.decoder) listen_on();
        return;
    }
    panel.sound = sound;
    panel.image = cas;
    panel.decoder.reset();
    panel.heard = 0;
    if (sound.empty()) {
        return list_programs(cas.view(), [](size_t byte) { return uint32_t(byte); });
    }
    const std::vector<uint8_t> tape = tape_of_file(sound);
    list_programs(tape, [&tape](size_t byte) { return cassette_sound_place(tape, byte); });
    if (!tape.empty()) return;
    panel.decoder = std::make_unique<SoundDecoder>(tape_audio.wav, tape_get_compare_level());
    listen_on();
}

void show(int id, const std::string& text) {
    if (panel.form->text(id) != text) panel.form->set_text(id, text);
}

void refresh() {
    Form& form = *panel.form;
    find_programs();
    show(TAPE_NAME, name_text());
    show(TAPE_POSITION, position_text());
    show(TAPE_PLAY, tape_is_rolling() ? "Sto&p" : "&Play");
    const uint64_t place = tape_place(), length = tape_length();
    form.set_value(TAPE_SLIDER, length ? int((place * SLIDER_STEPS + length / 2) / length) : 0);
    const bool is_in = tape_wav_is_open() || tape_cas_is_attached();
    form.set_enabled(TAPE_SLIDER, is_in && length > 0);
    form.set_enabled(TAPE_REWIND, is_in);
    form.set_enabled(TAPE_PLAY, tape_wav_is_open() != 0);
    form.set_enabled(TAPE_GO_TO, !panel.places.empty());
}

void wind_to(uint32_t place) {
    obey_user([place] {
        machine_apply(event_kind::tape_seek, int32_t(place));
        check_menu_item(COMMAND_PLAY_RECORD, false);
    });
}

void go_to_program() {
    const int row = panel.form->value(TAPE_PROGRAMS);
    if (row >= 0 && size_t(row) < panel.places.size()) wind_to(panel.places[size_t(row)]);
}

void user_acts(Form& form, const FormEvent& event) {
    switch (event.control) {
    case TAPE_SLIDER:
        wind_to(uint32_t(uint64_t(form.value(TAPE_SLIDER)) * tape_length() / SLIDER_STEPS));
        break;
    case TAPE_PROGRAMS:
        if (event.kind != FormEvent::Kind::activated) return;
        go_to_program();
        break;
    case TAPE_GO_TO: go_to_program(); break;
    case TAPE_REWIND: handle_command(COMMAND_REWIND); break;
    case TAPE_PLAY: handle_command(COMMAND_PLAY_RECORD); break;
    default: return;
    }
    refresh();
}

} // namespace

void ui_tape_panel() {
    if (!panel.form) panel.form = platform().forms().create(tape_form(), user_acts);
    refresh();
    show_beside_window(*panel.form);
}

bool tape_panel_is_open() { return panel.form && panel.form->is_open(); }

void tape_panel_refresh() { refresh(); }

void tape_panel_end() { panel = {}; }
