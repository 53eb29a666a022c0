#include "core/machine_events.h"

#include "cgenie/hires_lowe.h"
#include "cgenie/input.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine_mute.h"
#include "media/cmd_loader.h"
#include "media/printer.h"
#include "media/snapshot.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "media/wd1771.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/// The log that is being kept, and the callbacks of the host whose answers go into it.
machine_log* kept = nullptr;
machine_host_calls asked;
shared_bytes noted_input; ///< of the last event of its kind: those of the same keys share it

void append(event_kind kind, int32_t a = 0, int32_t b = 0, shared_bytes bytes = {}) {
    kept->events.push_back({kind, a, b, std::move(bytes), z80_state.t_count, z80_state.pc});
}

// ---- what each event does -----------------------------------------------------------------------

template <typename Record>
Record record_of(const machine_event& event) {
    Record record = {};
    const auto bytes = event.bytes.view();
    std::memcpy(&record, bytes.data(), std::min(bytes.size(), sizeof record));
    return record;
}

std::vector<uint8_t> copy_of(const machine_event& event) {
    return {event.bytes.view().begin(), event.bytes.view().end()};
}

void choose(const machine_event& event) {
    const auto choice = record_of<machine_choice>(event);
    machine_cfg[CUSTOM_CONFIGURATION] = choice.custom;
    active_machine_cfg = choice.active;
    if (event.a) machine_run_now.disk_rom = 0;
}

void poke(const machine_event& event) {
    auto address = uint16_t(event.a);
    for (const uint8_t byte : event.bytes.view()) mem_write(address++, byte);
}

int load_module(const machine_event& event) {
    uint16_t entry = 0;
    const int complete = load_cmd(event.bytes.view(), &entry);
    if (event.a) z80_state.pc = entry;
    return complete;
}

void start_again() {
    z80_state.pc = 0;
    machine_run_now.prompt_reached = 0;
}

void switch_board(int on) {
    if (on) {
        hires_lowe_init();
    } else {
        hires_lowe_destroy();
    }
}

int perform(const machine_event& event) {
    const int32_t a = event.a;
    switch (event.kind) {
    case event_kind::reset: machine_reset(); break;
    case event_kind::restart: machine_restart(); break;
    case event_kind::restart_with_disk_rom: machine_restart_with_disk_rom(); break;
    case event_kind::choose: choose(event); break;
    case event_kind::configure: machine_change_cfg(machine_cfg[a], event.b); break;
    case event_kind::startup_pattern: memory_set_startup_pattern(uint32_t(a)); break;
    case event_kind::main_clock: machine_set_main_clock(uint32_t(a)); break;
    case event_kind::engine: g_bCycleBasedEngine = a != 0; break;
    case event_kind::clean_sound: ym2149_clean = a != 0; break;
    case event_kind::start_sound: sound_init(); break;
    case event_kind::reset_sound: sound_reset(); break;
    case event_kind::fragment_count: sound_set_fragment_count(a); break;
    case event_kind::key_mapping: keyboard_change_mapping(a); break;
    case event_kind::key_reset: keyboard_reset(); break;
    case event_kind::graphics_board: switch_board(a); break;
    case event_kind::type_text: keyboard_open_from_bytes(event.bytes); break;
    case event_kind::typing_trap: memory_place_bas_trap(); break;
    case event_kind::stop_typing: keyboard_type_reset(); break;
    case event_kind::start_again: start_again(); break;
    case event_kind::go_to: z80_state.pc = uint16_t(a); break;
    case event_kind::poke: poke(event); break;
    case event_kind::load_module: return load_module(event);
    case event_kind::snapshot: return snapshot_unpack(event.bytes.view(), memory_get_ram());
    case event_kind::tape_moves: tape_update_counter(z80_state.t_count); break;
    case event_kind::tape_in: tape_put_in(event.bytes); break;
    case event_kind::tape_out: tape_take_out(); break;
    case event_kind::tape_make_room: tape_make_room(); break;
    case event_kind::tape_rewind: tape_rewind(); break;
    case event_kind::tape_seek: tape_seek(uint32_t(a)); break;
    case event_kind::registers:
        static_cast<z80_registers&>(z80_state) = record_of<z80_registers>(event);
        break;
    case event_kind::tape_motor: tape_set_motor(a, z80_state.t_count); break;
    case event_kind::tape_level: tape_set_compare_level(a); break;
    case event_kind::tape_inversion: tape_set_signal_invert(a); break;
    case event_kind::tape_play_wav: tape_play_wav(record_of<wav_format>(event)); break;
    case event_kind::tape_record_wav: tape_record_wav(uint32_t(a)); break;
    case event_kind::tape_close_wav: tape_close_wav(); break;
    case event_kind::tape_traps: tape_place_traps(rom_pointer()); break;
    case event_kind::printer: printer_enabled = a != 0; break;
    case event_kind::printer_file: printer_set_open(a); break;
    case event_kind::printer_reset: printer_reset(); break;
    case event_kind::disk_in: return wd1771_attach(unsigned(a), copy_of(event), event.b != 0);
    case event_kind::disk_out: wd1771_detach(unsigned(a)); break;
    case event_kind::disk_replace: wd1771_replace(unsigned(a), copy_of(event)); break;
    case event_kind::disk_protect: wd1771_write_protect(unsigned(a), event.b != 0); break;
    case event_kind::disk_controller: wd1771_reset(); break;
    default: break;
    }
    return 1;
}

