#pragma once
/// WD1771 single-density floppy disk controller with the drive select latch of the disk interface.
///
/// Works on whole sectors: reading fills a buffer that the processor drains through the data
/// register, writing fills the buffer and stores it when it is full. The data request stands as
/// long as bytes remain, so no data are ever lost. Timed are what software waits for: 33000 cycles
/// of head positioning, the index pulse of a disk at 360 revolutions per minute, and the 2.3
/// seconds that a drive stays ready after it was selected.

#include "media/disk_image.h"

#include <cstdint>

constexpr unsigned DISK_DRIVES = 4;

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
/// The image in `drive` (0 to 3).
disk_image& wd1771_disk(unsigned drive);
