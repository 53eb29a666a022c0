#pragma once
/// WD1771 single-density floppy disk controller with the drive select latch of the disk interface.
///
/// Works on whole sectors: reading fills a buffer that the processor drains through the data
/// register, writing fills the buffer and stores it when it is full. The data request stands as
/// long as bytes remain, so no data are ever lost. What software waits for is timed: 33000 cycles
/// of head positioning, the index pulse of a disk at 360 revolutions per minute, and the 2.3
/// seconds that a drive stays ready after it was selected.

#include "media/disk_image.h"
#include "wall/shared_bytes.h"
#include "wall/state_record.h"

#include <array>
#include <cstdint>
#include <vector>

constexpr unsigned DISK_DRIVES = 4;
constexpr uint32_t SECTOR_BUFFER_BYTES = 1024;

enum write_track_state : int32_t { TRACK_IDLE = 0, TRACK_ID = 2, TRACK_DATA = 3 };

struct wd1771_controller {
    uint8_t command = 0; ///< the last one accepted
    uint8_t status = 0;
    uint8_t data = 0;
    uint8_t drive_select = 0; ///< of the latch
    uint8_t step_in = 0;      ///< 1: the last step went to a higher track
    uint8_t interrupt = 0;    ///< 1: requested
    uint8_t unused[2] = {};
    uint32_t track = 0;
    uint32_t sector = 0;
    std::array<uint32_t, DISK_DRIVES> head_track = {};
    std::array<uint32_t, DISK_DRIVES> rotational_sector = {}; ///< passes next under the head
    int32_t command_type = 0;                                 ///< 1 to 4
    int32_t track_state = TRACK_IDLE;
    uint32_t buffer_offset = 0;
    uint32_t sector_count = 0;         ///< data fields that the present track has got
    uint64_t motor_timeout = 0;        ///< cycle count up to which the drive is ready
    uint64_t index_hole_in_cycles = 0; ///< how long it takes to pass
    int64_t last_cmd_clock = 0;        ///< cycle count at the last command
    std::array<uint8_t, SECTOR_BUFFER_BYTES> sector_buffer = {};
    std::array<disk_record, DISK_DRIVES> disks = {};
};
extern wd1771_controller wd1771;
extern const state_record wd1771_record;
/// The bytes of the disks in the drives.
extern std::array<shared_bytes, DISK_DRIVES> drive_contents;

/// Power-on: four empty drives.
void wd1771_init();
/// After a change of disk: registers and motor, drive 0 selected. Heads stay where they are.
void wd1771_reset();
/// The reset line: wd1771_reset, and every head on track 0.
void wd1771_reset_all();
/// The drive select latch: bits 0 to 3 are the drives.
void wd1771_write_param_reg(uint8_t value);
/// Selects drives; the one addressed is that of the lowest set bit. A disk in it gets ready.
void wd1771_device_select(uint8_t bits);
/// Register 0 to 3: status, track, sector, data. 0 with no drive selected. The status read ends
/// the interrupt request.
uint8_t wd1771_read_reg(uint32_t address);
/// Register 0 to 3: command, track, sector, data. Ignored with no drive selected.
void wd1771_write_reg(uint32_t address, uint8_t value);
/// 40 while an interrupt is requested, which this ends; else 0.
uint8_t wd1771_read_irq();
/// The selected drive while its motor runs, else -1.
int wd1771_is_active();
/// Sets the interrupt request and the processor's maskable interrupt line.
void wd1771_set_irq(int level);

// What the host does with the disk in `drive` (0 to 3).

/// Puts in the disk of an image file. 1 on success; on failure the drive is empty. The standard
/// error stream has what was found.
int wd1771_attach(unsigned drive, std::vector<uint8_t> image, bool write_protected);
void wd1771_detach(unsigned drive);
/// The disk has these bytes, as if the machine had written them.
void wd1771_replace(unsigned drive, std::vector<uint8_t> image);
void wd1771_write_protect(unsigned drive, bool level);
/// A copy of the disk.
disk_image wd1771_disk(unsigned drive);