// ---- answers, as they come ---------------------------------------------------------------------

int note_fragments(int completed) {
    const int count = asked.fragment_decision(completed);
    append(event_kind::fragments, count);
    return count;
}

int note_written(output_stream stream, uint64_t position, const uint8_t* bytes, size_t count) {
    const int taken = asked.write(stream, position, bytes, count);
    append(event_kind::written, taken);
    return taken;
}

int note_rom(rom_file which, uint8_t* to, size_t size) {
    const int count = asked.read_rom(which, to, size);
    append(event_kind::rom_bytes, count, 0,
           shared_bytes(std::vector<uint8_t>(to, to + std::max(count, 0))));
    return count;
}

void note_input(machine_input& input) {
    asked.read_input(input);
    const auto last = noted_input.view();
    const bool same = !last.empty() && std::memcmp(last.data(), &input, sizeof input) == 0;
    if (!same) noted_input = bytes_of(input);
    append(event_kind::input, 0, 0, noted_input);
}

save_answer note_save() {
    const save_answer answer = asked.save_question();
    append(event_kind::save_reply, answer);
    return answer;
}

// ---- answers, as they came ---------------------------------------------------------------------

/// The replay that runs at this moment.
struct Replay {
    const machine_log* log = nullptr;
    machine_replay_position* position = nullptr;
    machine_host_calls host = {}; ///< gets what the machine puts out
} replay;

bool has_parted() { return !replay.position->trouble.empty(); }

void fail(const std::string& what) {
    if (has_parted()) return;
    const auto& events = replay.log->events;
    const size_t next = replay.position->next;
    std::string& trouble = replay.position->trouble;
    trouble = "event " + std::to_string(next);
    if (next < events.size()) {
        trouble += " (kind " + std::to_string(int(events[next].kind)) + ", cycle " +
                   std::to_string(events[next].cycle) + ")";
    }
    trouble += ", at cycle " + std::to_string(z80_state.t_count) + ": " + what;
}

void log_again(const machine_event& event) {
    if (kept) append(event.kind, event.a, event.b, event.bytes);
}

/// The next event if it is of this kind and of the present cycle; else null.
const machine_event* take(event_kind kind) {
    const auto& events = replay.log->events;
    const size_t next = replay.position->next;
    if (next >= events.size()) return nullptr;
    const machine_event& event = events[next];
    if (event.kind != kind || event.cycle != z80_state.t_count) return nullptr;
    ++replay.position->next;
    log_again(event);
    return &event;
}

int32_t answer_or(event_kind kind, int32_t otherwise) {
    if (const machine_event* event = take(kind)) return event->a;
    fail("a question of kind " + std::to_string(int(kind)) + " that was not asked then");
    return otherwise;
}

int give_fragments(int) { return answer_or(event_kind::fragments, 1); }

int give_written(output_stream stream, uint64_t position, const uint8_t* bytes, size_t count) {
    replay.host.write(stream, position, bytes, count);
    return answer_or(event_kind::written, 1);
}

int give_rom(rom_file, uint8_t* to, size_t size) {
    const machine_event* const event = take(event_kind::rom_bytes);
    if (!event || event->bytes.size() > size) {
        fail("a ROM that was not read then");
        return ROM_NOT_NAMED;
    }
    std::ranges::copy(event->bytes.view(), to);
    return event->a;
}

void give_input(machine_input& input) {
    const machine_event* const event = take(event_kind::input);
    if (!event) return fail("keys that were not looked at then");
    input = record_of<machine_input>(*event);
}

save_answer give_save() { return save_answer(answer_or(event_kind::save_reply, SAVE_REFUSED)); }

