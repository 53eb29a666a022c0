#pragma once
/// The machine as it is after power-on, the same before every run, so that a finding shows again
/// from its input alone.

#include "platform/headless/headless.h"
#include "support/input.h"

#include <cstdint>

/// A host without a display, for the whole process.
HeadlessPlatform& fuzz_platform();
/// Powers the machine on with a configuration: 0 to 2, anything else is the custom one.
void fresh_machine(uint32_t configuration = 0);
/// 40 columns, 25 rows, as the firmware programs them.
void program_standard_picture();
/// Takes the processor's registers from the input.
void load_registers(Input& input);
