#include "media/wd1771.h"

#include "wall/machine_host.h"
#include "z80/clock.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>
#include <utility>

wd1771_controller wd1771;
std::array<shared_bytes, DISK_DRIVES> drive_contents;

namespace {

enum : uint8_t {
    STATUS_NOT_READY = 0x80,
    STATUS_PROTECTED = 0x40,
    STATUS_HEAD_LOADED = 0x20,  ///< type I
    STATUS_DELETED_MARK = 0x20, ///< of a sector read
    STATUS_WRITE_FAULT = 0x20,
    STATUS_SEEK_ERROR = 0x10,
    STATUS_NOT_FOUND = 0x10,
    STATUS_CRC_ERROR = 0x08,
    STATUS_TRACK_0 = 0x04,
    STATUS_INDEX = 0x02, ///< type I
    STATUS_DATA_REQUEST = 0x02,
    STATUS_BUSY = 0x01
};
constexpr uint8_t NO_DISK_STATUS = 0xFF;
constexpr uint8_t EMPTY_DRIVE_STATUS = STATUS_HEAD_LOADED | STATUS_TRACK_0; ///< while it turns
constexpr uint8_t IRQ_PENDING = 0x40;

enum : uint32_t { REGISTER_STATUS = 0, REGISTER_TRACK, REGISTER_SECTOR, REGISTER_DATA };
// High nibbles of the commands; each of the steps has a second one, with the update bit.
enum : uint8_t {
    RESTORE = 0,
    SEEK = 1,
    STEP = 2,
    STEP_IN = 4,
    STEP_OUT = 6,
    READ_SECTOR = 8,
    WRITE_SECTOR = 10,
    READ_ADDRESS = 12,
    FORCE_INTERRUPT = 13,
    READ_TRACK = 14,
    WRITE_TRACK = 15
};
constexpr uint8_t UPDATE_TRACK = 0x10; ///< of a step
constexpr uint8_t CONDITIONS = 0x0F;   ///< of a forced interrupt
constexpr std::array<int32_t, 16> cmd_types = {1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 4, 3, 3};
constexpr int32_t HEAD_POSITIONING = 1; ///< type of a command

// What the format bytes of a track say.
enum : uint8_t { ID_MARK = 0xFE, DATA_MARK = 0xFB, WRITE_CRC = 0xF7 };

constexpr uint32_t LAST_STEP_TRACK = 82; ///< from here one step further in is possible
constexpr uint32_t SECTOR_BYTES = 256;   ///< that the processor writes
constexpr uint32_t ID_BYTES = 6;
constexpr uint8_t ID_LENGTH_256 = 1;
constexpr uint64_t REVOLUTIONS = 6;   ///< per second
constexpr uint64_t INDEX_SHARE = 100; ///< of a revolution: one hundredth
constexpr int64_t POSITIONING_CYCLES = 33000;
constexpr double READY_MS = 2300;

/// The sector behind each one as it passes under the head; dense tracks are not interleaved.
constexpr std::array<uint32_t, 10> interleave = {0, 5, 1, 6, 2, 7, 3, 8, 4, 9};

static_assert(std::is_trivially_copyable_v<wd1771_controller>);
static_assert(std::has_unique_object_representations_v<wd1771_controller>, "no padding");
constexpr state_field wd1771_fields[] = {
    {"command", sizeof wd1771.command},
    {"status", sizeof wd1771.status},
    {"data", sizeof wd1771.data},
    {"drive_select", sizeof wd1771.drive_select},
    {"step_in", sizeof wd1771.step_in},
    {"interrupt", sizeof wd1771.interrupt},
    {"unused", sizeof wd1771.unused},
    {"track", sizeof wd1771.track},
    {"sector", sizeof wd1771.sector},
    {"head_track", sizeof wd1771.head_track},
    {"rotational_sector", sizeof wd1771.rotational_sector},
    {"command_type", sizeof wd1771.command_type},
    {"track_state", sizeof wd1771.track_state},
    {"buffer_offset", sizeof wd1771.buffer_offset},
    {"sector_count", sizeof wd1771.sector_count},
    {"motor_timeout", sizeof wd1771.motor_timeout},
    {"index_hole_in_cycles", sizeof wd1771.index_hole_in_cycles},
    {"last_cmd_clock", sizeof wd1771.last_cmd_clock},
    {"sector_buffer", sizeof wd1771.sector_buffer},
    {"disks", sizeof wd1771.disks},
};

bool is_possible(const disk_record& disk) {
    return (disk.layout <= DISK_FIXED || disk.layout == DISK_REJECTED) &&
           disk.write_protected <= 1 && disk.modified <= 1 && disk.data_offset <= disk.size;
}

const char* fault(const wd1771_controller& fdc) {
    const auto is_head = [](uint32_t track) { return track <= LAST_STEP_TRACK + 1; };
    const auto is_sector = [](uint32_t sector) { return sector < DENSE_SECTORS; };
    return first_fault(
        {{"drive_select", fdc.drive_select < 1 << DISK_DRIVES},
         {"step_in", fdc.step_in <= 1},
         {"interrupt", fdc.interrupt <= 1},
         {"track", fdc.track <= UINT8_MAX},
         {"sector", fdc.sector <= UINT8_MAX},
         {"head_track", std::ranges::all_of(fdc.head_track, is_head)},
         {"rotational_sector", std::ranges::all_of(fdc.rotational_sector, is_sector)},
         {"command_type", fdc.command_type >= 0 && fdc.command_type <= cmd_types[FORCE_INTERRUPT]},
         {"track_state", fdc.track_state == TRACK_IDLE || fdc.track_state == TRACK_ID ||
                             fdc.track_state == TRACK_DATA},
         {"buffer_offset", fdc.buffer_offset <= SECTOR_BUFFER_BYTES},
         {"last_cmd_clock", is_cycle_count(fdc.last_cmd_clock)},
         {"disks", std::ranges::all_of(fdc.disks, is_possible)}});
}

/// Bytes of a sector, never more than the buffer holds: the record may come from a damaged state.
uint32_t sector_bytes(unsigned drive) {
    return std::clamp(wd1771.disks[drive].bytes_per_sector, SMALLEST_SECTOR, LARGEST_SECTOR);
}

uint64_t now() { return uint64_t(z80_state.t_count); }
bool motor_runs() { return now() < wd1771.motor_timeout; }
bool is_positioning() { return z80_state.t_count - wd1771.last_cmd_clock <= POSITIONING_CYCLES; }

/// DISK_DRIVES when none is selected.
unsigned addressed_drive() {
    return wd1771.drive_select ? unsigned(std::countr_zero(wd1771.drive_select)) : DISK_DRIVES;
}

void end_transfer() { wd1771.status &= uint8_t(~(STATUS_BUSY | STATUS_DATA_REQUEST)); }

void fail(uint8_t reason) {
    end_transfer();
    wd1771.status |= reason;
    wd1771_set_irq(1);
}

void begin_transfer() {
    wd1771.status |= STATUS_BUSY | STATUS_DATA_REQUEST;
    wd1771.buffer_offset = 0;
}

void rotate(unsigned drive) {
    uint32_t& sector = wd1771.rotational_sector[drive];
    const bool dense = wd1771.disks[drive].sectors == DENSE_SECTORS;
    sector = dense ? (sector + 1) % DENSE_SECTORS : interleave[sector % interleave.size()];
}

// ---- commands ----------------------------------------------------------------------------------

void restore(unsigned drive) {
    wd1771.head_track[drive] = 0;
    wd1771.track = 0;
    wd1771.data = 0;
}

/// A target beyond the last track leaves the head where it is. No seek error is kept, since the end
/// of the command overwrites the status.
void seek(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) return;
    uint32_t& head = wd1771.head_track[drive];
    const uint32_t target = wd1771.data;
    if (target != head) wd1771.step_in = target > head ? 1 : 0;
    if (target > LAST_STEP_TRACK) return;
    head = target;
    wd1771.track = target;
}

