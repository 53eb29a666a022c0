#include "monitor/monitor.h"

#include "platform/platform.h"
#include "z80/disassembler.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>

std::optional<uint16_t> local_pc;
int monitor_page = MONITOR_DISASSEMBLY;
uint16_t memdump_pc = 0;

namespace {

constexpr Colour BLACK = 0x000000;
constexpr Colour WHITE = 0xFFFFFF;

constexpr int REGISTER_ROWS = 3;
constexpr int LONGEST_STEP_BACK = 5; ///< bytes; no instruction is longer than four
constexpr int ADDRESS_COLUMNS = 16;  ///< of the memory page: address, colon and blanks
constexpr int COLUMNS_PER_STEP = 8;  ///< the bytes come in groups of four
constexpr int GROUP = 4;
constexpr uint8_t LAST_PRINTABLE = 125;

Pane& pane() { return platform().pane(PaneId::monitor); }

std::vector<std::string> disassembly_rows(int rows) {
    std::vector<std::string> text;
    char line[DISASSEMBLY_LINE];
    for (int row = 0; row < std::min(rows, REGISTER_ROWS); ++row) {
        regdump(line, row);
        text.emplace_back(line);
    }
    uint16_t address = monitor_get_current_pc();
    for (int row = REGISTER_ROWS; row < rows; ++row) {
        address = disassemble(address, line);
        text.emplace_back(line);
    }
    return text;
}

std::string memory_row(uint16_t address, int count) {
    char number[16];
    std::snprintf(number, sizeof number, " %04X: ", unsigned{address});
    std::string row = number;
    std::string characters;
    for (int n = 0; n < count; ++n) {
        const uint8_t byte = peek_memory(uint16_t(address + n));
        std::snprintf(number, sizeof number, "%02X ", unsigned{byte});
        if (n % GROUP == 0) row += ' ';
        row += number;
        characters += byte >= ' ' && byte <= LAST_PRINTABLE ? char(byte) : '.';
    }
    return row + ':' + characters;
}

std::vector<std::string> memory_rows(int rows, int cols) {
    const int count = monitor_get_memdump_width(cols) / 2;
    std::vector<std::string> text;
    text.reserve(size_t(std::max(rows, 0)));
    for (int row = 0; row < rows; ++row) {
        text.push_back(memory_row(uint16_t(memdump_pc + row * count), count));
    }
    return text;
}

/// Blackens the area above the status bar, and returns its size in character cells.
Size monitor_get_screen_params() {
    const Size area = pane().size();
    const Size cell = pane().cell_size();
    pane().fill_rectangle({0, 0, area.width, area.height}, BLACK);
    return {area.width / cell.width, area.height / cell.height};
}

void OutDisassString(int row, const std::string& text) {
    pane().text(0, row * pane().cell_size().height, text, WHITE, BLACK);
}

/// Draws a line just above the row.
void DrawSeparator(int row) {
    pane().line(0, row * pane().cell_size().height - 1, pane().size().width, WHITE);
}

void draw(int page) {
    const Size cells = monitor_get_screen_params();
    const auto text = page == MONITOR_MEMORY ? memory_rows(cells.height, cells.width)
                                             : disassembly_rows(cells.height);
    for (size_t row = 0; row < text.size(); ++row) OutDisassString(int(row), text[row]);
    if (page != MONITOR_MEMORY && cells.height > REGISTER_ROWS) DrawSeparator(REGISTER_ROWS);
}

uint16_t next_instruction(uint16_t address) {
    char line[DISASSEMBLY_LINE];
    return disassemble(address, line);
}

/// The address of the instruction before `address`: the one furthest back whose instruction ends at
/// `address`, or the byte before when there is none.
uint16_t previous_instruction(uint16_t address) {
    for (int back = LONGEST_STEP_BACK; back > 1; --back) {
        const auto candidate = uint16_t(address - back);
        if (next_instruction(candidate) == address) return candidate;
    }
    return uint16_t(address - 1);
}

} // namespace

std::vector<std::string> monitor_page_rows(int rows, int cols) {
    if (monitor_page == MONITOR_MEMORY) return memory_rows(rows, cols);
    return disassembly_rows(rows);
}

int monitor_get_memdump_width(int cols) {
    if (cols < ADDRESS_COLUMNS) return 0;
    return (cols - ADDRESS_COLUMNS) / 2 / COLUMNS_PER_STEP * COLUMNS_PER_STEP;
}

int monitor_get_rows() { return pane().size().height / pane().cell_size().height; }

int monitor_get_cols() { return pane().size().width / pane().cell_size().width; }

void monitor_update() {
    if (monitor_page == MONITOR_MEMORY) return monitor_memdump();
    step(cpu_get_pc());
}

void monitor_select_page(int page) {
    monitor_page = page;
    monitor_update();
}

void debug() {
    local_pc = cpu_get_pc();
    draw(MONITOR_DISASSEMBLY);
}

void step(uint16_t pc) {
    if (!local_pc) local_pc = pc;
    draw(MONITOR_DISASSEMBLY);
}

void monitor_memdump() { draw(MONITOR_MEMORY); }

uint16_t monitor_get_current_pc() { return local_pc.value_or(cpu_get_pc()); }

void getpc_dir(int direction) {
    if (monitor_page == MONITOR_MEMORY) {
        const int row = monitor_get_memdump_width(monitor_get_cols()) / 2;
        memdump_pc = uint16_t(memdump_pc + direction * row);
    } else {
        const uint16_t address = monitor_get_current_pc();
        local_pc = direction > 0 ? next_instruction(address) : previous_instruction(address);
    }
}

void step_dir(int direction) { step_dir_rows(direction, 1); }

void step_dir_page(int direction) { step_dir_rows(direction, monitor_get_rows()); }

void step_dir_rows(int direction, int count) {
    for (int n = 0; n < count; ++n) getpc_dir(direction);
    monitor_update();
}
