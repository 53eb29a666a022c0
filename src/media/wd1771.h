#pragma once
/// WD1771 floppy disk controller at FFE0-FFEF. The controller is not fitted yet: its status reads
/// not ready and its registers FF.

#include <cstdint>

void wd1771_init();
/// The reset line: releases the interrupt request.
void wd1771_reset_all();
/// The controller's reset after a change of disk.
void wd1771_reset();
/// Interrupt status at FFE0.
uint8_t wd1771_read_irq(int line);
/// The drive select latch at FFE0-FFE3.
void wd1771_write_param_reg(uint8_t value);
/// `address` modulo 4: status, track, sector, data.
uint8_t wd1771_read_reg(uint32_t address);
void wd1771_write_reg(uint32_t address, uint8_t value);
/// The drive whose motor runs, or -1.
int wd1771_is_active();
/// Drives the processor's maskable interrupt line.
void wd1771_set_irq(int level);