void step(unsigned drive) {
    uint32_t& head = wd1771.head_track[drive];
    if (wd1771.step_in) {
        if (head <= LAST_STEP_TRACK) ++head;
    } else if (head > 0) {
        --head;
    }
    if (wd1771.command & UPDATE_TRACK) wd1771.track = head;
}

void read_sector(unsigned drive) {
    const disk_record& disk = wd1771.disks[drive];
    const uint32_t head = wd1771.head_track[drive];
    if (!disk_img_read_sector(disk, drive_contents[drive].view(), 0, head, wd1771.sector,
                              wd1771.sector_buffer.data())) {
        return fail(STATUS_NOT_FOUND);
    }
    begin_transfer();
    wd1771.status &= uint8_t(~STATUS_DELETED_MARK);
    if (head == disk.directory_track) wd1771.status |= STATUS_DELETED_MARK;
    rotate(drive);
}

/// 1 when data may be written to the disk in the drive.
int begin_writing(unsigned drive) {
    const disk_record& disk = wd1771.disks[drive];
    if (!diskimg_inserted(disk) || disk.write_protected) {
        fail(disk.write_protected ? STATUS_PROTECTED : STATUS_NOT_FOUND);
        return 0;
    }
    begin_transfer();
    return 1;
}

void write_sector(unsigned drive) {
    if (begin_writing(drive)) rotate(drive);
}

