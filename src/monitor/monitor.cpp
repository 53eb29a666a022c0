#include "monitor/monitor.h"

#include "platform/platform.h"
#include "z80/z80.h"

void monitor_update() {
    const Size client = platform().window().client_size();
    platform().drawing().fill_rectangle({0, 0, client.width, client.height}, 0);
}
void monitor_select_page(int /*page*/) {}
void debug() {}
uint16_t monitor_get_current_pc() { return cpu_get_pc(); }
void step_dir(int /*direction*/) {}
void step_dir_page(int /*direction*/) {}
void step_dir_rows(int /*direction*/, int /*rows*/) {}
void fulldisasm(const std::string& /*name*/) {}
