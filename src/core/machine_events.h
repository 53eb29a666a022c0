#pragma once
/// The one way to change the machine from outside. Every such change is an event, and so is every
/// answer that the machine gets from its host. A saved state and the events after it therefore give
/// the same machine again, to the byte.

#include "core/machine.h"
#include "wall/machine_host.h"
#include "wall/shared_bytes.h"

#include <cstdint>
#include <string>
#include <vector>

enum class event_kind : uint8_t {
    // ---- what machine_apply does with its arguments `a`, `b` and `bytes` ----
    reset,                 ///< the reset key
    restart,               ///< as after switching off and on
    restart_with_disk_rom, ///< the same, with the disk ROM in
    choose,                ///< the bytes of a machine_choice; with `a` the disk ROM is out again
    configure,             ///< configuration `a`; with `b` the machine restarts cold
    startup_pattern,       ///< `a` as memory_set_startup_pattern takes it
    main_clock,            ///< `a` Hz
    engine,                ///< `a`: 1 the beam engine, 0 the line engine; between frames only
    clean_sound,           ///< `a`: on or off
    start_sound,           ///< an empty fragment
    reset_sound,           ///< every source of sound at rest
    fragment_count,        ///< the next completed fragment becomes `a`, whatever was decided
    key_mapping,           ///< `a` as keyboard_change_mapping takes it
    key_reset,             ///< no key is pressed
    graphics_board,        ///< `a`: connected or not
    type_text,             ///< the bytes are typed, once the typing trap is in the ROM
    typing_trap,           ///< puts the typing trap into the ROM
    stop_typing,
    start_again, ///< the processor at its start, with RAM as it is
    go_to,       ///< the processor goes on at the address `a`
    poke,        ///< the bytes at the address `a`, as the processor would write them
    load_module, ///< the bytes of a load module; with `a` the processor goes on at its entry
    snapshot,    ///< the bytes of a snapshot
    tape_moves,  ///< a paced frame has passed: the tape's sound goes on to this cycle
    tape_in,     ///< the bytes of a cassette image
    tape_out,
    tape_make_room, ///< cassette and WAV file out, traps in
    tape_rewind,
    tape_motor,      ///< `a`: runs or not
    tape_level,      ///< `a` of the head, as tape_set_compare_level takes it
    tape_inversion,  ///< `a`: recordings are turned upside down
    tape_play_wav,   ///< the bytes of its wav_format
    tape_record_wav, ///< `a` samples per second
    tape_close_wav,
    tape_traps,      ///< puts the cassette traps into the ROM
    printer,         ///< `a`: on or off
    printer_file,    ///< `a`: open or not
    printer_reset,   ///< nothing waits to be printed, on an empty line
    disk_in,         ///< into drive `a` the bytes of an image; `b`: write-protected
    disk_out,        ///< of drive `a`
    disk_replace,    ///< in drive `a`, as if the machine had written the bytes
    disk_protect,    ///< drive `a`: `b`
    disk_controller, ///< wd1771_reset
    // ---- what a log holds beside these ----
    frame_end,
    moment, ///< the end of the log, inside a frame
    // the host's answers
    fragments,
    written,
    rom_bytes,
    input,
    save_reply,
    // Files hold these numbers: what came later stands here, whatever it does.
    tape_seek, ///< `a` as tape_seek takes it
    registers, ///< the bytes of z80_registers: the processor goes on with these
    last = registers
};
/// Whether machine_apply does it.
constexpr bool is_act(event_kind kind) {
    return kind < event_kind::frame_end || kind > event_kind::save_reply;
}
/// Whether it is an answer of the host.
constexpr bool is_answer(event_kind kind) {
    return kind >= event_kind::fragments && kind <= event_kind::save_reply;
}

struct machine_event {
    event_kind kind = event_kind::moment;
    int32_t a = 0;
    int32_t b = 0;
    shared_bytes bytes = {};
    int64_t cycle = 0; ///< t_count when it came
    uint16_t pc = 0;   ///< PC when it came: a trap takes no time, so the cycle alone is not exact
};

/// As `b` of rom_bytes: the bytes only refer to the ROM image, which is kept elsewhere.
constexpr int32_t ROM_BY_REFERENCE = 1;

/// The user's own configuration, and which one is chosen.
struct machine_choice {
    machine_configuration custom;
    uint32_t active;
};

struct machine_log {
    std::vector<machine_event> events;
};

/// Does what the event says, between two instructions. The result is that of the function which
/// does it; 1 where that has none.
int machine_apply(event_kind kind, int32_t a = 0, int32_t b = 0, shared_bytes bytes = {});
/// The bytes of a plain record, as an event carries them.
template <typename Record>
shared_bytes bytes_of(const Record& record) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(&record);
    return shared_bytes(std::vector<uint8_t>(bytes, bytes + sizeof record));
}

/// Whether an event that comes from outside, such as a file, can be replayed without harm to the
/// program: no value in it is impossible. What it does to the machine may be anything.
bool machine_event_is_possible(const machine_event& event);

/// Appends every event from now on to `log`, which must outlive it; null ends the log, with a
/// moment when a frame has begun. Only one log at a time; its owner may take events out of it
/// between frames. What a replay does goes into it as well.
void machine_keep_log(machine_log* log);
/// For the frame driver: notes in the log that a frame has ended.
void machine_log_frame();
/// Notes in the log how far the machine has come in a frame that has begun, so that what is logged
/// up to now can be replayed by itself.
void machine_log_moment();

/// How far a log has been replayed.
struct machine_replay_position {
    size_t next = 0;     ///< number of the event that comes next
    std::string trouble; ///< where the machine did something else than the log says
};
enum machine_replay_end : int {
    REPLAY_FRAME,  ///< a frame has ended
    REPLAY_STANDS, ///< machine_host.watch_hit wants the machine to stand; can be gone on from
    REPLAY_OVER,   ///< the log has ended
    REPLAY_PARTED  ///< the position has the trouble
};
/// Runs the live machine through the events from the position on, each at its cycle, up to and with
/// the next end of a frame, or up to a hit at which it is to stand. The callbacks in `machine_host`
/// get what the machine shows and puts out; what they would be asked is answered from the log. Only
/// a WAV file that plays is read again, by read_tape. Between two calls the callbacks are as they
/// were, and the machine can be parked.
machine_replay_end machine_replay_frame(const machine_log& log, machine_replay_position& position);
/// The same, with these callbacks for what the machine shows and puts out, and for read_tape.
machine_replay_end machine_replay_frame(const machine_log& log, machine_replay_position& position,
                                        const machine_host_calls& host);
/// The same by so many instructions; with 0 only what was done to the machine at the place where it
/// stands, which is done behind each instruction as well. REPLAY_STANDS inside of a frame, and
/// REPLAY_FRAME where one ends, whatever is left to be run. What the last one hits is noted.
machine_replay_end machine_replay_steps(const machine_log& log, machine_replay_position& position,
                                        int instructions);
/// The callbacks of the host, without those that a log has put before them.
const machine_host_calls& machine_host_behind_log();
/// Runs through all events from number `first` on. Returns an empty text when the end of the log
/// was reached, else the trouble.
std::string machine_replay(const machine_log& log, size_t first = 0);
