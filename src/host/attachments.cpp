#include "host/attachments.h"

#include "cgenie/input.h"
#include "core/machine_events.h"
#include "files/file_identity.h"
#include "host/disks.h"
#include "host/key_map.h"
#include "host/loaded_program.h"
#include "host/machine_callbacks.h"
#include "host/save_question.h"
#include "host/shell_state.h"
#include "media/files/cassette_files.h"
#include "media/files/printer_file.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "wall/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* VERSION = "attachments 1";

struct Attachments {
    std::array<disk_file, DISK_DRIVES> drives;
    std::string tape;
    played_wav wav;
    LoadedProgram program;
};

shared_bytes last; ///< as attachments_now has given it
bool are_unknown = false;

// ---- as bytes: texts, each with a zero byte behind it, which no path has ------------------------

void put(std::vector<uint8_t>& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
}

void put(std::vector<uint8_t>& bytes, const std::string& path, uint64_t hash) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016" PRIX64, hash);
    put(bytes, path);
    put(bytes, digits);
}

std::string take_text(std::span<const uint8_t>& bytes) {
    size_t length = 0;
    while (length < bytes.size() && bytes[length]) ++length;
    std::string text(bytes.begin(), bytes.begin() + ptrdiff_t(length));
    bytes = bytes.subspan(std::min(length + 1, bytes.size()));
    return text;
}

uint64_t take_hash(std::span<const uint8_t>& bytes) {
    constexpr int HEXADECIMAL = 16;
    const std::string text = take_text(bytes);
    uint64_t hash = 0;
    std::from_chars(text.data(), text.data() + text.size(), hash, HEXADECIMAL);
    return hash;
}

Attachments read(std::span<const uint8_t> bytes) {
    Attachments files;
    if (take_text(bytes) != VERSION) return files;
    for (disk_file& file : files.drives) {
        file.path = take_text(bytes);
        file.hash = take_hash(bytes);
    }
    files.tape = take_text(bytes);
    files.wav.path = take_text(bytes);
    files.wav.hash = take_hash(bytes);
    files.program.name = take_text(bytes); // where there was one
    files.program.hash = take_hash(bytes);
    return files;
}

// ---- what each medium does ----------------------------------------------------------------------

void take_wav_out(const std::string& text, const std::string& file, const std::string& reason) {
    machine_apply(event_kind::tape_close_wav);
    report({.text = text, .file = file, .reason = reason, .severity = Severity::warning});
}

void follow_tape_sound(const played_wav& wav) {
    const std::string problem = tape_sound_follow(tape_audio.playing ? wav : played_wav());
    if (tape_audio.recording) {
        take_wav_out("The tape recording has ended", "", "the machine is in another state");
    } else if (tape_audio.playing && wav.path.empty()) {
        take_wav_out("The tape has been taken out", "", "its WAV file is not known");
    } else if (!problem.empty()) {
        take_wav_out("The tape has been taken out", wav.path, problem);
    }
}

void follow_keyboard() {
    if (input_state.keyboard_mapping != (g_KeyMapping ? 1 : 0)) {
        machine_apply(event_kind::key_mapping, g_KeyMapping);
    }
    host_keyboard_reset();
}

} // namespace

shared_bytes attachments_now() {
    std::vector<uint8_t> bytes;
    put(bytes, VERSION);
    for (const disk_file& file : drive_files) put(bytes, lasting_path(file.path), file.hash);
    put(bytes, tape_cas_is_attached() ? lasting_path(tape_get_cas_name()) : std::string());
    const played_wav wav = tape_sound_played();
    put(bytes, wav.path, wav.hash);
    const auto& [name, program] = loaded_program();
    if (program) put(bytes, name, program);
    shared_bytes now(std::move(bytes));
    if (!(now == last)) last = std::move(now);
    return last;
}

void attachments_leave() {
    main_disk_keep_journals();
    tape_sound_flush();
}

void attachments_follow(const shared_bytes& attachments) {
    are_unknown = false;
    const Attachments files = read(attachments.view());
    main_disk_follow(files.drives);
    tape_file_follow(files.tape);
    follow_tape_sound(files.wav);
    program_is(files.program);
    printer_file_follow();
    forget_save_answer();
    follow_keyboard();
    show_machine_anew();
}

void attachments_are_none() { are_unknown = false; }

void attachments_are_unknown() { are_unknown = true; }

void attachments_settle() {
    if (are_unknown) attachments_follow({});
    main_disk_settle();
}