/// A step of a replay tells what it hits like any other run. Whether the machine is to stand.
bool step_stands() {
    if (z80_watch.run && z80_watch_arrives() && machine_host.watch_hit()) return true;
    if (machine_step() == MACHINE_FRAME) fail("the frame has ended");
    return z80_watch.run && z80_watch.hit_count && machine_host.watch_hit();
}

/// Whether the machine is where event number `target` came, with all before it done.
bool is_there(size_t target) {
    const machine_event& event = replay.log->events[target];
    const size_t next = replay.position->next;
    if (z80_state.t_count < event.cycle || next < target) return false;
    if (z80_state.pc == event.pc) return true;
    // At the place of the event before, if that was not an answer in the middle of an instruction.
    const machine_event* const before = target > 0 ? &replay.log->events[target - 1] : nullptr;
    return before && !is_answer(before->kind) && before->cycle == event.cycle &&
           before->pc == event.pc && next == target;
}

/// The machine has come to event number `target`, which is applied, or is the end of the frame.
void pass(size_t target) {
    const machine_event& event = replay.log->events[target];
    if (z80_state.t_count != event.cycle) fail("the machine is at another cycle");
    if (replay.position->next != target) fail("an answer that nobody has asked for");
    if (has_parted()) return;
    ++replay.position->next; // the answers to what it asks follow it in the log
    if (event.kind == event_kind::frame_end) return;
    log_again(event);
    perform(event);
}

/// Runs the machine to the point at which event number `target` came, and applies it. False when it
/// stands at a hit before.
bool run_to(size_t target) {
    const machine_event& event = replay.log->events[target];
    if (event.kind == event_kind::frame_end) {
        int end = machine_run();
        while (end == MACHINE_WAITS && !has_parted()) end = machine_run();
        if (end == MACHINE_STANDS) return false;
    } else {
        while (!is_there(target) && z80_state.t_count <= event.cycle && !has_parted()) {
            if (step_stands()) return false;
        }
    }
    pass(target);
    if (event.kind == event_kind::frame_end || !z80_watch.run) return true;
    return !z80_watch_cycle_comes() || !machine_host.watch_hit();
}

/// The next event that is no answer; that number may be the end.
size_t next_target() {
    const auto& events = replay.log->events;
    size_t target = replay.position->next;
    while (target < events.size() && is_answer(events[target].kind)) ++target;
    return target;
}

int complete_step() {
    int end = machine_step();
    while (end == MACHINE_WAITS && !has_parted()) end = machine_step();
    return end;
}

/// Runs so many instructions, with what was done before and behind each.
machine_replay_end run_steps(int instructions) {
    const auto& events = replay.log->events;
    while (replay.position->next < events.size() && !has_parted()) {
        const size_t target = next_target();
        const bool ends = target < events.size() && events[target].kind == event_kind::frame_end;
        if (target < events.size() && !ends && is_there(target)) {
            pass(target);
            continue;
        }
        if (instructions == 0) return REPLAY_STANDS;
        --instructions;
        if (complete_step() != MACHINE_FRAME) continue;
        if (!ends) {
            fail("the frame has ended");
            break;
        }
        pass(target);
        if (!has_parted()) return REPLAY_FRAME;
    }
    return has_parted() ? REPLAY_PARTED : REPLAY_OVER;
}

void answer_from_log() {
    machine_host.fragment_decision = give_fragments;
    machine_host.write = give_written;
    machine_host.read_rom = give_rom;
    machine_host.read_input = give_input;
    machine_host.save_question = give_save;
    machine_host.breakpoint_reached = [] { return 0; }; // nobody is there to let it go on
}

machine_replay_end run_frame() {
    const auto& events = replay.log->events;
    while (replay.position->next < events.size() && !has_parted()) {
        const size_t target = next_target();
        if (target == events.size()) {
            fail("the log ends with an answer");
            break;
        }
        if (!run_to(target)) return REPLAY_STANDS;
        if (events[target].kind == event_kind::frame_end && !has_parted()) return REPLAY_FRAME;
    }
    return has_parted() ? REPLAY_PARTED : REPLAY_OVER;
}

template <typename Run>
machine_replay_end run_replay(const machine_log& log, machine_replay_position& position,
                              const machine_host_calls& host, Run run) {
    const machine_host_calls outside = machine_host;
    machine_host = host; // answers that are given are logged as well
    replay = {&log, &position, host};
    answer_from_log();
    const machine_replay_end end = run();
    machine_host = outside;
    replay = {};
    return end;
}

// ---- events from outside -----------------------------------------------------------------------

template <typename Number>
bool is_between(Number least, Number value, Number most) {
    return value >= least && value <= most;
}

