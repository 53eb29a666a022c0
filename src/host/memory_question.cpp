#include "host/memory_question.h"

#include "cgenie/firmware_images.h"
#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "host/screen_keyboard.h"
#include "host/shell_state.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr int PATIENCE = 100; ///< frames without a key
constexpr std::string_view QUESTION = "MEM SIZE? ";
constexpr size_t CURSOR = 0x4020; ///< cell with the address of the cursor
constexpr size_t SCREEN = 0x4400;
constexpr size_t SCREEN_SIZE = 1024;
constexpr size_t COLUMNS = 40;
constexpr size_t ENTER_ROW = 6;
constexpr uint8_t ENTER_COLUMN = 1;

int waited = 0; ///< frames at the question without a key

/// With a ROM of the user's own, these cells may be anything.
bool is_built_in_rom() {
    using enum FirmwareImage;
    constexpr FirmwareImage images[] = {basic_v1, basic_v2, basic_v2sn};
    return std::ranges::any_of(images, [](FirmwareImage image) {
        return std::ranges::equal(active_rom, firmware_built_in(image));
    });
}

/// The cursor stands right behind the question: nothing has been typed.
bool is_asked() {
    const size_t cursor = memory[CURSOR] | size_t(memory[CURSOR + 1]) << 8;
    if (cursor < SCREEN + QUESTION.size() || cursor >= SCREEN + SCREEN_SIZE) return false;
    const size_t start = cursor - QUESTION.size();
    return (start - SCREEN) % COLUMNS == 0 &&
           std::ranges::equal(
               QUESTION,
               std::string_view(reinterpret_cast<const char*>(memory) + start, QUESTION.size()));
}

bool is_key_down() {
    const machine_input& input = input_state.now;
    const auto any = [](const uint8_t(&rows)[8]) {
        return std::ranges::any_of(rows, [](uint8_t row) { return row != 0; });
    };
    return any(input.positional) || any(input.symbolic[0]) || any(input.symbolic[1]) ||
           screen_keys_are_held();
}

} // namespace

void memory_question_frame_ran() {
    const bool answers = shell_state.start.answers_memory_question && !shell_state.ask_memory_size;
    if (!answers || machine_run_now.prompt_reached || !is_asked() || is_key_down()) {
        waited = 0;
    } else if (waited < PATIENCE && ++waited == PATIENCE && !is_built_in_rom()) {
        waited = 0;
    }
}

void memory_question_answer(machine_input& input) {
    if (waited == PATIENCE) input.direct[ENTER_ROW] |= ENTER_COLUMN;
}