void write_track(unsigned drive) {
    if (begin_writing(drive)) {
        wd1771.track_state = TRACK_IDLE;
    } else {
        wd1771.sector_count = 0;
    }
}

/// The identification of the sector that passes next, put at the end of the buffer: the transfer
/// ends as that of a sector does.
void read_address(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) return fail(STATUS_NOT_FOUND);
    const uint32_t head = wd1771.head_track[drive];
    const std::array<uint8_t, ID_BYTES> id = {
        uint8_t(head), 0, uint8_t(wd1771.rotational_sector[drive]), ID_LENGTH_256, 0xFF, 0xFF};
    wd1771.buffer_offset = sector_bytes(drive) - ID_BYTES;
    std::ranges::copy(id, wd1771.sector_buffer.begin() + wd1771.buffer_offset);
    wd1771.status |= STATUS_DATA_REQUEST;
    wd1771.sector = head;
    rotate(drive);
}

void force_interrupt(unsigned drive) {
    wd1771.status &= uint8_t(~STATUS_BUSY);
    wd1771.track_state = TRACK_IDLE;
    wd1771.buffer_offset = SECTOR_BYTES;
    wd1771.command_type = HEAD_POSITIONING;
    if ((wd1771.command & CONDITIONS) && diskimg_inserted(wd1771.disks[drive])) wd1771_set_irq(1);
}

void execute(unsigned drive, uint8_t high_nibble) {
    switch (high_nibble) {
    case RESTORE: return restore(drive);
    case SEEK: return seek(drive);
    case STEP_IN:
    case STEP_IN + 1: wd1771.step_in = 1; return step(drive);
    case STEP_OUT:
    case STEP_OUT + 1: wd1771.step_in = 0; return step(drive);
    case STEP:
    case STEP + 1: return step(drive);
    case READ_SECTOR:
    case READ_SECTOR + 1: return read_sector(drive);
    case WRITE_SECTOR:
    case WRITE_SECTOR + 1: return write_sector(drive);
    case READ_ADDRESS: return read_address(drive);
    case FORCE_INTERRUPT: return force_interrupt(drive);
    case WRITE_TRACK: return write_track(drive);
    default:
        machine_print(TEXT_ERROR, "FDC(%u). Unhandled command: %02X.\n", drive, wd1771.command);
    }
}

void write_command(unsigned drive, uint8_t value) {
    const uint8_t high_nibble = value >> 4;
    if ((wd1771.status & STATUS_BUSY) && high_nibble != FORCE_INTERRUPT) return;
    wd1771.command = value;
    wd1771.command_type = cmd_types[high_nibble];
    wd1771.last_cmd_clock = z80_state.t_count;
    const bool positions = wd1771.command_type == HEAD_POSITIONING;
    wd1771.status &= positions ? uint8_t(0) : uint8_t(STATUS_DATA_REQUEST);
    wd1771.interrupt = 0; // the processor's line keeps its level
    execute(drive, high_nibble);
    if (positions) wd1771.status = STATUS_BUSY;
}

// ---- data --------------------------------------------------------------------------------------