bool is_possible_rate(int64_t hz) { return is_between<int64_t>(1000, hz, 768'000); }

bool is_possible_tape(const wav_format& wav) {
    constexpr uint64_t LARGEST = uint64_t(1) << 40; // bytes
    return is_possible_rate(wav.rate) && (wav.bits == 8 || wav.bits == 16) &&
           is_between(1U, wav.channels, 2U) && wav.data_start < LARGEST && wav.samples < LARGEST;
}

bool is_possible_choice(const machine_choice& choice) {
    return machine_is_valid_cfg(choice.active) && machine_is_possible(choice.custom);
}

bool is_possible(const z80_registers& s) {
    return s.iff1 <= 1 && s.iff2 <= 1 && s.interrupt_mode <= 2;
}

} // namespace

bool machine_event_is_possible(const machine_event& event) {
    const int32_t a = event.a;
    const size_t size = event.bytes.size();
    switch (event.kind) {
    case event_kind::configure: return machine_is_valid_cfg(uint32_t(a));
    case event_kind::choose:
        return size == sizeof(machine_choice) &&
               is_possible_choice(record_of<machine_choice>(event));
    case event_kind::main_clock:
        return is_between(int32_t(SLOWEST_CLOCK), a, int32_t(FASTEST_CLOCK));
    case event_kind::fragments:
    case event_kind::fragment_count: return is_between(0, a, 2);
    case event_kind::tape_level: return is_between(-0x8000, a, 0x7FFF);
    case event_kind::tape_play_wav:
        return size >= sizeof(wav_format) && is_possible_tape(record_of<wav_format>(event));
    case event_kind::tape_record_wav: return is_possible_rate(a);
    case event_kind::disk_in:
    case event_kind::disk_out:
    case event_kind::disk_replace:
    case event_kind::disk_protect: return is_between(0, a, int32_t(DISK_DRIVES) - 1);
    case event_kind::rom_bytes:
        return event.b == ROM_BY_REFERENCE || (size ? int64_t(size) == a : is_between(-1, a, 0));
    case event_kind::input: return size == sizeof(machine_input);
    case event_kind::save_reply: return is_between(int32_t(SAVE_REFUSED), a, int32_t(SAVE_FAILED));
    case event_kind::tape_seek: return a >= 0;
    case event_kind::registers:
        return size == sizeof(z80_registers) && is_possible(record_of<z80_registers>(event));
    default: return event.kind <= event_kind::last;
    }
}

int machine_apply(event_kind kind, int32_t a, int32_t b, shared_bytes bytes) {
    if (kept) append(kind, a, b, bytes);
    return perform({kind, a, b, std::move(bytes)});
}

void machine_keep_log(machine_log* log) {
    if (kept) {
        machine_log_moment();
        machine_host = machine_host_behind_log();
    }
    kept = log;
    if (!log) return;
    asked = machine_host;
    machine_host.fragment_decision = note_fragments;
    machine_host.write = note_written;
    machine_host.read_rom = note_rom;
    machine_host.read_input = note_input;
    machine_host.save_question = note_save;
}

void machine_log_frame() {
    if (kept) append(event_kind::frame_end);
}

void machine_log_moment() {
    if (kept && frame_state.begun) append(event_kind::moment);
}

const machine_host_calls& machine_host_behind_log() {
    if (!kept) return machine_host;
    asked.watch_hit = machine_host.watch_hit; // a debugger may have come since the log began
    return asked;
}

machine_replay_end machine_replay_frame(const machine_log& log, machine_replay_position& position,
                                        const machine_host_calls& host) {
    return run_replay(log, position, host, run_frame);
}

machine_replay_end machine_replay_steps(const machine_log& log, machine_replay_position& position,
                                        int instructions) {
    return run_replay(log, position, machine_host_behind_log(),
                      [instructions] { return run_steps(instructions); });
}

machine_replay_end machine_replay_frame(const machine_log& log, machine_replay_position& position) {
    return machine_replay_frame(log, position, machine_host_behind_log());
}

std::string machine_replay(const machine_log& log, size_t first) {
    machine_replay_position position = {first, {}};
    while (machine_replay_frame(log, position) == REPLAY_FRAME) continue;
    return position.trouble;
}

MachineMute::MachineMute()
    : host_(std::make_unique<machine_host_calls>(machine_host)),
      log_(std::exchange(kept, nullptr)) {
    const machine_host_calls& answers = log_ ? asked : *host_;
    machine_host = machine_without_host();
    machine_host.read_tape = answers.read_tape;
    machine_host.read_rom = answers.read_rom;
    machine_host.read_input = answers.read_input;
}

MachineMute::~MachineMute() {
    machine_host = *host_;
    kept = log_;
}
