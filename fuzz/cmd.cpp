/// Load modules: read into the machine, then started where they say.

#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "media/cmd_loader.h"
#include "media/program_outline.h"
#include "support/fake_host.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    fresh_machine();
    uint16_t entry = 0;
    const int loaded = load_cmd({data, size}, &entry);
    const ProgramOutline outline = load_module_outline({data, size});
    require(outline.bytes <= size, "what is loaded is in the file");
    require(!outline.damage.empty() || outline.entry == entry, "a whole module has this entry");
    require(loaded == 0 || loaded == 1, "the result is 1 or 0");
    const bool patched = !std::equal(memory, memory + 0x100, active_rom);
    require(!patched, "no module writes to the ROM");
    z80_state.pc = entry;
    if (entry) machine_run();
    return 0;
}