/// The next byte of the sector buffer. Behind its end, the data register as it is.
uint8_t next_sector_byte(unsigned drive) {
    const uint32_t size = sector_bytes(drive);
    if (!diskimg_inserted(wd1771.disks[drive]) || wd1771.buffer_offset >= size) return wd1771.data;
    const uint8_t value = wd1771.sector_buffer[wd1771.buffer_offset++];
    if (wd1771.buffer_offset == size) {
        end_transfer();
        wd1771_set_irq(1);
    }
    return value;
}

uint8_t read_data(unsigned drive) {
    uint8_t value = 0xFF;
    switch (wd1771.command >> 4) {
    case READ_SECTOR:
    case READ_SECTOR + 1:
    case READ_ADDRESS: value = next_sector_byte(drive); break;
    case READ_TRACK:
        value = wd1771.sector_buffer[wd1771.buffer_offset % SECTOR_BUFFER_BYTES];
        wd1771.buffer_offset = (wd1771.buffer_offset + 1) % SECTOR_BUFFER_BYTES;
        break;
    default: break;
    }
    wd1771.data = value;
    return value;
}

int store_sector(unsigned drive) {
    const int stored =
        disk_img_write_sector(wd1771.disks[drive], drive_contents[drive].change(), 0,
                              wd1771.head_track[drive], wd1771.sector, wd1771.sector_buffer.data());
    if (stored) machine_host.disk_written(int(drive));
    return stored;
}

void write_sector_byte(unsigned drive, uint8_t value) {
    wd1771.sector_buffer[wd1771.buffer_offset++ % SECTOR_BUFFER_BYTES] = value;
    if (wd1771.buffer_offset < SECTOR_BYTES) return;
    if (!store_sector(drive)) wd1771.status |= STATUS_WRITE_FAULT;
    wd1771.buffer_offset = 0;
    end_transfer();
}

void end_field(unsigned drive) {
    if (wd1771.track_state == TRACK_ID) {
        wd1771.track = wd1771.sector_buffer[0];
        wd1771.sector = wd1771.sector_buffer[2];
    } else if (wd1771.track_state == TRACK_DATA) {
        store_sector(drive);
        if (++wd1771.sector_count >= wd1771.disks[drive].sectors) {
            end_transfer();
            wd1771_set_irq(1);
            wd1771.sector_count = 0;
        }
    }
}

void begin_field(int32_t state) {
    wd1771.track_state = state;
    wd1771.buffer_offset = 0;
}

void write_track_byte(unsigned drive, uint8_t value) {
    switch (value) {
    case ID_MARK: return begin_field(TRACK_ID);
    case DATA_MARK: return begin_field(TRACK_DATA);
    case WRITE_CRC: end_field(drive); return begin_field(TRACK_IDLE);
    default:
        wd1771.sector_buffer[wd1771.buffer_offset % SECTOR_BUFFER_BYTES] = value;
        wd1771.buffer_offset = (wd1771.buffer_offset + 1) % SECTOR_BUFFER_BYTES;
    }
}

void write_data(unsigned drive, uint8_t value) {
    wd1771.data = value;
    if (!(wd1771.status & STATUS_DATA_REQUEST)) return;
    switch (wd1771.command >> 4) {
    case WRITE_SECTOR:
    case WRITE_SECTOR + 1: return write_sector_byte(drive, value);
    case WRITE_TRACK: return write_track_byte(drive, value);
    default: return;
    }
}

// ---- status ------------------------------------------------------------------------------------

uint8_t empty_drive_status() {
    if (!motor_runs()) return NO_DISK_STATUS;
    return EMPTY_DRIVE_STATUS | (is_positioning() ? STATUS_BUSY : 0);
}

void look_at_drive(unsigned drive) {
    uint8_t& status = wd1771.status;
    status &= STATUS_NOT_READY | STATUS_SEEK_ERROR | STATUS_CRC_ERROR | STATUS_BUSY;
    if (!is_positioning()) status &= uint8_t(~STATUS_BUSY);
    if (now() % (z80_state.clock_hz / REVOLUTIONS) < wd1771.index_hole_in_cycles)
        status |= STATUS_INDEX;
    if (wd1771.head_track[drive] == 0) status |= STATUS_TRACK_0;
    if (motor_runs()) status |= STATUS_HEAD_LOADED;
    if (wd1771.disks[drive].write_protected) status |= STATUS_PROTECTED;
}

uint8_t read_status(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) return empty_drive_status();
    wd1771.status &= uint8_t(~STATUS_NOT_READY);
    if (!motor_runs()) wd1771.status |= STATUS_NOT_READY;
    if (wd1771.command_type == HEAD_POSITIONING) look_at_drive(drive);
    wd1771_set_irq(0);
    return wd1771.status;
}

void insert(unsigned drive, disk_image&& disk) {
    wd1771.disks[drive] = disk;
    drive_contents[drive] = shared_bytes(std::move(disk.image));
}

} // namespace

const state_record wd1771_record = {"wd1771", &wd1771, sizeof wd1771, wd1771_fields,
                                    fault_of<wd1771_controller, fault>};

void wd1771_init() {
    wd1771 = {};
    drive_contents = {};
    wd1771.index_hole_in_cycles = z80_state.clock_hz / (REVOLUTIONS * INDEX_SHARE);
    wd1771_reset_all();
}

void wd1771_reset() {
    wd1771.command = 0;
    wd1771.status = 0;
    wd1771.track = 0;
    wd1771.sector = 0;
    wd1771.step_in = 0;
    wd1771.buffer_offset = SECTOR_BYTES;
    wd1771.motor_timeout = 0;
    wd1771_device_select(1);
    wd1771.sector_count = 0;
    wd1771.last_cmd_clock = 0;
}

void wd1771_reset_all() {
    wd1771_reset();
    wd1771.head_track.fill(0);
}

void wd1771_write_param_reg(uint8_t value) { wd1771_device_select(value & 0x0F); }

void wd1771_device_select(uint8_t bits) {
    wd1771.drive_select = bits;
    const unsigned drive = addressed_drive();
    if (drive >= DISK_DRIVES || !diskimg_inserted(wd1771.disks[drive])) return;
    wd1771.motor_timeout = now() + uint64_t(msec_to_cycles(READY_MS));
}

uint8_t wd1771_read_reg(uint32_t address) {
    const unsigned drive = addressed_drive();
    if (drive >= DISK_DRIVES) return 0;
    switch (address & 3) {
    case REGISTER_STATUS: return read_status(drive);
    case REGISTER_TRACK: return uint8_t(wd1771.track);
    case REGISTER_SECTOR: return uint8_t(wd1771.sector);
    default: return read_data(drive);
    }
}

void wd1771_write_reg(uint32_t address, uint8_t value) {
    const unsigned drive = addressed_drive();
    if (drive >= DISK_DRIVES) return;
    switch (address & 3) {
    case REGISTER_STATUS: return write_command(drive, value);
    case REGISTER_TRACK: wd1771.track = value; return;
    case REGISTER_SECTOR: wd1771.sector = value; return;
    default: write_data(drive, value);
    }
}

uint8_t wd1771_read_irq() {
    if (addressed_drive() >= DISK_DRIVES || !wd1771.interrupt) return 0;
    wd1771_set_irq(0);
    return IRQ_PENDING;
}

int wd1771_is_active() {
    const unsigned drive = addressed_drive();
    return drive < DISK_DRIVES && motor_runs() ? int(drive) : -1;
}

void wd1771_set_irq(int level) {
    wd1771.interrupt = level ? 1 : 0;
    z80_state.irq = level;
}

int wd1771_attach(unsigned drive, std::vector<uint8_t> image, bool write_protected) {
    wd1771_detach(drive);
    disk_image disk;
    disk.image = std::move(image);
    if (disk.image.empty() || !diskimg_analyze(disk)) return 0;
    disk.write_protected = write_protected ? 1 : 0;
    insert(drive, std::move(disk));
    return 1;
}

void wd1771_detach(unsigned drive) { insert(drive, {}); }

void wd1771_replace(unsigned drive, std::vector<uint8_t> image) {
    disk_image disk;
    static_cast<disk_record&>(disk) = wd1771.disks[drive];
    disk.image = std::move(image);
    diskimg_find_geometry(disk);
    disk.modified = 1;
    insert(drive, std::move(disk));
}

void wd1771_write_protect(unsigned drive, bool level) {
    wd1771.disks[drive].write_protected = level ? 1 : 0;
}

disk_image wd1771_disk(unsigned drive) {
    const auto contents = drive_contents[drive].view();
    return {wd1771.disks[drive], {contents.begin(), contents.end()}};
}
